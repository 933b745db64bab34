// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringPatterns.h>

#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

namespace ZORFoundation::StringExtension {
namespace {

// Whether a unit is a character of its own beside others of the kind.
constexpr bool standsAlone(char16_t unit) noexcept { return unit < ZORPlatform::kFirstCombining && unit != u'\r'; }

// The characters of a text as they are once its spaces are gone.
class CharactersWithoutSpaces {
public:
    explicit CharactersWithoutSpaces(std::u16string_view text) noexcept : rest_(text) { skipSpaces(); }
    CharactersWithoutSpaces(const CharactersWithoutSpaces&) = delete;
    CharactersWithoutSpaces& operator=(const CharactersWithoutSpaces&) = delete;

    [[nodiscard]] bool isEmpty() const noexcept { return rest_.empty(); }

    /// The next character; lives as long as this object and the text.
    [[nodiscard]] std::u16string_view next() {
        if (rest_.size() > 1 && standsAlone(rest_[0]) && standsAlone(rest_[1]) && rest_[1] != u' ') return taken(1);
        std::size_t end = ZORPlatform::characterEnd(rest_, 0);
        if (aSpaceKeepsMoreFromJoining(end)) {
            removeSpaces();
            end = ZORPlatform::characterEnd(rest_, 0);
        }
        const std::u16string_view character = taken(end);
        skipSpaces();
        return character;
    }

private:
    std::u16string_view taken(std::size_t units) noexcept {
        const std::u16string_view result = rest_.substr(0, units);
        rest_.remove_prefix(units);
        return result;
    }

    void skipSpaces() noexcept { rest_.remove_prefix(std::min(rest_.find_first_not_of(u' '), rest_.size())); }

    // Whether the character that ends at `end` might be a longer one without the spaces in it or behind it.
    [[nodiscard]] bool aSpaceKeepsMoreFromJoining(std::size_t end) const noexcept {
        const std::size_t space = rest_.substr(0, end + 2).find(u' ');
        if (space == std::u16string_view::npos) return false;
        if (space < end) return true;
        const std::size_t behind = rest_.find_first_not_of(u' ', space);
        if (behind == std::u16string_view::npos) return false;
        // Of ASCII, only LF ever belongs to what stands before it.
        if (space == end) return rest_[behind] >= 0x80 || rest_[behind] == u'\n';
        // Half a surrogate pair, whose other half the space keeps away.
        return rest_[end] >= 0xD800 && rest_[end] < 0xDC00;
    }

    void removeSpaces() {
        std::remove_copy(rest_.begin(), rest_.end(), std::back_inserter(withoutSpaces_), u' ');
        rest_ = withoutSpaces_;
    }

    std::u16string withoutSpaces_;  // What rest_ views once removeSpaces() has run, which it does at most once.
    std::u16string_view rest_;
};

// Lays `text` into `shown`, which holds `pattern`, where every character is one unit: literals stand in their places
// already.
//
// @param text  has a unit that is no space
// @return how many units of `shown` are laid out; none where a character might be of several units
std::optional<std::size_t> layOutUnits(std::u16string_view text, std::u16string_view pattern, char16_t mark,
                                       char16_t* shown) noexcept {
    const auto nextFrom = [text](std::size_t at) {
        while (at < text.size() && text[at] == u' ') ++at;
        return at;
    };
    std::size_t next = nextFrom(0);
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        if (!standsAlone(pattern[at])) return std::nullopt;
        if (pattern[at] != mark) continue;
        if (!standsAlone(text[next])) return std::nullopt;
        shown[at] = text[next];
        next = nextFrom(next + 1);
        if (next == text.size()) {
            const std::size_t end = at + 1;
            return end == pattern.size() || standsAlone(pattern[end]) ? std::optional(end) : std::nullopt;
        }
    }
    return standsAlone(text[next]) ? std::optional(pattern.size()) : std::nullopt;
}

}  // namespace

std::u16string formatTextWithPattern(std::u16string_view text, std::u16string_view pattern,
                                     std::u16string_view formattingCharacter) {
    CharactersWithoutSpaces characters(text);
    if (characters.isEmpty() || pattern.empty()) return std::u16string(text);

    std::u16string result;
    // Room for characters of two units in every slot.
    result.reserve(pattern.size() + std::min(pattern.size(), text.size()));
    if (formattingCharacter.size() == 1 && formattingCharacter[0] < ZORPlatform::kFirstDecomposable) {
        result.append(pattern);
        const auto units = layOutUnits(text, pattern, formattingCharacter[0], result.data());
        result.resize(units.value_or(0));
        if (units) return result;
    }
    while (!pattern.empty() && !characters.isEmpty()) {
        const std::u16string_view mark = pattern.substr(0, ZORPlatform::characterEnd(pattern, 0));
        result += ZORPlatform::canonicallyEqual(mark, formattingCharacter) ? characters.next() : mark;
        pattern.remove_prefix(mark.size());
    }
    return result;
}

}  // namespace ZORFoundation::StringExtension
