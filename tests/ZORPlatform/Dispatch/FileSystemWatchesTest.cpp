// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Dispatch/FileSystemWatchesInternal.h>

#include <gtest/gtest.h>
#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <memory>
#include <string>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using support::FailingSystemCalls;
using support::TemporaryDirectory;

struct Counter final : FileSystemListener {
    void changed() override { ++count; }
    int count = 0;
};

// The system queues an event before the call that causes it returns, so reading afterwards finds all of them.
class FileSystemWatchesTest : public testing::Test {
protected:
    /// The words that come for `path` when `act` is done.
    int told(const fs::path& path, const std::function<void()>& act) {
        const auto counter = std::make_shared<Counter>();
        const int number = watches_.add(path, counter);
        EXPECT_GT(number, 0);
        act();
        watches_.readEvents();
        watches_.remove(number, *counter);
        return counter->count;
    }

    [[nodiscard]] fs::path file(const std::string& name = "file") const { return directory_ / name; }
    fs::path made(const std::string& name = "file") const { return directory_.write(name, "content"); }

    static void append(const fs::path& path) { std::ofstream(path, std::ios::app) << "more"; }

    TemporaryDirectory directory_;
    FileSystemWatches watches_;
};

TEST_F(FileSystemWatchesTest, TellsOfWritingToAFile) {
    EXPECT_EQ(told(made(), [&] { append(file()); }), 1);
}

TEST_F(FileSystemWatchesTest, TellsOfCuttingAFile) {
    EXPECT_EQ(told(made(), [&] { fs::resize_file(file(), 2); }), 1);
}

TEST_F(FileSystemWatchesTest, DoesNotTellOfWhatLeavesTheContentAlone) {
    EXPECT_EQ(told(made(), [&] { support::readFile(file()); }), 0);
    EXPECT_EQ(told(file(), [&] { ::close(::open(file().c_str(), O_WRONLY | O_CLOEXEC)); }), 0);
    EXPECT_EQ(told(file(), [&] { ::chmod(file().c_str(), 0600); }), 0);
    EXPECT_EQ(told(file(), [&] { fs::create_hard_link(file(), file("second name")); }), 0);
    EXPECT_EQ(told(file(), [&] { fs::remove(file("second name")); }), 0);
}

TEST_F(FileSystemWatchesTest, DoesNotTellOfRenamingAFileAndFollowsIt) {
    EXPECT_EQ(told(made(), [&] { fs::rename(file(), file("renamed")); }), 0);
    EXPECT_EQ(told(made(),
                   [&] {
                       fs::rename(file(), file("renamed"));
                       append(file("renamed"));
                   }),
              1);
}

TEST_F(FileSystemWatchesTest, TellsOfDeletingAFileOnce) {
    EXPECT_EQ(told(made(), [&] { fs::remove(file()); }), 1);
}

TEST_F(FileSystemWatchesTest, TellsOfDeletingARenamedFileOnce) {
    EXPECT_EQ(told(made(),
                   [&] {
                       fs::rename(file(), file("renamed"));
                       ::chmod(file("renamed").c_str(), 0600);
                       fs::remove(file("renamed"));
                   }),
              1);
}

