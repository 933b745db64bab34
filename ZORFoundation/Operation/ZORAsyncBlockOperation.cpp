// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/Operation/ZORAsyncBlockOperation.h>

#include <ZORPlatform/Dispatch/DispatchGroup.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <utility>

namespace ZORFoundation {

ZORAsyncBlockOperation::ZORAsyncBlockOperation() noexcept = default;

ZORAsyncBlockOperation::ZORAsyncBlockOperation(std::function<void(std::function<void()>)> block) {
    if (!block) ZORPlatform::preconditionFailure("ZORAsyncBlockOperation: the block must not be empty");
    addExecutionBlock([block = std::move(block)] {
        const ZORPlatform::DispatchGroup group;
        group.enter();
        block([group] { group.leave(); });
        group.wait();
    });
}

ZORAsyncBlockOperation::~ZORAsyncBlockOperation() = default;

}  // namespace ZORFoundation
