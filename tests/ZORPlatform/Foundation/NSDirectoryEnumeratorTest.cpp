// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSFileManager.h>

#include <gtest/gtest.h>
#include <support/TemporaryDirectory.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using support::TemporaryDirectory;
using Paths = std::vector<std::string>;

Paths below(const fs::path& directory) {
    Paths paths;
    auto enumerator = NSFileManager::enumeratorAtPath(directory);
    if (!enumerator) return {"none"};
    while (const auto path = enumerator->nextObject()) paths.push_back(path->string());
    EXPECT_EQ(enumerator->nextObject(), std::nullopt) << "the end stays the end";
    return paths;
}

TEST(NSDirectoryEnumerator, ListsParentsBeforeWhatTheyHoldSortedByBytes) {
    const TemporaryDirectory directory;
    directory.write("b/y", "");
    directory.write("b/x/deep", "");
    directory.write("a.txt", "");
    directory.write("a/1", "");
    directory.write("B", "");
    directory.write("\xC3\xA9", "");
    EXPECT_EQ(below(directory.path()), (Paths{"B", "a", "a/1", "a.txt", "b", "b/x", "b/x/deep", "b/y", "\xC3\xA9"}));
}

TEST(NSDirectoryEnumerator, ListsHiddenFilesAndLinksAndFollowsNoLink) {
    const TemporaryDirectory directory;
    directory.write(".hidden/file", "");
    fs::create_directory_symlink(".hidden", directory / "link");
    fs::create_symlink("nowhere", directory / "dangling");
    fs::create_directory_symlink("..", directory / "up");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(below(directory.path()), (Paths{".hidden", ".hidden/file", "dangling", "link", "pipe", "up"}));
}

TEST(NSDirectoryEnumerator, ListsNamesThatAreNoText) {
    const TemporaryDirectory directory;
    directory.write("\xFF\xFE", "");
    EXPECT_EQ(below(directory.path()), (Paths{"\xFF\xFE"}));
}

TEST(NSDirectoryEnumerator, MayBeginAtALinkAndAtAnEmptyDirectory) {
    const TemporaryDirectory directory;
    directory.write("folder/file", "");
    fs::create_directory_symlink("folder", directory / "link");
    fs::create_directory(directory / "empty");
    EXPECT_EQ(below(directory / "link"), (Paths{"file"}));
    EXPECT_EQ(below(directory / "empty"), Paths{});
}

TEST(NSDirectoryEnumerator, GoesDownAsFarAsPathsGo) {
    const TemporaryDirectory directory;
    // Paths end at 4096 bytes; by steps the system lets one go further.
    const fs::path before = fs::current_path();
    fs::current_path(directory.path());
    for (int level = 0; level < 3000; ++level) {
        fs::create_directory("d");
        fs::current_path("d");
    }
    fs::current_path(before);
    const Paths paths = below(directory.path());
    EXPECT_GT(paths.size(), 1900U);
    EXPECT_LT(paths.size(), 2100U);
    // Removing by path would stop there, too.
    ASSERT_EQ(std::system(("rm -rf " + (directory / "d").string()).c_str()), 0);
}

TEST(NSDirectoryEnumerator, IsNotThereForWhatIsNoDirectory) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    EXPECT_EQ(below(directory / "file"), (Paths{"none"}));
    EXPECT_EQ(below(directory / "missing"), (Paths{"none"}));
    EXPECT_EQ(below(""), (Paths{"none"}));
    EXPECT_EQ(below(directory / std::string("\0x", 2)), (Paths{"none"}));
}

// Nothing is closed to root.
void becomeNobody() {
    if (geteuid() == 0 && setuid(65534) != 0) std::exit(1);
}

TEST(NSDirectoryEnumeratorDeathTest, ListsADirectoryThatCannotBeReadAndPassesItOver) {
    const TemporaryDirectory directory;
    directory.write("closed/file", "");
    directory.write("open", "");
    fs::permissions(directory.path(), fs::perms(0755));
    fs::permissions(directory / "closed", fs::perms::none);
    const Paths none({"none"});
    EXPECT_EXIT(
        {
            becomeNobody();
            const Paths expected({"closed", "open"});
            std::exit(below(directory.path()) == expected && below(directory / "closed") == none ? 0 : 2);
        },
        testing::ExitedWithCode(0), "");
    fs::permissions(directory / "closed", fs::perms::owner_all);
}

}  // namespace
}  // namespace ZORPlatform
