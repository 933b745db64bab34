// SPDX-License-Identifier: Apache-2.0
#include "../FilterRun.h"

#include <gtest/gtest.h>

#include <random>

namespace zor::testing {
namespace {

using Columns = std::vector<std::string>;

constexpr const char* kAbsent = "<absent>";

// PostgreSQL's text format as its manual describes it, refusing what its COPY FROM refuses. Hexadecimal escapes stay
// as they are: what they stand for here is no text.
Columns readPostgresText(std::string_view line) {
    Columns columns(1);
    bool startsColumn = true;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char byte = line[at];
        if (byte == '\r') throw std::runtime_error("literal carriage return found in data");
        if (byte == '\t') {
            columns.emplace_back();
            startsColumn = true;
            continue;
        }
        if (byte != '\\') {
            columns.back() += byte;
            startsColumn = false;
            continue;
        }
        if (++at == line.size()) throw std::runtime_error("a backslash escapes the line end");
        switch (line[at]) {
            case 'N': {
                const bool isWhole = startsColumn && (at + 1 == line.size() || line[at + 1] == '\t');
                columns.back() += isWhole ? kAbsent : "N";
                break;
            }
            case '.':
                throw std::runtime_error("end-of-copy marker corrupt");
            case 'b':
                columns.back() += '\b';
                break;
            case 'f':
                columns.back() += '\f';
                break;
            case 'n':
                columns.back() += '\n';
                break;
            case 'r':
                columns.back() += '\r';
                break;
            case 't':
                columns.back() += '\t';
                break;
            case 'v':
                columns.back() += '\v';
                break;
            case 'x':
                columns.back() += "\\x";
                break;
            default:
                columns.back() += line[at];
        }
        startsColumn = false;
    }
    return columns;
}

// ClickHouse's TabSeparated as its manual describes it. An escape that it does not know keeps its backslash.
Columns readClickHouseTsv(std::string_view line) {
    Columns columns(1);
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char byte = line[at];
        if (byte == '\t') {
            columns.emplace_back();
        } else if (byte != '\\') {
            columns.back() += byte;
        } else {
            if (++at == line.size()) throw std::runtime_error("cannot parse escape sequence");
            switch (line[at]) {
                case 'N':
                    columns.back() += columns.back().empty() ? kAbsent : "\\N";
                    break;
                case 'a':
                    columns.back() += '\a';
                    break;
                case 'b':
                    columns.back() += '\b';
                    break;
                case 'f':
                    columns.back() += '\f';
                    break;
                case 'n':
                    columns.back() += '\n';
                    break;
                case 'r':
                    columns.back() += '\r';
                    break;
                case 't':
                    columns.back() += '\t';
                    break;
                case 'v':
                    columns.back() += '\v';
                    break;
                case '\\':
                case '\'':
                case '/':
                    columns.back() += line[at];
                    break;
                default:
                    columns.back() += {'\\', line[at]};
            }
        }
    }
    return columns;
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        switch (byte) {
            case '\\':
                result += "\\\\";
                break;
            case '\t':
                result += "\\t";
                break;
            case '\n':
                result += "\\n";
                break;
            case '\r':
                result += "\\r";
                break;
            default:
                result += byte;
        }
    }
    return result;
}

std::string onlyLine(const std::string& output) {
    EXPECT_EQ(output.find('\n'), output.size() - 1) << output;
    return output.substr(0, output.size() - 1);
}

TEST(Tsv, TheCheckedColumnIsCountedFromOne) {
    EXPECT_EQ(filtered({"--format=tsv"}, "v\tx\n"), "v\tx\t1\n");
    EXPECT_EQ(filtered({"--format=tsv", "--field=2"}, "v\tx\nx\tv\n"), "v\tx\t0\nx\tv\t1\n");
}

TEST(Tsv, AMissingColumnIsAReason) {
    EXPECT_EQ(filtered({"--format=tsv", "--field=3", "--emit=verdict,reason"}, "a\tb\n"), "a\tb\t0\tmissing_field\n");
}

TEST(Tsv, AbsentInIsAbsentOut) {
    EXPECT_EQ(filtered({"--format=tsv", "--emit=verdict,reason,offset,normalized,formatted"}, "\\N\n"),
              "\\N\t\\N\t\\N\t\\N\t\\N\t\\N\n");
    EXPECT_EQ(filtered({"--format=tsv", "--null=invalid"}, "\\N\n"), "\\N\t0\n");
    EXPECT_EQ(filtered({"--format=tsv-raw"}, "\\N\n"), "\\N\t\\N\n");
    EXPECT_EQ(filtered({"--in=tsv", "--out=plain"}, "\\N\n"), "\\N\n");
    EXPECT_EQ(filtered({"--in=tsv", "--out=jsonl"}, "\\N\n"), "{\"value\":null,\"verdict\":null}\n");
}

