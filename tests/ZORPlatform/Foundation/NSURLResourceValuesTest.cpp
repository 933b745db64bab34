// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSURLResourceValues.h>

#include <gtest/gtest.h>
#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using support::FailingSystemCalls;
using support::TemporaryDirectory;

constexpr const char* kAttribute = "user.xdg.robots.backup";

std::string attributeOf(const fs::path& path) {
    std::array<char, 64> value{};
    const ssize_t size = getxattr(path.c_str(), kAttribute, value.data(), value.size());
    return size < 0 ? "none" : std::string(value.data(), static_cast<std::size_t>(size));
}

std::optional<NSError> errorFor(const fs::path& path) {
    std::optional<NSError> error;
    EXPECT_FALSE(NSURLResourceValues::setIsExcludedFromBackup(path, &error)) << path;
    return error;
}

TEST(NSURLResourceValues, MarkAFileAndADirectoryByTheDesktopsAttribute) {
    const TemporaryDirectory directory;
    std::optional<NSError> error(NSError(u"left over", 1));
    for (const fs::path& path : {directory.write("file", ""), directory.path()}) {
        EXPECT_FALSE(NSURLResourceValues::isExcludedFromBackup(path));
        EXPECT_TRUE(NSURLResourceValues::setIsExcludedFromBackup(path, &error));
        EXPECT_EQ(error, std::nullopt);
        EXPECT_EQ(attributeOf(path), "false");
        EXPECT_TRUE(NSURLResourceValues::isExcludedFromBackup(path));
        EXPECT_TRUE(NSURLResourceValues::setIsExcludedFromBackup(path)) << "again";
    }
}

TEST(NSURLResourceValues, CountNoOtherValueAsTheMark) {
    const TemporaryDirectory directory;
    const fs::path file = directory.write("file", "");
    for (const std::string_view value : {"true", "fals", "falsex", ""}) {
        ASSERT_EQ(setxattr(file.c_str(), kAttribute, value.data(), value.size(), 0), 0);
        EXPECT_FALSE(NSURLResourceValues::isExcludedFromBackup(file)) << value;
    }
    EXPECT_TRUE(NSURLResourceValues::setIsExcludedFromBackup(file));
    EXPECT_EQ(attributeOf(file), "false");
}

TEST(NSURLResourceValues, MarkWhatALinkLeadsTo) {
    const TemporaryDirectory directory;
    const fs::path file = directory.write("file", "");
    fs::create_symlink("file", directory / "link");
    EXPECT_TRUE(NSURLResourceValues::setIsExcludedFromBackup(directory / "link"));
    EXPECT_TRUE(NSURLResourceValues::isExcludedFromBackup(file));
}

TEST(NSURLResourceValues, FailWithNoSuchFileWhereThereIsNothing) {
    const TemporaryDirectory directory;
    fs::create_symlink("nowhere", directory / "dangling");
    const fs::path file = directory.write("file", "");
    const std::string beyond = file.string() + std::string("\0x", 2);
    for (const fs::path& path :
         {directory / "missing", directory / "dangling", file / "below", fs::path(), fs::path(beyond)}) {
        EXPECT_EQ(errorFor(path), NSError(NSCocoaErrorDomain, 4)) << path;
        EXPECT_FALSE(NSURLResourceValues::isExcludedFromBackup(path)) << path;
    }
    EXPECT_FALSE(NSURLResourceValues::isExcludedFromBackup(file));
}

TEST(NSURLResourceValues, FailWithTheSystemsCodeWhereTheMarkCannotBe) {
    const TemporaryDirectory directory;
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorFor(directory / "pipe"), NSError(NSPOSIXErrorDomain, EPERM));
    EXPECT_EQ(errorFor("/dev/null"), NSError(NSPOSIXErrorDomain, EPERM));
    EXPECT_EQ(errorFor("/proc/self/status"), NSError(NSPOSIXErrorDomain, ENOTSUP));
    EXPECT_EQ(errorFor(std::string(5000, 'x')), NSError(NSPOSIXErrorDomain, ENAMETOOLONG));
    const fs::path file = directory.write("file", "");
    for (const int code : {ENOSPC, EDQUOT, EROFS, EACCES}) {
        FailingSystemCalls failing(1, FailingSystemCalls::Outcome::fails, code);
        const ReplacedSystemCalls replaced(failing);
        EXPECT_EQ(errorFor(file), NSError(NSPOSIXErrorDomain, code));
    }
    EXPECT_EQ(attributeOf(file), "none");
}

}  // namespace
}  // namespace ZORPlatform
