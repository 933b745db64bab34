// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSByteCountFormatter.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace ZORPlatform {
namespace {

using Units = NSByteCountFormatterUnits;

std::u16string shown(std::int64_t count, Units units) {
    NSByteCountFormatter formatter;
    formatter.allowedUnits = units;
    return formatter.stringFromByteCount(count);
}

struct Case {
    std::int64_t count;
    Units units;
    std::u16string text;
};

TEST(NSByteCountFormatter, ShowsTheCountInOneUnit) {
    const std::vector<Case> cases = {
        {0, Units::useBytes, u"0"},
        {0, Units::useGB, u"0"},
        {117, Units::useKB, u"0"},
        {500, Units::useKB, u"0"},
        {501, Units::useKB, u"1"},
        {1234, Units::useBytes, u"1,234"},
        {1500, Units::useKB, u"2"},
        {2500, Units::useKB, u"2"},
        {3500, Units::useKB, u"4"},
        {999499, Units::useKB, u"999"},
        {999500, Units::useKB, u"1,000"},
        {999499, Units::useMB, u"1"},
        {1050000, Units::useMB, u"1"},
        {1050001, Units::useMB, u"1.1"},
        {1060000, Units::useMB, u"1.1"},
        {1150000, Units::useMB, u"1.2"},
        {49999999, Units::useMB, u"50"},
        {49999999, Units::useGB, u"0.05"},
        {999940000, Units::useMB, u"999.9"},
        {999940000, Units::useGB, u"1"},
        {1015000000, Units::useGB, u"1.02"},
        {1025000000, Units::useGB, u"1.02"},
        {1'234'567'000'000'000, Units::useTB, u"1,234.57"},
        {1'234'567'000'000'000, Units::useGB, u"1,234,567"},
        {std::numeric_limits<std::int64_t>::max(), Units::useBytes, u"9,223,372,036,854,775,807"},
        {std::numeric_limits<std::int64_t>::max(), Units::useEB, u"9.22"},
        {std::numeric_limits<std::int64_t>::max(), Units::useZB, u"0.01"},
        {std::numeric_limits<std::int64_t>::max(), Units::useYBOrHigher, u"0"},
        {std::numeric_limits<std::int64_t>::min(), Units::useBytes, u"-9,223,372,036,854,775,808"},
        {-1, Units::useKB, u"0"},
    };
    for (const auto& [count, units, text] : cases) EXPECT_EQ(shown(count, units), text) << count;
}

TEST(NSByteCountFormatter, TakesTheLargestAllowedUnitThatTheCountReaches) {
    EXPECT_EQ(shown(999, Units::useDefault), u"999");
    EXPECT_EQ(shown(1000, Units::useDefault), u"1");
    EXPECT_EQ(shown(1'060'000, Units::useAll), u"1.1");
    EXPECT_EQ(shown(1'060'000, Units::useBytes | Units::useKB), u"1,060");
    EXPECT_EQ(shown(400, Units::useMB | Units::useGB), u"0");
}

}  // namespace
}  // namespace ZORPlatform
