// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Validation/InputValidator.h>

#include <ZORFoundation/CharacterRuleInternal.h>
#include <ZORFoundation/CheckedDigitsInternal.h>
#include <ZORFoundation/ShiftAutomatonInternal.h>
#include <ZORPlatform/Foundation/FourUnitsInternal.h>
#include <ZORPlatform/Foundation/NSException.h>
#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Text.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace ZORFoundation {
namespace {

using ZORPlatform::fourDigitsUnchecked;
using ZORPlatform::fourUnits;
using ZORPlatform::kFourZeros;
using ZORPlatform::nonDigits;

constexpr std::u16string_view kDigits = u"0123456789";

constexpr CharacterClass kLetters(u"a-zA-ZàèìòùáéíóúâêîôûäëïöüçÀÈÌÒÙÁÉÍÓÚÂÊÎÔÛÄËÏÖÜÇ");
constexpr CharacterClass kNameMembers = kLetters.with(u", ’‘`.-");
constexpr CharacterClass kTextMembers = kLetters.with(kDigits).with(u",’‘`.- ");
constexpr CharacterClass kBusinessNameMembers = kLetters.with(kDigits).with(u", '.-()!?:{}#");
constexpr CharacterClass kHouseNumberMembers(u"A-z0-9");
constexpr CharacterClass kFirstOfHouseNumber(u"1-9");
constexpr CharacterClass kPlainBoxNumberMembers(u"A-z 0-9");
constexpr CharacterClass kDigitMembers(u"0-9");

constexpr CharacterRule kName{kNameMembers, {1, CountBounds::kUnlimited}};
constexpr CharacterRule kStreet{kTextMembers, {1, 35}};
constexpr CharacterRule kBusinessName{kBusinessNameMembers, {1, CountBounds::kUnlimited}};
constexpr CharacterRule kHouseNumber{kHouseNumberMembers, {1, 5}};
constexpr CharacterRule kBelgiumPostalCode{kDigitMembers, {4, 4}};
constexpr CharacterRule kPinChar{kDigitMembers, {1, 1}};

constexpr CountBounds kBoxNumberCharacters{1, 9};
constexpr CharacterRule kPlainBoxNumber{kPlainBoxNumberMembers, kBoxNumberCharacters};

constexpr bool isValid(Offence offence) noexcept { return offence.rule == BrokenRule::none; }

Explanation explainedInCharacters(std::u16string_view text, Offence offence, CountBounds bounds) {
    return explained(text, offence, bounds, ZORPlatform::characterCount);
}

// Limits

// The largest bound that a regular expression's repetition takes.
constexpr std::int64_t kMostRepetitions = 16'777'215;

[[noreturn]] void throwImpossible(CharacterLimits limits, std::u16string_view operation) {
    throw ZORPlatform::NSException(u"NSInvalidArgumentException",
                                   std::u16string(operation) + u": no text has from " +
                                       ZORPlatform::decimalText(limits.minChar) + u" to " +
                                       ZORPlatform::decimalText(limits.maxChar) + u" characters");
}

CharacterRule limitedRule(const CharacterClass& members, CharacterLimits limits, std::u16string_view operation) {
    if (limits.minChar < 0 || limits.maxChar < limits.minChar || limits.maxChar > kMostRepetitions) {
        throwImpossible(limits, operation);
    }
    return {members, {static_cast<std::size_t>(limits.minChar), static_cast<std::size_t>(limits.maxChar)}};
}

// An empty text is answered before its limits are looked at.
bool allowsWithin(CharacterLimits limits, const CharacterClass& members, std::u16string_view text,
                  std::u16string_view operation) {
    if (text.empty()) return limits.minChar == 0;
    return limitedRule(members, limits, operation).allows(text);
}

Explanation explainWithin(CharacterLimits limits, const CharacterClass& members, std::u16string_view text,
                          std::u16string_view operation) {
    if (text.empty()) return {limits.minChar == 0 ? BrokenRule::none : BrokenRule::empty};
    return limitedRule(members, limits, operation).explanation(text, ZORPlatform::characterCount);
}

constexpr std::u16string_view kIsValidName = u"isValidName(_:with:)";
constexpr std::u16string_view kIsValidText = u"isValidText(_:with:)";
constexpr std::u16string_view kIsValidPostalCode = u"isValidPostalCode(_:with:)";

// E-mail addresses

namespace email {

using State = ShiftAutomaton::State;

constexpr CharacterClass kLocalMembers(u"A-Z0-9a-z._%+-");
constexpr CharacterClass kDomainMembers(u"A-Za-z0-9.-");
constexpr CharacterClass kLastLabelMembers(u"A-Za-z");
constexpr CharacterRule kLastLabel{kLastLabelMembers, {2, 63}};

constexpr State kStart = ShiftAutomaton::state(1);
constexpr State kLocal = ShiftAutomaton::state(2);
constexpr State kAt = ShiftAutomaton::state(3);         // behind "@"
constexpr State kDomain = ShiftAutomaton::state(4);     // behind what cannot be in the last label
constexpr State kDot = ShiftAutomaton::state(5);        // behind a dot that has a domain before it
constexpr State kOneLetter = ShiftAutomaton::state(6);  // behind such a dot and a letter
constexpr State kLetters = ShiftAutomaton::state(7);    // behind such a dot and two letters or more

constexpr ShiftAutomaton kAutomaton = [] {
    ShiftAutomaton automaton;
    automaton.addStep(kLocalMembers, {kStart, kLocal}, kLocal);
    automaton.addStep(CharacterClass(u"@"), {kLocal}, kAt);
    automaton.addStep(kDomainMembers, {kAt}, kDomain);
    automaton.addStep(CharacterClass(u"0-9-"), {kDomain, kDot, kOneLetter, kLetters}, kDomain);
    automaton.addStep(CharacterClass(u"."), {kDomain, kDot, kOneLetter, kLetters}, kDot);
    automaton.addStep(kLastLabelMembers, {kDomain}, kDomain);
    automaton.addStep(kLastLabelMembers, {kDot}, kOneLetter);
    automaton.addStep(kLastLabelMembers, {kOneLetter, kLetters}, kLetters);
    return automaton;
}();

// Where the last label begins, in an address that has one.
std::size_t lastLabelBegin(std::u16string_view text) noexcept { return text.rfind(u'.') + 1; }

bool isValid(std::u16string_view text) noexcept {
    const ShiftAutomaton::Progress end = kAutomaton.run(text, {kStart}, 0);
    return end.position == text.size() && end.state == kLetters &&
           text.size() - lastLabelBegin(text) <= kLastLabel.bounds.most;
}

// What breaks the rule first in a text that is no address.
Offence offence(std::u16string_view text) noexcept {
    if (text.empty()) return {BrokenRule::empty};
    const std::size_t at = kLocalMembers.firstOutside(text);
    if (at == text.size()) return {BrokenRule::incomplete, at};
    if (text[at] != u'@' || at == 0) return {BrokenRule::unexpectedCharacter, at};

    const std::size_t domain = at + 1;
    const std::size_t outside = domain + kDomainMembers.firstOutside(text.substr(domain));
    if (outside < text.size()) return {BrokenRule::unexpectedCharacter, outside};
    const std::size_t label = lastLabelBegin(text);
    if (label <= domain) return {BrokenRule::incomplete, text.size()};
    if (label == domain + 1) return {BrokenRule::unexpectedCharacter, domain};

    if (label == text.size()) return tooFew(kLastLabel.bounds, label);
    const Offence inLabel = kLastLabel.offence(text.substr(label));
    return {inLabel.rule, label + inLabel.position};
}

}  // namespace email

// Mobile phone numbers

namespace phone {

using State = ShiftAutomaton::State;

constexpr CountBounds kDigitBounds{10, 15};

constexpr State kStart = ShiftAutomaton::state(1);
constexpr State kSigned = ShiftAutomaton::state(2);       // behind "+"
constexpr State kLed = ShiftAutomaton::state(3);          // behind the white space that may precede the digits
constexpr State kDigit = ShiftAutomaton::state(4);        // behind a digit
constexpr State kSpaced = ShiftAutomaton::state(5);       // behind a digit and white space
constexpr State kSeparated = ShiftAutomaton::state(6);    // behind a digit, maybe white space, and a separator
constexpr State kSpacedTwice = ShiftAutomaton::state(7);  // behind a digit and all that may follow one

constexpr std::uint64_t kDigitRow =
    ShiftAutomaton::step({kStart, kSigned, kLed, kDigit, kSpaced, kSeparated, kSpacedTwice}, kDigit) |
    ShiftAutomaton::kCounted;
constexpr std::uint64_t kSpaceRow = ShiftAutomaton::step({kStart, kSigned}, kLed) |
                                    ShiftAutomaton::step({kDigit}, kSpaced) |
                                    ShiftAutomaton::step({kSpaced, kSeparated}, kSpacedTwice);

constexpr ShiftAutomaton kAutomaton = [] {
    ShiftAutomaton automaton;
    for (const char16_t unit : kDigits) automaton.setRow(unit, kDigitRow);
    for (char16_t unit = 0; unit < ShiftAutomaton::kRows; ++unit) {
        if (ZORPlatform::isUnicodeWhiteSpace(unit)) automaton.setRow(unit, kSpaceRow);
    }
    automaton.addStep(CharacterClass(u"\\-/.,"), {kDigit, kSpaced}, kSeparated);
    automaton.addStep(CharacterClass(u"+"), {kStart}, kSigned);
    return automaton;
}();

ShiftAutomaton::Row rowOf(char32_t scalar) noexcept {
    if (scalar < ShiftAutomaton::kRows) return kAutomaton.row(static_cast<char16_t>(scalar));
    if (ZORPlatform::isDecimalDigit(scalar)) return kDigitRow;
    const bool isSpace = scalar < 0x10000 && ZORPlatform::isUnicodeWhiteSpace(static_cast<char16_t>(scalar));
    return isSpace ? kSpaceRow : 0;
}

Offence offence(std::u16string_view text) noexcept {
    if (text.empty()) return {BrokenRule::empty};
    ShiftAutomaton::Progress progress{kStart};
    while (true) {
        progress = kAutomaton.run(text, progress, kDigitBounds.most);
        if (progress.position == text.size()) break;
        const ZORPlatform::ScalarStep next = ZORPlatform::scalarAt(text, progress.position);
        const ShiftAutomaton::Row row = rowOf(next.scalar);
        if (!progress.take(row, next.end - progress.position, kDigitBounds.most)) {
            // A digit is allowed in every state, so one that is refused is one too many.
            const bool isDigit = (row & ShiftAutomaton::kCounted) != 0;
            if (isDigit) return tooMany(kDigitBounds, progress.position);
            return {BrokenRule::unexpectedCharacter, progress.position};
        }
    }
    return progress.counted < kDigitBounds.least ? tooFew(kDigitBounds, text.size()) : Offence{};
}

bool isValid(std::u16string_view text) noexcept {
    const ShiftAutomaton::Progress end = kAutomaton.run(text, {kStart}, kDigitBounds.most);
    if (end.position == text.size()) return end.counted >= kDigitBounds.least;
    return text[end.position] >= ShiftAutomaton::kRows && offence(text).rule == BrokenRule::none;
}

}  // namespace phone

std::size_t decimalDigitCount(std::u16string_view text) noexcept {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(text, at);
        if (ZORPlatform::isDecimalDigit(step.scalar)) ++count;
        at = step.end;
    }
    return count;
}

