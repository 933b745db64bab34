// SPDX-License-Identifier: Apache-2.0
//
// zor-filter: one file that an engine ships to where nothing is installed.

#include "KindSamples.h"
#include "ZorProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace zor::testing {
namespace {

namespace fs = std::filesystem;

ZorProcess::Setting filterProgram() {
    return {.program = ZOR_FILTER_PROGRAM, .environment = Words(), .directory = "/", .ignoresSigpipe = false};
}

TEST(ZorFilterProgram, IsSmallEnoughToBeShippedAround) {
    EXPECT_LE(fs::file_size(ZOR_FILTER_PROGRAM), 6U * 1000 * 1000);
}

TEST(ZorFilterProgram, NeedsNoLoaderAndNoLibrary) {
    std::ifstream file(ZOR_FILTER_PROGRAM, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(bytes.find("/lib64/ld-linux"), std::string::npos);
    EXPECT_EQ(bytes.find("libZORFoundation.so"), std::string::npos);
}

TEST(ZorFilterProgram, AnswersAsTheFullCommandDoes) {
    const std::string input =
        "BE68539007547034\nBE68 5390 0754 7034\nbe68539007547034\nx\xFF\n\u00E968539007547034\n\u00DF1\n\uFB03001234\n"
        "539-0075470-34\n\uFF21\uFF22\n\U0001F600BE\n\u01C5123456\n";
    for (const char* kind : {"iban", "bban", "account"}) {
        const Words words{"explain", kind, "--format=tsv", "--emit=verdict,reason,offset,normalized,formatted"};
        EXPECT_EQ(runZor(words, input, filterProgram()).out, runZor(words, input).out) << kind;
    }
    for (const KindSample& sample : kKindSamples) {
        if (sample.kind == "amount") continue;
        Words words{"format", std::string(sample.kind), "--emit=verdict,reason,offset,normalized,formatted"};
        if (!sample.option.empty()) words.emplace_back(sample.option);
        const std::string values =
            std::string(sample.valid) + "\n" + std::string(sample.invalid) + "\n\u0661\U0001F600\u0301x\xFF\n";
        EXPECT_EQ(runZor(words, input + values, filterProgram()).out, runZor(words, input + values).out) << sample.kind;
    }
    EXPECT_EQ(runZor({"check", "iban", "--jobs=4"}, input, filterProgram()).out, runZor({"check", "iban"}, input).out);
}

TEST(ZorFilterProgram, RefusesKindsThatNeedLocaleData) {
    const RunResult result = runZor({"check", "amount"}, "12\n", filterProgram());
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
}

TEST(ZorFilterProgram, NamesItsVersion) {
    EXPECT_EQ(runZor({"--version"}, "", filterProgram()).out, runZor({"--version"}).out);
}

}  // namespace
}  // namespace zor::testing
