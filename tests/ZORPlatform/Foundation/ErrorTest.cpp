// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Error.h>

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <string>
#include <type_traits>

namespace ZORPlatform {
namespace {

enum class Trouble { small, big };
enum class OtherTrouble { small };

TEST(Error, GivesItsValueBackToWhoKnowsTheType) {
    const Error error = NSError(u"Domain", 17);
    ASSERT_NE(error.as<NSError>(), nullptr);
    EXPECT_EQ(*error.as<NSError>(), NSError(u"Domain", 17));
    EXPECT_EQ(error.as<Trouble>(), nullptr);
    EXPECT_TRUE(error.type() == typeid(NSError));
}

TEST(Error, TypesAreToldApartExactly) {
    const Error error = Trouble::small;
    EXPECT_EQ(*error.as<Trouble>(), Trouble::small);
    EXPECT_EQ(error.as<OtherTrouble>(), nullptr);
    EXPECT_EQ(error.as<int>(), nullptr);
}

TEST(Error, CopiesShareTheValueAndAreEqual) {
    const Error error = Trouble::big;
    const Error copy = error;
    EXPECT_EQ(copy, error);
    EXPECT_EQ(copy.as<Trouble>(), error.as<Trouble>());
    EXPECT_FALSE(error == Error(Trouble::big));
}

TEST(Error, MayHoldAValueThatCanOnlyBeMoved) {
    const Error error = std::make_unique<int>(5);
    EXPECT_EQ(**error.as<std::unique_ptr<int>>(), 5);
}

TEST(Error, DestroysItsValueWithTheLastCopy) {
    auto value = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = value;
    {
        const Error error = std::move(value);
        const Error copy = error;
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(ThrownError, CarriesTheErrorUntouched) {
    const Error error = Trouble::big;
    try {
        throw ThrownError(error);
    } catch (const std::exception& caught) {
        const auto* thrown = dynamic_cast<const ThrownError*>(&caught);
        ASSERT_NE(thrown, nullptr);
        EXPECT_EQ(thrown->error(), error);
    }
}

TEST(ThrownError, SaysDomainCodeAndDescriptionAndNoFurtherData) {
    const NSError error(u"Domain", 7, NSError::UserInfo{{u"NSLocalizedDescription", u"No key"}, {u"secret", u"1234"}});
    EXPECT_STREQ(ThrownError(error).what(), "Domain 7: No key");
}

TEST(ThrownError, NamesTheTypeOfAnyOtherValue) {
    EXPECT_NE(std::string(ThrownError(Trouble::big).what()).find("Trouble"), std::string::npos);
}

TEST(ThrownError, CopyingCannotThrow) {
    static_assert(std::is_nothrow_copy_constructible_v<ThrownError>);
    const ThrownError first(NSError(u"Domain", 7));
    ThrownError second(NSError(u"Other", 8));
    second = first;
    EXPECT_STREQ(second.what(), "Domain 7");
    EXPECT_EQ(second.error(), first.error());
}

}  // namespace
}  // namespace ZORPlatform
