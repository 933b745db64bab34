// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORBackupExcluder.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSFileManager.h>
#include <ZORPlatform/Foundation/NSRegularExpression.h>
#include <ZORPlatform/Foundation/NSURLResourceValues.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <optional>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

using ZORPlatform::NSFileManager;
using ZORPlatform::NSRange;
using ZORPlatform::NSRegularExpression;

constexpr std::int64_t kInvalidValueCode = 2048;

/// A pattern of the caller's, compiled by its first search.
class Pattern {
public:
    explicit Pattern(std::u16string_view text) : text_(text) {}

    [[nodiscard]] bool isIn(std::u16string_view path) {
        if (!expression_) compile();
        bool isFound = false;
        const bool isDecided = expression_->enumerateMatchesInString(path, [&isFound](std::span<const NSRange>) {
            isFound = true;
            return false;
        });
        if (!isDecided) {
            throw ThrownError(NSError(ZORPlatform::NSCocoaErrorDomain, kInvalidValueCode,
                                      NSError::UserInfo{{u"NSInvalidValue", std::u16string(text_)}}));
        }
        return isFound;
    }

private:
    void compile() {
        std::optional<NSError> error;
        expression_ = NSRegularExpression::regularExpressionWithPattern(text_, &error);
        if (error) throw ThrownError(*error);
    }

    std::u16string_view text_;
    std::optional<NSRegularExpression> expression_;
};

}  // namespace

NSError nsError(ZORBackupExcluderError value) {
    return NSError(u"ZORFoundation.ZORBackupExcluderError", static_cast<std::int64_t>(value));
}

void ZORBackupExcluder::excludeFileForBackup(const std::filesystem::path& at) {
    std::optional<NSError> error;
    if (!ZORPlatform::NSURLResourceValues::setIsExcludedFromBackup(at, &error)) throw ThrownError(error.value());
}

void ZORBackupExcluder::disableBackupForFilesInDocumentsFolder(std::span<const std::u16string_view> patterns) {
    const std::filesystem::path documents = ZORPlatform::HostEnvironment::documentsDirectory();
    if (documents.empty()) throw ThrownError(ZORBackupExcluderError::directoryEnumerationFailed);
    disableBackupForFiles(documents, patterns);
}

void ZORBackupExcluder::disableBackupForFilesInDocumentsFolder(std::initializer_list<std::u16string_view> patterns) {
    disableBackupForFilesInDocumentsFolder(std::span(patterns.begin(), patterns.size()));
}

void ZORBackupExcluder::disableBackupForFiles(const std::filesystem::path& in,
                                              std::span<const std::u16string_view> with) {
    if (!NSFileManager::directoryExistsAtPath(in)) throw ThrownError(ZORBackupExcluderError::expectedDirectoryUrl);
    auto enumerator = NSFileManager::enumeratorAtPath(in);
    if (!enumerator) throw ThrownError(ZORBackupExcluderError::directoryEnumerationFailed);

    std::vector<Pattern> patterns(with.begin(), with.end());
    while (const std::optional<std::filesystem::path> relativePath = enumerator->nextObject()) {
        const std::u16string text = ZORPlatform::utf16(relativePath->native());
        for (Pattern& pattern : patterns) {
            if (pattern.isIn(text)) excludeFileForBackup(in / *relativePath);
        }
    }
}

void ZORBackupExcluder::disableBackupForFiles(const std::filesystem::path& in,
                                              std::initializer_list<std::u16string_view> with) {
    disableBackupForFiles(in, std::span(with.begin(), with.size()));
}

}  // namespace ZORFoundation
