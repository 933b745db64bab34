// SPDX-License-Identifier: Apache-2.0
//
// Settings in places that do not let themselves be written or read. Each runs in a process of its own, because it gives
// rights away for good.
#include <ZORFoundation/PlistCore/ZORPlistController.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/NSException.h>

#include <gtest/gtest.h>
#include <support/TemporaryDirectory.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>

namespace ZORFoundation {
namespace {

namespace fs = std::filesystem;
using Dictionary = PropertyListValue::Dictionary;
using support::bytesOf;
using support::readFile;
using support::TemporaryDirectory;
using support::writeFile;
using ZORPlatform::HostEnvironment;

constexpr std::u16string_view kKey = u"correct horse battery staple";

class PlacedSettings : public ZORPlistController {
public:
    [[nodiscard]] fs::path plistFilename() const override { return "Placed.plist"; }
};

[[nodiscard]] bool save(Dictionary dictionary) {
    PlacedSettings settings;
    settings.isEncrypted = true;
    settings.encryptionKey = kKey;
    settings.dictionary = std::move(dictionary);
    return settings.persist();
}

Dictionary load() { return ZORPlistController::withEncryption<PlacedSettings>(true, kKey)->dictionary.value(); }

const Dictionary kOld{{u"language", u"nl"}};
const Dictionary kDefaults{{u"language", u"fr"}};

const Dictionary kSmall{{u"small", true}};

/// Settings too large for what room a test leaves.
Dictionary largeSettings() { return {{u"large", std::u16string(200'000, u'x')}}; }

/// A disk of 128 kilobytes at `place`. @return false where no file system of the test's own is allowed
bool mountSmallDisk(const fs::path& place) {
    return (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", place.c_str(), "tmpfs", 0, "size=128k") == 0;
}

/// Files of 128 kilobytes at the most: writing ends halfway as on a full disk.
bool limitFiles() {
    const rlimit limit{131072, 131072};
    return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// Ends the process with a number that tells which condition did not hold.
void require(bool condition, int number) {
    if (!condition) std::_Exit(number);
}

/// Takes away what root may do beyond others.
void becomeNobody() { require(geteuid() != 0 || setuid(65534) == 0, 99); }

class SettingsPlaceDeathTest : public testing::Test {
protected:
    SettingsPlaceDeathTest() {
        fs::permissions(directory_.path(), fs::perms(0755));
        for (const char* const name : {"Documents", "Resources", "state"}) {
            fs::create_directory(directory_ / name);
            fs::permissions(directory_ / name, fs::perms(0777));
        }
        HostEnvironment::setDocumentsDirectory(documents());
        HostEnvironment::setMainResourceDirectory(directory_ / "Resources");
        HostEnvironment::setStateDirectory(state());
        directory_.write("Resources/Placed.plist", "<dict><key>language</key><string>fr</string></dict>");
    }
    ~SettingsPlaceDeathTest() override {
        HostEnvironment::setDocumentsDirectory(std::nullopt);
        HostEnvironment::setMainResourceDirectory(std::nullopt);
        HostEnvironment::setStateDirectory(std::nullopt);
        fs::permissions(documents(), fs::perms(0777));
    }

    [[nodiscard]] fs::path documents() const { return directory_ / "Documents"; }
    [[nodiscard]] fs::path state() const { return directory_ / "state"; }
    [[nodiscard]] fs::path file() const { return documents() / "Placed.plist"; }

    static std::ptrdiff_t count(const fs::path& directory) {
        return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
    }

private:
    TemporaryDirectory directory_;
};

TEST_F(SettingsPlaceDeathTest, AFullDiskKeepsTheOldSettingsAndNothingElse) {
    EXPECT_EXIT(
        {
            require(mountSmallDisk(documents()) || limitFiles(), 1);
            require(save(kOld), 2);
            require(!save(largeSettings()), 3);
            require(load() == kOld, 4);
            require(count(documents()) == 1, 5);
            require(save(kSmall), 6);
            require(load() == kSmall, 7);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(SettingsPlaceDeathTest, AReadOnlyDirectoryKeepsTheOldSettings) {
    ASSERT_TRUE(save(kOld));
    const auto before = readFile(file());
    fs::permissions(file(), fs::perms(0644));
    fs::permissions(documents(), fs::perms(0555));
    EXPECT_EXIT(
        {
            becomeNobody();
            require(!save(kDefaults), 1);
            require(load() == kOld, 2);
            require(count(documents()) == 1, 3);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(readFile(file()), before);
}

TEST_F(SettingsPlaceDeathTest, AReadOnlyDirectoryKeepsADamagedFileAndLoadingThrows) {
    writeFile(file(), bytesOf("damaged"));
    fs::permissions(file(), fs::perms(0644));
    fs::permissions(documents(), fs::perms(0555));
    EXPECT_EXIT(
        {
            becomeNobody();
            try {
                load();
            } catch (const ZORPlatform::NSException& exception) {
                std::_Exit(exception.name() == u"NSInvalidArgumentException" ? 0 : 1);
            }
            std::_Exit(2);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(readFile(file()), bytesOf("damaged"));
    EXPECT_EQ(count(state()), 1) << "the copy does no harm";
}

TEST_F(SettingsPlaceDeathTest, AFileThatMayNotBeReadIsMovedAsideForTheDefaults) {
    ASSERT_TRUE(save(kOld));
    const auto before = readFile(file());
    // Closed to its owner, and for a process of root's without root's rights, of another owner.
    fs::permissions(file(), fs::perms::none);
    EXPECT_EXIT(
        {
            becomeNobody();
            require(load() == kDefaults, 1);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
    ASSERT_EQ(count(state()), 1);
    const fs::path kept = fs::directory_iterator(state())->path();
    fs::permissions(kept, fs::perms::owner_all);
    EXPECT_EQ(readFile(kept), before);
}

TEST_F(SettingsPlaceDeathTest, AFileOfAnotherOwnerThatMayBeReadIsLoadedAndReplaced) {
    ASSERT_TRUE(save(kOld));
    fs::permissions(file(), fs::perms(0644));
    EXPECT_EXIT(
        {
            becomeNobody();
            require(load() == kOld, 1);
            require(save(kDefaults), 2);
            require(load() == kDefaults, 3);
            struct stat status {};
            require(stat(file().c_str(), &status) == 0 && status.st_uid == geteuid(), 4);
            require((status.st_mode & 07777U) == 0644, 5);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(SettingsPlaceDeathTest, AStickyDirectoryKeepsAFileOfAnotherOwner) {
    ASSERT_TRUE(save(kOld));
    fs::permissions(file(), fs::perms(0644));
    fs::permissions(documents(), fs::perms(01777));
    const bool isForeign = geteuid() == 0;
    EXPECT_EXIT(
        {
            becomeNobody();
            require(save(kDefaults) != isForeign, 1);
            require(load() == (isForeign ? kOld : kDefaults), 2);
            require(count(documents()) == 1, 3);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ZORFoundation
