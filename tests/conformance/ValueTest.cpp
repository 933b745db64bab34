// SPDX-License-Identifier: Apache-2.0
#include "Value.h"

#include <ZORFoundation/ErrorHandling/ZORError.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace conformance {
namespace {

using ZORPlatform::NSError;

constexpr auto kLargestUnsigned = std::numeric_limits<std::uint64_t>::max();
constexpr auto kSmallest = std::numeric_limits<std::int64_t>::min();

TEST(ConformanceValue, IntegersAreExactToTheLimitsOf64Bits) {
    EXPECT_EQ(Value(kLargestUnsigned).integer<std::uint64_t>(), kLargestUnsigned);
    EXPECT_EQ(Value(kSmallest).integer(), kSmallest);
    EXPECT_FALSE(Value(kLargestUnsigned).matches(Value(kLargestUnsigned - 1)));
    EXPECT_FALSE(Value(std::uint64_t{1} << 63).matches(Value(kSmallest)));
    EXPECT_THROW((void)Value(kLargestUnsigned).integer(), WrongKind);
    EXPECT_THROW((void)Value(-1).integer<std::uint64_t>(), WrongKind);
    EXPECT_THROW((void)Value(std::int64_t{1} << 31).integer<std::int32_t>(), WrongKind);
}

TEST(ConformanceValue, NumbersAreComparedByValueAndBooleansAreNone) {
    EXPECT_TRUE(Value(42).matches(Value(42.0)));
    EXPECT_TRUE(Value(42.0).matches(Value(42)));
    EXPECT_FALSE(Value(42.5).matches(Value(42)));
    EXPECT_FALSE(Value(1).matches(Value(true)));
    EXPECT_FALSE(Value(9007199254740993).matches(Value(9007199254740992.0)));
}

TEST(ConformanceValue, DecimalNumbersAreComparedByNumericValue) {
    const auto same = [](const char* left, const char* right) {
        return Value(Decimal{left}).matches(Value(Decimal{right}));
    };
    EXPECT_TRUE(same("1.5", "1.50"));
    EXPECT_TRUE(same("0", "-0.00"));
    EXPECT_TRUE(same("1200", "12e2"));
    EXPECT_TRUE(same("0.012", "+1.2E-2"));
    EXPECT_TRUE(same("NaN", "NaN"));
    EXPECT_FALSE(same("NaN", "0"));
    EXPECT_FALSE(same("1.5", "-1.5"));
    EXPECT_FALSE(same("12345678901234567890123456789012345678", "12345678901234567890123456789012345679"));
}

TEST(ConformanceValue, DatesAreComparedToTheMicrosecond) {
    EXPECT_TRUE(Value(Date{1520208000.0}).matches(Value(Date{1520208000.0000002})));
    EXPECT_FALSE(Value(Date{1520208000.0}).matches(Value(Date{1520208000.001})));
    EXPECT_FALSE(Value(Date{1520208000.0}).matches(Value(1520208000.0)));
}

TEST(ConformanceValue, AbsentAndEmptyAreDifferentResults) {
    EXPECT_FALSE(Value(std::nullopt).matches(Value(u"")));
    EXPECT_FALSE(Value(Value::Bytes{}).matches(Value(std::nullopt)));
    EXPECT_TRUE(Value(std::optional<std::u16string>()).matches(Value(std::nullopt)));
}

TEST(ConformanceValue, AbsentTextIsReadAsAnEmptyViewOrAsNothing) {
    EXPECT_EQ(Value(std::nullopt).text(), u"");
    EXPECT_EQ(Value(std::nullopt).optionalText(), std::nullopt);
    EXPECT_EQ(Value(u"").optionalText(), u"");
    EXPECT_TRUE(Value(std::nullopt).bytes().empty());
    EXPECT_FALSE(Value(std::nullopt).optionalBytes().has_value());
}

TEST(ConformanceValue, ListsAreComparedElementByElement) {
    const std::vector<std::u16string> words{u"a", u"b"};
    EXPECT_TRUE(Value(Value::List{u"a", u"b"}).matches(Value(words)));
    EXPECT_FALSE(Value(Value::List{u"a"}).matches(Value(words)));
    EXPECT_FALSE(Value(Value::List{u"b", u"a"}).matches(Value(words)));
}

TEST(ConformanceValue, APairIsAListOfTwoIntegers) {
    EXPECT_EQ((Value(Value::List{2, 30}).pair()), (std::pair<std::int64_t, std::int64_t>(2, 30)));
    EXPECT_THROW((void)Value(Value::List{2}).pair(), WrongKind);
    EXPECT_THROW((void)Value(Value::List{2, u"a"}).pair(), WrongKind);
}

TEST(ConformanceValue, AnErrorOfAnyCodeAsksForTheDomainAndACodeOtherThanZero) {
    const Value expected(ErrorOfDomain{u"D"});
    EXPECT_TRUE(expected.matches(NSError(u"D", -4304, NSError::UserInfo{{u"k", u"v"}})));
    EXPECT_FALSE(expected.matches(NSError(u"D", 0)));
    EXPECT_FALSE(expected.matches(NSError(u"E", -4304)));
}

TEST(ConformanceValue, ErrorsAreComparedWithTheirUserInformation) {
    const NSError plain(u"D", 1);
    EXPECT_TRUE(Value(plain).matches(NSError(u"D", 1, NSError::UserInfo{})));
    EXPECT_FALSE(Value(plain).matches(NSError(u"D", 2)));
    EXPECT_FALSE(Value(plain).matches(NSError(u"D", 1, NSError::UserInfo{{u"k", u"v"}})));
}

TEST(ConformanceValue, NamesOfConstantsStandForTheirValues) {
    EXPECT_EQ(userInfoKey(u"NSLocalizedDescriptionKey"), ZORPlatform::NSLocalizedDescriptionKey);
    EXPECT_EQ(userInfoKey(u"NSLocalizedFailureReasonErrorKey"), ZORPlatform::NSLocalizedFailureReasonErrorKey);
    EXPECT_EQ(userInfoKey(u"key"), u"key");
    EXPECT_EQ(errorDomain(u"FrontendErrorDomain"), ZORFoundation::ZorXUNErrorDomain);
    EXPECT_EQ(errorDomain(u"WebSealErrorDomain"), ZORFoundation::ZorWebSealErrorDomain);
    EXPECT_EQ(errorDomain(u"NSURLErrorDomain"), u"NSURLErrorDomain");
}

TEST(ConformanceValue, DescriptionsLookLikeTheVectors) {
    EXPECT_EQ(Value(std::nullopt).description(), "null");
    EXPECT_EQ(Value(u"a\"\n\u20AC").description(), "\"a\\\"\\u000a\u20AC\"");
    EXPECT_EQ(Value(std::u16string{u'A', char16_t{0xD83D}}).description(), R"({"utf16": "0041D83D"})");
    EXPECT_EQ(Value(Value::Bytes{0, 255}).description(), R"({"hex": "00FF"})");
    EXPECT_EQ(Value(Value::List{1, 2.0, true}).description(), "[1, 2.0, true]");
    EXPECT_EQ(Value(NSError(u"D", -1, NSError::UserInfo{{u"k", u"v"}})).description(),
              R"({"domain": "D", "code": -1, "userInfo": {"k": "v"}})");
    EXPECT_LT(Value(std::u16string(100000, u'a')).description().size(), 300U);
}

}  // namespace
}  // namespace conformance
