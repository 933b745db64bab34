// SPDX-License-Identifier: Apache-2.0
#pragma once

// Marks files that backups are to leave out: caches, databases that can be fetched again, secrets.
//
//     ZORBackupExcluder::excludeFileForBackup("/var/lib/bank/token");
//     ZORBackupExcluder::disableBackupForFilesInDocumentsFolder({u"\\.sqlite$", u"^Caches/"});
//
// The mark is the extended attribute "user.xdg.robots.backup" with the value "false". It stays with the file, not with
// its name: a file that is replaced, as every atomic save does, has to be marked again. Few backup tools read the
// attribute; `zor exclude-from-backup --list` prints the marked files for any other tool's exclude list.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Foundation/Error.h>
#include <ZORPlatform/Foundation/NSError.h>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <span>
#include <string_view>

namespace ZORFoundation {

using ZORPlatform::NSError;
using ZORPlatform::ThrownError;

/// Why ZORBackupExcluder could not begin.
enum class ZORBackupExcluderError : std::uint8_t {
    expectedDirectoryUrl,        ///< What was given as a directory is none, or does not exist.
    directoryEnumerationFailed,  ///< The directory cannot be listed, or there is no Documents directory.
};

/// The platform's error for `value`: domain "ZORFoundation.ZORBackupExcluderError", code 0 or 1 in the order of the
/// cases, no user information.
[[nodiscard]] ZOR_EXPORT NSError nsError(ZORBackupExcluderError value);

/// Operations on the caller's thread, each done when it returns. An error is thrown at once; files marked by then stay
/// marked. Thread-safe.
///
/// What is thrown is a `ThrownError` that carries
/// - a `ZORBackupExcluderError`,
/// - for a file that cannot be marked, an `NSError`: NSCocoaErrorDomain 4 when there is none, as behind a dangling
///   link, else NSPOSIXErrorDomain with the system's code, as ENOTSUP on a file system without extended attributes
///   and EPERM for a pipe, socket or device,
/// - for a pattern that is no regular expression, or that takes more steps on a path than a search is allowed, an
///   `NSError` NSCocoaErrorDomain 2048 with the pattern under "NSInvalidValue".
class ZOR_EXPORT ZORBackupExcluder {
public:
    ZORBackupExcluder() = delete;

    /// `excludeFileForBackup(at:)`
    ///
    /// Marks one file or directory. A symbolic link marks what it leads to.
    static void excludeFileForBackup(const std::filesystem::path& at);

    /// `disableBackupForFilesInDocumentsFolder(patterns:)`
    ///
    /// `disableBackupForFiles(in:with:)` on the Documents directory of `HostEnvironment`. Where that is set to an empty
    /// path there is none, and `directoryEnumerationFailed` is thrown.
    static void disableBackupForFilesInDocumentsFolder(std::span<const std::u16string_view> patterns);
    /// The same, for patterns written out at the call.
    static void disableBackupForFilesInDocumentsFolder(std::initializer_list<std::u16string_view> patterns);

    /// `disableBackupForFiles(in:with:)`
    ///
    /// Marks everything below a directory, directories among it, whose path matches one of the patterns or more.
    /// Parents come before what they hold, and the entries of a directory in the order of their bytes. Links are
    /// entries, and are not followed; a directory that cannot be read is an entry without content. Without entries or
    /// patterns nothing is marked, and nothing is compiled.
    ///
    /// @param in    a directory, or a link to one; `expectedDirectoryUrl` is thrown when it is not
    /// @param with  regular expressions in ICU's syntax without options: case matters. Each is searched for in the path
    ///              relative to `in`, as "Logs/2018/a.txt", and may match anywhere in it. Bytes of a name that are no
    ///              UTF-8 are matched as U+FFFD. Patterns are compiled when the first entry comes to them, so a bad one
    ///              throws after those before it have been tried on that entry
    static void disableBackupForFiles(const std::filesystem::path& in, std::span<const std::u16string_view> with);
    /// The same, for patterns written out at the call.
    static void disableBackupForFiles(const std::filesystem::path& in, std::initializer_list<std::u16string_view> with);
};

}  // namespace ZORFoundation
