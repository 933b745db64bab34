// SPDX-License-Identifier: Apache-2.0
//
// Signs in, loads a balance while nobody waits, and tells when all is done.

#include <ZORFoundation/Operation/OperationQueueExtension.h>
#include <ZORFoundation/Operation/ZORAsyncBlockOperation.h>
#include <ZORFoundation/Operation/ZORAsyncOperation.h>
#include <ZORPlatform/Dispatch/DispatchGroup.h>

#include <functional>
#include <iostream>
#include <memory>
#include <thread>

using namespace ZORFoundation;

namespace {

// Work that ends with a result, on a thread of its own.
class LoadBalance : public ZORAsyncOperation<int> {
    void main() override { completeOperation(Result::success(742)); }
};

}  // namespace

int main() {
    const NSOperationQueue queue;
    const DispatchQueue screen = DispatchQueue::serial(u"screen");
    const ZORPlatform::DispatchGroup shown;

    // Stays executing until the answer is in, whichever thread brings it.
    const auto signIn = std::make_shared<ZORAsyncBlockOperation>([](const std::function<void()>& completion) {
        std::thread([completion] {
            std::cout << "signed in\n";
            completion();
        }).detach();
    });
    const auto loadBalance = std::make_shared<LoadBalance>();

    shown.enter();
    OperationQueueExtension::addOperations(
        queue, {signIn, loadBalance},
        [&] {
            if (const auto result = loadBalance->result()) {
                result->match([](int balance) { std::cout << "balance: " << balance << '\n'; },
                              [](const Error&) { std::cout << "no balance\n"; });
            }
            shown.leave();
        },
        screen);
    shown.wait();
}
