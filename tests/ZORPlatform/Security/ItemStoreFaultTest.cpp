// SPDX-License-Identifier: Apache-2.0
//
// Every system call of a change fails once, and is the last once: the old state or the new one is there, whole.
#include <ZORPlatform/Security/SecItem.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/FailingSystemCalls.h>
#include <support/TemporaryDirectory.h>

#include <array>
#include <cerrno>
#include <functional>
#include <string>

namespace {

using Outcome = support::FailingSystemCalls::Outcome;

/// The calls of SQLite by which something outlives the process or comes in from outside, in force for the object's
/// lifetime. What it does with locks only is not among them: a lock ends with its process.
class FailingSQLiteCalls {
public:
    FailingSQLiteCalls(int failingCall, Outcome outcome, int error)
        : failingCall_(failingCall), outcome_(outcome), error_(error), vfs_(sqlite3_vfs_find("unix")) {
        inForce = this;
        for (Replacement& replacement : replacements()) {
            replacement.original = vfs_->xGetSystemCall(vfs_, replacement.name);
            if (replacement.original != nullptr) vfs_->xSetSystemCall(vfs_, replacement.name, replacement.call);
        }
    }
    ~FailingSQLiteCalls() {
        for (const Replacement& replacement : replacements()) {
            if (replacement.original != nullptr) vfs_->xSetSystemCall(vfs_, replacement.name, replacement.original);
        }
        inForce = nullptr;
    }
    FailingSQLiteCalls(const FailingSQLiteCalls&) = delete;
    FailingSQLiteCalls& operator=(const FailingSQLiteCalls&) = delete;

    [[nodiscard]] int count() const noexcept { return count_; }

    [[nodiscard]] bool isDue() {
        if (++count_ != failingCall_) return false;
        if (outcome_ != Outcome::fails) ::_exit(0);
        errno = error_;
        return true;
    }

    static inline FailingSQLiteCalls* inForce = nullptr;

private:
    struct Replacement {
        const char* name;
        sqlite3_syscall_ptr call;
        sqlite3_syscall_ptr original;
    };

    template <auto kCall>
    static sqlite3_syscall_ptr pointer() {
        return reinterpret_cast<sqlite3_syscall_ptr>(kCall);
    }

    static int failingOpen(const char* path, int flags, int mode) {
        return inForce->isDue() ? -1 : ::open(path, flags, static_cast<mode_t>(mode));
    }
    static ssize_t failingPread(int descriptor, void* bytes, std::size_t size, off_t offset) {
        return inForce->isDue() ? -1 : ::pread(descriptor, bytes, size, offset);
    }
    static ssize_t failingPwrite(int descriptor, const void* bytes, std::size_t size, off_t offset) {
        if (inForce->outcome_ == Outcome::halfWrites && inForce->count_ + 1 == inForce->failingCall_) {
            static_cast<void>(::pwrite(descriptor, bytes, size / 2, offset));
        }
        return inForce->isDue() ? -1 : ::pwrite(descriptor, bytes, size, offset);
    }
    static int failingTruncate(int descriptor, off_t size) {
        return inForce->isDue() ? -1 : ::ftruncate(descriptor, size);
    }
    static int failingUnlink(const char* path) { return inForce->isDue() ? -1 : ::unlink(path); }
    static int failingStat(int descriptor, struct stat* status) {
        return inForce->isDue() ? -1 : ::fstat(descriptor, status);
    }
    static void* failingMap(void* address, std::size_t size, int protection, int flags, int descriptor, off_t offset) {
        return inForce->isDue() ? MAP_FAILED : ::mmap(address, size, protection, flags, descriptor, offset);
    }

    static std::array<Replacement, 7>& replacements() {
        static std::array<Replacement, 7> table{{
            {"open", pointer<failingOpen>(), nullptr},
            {"pread", pointer<failingPread>(), nullptr},
            {"pwrite", pointer<failingPwrite>(), nullptr},
            {"ftruncate", pointer<failingTruncate>(), nullptr},
            {"unlink", pointer<failingUnlink>(), nullptr},
            {"fstat", pointer<failingStat>(), nullptr},
            {"mmap", pointer<failingMap>(), nullptr},
        }};
        return table;
    }

    int failingCall_;
    Outcome outcome_;
    int error_;
    int count_ = 0;
    sqlite3_vfs* vfs_;
};

}  // namespace

// SQLite calls this one directly, and finds it here before it finds the system's.
extern "C" int fdatasync(int descriptor) {
    if (FailingSQLiteCalls::inForce != nullptr && FailingSQLiteCalls::inForce->isDue()) return -1;
    return static_cast<int>(::syscall(SYS_fdatasync, descriptor));
}

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using Data = SecItemValue::Data;

const SecItemDictionary kItem{{u"class", u"genp"}, {u"svce", u"bank"}, {u"acct", u"pin"}};
const SecItemDictionary kBystander{{u"class", u"genp"}, {u"svce", u"bank"}, {u"acct", u"bystander"}};
// More than a page of the database.
const Data kOld(6000, 1);
const Data kNew(6000, 2);
const Data kUntouched(100, 3);

OSStatus add(SecItemDictionary item, const Data& value) {
    item.set(kSecValueData, value);
    return SecItemAdd(item);
}

/// Absent when there is no such item; what else is wrong fails the test.
std::optional<Data> valueOf(SecItemDictionary query) {
    query.set(kSecReturnData, true);
    SecItemResult result;
    const OSStatus status = SecItemCopyMatching(query, &result);
    if (status == errSecItemNotFound) return std::nullopt;
    EXPECT_EQ(status, errSecSuccess);
    return status == errSecSuccess ? *result.as<Data>() : Data();
}

