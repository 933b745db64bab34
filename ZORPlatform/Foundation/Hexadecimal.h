// SPDX-License-Identifier: Apache-2.0
#pragma once

// Bytes as hexadecimal digits, two a byte, high half first.

#include <ZORPlatform/Foundation/VectorLevel.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace ZORPlatform {

enum class HexDigits : std::uint8_t { kLowerCase, kUpperCase };

/// The digits of `bytes` as a text of twice their number. Pure.
[[nodiscard]] std::u16string hexText(std::span<const std::uint8_t> bytes, HexDigits digits);

/// Writes the digits of `count` bytes to `text`, which has room for twice as many units.
using HexEncoder = void (*)(const std::uint8_t* bytes, std::size_t count, HexDigits digits, char16_t* text);

/// The encoder that uses no more than `level`, which must not be above the machine's.
[[nodiscard]] HexEncoder hexEncoder(VectorLevel level) noexcept;

}  // namespace ZORPlatform
