// SPDX-License-Identifier: Apache-2.0
//
// A process that saves settings is killed at any moment: the old settings or the new ones are there, whole.
#include <ZORFoundation/PlistCore/ZORPlistController.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gtest/gtest.h>
#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <sched.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <new>
#include <random>
#include <string>

namespace ZORFoundation {
namespace {

namespace fs = std::filesystem;
using Dictionary = PropertyListValue::Dictionary;
using support::FailingSystemCalls;
using support::TemporaryDirectory;
using ZORPlatform::ReplacedSystemCalls;

constexpr std::u16string_view kKey = u"correct horse battery staple";

class CrashSettings : public ZORPlistController {
public:
    fs::path plistFilename() const override { return "Crash.plist"; }
};

/// Settings whose every value depends on the generation, so that a mixture of two shows.
Dictionary settingsOf(std::int64_t generation) {
    Dictionary dictionary{{u"generation", generation}};
    std::mt19937_64 random(static_cast<std::uint64_t>(generation));
    const std::size_t count = 1 + random() % 200;
    for (std::size_t i = 0; i < count; ++i) {
        dictionary.emplace(u"key" + ZORPlatform::utf16(std::to_string(i)),
                           std::u16string(random() % 60, static_cast<char16_t>(u'a' + random() % 26)));
    }
    return dictionary;
}

bool save(std::int64_t generation) {
    CrashSettings settings;
    settings.isEncrypted = true;
    settings.encryptionKey = kKey;
    settings.dictionary = settingsOf(generation);
    return settings.persist();
}

/// The generation of the file, or -1 when it is not whole.
std::int64_t savedGeneration() {
    const auto settings = ZORPlistController::withEncryption<CrashSettings>(true, kKey);
    const auto found = settings->dictionary->find(u"generation");
    if (found == settings->dictionary->end()) return -1;
    const std::int64_t generation = found->second.integerValue().value_or(-1);
    return *settings->dictionary == settingsOf(generation) ? generation : -1;
}

class SettingsCrashTest : public testing::Test {
protected:
    SettingsCrashTest() {
        // Without a default file, settings that are lost make loading throw.
        ZORPlatform::HostEnvironment::setDocumentsDirectory(documents_.path());
        ZORPlatform::HostEnvironment::setMainResourceDirectory(elsewhere_ / "resources");
        ZORPlatform::HostEnvironment::setStateDirectory(elsewhere_ / "state");
    }
    ~SettingsCrashTest() override {
        ZORPlatform::HostEnvironment::setDocumentsDirectory(std::nullopt);
        ZORPlatform::HostEnvironment::setMainResourceDirectory(std::nullopt);
        ZORPlatform::HostEnvironment::setStateDirectory(std::nullopt);
    }

    /// What a killed process leaves beside the settings: temporary files only.
    [[nodiscard]] bool holdsOnlySettingsAndTemporaries() const {
        for (const fs::directory_entry& entry : fs::directory_iterator(documents_.path())) {
            const std::string name = entry.path().filename().string();
            if (name != "Crash.plist" && !name.starts_with(".zor-")) return false;
        }
        return true;
    }

    TemporaryDirectory documents_;
    TemporaryDirectory elsewhere_;
};

/// What the saving process tells the test, in memory that both see.
struct Progress {
    std::atomic<std::int64_t> begun{0};  ///< The last generation whose saving has begun.
    std::atomic<std::int64_t> done{0};   ///< The last one whose saving has returned true.
};

class SharedProgress {
public:
    SharedProgress() {
        void* const memory =
            ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        progress_ = ::new (memory) Progress;
    }
    ~SharedProgress() { ::munmap(progress_, sizeof(Progress)); }
    SharedProgress(const SharedProgress&) = delete;
    SharedProgress& operator=(const SharedProgress&) = delete;

    Progress* operator->() const noexcept { return progress_; }

private:
    Progress* progress_ = nullptr;
};

TEST_F(SettingsCrashTest, FiveHundredKillsAtRandomMomentsLoseNothing) {
    constexpr int kKills = 500;
    ASSERT_TRUE(save(0));
    const SharedProgress progress;
    std::mt19937 random(20180305);
    int killedWhileSaving = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const std::int64_t begunBefore = progress->begun;
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (std::int64_t generation = progress->begun + 1;; ++generation) {
                progress->begun = generation;
                if (!save(generation)) _exit(1);
                progress->done = generation;
            }
        }
        // However late the child is let run, the moment is one of its saving.
        while (progress->begun == begunBefore) ::sched_yield();
        const timespec moment{0, static_cast<long>(random() % 4'000'000)};
        ::nanosleep(&moment, nullptr);
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "saving failed";

        const std::int64_t saved = savedGeneration();
        ASSERT_GE(saved, progress->done) << "kill " << kill;
        ASSERT_LE(saved, progress->begun) << "kill " << kill;
        killedWhileSaving += progress->begun != progress->done;
        ASSERT_TRUE(holdsOnlySettingsAndTemporaries());
        // The next process numbers on from what there is.
        progress->begun = saved;
        progress->done = saved;
    }
    EXPECT_GT(killedWhileSaving, kKills / 2) << "the moments were badly chosen";
}

TEST_F(SettingsCrashTest, AKillAtAnySystemCallLosesNothing) {
    FailingSystemCalls counting(0, FailingSystemCalls::Outcome::fails);
    {
        const ReplacedSystemCalls replaced(counting);
        ASSERT_TRUE(save(0));
        ASSERT_TRUE(save(0));
    }
    ASSERT_GT(counting.count(), 10);
    for (const auto outcome : {FailingSystemCalls::Outcome::isTheLast, FailingSystemCalls::Outcome::halfWrites}) {
        std::int64_t saved = 0;
        for (int call = 1; call <= counting.count(); ++call) {
            const pid_t child = ::fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                FailingSystemCalls last(call, outcome);
                const ReplacedSystemCalls replaced(last);
                _exit(save(saved + 1) ? 0 : 1);
            }
            int status = 0;
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            const std::int64_t before = saved;
            saved = savedGeneration();
            EXPECT_TRUE(saved == before || saved == before + 1) << "call " << call;
            EXPECT_TRUE(holdsOnlySettingsAndTemporaries()) << "call " << call;
        }
        ASSERT_TRUE(save(0));
    }
}

TEST_F(SettingsCrashTest, AnySystemCallThatFailsLosesNothingAndLeavesNoTemporaryFile) {
    FailingSystemCalls counting(0, FailingSystemCalls::Outcome::fails);
    ASSERT_TRUE(save(0));
    {
        const ReplacedSystemCalls replaced(counting);
        ASSERT_TRUE(save(0));
    }
    for (const int error : {EIO, ENOSPC, EDQUOT, EROFS, EACCES}) {
        for (int call = 1; call <= counting.count(); ++call) {
            ASSERT_TRUE(save(0));
            bool isSaved = false;
            {
                FailingSystemCalls failing(call, FailingSystemCalls::Outcome::fails, error);
                const ReplacedSystemCalls replaced(failing);
                isSaved = save(1);
            }
            const std::int64_t generation = savedGeneration();
            EXPECT_TRUE(generation == 1 || (generation == 0 && !isSaved)) << "call " << call << ", error " << error;
            EXPECT_EQ(documents_.count(), 1U) << "call " << call << ", error " << error;
        }
    }
}

}  // namespace
}  // namespace ZORFoundation
