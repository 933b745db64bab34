// SPDX-License-Identifier: Apache-2.0
#pragma once

// OpenSSL notes failures on a queue of the thread's, where the application would find ours and take them for its own.

#include <openssl/err.h>

namespace ZORPlatform {

/// Takes off, at its end, what was put on the thread's error queue since its beginning.
class ErrorQueueMark {
public:
    ErrorQueueMark() noexcept { ERR_set_mark(); }
    ~ErrorQueueMark() { ERR_pop_to_mark(); }
    ErrorQueueMark(const ErrorQueueMark&) = delete;
    ErrorQueueMark& operator=(const ErrorQueueMark&) = delete;
};

}  // namespace ZORPlatform
