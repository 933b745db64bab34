// SPDX-License-Identifier: Apache-2.0
#pragma once

// The one who wants to hear of a file or directory.

namespace ZORPlatform {

/// Is told that what it listens to was written to or deleted.
class FileSystemListener {
public:
    FileSystemListener() noexcept = default;
    FileSystemListener(const FileSystemListener&) = delete;
    FileSystemListener& operator=(const FileSystemListener&) = delete;

    /// Called by `FileSystemWatches`, with a lock held: only to pass the word on.
    virtual void changed() = 0;

protected:
    ~FileSystemListener() = default;
};

}  // namespace ZORPlatform
