// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSDirectoryEnumerator.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace ZORPlatform {

namespace fs = std::filesystem;

NSDirectoryEnumerator::NSDirectoryEnumerator(fs::path directory) : directory_(std::move(directory)) {}

std::optional<NSDirectoryEnumerator> NSDirectoryEnumerator::ofDirectory(const fs::path& directory) {
    NSDirectoryEnumerator enumerator(directory);
    if (!enumerator.descend({})) return std::nullopt;
    return enumerator;
}

bool NSDirectoryEnumerator::descend(const fs::path& relativePath) {
    std::error_code error;
    fs::directory_iterator entry(relativePath.empty() ? directory_ : directory_ / relativePath, error);
    if (error) return false;
    Level level{relativePath, {}};
    for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
        std::error_code unknown;
        level.entries.push_back({entry->path().filename().string(), fs::is_directory(entry->symlink_status(unknown))});
    }
    std::sort(level.entries.begin(), level.entries.end(),
              [](const Entry& left, const Entry& right) { return left.name < right.name; });
    levels_.push_back(std::move(level));
    return true;
}

std::optional<fs::path> NSDirectoryEnumerator::nextObject() {
    while (!levels_.empty()) {
        Level& level = levels_.back();
        if (level.next == level.entries.size()) {
            levels_.pop_back();
            continue;
        }
        const Entry& entry = level.entries[level.next++];
        fs::path path = level.relativePath / entry.name;
        if (entry.isDirectory) descend(path);
        return path;
    }
    return std::nullopt;
}

}  // namespace ZORPlatform
