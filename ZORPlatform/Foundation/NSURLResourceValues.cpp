// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSURLResourceValues.h>

#include <ZORPlatform/Foundation/SystemCallsInternal.h>

#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>

namespace ZORPlatform {
namespace {

constexpr const char* kAttribute = "user.xdg.robots.backup";
constexpr std::string_view kExcluded = "false";
constexpr std::int64_t kNoSuchFile = 4;

NSError errorOf(int systemCode) {
    if (systemCode == ENOENT || systemCode == ENOTDIR) return NSError(NSCocoaErrorDomain, kNoSuchFile);
    return NSError(NSPOSIXErrorDomain, systemCode);
}

}  // namespace

bool NSURLResourceValues::setIsExcludedFromBackup(const std::filesystem::path& path, std::optional<NSError>* error) {
    if (error != nullptr) error->reset();
    const bool isNamed = namesAFile(path);
    if (isNamed && systemCalls().setxattr(path.c_str(), kAttribute, kExcluded.data(), kExcluded.size()) == 0)
        return true;
    if (error != nullptr) *error = errorOf(isNamed ? errno : ENOENT);
    return false;
}

bool NSURLResourceValues::isExcludedFromBackup(const std::filesystem::path& path) {
    if (!namesAFile(path)) return false;
    std::array<char, kExcluded.size()> value{};
    const ssize_t size = ::getxattr(path.c_str(), kAttribute, value.data(), value.size());
    return size == static_cast<ssize_t>(value.size()) && std::string_view(value.data(), value.size()) == kExcluded;
}

}  // namespace ZORPlatform
