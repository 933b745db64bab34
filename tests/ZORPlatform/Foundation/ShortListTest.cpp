// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/ShortList.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/AllocationCount.h>

#include <memory>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ZORPlatform::ShortList;

using Number = std::shared_ptr<int>;

std::vector<int> numbers(const ShortList<Number>& list) {
    std::vector<int> all;
    list.forEach([&all](const Number& number) { all.push_back(*number); });
    return all;
}

ShortList<Number> listOf(const std::vector<int>& values) {
    ShortList<Number> list;
    for (const int value : values) list.append(std::make_shared<int>(value));
    return list;
}

TEST(ShortList, KeepsTheOrderOfAppending) {
    EXPECT_THAT(numbers(listOf({})), IsEmpty());
    EXPECT_THAT(numbers(listOf({1})), ElementsAre(1));
    EXPECT_THAT(numbers(listOf({1, 2, 3})), ElementsAre(1, 2, 3));
    EXPECT_EQ(listOf({1, 2, 3}).size(), 3U);
}

TEST(ShortList, TakesNoMemoryForOneElement) {
    const auto number = std::make_shared<int>(1);
    const support::AllocationCount allocations;
    ShortList<Number> list;
    list.append(number);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(allocations.count(), 0U);
}

TEST(ShortList, TakesOutTheChosenOnesAndKeepsTheOthersInOrder) {
    ShortList<Number> list = listOf({1, 2, 3, 4, 5});
    const auto odd = list.take([](const Number& number) { return *number % 2 == 1; });
    EXPECT_EQ(odd.size(), 3U);
    EXPECT_THAT(numbers(list), ElementsAre(2, 4));
    list.append(std::make_shared<int>(6));
    EXPECT_THAT(numbers(list), ElementsAre(2, 4, 6));
    EXPECT_EQ(list.take([](const Number&) { return true; }).size(), 3U);
    EXPECT_EQ(list.size(), 0U);
    list.append(std::make_shared<int>(7));
    EXPECT_THAT(numbers(list), ElementsAre(7));
}

TEST(ShortList, IsEmptyAndUsableOnceCleared) {
    ShortList<Number> list = listOf({1, 2, 3});
    list.clear();
    EXPECT_THAT(numbers(list), IsEmpty());
    EXPECT_EQ(list.size(), 0U);
    list.append(std::make_shared<int>(4));
    EXPECT_THAT(numbers(list), ElementsAre(4));
}

TEST(ShortList, DropsObsoleteElementsRatherThanTakeMoreMemory) {
    ShortList<std::weak_ptr<int>> list;
    const auto kept = std::make_shared<int>(0);
    const auto isGone = [](const std::weak_ptr<int>& element) { return element.expired(); };
    list.append(kept, isGone);
    for (int i = 0; i < 10'000; ++i) list.append(std::make_shared<int>(i), isGone);
    EXPECT_LT(list.size(), 10U);
    std::size_t alive = 0;
    list.forEach([&alive](const auto& element) { alive += element.expired() ? 0U : 1U; });
    EXPECT_EQ(alive, 1U);
}

TEST(ShortList, SwapsItsElementsWithAnother) {
    ShortList<Number> first = listOf({1, 2});
    ShortList<Number> second = listOf({3});
    first.swap(second);
    EXPECT_THAT(numbers(first), ElementsAre(3));
    EXPECT_THAT(numbers(second), ElementsAre(1, 2));
}

}  // namespace
