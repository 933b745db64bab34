// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/WrittenText.h>

#include <gtest/gtest.h>

#include <support/AllocationCount.h>

#include <algorithm>
#include <numeric>
#include <string>

namespace ZORPlatform {
namespace {

TEST(WrittenText, HoldsWhatWasWrittenAtEveryLength) {
    for (std::size_t units = 0; units < 300; ++units) {
        std::u16string expected(units, u'\0');
        std::iota(expected.begin(), expected.end(), char16_t{0xFF00});
        const std::u16string text =
            writtenText(units, [&](char16_t* to) noexcept { std::iota(to, to + units, char16_t{0xFF00}); });
        ASSERT_EQ(text, expected);
        ASSERT_EQ(text.c_str()[units], u'\0');
    }
}

TEST(WrittenText, AllocatesTheTextOnly) {
    const support::AllocationCount allocations;
    const std::u16string text = writtenText(1000, [](char16_t* to) noexcept { std::fill_n(to, 1000, u'x'); });
    EXPECT_EQ(allocations.count(), 1U);
    EXPECT_EQ(text, std::u16string(1000, u'x'));
}

}  // namespace
}  // namespace ZORPlatform
