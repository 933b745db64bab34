// SPDX-License-Identifier: Apache-2.0
//
// What a payment carries beside the account: the card, the structured comment, the free reference.

#include <tools/zor/KindGroups.h>
#include <tools/zor/KindRules.h>

#include <ZORFoundation/StringChecks.h>
#include <ZORFoundation/ZORCardNumberFormatter.h>
#include <ZORFoundation/ZORCommentFormatter.h>
#include <ZORFoundation/ZORCommentValidator.h>

#include <algorithm>
#include <array>

namespace zor {
namespace {

using namespace ZORFoundation;
using Card = ZORCardNumberFormatter;

// The marks, slashes and blanks around the digits of a comment.
struct CommentMarks {
    static bool areNotIn(std::u16string_view text) noexcept {
        return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
    }
    static std::u16string strip(std::u16string_view text) {
        return ZORCommentFormatter::strippedStructuredComment(text);
    }
};

constexpr std::array kKinds{
    Kind{"card", "payment card numbers of 17 digits", check<Card::isValidCardNumber>, explain<Card::explainCardNumber>,
         display<Card::strippedCardNumber>, display<Card::formattedCardNumberOptimal>},
    Kind{"comment", "structured payment comments of 12 digits",
         checkStripped<CommentMarks, ZORCommentValidator::isValidStructuredComment>,
         explainStripped<CommentMarks, ZORCommentValidator::explainStructuredComment>, asStripped<CommentMarks>,
         display<ZORCommentFormatter::formattedStructuredComment>, kExactOption, "digit"},
    Kind{"bcmc", "references of Bancontact payments", check<StringExtension::isValidBcmcReference>,
         explain<StringExtension::explainBcmcReference>, asWritten, asWritten},
};

}  // namespace

const KindGroup kPaymentKinds{"payments", "ISO/IEC 7812-1 annex B; ISO 7064", "2026-11-21", kKinds};

}  // namespace zor
