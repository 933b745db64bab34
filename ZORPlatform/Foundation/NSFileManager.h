// SPDX-License-Identifier: Apache-2.0
#pragma once

// Whole files: read, written so that a crash cannot halve them, removed, listed.

#include <ZORPlatform/Foundation/NSDirectoryEnumerator.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ZORPlatform {

/// Files by their path. A path with U+0000 or an empty one stands for nothing that exists. Thread-safe.
class NSFileManager {
public:
    NSFileManager() = delete;

    /// `fileExistsAtPath:`: follows symbolic links; a dangling link does not exist.
    [[nodiscard]] static bool fileExistsAtPath(const std::filesystem::path& path);

    /// `fileExistsAtPath:isDirectory:`, when both are so: a directory exists there, or a link leads to one.
    [[nodiscard]] static bool directoryExistsAtPath(const std::filesystem::path& path);

    /// `enumeratorAtPath:`: everything below a directory; `std::nullopt` when it cannot be opened or is none.
    [[nodiscard]] static std::optional<NSDirectoryEnumerator> enumeratorAtPath(const std::filesystem::path& path);

    /// `removeItemAtPath:error:`: a file, a link itself, or a directory with its content. @return whether it is gone
    [[nodiscard]] static bool removeItemAtPath(const std::filesystem::path& path);

    /// `contentsAtPath:`: the bytes of a regular file; `std::nullopt` when it cannot be read whole or is none, so that
    /// a pipe never blocks the caller.
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>> contentsAtPath(const std::filesystem::path& path);

    /// `writeToFile:atomically:`
    ///
    /// Writes a temporary file in the same directory, makes it durable, and puts it in the target's place. The mode of
    /// a replaced file is kept, and its owner and group where the process may give files to them; a new one gets the
    /// mode 0666 less the umask. A symbolic link at the target stays, and what it
    /// leads to is replaced. At every moment the old content or the new one is there, whole.
    ///
    /// @return whether the new content is there and durable. When it is false no temporary file is left, and the old
    ///         content is untouched, unless only the last step failed: making the directory durable.
    [[nodiscard]] static bool writeAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

    enum class Creation { made, existed, failed };

    /// Makes a new file of mode 0600 (less the umask) with that content, durable, unless there is something of that
    /// name: it is there whole or not at all, and of several that try at once one makes it.
    [[nodiscard]] static Creation createPrivateFile(const std::filesystem::path& path,
                                                    std::span<const std::uint8_t> bytes);

    /// Makes a directory, and what is missing above it, with mode 0700, durable. What is there keeps its mode.
    ///
    /// @return whether the directory is there
    [[nodiscard]] static bool createPrivateDirectory(const std::filesystem::path& path);

    /// Keeps what is about to be deleted: copies it to a new file of mode 0600 in `directory`, which is made with mode
    /// 0700 where it is missing. What cannot be read, or is no regular file, is moved there as it is. Of earlier ones
    /// of the same name the `keep` - 1 newest stay. Fails silently: keeping is a precaution.
    static void keepAside(const std::filesystem::path& file, const std::filesystem::path& directory, std::size_t keep);
};

}  // namespace ZORPlatform
