// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecItemKeySource.h>

#include <ZORPlatform/Foundation/Arc4Random.h>
#include <ZORPlatform/Foundation/NSFileManager.h>
#include <ZORPlatform/Foundation/Wiping.h>

#include <fcntl.h>
#include <linux/keyctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kKeyBytes = SecItemKeySource::kKeyBytes;

bool belongsToUsOrRoot(uid_t owner) noexcept { return owner == ::geteuid() || owner == 0 || ::geteuid() == 0; }

// @param isTrusted  whoever may have written the file is trusted, as systemd is
OSStatus readKeyFile(const fs::path& path, bool isTrusted, SecItemKeySource::Key key) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return errSecNotAvailable;
    struct stat status {};
    const bool isRight = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                         status.st_size == static_cast<off_t>(kKeyBytes) &&
                         (isTrusted || (belongsToUsOrRoot(status.st_uid) && (status.st_mode & 022) == 0));
    const bool isRead = isRight && ::read(descriptor, key.data(), kKeyBytes) == static_cast<ssize_t>(kKeyBytes);
    ::close(descriptor);
    return isRead ? errSecSuccess : errSecNotAvailable;
}

OSStatus makeKeyFile(const fs::path& path) {
    WipingArray<std::uint8_t, kKeyBytes> key;
    arc4random_buf(key.data(), key.size());
    // One that somebody else has made meanwhile is as good.
    const bool exists = NSFileManager::createPrivateDirectory(path.parent_path()) &&
                        NSFileManager::createPrivateFile(path, key.span()) != NSFileManager::Creation::failed;
    return exists ? errSecSuccess : errSecIO;
}

}  // namespace

SecItemKeySource::~SecItemKeySource() = default;

std::optional<fs::path> SecItemKeySource::file(const fs::path&) const { return std::nullopt; }

SecItemKeyFile::SecItemKeyFile(std::optional<fs::path> path) : path_(std::move(path)) {}
SecItemKeyFile::~SecItemKeyFile() = default;

std::optional<fs::path> SecItemKeyFile::file(const fs::path& store) const {
    return path_ ? *path_ : fs::path(store).replace_extension(".key");
}

std::string SecItemKeyFile::name(const fs::path& store) const { return "key file " + file(store)->string(); }

OSStatus SecItemKeyFile::copyKey(const fs::path& store, bool isNew, Key key) const {
    const fs::path path = *file(store);
    if (path.empty() || path.native().find('\0') != std::string::npos) return errSecNotAvailable;
    if (isNew && !NSFileManager::fileExistsAtPath(path)) {
        if (const OSStatus status = makeKeyFile(path); status != errSecSuccess) return status;
    }
    return readKeyFile(path, /*isTrusted=*/false, key);
}

SecItemSuppliedKey::SecItemSuppliedKey(std::span<const std::uint8_t, kKeyBytes> key) : key_{} {
    std::copy(key.begin(), key.end(), key_.begin());
}
SecItemSuppliedKey::~SecItemSuppliedKey() { wipe(key_.data(), key_.size()); }

std::string SecItemSuppliedKey::name(const fs::path&) const { return "key supplied by the application"; }

OSStatus SecItemSuppliedKey::copyKey(const fs::path&, bool, Key key) const {
    std::copy(key_.begin(), key_.end(), key.begin());
    return errSecSuccess;
}

SecItemKernelKeyring::SecItemKernelKeyring(std::string description) : description_(std::move(description)) {}
SecItemKernelKeyring::~SecItemKernelKeyring() = default;

std::string SecItemKernelKeyring::name(const fs::path&) const { return "kernel keyring, user key " + description_; }

OSStatus SecItemKernelKeyring::copyKey(const fs::path&, bool, Key key) const {
    const long found = ::syscall(SYS_request_key, "user", description_.c_str(), nullptr, 0);
    if (found < 0) {
        const bool mayComeLater = errno == ENOKEY || errno == EKEYEXPIRED || errno == EKEYREVOKED;
        return mayComeLater ? errSecInteractionNotAllowed : errSecNotAvailable;
    }
    const long size = ::syscall(SYS_keyctl, KEYCTL_READ, found, key.data(), key.size());
    return size == static_cast<long>(kKeyBytes) ? errSecSuccess : errSecNotAvailable;
}

SecItemSystemdCredential::SecItemSystemdCredential(std::string credential) : credential_(std::move(credential)) {}
SecItemSystemdCredential::~SecItemSystemdCredential() = default;

std::string SecItemSystemdCredential::name(const fs::path&) const { return "systemd credential " + credential_; }

OSStatus SecItemSystemdCredential::copyKey(const fs::path&, bool, Key key) const {
    const char* directory = std::getenv("CREDENTIALS_DIRECTORY");
    // A name, not a path: it stays within the directory.
    const bool isName = !credential_.empty() && credential_.find('/') == std::string::npos &&
                        credential_.find('\0') == std::string::npos;
    if (directory == nullptr || directory[0] != '/' || !isName) return errSecNotAvailable;
    return readKeyFile(fs::path(directory) / credential_, /*isTrusted=*/true, key);
}

}  // namespace ZORPlatform
