// SPDX-License-Identifier: Apache-2.0
#pragma once

// How identifiers are taken apart and shown: separators out, then either groups of four, as long as the text lasts, or
// a fixed layout in which missing units are filled up. Everything on the way is in place; only a result is allocated.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace ZORFoundation {

/// U+00A0 NO-BREAK SPACE, the separator of groups in a display.
inline constexpr char16_t kGroupSeparator = u'\u00A0';

/// What is taken out of card numbers and of login codes.
inline constexpr auto isCardNumberSeparator = [](char16_t unit) noexcept {
    return unit == u' ' || unit == kGroupSeparator;
};

/// A text of at most `Capacity` units, in place.
template <std::size_t Capacity>
class ShortText {
public:
    /// The text must not be full.
    constexpr void append(char16_t unit) noexcept { units_[size_++] = unit; }

    /// Appends units of `text` for which `isKept` holds, as many as there is room for.
    template <typename Predicate>
    constexpr void appendKept(std::u16string_view text, Predicate isKept) noexcept {
        std::size_t size = size_;
        for (std::size_t at = 0; at < text.size() && size < Capacity; ++at) {
            // Without a branch on the unit: where separators stand in a text is anybody's guess.
            units_[size] = text[at];
            size += isKept(text[at]) ? 1U : 0U;
        }
        size_ = size;
    }

    [[nodiscard]] constexpr bool isFull() const noexcept { return size_ == Capacity; }
    [[nodiscard]] constexpr std::u16string_view view() const noexcept { return {units_.data(), size_}; }

    /// Copies four units from `begin` on, a multiple of 4 below the capacity. Those behind the end are no units of the
    /// text.
    void copyFour(std::size_t begin, char16_t* to) const noexcept { std::copy_n(&units_[begin], 4, to); }

private:
    std::array<char16_t, (Capacity + 3) / 4 * 4> units_{};
    std::size_t size_ = 0;
};

/// `text` without the units for which `isSeparator` holds.
template <typename Predicate>
[[nodiscard]] std::u16string withoutSeparators(std::u16string_view text, Predicate isSeparator) {
    std::u16string result(text.size(), u'\0');
    std::size_t kept = 0;
    for (const char16_t unit : text) {
        result[kept] = unit;
        kept += isSeparator(unit) ? 0U : 1U;
    }
    result.resize(kept);
    return result;
}

/// The first `Units` units of `text` for which `isSeparator` does not hold.
template <std::size_t Units, typename Predicate>
[[nodiscard]] ShortText<Units> leadingUnits(std::u16string_view text, Predicate isSeparator) noexcept {
    ShortText<Units> units;
    units.appendKept(text, [isSeparator](char16_t unit) { return !isSeparator(unit); });
    return units;
}

/// `units` in groups of four with U+00A0 between them.
template <std::size_t Units>
[[nodiscard]] std::u16string inGroupsOfFour(const ShortText<Units>& units) {
    // Groups are copied whole; the last one may bring units along that do not belong to the text.
    constexpr std::size_t kGroups = (Units + 3) / 4;
    std::array<char16_t, 5 * kGroups> shown;
    const std::size_t count = units.view().size();
    for (std::size_t group = 0; 4 * group < count; ++group) {
        units.copyFour(4 * group, &shown[5 * group]);
        shown[5 * group + 4] = kGroupSeparator;
    }
    return {shown.data(), count == 0 ? 0 : count + (count - 1) / 4};
}

/// `layout` with the units of `units` in place of its marks "#", and `filler` in place of the marks left over.
[[nodiscard]] inline std::u16string inLayout(std::u16string_view units, std::u16string_view layout, char16_t filler) {
    std::u16string shown(layout);
    std::size_t next = 0;
    for (char16_t& unit : shown) {
        if (unit != u'#') continue;
        unit = next < units.size() ? units[next] : filler;
        ++next;
    }
    return shown;
}

}  // namespace ZORFoundation
