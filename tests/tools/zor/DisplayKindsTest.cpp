// SPDX-License-Identifier: Apache-2.0
#include "ZorProcess.h"

#include <gtest/gtest.h>

namespace zor::testing {
namespace {

TEST(DisplayKinds, PhonesBecomeLinks) {
    EXPECT_EQ(runZor({"format", "phone", "+32 (0)2 123.45.67", ""}).out, "tel://+32021234567\ntel://\n");
    EXPECT_EQ(runZor({"format", "phone", "--token=,1#", "02/1"}).out, "tel://02/1,1#\n");
}

TEST(DisplayKinds, ChallengesAreSplitFromSevenCharactersOn) {
    EXPECT_EQ(runZor({"format", "challenge"}, "123456\n1234567\n\n").out, "123456\n1234\u00A0567\n\n");
}

TEST(DisplayKinds, LoginCodesEndWithTheEighthCharacter) {
    EXPECT_EQ(runZor({"format", "login-code"}, "1234\n1234 5678 9\n").out, "1234\n1234\u00A05678\n");
}

TEST(DisplayKinds, SlotsOfAPatternAreWhatTheUserSays) {
    EXPECT_EQ(runZor({"format", "pattern", "--pattern=XX/XX", "123", "12345"}).out, "12/3\n12/34\n");
    EXPECT_EQ(runZor({"format", "pattern", "--pattern=XX-##", "--slot=#", "123"}).out, "XX-12\n");
    EXPECT_EQ(runZor({"format", "pattern", "--pattern=\u00E9-\u00E9", "--slot=e\u0301", "12"}).out, "1-2\n");
}

TEST(DisplayKinds, APatternIsNeeded) {
    const RunResult result = runZor({"format", "pattern"}, "1\n");
    EXPECT_EQ(result.err, "zor: pattern: --pattern is missing\n");
    EXPECT_EQ(result.exitCode, 2);
    for (const char* option : {"--pattern=\xFF", "--slot=XX", "--slot=\xFF"}) {
        const RunResult refused = runZor({"format", "pattern", "--pattern=X", option, "1"});
        EXPECT_EQ(refused.exitCode, 2) << option;
        EXPECT_TRUE(refused.err.ends_with(": not one of its values; see zor check --help\n")) << refused.err;
    }
}

TEST(DisplayKinds, APatternKeepsARecordOnItsLine) {
    EXPECT_EQ(runZor({"format", "pattern", "--pattern=X\nX"}, "12\n").out, "1\uFFFD2\n");
    EXPECT_EQ(runZor({"format", "phone", "--token=\n"}, "12\n").out, "tel://12\uFFFD\n");
}

TEST(DisplayKinds, AVerdictIsWhetherTheRecordCouldBeRead) {
    EXPECT_EQ(runZor({"format", "challenge", "--emit=verdict,reason,formatted"}, "12345678\nx\xFF\n").out,
              "1\tnone\t1234\u00A05678\n0\tbad_utf8\tx\uFFFD\n");
    EXPECT_EQ(runZor({"format", "challenge", "--emit=verdict,reason,offset"}, "1\n").out, "1\tnone\t\\N\n");
}

}  // namespace
}  // namespace zor::testing
