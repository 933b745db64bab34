// SPDX-License-Identifier: Apache-2.0
//
// Identifiers shown and stripped, bare and as people type them, beside a copy of the same size into fresh memory, which
// is the one allocation that each takes, and beside the rule carried out step by step.

#include <ZORFoundation/ZORAccountNumberFormatter.h>
#include <ZORFoundation/ZORCardNumberFormatter.h>
#include <ZORFoundation/ZORChallengeResponseFormatter.h>
#include <ZORFoundation/ZORCommentFormatter.h>
#include <benchmarks/Comparison.h>
#include <benchmarks/SampleNumbers.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace ZORFoundation;
using namespace benchmarks;
using Account = ZORAccountNumberFormatter;
using Card = ZORCardNumberFormatter;
using Display = std::u16string (*)(std::u16string_view);

constexpr std::size_t kNumbers = 1000;

// The rules as they are told, through a text for each step.
namespace steps {

std::u16string without(std::u16string_view text, std::u16string_view removed) {
    std::u16string rest(text);
    for (const char16_t unit : removed) rest.erase(std::remove(rest.begin(), rest.end(), unit), rest.end());
    return rest;
}

std::u16string joined(const std::u16string& padded, std::u16string_view lengths, std::u16string_view separator) {
    std::u16string shown;
    std::size_t at = 0;
    for (const char16_t digit : lengths) {
        const std::size_t length = digit - std::size_t{u'0'};
        if (at > 0) shown += separator;
        shown += padded.substr(at, length);
        at += length;
    }
    return shown;
}

std::u16string padded(std::u16string text, std::size_t units, char16_t filler) {
    text.resize(units, filler);
    return text;
}

std::u16string grouped(std::u16string_view stripped) {
    std::u16string shown;
    for (std::size_t at = 0; at < stripped.size(); ++at) {
        if (at > 0 && at % 4 == 0) shown += u'\u00A0';
        shown += stripped[at];
    }
    return shown;
}

std::u16string strippedAccountNumber(std::u16string_view text) { return without(text, u" -\u00A0"); }

std::u16string iban(std::u16string_view text) {
    std::u16string shown = grouped(strippedAccountNumber(text).substr(0, 32));
    for (char16_t& unit : shown) {
        if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - 0x20);
    }
    return shown;
}

std::u16string bban(std::u16string_view text) {
    return joined(padded(strippedAccountNumber(text), 12, u' '), u"372", u"-");
}

std::u16string strippedCardNumber(std::u16string_view text) { return without(text, u" \u00A0"); }

std::u16string card(std::u16string_view text) {
    return joined(padded(std::u16string(text), 17, u' '), u"44441", u"\u00A0");
}

std::u16string growingCard(std::u16string_view text) { return grouped(strippedCardNumber(text).substr(0, 17)); }

std::u16string creditCard(std::u16string_view text) {
    const std::u16string units = padded(without(text, u" "), 17, u' ');
    return joined(units.substr(0, 16), u"4444", u"\u00A0") + u' ' + units[16];
}

std::u16string strippedComment(std::u16string_view text) {
    std::u16string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
    return digits;
}

std::u16string comment(std::u16string_view text) {
    return u"+++\u00A0" + joined(padded(strippedComment(text), 12, u'_'), u"345", u"\u00A0/\u00A0") + u"\u00A0+++";
}

std::u16string loginCode(std::u16string_view text) { return grouped(strippedCardNumber(text).substr(0, 8)); }

std::u16string challenge(std::u16string_view text) {
    return std::u16string(text.substr(0, 4)) + u'\u00A0' + std::u16string(text.substr(4));
}

}  // namespace steps

std::u16string shownChallenge(std::u16string_view text) {
    return ZORChallengeResponseFormatter::formattedChallenge(text).value_or(std::u16string());
}

// Texts one behind the other in memory.
struct Numbers {
    SampleNumbers units;
    std::vector<std::u16string_view> texts;

