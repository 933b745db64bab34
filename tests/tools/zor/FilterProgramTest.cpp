// SPDX-License-Identifier: Apache-2.0
//
// The command as data engines use it: a child process that answers line by line.

#include "ZorProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <random>

namespace zor::testing {
namespace {

constexpr std::string_view kValid = "BE68539007547034";
constexpr std::string_view kMixed = "BE68539007547034\n\nBE68 5390 0754 7034\r\nx\xFF\nNL91ABNA0417164300";
constexpr std::string_view kMixedVerdicts = "1\n0\n1\n0\n1\n";

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (; count > 0; --count) result += text;
    return result;
}

TEST(ZorFilter, AnswersEachLineInOrderAndSaysNothingElse) {
    const RunResult result = runZor({"check", "iban"}, kMixed);
    EXPECT_EQ(result.out, kMixedVerdicts);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(ZorFilter, AllInvalidInputIsNoFailure) {
    const RunResult result = runZor({"check", "iban"}, repeated("nonsense\n", 1000));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, repeated("0\n", 1000));
    EXPECT_EQ(runZor({"check", "iban", "--fail-on-invalid"}, "nonsense\n").exitCode, 1);
}

TEST(ZorFilter, ExplainAndFormatAreFiltersToo) {
    EXPECT_EQ(runZor({"explain", "iban"}, "BE68539007547034\nBE\n").out, "1\tnone\t\\N\n0\ttooShort\t2\n");
    EXPECT_EQ(runZor({"format", "bban"}, "539007547034\n").out, "539-0075470-34\n");
    EXPECT_EQ(runZor({"format", "iban", "--emit=normalized,formatted"}, "be68 5390-0754 7034\n").out,
              "be68539007547034\tBE68\u00A05390\u00A00754\u00A07034\n");
}

TEST(ZorFilter, WorksWithoutEnvironmentAndFromAnywhere) {
    ZorProcess::Setting bare;
    bare.environment = Words();
    bare.directory = "/";
    const RunResult result = runZor({"check", "iban"}, kMixed, bare);
    EXPECT_EQ(result.out, kMixedVerdicts);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(ZorFilter, ReadsItsOwnVariablesOnly) {
    ZorProcess::Setting setting;
    setting.environment = Words{"ZOR_STATS=hadoop",  "STATS=stderr",       "LANG=xx_XX.broken", "TZ=nowhere",
                                "ICU_DATA=/nowhere", "mapreduce_job_id=1", "ZOR_FORMAT=csv"};
    EXPECT_EQ(runZor({"check", "iban"}, "x\n", setting).err,
              "reporter:counter:zor,valid,0\nreporter:counter:zor,invalid,1\nreporter:counter:zor,absent,0\n");
    EXPECT_EQ(runZor({"check", "iban", "--stats=stderr"}, "x\n", setting).err,
              "zor: 1 records, 0 valid, 1 invalid, 0 absent\n");
    const RunResult without = runZor({"check", "iban", "--no-env"}, "x\n", setting);
    EXPECT_EQ(without.err, "");
    EXPECT_EQ(without.out, "0\n");
    setting.environment = Words{"ZOR_JOBS=none"};
    EXPECT_EQ(runZor({"check", "iban"}, "x\n", setting).exitCode, 2);
}

TEST(ZorFilter, AnswersBeforeTheInputEnds) {
    ZorProcess zor({"check", "iban"});
    for (int round = 0; round < 20; ++round) {
        zor.write(std::string(kValid) + "\nx\n");
        EXPECT_EQ(zor.readLines(2, round == 0 ? kPatience : kAnswerLimit), "1\n0\n");
    }
    EXPECT_EQ(zor.finish().exitCode, 0);
}

TEST(ZorFilter, AnswersBeforeTheInputEndsWithSeveralJobs) {
    ZorProcess zor({"check", "iban", "--jobs=4"});
    for (int round = 0; round < 20; ++round) {
        zor.write(std::string(kValid) + "\n");
        EXPECT_EQ(zor.readLines(1, round == 0 ? kPatience : kAnswerLimit), "1\n");
    }
    EXPECT_EQ(zor.finish().exitCode, 0);
}

TEST(ZorFilter, HoldsADialogueInChunks) {
    ZorProcess zor({"check", "iban", "--chunk-header", "--flush=block"});
    for (const std::size_t records : std::array<std::size_t, 5>{0, 1, 0, 65536, 3}) {
        const std::string chunk = std::to_string(records) + "\n" + repeated(std::string(kValid) + "\n", records);
        // The answer to a large chunk fills its pipe while the chunk is still being written.
        std::string answer;
        for (std::string_view rest = chunk; !rest.empty();) {
            zor.write(rest.substr(0, 4096));
            rest.remove_prefix(std::min<std::size_t>(rest.size(), 4096));
            answer += zor.readLines(1, std::chrono::milliseconds(1));
        }
        const auto answered = static_cast<std::size_t>(std::count(answer.begin(), answer.end(), '\n'));
        answer += zor.readLines(records - answered, kPatience);
        EXPECT_EQ(answer, repeated("1\n", records));
    }
    EXPECT_EQ(zor.finish().exitCode, 0);
}

TEST(ZorFilter, ABrokenChunkExitsWithThree) {
    for (const char* input : {"2\nx\n", "many\n", "1\nx\nx\n"}) {
        const RunResult result = runZor({"check", "iban", "--chunk-header"}, input);
        EXPECT_EQ(result.exitCode, 3) << input;
        EXPECT_TRUE(result.err.starts_with("zor: ")) << result.err;
    }
}

TEST(ZorFilter, ARunIsEndedByTheSignalOfAClosedPipe) {
    ZorProcess zor({"check", "iban"});
    zor.write("x\n");
    EXPECT_EQ(zor.readLines(1, kPatience), "0\n");
    zor.closeOutput();
    const RunResult result = zor.finish(repeated("x\n", 1 << 20));
    EXPECT_EQ(result.signal, SIGPIPE);
    EXPECT_EQ(result.err, "");
}

TEST(ZorFilter, AClosedPipeExitsAsQuietlyWhereTheSignalIsIgnored) {
    ZorProcess::Setting setting;
    setting.ignoresSigpipe = true;
    for (const char* jobs : {"--jobs=1", "--jobs=3"}) {
        ZorProcess zor({"check", "iban", jobs}, setting);
        zor.closeOutput();
        const RunResult result = zor.finish(repeated("x\n", 1 << 20));
        EXPECT_EQ(result.exitCode, 141);
        EXPECT_EQ(result.err, "");
    }
}

TEST(ZorFilter, StopsAtOnceBySignal) {
    for (const int signal : {SIGTERM, SIGINT}) {
        ZorProcess zor({"check", "iban"});
        zor.write("x\n");
        EXPECT_EQ(zor.readLines(1, kPatience), "0\n");
        ::kill(zor.id(), signal);
        EXPECT_EQ(zor.wait().signal, signal);
    }
}

TEST(ZorFilter, AFullDeviceExitsWithThree) {
    const std::string command = std::string("exec \"") + ZOR_PROGRAM + "\" check iban >/dev/full";
    ZorProcess::Setting shell;
    shell.program = "/bin/sh";
    const RunResult result = runZor({"-c", command}, "secret\n", shell);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_TRUE(result.err.starts_with("zor: cannot write: ")) << result.err;
}

TEST(ZorFilter, AFolderForInputExitsWithThree) {
    const std::string command = std::string("exec \"") + ZOR_PROGRAM + "\" check iban </";
    ZorProcess::Setting shell;
    shell.program = "/bin/sh";
    const RunResult result = runZor({"-c", command}, "", shell);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_TRUE(result.err.starts_with("zor: cannot read: ")) << result.err;
}

TEST(ZorFilter, NothingOfTheDataReachesStandardError) {
    std::mt19937 random(3);
    std::string input;
    for (int line = 0; line < 2000; ++line) {
        input += "SECRET";
        input += static_cast<char>(random() % 256);
        input += random() % 2 == 0 ? "\n" : "\"{\\,\t\n";
    }
    for (const char* format : {"plain", "tsv", "tsv-raw", "csv", "jsonl"}) {
        const RunResult result =
            runZor({"explain", "iban", std::string("--format=") + format, "--stats=stderr", "--max-record=64"}, input);
        EXPECT_EQ(result.err.find("SECRET"), std::string::npos);
        EXPECT_EQ(result.exitCode, 0);
    }
    EXPECT_EQ(runZor({"check", "iban", "--chunk-header"}, "SECRET\n").err.find("SECRET"), std::string::npos);
}

TEST(ZorFilter, OutputIsUtf8WhateverComesIn) {
    std::mt19937 random(19);
    std::string input(200000, '\0');
    for (char& byte : input) byte = static_cast<char>(random());
    for (const char* format : {"plain", "tsv", "tsv-raw", "csv", "jsonl"}) {
        const RunResult result =
            runZor({"format", "iban", std::string("--format=") + format, "--emit=reason,normalized,formatted"}, input);
        // The strict reading of the command's own text decoder, asked about the whole output as one value.
        EXPECT_EQ(result.out.find('\0'), std::string::npos);
        EXPECT_EQ(runZor({"explain", "iban", "--emit=reason", "--max-record=1073741824"},
                         [&] {
                             std::string line = result.out;
                             std::replace(line.begin(), line.end(), '\n', ' ');
                             return line;
                         }())
                      .out,
                  "tooLong\n")
            << format;
    }
}

TEST(ZorFilter, SaysOnATerminalWhatItWaitsFor) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    const std::string command = std::string("exec \"") + ZOR_PROGRAM + "\" check iban <" + ::ptsname(terminal);
    ZorProcess::Setting shell;
    shell.program = "/bin/sh";
    ZorProcess zor({"-c", command}, shell);
    const std::string typed = std::string(kValid) + "\n\x04";
    ASSERT_EQ(::write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    const RunResult result = zor.finish();
    EXPECT_EQ(result.out, "1\n");
    EXPECT_EQ(result.err, "zor: one record a line from the terminal; Ctrl-D ends\n");
    ::close(terminal);
}

}  // namespace
}  // namespace zor::testing
