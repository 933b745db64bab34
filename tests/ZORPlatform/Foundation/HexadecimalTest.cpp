// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Hexadecimal.h>

#include <gtest/gtest.h>

#include <support/VectorLevels.h>

#include <memory>
#include <numeric>
#include <vector>

namespace ZORPlatform {
namespace {

std::vector<std::uint8_t> everyByte(std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

std::u16string literal(const std::vector<std::uint8_t>& bytes, std::u16string_view digits) {
    std::u16string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

class HexadecimalAtLevel : public testing::TestWithParam<VectorLevel> {};

TEST_P(HexadecimalAtLevel, WritesTheDigitsOfEveryLength) {
    const HexEncoder encode = hexEncoder(GetParam());
    for (std::size_t count = 0; count < 300; ++count) {
        const auto bytes = everyByte(count);
        const auto text = std::make_unique<char16_t[]>(2 * count);  // Exactly sized: a write beyond it is seen.
        encode(bytes.data(), count, HexDigits::kLowerCase, text.get());
        ASSERT_EQ(std::u16string(text.get(), 2 * count), literal(bytes, u"0123456789abcdef"));
        encode(bytes.data(), count, HexDigits::kUpperCase, text.get());
        ASSERT_EQ(std::u16string(text.get(), 2 * count), literal(bytes, u"0123456789ABCDEF"));
    }
}

INSTANTIATE_TEST_SUITE_P(Hexadecimal, HexadecimalAtLevel, testing::ValuesIn(support::vectorLevelsOfThisMachine()));

TEST(Hexadecimal, TextsOfEveryKindOfLengthAreWhole) {
    for (const std::size_t count : {0U, 3U, 4U, 16U, 1023U, 1024U, 1025U, 5000U}) {
        const auto bytes = everyByte(count);
        EXPECT_EQ(hexText(bytes, HexDigits::kLowerCase), literal(bytes, u"0123456789abcdef"));
    }
}

}  // namespace
}  // namespace ZORPlatform
