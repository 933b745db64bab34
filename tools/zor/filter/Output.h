// SPDX-License-Identifier: Apache-2.0
#pragma once

// Bytes on their way out.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

namespace zor {

/// A growing block of bytes. Appending costs a comparison and a copy.
class Output {
public:
    /// Written in blocks of at least this many bytes, so that system calls do not count.
    static constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

    void append(std::string_view bytes) {
        std::copy_n(bytes.data(), bytes.size(), room(bytes.size()));
        advance(bytes.size());
    }
    void append(char byte) {
        *room(1) = byte;
        advance(1);
    }

    /// Where the next bytes go; at least `bytes` of them may be written before `advance`.
    char* room(std::size_t bytes) {
        if (capacity_ - size_ < bytes) grow(bytes);
        return bytes_.get() + size_;
    }
    void advance(std::size_t bytes) noexcept { size_ += bytes; }

    [[nodiscard]] std::string_view view() const noexcept { return {bytes_.get(), size_}; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    void clear() noexcept { size_ = 0; }

private:
    void grow(std::size_t bytes);

    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

/// Writes everything, however often the system takes only a part.
///
/// @throws ReaderGone when the other end of a pipe is closed; StreamError for any other failure
void writeAll(int descriptor, std::string_view bytes);

}  // namespace zor
