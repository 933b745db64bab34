// SPDX-License-Identifier: Apache-2.0
#pragma once

// For every kind a value that it is glad to see and one that it is not.

#include <array>
#include <ostream>
#include <string_view>

namespace zor::testing {

struct KindSample {
    std::string_view kind;
    std::string_view option;  ///< Empty: none is needed.
    std::string_view valid;
    std::string_view normalized;
    std::string_view formatted;
    std::string_view invalid;  ///< Empty for a kind that can only be formatted.
    std::string_view rule;
    std::string_view offset;

    [[nodiscard]] constexpr bool canBeChecked() const noexcept { return !rule.empty(); }

    friend std::ostream& operator<<(std::ostream& stream, const KindSample& sample) { return stream << sample.kind; }
};

inline constexpr std::array kKindSamples{
    KindSample{"iban", "", "be68-5390-0754 7034", "be68539007547034", "BE68\u00A05390\u00A00754\u00A07034",
               "BE68 5390 0754 7035", "checkDigits", "2"},
    KindSample{"bban", "", "539 0075470 34", "539007547034", "539-0075470-34", "539-0075470-35", "checkDigits", "12"},
    KindSample{"account", "", "539007547034", "539007547034", "539-0075470-34", "BE6853900754703", "countryLength",
               "15"},
    KindSample{"card", "", "6703 4444 4444 4444 1", "67034444444444441", "6703\u00A04444\u00A04444\u00A04444\u00A01",
               "6703 4444 4444 4444 2", "checkDigits", "20"},
    KindSample{"comment", "", "+++123/4567/89002+++", "123456789002",
               "+++\u00A0123\u00A0/\u00A04567\u00A0/\u00A089002\u00A0+++", "+++123/4567/89003+++", "checkDigits", "15"},
    KindSample{"bcmc", "", "INVOICE 2026 7", "INVOICE 2026 7", "INVOICE 2026 7", "INVOICE 2026/7",
               "unexpectedCharacter", "12"},
    KindSample{"national-number", "", "90011775352", "90011775352", "90.01.17-753.52", "90011775353", "checkDigits",
               "9"},
    KindSample{"registration-number", "", "90.01.17-753.52", "90011775352", "90.01.17-753.52", "90011775352",
               "unexpectedCharacter", "2"},
    KindSample{"document-number", "", "591234567829", "591234567829", "591-2345678-29", "591234567816", "checkDigits",
               "10"},
    KindSample{"id-card", "", "591-2345678-29", "591234567829", "591-2345678-29", "591 2345678 29",
               "unexpectedCharacter", "3"},
    KindSample{"access-number", "", "1234567890121", "1234567890121", "1234567890121", "123456789012", "length", "12"},
    KindSample{"amount", "", "1234,5", "1234.5", "1\u00A0234,50", "1 234,50", "unexpectedCharacter", "1"},
    KindSample{"email", "", "jan.peeters@zor.be", "jan.peeters@zor.be", "jan.peeters@zor.be", "jan peeters@zor.be",
               "unexpectedCharacter", "3"},
    KindSample{"mobile-phone", "", "+32 475/12.34.56", "+32475123456", "+32 475/12.34.56", "0475 12 34", "tooShort",
               "10"},
    KindSample{"street", "", "Rue de l\u2019\u00C9glise 12", "Rue de l\u2019\u00C9glise 12",
               "Rue de l\u2019\u00C9glise 12", "Rue de l'Eglise", "unexpectedCharacter", "8"},
    KindSample{"house-number", "", "12A", "12A", "12A", "012", "unexpectedCharacter", "0"},
    KindSample{"box-number", "", "Box 12_3", "Box 12_3", "Box 12_3", "Box 12/3", "unexpectedCharacter", "6"},
    KindSample{"postal-code", "--max=8", "SW1A 2AA", "SW1A 2AA", "SW1A 2AA", "SW1A 2AA London", "tooLong", "8"},
    KindSample{"belgian-postal-code", "", "1000", "1000", "1000", "10000", "length", "4"},
    KindSample{"name", "--min=2", "Jean-Pierre D\u2019Hondt, \u00EF", "Jean-Pierre D\u2019Hondt, \u00EF",
               "Jean-Pierre D\u2019Hondt, \u00EF", "J", "tooShort", "1"},
    KindSample{"business-name", "", "Zor (Brussels), Inc.!", "Zor (Brussels), Inc.!", "Zor (Brussels), Inc.!",
               "Zor & Co", "unexpectedCharacter", "4"},
    KindSample{"text", "--max=20", "Apt. 4", "Apt. 4", "Apt. 4", "Apt. #4", "unexpectedCharacter", "5"},
    KindSample{"pin", "", "7", "7", "7", "77", "length", "1"},
    KindSample{"backend-text", "", "Rent (May) & June", "Rent (May) & June", "Rent (May) & June", "Rent!",
               "unexpectedCharacter", "4"},
    KindSample{"message", "", "Rent: 750 \u20AC!", "Rent: 750 \u20AC!", "Rent: 750 \u20AC!", "Rent: $750",
               "unexpectedCharacter", "6"},
    KindSample{"phone", "--token=;ext=7", "+32 (0)2 123.45.67", "+32021234567", "tel://+32021234567;ext=7", "", "", ""},
    KindSample{"challenge", "", "12345678901", "12345678901", "1234\u00A05678901", "", "", ""},
    KindSample{"login-code", "", "12 34 5678 9", "123456789", "1234\u00A05678", "", "", ""},
    KindSample{"pattern", "--pattern=XXXX-XXXX", "12 34 5", "12345", "1234-5", "", "", ""},
};

}  // namespace zor::testing
