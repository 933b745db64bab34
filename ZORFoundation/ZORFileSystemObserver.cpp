// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORFileSystemObserver.h>

#include <ZORPlatform/Dispatch/DispatchSource.h>
#include <ZORPlatform/Foundation/Precondition.h>

#include <utility>

namespace ZORFoundation {

ZORFileSystemObserver::ZORFileSystemObserver(const std::filesystem::path& fileUrl, std::function<void()> onChangeBlock)
    : workerQueue_(DispatchQueue::serial(u"DirectoryObserving queue")) {
    if (!onChangeBlock) ZORPlatform::preconditionFailure("ZORFileSystemObserver: the block must not be empty");
    dispatchSource_ =
        ZORPlatform::DispatchSource::makeFileSystemObjectSource(fileUrl, workerQueue_, std::move(onChangeBlock));
}

void ZORFileSystemObserver::stopObserving() const { dispatchSource_->cancel(); }

std::optional<std::int32_t> ZORFileSystemObserver::fileDescriptor() const {
    if (dispatchSource_->isCancelled()) return std::nullopt;
    return dispatchSource_->handle();
}

}  // namespace ZORFoundation
