// SPDX-License-Identifier: Apache-2.0
//
// The engine of numbers with two check digits, through the validators that stand on it.
#include <ZORFoundation/ZORAccessNumberValidator.h>
#include <ZORFoundation/ZORCommentValidator.h>
#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>
#include <support/IdentifierModel.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

struct Kind {
    const char* name;
    std::size_t length;
    bool (*isValid)(std::u16string_view) noexcept;
    Explanation (*explain)(std::u16string_view) noexcept;
    bool (*literalIsValid)(std::u16string_view);
};

constexpr Kind kKinds[] = {
    {"StructuredComment", 12, ZORCommentValidator::isValidStructuredComment,
     ZORCommentValidator::explainStructuredComment, support::literalIsValidBban},
    {"NationalRegistrationNumber", 11, ZORNationalRegistrationNumberValidator::isValidNationalRegistrationNumber,
     ZORNationalRegistrationNumberValidator::explainNationalRegistrationNumber,
     support::literalIsValidNationalRegistrationNumber},
    {"NationalDocumentNumber", 12, ZORNationalRegistrationNumberValidator::isValidNationalDocumentNumber,
     ZORNationalRegistrationNumberValidator::explainNationalDocumentNumber,
     support::literalIsValidNationalDocumentNumber},
    {"AccessNumber", 13, ZORAccessNumberValidator::isAccessNumberValid, ZORAccessNumberValidator::explainAccessNumber,
     support::literalIsAccessNumberValid},
};

class CheckedNumbers : public ::testing::TestWithParam<Kind> {
protected:
    static void expectAgreement(std::u16string_view text) {
        const Kind& kind = GetParam();
        const auto exact = std::make_unique<char16_t[]>(text.size());
        std::copy(text.begin(), text.end(), exact.get());
        const std::u16string_view view(exact.get(), text.size());
        ASSERT_EQ(kind.isValid(view), kind.literalIsValid(text)) << ::testing::PrintToString(text);
        ASSERT_EQ(kind.isValid(view), kind.explain(view).isValid()) << ::testing::PrintToString(text);
    }
    static std::u16string randomDigits(std::mt19937& random, std::size_t length) {
        std::u16string text(length, u'0');
        for (char16_t& unit : text) unit = static_cast<char16_t>(u'0' + random() % 10);
        return text;
    }
    static void forEachCheck(std::u16string text, void (*visit)(std::u16string_view)) {
        for (char16_t tens = u'0'; tens <= u'9'; ++tens) {
            for (char16_t ones = u'0'; ones <= u'9'; ++ones) {
                text[text.size() - 2] = tens;
                text[text.size() - 1] = ones;
                visit(text);
            }
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, CheckedNumbers, ::testing::ValuesIn(kKinds),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(CheckedNumbers, AgreeWithTheRulesOnAllCheckDigitsOfRandomBodies) {
    std::mt19937 random(9);
    for (int round = 0; round < 1000; ++round) {
        forEachCheck(randomDigits(random, GetParam().length), expectAgreement);
        if (HasFatalFailure()) return;
    }
}

TEST_P(CheckedNumbers, AgreeWithTheRulesForAnyNumberOfLeadingSpaces) {
    std::mt19937 random(10);
    for (std::size_t spaces = 0; spaces <= GetParam().length - 2; ++spaces) {
        for (int round = 0; round < 100; ++round) {
            std::u16string text = randomDigits(random, GetParam().length);
            std::fill_n(text.begin(), spaces, u' ');
            forEachCheck(text, expectAgreement);
            text[GetParam().length - 2] = u' ';
            expectAgreement(text);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(CheckedNumbers, AgreeWithTheRulesForEveryUnitAtEveryPosition) {
    std::mt19937 random(11);
    const std::u16string number = randomDigits(random, GetParam().length);
    for (std::size_t at = 0; at < number.size(); ++at) {
        std::u16string text = number;
        for (unsigned unit = 0; unit < 0x10000; ++unit) {
            text[at] = static_cast<char16_t>(unit);
            ASSERT_NO_FATAL_FAILURE(expectAgreement(text));
        }
    }
}

TEST_P(CheckedNumbers, RejectEveryOtherLength) {
    const Kind& kind = GetParam();
    for (std::size_t length = 0; length < 40; ++length) {
        const std::u16string text(length, u'0');
        if (length == kind.length) continue;
        EXPECT_FALSE(kind.isValid(text));
        const std::size_t position = std::min(length, kind.length);
        EXPECT_EQ(kind.explain(text), (Explanation{BrokenRule::length, position, position, length, kind.length}));
    }
}

TEST_P(CheckedNumbers, ExplainTheFirstUnitThatIsNotNumeric) {
    const Kind& kind = GetParam();
    std::u16string text(kind.length, u'1');
    text[4] = u'.';
    text[7] = u'-';
    EXPECT_EQ(kind.explain(text), (Explanation{BrokenRule::unexpectedCharacter, 4, 4, 0, 0}));
    text[0] = u' ';
    text[3] = u' ';
    EXPECT_EQ(kind.explain(text), (Explanation{BrokenRule::unexpectedCharacter, 3, 3, 0, 0}));
    text.assign(kind.length, u' ');
    EXPECT_EQ(kind.explain(text),
              (Explanation{BrokenRule::unexpectedCharacter, kind.length - 1, kind.length - 1, 0, 0}));
}

TEST_P(CheckedNumbers, ExplainCheckDigitsThatDoNotFit) {
    const Kind& kind = GetParam();
    std::u16string text(kind.length, u'0');
    text[kind.length - 1] = u'5';
    EXPECT_EQ(kind.explain(text), (Explanation{BrokenRule::checkDigits, kind.length - 2, kind.length - 2, 0, 0}));
}

TEST_P(CheckedNumbers, AllocateNothing) {
    const Kind& kind = GetParam();
    const std::u16string endless(1'000'000, u'7');
    const std::u16string spaced = std::u16string(4, u' ') + std::u16string(kind.length - 4, u'3');
    const std::u16string dotted = u"12345678.0123456";
    const support::AllocationCount allocations;
    for (const std::u16string_view text :
         {std::u16string_view(endless), std::u16string_view(spaced),
          std::u16string_view(endless).substr(0, kind.length), std::u16string_view(dotted).substr(0, kind.length)}) {
        static_cast<void>(kind.isValid(text));
        static_cast<void>(kind.explain(text));
    }
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
