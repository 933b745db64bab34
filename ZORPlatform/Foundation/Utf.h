// SPDX-License-Identifier: Apache-2.0
#pragma once

// The edge between UTF-8 and the UTF-16 text that every operation takes. Positions and lengths in the library are
// UTF-16 code units, so text is converted once, where it comes in.
//
//     ZORFoundation::Utf16Buffer<64> number("BE68539007547034");      // no allocation up to 64 units
//     bool valid = ZORFoundation::ZORAccountNumberValidator::isValidIban(number);
//     std::string shown =
//     ZORFoundation::utf8(ZORFoundation::ZORAccountNumberFormatter::formattedAccountNumberAsIban(number));

#include <ZORPlatform/Export.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ZORPlatform {

/// Converts UTF-8 to UTF-16. Each ill-formed sequence (its maximal valid beginning, as Unicode, chapter 3.9,
/// recommends) becomes one U+FFFD. Pure.
[[nodiscard]] ZOR_EXPORT std::u16string utf16(std::string_view bytes);

/// Converts UTF-8 to UTF-16, or answers `std::nullopt` when `bytes` is ill-formed. Pure.
[[nodiscard]] ZOR_EXPORT std::optional<std::u16string> utf16IfWellFormed(std::string_view bytes);

/// Converts UTF-16 to UTF-8. Each lone surrogate becomes U+FFFD. Pure.
[[nodiscard]] ZOR_EXPORT std::string utf8(std::u16string_view text);

/// Converts UTF-16 to UTF-8, or answers `std::nullopt` when `text` holds a lone surrogate. Pure.
[[nodiscard]] ZOR_EXPORT std::optional<std::string> utf8IfWellFormed(std::u16string_view text);

/// The beginning of `text` up to, not including, its first lone surrogate. Pure.
[[nodiscard]] std::u16string_view wellFormedPrefix(std::u16string_view text) noexcept;

/// How far a conversion into a buffer went.
struct Utf8Prefix {
    std::size_t units;  ///< UTF-16 units read
    std::size_t bytes;  ///< bytes written
};

/// Converts the beginning of `text`, as many whole scalars as fit, to UTF-8 in a buffer of the caller's. Each lone
/// surrogate becomes U+FFFD. A buffer of four bytes or more always takes at least one scalar. Pure.
[[nodiscard]] Utf8Prefix utf8Prefix(std::u16string_view text, std::span<char> buffer) noexcept;

/// Whether `bytes` is well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF). The
/// empty text is. Pure.
[[nodiscard]] ZOR_EXPORT bool isWellFormedUtf8(std::string_view bytes) noexcept;

/// Converts like `utf16(bytes)` into a buffer of the caller's.
///
/// @param buffer  room for at least `bytes.size()` units: no UTF-8 text needs more
/// @return the number of units written
ZOR_EXPORT std::size_t utf16Unchecked(std::string_view bytes, char16_t* buffer) noexcept;

/// UTF-8 text as UTF-16, in place for texts of at most `Units` bytes and on the heap for longer ones. Ill-formed
/// sequences become U+FFFD. Converts to `std::u16string_view`; the view lives as long as the buffer.
template <std::size_t Units>
class Utf16Buffer {
public:
    explicit Utf16Buffer(std::string_view bytes) {
        char16_t* units = inline_.data();
        if (bytes.size() > Units) {
            heap_ = std::make_unique_for_overwrite<char16_t[]>(bytes.size());
            units = heap_.get();
        }
        size_ = utf16Unchecked(bytes, units);
    }
    Utf16Buffer(const Utf16Buffer&) = delete;
    Utf16Buffer& operator=(const Utf16Buffer&) = delete;

    [[nodiscard]] std::u16string_view view() const noexcept { return {heap_ ? heap_.get() : inline_.data(), size_}; }
    operator std::u16string_view() const noexcept { return view(); }

private:
    std::unique_ptr<char16_t[]> heap_;
    std::size_t size_ = 0;
    std::array<char16_t, Units> inline_;  // Only the first size_ units are ever read, so it starts unset.
};

}  // namespace ZORPlatform
