// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Arc4Random.h>

#include <ZORPlatform/Foundation/Precondition.h>

#include <sys/random.h>

#include <cerrno>

namespace ZORPlatform {

std::uint32_t arc4random() noexcept {
    std::uint32_t number = 0;
    arc4random_buf(&number, sizeof number);
    return number;
}

void arc4random_buf(void* memory, std::size_t size) noexcept {
    auto* at = static_cast<unsigned char*>(memory);
    while (size != 0) {
        // Large requests come back in part, and a signal interrupts them.
        const ssize_t filled = getrandom(at, size, 0);
        if (filled < 0) {
            if (errno == EINTR) continue;
            preconditionFailure("arc4random: the system has no random numbers (getrandom is missing or refused)");
        }
        at += filled;
        size -= static_cast<std::size_t>(filled);
    }
}

}  // namespace ZORPlatform