TEST_F(FileSystemWatchesTest, TellsOfDeletingAFileThatIsHeldOpenAtOnceAndNotAgainWhenItIsClosed) {
    const int holder = ::open(made().c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(told(file(),
                   [&] {
                       fs::remove(file());
                       watches_.readEvents();
                       ::close(holder);
                   }),
              1);
}

TEST_F(FileSystemWatchesTest, TellsOfWritingToADeletedFileThatIsHeldOpen) {
    const int holder = ::open(made().c_str(), O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(told(file(),
                   [&] {
                       fs::remove(file());
                       watches_.readEvents();
                       ASSERT_EQ(::write(holder, "x", 1), 1);
                   }),
              2);
    ::close(holder);
}

TEST_F(FileSystemWatchesTest, TellsOfAnAtomicReplacementAsDeletionAndOfTheNewFileNothing) {
    for (const bool isHeld : {false, true}) {
        const int holder = isHeld ? ::open(made().c_str(), O_RDONLY | O_CLOEXEC) : -1;
        EXPECT_EQ(told(made(),
                       [&] {
                           fs::rename(made("replacement"), file());
                           watches_.readEvents();
                           append(file());
                           fs::remove(file());
                       }),
                  1)
            << isHeld;
        if (isHeld) ::close(holder);
    }
}

TEST_F(FileSystemWatchesTest, TellsOfARemovedNameOfAFileWithTwoOnlyWhereThatNameIsWatched) {
    fs::create_hard_link(made(), file("second name"));
    const auto first = std::make_shared<Counter>();
    const auto second = std::make_shared<Counter>();
    EXPECT_EQ(watches_.add(file(), first), watches_.add(file("second name"), second));
    fs::remove(file());
    watches_.readEvents();
    EXPECT_EQ(first->count, 1);
    EXPECT_EQ(second->count, 0);
}

TEST_F(FileSystemWatchesTest, TellsOfEntriesOfADirectory) {
    EXPECT_EQ(told(directory_.path(), [&] { ::close(::open(file().c_str(), O_CREAT | O_RDONLY | O_CLOEXEC, 0600)); }),
              1);
    EXPECT_EQ(told(directory_.path(), [&] { fs::rename(file(), file("renamed")); }), 2);
    EXPECT_EQ(told(directory_.path(), [&] { fs::remove(file("renamed")); }), 1);
    EXPECT_EQ(told(directory_.path(), [&] { fs::create_directory(file("folder")); }), 1);
    EXPECT_EQ(told(file("folder"), [&] { fs::rename(made(), file("folder/file")); }), 1);
    EXPECT_EQ(told(file("folder"), [&] { fs::rename(file("folder/file"), file()); }), 1);
    EXPECT_EQ(told(directory_.path(), [&] { fs::remove(file("folder")); }), 1);
}

TEST_F(FileSystemWatchesTest, DoesNotTellOfWhatHappensInsideAnEntryOfADirectory) {
    made();
    fs::create_directory(file("folder"));
    EXPECT_EQ(told(directory_.path(), [&] { append(file()); }), 0);
    EXPECT_EQ(told(directory_.path(), [&] { ::chmod(file().c_str(), 0600); }), 0);
    EXPECT_EQ(told(directory_.path(), [&] { made("folder/below"); }), 0);
}

TEST_F(FileSystemWatchesTest, TellsOfDeletingADirectoryOnce) {
    fs::create_directory(file("folder"));
    EXPECT_EQ(told(file("folder"), [&] { fs::remove(file("folder")); }), 1);
}

TEST_F(FileSystemWatchesTest, FollowsLinksToWhatTheyLeadToAtTheStart) {
    made();
    fs::create_symlink("file", file("link"));
    EXPECT_EQ(told(file("link"), [&] { append(file()); }), 1);
    EXPECT_EQ(told(file("link"), [&] { fs::remove(file("link")); }), 0);
}

TEST_F(FileSystemWatchesTest, TellsNothingOnceAListenerIsRemovedNotEvenOfBefore) {
    const auto counter = std::make_shared<Counter>();
    const int number = watches_.add(made(), counter);
    append(file());
    watches_.remove(number, *counter);
    append(file());
    watches_.readEvents();
    EXPECT_EQ(counter->count, 0);
    EXPECT_EQ(counter.use_count(), 1);
    watches_.remove(number, *counter);
}

TEST_F(FileSystemWatchesTest, CountsTheListenersOfOneFile) {
    const auto first = std::make_shared<Counter>();
    const auto second = std::make_shared<Counter>();
    const int number = watches_.add(made(), first);
    EXPECT_EQ(watches_.add(file(), second), number);
    watches_.remove(number, *first);
    append(file());
    watches_.readEvents();
    EXPECT_EQ(first->count, 0);
    EXPECT_EQ(second->count, 1);
}

TEST_F(FileSystemWatchesTest, TellsALaterListenerOfAFileNothingOfBefore) {
    const auto first = std::make_shared<Counter>();
    const auto second = std::make_shared<Counter>();
    watches_.add(made(), first);
    append(file());
    watches_.add(file(), second);
    watches_.readEvents();
    EXPECT_EQ(first->count, 1);
    EXPECT_EQ(second->count, 0);
}

TEST_F(FileSystemWatchesTest, KeepsTheListenerOfADeletedFileUntilItIsRemoved) {
    const auto counter = std::make_shared<Counter>();
    const int number = watches_.add(made(), counter);
    fs::remove(file());
    watches_.readEvents();
    EXPECT_EQ(counter.use_count(), 2);
    watches_.remove(number, *counter);
    EXPECT_EQ(counter.use_count(), 1);
}

TEST_F(FileSystemWatchesTest, TellsEverybodyWhenTheSystemHasDroppedEvents) {
    const auto busy = std::make_shared<Counter>();
    const auto quiet = std::make_shared<Counter>();
    watches_.add(made(), busy);
    watches_.add(made("other"), busy);
    watches_.add(made("quiet"), quiet);
    std::ifstream setting("/proc/sys/fs/inotify/max_queued_events");
    int longest = 0;
    ASSERT_TRUE(setting >> longest);
    // In turns, because the system merges equal events that follow each other.
    const int one = ::open(file().c_str(), O_WRONLY | O_CLOEXEC);
    const int two = ::open(file("other").c_str(), O_WRONLY | O_CLOEXEC);
    for (int i = 0; i < longest / 2 + 1; ++i) {
        ASSERT_EQ(::write(one, "x", 1), 1);
        ASSERT_EQ(::write(two, "x", 1), 1);
    }
    ::close(one);
    ::close(two);
    watches_.readEvents();
    EXPECT_EQ(quiet->count, 1);
    EXPECT_EQ(busy->count, longest + 2);
}

TEST_F(FileSystemWatchesTest, DoesNotWatchWhatIsNotThere) {
    const auto counter = std::make_shared<Counter>();
    fs::create_symlink("nowhere", file("dangling"));
    const std::string beyond = made().string() + std::string("\0x", 2);
    for (const fs::path& path : {file("missing"), file("dangling"), made() / "below", fs::path(), fs::path(beyond)}) {
        EXPECT_EQ(watches_.add(path, counter), -1) << path;
    }
    EXPECT_EQ(counter.use_count(), 1);
}

TEST_F(FileSystemWatchesTest, WatchesNothingWhenACallFails) {
    made();
    for (int call = 1; call <= 3; ++call) {
        FailingSystemCalls failing(call, FailingSystemCalls::Outcome::fails, ENOSPC);
        const ReplacedSystemCalls replaced(failing);
        const auto counter = std::make_shared<Counter>();
        FileSystemWatches watches;
        EXPECT_EQ(watches.isOpen(), call != 1);
        EXPECT_EQ(watches.add(file(), counter), -1) << call;
        EXPECT_EQ(counter.use_count(), 1);
    }
}

TEST_F(FileSystemWatchesTest, HoldsNoDescriptorOfWhatItWatches) {
    const auto openDescriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    made();
    const auto before = openDescriptors();
    watches_.add(file(), std::make_shared<Counter>());
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace ZORPlatform
