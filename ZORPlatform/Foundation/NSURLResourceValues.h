// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the platform keeps beside a file's content. Here: that backups leave the file out, in the extended attribute
// "user.xdg.robots.backup", whose value "false" is the desktop's convention for it.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/NSError.h>

#include <filesystem>
#include <optional>

namespace ZORPlatform {

/// Values of a file or directory, by its path. A symbolic link stands for what it leads to. Thread-safe.
class ZOR_EXPORT NSURLResourceValues {
public:
    NSURLResourceValues() = delete;

    /// `setResourceValue:forKey:error:` with true for `NSURLIsExcludedFromBackupKey`
    ///
    /// @param error  cleared; holds the reason when the result is false: NSCocoaErrorDomain 4 when there is nothing at
    ///               the path, else NSPOSIXErrorDomain with the system's code, as ENOTSUP on a file system without
    ///               extended attributes and EPERM for a pipe, socket or device
    /// @return whether the file is marked
    [[nodiscard]] static bool setIsExcludedFromBackup(const std::filesystem::path& path,
                                                      std::optional<NSError>* error = nullptr);

    /// `getResourceValue:forKey:error:` for `NSURLIsExcludedFromBackupKey`: whether the file is marked. False, too,
    /// when there is no telling.
    [[nodiscard]] static bool isExcludedFromBackup(const std::filesystem::path& path);
};

}  // namespace ZORPlatform
