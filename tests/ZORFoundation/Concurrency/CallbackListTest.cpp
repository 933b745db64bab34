// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Concurrency/CallbackList.h>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using ZORFoundation::FutureInternal::CallbackList;

class CallbackListTest : public testing::Test {
protected:
    /// A callback that notes its name and releases `next`.
    auto note(std::string name, CallbackList next = CallbackList()) {
        return [this, name = std::move(name), next = std::move(next)]() mutable {
            log_.push_back(name);
            return std::move(next);
        };
    }

    std::vector<std::string> log_;
};

TEST_F(CallbackListTest, IsEmptyWithoutCallbacksAndThenRunsNothing) {
    CallbackList list;
    EXPECT_TRUE(list.isEmpty());
    list._run();
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(CallbackListTest, RunsALiteralListInOrder) {
    CallbackList list(note("a"), note("b"), note("c"));
    EXPECT_FALSE(list.isEmpty());
    list._run();
    EXPECT_THAT(log_, ElementsAre("a", "b", "c"));
    EXPECT_TRUE(list.isEmpty());
}

TEST_F(CallbackListTest, RunsWhatACallbackReleasesAfterTheWholeLevel) {
    CallbackList list(note("a", CallbackList(note("a1", CallbackList(note("a11"))), note("a2"))),
                      note("b", CallbackList(note("b1", CallbackList(note("b11"))))), note("c"));
    list._run();
    EXPECT_THAT(log_, ElementsAre("a", "b", "c", "a1", "a2", "b1", "a11", "b11"));
}

TEST_F(CallbackListTest, FollowsAChainOfSingleCallbacksThatFansOut) {
    CallbackList list(
        note("a", CallbackList(note("b", CallbackList(note("c1"), note("c2", CallbackList(note("d"))))))));
    list._run();
    EXPECT_THAT(log_, ElementsAre("a", "b", "c1", "c2", "d"));
}

TEST_F(CallbackListTest, AppendsOneListBehindAnother) {
    CallbackList list(note("a"), note("b"));
    list.append(CallbackList());
    list.append(CallbackList(note("c"), note("d")));
    list.append(note("e"));
    list._run();
    EXPECT_THAT(log_, ElementsAre("a", "b", "c", "d", "e"));
}

TEST_F(CallbackListTest, EndsWithoutRunningWhenDisposedOf) {
    CallbackList list(note("a"), note("b"));
    list.dispose();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_THAT(log_, ElementsAre());
}

}  // namespace
