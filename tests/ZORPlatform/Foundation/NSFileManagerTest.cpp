// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSFileManager.h>

#include <gtest/gtest.h>

#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using support::bytesOf;
using support::FailingSystemCalls;
using support::readFile;
using support::TemporaryDirectory;
using support::writeFile;

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

TEST(NSFileManager, WritesANewFileWithTheUsualMode) {
    const TemporaryDirectory directory;
    const mode_t mask = umask(0027);
    EXPECT_TRUE(NSFileManager::writeAtomically(directory / "file", bytesOf("content")));
    umask(mask);
    EXPECT_EQ(readFile(directory / "file"), bytesOf("content"));
    EXPECT_EQ(modeOf(directory / "file"), 0640U);
    EXPECT_EQ(directory.count(), 1U);
}

TEST(NSFileManager, KeepsTheModeOfAReplacedFile) {
    const TemporaryDirectory directory;
    for (const mode_t mode : {0600U, 0644U, 0666U}) {
        writeFile(directory / "file", bytesOf("old"));
        ASSERT_EQ(chmod((directory / "file").c_str(), mode), 0);
        EXPECT_TRUE(NSFileManager::writeAtomically(directory / "file", bytesOf("new")));
        EXPECT_EQ(readFile(directory / "file"), bytesOf("new"));
        EXPECT_EQ(modeOf(directory / "file"), mode);
    }
}

TEST(NSFileManager, ReplacesWhatALinkLeadsToAndKeepsTheLink) {
    const TemporaryDirectory directory;
    writeFile(directory / "target", bytesOf("old"));
    fs::create_symlink("target", directory / "link");
    EXPECT_TRUE(NSFileManager::writeAtomically(directory / "link", bytesOf("new")));
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
    EXPECT_EQ(readFile(directory / "target"), bytesOf("new"));
}

TEST(NSFileManager, WritesEmptyAndLargeFilesAndTheLongestName) {
    const TemporaryDirectory directory;
    const std::vector<std::uint8_t> large(3 << 20, 7);
    EXPECT_TRUE(NSFileManager::writeAtomically(directory / "empty", {}));
    EXPECT_EQ(readFile(directory / "empty").size(), 0U);
    EXPECT_TRUE(NSFileManager::writeAtomically(directory / std::string(255, 'n'), large));
    EXPECT_EQ(readFile(directory / std::string(255, 'n')), large);
}

TEST(NSFileManager, DoesNotWriteWhereThereIsNoDirectory) {
    const TemporaryDirectory directory;
    EXPECT_FALSE(NSFileManager::writeAtomically(directory / "missing/file", bytesOf("x")));
    EXPECT_FALSE(NSFileManager::writeAtomically("", bytesOf("x")));
    EXPECT_FALSE(NSFileManager::writeAtomically(directory / std::string("a\0b", 3), bytesOf("x")));
    EXPECT_EQ(directory.count(), 0U);
}

TEST(NSFileManager, DoesNotReplaceADirectory) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "folder");
    EXPECT_FALSE(NSFileManager::writeAtomically(directory / "folder", bytesOf("x")));
    EXPECT_TRUE(fs::is_directory(directory / "folder"));
    EXPECT_EQ(directory.count(), 1U);
}

TEST(NSFileManager, AnyFailingCallLeavesOneWholeFileAndNothingElse) {
    int calls = 0;
    {
        const TemporaryDirectory directory;
        writeFile(directory / "file", bytesOf("old"));
        FailingSystemCalls counting(0, FailingSystemCalls::Outcome::fails);
        const ReplacedSystemCalls replaced(counting);
        ASSERT_TRUE(NSFileManager::writeAtomically(directory / "file", bytesOf("new")));
        calls = counting.count();
    }
    ASSERT_GE(calls, 8);
    for (const int error : {EIO, ENOSPC, EDQUOT}) {
        for (int call = 1; call <= calls; ++call) {
            const TemporaryDirectory directory;
            writeFile(directory / "file", bytesOf("old"));
            bool written = false;
            {
                FailingSystemCalls failing(call, FailingSystemCalls::Outcome::fails, error);
                const ReplacedSystemCalls replaced(failing);
                written = NSFileManager::writeAtomically(directory / "file", bytesOf("new"));
            }
            const auto content = readFile(directory / "file");
            EXPECT_TRUE(content == bytesOf("new") || content == bytesOf("old")) << "call " << call;
            EXPECT_TRUE(!written || content == bytesOf("new")) << "call " << call;
            EXPECT_EQ(directory.count(), 1U) << "call " << call;
        }
    }
}

