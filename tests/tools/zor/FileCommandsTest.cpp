// SPDX-License-Identifier: Apache-2.0
//
// watch and exclude-from-backup as programs and people use them.

#include "ZorProcess.h"

#include <gtest/gtest.h>
#include <support/TemporaryDirectory.h>

#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

namespace zor::testing {
namespace {

namespace fs = std::filesystem;
using support::TemporaryDirectory;

void append(const fs::path& path) { std::ofstream(path, std::ios::app) << "more"; }

/// Waits until the program has its watch: the system then shows it beside the descriptor.
void waitUntilWatching(const ZorProcess& process) {
    const fs::path descriptors = "/proc/" + std::to_string(process.id()) + "/fdinfo";
    for (;;) {
        std::error_code gone;
        for (fs::directory_iterator entry(descriptors, gone), end; !gone && entry != end; entry.increment(gone)) {
            std::ifstream info(entry->path());
            for (std::string line; std::getline(info, line);) {
                if (line.starts_with("inotify wd:")) return;
            }
        }
    }
}

TEST(WatchCommand, PrintsALineForAChangeOfAFile) {
    const TemporaryDirectory directory;
    const fs::path file = directory.write("file", "");
    ZorProcess process({"watch", file.string(), "--count=2"});
    waitUntilWatching(process);
    append(file);
    EXPECT_EQ(process.readLines(1, kPatience), file.string() + "\n");
    append(file);
    EXPECT_EQ(process.readLines(1, kPatience), file.string() + "\n");
    const RunResult result = process.finish();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
}

TEST(WatchCommand, GoesOnWithTheFileThatTakesThePlaceOfAnother) {
    const TemporaryDirectory directory;
    const fs::path file = directory.write("file", "");
    ZorProcess process({"watch", file.string(), "--count=2"});
    waitUntilWatching(process);
    fs::rename(directory.write("replacement", ""), file);
    EXPECT_EQ(process.readLines(1, kPatience), file.string() + "\n");
    append(file);
    EXPECT_EQ(process.finish().exitCode, 0);
}

TEST(WatchCommand, EndsWhenThePathIsGone) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "folder");
    ZorProcess process({"watch", (directory / "folder").string()});
    waitUntilWatching(process);
    fs::remove(directory / "folder");
    const RunResult result = process.finish();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, (directory / "folder").string() + "\n");
}

TEST(WatchCommand, EndsBySignalWhileNothingChanges) {
    const TemporaryDirectory directory;
    ZorProcess process({"watch", directory.path().string()});
    waitUntilWatching(process);
    ASSERT_EQ(::kill(process.id(), SIGTERM), 0);
    const RunResult result = process.finish();
    EXPECT_EQ(result.signal, SIGTERM);
    EXPECT_EQ(result.out, "");
}

TEST(WatchCommand, RefusesWhatItCannotWatch) {
    const RunResult missing = runZor({"watch", "/nonexistent/file"});
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_EQ(missing.err, "zor: /nonexistent/file: cannot be watched\n");
    EXPECT_EQ(runZor({"watch"}).exitCode, 2);
    EXPECT_EQ(runZor({"watch", "/", "/"}).exitCode, 2);
    for (const char* const count : {"--count=0", "--count=x", "--count=-1", "--count=1x"}) {
        EXPECT_EQ(runZor({"watch", "/", count}).exitCode, 2) << count;
    }
}

class ExcludeFromBackupCommand : public ::testing::Test {
protected:
    /// A path as the listing shows it.
    [[nodiscard]] std::string below(const std::string& name) const { return (directory_ / name).string(); }
    [[nodiscard]] RunResult run(Words words) const {
        words.insert(words.begin(), {"exclude-from-backup"});
        return runZor(std::move(words));
    }
    [[nodiscard]] std::string listed() const { return run({"--list", root()}).out; }
    [[nodiscard]] std::string root() const { return directory_.path().string(); }

    TemporaryDirectory directory_;
};

TEST_F(ExcludeFromBackupCommand, MarksWhatMatchesAndListsIt) {
    directory_.write("db/main.sqlite", "");
    directory_.write("db/main.sqlite-wal", "");
    directory_.write("tmp/a", "");
    EXPECT_EQ(listed(), "");
    const RunResult marked = run({root(), "\\.sqlite$", "^tmp"});
    EXPECT_EQ(marked.exitCode, 0);
    EXPECT_EQ(marked.out + marked.err, "");
    EXPECT_EQ(listed(), below("db/main.sqlite") + "\n" + below("tmp") + "\n" + below("tmp/a") + "\n");
}

TEST_F(ExcludeFromBackupCommand, ListsNoLinks) {
    directory_.write("target", "");
    fs::create_symlink("target", directory_ / "link");
    EXPECT_EQ(run({root(), "link"}).exitCode, 0);
    EXPECT_EQ(listed(), below("target") + "\n");
}

TEST_F(ExcludeFromBackupCommand, ListsAnyNameBeforeNulBytes) {
    directory_.write("a\nb", "");
    directory_.write("\xFF", "");
    EXPECT_EQ(run({root(), "."}).exitCode, 0);
    EXPECT_EQ(run({"--list", root()}).exitCode, 3);
    EXPECT_EQ(run({"--list", "--zero", root()}).out,
              below("a\nb") + std::string(1, '\0') + below("\xFF") + std::string(1, '\0'));
}

TEST_F(ExcludeFromBackupCommand, SaysWhyItFails) {
    EXPECT_EQ(run({"/nonexistent", "."}).err, "zor: /nonexistent: is no directory\n");
    EXPECT_EQ(run({"/nonexistent", "."}).exitCode, 3);
    EXPECT_EQ(run({"--list", "/nonexistent"}).exitCode, 3);
    directory_.write("file", "");
    EXPECT_EQ(run({root(), "("}).exitCode, 2);
    EXPECT_EQ(run({root(), "("}).err, "zor: a PATTERN is no regular expression, or takes too many steps\n");
    EXPECT_EQ(run({root(), "\xFF"}).exitCode, 2);
    fs::create_symlink("nowhere", directory_ / "dangling");
    EXPECT_EQ(run({root(), "dangling"}).exitCode, 3);
    ASSERT_EQ(::mkfifo((directory_ / "pipe").c_str(), 0600), 0);
    const RunResult pipe = run({root(), "pipe"});
    EXPECT_EQ(pipe.exitCode, 3);
    EXPECT_EQ(pipe.err, "zor: a file that matches cannot be marked: Operation not permitted\n");
}

TEST_F(ExcludeFromBackupCommand, RefusesCommandLinesThatSayNothing) {
    EXPECT_EQ(run({}).exitCode, 2);
    EXPECT_EQ(run({root()}).exitCode, 2);
    EXPECT_EQ(run({"--list", root(), "."}).exitCode, 2);
    EXPECT_EQ(run({"--zero", root(), "."}).exitCode, 2);
}

}  // namespace
}  // namespace zor::testing
