// SPDX-License-Identifier: Apache-2.0
//
// The program as a whole: its last line and its exit status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/TemporaryDirectory.h>

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

using support::TemporaryDirectory;
using testing::EndsWith;

constexpr const char* kPass = "{\"op\": \"ZORMod97.modulo97:\", \"args\": [\"98\"], \"result\": 1}\n";
constexpr const char* kWrongResult = "{\"op\": \"ZORMod97.modulo97:\", \"args\": [\"98\"], \"result\": 2}\n";

struct Finished {
    int status;
    std::string output;
};

Finished runProgram(const std::string& arguments) {
    FILE* pipe = popen((std::string(ZOR_CONFORMANCE_PROGRAM) + " " + arguments + " 2>&1").c_str(), "r");
    std::string output;
    std::array<char, 4096> piece{};
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        output.append(piece.data(), count);
    return {WEXITSTATUS(pclose(pipe)), output};
}

Finished runLines(const std::string& lines) {
    const TemporaryDirectory directory;
    directory.write("cases.jsonl", lines);
    return runProgram(directory.path().string());
}

TEST(ConformanceProgram, ExitsZeroWhenEveryCasePasses) {
    const Finished run = runLines(std::string(kPass) + kPass);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "2 passed, 0 failed\n");
}

TEST(ConformanceProgram, ExitsNonZeroAfterAWrongResultABadLineOrAnUnknownOperation) {
    for (const std::string bad :
         {kWrongResult, "{\n", "\n", "[]\n", "{\"op\": \"no.such\", \"args\": [], \"result\": 1}\n"}) {
        const Finished run = runLines(kPass + bad);
        EXPECT_EQ(run.status, 1) << bad;
        EXPECT_THAT(run.output, EndsWith("\n1 passed, 1 failed\n")) << bad;
    }
}

TEST(ConformanceProgram, ExitsNonZeroForADirectoryWithoutVectors) {
    const TemporaryDirectory empty;
    const Finished run = runProgram(empty.path().string());
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, EndsWith("\n0 passed, 1 failed\n"));
}

TEST(ConformanceProgram, ExitsNonZeroWithoutADirectory) { EXPECT_EQ(runProgram("").status, 2); }

}  // namespace
