// SPDX-License-Identifier: Apache-2.0
#pragma once

// Rules about which characters a text may have and how many. Each rule is a table made at compile time from the
// members of a bracket expression; it finds the first place where a text breaks it, which answers both whether the
// text is valid and why not.

#include <ZORFoundation/ExplanationInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::fourUnits;

/// A set of UTF-16 units, as a regular expression's bracket lists them.
class CharacterClass {
public:
    enum class Case { sensitive, insensitive };

    /// @param members  what stands between "[" and "]": units, ranges, and a backslash before a unit that is meant as
    ///                 itself
    constexpr explicit CharacterClass(std::u16string_view members, Case letters = Case::sensitive) {
        for (std::size_t at = 0; at < members.size();) {
            const char16_t first = literal(members, at);
            char16_t last = first;
            if (at + 1 < members.size() && members[at] == u'-') last = literal(members, ++at);
            for (char32_t unit = first; unit <= last; ++unit) {
                add(static_cast<char16_t>(unit));
                if (letters == Case::insensitive) addOtherCase(static_cast<char16_t>(unit));
            }
        }
    }

    /// This class with further units, each standing for itself.
    [[nodiscard]] constexpr CharacterClass with(std::u16string_view units) const {
        CharacterClass result = *this;
        for (const char16_t unit : units) result.add(unit);
        return result;
    }

    [[nodiscard]] constexpr bool contains(char16_t unit) const noexcept {
        return pages_[pageOf_[unit >> 8]][unit & 0xFF] != 0;
    }

    /// Whether every unit of `text` is a member.
    [[nodiscard]] bool containsAll(std::u16string_view text) const noexcept {
        const std::size_t size = text.size();
        const char16_t* const units = text.data();
        if (size >= 4) {
            // The last four units overlap those before them, so that none is left over.
            for (std::size_t at = 0; at + 4 < size; at += 4) {
                if (!areMembers(fourUnits(units + at))) return false;
            }
            return areMembers(fourUnits(units + size - 4));
        }
        return size == 0 || (contains(units[0]) && contains(units[size / 2]) && contains(units[size - 1]));
    }

    /// The position of the first unit of `text` that is no member, `text.size()` when there is none.
    [[nodiscard]] std::size_t firstOutside(std::u16string_view text) const noexcept {
        std::size_t at = 0;
        while (at + 4 <= text.size() && areMembers(fourUnits(text.data() + at))) at += 4;
        while (at < text.size() && contains(text[at])) ++at;
        return at;
    }

private:
    static constexpr char16_t literal(std::u16string_view members, std::size_t& at) {
        if (members[at] == u'\\') ++at;
        return members[at++];
    }

    constexpr void add(char16_t unit) {
        std::uint8_t& page = pageOf_[unit >> 8];
        if (page == kEmptyPage) page = ++lastPage_;
        pages_[page][unit & 0xFF] = 1;
    }

    // The simple case closure of Latin-1, in which two letters have a third form.
    constexpr void addOtherCase(char16_t unit) {
        const bool isCapital = (unit >= u'A' && unit <= u'Z') || (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7);
        const bool isSmall = (unit >= u'a' && unit <= u'z') || (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7);
        if (isCapital) add(static_cast<char16_t>(unit + 0x20));
        if (isSmall) add(static_cast<char16_t>(unit - 0x20));
        if (unit == u'K' || unit == u'k') add(u'\u212A');
        if (unit == u'S' || unit == u's') add(u'\u017F');
        // The micro sign, sharp s, y with diaeresis and a with ring have partners that no rule needs.
        if (unit == 0xB5 || unit == 0xDF || unit == 0xFF || unit == 0xC5 || unit == 0xE5) throw "not supported";
    }

    [[nodiscard]] bool areMembers(std::uint64_t word) const noexcept {
        if ((word & 0xFF00'FF00'FF00'FF00) == 0) {
            const Page& latin = pages_[kLatinPage];
            return (latin[word & 0xFF] & latin[word >> 16 & 0xFF] & latin[word >> 32 & 0xFF] & latin[word >> 48]) != 0;
        }
        return contains(static_cast<char16_t>(word)) && contains(static_cast<char16_t>(word >> 16)) &&
               contains(static_cast<char16_t>(word >> 32)) && contains(static_cast<char16_t>(word >> 48));
    }

    using Page = std::array<std::uint8_t, 256>;
    static constexpr std::uint8_t kEmptyPage = 0;
    static constexpr std::uint8_t kLatinPage = 1;

    // Which page tells the units with the same upper byte apart. No rule has members in more than four.
    std::array<std::uint8_t, 256> pageOf_{kLatinPage};
    std::array<Page, 5> pages_{};
    std::uint8_t lastPage_ = kLatinPage;
};

/// The first place where a text breaks a rule.
struct Offence {
    BrokenRule rule = BrokenRule::none;
    std::size_t position = 0;
};

/// How many there may be; equal bounds ask for exactly that many.
struct CountBounds {
    static constexpr std::size_t kUnlimited = std::u16string_view::npos - 1;

    std::size_t least;
    std::size_t most;
};

/// The offence of having fewer than `bounds.least`, in a text that ends at `end`.
[[nodiscard]] constexpr Offence tooFew(CountBounds bounds, std::size_t end) noexcept {
    return {bounds.least == bounds.most ? BrokenRule::length : BrokenRule::tooShort, end};
}

/// The offence of having more than `bounds.most`, the first of them at `position`.
[[nodiscard]] constexpr Offence tooMany(CountBounds bounds, std::size_t position) noexcept {
    return {bounds.least == bounds.most ? BrokenRule::length : BrokenRule::tooLong, position};
}

/// Explains `offence`. A length found is what `count` gives for `text`.
template <typename Count>
[[nodiscard]] Explanation explained(std::u16string_view text, Offence offence, CountBounds bounds, const Count& count) {
    switch (offence.rule) {
        case BrokenRule::none:
            return {};
        case BrokenRule::tooShort:
        case BrokenRule::tooLong:
        case BrokenRule::length: {
            const std::size_t expected = offence.rule == BrokenRule::tooShort ? bounds.least : bounds.most;
            return {offence.rule, offence.position, ZORPlatform::characterIndex(text, offence.position), count(text),
                    expected};
        }
        default:
            return brokenAt(offence.rule, text, offence.position);
    }
}

/// A text of members of one class, within bounds. A member is one character as long as all of the text are members.
struct CharacterRule {
    const CharacterClass& members;
    CountBounds bounds;

    [[nodiscard]] Offence offence(std::u16string_view text) const noexcept {
        if (text.empty()) return bounds.least == 0 ? Offence{} : Offence{BrokenRule::empty};
        const std::u16string_view head = text.substr(0, bounds.most + 1);
        const std::size_t outside = members.firstOutside(head);
        if (outside < head.size()) return {BrokenRule::unexpectedCharacter, outside};
        if (head.size() > bounds.most) return tooMany(bounds, bounds.most);
        if (head.size() < bounds.least) return tooFew(bounds, head.size());
        return {};
    }

    /// Whether there is no offence.
    [[nodiscard]] bool allows(std::u16string_view text) const noexcept {
        return text.size() >= bounds.least && text.size() <= bounds.most && members.containsAll(text);
    }

    /// @param count  counts the length of a text in the unit of the bounds
    template <typename Count>
    [[nodiscard]] Explanation explanation(std::u16string_view text, const Count& count) const {
        return explained(text, offence(text), bounds, count);
    }
};

}  // namespace ZORFoundation
