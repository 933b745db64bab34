// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Wiping.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>

namespace {

using ZORPlatform::WipingArray;
using ZORPlatform::WipingBuffer;
using ZORPlatform::WipingScratch;

constexpr std::size_t kSize = 48;

TEST(Wiping, OverwritesWithZeros) {
    std::array<std::uint8_t, kSize> bytes{};
    bytes.fill(0xA5);
    ZORPlatform::wipe(bytes.data() + 1, kSize - 2);
    EXPECT_EQ(bytes.front(), 0xA5);
    EXPECT_EQ(bytes.back(), 0xA5);
    EXPECT_TRUE(std::all_of(bytes.begin() + 1, bytes.end() - 1, [](std::uint8_t byte) { return byte == 0; }));
}

TEST(Wiping, AcceptsNothing) { ZORPlatform::wipe(nullptr, 0); }

TEST(Wiping, ArrayBeginsAsZerosAndEndsWiped) {
    using Array = WipingArray<std::uint8_t, kSize>;
    // The array lives in memory of the test's, so that it can still be looked at afterwards.
    alignas(Array) std::array<unsigned char, sizeof(Array)> memory{};
    memory.fill(0xA5);
    auto* array = new (memory.data()) Array();
    EXPECT_TRUE(std::all_of(array->span().begin(), array->span().end(), [](auto byte) { return byte == 0; }));
    std::fill_n(array->data(), kSize, std::uint8_t{0x5A});
    array->~Array();
    EXPECT_TRUE(std::all_of(memory.begin(), memory.end(), [](unsigned char byte) { return byte == 0; }));
}

TEST(Wiping, ScratchEndsWipedAsFarAsItWasUsed) {
    using Scratch = WipingScratch<char16_t, kSize>;
    alignas(Scratch) std::array<unsigned char, sizeof(Scratch)> memory{};
    auto* scratch = new (memory.data()) Scratch();
    std::fill_n(scratch->first(kSize).data(), kSize, u'\xA5A5');
    EXPECT_EQ(scratch->first(2).size(), 2U);
    scratch->~Scratch();
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 0xA5), 0);
}

TEST(Wiping, ScratchLiesOnALineOfTheCache) {
    WipingScratch<char, kSize> bytes;
    WipingScratch<char16_t, kSize> units;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes.first(1).data()) % 64, 0U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(units.first(1).data()) % 64, 0U);
}

TEST(Wiping, MovedBufferLeavesNothingBehind) {
    WipingBuffer first(kSize);
    std::fill_n(first.data(), kSize, std::uint8_t{7});
    const std::uint8_t* memory = first.data();
    WipingBuffer second(std::move(first));
    EXPECT_EQ(second.data(), memory);
    EXPECT_EQ(second.size(), kSize);
    WipingBuffer third(1);
    third = std::move(second);
    EXPECT_EQ(third.data(), memory);
    EXPECT_EQ(third.size(), kSize);
}

TEST(Wiping, BufferOfNothingIsEmpty) { EXPECT_TRUE(WipingBuffer(0).span().empty()); }

}  // namespace
