// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSFileManager.h>

#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kModeOfNewFiles = 0666;
constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kPrivateDirectoryMode = 0700;
constexpr mode_t kPermissionBits = 07777;

bool writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = systemCalls().write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

// Some file systems have no durable directories to offer and say so with EINVAL.
bool syncDirectory(const std::string& directory) {
    Descriptor descriptor(systemCalls().open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!descriptor.isOpen()) return false;
    return systemCalls().fsync(descriptor.number()) == 0 || errno == EINVAL;
}

// Not made from the target's name, which may be as long as a name can be.
std::string temporaryName() {
    std::array<std::uint8_t, 8> random{};
    if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return {};
    std::string name = ".zor-";
    for (const std::uint8_t byte : random) {
        name.push_back(static_cast<char>('a' + byte % 16));
        name.push_back(static_cast<char>('a' + byte / 16));
    }
    return name;
}

/// A new file beside its target, gone again unless it takes the target's place.
class TemporaryFile {
public:
    TemporaryFile(const std::string& directory, mode_t mode) : path_(directory + '/' + temporaryName()) {
        descriptor_ = systemCalls().open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    }
    ~TemporaryFile() {
        if (descriptor_ < 0) return;
        if (!closed_) systemCalls().close(descriptor_);
        if (!placed_) systemCalls().unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    /// Gives the file the owner, group and mode of another, as far as they differ. The ownership as far as the system
    /// lets: only root can give files away.
    bool resemble(const struct stat& other) {
        struct stat own {};
        if (::fstat(descriptor_, &own) != 0) return false;
        const bool isOfOthers = own.st_uid != other.st_uid || own.st_gid != other.st_gid;
        constexpr auto kSameOwner = static_cast<uid_t>(-1);
        if (isOfOthers && systemCalls().fchown(descriptor_, other.st_uid, other.st_gid) != 0) {
            static_cast<void>(systemCalls().fchown(descriptor_, kSameOwner, other.st_gid));
        }
        // After the ownership, whose change takes bits of the mode away.
        const bool isRight = !isOfOthers && (own.st_mode & kPermissionBits) == (other.st_mode & kPermissionBits);
        return isRight || systemCalls().fchmod(descriptor_, other.st_mode & kPermissionBits) == 0;
    }
    bool fill(std::span<const std::uint8_t> bytes) {
        if (!writeAll(descriptor_, bytes) || systemCalls().fsync(descriptor_) != 0) return false;
        closed_ = true;
        return systemCalls().close(descriptor_) == 0;
    }
    /// As `target`, beside its own name, which goes.
    bool placeUnlessTaken(const fs::path& target) { return systemCalls().link(path_.c_str(), target.c_str()) == 0; }
    bool place(const fs::path& target) {
        placed_ = systemCalls().rename(path_.c_str(), target.c_str()) == 0;
        return placed_;
    }

private:
    std::string path_;
    int descriptor_;
    bool closed_ = false;
    bool placed_ = false;
};

std::string directoryOf(const fs::path& path) {
    const std::string& name = path.native();
    const std::size_t slash = name.rfind('/');
    if (slash == std::string::npos) return ".";
    return name.substr(0, std::max<std::size_t>(slash, 1));
}

/// @param old  the file that is there, or a null pointer
bool replace(const fs::path& target, const struct stat* old, std::span<const std::uint8_t> bytes, mode_t modeOfNew) {
    const std::string directory = directoryOf(target);
    TemporaryFile temporary(directory, old != nullptr ? kPrivateMode : modeOfNew);
    // The mode comes before the content: what was private is never readable in between.
    return temporary.isOpen() && (old == nullptr || temporary.resemble(*old)) && temporary.fill(bytes) &&
           temporary.place(target) && syncDirectory(directory);
}

}  // namespace

bool NSFileManager::fileExistsAtPath(const fs::path& path) {
    struct stat status {};
    return namesAFile(path) && ::stat(path.c_str(), &status) == 0;
}

