// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/UnitScanInternal.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace ZORPlatform {
namespace {

TEST(UnitScan, FindsWhatALoopFinds) {
    // Units that differ in one bit, at either end of a lane.
    constexpr std::u16string_view kUnits = u" !\u8020\u2020\x0000\xFFFF";
    std::mt19937 random(43);
    for (int round = 0; round < 50000; ++round) {
        std::u16string text(random() % 14, u'x');
        for (char16_t& unit : text) {
            if (random() % 3 == 0) unit = kUnits[random() % kUnits.size()];
        }
        const std::size_t begin = random() % (text.size() + 1);
        for (const char16_t unit : {u' ', u'\0', u'\xFFFF'}) {
            ASSERT_EQ(findUnit(text, unit, begin), std::min(text.find(unit, begin), text.size()));
            ASSERT_EQ(findUnitPair(text, unit, begin), std::min(text.find({unit, unit}, begin), text.size()));
        }
    }
}

}  // namespace
}  // namespace ZORPlatform