TEST(Tsv, EscapesAreReadBeforeTheRule) {
    EXPECT_EQ(filtered({"--format=tsv", "--emit=formatted"}, "\\\\\\t\\n\\r\\b\\f\\'\n"),
              "\\\\\\t\\n\\r\\b\\f\\'\t<\\\\\\t\\n\\r\b\f'>\n");
    EXPECT_EQ(filtered({"--in=tsv", "--out=plain"}, "\\x76\n"), "1\n");
    EXPECT_EQ(filtered({"--format=tsv", "--emit=reason"}, "v\\xFF\nv\\0\nv\\q\nv\\x4\nv\\\n"),
              "v\\xFF\tbad_utf8\nv\\0\tbad_utf8\nv\\q\tbad_escape\nv\\x4\tbad_escape\nv\\\\\tbad_escape\n");
}

TEST(Tsv, AnEscapedTabPartsNoColumns) {
    EXPECT_EQ(filtered({"--format=tsv", "--field=2"}, "a\\\tb\tv\n"), "a\\tb\tv\t1\n");
}

TEST(Tsv, NothingThatGoesOutEndsTheDataOrSwallowsAColumn) {
    EXPECT_EQ(filtered({"--format=tsv"}, "\\.\n"), "\\\\.\t0\n");
    EXPECT_EQ(filtered({"--format=tsv"}, "x\\\n"), "x\\\\\t0\n");
    EXPECT_EQ(filtered({"--in=plain", "--out=tsv"}, "\\.\n\\N\na\tb\n"), "\\\\.\t0\n\\\\N\t0\na\\tb\t0\n");
}

TEST(Tsv, AStrictReaderGetsBackWhatWasWritten) {
    std::mt19937 random(11);
    constexpr std::string_view kAlphabet = "v\\\t\n\r.Nxab'\b\f ";
    for (int round = 0; round < 5000; ++round) {
        Columns columns(1 + random() % 3);
        std::string line;
        for (std::string& column : columns) {
            for (std::size_t length = random() % 8; length > 0; --length) {
                const std::size_t pick = random() % (kAlphabet.size() + 2);
                if (pick < kAlphabet.size()) {
                    column += kAlphabet[pick];
                } else {
                    column += pick == kAlphabet.size() ? "\u00E9" : "\U0001F600";
                }
            }
            if (!line.empty() || &column != &columns.front()) line += '\t';
            line += escaped(column);
        }
        const std::string out = onlyLine(filtered({"--format=tsv", "--emit=verdict,formatted"}, line + "\n"));
        columns.emplace_back(columns[0].starts_with("v") && !columns[0].starts_with("vv") ? "1" : "0");
        columns.push_back("<" + columns[0] + ">");
        EXPECT_EQ(readPostgresText(out), columns) << line;
        EXPECT_EQ(readClickHouseTsv(out), columns) << line;
    }
}

TEST(Tsv, WhateverComesInAStrictReaderTakesWhatGoesOut) {
    std::mt19937 random(13);
    for (int round = 0; round < 20000; ++round) {
        std::string line(random() % 12, '\0');
        for (char& byte : line) byte = "v\\\\\t\r.Nx0\0F\xFF\xC3\xA9"[random() % 14];
        const std::string out = onlyLine(filtered({"--format=tsv", "--emit=verdict,formatted"}, line + "\n"));
        EXPECT_NO_THROW((void)readPostgresText(out)) << out;
        EXPECT_NO_THROW((void)readClickHouseTsv(out)) << out;
        EXPECT_EQ(readPostgresText(out).size(), readClickHouseTsv(out).size());
    }
}

TEST(RawTsv, HasNoEscapes) {
    EXPECT_EQ(filtered({"--format=tsv-raw", "--emit=formatted"}, "v\\t\tx\n"), "v\\t\tx\t<v\\t>\n");
    EXPECT_EQ(filtered({"--in=tsv", "--out=tsv-raw"}, "v\\tx\n"), "v\uFFFDx\t1\n");
}

TEST(Tables, AreRespelledBetweenFormats) {
    EXPECT_EQ(filtered({"--in=tsv", "--out=csv", "--field=2"}, "a,b\tv\"\t\\N\tx\\ny\n"),
              "\"a,b\",\"v\"\"\",,x\uFFFDy,1\n");
    EXPECT_EQ(filtered({"--in=csv", "--out=tsv"}, "\"v\t\"\"\",\\N\n"), "v\\t\"\t\\\\N\t1\n");
    EXPECT_EQ(filtered({"--in=jsonl", "--out=tsv"}, "{\"value\":\"v\\n\"}\n{}\n[]\n"), "v\\n\t1\n\\N\t\\N\n\\N\t0\n");
}

}  // namespace
}  // namespace zor::testing