// Numbers in the layout in which they are typed

struct RegistrationNumber {
    static constexpr std::u16string_view kLayout = u"00.00.00-000.00";
    static constexpr const auto& kCheck = kComplementOfRemainder;
};

struct IDCardNumber {
    static constexpr std::u16string_view kLayout = u"000-0000000-00";
    static constexpr const auto& kCheck = kPlainRemainder;
};

// A number with check digits, typed in a layout with "0" where a digit stands.
template <typename Number>
class TypedNumber {
public:
    static bool isValid(std::u16string_view text) noexcept {
        if (!fits(text, std::make_index_sequence<(kUnits + 3) / 4>())) return false;
        const std::uint64_t number = numberUnchecked(text, std::make_index_sequence<(kDigitCount + 3) / 4>());
        return Number::kCheck(DigitBody<kDigitCount - kCheckDigits>(number / 100),
                              static_cast<std::int32_t>(number % 100));
    }

    static Explanation explanation(std::u16string_view text) {
        return isValid(text) ? Explanation{} : explainedInCharacters(text, offence(text), {kUnits, kUnits});
    }

private:
    static constexpr std::u16string_view kLayout = Number::kLayout;
    static constexpr std::size_t kUnits = kLayout.size();
    static constexpr auto kDigitCount = static_cast<std::size_t>(std::count(kLayout.begin(), kLayout.end(), u'0'));

