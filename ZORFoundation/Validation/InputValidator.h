// SPDX-License-Identifier: Apache-2.0
#pragma once

// Whether a text that a customer typed is fit to be sent to the bank. Each rule looks at the whole text, as typed:
// nothing is stripped or trimmed. Lengths are user-perceived characters.
//
//     InputValidator::isValidEmail(u"jan@zor.be");                               // true
//     InputValidator::isValidName(u"Jean-Pierre", CharacterLimits{2, 30});       // true
//     InputValidator::explainHouseNumber(u"012A").rule;                          // BrokenRule::unexpectedCharacter
//
// Each rule has an explaining twin, which answers `BrokenRule::none` exactly when the rule answers true. Where several
// places of a text break a rule, the first is reported; a length that is too great is broken by the first character too
// many, one that is too small at the end of the text.

#include <ZORFoundation/Explanation.h>
#include <ZORPlatform/Export.h>

#include <cstdint>
#include <string_view>

namespace ZORFoundation {

/// How many characters a text may have, both bounds included.
struct CharacterLimits {
    std::int64_t minChar;
    std::int64_t maxChar;
};

/// Validates typed input. All operations are pure and may be called from any thread. The boolean ones take one step a
/// unit and allocate nothing.
///
/// "Letters" are a to z, A to Z and àèìòùáéíóúâêîôûäëïöüç in both cases, as precomposed characters: a letter written
/// with a combining mark is not allowed. "Digits" are ASCII digits unless it is said otherwise.
class InputValidator {
public:
    InputValidator() = delete;

    /// `isValidEmail(_:)`
    ///
    /// Whether `text` is one or more ASCII letters, digits or "._%+-", then "@", then a domain of one or more ASCII
    /// letters, digits, "." or "-", then "." and a last label of 2 to 63 ASCII letters. Dots may stand side by side.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidEmail(std::u16string_view text) noexcept;

    /// `isValidMobilePhoneNumber(_:)`
    ///
    /// Whether `text` is 10 to 15 digits of any script (general category Nd), with an optional "+" and one optional
    /// white space before them and, after each of them, an optional white space, one of "-", "/", "." and ",", and an
    /// optional white space again. White space is Unicode's property White_Space, so a trailing line end passes.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidMobilePhoneNumber(std::u16string_view text) noexcept;

    /// `isValidBoxNumber(_:)`
    ///
    /// Whether `text` is 1 to 9 characters from "A" to "z", spaces or digits of any script (general category Nd). The
    /// range is one of code points on purpose: it admits "[", "\", "]", "^", "_" and the grave accent.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidBoxNumber(std::u16string_view text) noexcept;

    /// `isValidHouseNumber(_:)`
    ///
    /// Whether `text` is a digit from 1 to 9 and up to four characters that are digits or from "A" to "z", the same
    /// range of code points as in `isValidBoxNumber(_:)`.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidHouseNumber(std::u16string_view text) noexcept;

    /// `isValidStreet(_:)`
    ///
    /// Whether `text` is 1 to 35 letters, digits, spaces or ",’‘`.-". The typewriter apostrophe is none of them.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidStreet(std::u16string_view text) noexcept;

    /// `isValidName(_:with:)`, no limits given
    ///
    /// Whether `text` is one or more letters, spaces or ",’‘`.-". The typewriter apostrophe is none of them.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidName(std::u16string_view text) noexcept;

    /// `isValidName(_:with:)`
    ///
    /// As `isValidName(text)`, with a number of characters within `with`.
    ///
    /// @param text  absent counts as empty, which is valid exactly when `with.minChar` is 0
    /// @throws NSException  named "NSInvalidArgumentException" when `text` is not empty and `with` allows nothing: a
    ///                      bound below 0 or above 16,777,215, or `minChar` above `maxChar`
    [[nodiscard]] ZOR_EXPORT static bool isValidName(std::u16string_view text, CharacterLimits with);

    /// `isValidText(_:with:)`
    ///
    /// Whether `text` has a number of characters within `with`, all of them letters, digits, spaces or ",’‘`.-".
    ///
    /// @param text  absent counts as empty, which is valid exactly when `with.minChar` is 0
    /// @throws NSException  as `isValidName(_:with:)`
    [[nodiscard]] ZOR_EXPORT static bool isValidText(std::u16string_view text, CharacterLimits with);

    /// `isValidPostalCode(_:with:)`
    ///
    /// The rule of `isValidText(_:with:)` under a second name, for postal codes of any country.
    [[nodiscard]] ZOR_EXPORT static bool isValidPostalCode(std::u16string_view text, CharacterLimits with);

