// SPDX-License-Identifier: Apache-2.0
#pragma once

// How a text becomes the bytes of an AES key.

#include <ZORPlatform/Foundation/Wiping.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ZORFoundation {

/// Current: a text of more than 32 units is cut to 32 and its first byte becomes zero. Legacy: neither.
enum class TextKeyForm : std::uint8_t { kCurrent, kLegacy };

/// What a text that does not fit gives: its beginning, or zeros only, which is what the phones used for most of them.
enum class TextKeyOverflow : std::uint8_t { kKeepsWhatFits, kGivesZeros };

/// Writes the key bytes of `text` to `key`, which holds zeros: the UTF-8 form of the whole scalars that fit, up to a
/// lone surrogate.
void prepareTextKey(std::u16string_view text, TextKeyForm form, std::span<std::uint8_t> key,
                    TextKeyOverflow overflow = TextKeyOverflow::kKeepsWhatFits) noexcept;

/// Key bytes made of a text, wiped at the end.
template <std::size_t KeyBytes>
class TextKey {
public:
    TextKey(std::u16string_view text, TextKeyForm form) noexcept { prepareTextKey(text, form, key_.span()); }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept { return key_.span(); }

private:
    ZORPlatform::WipingArray<std::uint8_t, KeyBytes> key_;
};

}  // namespace ZORFoundation
