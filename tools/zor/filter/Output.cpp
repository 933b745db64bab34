// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/filter/Output.h>

#include <tools/zor/Failure.h>

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

namespace zor {

void Output::grow(std::size_t bytes) {
    const std::size_t capacity = std::max({2 * kBlockBytes, 2 * capacity_, size_ + bytes});
    auto larger = std::make_unique_for_overwrite<char[]>(capacity);
    if (size_ > 0) std::memcpy(larger.get(), bytes_.get(), size_);
    bytes_ = std::move(larger);
    capacity_ = capacity;
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // The descriptor is shared with a process that made it non-blocking.
            pollfd waiting{descriptor, POLLOUT, 0};
            ::poll(&waiting, 1, -1);
        } else if (errno == EPIPE) {
            throw ReaderGone{};
        } else if (errno != EINTR) {
            throw StreamError(std::string("cannot write: ") + std::strerror(errno));
        }
    }
}

}  // namespace zor