TEST(NSFileManager, AnInterruptedWriteGoesOn) {
    const TemporaryDirectory directory;
    FailingSystemCalls interrupted(2, FailingSystemCalls::Outcome::fails, EINTR);
    const ReplacedSystemCalls replaced(interrupted);
    EXPECT_TRUE(NSFileManager::writeAtomically(directory / "file", bytesOf("content")));
    EXPECT_EQ(readFile(directory / "file"), bytesOf("content"));
}

TEST(NSFileManager, AProcessThatEndsAtAnyCallLeavesOneWholeFile) {
    for (const auto outcome : {FailingSystemCalls::Outcome::isTheLast, FailingSystemCalls::Outcome::halfWrites}) {
        for (int call = 1; call <= 12; ++call) {
            const TemporaryDirectory directory;
            writeFile(directory / "file", bytesOf("old content"));
            const pid_t child = fork();
            if (child == 0) {
                FailingSystemCalls last(call, outcome);
                const ReplacedSystemCalls replaced(last);
                static_cast<void>(NSFileManager::writeAtomically(directory / "file", bytesOf("new content")));
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            const auto content = readFile(directory / "file");
            EXPECT_TRUE(content == bytesOf("new content") || content == bytesOf("old content")) << "call " << call;
        }
    }
}

TEST(NSFileManager, ReadsRegularFilesOnly) {
    const TemporaryDirectory directory;
    writeFile(directory / "file", bytesOf("content"));
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    fs::create_symlink("nowhere", directory / "dangling");
    EXPECT_EQ(NSFileManager::contentsAtPath(directory / "file"), bytesOf("content"));
    EXPECT_EQ(NSFileManager::contentsAtPath(directory / "pipe"), std::nullopt);
    EXPECT_EQ(NSFileManager::contentsAtPath(directory / "dangling"), std::nullopt);
    EXPECT_EQ(NSFileManager::contentsAtPath(directory.path()), std::nullopt);
    EXPECT_EQ(NSFileManager::contentsAtPath(""), std::nullopt);
}

TEST(NSFileManager, ReadsFilesThatTellNoSize) {
    const auto content = NSFileManager::contentsAtPath("/proc/self/status");
    ASSERT_TRUE(content);
    EXPECT_GT(content->size(), 100U);
}

TEST(NSFileManager, ADanglingLinkDoesNotExist) {
    const TemporaryDirectory directory;
    fs::create_symlink("nowhere", directory / "dangling");
    EXPECT_FALSE(NSFileManager::fileExistsAtPath(directory / "dangling"));
    EXPECT_TRUE(NSFileManager::fileExistsAtPath(directory.path()));
    EXPECT_FALSE(NSFileManager::fileExistsAtPath(""));
}

TEST(NSFileManager, RemovesFilesAndDirectoriesWithTheirContent) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "folder");
    writeFile(directory / "folder/file", bytesOf("x"));
    EXPECT_TRUE(NSFileManager::removeItemAtPath(directory / "folder"));
    EXPECT_FALSE(NSFileManager::removeItemAtPath(directory / "folder"));
    EXPECT_EQ(directory.count(), 0U);
}

