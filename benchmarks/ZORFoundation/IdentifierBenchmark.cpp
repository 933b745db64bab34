// SPDX-License-Identifier: Apache-2.0
//
// Numbers with check digits: cards, structured comments, numbers of persons, documents and access. Half of the numbers
// of each kind are valid, the others have a wrong check digit. The floor reads the units once. Peers: a loop over the
// digits that keeps all in registers, and the rule as a textbook has it, through a text.

#include <ZORFoundation/ZORAccessNumberValidator.h>
#include <ZORFoundation/ZORAccountNumberValidator.h>
#include <ZORFoundation/ZORCardNumberFormatter.h>
#include <ZORFoundation/ZORCommentValidator.h>
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>
#include <benchmarks/Comparison.h>
#include <benchmarks/SampleNumbers.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace ZORFoundation;
using namespace benchmarks;
using Validator = bool (*)(std::u16string_view) noexcept;
using Peer = bool (*)(std::u16string_view);

constexpr std::size_t kNumbers = 4096;

constexpr bool isDigit(char16_t unit) noexcept { return unit >= u'0' && unit <= u'9'; }

// One number a digit at a time.
namespace loops {

bool isLuhnSumRound(std::u16string_view text) {
    unsigned sum = 0;
    std::size_t digits = 0;
    for (const char16_t unit : text) {
        if (unit == u' ' || unit == u'\u00A0') continue;
        if (!isDigit(unit)) return false;
        const unsigned digit = unit - unsigned{u'0'};
        if (digits++ % 2 == 0) {
            sum += digit;
        } else {
            sum += digit < 5 ? 2 * digit : 2 * digit - 9;
        }
    }
    return digits == 17 && sum % 10 == 0;
}

// The body and the check of a number, as integers.
struct Parts {
    std::uint64_t body = 0;
    std::uint64_t check = 0;
    bool areDigits = true;
};

Parts partsOf(std::u16string_view text) {
    Parts parts;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!isDigit(text[at])) return {0, 0, false};
        std::uint64_t& part = at + 2 < text.size() ? parts.body : parts.check;
        part = part * 10 + (text[at] - u'0');
    }
    return parts;
}

template <std::size_t Length>
bool isRemainderNeverZero(std::u16string_view text) {
    if (text.size() != Length) return false;
    const Parts parts = partsOf(text);
    const std::uint64_t remainder = parts.body % 97;
    return parts.areDigits && (remainder == 0 ? 97 : remainder) == parts.check;
}

bool isRemainder(std::u16string_view text) {
    if (text.size() != 12) return false;
    const Parts parts = partsOf(text);
    return parts.areDigits && parts.body % 97 == parts.check;
}

bool isComplementOfRemainder(std::u16string_view text) {
    if (text.size() != 11) return false;
    const Parts parts = partsOf(text);
    return parts.areDigits &&
           (97 - parts.body % 97 == parts.check || 97 - (2'000'000'000 + parts.body) % 97 == parts.check);
}

}  // namespace loops

namespace textbook {

bool isLuhnSumRound(std::u16string_view text) {
    std::u16string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char16_t unit) { return unit != u' ' && unit != u'\u00A0'; });
    if (digits.size() != 17 || !std::all_of(digits.begin(), digits.end(), isDigit)) return false;
    std::reverse(digits.begin(), digits.end());
    int plain = 0;
    int doubled = 0;
    for (std::size_t position = 0; position < digits.size(); ++position) {
        const int digit = digits[position] - u'0';
        if (position % 2 == 0) {
            plain += digit;
        } else {
            doubled += 2 * digit % 10 + 2 * digit / 10;
        }
    }
    return (plain + doubled) % 10 == 0;
}

// The body and the check as texts, read by the standard library.
template <std::size_t Length, typename Rule>
bool isChecked(std::u16string_view text, Rule rule) {
    if (text.size() != Length || !std::all_of(text.begin(), text.end(), isDigit)) return false;
    const std::string digits(text.begin(), text.end());
    return rule(std::stoll(digits.substr(0, Length - 2)), std::stoll(digits.substr(Length - 2)));
}

