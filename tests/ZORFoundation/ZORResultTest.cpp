// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORResult.h>

#include <ZORFoundation/ErrorHandling/ZORError.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

namespace ZORFoundation {
namespace {

enum class Trouble { small, big };

TEST(ZORResult, ASuccessHoldsItsValue) {
    const auto result = ZORResult<int>::success(3);
    EXPECT_TRUE(result.isSuccess());
    ASSERT_NE(result.ifSuccess(), nullptr);
    EXPECT_EQ(*result.ifSuccess(), 3);
    EXPECT_EQ(result.ifFailure(), nullptr);
}

TEST(ZORResult, AFailureHoldsAnErrorOfAnyTypeUntouched) {
    const Error error = ZORError::errorWithErrorCode(42);
    const auto result = ZORResult<int>::error(error);
    EXPECT_FALSE(result.isSuccess());
    EXPECT_EQ(result.ifSuccess(), nullptr);
    ASSERT_NE(result.ifFailure(), nullptr);
    EXPECT_EQ(*result.ifFailure(), error);
    EXPECT_EQ(*ZORResult<int>::error(Error(Trouble::big)).ifFailure()->value().as<Trouble>(), Trouble::big);
}

TEST(ZORResult, AFailureMayHoldNoError) {
    const auto result = ZORResult<int>::error();
    ASSERT_NE(result.ifFailure(), nullptr);
    EXPECT_FALSE(result.ifFailure()->has_value());
}

TEST(ZORResult, MatchingCallsTheFunctionOfTheCase) {
    const auto describe = [](const ZORResult<std::u16string>& result) {
        return result.match(
            [](const std::u16string& value) { return value; },
            [](const std::optional<Error>& error) { return std::u16string(error ? u"an error" : u"no error"); });
    };
    EXPECT_EQ(describe(ZORResult<std::u16string>::success(u"value")), u"value");
    EXPECT_EQ(describe(ZORResult<std::u16string>::error(Error(Trouble::small))), u"an error");
    EXPECT_EQ(describe(ZORResult<std::u16string>::error()), u"no error");
}

TEST(ZORResult, CopiesAreIndependent) {
    const auto first = ZORResult<std::u16string>::success(u"one");
    auto second = first;
    *second.ifSuccess() = u"two";
    EXPECT_EQ(*first.ifSuccess(), u"one");
    second = ZORResult<std::u16string>::error();
    EXPECT_TRUE(first.isSuccess());
    EXPECT_FALSE(second.isSuccess());
}

TEST(ZORResult, AMoveOnlyValueCanBeTakenOut) {
    auto result = ZORResult<std::unique_ptr<int>>::success(std::make_unique<int>(5));
    const std::unique_ptr<int> taken =
        std::move(result).match([](std::unique_ptr<int> value) { return value; },
                                [](const std::optional<Error>&) { return std::unique_ptr<int>(); });
    EXPECT_EQ(*taken, 5);
    static_assert(!std::is_copy_constructible_v<ZORResult<std::unique_ptr<int>>>);
}

TEST(ZORResult, ValueAndErrorMayBeOfOneType) {
    using Same = ZORResult<std::optional<Error>>;
    EXPECT_TRUE(Same::success(std::nullopt).isSuccess());
    EXPECT_FALSE(Same::error(std::nullopt).isSuccess());
}

}  // namespace
}  // namespace ZORFoundation
