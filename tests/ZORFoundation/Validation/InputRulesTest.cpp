// SPDX-License-Identifier: Apache-2.0
//
// Each rule against the regular expression that defines it.

#include <support/InputRuleModel.h>

#include <ZORPlatform/Foundation/Text.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

using support::InputRule;
using support::InputRules;

void expectNoContradiction(InputRule& rule, std::u16string_view text) {
    // A copy that ends where its memory ends, so that a read past the end is seen.
    const auto units = std::make_unique<char16_t[]>(text.size());
    std::copy(text.begin(), text.end(), units.get());
    const char* const contradiction = support::contradiction(rule, {units.get(), text.size()});
    ASSERT_EQ(contradiction, nullptr) << rule.name << ": " << testing::PrintToString(std::u16string(text));
}

TEST(InputRules, SamplesGrownByADigitOrLetterAreNotAllRefused) {
    constexpr std::u16string_view kUnits = u"0123456789a";
    for (const auto& rule : InputRules()) {
        EXPECT_TRUE(std::any_of(kUnits.begin(), kUnits.end(), [&](char16_t unit) {
            return rule->allows(std::u16string(rule->sample) + unit);
        })) << rule->name;
    }
}

TEST(InputRules, TypedNumbersAgreeOnEveryCheck) {
    std::mt19937 random(97);
    InputRules rules;
    for (int round = 0; round < 40; ++round) {
        std::u16string text = round % 2 == 0 ? u"00.00.00-000.00" : u"000-0000000-00";
        for (char16_t& unit : text) {
            if (unit == u'0') unit = static_cast<char16_t>(u'0' + random() % 10);
        }
        for (int check = 0; check < 100; ++check) {
            text[text.size() - 2] = static_cast<char16_t>(u'0' + check / 10);
            text.back() = static_cast<char16_t>(u'0' + check % 10);
            for (const auto& rule : rules) ASSERT_NO_FATAL_FAILURE(expectNoContradiction(*rule, text));
        }
    }
}

TEST(InputRules, AgreeOnEveryCodePointAlone) {
    for (const auto& rule : InputRules()) {
        std::u16string text;
        for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
            text.clear();
            ZORPlatform::appendScalar(text, scalar);
            const auto expected = rule->expected(text);
            ASSERT_EQ(expected, rule->allows(text)) << rule->name << " U+" << std::hex << std::uint32_t{scalar};
        }
    }
}

TEST(InputRules, AgreeOnEveryBmpCodePointBehindAnAllowedText) {
    for (const auto& rule : InputRules()) {
        std::u16string text(rule->sample);
        text.push_back(u' ');
        for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
            text.back() = static_cast<char16_t>(unit);
            const auto expected = rule->expected(text);
            ASSERT_EQ(expected, rule->allows(text)) << rule->name << " U+" << std::hex << unit;
        }
    }
}

// Texts that come near to being valid: pieces that the rules know, and a few that none does.
class NearTexts {
public:
    std::u16string next() {
        std::u16string text;
        const std::size_t pieces = random_() % 24;
        const Kind& kind = kKinds[random_() % kKinds.size()];
        for (std::size_t i = 0; i < pieces; ++i) {
            const Kind& from = random_() % 40 == 0 ? kOdd : kind;
            text += from[random_() % from.size()];
        }
        return text;
    }

private:
    using Kind = std::array<std::u16string_view, 16>;

    static constexpr Kind kOdd{u"\n",     u"\r\n",       u"\u2028", u"\u0301", u"\u00A0", u"'",
                               u"_",      u"\U0001D7CE", u"\u0663", u"\u212A", u"\u017F", u"\U0001F600",
                               u"\xD800", u"\xDC00",     u"$",      u"\u200B"};
    static constexpr std::array<Kind, 5> kKinds{{
        {u"0", u"1", u"2", u"9", u"04", u"75", u"12", u"+", u" ", u"-", u"/", u".", u",", u"\u00A0", u"\u0663", u"3"},
        {u"0", u"1", u"23", u"45", u"678", u"9 ", u"1-", u"2/", u"3.", u"4,", u"5 ", u"6 -", u"7- ", u"8 . ", u"90",
         u"1"},
        {u"a", u"b", u"Z", u"jan", u"@", u".", u".be", u"@zor", u"-", u"+", u"_", u"%", u"9", u"com", u"x.y", u"q"},
        {u"An", u"Été", u" ", u"-", u"’", u"‘", u"`", u".", u",", u"ç", u"Ü", u"rue", u"1", u"de", u"la", u"O"},
        {u"A", u"1", u"(", u")", u"*", u":", u";", u"?", u"!", u"€", u"\"", u"\\", u"\n", u"#", u"é", u"Ê"},
    }};

    std::mt19937 random_{26};
};

TEST(InputRules, AgreeOnRandomTexts) {
    NearTexts texts;
    InputRules rules;
    for (int round = 0; round < 60'000; ++round) {
        const std::u16string text = texts.next();
        for (const auto& rule : rules) ASSERT_NO_FATAL_FAILURE(expectNoContradiction(*rule, text));
    }
}

TEST(InputRules, AgreeOnAllowedTextsWithOneChange) {
    std::mt19937 random(62);
    NearTexts texts;
    for (const auto& rule : InputRules()) {
        for (int round = 0; round < 5'000; ++round) {
            std::u16string text(rule->sample);
            text.insert(random() % (text.size() + 1), texts.next(), 0, random() % 3);
            ASSERT_NO_FATAL_FAILURE(expectNoContradiction(*rule, text));
        }
    }
}

TEST(InputRules, AgreeAroundEveryLength) {
    for (const auto& rule : InputRules()) {
        for (const std::u16string_view piece : {u"1", u"a", u"é", u"\U0001D7CE", u"1 - ", u"\u0301", u"\r\n"}) {
            std::u16string text;
            for (int count = 0; count < 80; ++count, text += piece) {
                ASSERT_NO_FATAL_FAILURE(expectNoContradiction(*rule, text));
            }
        }
    }
}

TEST(InputRules, LastLabelsOfEveryLengthAgree) {
    InputRules rules;
    for (std::size_t letters = 0; letters < 70; ++letters) {
        ASSERT_NO_FATAL_FAILURE(expectNoContradiction(**rules.begin(), u"a@b." + std::u16string(letters, u'x')));
    }
}

}  // namespace
}  // namespace ZORFoundation
