// SPDX-License-Identifier: Apache-2.0
#pragma once

// Every change notification of an operation, in order, as text: "will isFinished", "did isFinished".
//
//     const NotificationLog log(*operation);
//     operation->start();
//     EXPECT_THAT(log.entries(), ElementsAre("will isExecuting", ...));

#include <ZORPlatform/Foundation/NSOperation.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace support {

class NotificationLog {
public:
    /// Logs from now on. The log may end before the operation does.
    explicit NotificationLog(ZORPlatform::NSOperation& operation) {
        using ZORPlatform::NSOperation;
        for (const auto key : {NSOperation::kReadyKey, NSOperation::kExecutingKey, NSOperation::kFinishedKey,
                               NSOperation::kCancelledKey}) {
            operation.addObserver(key, ZORPlatform::NSKeyValueObservingOptions::prior,
                                  [content = content_](const ZORPlatform::NSKeyValueChange& change) {
                                      content->add((change.isPrior ? "will " : "did ") + ZORPlatform::utf8(change.key));
                                  });
        }
    }

    /// A line of the test's own among the notifications.
    void add(std::string entry) const { content_->add(std::move(entry)); }

    [[nodiscard]] std::vector<std::string> entries() const {
        const std::scoped_lock lock(content_->mutex);
        return content_->entries;
    }

private:
    struct Content {
        void add(std::string entry) {
            const std::scoped_lock lock(mutex);
            entries.push_back(std::move(entry));
        }
        std::mutex mutex;
        std::vector<std::string> entries;
    };

    std::shared_ptr<Content> content_ = std::make_shared<Content>();
};

}  // namespace support
