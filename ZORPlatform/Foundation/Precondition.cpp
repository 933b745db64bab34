// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/Precondition.h>

#include <cstdio>
#include <cstdlib>

namespace ZORPlatform {

void preconditionFailure(std::string_view message) noexcept {
    std::fwrite(message.data(), 1, message.size(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
    std::abort();
}

}  // namespace ZORPlatform
