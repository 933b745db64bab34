// SPDX-License-Identifier: Apache-2.0
//
// The command as people use it: values on the command line.

#include "ZorProcess.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zor::testing {
namespace {

TEST(ZorValues, ValidValuesExitWithZero) {
    const RunResult result = runZor({"check", "iban", "BE68539007547034", "BE68 5390 0754 7034"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "BE68539007547034: valid\nBE68 5390 0754 7034: valid\n");
    EXPECT_EQ(result.err, "");
}

TEST(ZorValues, OneInvalidValueExitsWithOne) {
    const RunResult result = runZor({"check", "bban", "539-0075470-34", "539-0075470-35"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "539-0075470-34: valid\n539-0075470-35: invalid\n");
}

TEST(ZorValues, ExactValuesKeepTheirSeparators) {
    EXPECT_EQ(runZor({"check", "iban", "--exact", "BE68539007547034"}).exitCode, 0);
    EXPECT_EQ(runZor({"check", "iban", "--exact", "BE68 5390 0754 7034"}).exitCode, 1);
}

TEST(ZorValues, ExplanationsNameTheRuleAndThePlaceInTheTextAsTyped) {
    EXPECT_EQ(runZor({"explain", "iban", "BE68 5390 0754 703"}).out,
              "BE68 5390 0754 703: invalid, countryLength: found 15 characters, expected 16 in this country\n");
    EXPECT_EQ(runZor({"explain", "bban", "539-0075470-35"}).out,
              "539-0075470-35: invalid, checkDigits: the check digits do not belong to the rest, at position 12\n");
    EXPECT_EQ(runZor({"explain", "iban", "BE68 5390 0754 70_4"}).out,
              "BE68 5390 0754 70_4: invalid, unexpectedCharacter: there is a character that does not belong there, at "
              "position 17\n");
    EXPECT_EQ(runZor({"explain", "iban", "BE"}).out,
              "BE: invalid, tooShort: found 2 characters, expected at least 5\n");
    EXPECT_EQ(runZor({"explain", "iban", std::string(33, '1')}).out,
              std::string(33, '1') + ": invalid, tooLong: found 33 characters, expected at most 32\n");
    EXPECT_EQ(runZor({"explain", "account", "539"}).out, "539: invalid, length: found 3 characters, expected 12\n");
    EXPECT_EQ(runZor({"explain", "iban", ""}).out, ": invalid, empty: there is nothing to check\n");
    EXPECT_EQ(runZor({"explain", "iban", "be68539007547034"}).out, "be68539007547034: valid\n");
}

TEST(ZorValues, FormatShowsWhatPeopleRead) {
    EXPECT_EQ(runZor({"format", "iban", "be68-5390-0754-7034"}).out, "BE68\u00A05390\u00A00754\u00A07034\n");
    EXPECT_EQ(runZor({"format", "bban", "539007547034"}).out, "539-0075470-34\n");
    EXPECT_EQ(runZor({"format", "account", "539007547034", "12 34"}).out, "539-0075470-34\n1234\n");
    EXPECT_EQ(runZor({"format", "account", "12 34"}).exitCode, 1);
}

TEST(ZorValues, WhatIsNoTextIsInvalid) {
    const RunResult result = runZor({"explain", "iban", "BE\xFF"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "BE\uFFFD: invalid, bad_utf8: this is no UTF-8 text\n");
}

TEST(ZorValues, NothingInAValueSteersATerminal) {
    EXPECT_EQ(runZor({"check", "iban", "\x1B[31mred\n\x7F"}).out, "\uFFFD[31mred\uFFFD\uFFFD: invalid\n");
    EXPECT_EQ(runZor({"check", "iban", "a\xC2\x9B\u202Eb\u2066"}).out, "a\uFFFD\uFFFDb\uFFFD: invalid\n");
    EXPECT_EQ(runZor({"format", "street", "a\xC2\x85\u202Eb\u00E9"}).out, "a\uFFFD\uFFFDb\u00E9\n");
}

TEST(ZorValues, NoColourWhereNoTerminalIs) {
    EXPECT_EQ(runZor({"check", "iban", "BE68539007547034"}).out.find('\x1B'), std::string::npos);
}

TEST(ZorValues, AValueSwitchesTheFilterOff) {
    const RunResult result = runZor({"check", "iban", "BE68539007547034"}, "never\nread\n");
    EXPECT_EQ(result.out, "BE68539007547034: valid\n");
    EXPECT_EQ(runZor({"check", "iban", "BE68539007547034", "--format=tsv"}).exitCode, 2);
}

TEST(ZorValues, DoNotDependOnTheEnvironment) {
    ZorProcess::Setting setting;
    setting.environment = Words{"LC_ALL=ar_EG.UTF-8", "LANG=fr_FR", "ICU_DATA=/nowhere", "TZ=nowhere"};
    EXPECT_EQ(runZor({"format", "amount", "1234,5"}, "", setting).out, "1\u00A0234,50\n");
}

TEST(ZorValues, TwoDashesEndTheOptions) {
    EXPECT_EQ(runZor({"check", "iban", "--", "--exact"}).out, "--exact: invalid\n");
}

TEST(ZorErrorCode, JoinsPrefixAndCode) {
    EXPECT_EQ(runZor({"error-code", "NSURLErrorDomain", "-1009"}).out, "UR4114\n");
    EXPECT_EQ(runZor({"error-code", "be.zor.mobile.frontend", "17"}).out, "GEN17\n");
    EXPECT_EQ(runZor({"error-code", "be.zor.mobile.webseal", "0", "0x1234"}).out, "WS0x1234\n");
}

TEST(ZorErrorCode, ADomainWithoutMapperExitsWithOne) {
    const RunResult result = runZor({"error-code", "nsurlerrordomain", "1"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "(null)(null)\n");
}

TEST(ZorErrorCode, CodesAreWholeNumbers) {
    for (const char* code : {"", "x", "1.5", "9223372036854775808", "1 "}) {
        EXPECT_EQ(runZor({"error-code", "NSURLErrorDomain", code}).exitCode, 2) << code;
    }
    EXPECT_EQ(runZor({"error-code", "NSURLErrorDomain"}).exitCode, 2);
}

TEST(ZorUsage, MistakesExitWithTwoAndOneLine) {
    const std::vector<Words> mistakes{
        {},
        {"chekc"},
        {"check"},
        {"check", "ibann"},
        {"check", "iban", "--unknown"},
        {"check", "iban", "--format=xml"},
        {"check", "iban", "--in=xml"},
        {"check", "iban", "--field=0"},
        {"check", "iban", "--field=x"},
        {"check", "iban", "--field"},
        {"check", "iban", "--key=verdict"},
        {"check", "iban", "--emit="},
        {"check", "iban", "--emit=verdict,colour"},
        {"check", "iban", "--emit=verdict,verdict"},
        {"check", "iban", "--labels=yes"},
        {"check", "iban", "--labels=a,a"},
        {"check", "iban", "--null=maybe"},
        {"check", "iban", "--sep=pipe", "--format=csv"},
        {"check", "iban", "--sep=comma", "--format=tsv"},
        {"check", "iban", "--flush=never"},
        {"check", "iban", "--max-record=0"},
        {"check", "iban", "--jobs=0"},
        {"check", "iban", "--jobs=257"},
        {"check", "iban", "--stats=stdout"},
        {"check", "iban", "--today=2026-01-01"},
        {"--json", "extra"},
    };
    for (const Words& words : mistakes) {
        const RunResult result = runZor(words, "BE68539007547034\n");
        const std::string shown = ::testing::PrintToString(words);
        EXPECT_EQ(result.exitCode, 2) << shown;
        EXPECT_EQ(result.out, "") << shown;
        EXPECT_TRUE(result.err.starts_with("zor: ")) << shown << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << shown << result.err;
    }
}

TEST(ZorUsage, AnOptionNeedsItsValueAndAFlagHasNone) {
    for (const Words& words : {Words{"--field="}, Words{"--field"}, Words{"--field=", "2"}}) {
        Words all{"check", "iban"};
        all.insert(all.end(), words.begin(), words.end());
        const RunResult result = runZor(all, "x\n");
        EXPECT_EQ(result.err, "zor: --field: a value is missing\n") << ::testing::PrintToString(words);
        EXPECT_EQ(result.exitCode, 2);
    }
    EXPECT_EQ(runZor({"check", "iban", "--keep-cr=false"}, "x\n").err, "zor: --keep-cr: takes no value\n");
    EXPECT_EQ(runZor({"check", "iban", "--field", "2", "--format", "csv"}, "x,BE68539007547034\n").out,
              "x,BE68539007547034,1\n");
}

TEST(ZorUsage, ShowsNoMoreOfAWrongWordThanTheNameOfAnOption) {
    EXPECT_EQ(runZor({"check", "iban", "--filed=SECRET"}).err,
              "zor: --filed: there is no such option; see zor --help\n");
    for (const char* word : {"-SECRET", "--SECRET", "--secret SECRET", "-x=SECRET"}) {
        EXPECT_EQ(runZor({"check", "iban", word}).err,
                  "zor: a word that begins with \"-\" is no option; put -- before such values, or see zor --help\n");
    }
    for (const Words& words : {Words{"SECRET"}, Words{"check", "SECRET"}, Words{"check", "iban", "--format=SECRET"},
                               Words{"check", "iban", "--field=SECRET"}, Words{"check", "iban", "--emit=SECRET"},
                               Words{"check", "name", "--min=SECRET"}, Words{"error-code", "a", "SECRET"}}) {
        const RunResult result = runZor(words);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err.find("SECRET"), std::string::npos) << result.err;
    }
}

TEST(ZorUsage, AnyOtherWordIsAValueAsItStands) {
    for (const char* word :
         {"[a,b]", "[]", "{}", "\"a\"", "'a'", "%%", "-", "-5", "-1x", "++x", "/x", "@x", "a=b", ""}) {
        EXPECT_EQ(runZor({"format", "bcmc", word}).out, std::string(word) + "\n");
    }
    for (const char* word : {"-x", "--help", "--", "--field=2"}) {
        EXPECT_EQ(runZor({"format", "bcmc", "--", word}).out, std::string(word) + "\n");
    }
    EXPECT_EQ(runZor({"format", "bcmc", "a", "--", "b"}).out, "a\nb\n");
}

TEST(ZorVersion, NamesTheLibraryAndItsTables) {
    EXPECT_EQ(runZor({"--version"}).out, "zor " ZOR_TEST_VERSION "\n");
    const std::string json = runZor({"--version", "--json"}).out;
    EXPECT_TRUE(json.starts_with("{\"library\":\"" ZOR_TEST_VERSION "\",\"profiles\":[{\"name\":\"account-numbers\","))
        << json;
    EXPECT_TRUE(json.ends_with("\"}]}\n")) << json;
}

}  // namespace
}  // namespace zor::testing
