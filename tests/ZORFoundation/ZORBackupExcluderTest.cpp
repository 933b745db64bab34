// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORBackupExcluder.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSFileManager.h>
#include <ZORPlatform/Foundation/NSURLResourceValues.h>

#include <gtest/gtest.h>
#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace ZORFoundation {
namespace {

namespace fs = std::filesystem;
using support::FailingSystemCalls;
using support::TemporaryDirectory;
using ZORPlatform::Error;
using ZORPlatform::HostEnvironment;
using ZORPlatform::NSURLResourceValues;
using Paths = std::vector<std::string>;

/// The marked paths below a directory.
Paths marked(const TemporaryDirectory& directory) {
    Paths paths;
    auto enumerator = ZORPlatform::NSFileManager::enumeratorAtPath(directory.path());
    while (const auto path = enumerator->nextObject()) {
        if (NSURLResourceValues::isExcludedFromBackup(directory / *path)) paths.push_back(path->string());
    }
    return paths;
}

Error thrownBy(const std::function<void()>& act) {
    try {
        act();
    } catch (const ThrownError& thrown) {
        return thrown.error();
    }
    return NSError(u"nothing thrown", 0);
}

ZORBackupExcluderError excluderErrorThrownBy(const std::function<void()>& act) {
    const Error error = thrownBy(act);
    const auto* value = error.as<ZORBackupExcluderError>();
    if (value == nullptr) throw std::runtime_error("another error");
    return *value;
}

NSError platformErrorThrownBy(const std::function<void()>& act) {
    const Error error = thrownBy(act);
    const auto* value = error.as<NSError>();
    if (value == nullptr) throw std::runtime_error("another error");
    return *value;
}

TEST(ZORBackupExcluderError, HasItsTypesNameAsDomainAndItsOrderAsCode) {
    EXPECT_EQ(nsError(ZORBackupExcluderError::expectedDirectoryUrl),
              NSError(u"ZORFoundation.ZORBackupExcluderError", 0));
    EXPECT_EQ(nsError(ZORBackupExcluderError::directoryEnumerationFailed),
              NSError(u"ZORFoundation.ZORBackupExcluderError", 1));
}

TEST(ZORBackupExcluder, MarksOneFileOrDirectory) {
    const TemporaryDirectory directory;
    directory.write("folder/one", "");
    directory.write("two", "");
    ZORBackupExcluder::excludeFileForBackup(directory / "folder/one");
    EXPECT_EQ(marked(directory), (Paths{"folder/one"}));
    ZORBackupExcluder::excludeFileForBackup(directory / "folder");
    EXPECT_EQ(marked(directory), (Paths{"folder", "folder/one"}));
}

TEST(ZORBackupExcluder, ThrowsThePlatformsErrorUnchanged) {
    const TemporaryDirectory directory;
    EXPECT_EQ(platformErrorThrownBy([&] { ZORBackupExcluder::excludeFileForBackup(directory / "missing"); }),
              NSError(ZORPlatform::NSCocoaErrorDomain, 4));
    EXPECT_EQ(platformErrorThrownBy([] { ZORBackupExcluder::excludeFileForBackup("/proc/self/status"); }),
              NSError(ZORPlatform::NSPOSIXErrorDomain, ENOTSUP));
}

TEST(ZORBackupExcluder, MarksWhatMatchesAndNotWhatGoesOn) {
    const TemporaryDirectory directory;
    directory.write("db/main.sqlite", "");
    directory.write("db/main.sqlite-wal", "");
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"\\.sqlite$"});
    EXPECT_EQ(marked(directory), (Paths{"db/main.sqlite"}));
}

TEST(ZORBackupExcluder, MatchesAnywhereInTheRelativePathDirectoriesIncluded) {
    const TemporaryDirectory directory;
    directory.write("tmp/file", "");
    directory.write("x/atmpb", "");
    directory.write("x/TMP", "");
    directory.write("other", "");
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"tmp"});
    EXPECT_EQ(marked(directory), (Paths{"tmp", "tmp/file", "x/atmpb"}));
}

TEST(ZORBackupExcluder, MatchesThePathRelativeToTheDirectoryOnly) {
    const TemporaryDirectory directory;
    directory.write("Logs/2018/a.txt", "");
    const std::u16string own = directory.path().filename().u16string();
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {own, u"^Logs/2018/a\\.txt$"});
    EXPECT_EQ(marked(directory), (Paths{"Logs/2018/a.txt"}));
}

TEST(ZORBackupExcluder, MarksNothingForAnEmptyListOfPatterns) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {});
    EXPECT_EQ(marked(directory), Paths{});
}

TEST(ZORBackupExcluder, MarksEverythingForAPatternThatMatchesAnywhere) {
    const TemporaryDirectory directory;
    directory.write("a/b", "");
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"(?:)"});
    EXPECT_EQ(marked(directory), (Paths{"a", "a/b"}));
}

TEST(ZORBackupExcluder, TriesEveryPatternOnEveryEntry) {
    const TemporaryDirectory directory;
    directory.write("a", "");
    directory.write("b", "");
    directory.write("c", "");
    FailingSystemCalls counting(0, FailingSystemCalls::Outcome::fails);
    {
        const ZORPlatform::ReplacedSystemCalls replaced(counting);
        ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"a", u"[ab]"});
    }
    EXPECT_EQ(marked(directory), (Paths{"a", "b"}));
    EXPECT_EQ(counting.count(), 3) << "a is marked twice";
}

