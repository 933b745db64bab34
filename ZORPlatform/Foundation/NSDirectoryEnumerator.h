// SPDX-License-Identifier: Apache-2.0
#pragma once

// Everything below a directory, one path at a time.
//
//     auto enumerator = NSDirectoryEnumerator::ofDirectory("/var/lib/bank");
//     while (const auto path = enumerator->nextObject()) show(*path);      // "Logs", "Logs/2018", "Logs/2018/a.txt"

#include <ZORPlatform/Export.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ZORPlatform {

/// Paths relative to the directory, each parent before what it holds, the entries of one directory sorted by bytes.
/// Hidden files are among them, the directory itself is not. A symbolic link is listed and not followed; a directory
/// that cannot be read is listed, and what it holds is passed over. Each directory is read when its turn comes.
///
/// One object belongs to one thread at a time.
class ZOR_EXPORT NSDirectoryEnumerator {
public:
    /// Absent when the directory cannot be opened. A link to a directory may stand for it.
    [[nodiscard]] static std::optional<NSDirectoryEnumerator> ofDirectory(const std::filesystem::path& directory);

    /// `nextObject`: the next path, or `std::nullopt` once there are no more.
    [[nodiscard]] std::optional<std::filesystem::path> nextObject();

private:
    struct Entry {
        std::string name;
        bool isDirectory;
    };
    /// A directory on the way down to the one being listed.
    struct Level {
        std::filesystem::path relativePath;
        std::vector<Entry> entries;
        std::size_t next = 0;
    };

    explicit NSDirectoryEnumerator(std::filesystem::path directory);

    /// @return false when there is nothing to read there
    bool descend(const std::filesystem::path& relativePath);

    std::filesystem::path directory_;
    std::vector<Level> levels_;
};

}  // namespace ZORPlatform
