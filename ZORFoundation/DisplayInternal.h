// SPDX-License-Identifier: Apache-2.0
#pragma once

// How identifiers are taken apart and shown: separators out, then either groups of four, as long as the text lasts, or
// a fixed layout in which missing units are filled up. Everything on the way is in place; only a result is allocated,
// and it is made with a copy of a size known when compiled, which takes no call.

#include <ZORPlatform/Foundation/FourUnitsInternal.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace ZORFoundation {

using ZORPlatform::areFromZeroInAscii;
using ZORPlatform::fourUnits;
using ZORPlatform::inEveryLane;
using ZORPlatform::storeFourUnits;

/// U+00A0 NO-BREAK SPACE, the separator of groups in a display.
inline constexpr char16_t kGroupSeparator = u'\u00A0';

/// What is taken out of card numbers and of login codes.
inline constexpr auto isCardNumberSeparator = [](char16_t unit) noexcept {
    return (unit == u' ') | (unit == kGroupSeparator);
};

/// Copies the units of `text` for which `isSeparator` does not hold, until there are `most` of them or a few more.
///
/// @param to  room for as many units as `text` has, or for `most` and three more. It may be where `text` is
/// @return the number of units copied
template <typename Predicate>
constexpr std::size_t copyWithoutSeparators(std::u16string_view text, char16_t* to, std::size_t most,
                                            Predicate isSeparator) noexcept {
    static_assert(
        [] {
            for (char16_t unit = u'0'; unit < 0x80; ++unit) {
                if (Predicate()(unit)) return false;
            }
            return true;
        }(),
        "letters and digits of ASCII are copied unseen");
    const char16_t* const units = text.data();
    const std::size_t size = text.size();
    std::size_t at = 0;
    std::size_t copied = 0;
    const auto copyOne = [&](char16_t unit) {
        // Without a branch on the unit: where separators stand in a text is anybody's guess.
        to[copied] = unit;
        copied += isSeparator(unit) ? 0U : 1U;
    };
    while (at + 4 <= size && copied < most) {
        if (const std::uint64_t word = fourUnits(units + at); areFromZeroInAscii(word)) {
            storeFourUnits(word, to + copied);
            at += 4;
            copied += 4;
            // A separator behind four units is the rule in what people type.
            if (at < size && isSeparator(units[at])) ++at;
        } else {
            for (const std::size_t end = at + 4; at < end; ++at) copyOne(units[at]);
        }
    }
    for (; at < size && copied < most; ++at) copyOne(units[at]);
    return copied;
}

/// `text` without the units for which `isSeparator` holds.
template <typename Predicate>
[[nodiscard]] std::u16string withoutSeparators(std::u16string_view text, Predicate isSeparator) {
    // Made as a copy because nothing else makes a text of a given size faster.
    std::u16string result(text);
    result.resize(copyWithoutSeparators(text, result.data(), text.size(), isSeparator));
    return result;
}

/// A text of at most `Capacity` units, in place. Behind its units stand fillers.
template <std::size_t Capacity, char16_t Filler>
class ShortText {
public:
    constexpr ShortText() noexcept = default;

    /// @param copy  writes units to the place that it is given, until there are as many as it is given or up to three
    ///              more, and answers how many there are; the surplus is cut off
    template <typename Copy>
    constexpr explicit ShortText(Copy copy) noexcept : ShortText() {
        size_ = std::min<std::size_t>(copy(units_.data(), Capacity), Capacity);
        // The copy may have left up to four others there.
        storeFourUnits(inEveryLane(Filler), &units_[size_]);
    }

    /// The text must not be full.
    constexpr void append(char16_t unit) noexcept { units_[size_++] = unit; }

    [[nodiscard]] constexpr std::u16string_view view() const noexcept { return {units_.data(), size_}; }

    /// All units and fillers.
    [[nodiscard]] constexpr const char16_t* data() const noexcept { return units_.data(); }

private:
    using Units = std::array<char16_t, Capacity + 4>;

    // Copied whole, which takes less than to fill.
    static constexpr Units kFillers = [] {
        Units units{};
        units.fill(Filler);
        return units;
    }();

    Units units_ = kFillers;
    std::size_t size_ = 0;
};

/// The first `Units` units of `text` for which `isSeparator` does not hold.
template <std::size_t Units, char16_t Filler = u'0', typename Predicate>
[[nodiscard]] ShortText<Units, Filler> leadingUnits(std::u16string_view text, Predicate isSeparator) noexcept {
    return ShortText<Units, Filler>([text, isSeparator](char16_t* to, std::size_t most) noexcept {
        return copyWithoutSeparators(text, to, most, isSeparator);
    });
}

/// `Groups` groups of four and the separators between them, for units to be written over: as many groups as `units`
/// fill, at most `Groups`.
template <std::size_t Groups>
[[nodiscard]] std::u16string roomForGroupsOfFour(std::size_t units) {
    if constexpr (Groups > 1) {
        if (units <= 4 * (Groups - 1)) return roomForGroupsOfFour<Groups - 1>(units);
    }
    static constexpr auto kRoom = [] {
        std::array<char16_t, 5 * Groups - 1> room{};
        room.fill(kGroupSeparator);
        return room;
    }();
    return {kRoom.data(), kRoom.size()};
}

/// `units` in groups of four with U+00A0 between them.
///
/// @param shownAs  gives what stands for four units, each by itself
template <std::size_t Units, char16_t Filler, typename Change = std::identity>
[[nodiscard]] std::u16string inGroupsOfFour(const ShortText<Units, Filler>& units, Change shownAs = {}) {
    const std::size_t count = units.view().size();
    if (count == 0) return {};
    // Groups are copied whole; what the last one brings along is cut off.
    std::u16string shown = roomForGroupsOfFour<(Units + 3) / 4>(count);
    for (std::size_t group = 0; 4 * group < count; ++group) {
        storeFourUnits(shownAs(fourUnits(units.data() + 4 * group)), shown.data() + 5 * group);
    }
    shown.resize(count + (count - 1) / 4);
    return shown;
}

/// `Layout::kText` with the units of `units`, then its fillers, in place of the marks "#".
template <typename Layout, std::size_t Units, char16_t Filler>
[[nodiscard]] std::u16string inLayout(const ShortText<Units, Filler>& units) {
    static constexpr std::u16string_view kText = Layout::kText;
    static_assert(std::count(kText.begin(), kText.end(), u'#') == Units);
    static constexpr auto kPlaces = [] {
        std::array<std::size_t, Units> places{};
        std::size_t mark = 0;
        for (std::size_t at = 0; at < kText.size(); ++at) {
            if (kText[at] == u'#') places[mark++] = at;
        }
        return places;
    }();
    std::u16string shown(kText.data(), kText.size());
    // Written out, so that neighbours are copied together.
    [ to = shown.data(), from = units.data() ]<std::size_t... Unit>(std::index_sequence<Unit...>) {
        ((to[kPlaces[Unit]] = from[Unit]), ...);
    }
    (std::make_index_sequence<Units>());
    return shown;
}

}  // namespace ZORFoundation
