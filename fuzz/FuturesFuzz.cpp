// SPDX-License-Identifier: Apache-2.0
//
// Law: whatever graph of futures a script builds, resolves and drops, the same callbacks run in the same order with the
// same outcomes as under the literal rules.

#include <ZORFoundation/Concurrency/Promise.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include <tests/support/FutureScript.h>
#include <tests/support/LiteralFuture.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> script(data, size);
    const support::FutureLog log = support::FutureScript<ZORFoundation::Future, ZORFoundation::Promise>(script).run();
    const support::FutureLog expected =
        support::FutureScript<support::literal::Future, support::literal::Promise>(script).run();
    support::literal::Unresolved::dropAll();
    if (log != expected) __builtin_trap();
    return 0;
}
