// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Text.h>

#include <ZORPlatform/Foundation/CharacterClassesInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace ZORPlatform {
namespace {

// What a scalar is to the rules: a letter of the table.
enum class CharacterClass : char {
    other = 'O',
    carriageReturn = 'R',
    lineFeed = 'N',
    control = 'C',
    prepend = 'P',
    flag = 'F',        // Regional indicators: two make a flag.
    pictograph = 'X',  // What a joiner joins.
    consonant = 'K',   // Of the scripts whose consonants a virama links.
    virama = 'J',
    mark = 'M',    // Extends, and may stand between consonant and virama.
    extend = 'E',  // Extends.
    joiner = 'Z',
    spacingMark = 'S',
    leading = 'L',  // Hangul, as it is put together, and whole syllables.
    vowel = 'V',
    trailing = 'T',
    syllableOfTwo = 'A',
    syllableOfThree = 'B',
    syllable = 'H',  // Either, by its number.
};

constexpr std::array kClasses{
    CharacterClass::other,       CharacterClass::carriageReturn, CharacterClass::lineFeed,
    CharacterClass::control,     CharacterClass::prepend,        CharacterClass::flag,
    CharacterClass::pictograph,  CharacterClass::consonant,      CharacterClass::virama,
    CharacterClass::mark,        CharacterClass::extend,         CharacterClass::joiner,
    CharacterClass::spacingMark, CharacterClass::leading,        CharacterClass::vowel,
    CharacterClass::trailing,    CharacterClass::syllableOfTwo,  CharacterClass::syllableOfThree};

CharacterClass characterClass(char32_t scalar) noexcept {
    if (scalar < 0x20000) {
        const unsigned block = kClassBlockOfRun[scalar / kScalarsPerBlock];
        const char letter = kClassBlocks[block * kScalarsPerBlock + scalar % kScalarsPerBlock];
        if (letter != static_cast<char>(CharacterClass::syllable)) return CharacterClass{letter};
        constexpr unsigned kTrailingPerVowel = 28;
        return (scalar - 0xAC00) % kTrailingPerVowel == 0 ? CharacterClass::syllableOfTwo
                                                          : CharacterClass::syllableOfThree;
    }
    if (scalar < 0xE0000 || scalar >= 0xE1000) return CharacterClass::other;
    const bool extends = (scalar >= 0xE0020 && scalar < 0xE0080) || (scalar >= 0xE0100 && scalar < 0xE01F0);
    return extends ? CharacterClass::extend : CharacterClass::control;
}

// What has been read of a character, as far as it decides whether the next scalar joins it.
enum class State : std::uint8_t {
    separate,  // Nothing joins: the text's beginning, a control.
    other,
    carriageReturn,
    prepend,
    firstOfFlag,
    pictograph,
    joinedPictograph,
    consonant,
    linkedConsonant,
    leading,
    vowel,
    trailing,
};
constexpr unsigned kStates = 12;

constexpr bool isVowelState(CharacterClass next) {
    return next == CharacterClass::vowel || next == CharacterClass::syllableOfTwo;
}

// Whether a scalar of class `next` belongs to the character: Annex 29, GB3 to GB13, and CLDR's rule for linked
// consonants.
constexpr bool joins(State state, CharacterClass next) {
    if (state == State::carriageReturn) return next == CharacterClass::lineFeed;
    if (state == State::separate) return false;
    switch (next) {
        case CharacterClass::carriageReturn:
        case CharacterClass::lineFeed:
        case CharacterClass::control:
            return false;
        case CharacterClass::virama:
        case CharacterClass::mark:
        case CharacterClass::extend:
        case CharacterClass::joiner:
        case CharacterClass::spacingMark:
            return true;
        default:
            break;
    }
    switch (state) {
        case State::prepend:
            return true;
        case State::firstOfFlag:
            return next == CharacterClass::flag;
        case State::joinedPictograph:
            return next == CharacterClass::pictograph;
        case State::linkedConsonant:
            return next == CharacterClass::consonant;
        case State::leading:
            return next == CharacterClass::leading || isVowelState(next) || next == CharacterClass::syllableOfThree;
        case State::vowel:
            return next == CharacterClass::vowel || next == CharacterClass::trailing;
        case State::trailing:
            return next == CharacterClass::trailing;
        default:
            return false;
    }
}

constexpr State stateBehind(State state, CharacterClass next) {
    switch (next) {
        case CharacterClass::carriageReturn:
            return State::carriageReturn;
        case CharacterClass::lineFeed:
        case CharacterClass::control:
            return State::separate;
        case CharacterClass::prepend:
            return State::prepend;
        case CharacterClass::flag:
            return state == State::firstOfFlag ? State::other : State::firstOfFlag;
        case CharacterClass::pictograph:
            return State::pictograph;
        case CharacterClass::consonant:
            return State::consonant;
        case CharacterClass::leading:
            return State::leading;
        case CharacterClass::vowel:
        case CharacterClass::syllableOfTwo:
            return State::vowel;
        case CharacterClass::trailing:
        case CharacterClass::syllableOfThree:
            return State::trailing;
        case CharacterClass::joiner:
            if (state == State::pictograph) return State::joinedPictograph;
            [[fallthrough]];
        case CharacterClass::mark:
            if (state == State::consonant || state == State::linkedConsonant) return state;
            break;
        case CharacterClass::virama:
            if (state == State::consonant || state == State::linkedConsonant) return State::linkedConsonant;
            break;
        default:
            break;
    }
    const bool extends =
        next == CharacterClass::extend || next == CharacterClass::mark || next == CharacterClass::virama;
    return extends && state == State::pictograph ? state : State::other;
}

// The automaton of the two functions above: for each class a row of five bits a state, the state behind a scalar of
// that class and, as the highest bit, whether a character begins with it. Rows do not depend on the state, so they are
// fetched ahead, and a step waits for nothing but a shift.
constexpr unsigned kFieldBits = 5;
constexpr unsigned kStateMask = 15;
constexpr unsigned kBegins = 16;
static_assert(kStates * kFieldBits <= 64 && kStates <= kStateMask + 1);

constexpr std::size_t rowOf(CharacterClass which) { return static_cast<unsigned char>(which) % 32; }

constexpr std::array<std::uint64_t, 32> kRows = [] {
    std::array<std::uint64_t, 32> rows{};
    for (const CharacterClass next : kClasses) {
        for (unsigned number = 0; number < kStates; ++number) {
            const State state{static_cast<std::uint8_t>(number)};
            const unsigned behind = static_cast<unsigned>(stateBehind(state, next));
            const std::uint64_t field = behind | (joins(state, next) ? 0 : kBegins);
            rows[rowOf(next)] |= field << (number * kFieldBits);
        }
    }
    return rows;
}();

// Reads scalars from where a character begins.
class Segmenter {
public:
    /// Whether a character begins with this scalar: 1 or 0.
    std::size_t begins(char32_t scalar) noexcept {
        const std::uint64_t field = kRows[rowOf(characterClass(scalar))] >> (state_ * kFieldBits);
        state_ = static_cast<unsigned>(field) & kStateMask;
        return static_cast<std::size_t>(field / kBegins) & 1;
    }

private:
    unsigned state_ = static_cast<unsigned>(State::separate);
};

// Units that are looked at together.
constexpr std::size_t kBlockUnits = 8;

// Whether every unit of the block is a character of its own beside others of the kind: below U+0300, and no CR, which
// might take a LF along.
bool isPlainBlock(const char16_t* units) noexcept {
    const std::uint64_t first = fourUnits(units);
    const std::uint64_t second = fourUnits(units + 4);
    const auto withoutCR = [](std::uint64_t word) { return lanesFrom(word ^ inEveryLane(u'\r'), 1); };
    return (lanesFrom(first, kFirstCombining) | lanesFrom(second, kFirstCombining)) == 0 &&
           (withoutCR(first) & withoutCR(second)) == kHighestBits;
}

struct Found {
    std::size_t position;
    std::size_t charactersBefore;
};

// Where character number `index` begins, or the end of the text when it has fewer.
Found findCharacter(std::u16string_view text, std::size_t index) noexcept {
    Segmenter segmenter;
    std::size_t count = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t plain = at;
        while (text.size() - plain >= kBlockUnits && index - count - (plain - at) >= kBlockUnits &&
               isPlainBlock(&text[plain])) {
            plain += kBlockUnits;
        }
        if (plain > at) {
            // Only the first unit of them may belong to what is before it.
            count += segmenter.begins(text[at]) + (plain - at - 1);
            segmenter = {};
            (void)segmenter.begins(text[plain - 1]);
            at = plain;
        }
        const std::size_t end = std::min(at + kBlockUnits, text.size());
        while (at < end) {
            const ScalarStep step = scalarAt(text, at);
            if (segmenter.begins(step.scalar) != 0) {
                if (count == index) return {at, count};
                ++count;
            }
            at = step.end;
        }
    }
    return {text.size(), count};
}

}  // namespace

std::size_t characterEndByRules(std::u16string_view text, std::size_t begin) {
    Segmenter segmenter;
    for (std::size_t at = begin; at < text.size();) {
        const ScalarStep step = scalarAt(text, at);
        if (segmenter.begins(step.scalar) != 0 && at > begin) return at;
        at = step.end;
    }
    return text.size();
}

std::size_t characterCount(std::u16string_view text) {
    return findCharacter(text, std::numeric_limits<std::size_t>::max()).charactersBefore;
}

std::optional<std::size_t> characterPosition(std::u16string_view text, std::size_t index) {
    if (index == 0) return 0;
    const Found found = findCharacter(text, index);
    return found.charactersBefore == index ? std::optional(found.position) : std::nullopt;
}

std::size_t characterIndex(std::u16string_view text, std::size_t position) {
    if (position == text.size()) return characterCount(text);
    // The character that holds the unit is the last that begins before the end of its scalar.
    return characterCount(text.substr(0, scalarAt(text, position).end)) - 1;
}

}  // namespace ZORPlatform