    static constexpr auto kDigitPlaces = [] {
        std::array<std::size_t, kDigitCount> places{};
        std::size_t digits = 0;
        for (std::size_t at = 0; at < kUnits; ++at) {
            if (kLayout[at] == u'0') places[digits++] = at;
        }
        return places;
    }();

    // Not 0 exactly when one of the four units from `begin` on does not fit.
    template <std::size_t Begin>
    static std::uint64_t misfits(std::u16string_view text) noexcept {
        constexpr std::uint64_t kWanted = fourUnits(kLayout.data() + Begin);
        constexpr std::uint64_t kSeparators = [] {
            std::uint64_t lanes = 0;
            for (std::size_t lane = 0; lane < 4; ++lane) {
                if (kLayout[Begin + lane] != u'0') lanes |= std::uint64_t{0xFFFF} << (16 * lane);
            }
            return lanes;
        }();
        const std::uint64_t word = fourUnits(text.data() + Begin);
        return ((word ^ kWanted) & kSeparators) | nonDigits((word & ~kSeparators) | (kFourZeros & kSeparators));
    }

    // The last four units overlap those before them, so that none is behind the end.
    template <std::size_t... Word>
    static bool fits(std::u16string_view text, std::index_sequence<Word...>) noexcept {
        return text.size() == kUnits && (misfits<std::min(4 * Word, kUnits - 4)>(text) | ...) == 0;
    }

