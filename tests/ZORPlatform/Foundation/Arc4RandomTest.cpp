// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Arc4Random.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <vector>

namespace ZORPlatform {
namespace {

TEST(Arc4Random, NumbersDiffer) {
    std::set<std::uint32_t> numbers;
    for (int i = 0; i < 64; ++i) numbers.insert(arc4random());
    EXPECT_GT(numbers.size(), 60U);
}

TEST(Arc4Random, FillsEveryByteAndNoneBehind) {
    // Of 24 fills, one leaves a given byte zero with 1 in 256; all of them never do.
    constexpr std::size_t kSize = 1000;
    std::vector<std::uint8_t> seen(kSize);
    for (int i = 0; i < 24; ++i) {
        std::vector<std::uint8_t> bytes(kSize + 1);
        arc4random_buf(bytes.data(), kSize);
        ASSERT_EQ(bytes.back(), 0);
        for (std::size_t at = 0; at < kSize; ++at) seen[at] |= bytes[at];
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0), 0);
}

TEST(Arc4Random, EveryBitTakesBothValues) {
    std::uint32_t ones = 0;
    std::uint32_t zeros = 0;
    for (int i = 0; i < 100; ++i) {
        const std::uint32_t number = arc4random();
        ones |= number;
        zeros |= ~number;
    }
    EXPECT_EQ(ones, ~std::uint32_t{0});
    EXPECT_EQ(zeros, ~std::uint32_t{0});
}

TEST(Arc4Random, LargeRequestsAreFilledWhole) {
    // Above what the system gives in one call.
    std::vector<std::uint8_t> bytes(std::size_t{34} << 20);
    arc4random_buf(bytes.data(), bytes.size());
    for (std::size_t begin = 0; begin < bytes.size(); begin += bytes.size() / 16) {
        const auto piece = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
        EXPECT_NE(std::count(piece, piece + 4096, 0), 4096) << begin;
    }
    EXPECT_NE(std::count(bytes.end() - 4096, bytes.end(), 0), 4096);
}

TEST(Arc4Random, NoBytesAreAsked) { arc4random_buf(nullptr, 0); }

}  // namespace
}  // namespace ZORPlatform
