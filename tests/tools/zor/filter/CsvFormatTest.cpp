// SPDX-License-Identifier: Apache-2.0
#include "../FilterRun.h"

#include <gtest/gtest.h>

namespace zor::testing {
namespace {

TEST(Csv, QuotedFieldsMayHoldSeparatorsAndQuotes) {
    EXPECT_EQ(filtered({"--format=csv", "--field=2", "--emit=formatted"}, "\"a,b\",\"v\"\"x\"\n"),
              "\"a,b\",\"v\"\"x\",\"<v\"\"x>\"\n");
    EXPECT_EQ(filtered({"--format=csv", "--field=2"}, "\"\",v\n"), "\"\",v,1\n");
}

TEST(Csv, FieldsMayBeEmpty) {
    EXPECT_EQ(filtered({"--format=csv", "--field=3"}, ",,v,\n"), ",,v,,1\n");
    EXPECT_EQ(filtered({"--format=csv", "--emit=reason"}, ",\n"), ",,empty\n");
}

TEST(Csv, TheSeparatorHasAName) {
    EXPECT_EQ(filtered({"--format=csv", "--sep=semicolon", "--field=2"}, "a,b;v\n"), "a,b;v;1\n");
    EXPECT_EQ(filtered({"--format=csv", "--sep=tab", "--field=2"}, "a\tv\n"), "a\tv\t1\n");
    EXPECT_EQ(filtered({"--in=csv", "--out=tsv", "--sep=semicolon"}, "v;b\n"), "v\tb\t1\n");
}

TEST(Csv, AQuoteOutOfPlaceIsAnErrorRecordOfOneField) {
    EXPECT_EQ(filtered({"--format=csv", "--emit=verdict,reason"}, "\"v\nx\"\nv\"\n\"v\"x,y\n\"\n"),
              "\"\"\"v\",0,bad_csv\n\"x\"\"\",0,bad_csv\n\"v\"\"\",0,bad_csv\n\"\"\"v\"\"x,y\",0,bad_csv\n"
              "\"\"\"\",0,bad_csv\n");
    EXPECT_EQ(filtered({"--in=csv", "--out=tsv"}, "\"v\n"), "\"v\t0\n");
}

TEST(Csv, AbsentResultsAreEmpty) { EXPECT_EQ(filtered({"--format=csv", "--emit=verdict,offset"}, "v\n"), "v,1,\n"); }

}  // namespace
}  // namespace zor::testing