TEST(NSFileManager, KeepsTheOwnerOfAReplacedFileWhereItMay) {
    struct Recorder : SystemCalls {
        int fchown(int descriptor, uid_t owner, gid_t group) override {
            asked.emplace_back(owner, group);
            return mayGiveAway ? SystemCalls::fchown(descriptor, owner, group) : (errno = EPERM, -1);
        }
        bool mayGiveAway = true;
        std::vector<std::pair<uid_t, gid_t>> asked;
    };
    const TemporaryDirectory directory;
    const fs::path file = directory / "file";
    writeFile(file, bytesOf("old"));
    // Root gives the file to somebody else, for whom it then has to stay. Nobody else can, and has nothing to keep.
    const bool isForeign = geteuid() == 0;
    if (isForeign) {
        ASSERT_EQ(chown(file.c_str(), 65534, 65534), 0);
    }
    struct stat before {};
    ASSERT_EQ(stat(file.c_str(), &before), 0);
    Recorder calls;
    const ReplacedSystemCalls replaced(calls);
    EXPECT_TRUE(NSFileManager::writeAtomically(file, bytesOf("new")));
    struct stat after {};
    ASSERT_EQ(stat(file.c_str(), &after), 0);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    using Owners = std::vector<std::pair<uid_t, gid_t>>;
    const Owners asOfTheFile{{before.st_uid, before.st_gid}};
    EXPECT_EQ(std::exchange(calls.asked, {}), isForeign ? asOfTheFile : Owners{});

    calls.mayGiveAway = false;
    EXPECT_TRUE(NSFileManager::writeAtomically(file, bytesOf("newer")));
    EXPECT_EQ(readFile(file), bytesOf("newer"));
    const Owners thenTheGroupAtLeast{asOfTheFile[0], {static_cast<uid_t>(-1), before.st_gid}};
    EXPECT_EQ(calls.asked, isForeign ? thenTheGroupAtLeast : Owners{});
}

TEST(NSFileManager, KeepsTheNewestCopiesAside) {
    const TemporaryDirectory directory;
    const fs::path aside = directory / "state/copies";
    for (const char* content : {"1", "2", "3", "4", "5"}) {
        writeFile(directory / "file", bytesOf(content));
        NSFileManager::keepAside(directory / "file", aside, 3);
    }
    std::vector<fs::path> copies(fs::directory_iterator(aside), {});
    std::sort(copies.begin(), copies.end());
    ASSERT_EQ(copies.size(), 3U);
    EXPECT_EQ(readFile(copies[0]), bytesOf("3"));
    EXPECT_EQ(readFile(copies[2]), bytesOf("5"));
    EXPECT_EQ(modeOf(copies[0]), 0600U);
    EXPECT_EQ(modeOf(aside), 0700U);
    EXPECT_TRUE(fs::exists(directory / "file"));
}

TEST(NSFileManager, MovesAsideWhatItCannotCopy) {
    const TemporaryDirectory directory;
    const fs::path aside = directory / "aside";
    directory.write("folder/file", "content");
    NSFileManager::keepAside(directory / "folder", aside, 3);
    EXPECT_FALSE(fs::exists(directory / "folder"));
    EXPECT_EQ(readFile(fs::directory_iterator(aside)->path() / "file"), bytesOf("content"));

    writeFile(directory / "file", bytesOf("content"));
    fs::create_directory(directory / "other");
    {
        // The first call opens the file to be read.
        FailingSystemCalls failing(1, FailingSystemCalls::Outcome::fails, EIO);
        const ReplacedSystemCalls replaced(failing);
        NSFileManager::keepAside(directory / "file", directory / "other", 3);
    }
    EXPECT_FALSE(fs::exists(directory / "file"));
    EXPECT_EQ(readFile(fs::directory_iterator(directory / "other")->path()), bytesOf("content"));
}

TEST(NSFileManager, KeepsNothingAsideWhereThereIsNothing) {
    const TemporaryDirectory directory;
    NSFileManager::keepAside(directory / "missing", directory / "aside", 3);
    EXPECT_FALSE(fs::exists(directory / "aside"));
}

TEST(NSFileManager, LeavesAloneWhatItCanNeitherCopyNorMoveAside) {
    const TemporaryDirectory directory;
    writeFile(directory / "file", bytesOf("content"));
    writeFile(directory / "aside", bytesOf("a file where the directory should be"));
    NSFileManager::keepAside(directory / "file", directory / "aside", 3);
    EXPECT_EQ(readFile(directory / "file"), bytesOf("content"));
}

}  // namespace
}  // namespace ZORPlatform