    // Four of the digits, the first word of all beginning with zeros where they are no multiple of four.
    template <std::size_t Word, std::size_t... Lane>
    static std::uint64_t digitWord(std::u16string_view text, std::index_sequence<Lane...>) noexcept {
        constexpr std::size_t kZeros = (4 - kDigitCount % 4) % 4;
        const auto digit = [text](std::size_t place) {
            return std::uint64_t{place < kZeros ? u'0' : text[kDigitPlaces[place - kZeros]]};
        };
        return ((digit(4 * Word + Lane) << (16 * Lane)) | ...);
    }

    template <std::size_t... Word>
    static std::uint64_t numberUnchecked(std::u16string_view text, std::index_sequence<Word...>) noexcept {
        std::uint64_t number = 0;
        ((number = number * 10'000 + fourDigitsUnchecked(digitWord<Word>(text, std::make_index_sequence<4>()))), ...);
        return number;
    }

    // What breaks the rule first in a text that is not valid. Digits of other scripts are unexpected: the layout alone
    // would take them, the check of the number does not.
    static Offence offence(std::u16string_view text) noexcept {
        if (text.empty()) return {BrokenRule::empty};
        const std::size_t common = std::min(kUnits, text.size());
        for (std::size_t at = 0; at < common; ++at) {
            const bool fitsHere = kLayout[at] == u'0' ? kDigitMembers.contains(text[at]) : text[at] == kLayout[at];
            if (!fitsHere) return {BrokenRule::unexpectedCharacter, at};
        }
        if (text.size() != kUnits) return {BrokenRule::length, common};
        return {BrokenRule::checkDigits, kUnits - kCheckDigits};
    }
};

// Box and house numbers

Offence boxNumberOffence(std::u16string_view text) noexcept {
    if (text.empty()) return {BrokenRule::empty};
    // Each allowed code point is a character of its own.
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) {
        std::size_t next = at + 1;
        if (!kPlainBoxNumberMembers.contains(text[at])) {
            const ZORPlatform::ScalarStep step = ZORPlatform::scalarAt(text, at);
            if (!ZORPlatform::isDecimalDigit(step.scalar)) return {BrokenRule::unexpectedCharacter, at};
            next = step.end;
        }
        if (count == kBoxNumberCharacters.most) return tooMany(kBoxNumberCharacters, at);
        at = next;
    }
    return {};
}

Offence houseNumberOffence(std::u16string_view text) noexcept {
    if (!text.empty() && !kFirstOfHouseNumber.contains(text[0])) return {BrokenRule::unexpectedCharacter, 0};
    return kHouseNumber.offence(text);
}

}  // namespace

bool InputValidator::isValidEmail(std::u16string_view text) noexcept { return email::isValid(text); }

