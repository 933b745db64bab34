// SPDX-License-Identifier: Apache-2.0
//
// Two balances that arrive in any order, added up once with callbacks and once with a coroutine.

#include <ZORFoundation/Concurrency/FutureCoroutine.h>
#include <ZORFoundation/Concurrency/Promise.h>

#include <iostream>
#include <utility>

using namespace ZORFoundation;

namespace {

Future<int> sumOf(Future<int> current, Future<int> savings) {
    const int first = co_await current;
    std::cout << "current account: " << first << '\n';
    co_return first + co_await savings;
}

}  // namespace

int main() {
    const Promise<int> current;
    const Promise<int> savings;

    current.futureResult()
        .and_(savings.futureResult())
        .map([](const std::pair<int, int>& balances) { return balances.first + balances.second; })
        .whenSuccess([](int sum) { std::cout << "callbacks: " << sum << '\n'; });
    sumOf(current.futureResult(), savings.futureResult()).whenSuccess([](int sum) {
        std::cout << "coroutine: " << sum << '\n';
    });

    savings.succeed(700);
    current.succeed(42);
}
