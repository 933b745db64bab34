// SPDX-License-Identifier: Apache-2.0
#include "VectorFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace conformance {
namespace {

using testing::HasSubstr;

/// The value that a case written around `json` expects.
Value valueOf(const std::string& json) {
    const auto line = parseCase(R"({"op": "o", "args": [)" + json + R"(], "result": 1})");
    if (const auto* malformed = std::get_if<Malformed>(&line)) {
        ADD_FAILURE() << json << ": " << malformed->reason;
        return std::nullopt;
    }
    return std::get<Case>(line).arguments.at(0);
}

std::string refusalOf(const std::string& line) {
    const auto result = parseCase(line);
    const auto* malformed = std::get_if<Malformed>(&result);
    return malformed != nullptr ? malformed->reason : "";
}

TEST(VectorFile, ReadsEachFieldOfACase) {
    const auto line = parseCase(
        R"({"op": "Group.name:", "args": ["a", null], "result": 1, "error": null,
            "env": {"tz": "Europe/Brussels", "locale": "nl_BE", "now": 1520208000.5}, "note": "why"})");
    const Case& read = std::get<Case>(line);
    EXPECT_EQ(read.operation, "Group.name:");
    ASSERT_EQ(read.arguments.size(), 2U);
    EXPECT_EQ(read.arguments[0].text(), u"a");
    EXPECT_TRUE(read.arguments[1].isAbsent());
    EXPECT_EQ(std::get<Value>(read.outcome).integer(), 1);
    EXPECT_TRUE(read.error.value().isAbsent());
    EXPECT_EQ(read.environment.timeZone, "Europe/Brussels");
    EXPECT_EQ(read.environment.locale, "nl_BE");
    EXPECT_EQ(read.environment.now, 1520208000.5);
}

TEST(VectorFile, WhatIsLeftOutOfTheEnvironmentHasItsDefault) {
    const auto line = parseCase(R"({"op": "o", "args": [], "fatal": true})");
    const Case& read = std::get<Case>(line);
    EXPECT_TRUE(std::holds_alternative<ExpectedStop>(read.outcome));
    EXPECT_FALSE(read.error.has_value());
    EXPECT_EQ(read.environment.timeZone, "UTC");
    EXPECT_EQ(read.environment.locale, "en_US_POSIX");
    EXPECT_EQ(read.environment.now, std::nullopt);
}

TEST(VectorFile, ReadsAnExpectedException) {
    const auto line = parseCase(R"({"op": "o", "args": [], "throws": {"name": "N", "reason": "R"}})");
    const auto& exception = std::get<ExpectedException>(std::get<Case>(line).outcome);
    EXPECT_EQ(exception.name, u"N");
    EXPECT_EQ(exception.reason, u"R");
}

