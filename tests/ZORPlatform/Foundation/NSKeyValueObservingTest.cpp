// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSKeyValueObserving.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using ZORPlatform::NSKeyValueChange;
using ZORPlatform::NSKeyValueObserving;
using ZORPlatform::NSKeyValueObservingOptions;

class Observed : public NSKeyValueObserving {
public:
    std::vector<std::u16string> changed;

private:
    void valueDidChange(std::u16string_view key) override { changed.emplace_back(key); }
};

struct Change {
    std::u16string key;
    bool isPrior;
    friend bool operator==(const Change&, const Change&) = default;
};

NSKeyValueObserving::Observer into(std::vector<Change>& log) {
    return [&log](const NSKeyValueChange& change) { log.push_back({std::u16string(change.key), change.isPrior}); };
}

TEST(NSKeyValueObserving, TellsWillAndDidOfTheKeyToAPriorObserverAndDidAloneToAnother) {
    Observed object;
    std::vector<Change> prior;
    std::vector<Change> plain;
    object.addObserver(u"a", NSKeyValueObservingOptions::prior, into(prior));
    object.addObserver(u"a", NSKeyValueObservingOptions::none, into(plain));
    object.willChangeValueForKey(u"a");
    object.willChangeValueForKey(u"b");
    object.didChangeValueForKey(u"b");
    object.didChangeValueForKey(u"a");
    EXPECT_THAT(prior, ElementsAre(Change{u"a", true}, Change{u"a", false}));
    EXPECT_THAT(plain, ElementsAre(Change{u"a", false}));
}

TEST(NSKeyValueObserving, TellsObserversInTheOrderOfAddingAndTheObjectLast) {
    Observed object;
    std::vector<int> order;
    object.addObserver(u"a", NSKeyValueObservingOptions::none, [&](const auto&) { order.push_back(1); });
    object.addObserver(u"a", NSKeyValueObservingOptions::none, [&](const auto&) {
        order.push_back(2);
        EXPECT_TRUE(object.changed.empty());
    });
    object.didChangeValueForKey(u"a");
    EXPECT_THAT(order, ElementsAre(1, 2));
    EXPECT_THAT(object.changed, ElementsAre(u"a"));
}

TEST(NSKeyValueObserving, ForgetsARemovedObserverAndWhatItHeld) {
    Observed object;
    const auto held = std::make_shared<int>(0);
    const auto token = object.addObserver(u"a", NSKeyValueObservingOptions::none, [held](const auto&) { ++*held; });
    object.removeObserver(token);
    object.removeObserver(token);
    object.didChangeValueForKey(u"a");
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(NSKeyValueObserving, LetsAnObserverAddAndRemoveObservers) {
    Observed object;
    int second = 0;
    NSKeyValueObserving::Token token{};
    token = object.addObserver(u"a", NSKeyValueObservingOptions::none, [&](const auto&) {
        object.removeObserver(token);
        object.addObserver(u"a", NSKeyValueObservingOptions::none, [&](const auto&) { ++second; });
    });
    object.didChangeValueForKey(u"a");
    EXPECT_EQ(second, 0);
    object.didChangeValueForKey(u"a");
    EXPECT_EQ(second, 1);
}

TEST(NSKeyValueObserving, TakesChangesAndObserversFromSeveralThreads) {
    Observed object;
    std::atomic<int> told{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                const auto token =
                    object.addObserver(u"a", NSKeyValueObservingOptions::prior, [&](const auto&) { ++told; });
                object.willChangeValueForKey(u"a");
                object.removeObserver(token);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GE(told, 800);
}

}  // namespace
