// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORChallengeResponseFormatter.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <optional>
#include <string>

namespace ZORFoundation {
namespace {

using Formatter = ZORChallengeResponseFormatter;

TEST(ZORChallengeResponseFormatter, ShowsALoginCodeInTwoGroupsOfAtMostFour) {
    EXPECT_EQ(Formatter::formattedLoginCodeOptimal(u""), u"");
    EXPECT_EQ(Formatter::formattedLoginCodeOptimal(u"12 34"), u"1234");
    EXPECT_EQ(Formatter::formattedLoginCodeOptimal(u"12345"), u"1234\u00A05");
    EXPECT_EQ(Formatter::formattedLoginCodeOptimal(u"1234 5678\u00A09"), u"1234\u00A05678");
    EXPECT_EQ(Formatter::formattedLoginCodeOptimal(u"a-b.c"), u"a-b.\u00A0c");
}

TEST(ZORChallengeResponseFormatter, SplitsAChallengeOfSevenUnitsOrMoreAfterTheFourth) {
    EXPECT_EQ(Formatter::formattedChallenge(u"1234567"), u"1234\u00A0567");
    EXPECT_EQ(Formatter::formattedChallenge(u"12345678901"), u"1234\u00A05678901");
    EXPECT_EQ(Formatter::formattedChallenge(u"1 345 7"), u"1 34\u00A05 7");
}

TEST(ZORChallengeResponseFormatter, ShowsAShorterChallengeAsItIs) {
    EXPECT_EQ(Formatter::formattedChallenge(u"123456"), u"123456");
    EXPECT_EQ(Formatter::formattedChallenge(u""), u"");
    EXPECT_EQ(Formatter::formattedChallenge(std::nullopt), std::nullopt);
}

TEST(ZORChallengeResponseFormatter, AllocatesOnlyItsResult) {
    const support::AllocationCount allocations;
    const std::u16string code = Formatter::formattedLoginCodeOptimal(u"1234 5678");
    const std::optional<std::u16string> challenge = Formatter::formattedChallenge(u"12345678901");
    EXPECT_EQ(allocations.count(), 2U);
}

}  // namespace
}  // namespace ZORFoundation
