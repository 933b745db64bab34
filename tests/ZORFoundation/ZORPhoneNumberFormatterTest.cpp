// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORPhoneNumberFormatter.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

namespace ZORFoundation {
namespace {

TEST(ZORPhoneNumberFormatter, LinksLeaveOutBracketsDashesSpacesAndDots) {
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u"+32 (0)2 123.45.67"), u"tel://+32021234567");
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u"0475-12"), u"tel://047512");
}

TEST(ZORPhoneNumberFormatter, EverythingElseStays) {
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u"02/\u00A0a\t[1]"), u"tel://02/\u00A0a\t[1]");
}

TEST(ZORPhoneNumberFormatter, ANumberOfNothingGivesTheSchemeAlone) {
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u""), u"tel://");
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u"(). -"), u"tel://");
}

TEST(ZORPhoneNumberFormatter, TheTokenFollowsAsItIs) {
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u"1 2", u";ext=(5) "), u"tel://12;ext=(5) ");
    EXPECT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(u"1 2", u""), u"tel://12");
}

TEST(ZORPhoneNumberFormatter, ALinkIsOneAllocation) {
    const support::AllocationCount allocations;
    (void)ZORPhoneNumberFormatter::formatPhoneNumber(u"+32 (0)2 123.45.67", u";ext=5");
    EXPECT_EQ(allocations.count(), 1U);
}

}  // namespace
}  // namespace ZORFoundation
