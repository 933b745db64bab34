// SPDX-License-Identifier: Apache-2.0
#pragma once

// Operations that run one after another.
//
//     OperationQueueExtension::addOperations(queue, {login, refresh, logout}, [] { showDone(); }, mainQueue);

#include <ZORPlatform/Dispatch/DispatchQueue.h>
#include <ZORPlatform/Dispatch/DispatchWork.h>
#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSOperation.h>
#include <ZORPlatform/Foundation/NSOperationQueue.h>

#include <memory>
#include <vector>

namespace ZORFoundation {

using ZORPlatform::DispatchQueue;
using ZORPlatform::DispatchWork;
using ZORPlatform::NSOperation;
using ZORPlatform::NSOperationQueue;

/// Additions to the operation queue. Thread-safe.
namespace OperationQueueExtension {

/// `addOperations(sequentially:completion:completionQueue:)`
///
/// Makes each operation depend on the one before it and adds it to the queue, in order. When the last has finished,
/// `completion` is submitted to `completionQueue`. A cancelled operation does not break the chain: the next one runs
/// when it has finished.
///
/// @param queue            of any width
/// @param sequentially     may be empty: then the completion alone is submitted, promptly
/// @param completion       called once on `completionQueue`; `nullptr`: nobody is told
/// @param completionQueue  a queue of the library's or of the application's own
///
/// Raises `NSException` named "NSInvalidArgumentException" at the first operation that executes, has finished, or is or
/// was in a queue already, hence also at one that is listed twice; those before it stay added. A null operation stops
/// the process.
ZOR_EXPORT void addOperations(const NSOperationQueue& queue, std::vector<std::shared_ptr<NSOperation>> sequentially,
                              DispatchWork completion, const DispatchQueue& completionQueue);

/// The same without a completion. An empty list does nothing.
ZOR_EXPORT void addOperations(const NSOperationQueue& queue,
                              const std::vector<std::shared_ptr<NSOperation>>& sequentially);

}  // namespace OperationQueueExtension
}  // namespace ZORFoundation
