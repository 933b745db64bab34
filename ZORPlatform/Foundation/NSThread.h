// SPDX-License-Identifier: Apache-2.0
#pragma once

// Threads of the caller's own.

#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>

namespace ZORPlatform {

/// Class-level operations on threads. Thread-safe.
class ZOR_EXPORT NSThread {
public:
    NSThread() = delete;

    /// `detachNewThreadSelector:toTarget:withObject:`, and `detachNewThreadWithBlock:`
    ///
    /// Starts a new thread that calls `work`, destroys it and ends. Nobody can wait for the thread; when the process
    /// exits it is not waited for. An exception that leaves the work ends the process. Empty work stops it.
    ///
    /// Throws `std::system_error` when no thread can be started; the work then never runs.
    static void detachNewThread(DispatchWork work);
};

}  // namespace ZORPlatform