TEST(ZORBackupExcluder, ABadSecondPatternThrowsAfterTheFirstOnTheFirstEntryOnly) {
    const TemporaryDirectory directory;
    directory.write("a", "");
    directory.write("b", "");
    const NSError error = platformErrorThrownBy([&] {
        ZORBackupExcluder::disableBackupForFiles(directory.path(), {u".", u"(", u"."});
    });
    EXPECT_EQ(error, NSError(ZORPlatform::NSCocoaErrorDomain, 2048, NSError::UserInfo{{u"NSInvalidValue", u"("}}));
    EXPECT_EQ(marked(directory), (Paths{"a"}));
}

TEST(ZORBackupExcluder, CompilesNothingWhereThereIsNoEntry) {
    const TemporaryDirectory directory;
    EXPECT_NO_THROW(ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"("}));
}

TEST(ZORBackupExcluder, ThrowsWhenASearchTakesTooManySteps) {
    const TemporaryDirectory directory;
    directory.write(std::string(40, 'a') + "!", "");
    const NSError error =
        platformErrorThrownBy([&] { ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"^(a|aa|aaa)*$"}); });
    EXPECT_EQ(error,
              NSError(ZORPlatform::NSCocoaErrorDomain, 2048, NSError::UserInfo{{u"NSInvalidValue", u"^(a|aa|aaa)*$"}}));
}

TEST(ZORBackupExcluder, ThrowsAtTheFirstFileThatCannotBeMarked) {
    const TemporaryDirectory directory;
    directory.write("a", "");
    ASSERT_EQ(mkfifo((directory / "b").c_str(), 0600), 0);
    directory.write("c", "");
    EXPECT_EQ(platformErrorThrownBy([&] { ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"."}); }),
              NSError(ZORPlatform::NSPOSIXErrorDomain, EPERM));
    EXPECT_EQ(marked(directory), (Paths{"a"}));
}

TEST(ZORBackupExcluder, MarksTheTargetOfALinkAndThrowsForADanglingOne) {
    const TemporaryDirectory directory;
    const TemporaryDirectory elsewhere;
    const fs::path target = elsewhere.write("target", "");
    fs::create_symlink(target, directory / "link");
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"link"});
    EXPECT_TRUE(NSURLResourceValues::isExcludedFromBackup(target));
    fs::remove(target);
    EXPECT_EQ(platformErrorThrownBy([&] { ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"link"}); }),
              NSError(ZORPlatform::NSCocoaErrorDomain, 4));
}

TEST(ZORBackupExcluder, MatchesBytesThatAreNoTextAsReplacementCharacters) {
    const TemporaryDirectory directory;
    directory.write("a\xFF", "");
    directory.write("b\xFF", "");
    ZORBackupExcluder::disableBackupForFiles(directory.path(), {u"^a\uFFFD$"});
    EXPECT_EQ(marked(directory), (Paths{"a\xFF"}));
}

TEST(ZORBackupExcluder, ExpectsADirectory) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    for (const fs::path& path : {directory / "file", directory / "missing", fs::path()}) {
        EXPECT_EQ(excluderErrorThrownBy([&] { ZORBackupExcluder::disableBackupForFiles(path, {u"."}); }),
                  ZORBackupExcluderError::expectedDirectoryUrl);
    }
}

TEST(ZORBackupExcluderDeathTest, ThrowsWhenTheDirectoryCannotBeListed) {
    const TemporaryDirectory directory;
    fs::permissions(directory.path(), fs::perms(0755));
    fs::create_directory(directory / "closed");
    fs::permissions(directory / "closed", fs::perms::none);
    EXPECT_EXIT(
        {
            // Nothing is closed to root.
            if (geteuid() == 0 && setuid(65534) != 0) std::exit(1);
            const auto error =
                excluderErrorThrownBy([&] { ZORBackupExcluder::disableBackupForFiles(directory / "closed", {u"."}); });
            std::exit(error == ZORBackupExcluderError::directoryEnumerationFailed ? 0 : 2);
        },
        testing::ExitedWithCode(0), "");
}

class ZORBackupExcluderDocumentsTest : public testing::Test {
protected:
    ~ZORBackupExcluderDocumentsTest() override { HostEnvironment::setDocumentsDirectory(std::nullopt); }
};

TEST_F(ZORBackupExcluderDocumentsTest, MarksBelowTheDocumentsDirectory) {
    const TemporaryDirectory directory;
    directory.write("Caches/a", "");
    directory.write("b", "");
    HostEnvironment::setDocumentsDirectory(directory.path());
    ZORBackupExcluder::disableBackupForFilesInDocumentsFolder({u"^Caches/"});
    EXPECT_EQ(marked(directory), (Paths{"Caches/a"}));
}

TEST_F(ZORBackupExcluderDocumentsTest, ThrowsWhereThereIsNoDocumentsDirectory) {
    const auto act = [] { ZORBackupExcluder::disableBackupForFilesInDocumentsFolder({u"."}); };
    HostEnvironment::setDocumentsDirectory("");
    EXPECT_EQ(excluderErrorThrownBy(act), ZORBackupExcluderError::directoryEnumerationFailed);
    const TemporaryDirectory directory;
    HostEnvironment::setDocumentsDirectory(directory / "missing");
    EXPECT_EQ(excluderErrorThrownBy(act), ZORBackupExcluderError::expectedDirectoryUrl);
}

}  // namespace
}  // namespace ZORFoundation