TEST(VectorFile, ReadsEachKindOfValue) {
    EXPECT_EQ(valueOf(R"("caf\u00e9 \ud83d\ude00")").text(), u"caf\u00E9 \U0001F600");
    EXPECT_EQ(valueOf("true").boolean(), true);
    EXPECT_EQ(valueOf("-9223372036854775808").integer(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(valueOf("18446744073709551615").integer<std::uint64_t>(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(valueOf("0.25").number(), 0.25);
    EXPECT_EQ(valueOf(R"({"utf16": "D83D0041"})").text(), (std::u16string{char16_t{0xD83D}, u'A'}));
    EXPECT_TRUE(valueOf(R"({"hex": "00fF"})").matches(Value(Value::Bytes{0, 255})));
    EXPECT_EQ(valueOf(R"({"decimal": "-1234.56"})").decimal(), "-1234.56");
    EXPECT_EQ(valueOf(R"({"unix": 1520208000.5})").unixSeconds(), 1520208000.5);
    EXPECT_EQ((valueOf("[2, 30]").pair<int>()), (std::pair<int, int>(2, 30)));
    EXPECT_EQ(valueOf(R"({"pattern": "0.00", "maximumFractionDigits": 2})").member("maximumFractionDigits").integer(),
              2);
}

TEST(VectorFile, ReadsErrorsWithAndWithoutUserInformation) {
    EXPECT_EQ(valueOf(R"({"domain": "D", "code": 7, "userInfo": null})").error(), ZORPlatform::NSError(u"D", 7));
    EXPECT_EQ(
        valueOf(R"({"domain": "D", "code": 7, "userInfo": {"NSLocalizedDescriptionKey": "d", "k": "v"}})").error(),
        ZORPlatform::NSError(u"D", 7, ZORPlatform::NSError::UserInfo{{u"NSLocalizedDescription", u"d"}, {u"k", u"v"}}));
    EXPECT_TRUE(valueOf(R"({"domain": "D", "code": "any"})").matches(ZORPlatform::NSError(u"D", 7)));
    EXPECT_EQ(valueOf(R"({"NSLocalizedDescriptionKey": "d"})").optionalUserInfo(),
              (ZORPlatform::NSError::UserInfo{{u"NSLocalizedDescription", u"d"}}));
}

TEST(VectorFile, RepeatAndConcatGiveTheJoinedValue) {
    EXPECT_TRUE(
        valueOf(R"({"repeat": {"hex": "00ff", "count": 3}})").matches(Value(Value::Bytes{0, 255, 0, 255, 0, 255})));
    EXPECT_EQ(valueOf(R"({"repeat": {"text": "ab", "count": 3}})").text(), u"ababab");
    EXPECT_EQ(valueOf(R"({"repeat": {"text": "ab", "count": 0}})").optionalText(), u"");
    EXPECT_EQ(valueOf(R"({"concat": ["x", {"repeat": {"text": "ab", "count": 2}}, {"utf16": "D800"}]})").text(),
              u"xabab" + std::u16string{char16_t{0xD800}});
    EXPECT_TRUE(valueOf(R"({"concat": [{"hex": "01"}, {"repeat": {"hex": "02", "count": 2}}]})")
                    .matches(Value(Value::Bytes{1, 2, 2})));
    EXPECT_EQ(valueOf(R"({"repeat": {"text": "a", "count": 1000000}})").text().size(), 1000000U);
}

TEST(VectorFile, RefusesALineThatIsNoCase) {
    EXPECT_THAT(refusalOf(""), HasSubstr("parse error"));
    EXPECT_THAT(refusalOf("[]"), HasSubstr("not an object"));
    EXPECT_THAT(refusalOf(R"({"args": [], "result": 1})"), HasSubstr("missing"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "result": 1})"), HasSubstr("missing"));
    EXPECT_THAT(refusalOf(R"({"op": 1, "args": [], "result": 1})"), HasSubstr("string"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": 1, "result": 1})"), HasSubstr("list"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": []})"), HasSubstr("exactly one"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": [], "result": 1, "fatal": true})"), HasSubstr("exactly one"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": [], "fatal": false})"), HasSubstr("only be true"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": [], "throws": "N"})"), HasSubstr("\"throws\""));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": [], "reslt": 1})"), HasSubstr("reslt"));
    EXPECT_THAT(refusalOf(R"({"op": "o", "args": [], "result": 1, "env": {"zone": "UTC"}})"), HasSubstr("zone"));
}

TEST(VectorFile, RefusesAValueThatIsIllFormed) {
    for (const std::string value :
         {R"({"hex": "0"})", R"({"hex": "0g"})", R"({"hex": 1})", R"({"utf16": "D83"})", R"({"decimal": "twelve"})",
          R"({"unix": "now"})", R"({"domain": "D", "code": "some"})", R"({"repeat": {"text": "a"}})",
          R"({"repeat": {"text": "a", "count": -1}})", R"({"repeat": {"text": "a", "count": 99999999999}})",
          R"({"concat": ["a", {"hex": "00"}]})", R"({"concat": ["a", null]})", R"("\ud800")"}) {
        EXPECT_NE(refusalOf(R"({"op": "o", "args": [)" + value + R"(], "result": 1})"), "") << value;
    }
}

}  // namespace
}  // namespace conformance