    /// `isValidBelgiumPostalCode(_:)`
    ///
    /// Whether `text` is four digits.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidBelgiumPostalCode(std::u16string_view text) noexcept;

    /// `isValidBusinessName(_:)`
    ///
    /// Whether `text` is one or more letters, digits, spaces or ",'.-()!?:{}#". Here the typewriter apostrophe is
    /// allowed and the typographic ones are not.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidBusinessName(std::u16string_view text) noexcept;

    /// `isValidPinChar(_:)`
    ///
    /// Whether `text` is one digit.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidPinChar(std::u16string_view text) noexcept;

    /// `isValidNationalRegistrationNumber(_:)`
    ///
    /// Whether `text` is a national registration number as it is typed, "85.07.30-033.28": two, two, two, three and two
    /// digits with ".", ".", "-" and "." between, that pass `isValidNationalRegistrationNumber:` of
    /// ZORNationalRegistrationNumberValidator. The digits alone are not valid.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidNationalRegistrationNumber(std::u16string_view text) noexcept;

    /// `isValidIDCardNumber(_:)`
    ///
    /// Whether `text` is the number of an identity card as it is typed: three, seven and two digits with "-" between,
    /// that pass `isValidNationalDocumentNumber:` of ZORNationalRegistrationNumberValidator.
    ///
    /// @param text  absent counts as empty, which is not valid
    [[nodiscard]] ZOR_EXPORT static bool isValidIDCardNumber(std::u16string_view text) noexcept;

    /// The twin of `isValidEmail(_:)`: `empty`; `unexpectedCharacter`, also at an "@" or at the last dot with nothing
    /// before it; `incomplete` without "@" or without a dot behind it; `tooShort` and `tooLong` for the letters of the
    /// last label.
    [[nodiscard]] ZOR_EXPORT static Explanation explainEmail(std::u16string_view text);

    /// The twin of `isValidMobilePhoneNumber(_:)`: `empty`, `unexpectedCharacter`, and `tooShort` and `tooLong` for the
    /// number of digits.
    [[nodiscard]] ZOR_EXPORT static Explanation explainMobilePhoneNumber(std::u16string_view text);

    /// The twin of `isValidBoxNumber(_:)`: `empty`, `unexpectedCharacter`, `tooLong`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainBoxNumber(std::u16string_view text);

    /// The twin of `isValidHouseNumber(_:)`: `empty`, `unexpectedCharacter`, `tooLong`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainHouseNumber(std::u16string_view text);

    /// The twin of `isValidStreet(_:)`: `empty`, `unexpectedCharacter`, `tooLong`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainStreet(std::u16string_view text);

    /// The twin of `isValidName(_:with:)` without limits: `empty`, `unexpectedCharacter`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainName(std::u16string_view text);

    /// The twin of `isValidName(_:with:)`: `empty`, `unexpectedCharacter`, `tooShort` and `tooLong`, or `length` where
    /// both limits are the same. Throws as it does.
    [[nodiscard]] ZOR_EXPORT static Explanation explainName(std::u16string_view text, CharacterLimits with);

    /// The twin of `isValidText(_:with:)`, as that of `isValidName(_:with:)`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainText(std::u16string_view text, CharacterLimits with);

    /// The twin of `isValidPostalCode(_:with:)`, as that of `isValidName(_:with:)`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainPostalCode(std::u16string_view text, CharacterLimits with);

    /// The twin of `isValidBelgiumPostalCode(_:)`: `empty`, `unexpectedCharacter`, `length`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainBelgiumPostalCode(std::u16string_view text);

    /// The twin of `isValidBusinessName(_:)`: `empty`, `unexpectedCharacter`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainBusinessName(std::u16string_view text);

    /// The twin of `isValidPinChar(_:)`: `empty`, `unexpectedCharacter`, `length`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainPinChar(std::u16string_view text);

    /// The twin of `isValidNationalRegistrationNumber(_:)`: `empty`, `unexpectedCharacter`, `length`, and `checkDigits`
    /// at the last two digits.
    [[nodiscard]] ZOR_EXPORT static Explanation explainNationalRegistrationNumber(std::u16string_view text);

    /// The twin of `isValidIDCardNumber(_:)`, as that of `isValidNationalRegistrationNumber(_:)`.
    [[nodiscard]] ZOR_EXPORT static Explanation explainIDCardNumber(std::u16string_view text);
};

}  // namespace ZORFoundation
