// SPDX-License-Identifier: Apache-2.0
//
// Each case is a mistake that must not compile. Without a case this compiles, so a failure is the mistake's own.

#include <ZORFoundation/Concurrency/FutureCoroutine.h>
#include <ZORFoundation/Concurrency/FutureSupport.h>
#include <ZORFoundation/Concurrency/Promise.h>

#include <memory>
#include <vector>

using namespace ZORFoundation;

void misuse(const Future<int>& future) {
    future.whenSuccess([](int) {});
#if defined(VOID_VALUE)
    Promise<void> promise;
#elif defined(SUCCESS_CALLBACK_TAKES_TOO_MUCH)
    future.whenSuccess([](int, int) {});
#elif defined(THEN_CALLBACK_RETURNS_VALUE)
    future.then([](int value) { return value; });
#elif defined(AND_OF_MOVE_ONLY)
    (void)future.and_(Future<std::unique_ptr<int> >::succeeded(nullptr));
#elif defined(REDUCE_OF_NUMBERS)
    (void)Future<int>::reduce(0, std::vector<int>{1}, [](int&, int) {});
#elif defined(REDUCE_OF_MOVE_ONLY)
    (void)Future<int>::reduce(0, std::vector{Future<std::unique_ptr<int> >::succeeded(nullptr)},
                              [](int&, const std::unique_ptr<int>&) {});
#elif defined(FLATTEN_OF_PLAIN_PAIR)
    (void)FutureSupport::flatten(std::pair(1, 2));
#endif
}

#if defined(AWAIT_OF_MOVE_ONLY)
Future<Unit> misuse(Future<std::unique_ptr<int> > future) { co_await future; }
#endif
