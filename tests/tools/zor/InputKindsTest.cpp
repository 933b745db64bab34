// SPDX-License-Identifier: Apache-2.0
#include "ZorProcess.h"

#include <tools/zor/KindGroups.h>

#include <gtest/gtest.h>

namespace zor::testing {
namespace {

TEST(InputKinds, LimitsAreOneCharacterAndNoneUnlessTold) {
    for (const char* kind : {"name", "text", "postal-code"}) {
        EXPECT_EQ(runZor({"check", kind, "--", ""}).exitCode, 1) << kind;
        EXPECT_EQ(runZor({"check", kind, "a", std::string(50000, 'a')}).exitCode, 0) << kind;
    }
}

TEST(InputKinds, LimitsCountBothEnds) {
    for (const char* kind : {"name", "text", "postal-code"}) {
        EXPECT_EQ(runZor({"check", kind, "--min=2", "--max=3"}, "a\nab\nabc\nabcd\n").out, "0\n1\n1\n0\n") << kind;
        EXPECT_EQ(runZor({"check", kind, "--min=0"}, "\na\n").out, "1\n1\n") << kind;
        EXPECT_EQ(runZor({"check", kind, "--max=2"}, "\na\nabc\n").out, "0\n1\n0\n") << kind;
        EXPECT_EQ(runZor({"check", kind, "--max=0", "--min=0"}, "\na\n").out, "1\n0\n") << kind;
    }
}

TEST(InputKinds, LimitsThatAllowNothingAreRefused) {
    for (const char* kind : {"name", "text", "postal-code"}) {
        const std::string prefix = std::string("zor: ") + kind;
        EXPECT_EQ(runZor({"check", kind, "--min=3", "--max=2"}, "ab\n").err, prefix + ": --min is above --max\n");
        EXPECT_EQ(runZor({"check", kind, "--max=2", "--min=3", "ab"}).err, prefix + ": --min is above --max\n");
        EXPECT_EQ(runZor({"check", kind, "--max=0"}, "ab\n").exitCode, 2);
        for (const char* limit : {"--min=-1", "--min=x", "--min=16777216", "--min=1.5"}) {
            const RunResult result = runZor({"check", kind, limit}, "ab\n");
            EXPECT_EQ(result.err, "zor: --min: a number from 0 to 16777215 is needed\n") << limit;
            EXPECT_EQ(result.exitCode, 2);
        }
    }
}

TEST(InputKinds, ExplanationsSayWhatTheyCount) {
    EXPECT_EQ(runZor({"explain", "name", "--min=2", "J"}).out,
              "J: invalid, tooShort: found 1 character, expected at least 2\n");
    EXPECT_EQ(runZor({"explain", "email", "jan@zor.b"}).out,
              "jan@zor.b: invalid, tooShort: found 1 letter of the last label, expected at least 2\n");
    EXPECT_EQ(runZor({"explain", "mobile-phone", "0475 12 34"}).out,
              "0475 12 34: invalid, tooShort: found 8 digits, expected at least 10\n");
    EXPECT_EQ(runZor({"explain", "house-number", "123456"}).out,
              "123456: invalid, tooLong: found 6 characters, expected at most 5\n");
    EXPECT_EQ(runZor({"explain", "email", "jan@zor"}).out,
              "jan@zor: invalid, incomplete: the text ends too early, at position 7\n");
    EXPECT_EQ(runZor({"explain", "street", ""}).out, ": invalid, empty: there is nothing to check\n");
}

TEST(InputKinds, AMessageMayHoldTheLineEndsThatItsRecordEscapes) {
    EXPECT_EQ(runZor({"explain", "message", "--format=tsv"}, "two\\nlines\ta\\tb\n").out,
              "two\\nlines\ta\\tb\t1\tnone\t\\N\n");
    EXPECT_EQ(runZor({"explain", "message", "--format=tsv", "--field=2"}, "two\\nlines\ta\\tb\n").out,
              "two\\nlines\ta\\tb\t0\tunexpectedCharacter\t1\n");
    EXPECT_EQ(runZor({"format", "message", "--in=jsonl", "--out=plain"}, "{\"value\":\"two\\nlines\"}\n").out,
              "two\uFFFDlines\n");
    EXPECT_EQ(runZor({"check", "backend-text", "--format=tsv"}, "two\\nlines\n").out, "two\\nlines\t0\n");
}

TEST(InputKinds, BackendTextsAreMeasuredInUnits) {
    EXPECT_EQ(runZor({"check", "backend-text"}, std::string(70, 'a') + "\n" + std::string(71, 'a') + "\n").out,
              "1\n0\n");
}

}  // namespace
}  // namespace zor::testing
