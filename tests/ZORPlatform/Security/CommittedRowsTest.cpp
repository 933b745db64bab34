// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/CommittedRowsInternal.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

using State = CommittedRows::State;
using Visit = CommittedRows::Visit;

const State kState{1};
const State kNextState{2};

Visit visitOf(const std::vector<ItemRow>& rows) {
    Visit visit;
    for (const ItemRow& row : rows) visit.add(row);
    return visit;
}

std::string textOf(const ItemRow& row) {
    return std::to_string(row.number) + ":" + std::string(row.identity) + "," + std::string(row.attributes) + "," +
           std::string(row.sealed);
}

std::vector<std::string> rowsOf(const Visit& visit) {
    std::vector<std::string> texts;
    const auto visitor = [&texts](const ItemRow& row) {
        texts.push_back(textOf(row));
        return errSecSuccess;
    };
    EXPECT_EQ(visit.replay(visitor), errSecSuccess);
    return texts;
}

TEST(CommittedRows, WhatAVisitFoundComesAgainInItsOrder) {
    CommittedRows rows;
    EXPECT_EQ(rows.find(kState, "pass"), nullptr);
    rows.remember("pass", visitOf({{7, "passa", "attributes", "sealed"}, {3, "passb", "", "other"}}));
    const Visit* known = rows.find(kState, "pass");
    ASSERT_NE(known, nullptr);
    EXPECT_EQ(rowsOf(*known), (std::vector<std::string>{"7:passa,attributes,sealed", "3:passb,,other"}));
    EXPECT_EQ(rows.find(kState, "pas"), nullptr);
    EXPECT_EQ(rows.find(kState, "passa"), nullptr);
}

TEST(CommittedRows, ThatThereAreNoRowsIsRememberedToo) {
    CommittedRows rows;
    static_cast<void>(rows.find(kState, "missing"));
    rows.remember("missing", {});
    const Visit* known = rows.find(kState, "missing");
    ASSERT_NE(known, nullptr);
    EXPECT_EQ(rowsOf(*known), std::vector<std::string>{});
}

TEST(CommittedRows, AnotherStateMakesEverythingForgotten) {
    CommittedRows rows;
    static_cast<void>(rows.find(kState, "a"));
    rows.remember("a", visitOf({{1, "a", "", "old"}}));
    EXPECT_EQ(rows.find(kNextState, "a"), nullptr);
    EXPECT_EQ(rows.find(kState, "a"), nullptr) << "what was forgotten stays forgotten";
}

TEST(CommittedRows, AStatusOfTheVisitorEndsTheRows) {
    const Visit visit = visitOf({{1, "a", "", ""}, {2, "b", "", ""}, {3, "c", "", ""}});
    std::vector<std::int64_t> numbers;
    const auto visitor = [&numbers](const ItemRow& row) {
        numbers.push_back(row.number);
        return row.number == 2 ? errSecDecode : errSecSuccess;
    };
    EXPECT_EQ(visit.replay(visitor), errSecDecode);
    EXPECT_EQ(numbers, (std::vector<std::int64_t>{1, 2}));
}

TEST(CommittedRows, AVisitOfTooManyBytesIsNotRemembered) {
    const std::string half(CommittedRows::kMostBytesOfVisit / 2, 'x');
    CommittedRows rows;
    static_cast<void>(rows.find(kState, ""));
    rows.remember("just", visitOf({{1, "", half, ""}, {2, "", "", half}}));
    rows.remember("over", visitOf({{1, half, "", ""}, {2, half, "", ""}, {3, "x", "", ""}, {4, "", "", ""}}));
    EXPECT_NE(rows.find(kState, "just"), nullptr);
    EXPECT_EQ(rows.find(kState, "over"), nullptr);
}

TEST(CommittedRows, MemoryIsBoundedHoweverMuchIsRead) {
    const std::string kilobyte(1024, 'x');
    CommittedRows rows;
    static_cast<void>(rows.find(kState, ""));
    constexpr int kVisits = 4000;
    for (int i = 0; i < kVisits; ++i) rows.remember(std::to_string(i), visitOf({{i, "", kilobyte, ""}}));
    for (int i = 0; i < 100 * kVisits; ++i) rows.remember("none" + std::to_string(i), {});
    std::size_t bytes = 0;
    for (int i = 0; i < kVisits; ++i) bytes += rows.find(kState, std::to_string(i)) != nullptr ? kilobyte.size() : 0;
    for (int i = 0; i < 100 * kVisits; ++i) {
        bytes += rows.find(kState, "none" + std::to_string(i)) != nullptr ? sizeof(Visit) : 0;
    }
    EXPECT_LE(bytes, CommittedRows::kMostBytes);
    EXPECT_NE(rows.find(kState, "none" + std::to_string(100 * kVisits - 1)), nullptr) << "the last one is there";
}

TEST(CommittedRows, APrefixLongerThanTheMemoryIsNotRemembered) {
    const std::string prefix(CommittedRows::kMostBytes + 1, 'x');
    CommittedRows rows;
    static_cast<void>(rows.find(kState, "a"));
    rows.remember("a", {});
    rows.remember(prefix, {});
    EXPECT_EQ(rows.find(kState, prefix), nullptr);
    EXPECT_NE(rows.find(kState, "a"), nullptr);
}

}  // namespace
}  // namespace ZORPlatform
