// SPDX-License-Identifier: Apache-2.0
#pragma once

// What every thread that the library keeps for itself is started under.

#include <signal.h>

namespace ZORPlatform {

/// Blocks signals in the current thread for its own lifetime; a thread started meanwhile blocks them for good. Signals
/// are for the application's threads. Those that a fault of the thread itself raises stay open.
class SignalsBlocked {
public:
    SignalsBlocked() noexcept {
        sigset_t mask;
        sigfillset(&mask);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS, SIGPROF}) {
            sigdelset(&mask, fault);
        }
        pthread_sigmask(SIG_SETMASK, &mask, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_{};
};

}  // namespace ZORPlatform
