// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORPhoneNumberFormatter.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/ExactText.h>
#include <support/IdentifierModel.h>

#include <random>
#include <string>

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

TEST(ZORPhoneNumberFormatter, ALinkIsWhatIsLeftOfTheNumberBetweenSchemeAndToken) {
    static constexpr std::u16string_view kUnits = u"0123456789+/()-. \u00A0\u0663";
    std::mt19937 random(15);
    for (int round = 0; round < 20'000; ++round) {
        std::u16string number;
        for (std::size_t length = random() % 24; length > 0; --length)
            number.push_back(kUnits[random() % kUnits.size()]);
        const std::u16string token = number.substr(number.size() / 2);
        ASSERT_EQ(ZORPhoneNumberFormatter::formatPhoneNumber(support::ExactText(number).view(), token),
                  u"tel://" + support::without(number, u"()- .") + token);
    }
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