template <std::size_t Length>
bool isRemainderNeverZero(std::u16string_view text) {
    return isChecked<Length>(
        text, [](std::int64_t body, std::int64_t check) { return (body % 97 == 0 ? 97 : body % 97) == check; });
}

bool isRemainder(std::u16string_view text) {
    return isChecked<12>(text, [](std::int64_t body, std::int64_t check) { return body % 97 == check; });
}

bool isComplementOfRemainder(std::u16string_view text) {
    return isChecked<11>(text, [](std::int64_t body, std::int64_t check) {
        return 97 - body % 97 == check || 97 - (2'000'000'000 + body) % 97 == check;
    });
}

}  // namespace textbook

struct Numbers {
    SampleNumbers units;
    std::vector<std::u16string_view> texts;
};

// Numbers in a layout with "#" for a digit, every other one made valid by its last two digits.
std::shared_ptr<const Numbers> numbersIn(std::u16string_view layout, Validator isValid) {
    std::mt19937 random(23);
    const auto numbers = std::make_shared<Numbers>();
    const std::size_t tens = layout.find_last_of(u'#', layout.size() - 2);
    for (std::size_t i = 0; i < kNumbers; ++i) {
        std::u16string text(layout);
        for (char16_t& unit : text) {
            if (unit == u'#') unit = static_cast<char16_t>(u'0' + random() % 10);
        }
        for (unsigned check = 0; check < 100 && isValid(text) != (i % 2 == 0); ++check) {
            text[tens] = static_cast<char16_t>(u'0' + check / 10);
            text.back() = static_cast<char16_t>(u'0' + check % 10);
        }
        numbers->units.add(text);
    }
    numbers->texts = numbers->units.texts();
    return numbers;
}

void compare(const char* name, std::u16string_view layout, Validator isValid, Peer inLoop, Peer inTextbook,
             double goal) {
    const auto numbers = numbersIn(layout, isValid);
    const auto over = [numbers](auto operation) {
        return [numbers, operation] {
            for (const std::u16string_view text : numbers->texts) benchmark::DoNotOptimize(operation(text));
        };
    };
    Comparison(name)
        .itemsPerCall(kNumbers)
        .candidate(over(isValid))
        .floor("units read once", over(kReadOnce))
        .peer("digit by digit", over(inLoop))
        .peer("textbook", over(inTextbook))
        .expectedNanoseconds(goal)
        .atMost(1.0, "digit by digit")
        .add();
}

const bool registered = [] {
    using Persons = ZORNationalRegistrationNumberValidator;
    constexpr std::u16string_view kTwelve = u"############";
    constexpr std::u16string_view kThirteen = u"#############";
    compare("isValidCardNumber", u"#################", ZORCardNumberFormatter::isValidCardNumber, loops::isLuhnSumRound,
            textbook::isLuhnSumRound, 8);
    compare("isValidCardNumber, in groups of four", u"#### #### #### #### #", ZORCardNumberFormatter::isValidCardNumber,
            loops::isLuhnSumRound, textbook::isLuhnSumRound, 20);
    compare("isValidBban", kTwelve, ZORAccountNumberValidator::isValidBban, loops::isRemainderNeverZero<12>,
            textbook::isRemainderNeverZero<12>, 10);
    compare("isValidStructuredComment", kTwelve, ZORCommentValidator::isValidStructuredComment,
            loops::isRemainderNeverZero<12>, textbook::isRemainderNeverZero<12>, 10);
    compare("isValidNationalRegistrationNumber", u"###########", Persons::isValidNationalRegistrationNumber,
            loops::isComplementOfRemainder, textbook::isComplementOfRemainder, 10);
    compare("isValidNationalDocumentNumber", kTwelve, Persons::isValidNationalDocumentNumber, loops::isRemainder,
            textbook::isRemainder, 10);
    compare("isAccessNumberValid", kThirteen, ZORAccessNumberValidator::isAccessNumberValid,
            loops::isRemainderNeverZero<13>, textbook::isRemainderNeverZero<13>, 10);
    return true;
}();

}  // namespace
