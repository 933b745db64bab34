// SPDX-License-Identifier: Apache-2.0
#pragma once

// The platform's random numbers, for keys and vectors: each call asks the system's generator, and nothing is kept
// between calls, so there is no state that a fork could copy. An operation that needs many numbers asks once:
//
//     WipingArray<std::uint32_t, 32> numbers;
//     arc4random_buf(numbers.data(), sizeof(std::uint32_t) * numbers.size());

#include <cstddef>
#include <cstdint>

namespace ZORPlatform {

/// `arc4random`: 32 uniform bits. Never fails: a process that the system refuses randomness is stopped. Thread-safe.
[[nodiscard]] std::uint32_t arc4random() noexcept;

/// `arc4random_buf`: fills `size` bytes of `memory` with uniform bits. Never fails, as `arc4random`. Thread-safe.
void arc4random_buf(void* memory, std::size_t size) noexcept;

}  // namespace ZORPlatform