struct Change {
    const char* name;
    bool startsWithAStore;
    std::optional<Data> before;
    std::optional<Data> after;
    OSStatus (*make)();
};

const Change kChanges[] = {
    {"AddToANewStore", false, std::nullopt, kNew, [] { return add(kItem, kNew); }},
    {"Add", true, std::nullopt, kNew, [] { return add(kItem, kNew); }},
    {"Update", true, kOld, kNew,
     [] {
         return SecItemUpdate(kItem, {{u"v_Data", kNew}});
     }},
    {"Delete", true, kOld, std::nullopt, [] { return SecItemDelete(kItem); }},
};

class ItemStoreFault : public testing::TestWithParam<Change> {
protected:
    ItemStoreFault() {
        HostEnvironment::setItemStorePath(directory_ / "template" / "items.sqlite");
        if (GetParam().startsWithAStore) {
            EXPECT_EQ(add(kBystander, kUntouched), errSecSuccess);
            if (GetParam().before) {
                EXPECT_EQ(add(kItem, *GetParam().before), errSecSuccess);
            }
        }
        HostEnvironment::setItemStorePath(directory_ / "used" / "items.sqlite");
        SecItemStore::close();
    }
    ~ItemStoreFault() override {
        HostEnvironment::setItemStorePath(std::nullopt);
        SecItemStore::close();
    }

    void beginAnew() const {
        SecItemStore::close();
        fs::remove_all(directory_ / "used");
        if (GetParam().startsWithAStore) fs::copy(directory_ / "template", directory_ / "used");
    }

    static void expectOldOrNew(bool isNewCertain, const std::string& where) {
        const std::optional<Data> found = valueOf(kItem);
        EXPECT_TRUE(found == GetParam().after || (!isNewCertain && found == GetParam().before)) << where;
        if (GetParam().startsWithAStore) {
            EXPECT_EQ(valueOf(kBystander), kUntouched) << where;
        }
        // The store takes further changes.
        if (found != GetParam().after) {
            EXPECT_EQ(GetParam().make(), errSecSuccess) << where;
        }
        EXPECT_EQ(valueOf(kItem), GetParam().after) << where;
    }

    /// Makes the change with each of the calls of `Calls` in turn being the one. @return how many there are
    template <class Calls>
    int failEach(int error) const {
        for (int call = 1;; ++call) {
            beginAnew();
            OSStatus status = errSecSuccess;
            int count = 0;
            {
                Calls calls(call, Outcome::fails, error);
                status = GetParam().make();
                count = calls.count();
            }
            // Not everything that fails matters: the change may be there all the same.
            expectOldOrNew(status == errSecSuccess, "failing call " + std::to_string(call));
            SecItemStore::close();
            expectOldOrNew(true, "after failing call " + std::to_string(call));
            if (count < call || testing::Test::HasFailure()) return call - 1;
        }
    }
    template <class Calls>
    int endAtEach(Outcome outcome) const {
        constexpr int kAcknowledged = 10;
        constexpr int kRefused = 11;
        for (int call = 1;; ++call) {
            beginAnew();
            const pid_t child = ::fork();
            if (child == 0) {
                Calls calls(call, outcome, EIO);
                const OSStatus status = GetParam().make();
                SecItemStore::close();
                ::_exit(status == errSecSuccess ? kAcknowledged : kRefused);
            }
            int status = 0;
            EXPECT_EQ(::waitpid(child, &status, 0), child);
            EXPECT_TRUE(WIFEXITED(status));
            expectOldOrNew(WEXITSTATUS(status) == kAcknowledged, "last call " + std::to_string(call));
            if (WEXITSTATUS(status) != 0 || testing::Test::HasFailure()) {
                EXPECT_EQ(WEXITSTATUS(status), kAcknowledged);
                return call - 1;
            }
        }
    }

private:
    support::TemporaryDirectory directory_;
};

/// The library's own calls, put in force.
class FailingOwnCalls {
public:
    FailingOwnCalls(int failingCall, Outcome outcome, int error)
        : calls_(failingCall, outcome, error), replaced_(calls_) {}
    [[nodiscard]] int count() const noexcept { return calls_.count(); }

private:
    support::FailingSystemCalls calls_;
    ReplacedSystemCalls replaced_;
};

// The least that a change can be made with: what is counted is what is meant to be counted.
constexpr int kFewestCalls = 8;

TEST_P(ItemStoreFault, EachCallOfSQLiteFailsWithAnInputOutputError) {
    EXPECT_GE(failEach<FailingSQLiteCalls>(EIO), kFewestCalls);
}

TEST_P(ItemStoreFault, EachCallOfSQLiteFailsForWantOfSpace) {
    EXPECT_GE(failEach<FailingSQLiteCalls>(ENOSPC), kFewestCalls);
}

TEST_P(ItemStoreFault, TheProcessEndsAtEachCallOfSQLite) {
    EXPECT_GE(endAtEach<FailingSQLiteCalls>(Outcome::isTheLast), kFewestCalls);
}

TEST_P(ItemStoreFault, TheProcessEndsInTheMiddleOfEachWriteOfSQLite) {
    EXPECT_GE(endAtEach<FailingSQLiteCalls>(Outcome::halfWrites), kFewestCalls);
}

TEST_P(ItemStoreFault, EachOwnCallFails) {
    EXPECT_EQ(failEach<FailingOwnCalls>(ENOSPC) == 0, GetParam().startsWithAStore);
}

TEST_P(ItemStoreFault, TheProcessEndsAtEachOwnCall) {
    EXPECT_EQ(endAtEach<FailingOwnCalls>(Outcome::isTheLast) == 0, GetParam().startsWithAStore);
}

INSTANTIATE_TEST_SUITE_P(Changes, ItemStoreFault, testing::ValuesIn(kChanges),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace ZORPlatform
