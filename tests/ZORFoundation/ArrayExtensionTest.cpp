// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ArrayExtension.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

using ArrayExtension::CanonicalEquivalence;
using ArrayExtension::distinct;

// An element with equality and nothing else.
struct Comparable {
    int value;
    friend bool operator==(const Comparable& left, const Comparable& right) { return left.value == right.value; }
};
static_assert(!ArrayExtension::Hashable<Comparable>);
static_assert(ArrayExtension::Hashable<std::u16string>);

TEST(ArrayExtension, DistinctKeepsTheFirstOfEachInOrder) {
    EXPECT_EQ(distinct(std::vector{3, 1, 3, 2, 1}), (std::vector{3, 1, 2}));
    EXPECT_EQ(distinct(std::vector<int>{}), std::vector<int>{});
    EXPECT_EQ(distinct(std::vector<bool>{true, false, true}), (std::vector<bool>{true, false}));
    EXPECT_EQ(distinct(std::vector<Comparable>{{3}, {1}, {3}}), (std::vector<Comparable>{{3}, {1}}));
}

TEST(ArrayExtension, TextsAreComparedUnitByUnit) {
    const std::vector<std::u16string> texts{u"\u00E9", u"e\u0301", u"\u00E9", u"E", u""};
    EXPECT_EQ(distinct(texts), (std::vector<std::u16string>{u"\u00E9", u"e\u0301", u"E", u""}));
}

TEST(ArrayExtension, OnRequestTextsAreComparedCanonically) {
    const std::vector<std::u16string> texts{u"e\u0301", u"\u00E9", u"E", u"\u212B", u"A\u030A", u"\uFB01", u"fi"};
    EXPECT_EQ(distinct(texts, CanonicalEquivalence{}),
              (std::vector<std::u16string>{u"e\u0301", u"E", u"\u212B", u"\uFB01", u"fi"}));
}

TEST(ArrayExtension, HashingGivesWhatComparingAllWithAllGives) {
    std::mt19937 random(41);
    for (const std::size_t size : {15U, 16U, 17U, 18U, 100U, 5000U}) {
        for (const int step : {1, 1 << 19}) {
            std::vector<int> numbers(size);
            std::vector<Comparable> peers;
            for (int& number : numbers) {
                number = static_cast<int>(random() % (size / 2)) * step;
                peers.push_back({number});
            }
            std::vector<Comparable> hashed;
            for (const int number : distinct(numbers)) hashed.push_back({number});
            ASSERT_EQ(hashed, distinct(peers)) << size;
        }
    }
}

TEST(ArrayExtension, ZeroEqualsItsNegativeAndANotANumberEqualsNothing) {
    for (const std::size_t count : {2U, 100U}) {
        EXPECT_EQ(distinct(std::vector<double>(count, std::numeric_limits<double>::quiet_NaN())).size(), count);
        std::vector<double> zeros(count, -0.0);
        zeros.push_back(0.0);
        const std::vector<double> result = distinct(zeros);
        ASSERT_EQ(result.size(), 1U);
        EXPECT_TRUE(std::signbit(result[0]));
    }
}

// Comparing all with all would take hours.
TEST(ArrayExtension, AMillionDifferentElementsTakeLinearTime) {
    std::vector<std::uint64_t> numbers(1'000'000);
    for (std::size_t at = 0; at < numbers.size(); ++at) numbers[at] = at << 40;
    EXPECT_EQ(distinct(numbers), numbers);
    EXPECT_EQ(distinct(std::vector<double>(1'000'000, std::numeric_limits<double>::quiet_NaN())).size(), 1'000'000U);
}

TEST(ArrayExtension, SharedObjectsAreComparedByIdentity) {
    const auto first = std::make_shared<int>(1);
    const auto second = std::make_shared<int>(1);
    EXPECT_EQ(distinct(std::vector{first, second, first}), (std::vector{first, second}));
}

}  // namespace
}  // namespace ZORFoundation
