// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Concurrency/FutureSupport.h>
#include <ZORFoundation/Concurrency/Promise.h>
#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;
using namespace ZORFoundation;
using testing::Pair;
using testing::UnorderedElementsAre;

using FutureInternal::flatten;

template <class First, class... Rest>
constexpr auto nest(First first, Rest... rest) {
    if constexpr (sizeof...(rest) == 0) {
        return first;
    } else {
        return [&]<std::size_t... index>(std::index_sequence<index...>) {
            const auto all = std::tuple(first, rest...);
            return std::pair(nest(std::get<index>(all)...), std::get<sizeof...(rest)>(all));
        }
        (std::make_index_sequence<sizeof...(rest)>());
    }
}

static_assert(nest(1, 2, 3) == std::pair(std::pair(1, 2), 3));
static_assert(flatten(nest(1, 'b', true)) == std::tuple(1, 'b', true));
static_assert(flatten(nest(1, 'b', true, 4L)) == std::tuple(1, 'b', true, 4L));
static_assert(flatten(nest(1, 'b', true, 4L, 5U)) == std::tuple(1, 'b', true, 4L, 5U));
static_assert(flatten(nest(1, 'b', true, 4L, 5U, 6.0)) == std::tuple(1, 'b', true, 4L, 5U, 6.0));
static_assert(flatten(nest(1, 'b', true, 4L, 5U, 6.0, 'g')) == std::tuple(1, 'b', true, 4L, 5U, 6.0, 'g'));

TEST(FutureSupport, FlattenKeepsElementsAndOrder) {
    EXPECT_EQ(flatten(std::pair(std::pair(1, "a"s), true)), std::tuple(1, "a"s, true));
}

TEST(FutureSupport, FlattenTakesAPairBesideTheNestAsOneElement) {
    EXPECT_EQ(flatten(std::pair(std::pair(1, 2), std::pair(3, 4))), std::tuple(1, 2, std::pair(3, 4)));
}

TEST(FutureSupport, FlattenTakesAPairNestedDeeperThanSixAsOneElement) {
    EXPECT_EQ(flatten(nest(1, 2, 3, 4, 5, 6, 7, 8)), std::tuple(std::pair(1, 2), 3, 4, 5, 6, 7, 8));
}

TEST(FutureSupport, FlattenMovesWhatItMay) {
    auto flat = flatten(std::pair(std::pair(std::make_unique<int>(1), 2), std::make_unique<int>(3)));
    EXPECT_EQ(*std::get<0>(flat), 1);
    EXPECT_EQ(*std::get<2>(flat), 3);
}

TEST(FutureSupport, FlattenIsPassedOnToMapAfterRepeatedAnd) {
    const Promise<int> number;
    const Promise<std::string> text;
    const Promise<bool> truth;
    std::tuple<int, std::string, bool> seen;
    number.futureResult()
        .and_(text.futureResult())
        .and_(truth.futureResult())
        .map(FutureSupport::flatten)
        .whenSuccess([&seen](const auto& flat) { seen = flat; });
    truth.succeed(true);
    number.succeed(1);
    text.succeed("a");
    EXPECT_EQ(seen, std::tuple(1, "a"s, true));
}

TEST(FutureSupport, ConvertTuplesToDictionaryKeepsTheLastValueOfAKey) {
    std::unordered_map<std::string, int> dictionary;
    for (const auto& tuple : {std::pair("a"s, 1), std::pair("b"s, 2), std::pair("a"s, 3)}) {
        FutureSupport::convertTuplesToDictionary(dictionary, tuple);
    }
    EXPECT_THAT(dictionary, UnorderedElementsAre(Pair("a", 3), Pair("b", 2)));
}

TEST(FutureSupport, ConvertTuplesToDictionaryIsTheUpdateOfAReduction) {
    using Entry = std::pair<std::u16string, int>;
    const std::vector<Promise<Entry>> entries(3);
    std::vector<Future<Entry>> futures;
    for (const auto& entry : entries) futures.push_back(entry.futureResult());
    std::map<std::u16string, int> seen;
    Future<std::map<std::u16string, int>>::reduce({}, futures, FutureSupport::convertTuplesToDictionary)
        .whenSuccess([&seen](const auto& dictionary) { seen = dictionary; });
    entries[2].succeed({u"a", 3});
    entries[1].succeed({u"b", 2});
    entries[0].succeed({u"a", 1});
    EXPECT_THAT(seen, UnorderedElementsAre(Pair(u"a", 3), Pair(u"b", 2)));
}

}  // namespace