    explicit Numbers(const std::vector<std::u16string>& from) {
        for (const std::u16string& text : from) units.add(text);
        texts = units.texts();
    }
};

// `layout` with random digits in place of its marks "#".
std::vector<std::u16string> typedIn(std::u16string_view layout) {
    std::mt19937 random(11);
    std::vector<std::u16string> numbers(kNumbers, std::u16string(layout));
    for (std::u16string& number : numbers) {
        for (char16_t& unit : number) {
            if (unit == u'#') unit = static_cast<char16_t>(u'0' + random() % 10);
        }
    }
    return numbers;
}

// @param layout  how the texts are typed, "#" for a digit
Comparison compare(const char* name, std::u16string_view layout, Display operation, Display inSteps) {
    const auto typed = std::make_shared<const Numbers>(typedIn(layout));
    std::vector<std::u16string> results;
    for (const std::u16string_view text : typed->texts) results.push_back(operation(text));
    const auto shown = std::make_shared<const Numbers>(results);
    const auto over = [](const std::shared_ptr<const Numbers>& numbers, Display each) {
        return [numbers, each] {
            for (const std::u16string_view text : numbers->texts) benchmark::DoNotOptimize(each(text));
        };
    };
    return Comparison(name)
        .itemsPerCall(kNumbers)
        .candidate(over(typed, operation))
        .floor("the result copied", over(shown, [](std::u16string_view text) { return std::u16string(text); }))
        .peer("step by step", over(typed, inSteps));
}

const bool registered = [] {
    compare("formattedAccountNumberAsIban, bare", u"BE##############", Account::formattedAccountNumberAsIban,
            steps::iban)
        .expectedNanoseconds(30)
        .add();
    compare("formattedAccountNumberAsIban, in groups of four", u"be## #### #### ####",
            Account::formattedAccountNumberAsIban, steps::iban)
        .expectedNanoseconds(30)
        .add();
    compare("formattedAccountNumberAsBban, bare", u"############", Account::formattedAccountNumberAsBban, steps::bban)
        .add();
    compare("formattedAccountNumberAsBban, with dashes", u"###-#######-##", Account::formattedAccountNumberAsBban,
            steps::bban)
        .add();
    compare("strippedAccountNumber, bare", u"BE##############", Account::strippedAccountNumber,
            steps::strippedAccountNumber)
        .add();
    compare("strippedAccountNumber, in groups of four", u"BE## #### #### ####", Account::strippedAccountNumber,
            steps::strippedAccountNumber)
        .add();
    compare("strippedCardNumber, in groups of four", u"#### #### #### #### #", Card::strippedCardNumber,
            steps::strippedCardNumber)
        .add();
    compare("formattedCardNumber", u"#################", Card::formattedCardNumber, steps::card).add();
    compare("formattedCardNumberOptimal, bare", u"#################", Card::formattedCardNumberOptimal,
            steps::growingCard)
        .add();
    compare("formattedCardNumberOptimal, in groups of four", u"#### #### #### #### #", Card::formattedCardNumberOptimal,
            steps::growingCard)
        .add();
    compare("formattedCreditCard, in groups of four", u"#### #### #### #### #", Card::formattedCreditCard,
            steps::creditCard)
        .add();
    compare("strippedStructuredComment, a display", u"+++###/####/#####+++",
            ZORCommentFormatter::strippedStructuredComment, steps::strippedComment)
        .add();
    compare("formattedStructuredComment, bare", u"############", ZORCommentFormatter::formattedStructuredComment,
            steps::comment)
        .add();
    compare("formattedStructuredComment, a display", u"+++###/####/#####+++",
            ZORCommentFormatter::formattedStructuredComment, steps::comment)
        .add();
    compare("formattedLoginCodeOptimal", u"########", ZORChallengeResponseFormatter::formattedLoginCodeOptimal,
            steps::loginCode)
        .add();
    compare("formattedChallenge", u"########", shownChallenge, steps::challenge).add();
    return true;
}();

}  // namespace
