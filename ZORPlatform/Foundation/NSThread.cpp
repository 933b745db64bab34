// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSThread.h>

#include <ZORPlatform/Foundation/Precondition.h>

#include <thread>
#include <utility>

namespace ZORPlatform {

void NSThread::detachNewThread(DispatchWork work) {
    if (!work) preconditionFailure("NSThread detachNewThread: the work must not be empty");
    std::thread(std::move(work)).detach();
}

}  // namespace ZORPlatform