bool InputValidator::isValidMobilePhoneNumber(std::u16string_view text) noexcept { return phone::isValid(text); }

bool InputValidator::isValidBoxNumber(std::u16string_view text) noexcept {
    return kPlainBoxNumber.allows(text) || isValid(boxNumberOffence(text));
}

bool InputValidator::isValidHouseNumber(std::u16string_view text) noexcept {
    return kHouseNumber.allows(text) && kFirstOfHouseNumber.contains(text[0]);
}

bool InputValidator::isValidStreet(std::u16string_view text) noexcept { return kStreet.allows(text); }

bool InputValidator::isValidName(std::u16string_view text) noexcept { return kName.allows(text); }

bool InputValidator::isValidName(std::u16string_view text, CharacterLimits with) {
    return allowsWithin(with, kNameMembers, text, kIsValidName);
}

bool InputValidator::isValidText(std::u16string_view text, CharacterLimits with) {
    return allowsWithin(with, kTextMembers, text, kIsValidText);
}

bool InputValidator::isValidPostalCode(std::u16string_view text, CharacterLimits with) {
    return allowsWithin(with, kTextMembers, text, kIsValidPostalCode);
}

bool InputValidator::isValidBelgiumPostalCode(std::u16string_view text) noexcept {
    return kBelgiumPostalCode.allows(text);
}

bool InputValidator::isValidBusinessName(std::u16string_view text) noexcept { return kBusinessName.allows(text); }

bool InputValidator::isValidPinChar(std::u16string_view text) noexcept {
    return text.size() == 1 && kDigitMembers.contains(text[0]);
}

bool InputValidator::isValidNationalRegistrationNumber(std::u16string_view text) noexcept {
    return TypedNumber<RegistrationNumber>::isValid(text);
}

bool InputValidator::isValidIDCardNumber(std::u16string_view text) noexcept {
    return TypedNumber<IDCardNumber>::isValid(text);
}

Explanation InputValidator::explainEmail(std::u16string_view text) {
    if (email::isValid(text)) return {};
    return explained(text, email::offence(text), email::kLastLabel.bounds,
                     [](std::u16string_view address) { return address.size() - email::lastLabelBegin(address); });
}

Explanation InputValidator::explainMobilePhoneNumber(std::u16string_view text) {
    return explained(text, phone::offence(text), phone::kDigitBounds, decimalDigitCount);
}

Explanation InputValidator::explainBoxNumber(std::u16string_view text) {
    return explainedInCharacters(text, boxNumberOffence(text), kBoxNumberCharacters);
}

Explanation InputValidator::explainHouseNumber(std::u16string_view text) {
    return explainedInCharacters(text, houseNumberOffence(text), kHouseNumber.bounds);
}

Explanation InputValidator::explainStreet(std::u16string_view text) {
    return kStreet.explanation(text, ZORPlatform::characterCount);
}

Explanation InputValidator::explainName(std::u16string_view text) {
    return kName.explanation(text, ZORPlatform::characterCount);
}

Explanation InputValidator::explainName(std::u16string_view text, CharacterLimits with) {
    return explainWithin(with, kNameMembers, text, kIsValidName);
}

Explanation InputValidator::explainText(std::u16string_view text, CharacterLimits with) {
    return explainWithin(with, kTextMembers, text, kIsValidText);
}

Explanation InputValidator::explainPostalCode(std::u16string_view text, CharacterLimits with) {
    return explainWithin(with, kTextMembers, text, kIsValidPostalCode);
}

Explanation InputValidator::explainBelgiumPostalCode(std::u16string_view text) {
    return kBelgiumPostalCode.explanation(text, ZORPlatform::characterCount);
}

Explanation InputValidator::explainBusinessName(std::u16string_view text) {
    return kBusinessName.explanation(text, ZORPlatform::characterCount);
}

Explanation InputValidator::explainPinChar(std::u16string_view text) {
    return kPinChar.explanation(text, ZORPlatform::characterCount);
}

Explanation InputValidator::explainNationalRegistrationNumber(std::u16string_view text) {
    return TypedNumber<RegistrationNumber>::explanation(text);
}

Explanation InputValidator::explainIDCardNumber(std::u16string_view text) {
    return TypedNumber<IDCardNumber>::explanation(text);
}

}  // namespace ZORFoundation
