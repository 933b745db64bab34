// SPDX-License-Identifier: Apache-2.0
#pragma once

// Counts the calling thread's allocations through operator new, for tests of what an operation must not allocate.
//
//     AllocationCount allocations;
//     isValidIban(number);
//     EXPECT_EQ(allocations.count(), 0U);

#include <cstddef>

namespace support {

class AllocationCount {
public:
    AllocationCount() noexcept : begin_(total()) {}
    /// Allocations of this thread since construction.
    [[nodiscard]] std::size_t count() const noexcept { return total() - begin_; }

private:
    static std::size_t total() noexcept;

    std::size_t begin_;
};

}  // namespace support
