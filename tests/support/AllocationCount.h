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
    AllocationCount() noexcept : begin_(total()), beginBytes_(totalBytes()) {}
    /// Allocations of this thread since construction.
    [[nodiscard]] std::size_t count() const noexcept { return total() - begin_; }
    /// Bytes that they asked for, freed or not.
    [[nodiscard]] std::size_t bytes() const noexcept { return totalBytes() - beginBytes_; }

private:
    static std::size_t total() noexcept;
    static std::size_t totalBytes() noexcept;

    std::size_t begin_;
    std::size_t beginBytes_;
};

}  // namespace support