bool NSFileManager::directoryExistsAtPath(const fs::path& path) {
    struct stat status {};
    return namesAFile(path) && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<NSDirectoryEnumerator> NSFileManager::enumeratorAtPath(const fs::path& path) {
    if (!namesAFile(path)) return std::nullopt;
    return NSDirectoryEnumerator::ofDirectory(path);
}

bool NSFileManager::removeItemAtPath(const fs::path& path) {
    if (!namesAFile(path)) return false;
    std::error_code error;
    const std::uintmax_t removed = fs::remove_all(path, error);
    return !error && removed > 0;
}

std::optional<std::vector<std::uint8_t>> NSFileManager::contentsAtPath(const fs::path& path) {
    if (!namesAFile(path)) return std::nullopt;
    // Opening a pipe without O_NONBLOCK would wait for somebody to write to it.
    const Descriptor descriptor(systemCalls().open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0));
    struct stat status {};
    if (!descriptor.isOpen() || ::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    // Room for one byte more than it says: where that stays free, the end has been seen, with no call to look for it.
    // Files that say nothing of their size, as those of /proc, or that grow meanwhile are read on.
    const auto expected = static_cast<std::size_t>(status.st_size);
    std::vector<std::uint8_t> bytes(expected + 1);
    std::size_t size = 0;
    do {
        const ssize_t count = ::read(descriptor.number(), bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
        if (size == bytes.size()) bytes.resize(2 * size);
    } while (expected == 0 || size != expected);
    bytes.resize(size);
    return bytes;
}

bool NSFileManager::writeAtomically(const fs::path& path, std::span<const std::uint8_t> bytes) {
    if (!namesAFile(path)) return false;
    struct stat old {};
    bool isReplacement = ::lstat(path.c_str(), &old) == 0;
    if (!isReplacement || !S_ISLNK(old.st_mode)) {
        return replace(path, isReplacement ? &old : nullptr, bytes, kModeOfNewFiles);
    }
    std::error_code error;
    const fs::path destination = fs::weakly_canonical(path, error);
    isReplacement = !error && ::stat(destination.c_str(), &old) == 0;
    return !error && replace(destination, isReplacement ? &old : nullptr, bytes, kModeOfNewFiles);
}

NSFileManager::Creation NSFileManager::createPrivateFile(const fs::path& path, std::span<const std::uint8_t> bytes) {
    if (!namesAFile(path)) return Creation::failed;
    std::error_code error;
    if (fs::exists(fs::symlink_status(path, error))) return Creation::existed;
    const std::string directory = directoryOf(path);
    {
        TemporaryFile temporary(directory, kPrivateMode);
        if (!temporary.isOpen() || !temporary.fill(bytes)) return Creation::failed;
        if (!temporary.placeUnlessTaken(path)) return errno == EEXIST ? Creation::existed : Creation::failed;
    }
    return syncDirectory(directory) ? Creation::made : Creation::failed;
}

bool NSFileManager::createPrivateDirectory(const fs::path& path) {
    if (!namesAFile(path)) return false;
    std::error_code error;
    if (fs::is_directory(path, error)) return true;
    const std::string above = directoryOf(path);
    if (above == path || !createPrivateDirectory(above)) return false;
    if (systemCalls().mkdir(path.c_str(), kPrivateDirectoryMode) != 0) {
        return errno == EEXIST && fs::is_directory(path, error);
    }
    return syncDirectory(above);
}

void NSFileManager::keepAside(const fs::path& file, const fs::path& directory, std::size_t keep) {
    std::error_code error;
    if (!namesAFile(file) || !fs::exists(fs::symlink_status(file, error))) return;
    if (!createPrivateDirectory(directory)) return;

    // Names sort by age: nanoseconds since 1970 have nineteen digits until the year 2286.
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const std::string prefix = file.filename().string() + ".";
    const std::string name = prefix + std::to_string(std::chrono::nanoseconds(now).count());
    const std::optional<std::vector<std::uint8_t>> bytes = contentsAtPath(file);
    const bool isCopied = bytes && replace(directory / name, nullptr, *bytes, kPrivateMode);
    if (!isCopied && systemCalls().rename(file.c_str(), (directory / name).c_str()) != 0) return;

    std::vector<fs::path> copies;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
        const std::string other = entry->path().filename().string();
        if (other.size() == name.size() && other.starts_with(prefix) &&
            other.find_first_not_of("0123456789", prefix.size()) == std::string::npos) {
            copies.push_back(entry->path());
        }
    }
    std::sort(copies.rbegin(), copies.rend());
    for (std::size_t i = keep; i < copies.size(); ++i) fs::remove(copies[i], error);
}

}  // namespace ZORPlatform
