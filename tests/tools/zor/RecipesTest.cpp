// SPDX-License-Identifier: Apache-2.0
//
// The recipes of docs/filter.md, with each engine's way of starting a command and of reading its output.

#include "ZorProcess.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <sstream>

namespace zor::testing {
namespace {

const ZorProcess::Setting kNoEnvironment{
    .program = {}, .environment = Words(), .directory = "/", .ignoresSigpipe = false};

// How Spark, ClickHouse and Hadoop split a command line that has no quotes.
Words splitAtSpaces(const std::string& command) {
    Words words;
    std::istringstream stream(command);
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

// By the shell, with zor found on the search path.
RunResult runShell(const std::string& script, std::string_view input = {}) {
    const std::string program = ZOR_PROGRAM;
    ZorProcess::Setting setting;
    setting.program = "/bin/sh";
    setting.environment = Words{"PATH=" + program.substr(0, program.rfind('/')) + ":/usr/bin:/bin"};
    return runZor({"-c", script}, input, setting);
}

TEST(Recipes, SparkFromScala) {
    EXPECT_EQ(
        runZor(splitAtSpaces("check iban --format=tsv --emit=verdict,reason"), "BE68539007547034\nBE\n", kNoEnvironment)
            .out,
        "BE68539007547034\t1\tnone\nBE\t0\ttooShort\n");
    // An empty partition starts the command too, and adds no row.
    EXPECT_EQ(runZor(splitAtSpaces("check iban --format=tsv --emit=verdict,reason"), "", kNoEnvironment).out, "");
}

TEST(Recipes, SparkFromPython) {
    const RunResult result = runZor(splitAtSpaces("check iban --format=plain"), "\nBE68539007547034\n", kNoEnvironment);
    EXPECT_EQ(result.out, "0\n1\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(Recipes, HiveTransform) {
    EXPECT_EQ(runZor(splitAtSpaces("check iban --format=tsv-raw --field=2"), "7\tBE68539007547034\n8\t\\N\n").out,
              "7\tBE68539007547034\t1\n8\t\\N\t\\N\n");
}

TEST(Recipes, HadoopStreaming) {
    ZorProcess::Setting setting;
    setting.environment = Words{"mapreduce_job_name=zor", "stream_map_input_ignoreKey=true"};
    const RunResult result =
        runZor(splitAtSpaces("check iban --format=tsv --stats=hadoop"), "BE68539007547034\nx\n", setting);
    EXPECT_EQ(result.out, "BE68539007547034\t1\nx\t0\n");
    EXPECT_EQ(result.err,
              "reporter:counter:zor,valid,1\nreporter:counter:zor,invalid,1\nreporter:counter:zor,absent,0\n");
}

TEST(Recipes, ClickHousePool) {
    ZorProcess zor(splitAtSpaces("check iban --in=tsv --out=plain --chunk-header"), kNoEnvironment);
    zor.write("2\nBE68539007547034\na\\tb\n");
    EXPECT_EQ(zor.readLines(2, kPatience), "1\n0\n");
    zor.write("1\nBE68539007547034\n");
    EXPECT_EQ(zor.readLines(1, kAnswerLimit), "1\n");
    EXPECT_EQ(zor.finish().exitCode, 0);
}

TEST(Recipes, PostgresCopyFromProgram) {
    EXPECT_EQ(runShell("zor check iban --format=tsv --field=2", "1\tBE68539007547034\n2\t\\N\n3\tx\\\\y\n").out,
              "1\tBE68539007547034\t1\n2\t\\N\t\\N\n3\tx\\\\y\t0\n");
}

TEST(Recipes, DuckDbReadCsv) {
    EXPECT_EQ(runShell("zor check iban --format=csv --field=2", "1,BE68539007547034\n\"a,b\",x\n").out,
              "1,BE68539007547034,1\n\"a,b\",x,0\n");
    EXPECT_EQ(runShell("zor --version").exitCode, 0);
}

TEST(Recipes, BlocksOfAFileGiveTheAnswersOfTheFile) {
    const std::string block = "BE68539007547034\nx\n";
    EXPECT_EQ(runZor({"check", "iban"}, block).out + runZor({"check", "iban"}, block).out,
              runZor({"check", "iban"}, block + block).out);
}

TEST(Recipes, PasteInTheShell) {
    EXPECT_EQ(runShell("cat >in.$$ && zor check iban <in.$$ | paste in.$$ -; rm in.$$", "BE68539007547034\nx\n").out,
              "BE68539007547034\t1\nx\t0\n");
}

TEST(Recipes, AreThoseOfThePage) {
    std::ifstream file(ZOR_SOURCE_DIRECTORY "/docs/filter.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    for (const char* recipe :
         {"\"check\", \"iban\", \"--format=tsv\", \"--emit=verdict,reason\"", "check iban --format=plain\"",
          "check iban --format=tsv-raw --field=2", "check iban --format=tsv --stats=hadoop",
          "check iban --in=tsv --out=plain --chunk-header", "check iban --format=tsv --field=2",
          "check iban --format=csv --field=2", "zor check iban < in.txt | paste in.txt -"}) {
        EXPECT_NE(page.find(recipe), std::string::npos) << recipe;
    }
}

}  // namespace
}  // namespace zor::testing
