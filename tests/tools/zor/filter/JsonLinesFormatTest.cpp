// SPDX-License-Identifier: Apache-2.0
#include "../FilterRun.h"

#include <gtest/gtest.h>

namespace zor::testing {
namespace {

TEST(JsonLines, MembersAreKeptAsTheyAreSpelled) {
    EXPECT_EQ(filtered({"--format=jsonl"}, " { \"a\" : 1.50 , \"value\":\"v\", \"b\":[ {}, \"\\u00e9\" ] } \n"),
              "{\"a\" : 1.50,\"value\":\"v\",\"b\":[ {}, \"\\u00e9\" ],\"verdict\":true}\n");
    EXPECT_EQ(filtered({"--format=jsonl"}, "{}\n"), "{\"verdict\":null}\n");
}

TEST(JsonLines, TheKeyNamesTheMember) {
    EXPECT_EQ(filtered({"--format=jsonl", "--key=iban"}, "{\"value\":1,\"iban\":\"v\"}\n"),
              "{\"value\":1,\"iban\":\"v\",\"verdict\":true}\n");
    EXPECT_EQ(filtered({"--format=jsonl", "--key=iban"}, "{\"ib\\u0061n\":\"\\u0076\"}\n"),
              "{\"ib\\u0061n\":\"\\u0076\",\"verdict\":true}\n");
    EXPECT_EQ(filtered({"--format=jsonl"}, "{\"nested\":{\"value\":\"v\"}}\n"),
              "{\"nested\":{\"value\":\"v\"},\"verdict\":null}\n");
}

TEST(JsonLines, MissingAndNullAreAbsent) {
    EXPECT_EQ(filtered({"--format=jsonl", "--emit=reason"}, "{\"value\":null}\n{\"x\":0}\n"),
              "{\"value\":null,\"reason\":null}\n{\"x\":0,\"reason\":null}\n");
    EXPECT_EQ(filtered({"--format=jsonl", "--null=invalid", "--emit=reason"}, "{}\n"),
              "{\"reason\":\"absent_value\"}\n");
}

TEST(JsonLines, OnlyTextsAreChecked) {
    for (const char* value : {"1", "true", "{}", "[\"v\"]"}) {
        const std::string record = std::string("{\"value\":") + value;
        EXPECT_EQ(filtered({"--format=jsonl", "--emit=reason"}, record + "}\n"),
                  record + ",\"reason\":\"not_text\"}\n");
    }
}

TEST(JsonLines, EscapesAreReadBeforeTheRule) {
    EXPECT_EQ(
        filtered({"--format=jsonl", "--emit=formatted"}, "{\"value\":\"v\\n\\\"\\/\\\\\\ud83d\\ude00\\u0001\"}\n"),
        "{\"value\":\"v\\n\\\"\\/\\\\\\ud83d\\ude00\\u0001\",\"formatted\":\"<v\\n\\\"/\\\\\U0001F600\\u0001>\"}\n");
}

TEST(JsonLines, ATextThatUtf8CannotHoldIsBad) {
    for (const char* value : {"v\\ud800", "v\\udc00\\ud800", "v\\u0000"}) {
        const std::string record = std::string("{\"value\":\"") + value + "\"";
        EXPECT_EQ(filtered({"--format=jsonl", "--emit=reason"}, record + "}\n"),
                  record + ",\"reason\":\"bad_utf8\"}\n");
    }
}

TEST(JsonLines, ResultsReplaceMembersOfTheirName) {
    EXPECT_EQ(filtered({"--format=jsonl"}, "{\"verdict\":7,\"value\":\"v\",\"reason\":8}\n"),
              "{\"value\":\"v\",\"reason\":8,\"verdict\":true}\n");
}

TEST(JsonLines, MalformedLinesLeaveTheResultsOnly) {
    const std::string deep(600, '[');
    for (const std::string& line : {std::string("{"),
                                    std::string("[]"),
                                    std::string("\"v\""),
                                    std::string("{,}"),
                                    std::string("{\"value\":\"v\"} x"),
                                    std::string("{\"value\":\"v\",}"),
                                    std::string("{\"a\":01}"),
                                    std::string("{\"a\":1.}"),
                                    std::string("{\"a\":1e}"),
                                    std::string("{\"a\":tru}"),
                                    std::string("{\"a\":\"\\x\"}"),
                                    std::string("{\"a\":\"\\u12g4\"}"),
                                    std::string("{\"a\":\"\t\"}"),
                                    std::string("{\"a\":[1,]}"),
                                    std::string("{\"a\":{\"b\"}}"),
                                    std::string("{\"a\":[}"),
                                    std::string("{a:1}"),
                                    std::string("{\"a\":"),
                                    std::string("{\"value\":\"v\",\"value\":\"v\"}"),
                                    "{\"a\":" + deep}) {
        EXPECT_EQ(filtered({"--format=jsonl", "--emit=verdict,reason"}, line + "\n"),
                  "{\"verdict\":false,\"reason\":\"bad_json\"}\n")
            << line;
    }
}

TEST(JsonLines, EveryKindOfValueMayStandBesides) {
    for (const char* value : {"-0", "0.5e-10", "1E+2", "-12", "true", "false", "null", "[]", "[[],[1,2]]",
                              "{\"x\":{\"y\":[{}]}}", "\"\\b\\f\\r\\t\""}) {
        const std::string record = std::string("{\"value\":\"v\",\"a\":") + value;
        EXPECT_EQ(filtered({"--format=jsonl"}, record + "}\n"), record + ",\"verdict\":true}\n");
    }
    const std::string nested = std::string(400, '[') + std::string(400, ']');
    EXPECT_EQ(filtered({"--format=jsonl"}, "{\"a\":" + nested + "}\n"), "{\"a\":" + nested + ",\"verdict\":null}\n");
}

TEST(JsonLines, RecordsOfOtherFormatsBecomeObjects) {
    EXPECT_EQ(filtered({"--in=plain", "--out=jsonl", "--key=iban"}, "v\"\n"),
              "{\"iban\":\"v\\\"\",\"verdict\":true}\n");
    EXPECT_EQ(filtered({"--in=csv", "--out=jsonl", "--field=2"}, "a,v\na\n"),
              "{\"value\":\"v\",\"verdict\":true}\n{\"value\":null,\"verdict\":false}\n");
}

}  // namespace
}  // namespace zor::testing
