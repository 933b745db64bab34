// SPDX-License-Identifier: Apache-2.0
#pragma once

// An operation made of a block that ends when it calls back.
//
//     const auto refresh = std::make_shared<ZORAsyncBlockOperation>([](const std::function<void()>& completion) {
//         connection.request(u"balance", [completion](Amount amount) {
//             show(amount);
//             completion();
//         });
//     });
//     queue.addOperation(refresh);

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSBlockOperation.h>

#include <functional>

namespace ZORFoundation {

using ZORPlatform::NSBlockOperation;

/// `ZORAsyncBlockOperation`: a block operation that stays executing until the block's completion callback is called,
/// and blocks its thread until then. Made with `std::make_shared`, of this class or one derived from it. Thread-safe.
class ZOR_EXPORT ZORAsyncBlockOperation : public NSBlockOperation {
public:
    /// An operation without a block, which finishes at once.
    ZORAsyncBlockOperation() noexcept;

    /// Constructor `block:`
    ///
    /// @param block  called once, on the operation's thread, with a completion callback. That one is to be called
    ///               exactly once, from any thread, during the block or later: never called, the operation executes
    ///               for ever; a second call stops the process ("Unbalanced call to dispatch_group_leave()"). Neither
    ///               is called when the operation is cancelled before it starts. An empty block stops the process.
    explicit ZORAsyncBlockOperation(std::function<void(std::function<void()>)> block);

    ~ZORAsyncBlockOperation() override;
};

}  // namespace ZORFoundation
