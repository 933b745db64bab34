// SPDX-License-Identifier: Apache-2.0
#include <tools/zor/CommandTables.h>

#include <tools/zor/filter/Output.h>

#include <ZORFoundation/ZORBackupExcluder.h>
#include <ZORPlatform/Foundation/NSDirectoryEnumerator.h>
#include <ZORPlatform/Foundation/NSURLResourceValues.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <vector>

namespace zor {
namespace {

namespace fs = std::filesystem;
using ZORFoundation::NSError;
using ZORFoundation::ZORBackupExcluder;
using ZORFoundation::ZORBackupExcluderError;

constexpr std::array kOptions{
    Option{"--list", "", "the marked paths, one a line"},
    Option{"--zero", "", "with --list: each path ends with a NUL byte"},
};

[[noreturn]] void report(const ZORPlatform::Error& error, const std::string& directory) {
    if (const auto* reason = error.as<ZORBackupExcluderError>()) {
        const bool isDirectory = *reason == ZORBackupExcluderError::directoryEnumerationFailed;
        throw StreamError(directory + (isDirectory ? ": cannot be listed" : ": is no directory"));
    }
    const auto* reason = error.as<NSError>();
    if (reason != nullptr && reason->domain() == ZORPlatform::NSPOSIXErrorDomain) {
        throw StreamError(std::string("a file that matches cannot be marked: ") +
                          std::strerror(static_cast<int>(reason->code())));
    }
    if (reason != nullptr && reason->userInfo().contains(u"NSInvalidValue")) {
        throw UsageError("a PATTERN is no regular expression, or takes too many steps");
    }
    throw StreamError("a file that matches is not there, or a link that leads nowhere");
}

ExitCode mark(const std::string& directory, std::span<const std::string> words) {
    std::vector<std::u16string> texts;
    for (const std::string& word : words) {
        std::optional<std::u16string> text = ZORPlatform::utf16IfWellFormed(word);
        if (!text) throw UsageError("a PATTERN is not UTF-8");
        texts.push_back(std::move(*text));
    }
    const std::vector<std::u16string_view> patterns(texts.begin(), texts.end());
    try {
        ZORBackupExcluder::disableBackupForFiles(directory, patterns);
    } catch (const ZORPlatform::ThrownError& thrown) {
        report(thrown.error(), directory);
    }
    return ExitCode::success;
}

ExitCode list(const fs::path& directory, char end) {
    auto enumerator = ZORPlatform::NSDirectoryEnumerator::ofDirectory(directory);
    if (!enumerator) throw StreamError(directory.string() + ": cannot be listed");
    Output output;
    while (const std::optional<fs::path> relativePath = enumerator->nextObject()) {
        const fs::path path = directory / *relativePath;
        // A link has no mark of its own, and what it leads to is listed where it is.
        std::error_code unknown;
        if (fs::is_symlink(fs::symlink_status(path, unknown))) continue;
        if (!ZORPlatform::NSURLResourceValues::isExcludedFromBackup(path)) continue;
        if (path.native().find(end) != std::string::npos) {
            throw StreamError("the name of a marked file holds a line end; --zero lists it");
        }
        output.append(path.native());
        output.append(end);
    }
    writeAll(STDOUT_FILENO, output.view());
    return ExitCode::success;
}

ExitCode run(const Arguments& arguments) {
    const std::span<const std::string> words = arguments.words;
    if (words.empty()) throw UsageError("exclude-from-backup: a DIR is needed");
    if (arguments.has("--list")) {
        if (words.size() > 1) throw UsageError("--list: takes no PATTERN");
        return list(words[0], arguments.has("--zero") ? '\0' : '\n');
    }
    if (arguments.has("--zero")) throw UsageError("--zero: --list is missing");
    if (words.size() == 1) throw UsageError("exclude-from-backup: a PATTERN or --list is needed");
    return mark(words[0], words.subspan(1));
}

}  // namespace

const Command kBackupExclusionCommand{.name = "exclude-from-backup",
                                      .synopsis = "DIR [PATTERN...]",
                                      .help = "marks files that match, lists marked",
                                      .options = kOptions,
                                      .run = run};

}  // namespace zor
