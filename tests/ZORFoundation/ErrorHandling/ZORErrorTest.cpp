// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ErrorHandling/ZORError.h>

#include <ZORPlatform/Foundation/NSString.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

namespace ZORFoundation {
namespace {

using UserInfo = NSError::UserInfo;
using ZORPlatform::NSLocalizedDescriptionKey;
using ZORPlatform::NSLocalizedFailureReasonErrorKey;

UserInfo texts(std::u16string_view description, std::u16string_view reason) {
    return {{std::u16string(NSLocalizedDescriptionKey), std::u16string(description)},
            {std::u16string(NSLocalizedFailureReasonErrorKey), std::u16string(reason)}};
}

TEST(ZORError, TheTwoConfiguredDomainsShareAPrefixAndEndInFrontendAndWebseal) {
    ASSERT_TRUE(ZorXUNErrorDomain.ends_with(u".frontend"));
    ASSERT_TRUE(ZorWebSealErrorDomain.ends_with(u".webseal"));
    EXPECT_EQ(ZorXUNErrorDomain.substr(0, ZorXUNErrorDomain.size() - 8),
              ZorWebSealErrorDomain.substr(0, ZorWebSealErrorDomain.size() - 7));
    EXPECT_GT(ZorXUNErrorDomain.size(), std::u16string_view(u".frontend").size());
}

TEST(ZORError, GeneralErrorHasCodeZeroAndTheMessageAsReason) {
    EXPECT_EQ(ZORError::generalErrorWithMessage(u"Timeout"),
              NSError(ZorXUNErrorDomain, 0, texts(u"General error", u"Timeout")));
}

TEST(ZORError, AnEmptyMessageIsAMessage) {
    EXPECT_EQ(ZORError::generalErrorWithMessage(u"").localizedFailureReason(), u"");
    EXPECT_EQ(ZORError::undefinedPropertyErrorWithMessage(u"").localizedFailureReason(), u"");
    EXPECT_EQ(ZORError::webSealErrorWithErrorCode(u"").localizedDescription(), u"");
}

TEST(ZORError, AnyTextIsKeptUnitByUnit) {
    const std::u16string odd{u'a', u'\0', char16_t{0xD800}, char16_t{0x0301}, u'%', u'@'};
    EXPECT_EQ(ZORError::generalErrorWithMessage(odd).localizedFailureReason(), odd);
    EXPECT_EQ(ZORError::webSealErrorWithErrorCode(odd).localizedDescription(), odd);
    const std::u16string million(1'000'000, u'x');
    EXPECT_EQ(ZORError::generalErrorWithMessage(million).localizedFailureReason(), million);
}

TEST(ZORError, AMessageIsCopiedSoItMayGoAtOnce) {
    auto message = std::make_unique<std::u16string>(u"a message too long to be kept inside a string object");
    const NSError error = ZORError::generalErrorWithMessage(*message);
    const std::u16string expected = *message;
    message.reset();
    EXPECT_EQ(error.localizedFailureReason(), expected);
}

TEST(ZORError, UndefinedPropertyErrorHasCodeOne) {
    EXPECT_EQ(ZORError::undefinedPropertyErrorWithMessage(u"name"),
              NSError(ZorXUNErrorDomain, 1, texts(u"Undefined property", u"name")));
}

TEST(ZORError, InvalidTypeErrorNamesTheActualTypeFirst) {
    EXPECT_EQ(
        ZORError::invalidTypeErrorWithType(ZORPlatform::typeDescriptor<std::u16string>(),
                                           ZORPlatform::typeDescriptor<double>()),
        NSError(ZorXUNErrorDomain, 1,
                texts(u"Invalid Type", u"Returned result type [NSString] did not match the expected type [NSNumber]")));
}

TEST(ZORError, InvalidTypeErrorWritesAMissingTypeAsNull) {
    const auto reason = [](auto type, auto expected) {
        return ZORError::invalidTypeErrorWithType(type, expected).localizedFailureReason();
    };
    EXPECT_EQ(reason(std::nullopt, std::nullopt),
              u"Returned result type [(null)] did not match the expected type [(null)]");
    EXPECT_EQ(reason(TypeDescriptor(u"NSData"), std::nullopt),
              u"Returned result type [NSData] did not match the expected type [(null)]");
    EXPECT_EQ(reason(std::nullopt, TypeDescriptor(u"%@")),
              u"Returned result type [(null)] did not match the expected type [%@]");
}

TEST(ZORError, UndefinedPropertyAndInvalidTypeShareTheirCode) {
    EXPECT_EQ(ZORError::undefinedPropertyErrorWithMessage(u"").code(),
              ZORError::invalidTypeErrorWithType(std::nullopt, std::nullopt).code());
}

TEST(ZORError, AnErrorOfACodeAloneHasNoUserInformation) {
    const NSError error = ZORError::errorWithErrorCode(42);
    EXPECT_EQ(error.domain(), ZorXUNErrorDomain);
    EXPECT_EQ(error.code(), 42);
    EXPECT_TRUE(error.userInfo().empty());
    EXPECT_EQ(error.localizedDescription(), std::nullopt);
}

TEST(ZORError, CodesGoToTheLimitsOf64Bits) {
    for (const std::int64_t code : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-5}, std::int64_t{0},
                                    std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(ZORError::errorWithErrorCode(code).code(), code);
        EXPECT_EQ(ZORError::xunErrorWithErrorCode(code), ZORError::errorWithErrorCode(code));
        EXPECT_EQ(ZORError::errorWithErrorCode(code, std::nullopt), ZORError::errorWithErrorCode(code));
    }
}

TEST(ZORError, UserInformationIsTakenAsGiven) {
    const UserInfo userInfo{{u"key", u"value"}, {u"", u""}};
    EXPECT_EQ(ZORError::errorWithErrorCode(7, userInfo), NSError(ZorXUNErrorDomain, 7, userInfo));
}

TEST(ZORError, WebSealErrorKeepsTheCodeTextAsDescriptionAndNothingElse) {
    EXPECT_EQ(ZORError::webSealErrorWithErrorCode(u"0x38cf04d7"),
              NSError(ZorWebSealErrorDomain, 3, UserInfo{{std::u16string(NSLocalizedDescriptionKey), u"0x38cf04d7"}}));
}

TEST(ZORError, NoInstanceCanBeMadeAndTheTypeHasAName) {
    static_assert(!std::is_default_constructible_v<ZORError>);
    static_assert(std::is_base_of_v<NSError, ZORError>);
    EXPECT_EQ(ZORPlatform::typeDescriptor<ZORError>()->name(), u"ZORError");
}

TEST(ZORErrorDeathTest, AMissingTextStopsWithTheOperationsName) {
    EXPECT_DEATH((void)ZORError::generalErrorWithMessage(std::nullopt), "^generalErrorWithMessage: ");
    EXPECT_DEATH((void)ZORError::undefinedPropertyErrorWithMessage(std::nullopt),
                 "^undefinedPropertyErrorWithMessage: ");
    EXPECT_DEATH((void)ZORError::webSealErrorWithErrorCode(std::nullopt), "^webSealErrorWithErrorCode: ");
}

}  // namespace
}  // namespace ZORFoundation
