// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/StringChecks.h>

#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <string>

namespace ZORFoundation {
namespace {

using namespace StringExtension;

TEST(StringChecks, NumericIsLeadingSpacesThenAsciiDigits) {
    for (const std::u16string_view text : {u"0", u"0123456789", u"  42"}) EXPECT_TRUE(isNumeric(text));
}

TEST(StringChecks, NumericRefusesEverythingElse) {
    for (const std::u16string_view text :
         {u"", u" ", u"1 2", u"12 ", u"+1", u"-1", u"1.0", u"\u0663", u"\u00A01", u"\t1", u"1a"}) {
        EXPECT_FALSE(isNumeric(text));
        EXPECT_FALSE(explainNumeric(text).isValid());
    }
    EXPECT_EQ(explainNumeric(u"").rule, BrokenRule::empty);
    EXPECT_EQ(explainNumeric(u"  "), (Explanation{BrokenRule::incomplete, 2, 2, 0, 0}));
    EXPECT_EQ(explainNumeric(u" 12 "), (Explanation{BrokenRule::unexpectedCharacter, 3, 3, 0, 0}));
    EXPECT_EQ(explainNumeric(u" 12"), Explanation{});
}

TEST(StringChecks, BcmcReferencesAreLettersDigitsSpacesAndBackslashes) {
    for (const std::u16string_view text : {u"", u"Order 66\\A z", u"\u017F\u212A", u"\\\\ "}) {
        EXPECT_TRUE(isValidBcmcReference(text));
        EXPECT_EQ(explainBcmcReference(text), Explanation{});
    }
    for (const std::u16string_view text : {u"-", u"/", u".", u"é", u"e\u0301", u"\u0130", u"\u0131", u"ß", u"\t", u"\n",
                                           u"\uFF21", u"\xD835", u"\U0001D400"}) {
        EXPECT_FALSE(isValidBcmcReference(text));
    }
    EXPECT_EQ(explainBcmcReference(u"A1 \\\u212A-"), (Explanation{BrokenRule::unexpectedCharacter, 5, 5, 0, 0}));
    EXPECT_TRUE(isValidBcmcReference(std::u16string(1'000'000, u'a')));
}

TEST(StringChecks, ValidCharactersHaveHoles) {
    EXPECT_TRUE(containsOnlyValidCharacters(u""));
    EXPECT_TRUE(containsOnlyValidCharacters(u"Ab1 *+(),:?./'\"@é&É-ÊêÍíÓó\u017F\u212A"));
    for (const std::u16string_view text :
         {u"!", u"\n", u";", u"ñ", u"á", u"\u0131", u"\u0130", u"ß", u"e\u0301", u"\U0001F600", u"\xD800", u"\\"}) {
        EXPECT_FALSE(containsOnlyValidCharacters(text));
    }
}

TEST(StringChecks, BackendInputEndsAtSeventyUnits) {
    EXPECT_TRUE(isValidBackendInputString(u""));
    EXPECT_TRUE(isValidBackendInputString(std::u16string(70, u'*')));
    EXPECT_FALSE(isValidBackendInputString(std::u16string(71, u'*')));
    EXPECT_EQ(explainBackendInputString(std::u16string(80, u'*')), (Explanation{BrokenRule::tooLong, 70, 70, 80, 70}));
    EXPECT_EQ(explainBackendInputString(std::u16string(70, u'*') + u"!"),
              (Explanation{BrokenRule::unexpectedCharacter, 70, 70, 0, 0}));
    EXPECT_EQ(explainBackendInputString(u"ab\U0001F600!"), (Explanation{BrokenRule::unexpectedCharacter, 2, 2, 0, 0}));
}

TEST(StringChecks, MessagesTakeLineEndsAndTheEuroSign) {
    EXPECT_TRUE(isValidMessageBody(u""));
    EXPECT_TRUE(isValidMessageBody(u"\r\na\nb\u2028\u0085 €5 50% \\ <#=_>;!"));
    for (const std::u16string_view text : {u"$", u"\t", u"ê", u"Ê", u"í", u"Ó", u"|", u"a\n$\nb"}) {
        EXPECT_FALSE(isValidMessageBody(text));
    }
    EXPECT_EQ(explainMessageBody(u"\r\na\t"), (Explanation{BrokenRule::unexpectedCharacter, 3, 2, 0, 0}));
    EXPECT_TRUE(isValidMessageBody(std::u16string(1'000'000, u'a')));
}

TEST(StringChecks, ResponsesCountUnitsOnly) {
    for (const std::u16string_view text : {u"12345", u"     ", u"12345678", u"\U0001F600\U0001F600\U0001F600"}) {
        EXPECT_TRUE(isValidResponse(text));
    }
    for (const std::u16string_view text : {u"", u"1234", u"123456789", u"\U0001F600\U0001F600"}) {
        EXPECT_FALSE(isValidResponse(text));
    }
    EXPECT_EQ(explainResponse(u"").rule, BrokenRule::empty);
    EXPECT_EQ(explainResponse(u"\U0001F600\U0001F600"), (Explanation{BrokenRule::tooShort, 4, 2, 4, 5}));
    EXPECT_EQ(explainResponse(u"1234567890"), (Explanation{BrokenRule::tooLong, 8, 8, 10, 8}));
    EXPECT_EQ(explainResponse(u"12345"), Explanation{});
}

TEST(StringChecks, ChecksAllocateNothing) {
    const support::AllocationCount allocations;
    EXPECT_TRUE(isValidMessageBody(u"€ 5"));
    EXPECT_FALSE(isValidBackendInputString(u"€ 5"));
    EXPECT_TRUE(isNumeric(u" 5"));
    EXPECT_TRUE(isValidBcmcReference(u"Order 66"));
    EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
}  // namespace ZORFoundation
