// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/Filter.h>

#include "../FilterRun.h"

#include <tools/zor/Failure.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace zor::testing {
namespace {

const std::vector<std::vector<std::string>> kAllFormats{
    {"--format=plain"}, {"--format=tsv"}, {"--format=tsv-raw"}, {"--format=csv"}, {"--format=jsonl"},
};

std::size_t lineEnds(std::string_view bytes) {
    return static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
}

TEST(Filter, AnEmptyInputGivesAnEmptyOutput) {
    for (const auto& format : kAllFormats) EXPECT_EQ(filtered(format, ""), "");
}

TEST(Filter, OneLineEndIsOneEmptyRecord) {
    EXPECT_EQ(filtered({}, "\n"), "0\n");
    EXPECT_EQ(filtered({"--format=tsv"}, "\n"), "\t0\n");
    EXPECT_EQ(filtered({"--format=csv"}, "\n"), ",0\n");
    EXPECT_EQ(filtered({"--format=jsonl"}, "\n"), "{\"verdict\":false}\n");
}

TEST(Filter, ALastRecordWithoutLineEndIsARecord) {
    EXPECT_EQ(filtered({}, "v\nv"), "1\n1\n");
    EXPECT_EQ(filtered({"--format=tsv"}, "a\nv"), "a\t0\nv\t1\n");
}

TEST(Filter, AFileMayBeginWithAByteOrderMark) {
    const std::string mark = "\xEF\xBB\xBF";
    EXPECT_EQ(filtered({}, mark), "");
    EXPECT_EQ(filtered({}, mark + "v\nx\n"), "1\n0\n");
    EXPECT_EQ(filtered({"--format=tsv"}, mark + "v\r\n"), "v\t1\n");
    EXPECT_EQ(filtered({"--format=csv"}, mark + "\"v\"\n"), "\"v\",1\n");
    EXPECT_EQ(filtered({"--format=jsonl"}, mark + "{\"value\":\"v\"}"), "{\"value\":\"v\",\"verdict\":true}\n");
    EXPECT_EQ(filtered({"--chunk-header"}, mark + "1\nv\n"), "1\n");
    EXPECT_EQ(filtered({"--jobs=3"}, mark + "v\n" + mark + "v\n"), "1\n0\n");
}

TEST(Filter, OneCarriageReturnBeforeTheLineEndIsTakenOut) {
    EXPECT_EQ(filtered({"--emit=formatted"}, "v\r\n"), "<v>\n");
    EXPECT_EQ(filtered({"--format=tsv"}, "v\r\r\n"), "v\\r\t1\n");
    EXPECT_EQ(filtered({"--format=tsv", "--keep-cr"}, "v\r\n"), "v\\r\t1\n");
    EXPECT_EQ(filtered({}, "\r\n"), "0\n");
}

TEST(Filter, CarriageReturnsNeverComeOut) {
    for (const auto& format : kAllFormats) {
        for (const char* input : {"v\rx\n", "\r\r\n", "\"v\r\"\n", "{\"value\"\r:\"v\"\r}\n", "v\\\r\n", "\\\rv\t\r"}) {
            for (const char* extra : {"--no-env", "--keep-cr", "--emit=verdict,formatted"}) {
                std::vector<std::string> options = format;
                options.emplace_back(extra);
                EXPECT_EQ(filtered(options, input).find('\r'), std::string::npos) << options[0] << extra << input;
            }
        }
    }
}

TEST(Filter, LongPlainLinesAreAnsweredAsShortOnes) {
    for (std::size_t length = 1; length < 200; ++length) {
        const std::string valid = "v" + std::string(length - 1, 'x') + "\n";
        const std::string invalid = std::string(length, 'x') + "\n";
        EXPECT_EQ(filtered({}, valid + invalid + valid), "1\n0\n1\n") << length;
        EXPECT_EQ(filtered({"--emit=formatted"}, valid), "<v" + std::string(length - 1, 'x') + ">\n");
    }
}

TEST(Filter, IllFormedRecordsAreSeenByNoRule) {
    EXPECT_EQ(filtered({}, "v\xFF\nv\xC3\nv\xC3\xA9\n"), "0\n0\n1\n");
    EXPECT_EQ(filtered({"--emit=reason"}, "v\xFF\n"), "bad_utf8\n");
    EXPECT_EQ(filtered({"--emit=reason"}, std::string_view("v\0\n", 3)), "bad_utf8\n");
    EXPECT_EQ(filtered({"--emit=verdict,reason,offset"}, "v\xED\xA0\x80\n"), "0\tbad_utf8\t\\N\n");
}

TEST(Filter, ShownAgainBadBytesAreMended) {
    EXPECT_EQ(filtered({"--emit=formatted"}, "v\xFFz\n"), "v\uFFFDz\n");
    EXPECT_EQ(filtered({"--format=tsv"}, std::string_view("v\xFF\t\xC3\xA9\0\n", 7)), "v\\xFF\t\u00E9\\x00\t0\n");
    EXPECT_EQ(filtered({"--format=tsv-raw"}, "v\xFF\n"), "v\uFFFD\t0\n");
    EXPECT_EQ(filtered({"--format=csv"}, "v\xFF,\"\xFE\"\n"), "v\uFFFD,\"\uFFFD\",0\n");
    EXPECT_EQ(filtered({"--format=jsonl"}, "{\"value\":\"v\xFF\"}\n"), "{\"value\":\"v\uFFFD\",\"verdict\":false}\n");
}

TEST(Filter, RecordsAboveTheLimitAreTooLong) {
    const std::string fits = "v" + std::string(99, 'x');
    const std::string options = "--max-record=100";
    for (const char* end : {"\n", "\r\n", ""}) {
        EXPECT_EQ(filtered({options, "--emit=reason"}, fits + end), "none\n");
        EXPECT_EQ(filtered({options, "--emit=reason"}, fits + "x" + end), "too_long\n");
    }
    EXPECT_EQ(filtered({options}, fits + "x\nv\n"), "0\n1\n");
}

TEST(Filter, ALineOfManyReadsIsOneRecord) {
    const std::string line(std::size_t{3} << 20, 'v');
    EXPECT_EQ(filtered({"--emit=reason"}, "v\n" + line + "\nv"), "none\ntoo_long\nnone\n");
    EXPECT_EQ(filtered({"--emit=reason"}, line), "too_long\n");
    EXPECT_EQ(filtered({"--emit=reason", "--max-record=4194304"}, "v" + line + "\n"), "checkDigits\n");
}

TEST(Filter, ATooLongRecordKeepsItsNumberOfColumns) {
    const std::string filler(200, 'x');
    EXPECT_EQ(filtered({"--max-record=100", "--format=tsv"}, "a\tb\\\t" + filler + "\tc\n"), "\\N\t\\N\t\\N\t0\n");
    EXPECT_EQ(filtered({"--max-record=100", "--format=csv"}, "a,\"b,\"\"" + filler + "\",c\n"), ",,,0\n");
    EXPECT_EQ(filtered({"--max-record=100", "--format=jsonl"}, "{\"value\":\"" + filler + "\"}\n"),
              "{\"verdict\":false}\n");
}

TEST(Filter, LabelsReplaceTheDigits) {
    EXPECT_EQ(filtered({"--labels=valid,invalid"}, "v\nx\n"), "valid\ninvalid\n");
    const std::string longLabel(40, 'y');
    EXPECT_EQ(filtered({"--labels=" + longLabel + ",n"}, "v\nx\n"), longLabel + "\nn\n");
    EXPECT_EQ(filtered({"--labels=yes,no", "--format=jsonl"}, "{\"value\":\"v\"}\n"),
              "{\"value\":\"v\",\"verdict\":\"yes\"}\n");
}

TEST(Filter, ALabelCannotBreakALineOrAColumn) {
    EXPECT_EQ(filtered({"--labels=a;b,c", "--emit=verdict,reason", "--sep=semicolon"}, "v\n"), "a\uFFFDb;none\n");
    EXPECT_EQ(filtered({"--labels=a;b,c", "--sep=semicolon"}, "v\n"), "a;b\n");
    EXPECT_EQ(filtered({"--labels=a;b,c", "--format=csv", "--sep=semicolon"}, "v\n"), "v;\"a;b\"\n");
    EXPECT_EQ(filtered({"--labels=a\\b,c", "--format=tsv"}, "v\n"), "v\ta\\\\b\n");
    for (const char* labels : {"--labels=a\nb,c", "--labels=a,b\tc", "--labels=a\rb,c", "--labels=\xFF,b"}) {
        EXPECT_THROW((void)testOptions({labels}), UsageError) << labels;
    }
}

TEST(Filter, ColumnsComeInTheOrderAskedFor) {
    EXPECT_EQ(filtered({"--emit=formatted,offset,reason,normalized,verdict"}, "vv\nv\n"),
              "<vv>\t1\tcheckDigits\t=vv\t0\n<v>\t\\N\tnone\t=v\t1\n");
    EXPECT_EQ(filtered({"--emit=verdict,reason", "--sep=comma"}, "v\n"), "1,none\n");
}

TEST(Filter, InvalidDataChangesTheExitCodeOnRequestOnly) {
    EXPECT_EQ(runTestFilter(testOptions({}), "x\n").exitCode, 0);
    EXPECT_EQ(runTestFilter(testOptions({"--fail-on-invalid"}), "x\nv\n").exitCode, 1);
    EXPECT_EQ(runTestFilter(testOptions({"--fail-on-invalid"}), "v\n").exitCode, 0);
    EXPECT_EQ(runTestFilter(testOptions({"--fail-on-invalid", "--format=tsv"}), "\\N\n").exitCode, 0);
    EXPECT_EQ(runTestFilter(testOptions({"--fail-on-invalid", "--format=tsv", "--null=invalid"}), "\\N\n").exitCode, 1);
}

TEST(Filter, FlushRulesDoNotChangeTheOutput) {
    std::string input;
    for (int line = 0; line < 100000; ++line) input += line % 3 == 0 ? "v\n" : "other\n";
    const std::string expected = filtered({}, input);
    EXPECT_EQ(filtered({"--flush=line"}, input), expected);
    EXPECT_EQ(filtered({"--flush=block"}, input), expected);
}

TEST(Filter, ChunksBeginWithTheNumberOfTheirRecords) {
    EXPECT_EQ(filtered({"--chunk-header"}, ""), "");
    EXPECT_EQ(filtered({"--chunk-header"}, "0\n0\n2\nv\n\n1\nv\n0\n"), "1\n0\n1\n");
    EXPECT_EQ(filtered({"--chunk-header"}, "2\r\nv\r\nv"), "1\n1\n");
    EXPECT_EQ(filtered({"--chunk-header", "--max-record=70"}, "2\n" + std::string(500000, 'x') + "\nv\n1\nv\n"),
              "0\n1\n1\n");
}

TEST(Filter, ABrokenChunkEndsTheRun) {
    for (const char* input :
         {"1\n", "3\nv\nv\n", "x\n", "-1\n", "1 \nv\n", "\n", "99999999999999999999\n", "1\nv\nv\n"}) {
        EXPECT_THROW((void)filtered({"--chunk-header"}, input), StreamError) << input;
    }
    EXPECT_THROW((void)filtered({"--chunk-header"}, std::string(std::size_t{1} << 20, '1')), StreamError);
}

TEST(Filter, RandomBytesKeepTheNumberOfRecords) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string input(random() % 2000, '\0');
        for (char& byte : input) byte = static_cast<char>(random() % 256);
        for (char& byte : input) byte = random() % 8 == 0 ? "\t\\\",\r\n{}"[random() % 8] : byte;
        const std::size_t records = lineEnds(input) + (input.empty() || input.ends_with('\n') ? 0 : 1);
        for (const auto& format : kAllFormats) {
            std::vector<std::string> options = format;
            options.emplace_back("--emit=verdict,reason,offset,normalized,formatted");
            EXPECT_EQ(lineEnds(filtered(options, input)), records) << format[0];
        }
    }
}

}  // namespace
}  // namespace zor::testing
