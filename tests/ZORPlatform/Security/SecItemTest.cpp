// SPDX-License-Identifier: Apache-2.0
//
// The four calls on the store of the process: its files, its key, what damages it, who shares it.
#include <ZORPlatform/Security/SecItem.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Security/SQLiteItemStorageInternal.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <gtest/gtest.h>
#include <linux/keyctl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <support/EnvironmentVariable.h>
#include <support/TemporaryDirectory.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <thread>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;
using Data = SecItemValue::Data;
using Key = std::array<std::uint8_t, 32>;

SecItemDictionary password(const char16_t* account) {
    return {{u"class", u"genp"}, {u"svce", u"bank"}, {u"acct", account}};
}
const SecItemDictionary kPin = password(u"pin");
const SecItemDictionary kCard = password(u"card");

OSStatus add(SecItemDictionary item, Data value) {
    item.set(kSecValueData, std::move(value));
    return SecItemAdd(item);
}

std::optional<Data> valueOf(SecItemDictionary query) {
    query.set(kSecReturnData, true);
    SecItemResult result;
    if (SecItemCopyMatching(query, &result) != errSecSuccess) return std::nullopt;
    return *result.as<Data>();
}

Data referenceOf(SecItemDictionary query) {
    query.set(kSecReturnPersistentRef, true);
    SecItemResult result;
    EXPECT_EQ(SecItemCopyMatching(query, &result), errSecSuccess);
    const Data* reference = result.as<Data>();
    return reference != nullptr ? *reference : Data();
}

class SecItem : public testing::Test {
protected:
    SecItem() {
        SecItemStore::setKeySource(nullptr);
        HostEnvironment::setItemStorePath(store());
    }
    ~SecItem() override {
        HostEnvironment::setItemStorePath(std::nullopt);
        SecItemStore::setKeySource(nullptr);
    }

    [[nodiscard]] const fs::path& directory() const { return directory_.path(); }
    [[nodiscard]] fs::path store() const { return directory_ / "private" / "items.sqlite"; }
    [[nodiscard]] fs::path keyFile() const { return directory_ / "private" / "items.key"; }

    /// Changes the closed store behind its back.
    void execute(const std::string& sql) const {
        SecItemStore::close();
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(store().c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    }

    /// What a query finds in the closed store.
    [[nodiscard]] int countOf(const char* sql) const {
        sqlite3* connection = nullptr;
        EXPECT_EQ(sqlite3_open(store().c_str(), &connection), SQLITE_OK);
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr), SQLITE_OK);
        EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
        const int count = sqlite3_column_int(statement, 0);
        sqlite3_finalize(statement);
        sqlite3_close(connection);
        return count;
    }

    /// Changes a byte of each page of the closed store that has three rows of a table. @return the store's bytes
    [[nodiscard]] std::vector<std::uint8_t> changePagesOfThreeRows(std::size_t at, std::uint8_t bits) const {
        constexpr std::size_t kPageBytes = 4096;
        constexpr std::uint8_t kLeafOfTable = 13;
        SecItemStore::close();
        std::vector<std::uint8_t> bytes = support::readFile(store());
        for (std::size_t page = kPageBytes; page < bytes.size(); page += kPageBytes) {
            if (bytes[page] == kLeafOfTable && bytes[page + 4] == 3) bytes[page + at] ^= bits;
        }
        support::writeFile(store(), bytes);
        return bytes;
    }

    static void expectOfEveryCall(OSStatus status) { expectOfEveryCall(kPin, status); }

    static void expectOfEveryCall(const SecItemDictionary& item, OSStatus status) {
        EXPECT_EQ(add(password(u"new"), {1}), status);
        EXPECT_EQ(SecItemCopyMatching(item), status);
        EXPECT_EQ(SecItemUpdate(item, {{u"v_Data", Data{9}}}), status);
        EXPECT_EQ(SecItemDelete(item), status);
    }

private:
    support::TemporaryDirectory directory_;
};

fs::perms modeOf(const fs::path& path) { return fs::status(path).permissions() & fs::perms::all; }

bool holds(const fs::path& file, std::string_view text) {
    const std::vector<std::uint8_t> bytes = support::readFile(file);
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
}

/// Runs `work` in a child. @return its exit code, or -1 when it was killed
int inChild(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work());
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(SecItem, FilesAndDirectoryAreForTheirOwnerOnly) {
    const mode_t mask = ::umask(0);
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    ::umask(mask);
    EXPECT_EQ(modeOf(store().parent_path()), fs::perms::owner_all);
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(store().parent_path())) {
        names.push_back(entry.path().filename());
        EXPECT_EQ(modeOf(entry.path()), fs::perms::owner_read | fs::perms::owner_write) << names.back();
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"items.key", "items.sqlite", "items.sqlite-shm", "items.sqlite-wal"}));
}

TEST_F(SecItem, AnExistingDirectoryKeepsItsMode) {
    HostEnvironment::setItemStorePath(directory() / "items.sqlite");
    fs::permissions(directory(), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(modeOf(directory()), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec);
}

TEST_F(SecItem, ValuesAreNotInTheFilesNamesAre) {
    const std::string secret = "the secret that nobody may read";
    EXPECT_EQ(add(kPin, support::bytesOf(secret)), errSecSuccess);
    EXPECT_TRUE(holds(store().string() + "-wal", "bank"));
    EXPECT_FALSE(holds(store().string() + "-wal", secret));
    SecItemStore::close();
    EXPECT_TRUE(holds(store(), "bank"));
    EXPECT_FALSE(holds(store(), secret));
    EXPECT_FALSE(fs::exists(store().string() + "-wal")) << "the log is folded in when the store is closed";
}

TEST_F(SecItem, OneValueIsSealedDifferentlyEachTime) {
    const auto sealedBytes = [&] {
        SecItemStore::close();
        return support::readFile(store());
    };
    EXPECT_EQ(add(kPin, Data(64, 7)), errSecSuccess);
    const auto first = sealedBytes();
    EXPECT_EQ(SecItemUpdate(kPin, {{u"v_Data", Data(64, 7)}}), errSecSuccess);
    EXPECT_NE(sealedBytes(), first);
}

TEST_F(SecItem, ItemsAreThereAfterTheStoreWasClosed) {
    EXPECT_EQ(add(kPin, {1, 2, 3}), errSecSuccess);
    const Data key = support::readFile(keyFile());
    EXPECT_EQ(key.size(), 32U);
    SecItemStore::close();
    EXPECT_EQ(valueOf(kPin), (Data{1, 2, 3}));
    EXPECT_EQ(support::readFile(keyFile()), key);
}

TEST_F(SecItem, AnItemThatIsThereIsADuplicateForAStoreThatHasJustBeenOpened) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::close();
    for (int time = 0; time < 2; ++time) EXPECT_EQ(add(kPin, {2}), errSecDuplicateItem);
    EXPECT_EQ(valueOf(kPin), Data{1});
    EXPECT_EQ(SecItemDelete(kPin), errSecSuccess);
    EXPECT_EQ(add(kPin, {3}), errSecSuccess);
}

TEST_F(SecItem, TwoStoresHaveDifferentKeys) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    HostEnvironment::setItemStorePath(directory() / "other" / "items.sqlite");
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_NE(support::readFile(keyFile()), support::readFile(directory() / "other" / "items.key"));
}

TEST_F(SecItem, AMissingKeyIsReportedAndNoneIsMadeInItsPlace) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::close();
    fs::rename(keyFile(), directory() / "aside");
    expectOfEveryCall(errSecNotAvailable);
    EXPECT_FALSE(fs::exists(keyFile()));
    fs::rename(directory() / "aside", keyFile());
    EXPECT_EQ(valueOf(kPin), Data{1});
    EXPECT_EQ(valueOf(password(u"new")), std::nullopt);
}

TEST_F(SecItem, AnotherKeyIsReportedAndNothingIsLost) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::setKeySource(std::make_shared<SecItemSuppliedKey>(Key{1}));
    expectOfEveryCall(errSecAuthFailed);
    SecItemStore::setKeySource(nullptr);
    EXPECT_EQ(valueOf(kPin), Data{1});
    EXPECT_EQ(valueOf(password(u"new")), std::nullopt);
}

TEST_F(SecItem, AKeyFileThatIsNoKeyIsReported) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    const Data key = support::readFile(keyFile());
    for (const std::size_t size : {0U, 31U, 33U}) {
        SecItemStore::close();
        support::writeFile(keyFile(), Data(size, 1));
        expectOfEveryCall(errSecNotAvailable);
    }
    SecItemStore::close();
    fs::remove(keyFile());
    fs::create_directory(keyFile());
    expectOfEveryCall(errSecNotAvailable);
    fs::remove(keyFile());
    ASSERT_EQ(::mkfifo(keyFile().c_str(), 0600), 0);
    expectOfEveryCall(errSecNotAvailable);
    fs::remove(keyFile());
    support::writeFile(keyFile(), key);
    fs::permissions(keyFile(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, AKeyFileThatOthersCanWriteToIsRefused) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    for (const fs::perms other : {fs::perms::group_write, fs::perms::others_write}) {
        SecItemStore::close();
        fs::permissions(keyFile(), fs::perms::owner_read | other);
        expectOfEveryCall(errSecNotAvailable);
    }
    fs::permissions(keyFile(), fs::perms::owner_read);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, ANewStoreTakesTheKeyFileThatIsThere) {
    fs::create_directory(store().parent_path());
    support::writeFile(keyFile(), Data(32, 5));
    fs::permissions(keyFile(), fs::perms::owner_read);
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(support::readFile(keyFile()), Data(32, 5));
    Key key;
    key.fill(5);
    SecItemStore::setKeySource(std::make_shared<SecItemSuppliedKey>(key));
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, AKeyFileElsewhereIsMadeThere) {
    SecItemStore::setKeySource(std::make_shared<SecItemKeyFile>(directory() / "keys" / "store"));
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(support::readFile(directory() / "keys" / "store").size(), 32U);
    EXPECT_EQ(modeOf(directory() / "keys"), fs::perms::owner_all);
    EXPECT_FALSE(fs::exists(keyFile()));
}

TEST_F(SecItem, ASuppliedKeyNeedsNoFile) {
    SecItemStore::setKeySource(std::make_shared<SecItemSuppliedKey>(Key{1}));
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_FALSE(fs::exists(keyFile()));
    SecItemStore::close();
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, ACredentialOfSystemdIsReadByItsName) {
    support::writeFile(directory() / "store-key", Data(32, 9));
    const support::EnvironmentVariable variable("CREDENTIALS_DIRECTORY", directory().string());
    SecItemStore::setKeySource(std::make_shared<SecItemSystemdCredential>("store-key"));
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    Key key;
    key.fill(9);
    SecItemStore::setKeySource(std::make_shared<SecItemSuppliedKey>(key));
    EXPECT_EQ(valueOf(kPin), Data{1});
    for (const char* name : {"missing", "", "../store-key", "/store-key"}) {
        SecItemStore::setKeySource(std::make_shared<SecItemSystemdCredential>(name));
        expectOfEveryCall(errSecNotAvailable);
    }
}

TEST_F(SecItem, WithoutCredentialsThereIsNoKey) {
    const support::EnvironmentVariable variable("CREDENTIALS_DIRECTORY", std::nullopt);
    SecItemStore::setKeySource(std::make_shared<SecItemSystemdCredential>("store-key"));
    expectOfEveryCall(errSecNotAvailable);
}

// A sandbox may refuse the calls on keyrings altogether. Then there is no key to be had, which is another status.
TEST_F(SecItem, AKeyOfTheKernelsKeyringIsFoundOnceItIsThere) {
    const std::string description = "zor-test-" + std::to_string(::getpid());
    Data key(32, 3);
    const bool hasKeyrings = ::syscall(SYS_keyctl, KEYCTL_GET_KEYRING_ID, KEY_SPEC_PROCESS_KEYRING, 1) >= 0;
    SecItemStore::setKeySource(std::make_shared<SecItemKernelKeyring>(description));
    expectOfEveryCall(hasKeyrings ? errSecInteractionNotAllowed : errSecNotAvailable);
    const long added =
        ::syscall(SYS_add_key, "user", description.c_str(), key.data(), key.size(), KEY_SPEC_PROCESS_KEYRING);
    EXPECT_EQ(added >= 0, hasKeyrings);
    EXPECT_EQ(add(kPin, {1}), hasKeyrings ? errSecSuccess : errSecNotAvailable);
}

TEST_F(SecItem, ASourceIsNamedButNotItsKey) {
    EXPECT_EQ(SecItemKeyFile().name("/a/items.sqlite"), "key file /a/items.key");
    EXPECT_EQ(SecItemKeyFile("/b/key").name("/a/items.sqlite"), "key file /b/key");
    EXPECT_EQ(SecItemSuppliedKey(Key{}).name(""), "key supplied by the application");
    EXPECT_EQ(SecItemKernelKeyring("zor").name(""), "kernel keyring, user key zor");
    EXPECT_EQ(SecItemSystemdCredential("zor").name(""), "systemd credential zor");
}

class Reentering : public SecItemKeySource {
public:
    [[nodiscard]] std::string name(const fs::path&) const override { return "re-entering"; }
    [[nodiscard]] OSStatus copyKey(const fs::path&, bool, SecItemKeySource::Key) const override {
        return SecItemCopyMatching(kPin);
    }
};

TEST_F(SecItem, AKeySourceThatUsesTheStoreIsRefusedRatherThanHung) {
    SecItemStore::setKeySource(std::make_shared<Reentering>());
    EXPECT_EQ(add(kPin, {1}), errSecNotAvailable);
}

class Forking : public SecItemKeySource {
public:
    [[nodiscard]] std::string name(const fs::path&) const override { return "forking"; }
    [[nodiscard]] OSStatus copyKey(const fs::path&, bool, SecItemKeySource::Key key) const override {
        std::fill(key.begin(), key.end(), static_cast<std::uint8_t>(inChild([] { return 4; })));
        return errSecSuccess;
    }
};

TEST_F(SecItem, AKeySourceMayRunAProgram) {
    SecItemStore::setKeySource(std::make_shared<Forking>());
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

class Throwing : public SecItemKeySource {
public:
    [[nodiscard]] std::string name(const fs::path&) const override { return "throwing"; }
    [[nodiscard]] OSStatus copyKey(const fs::path&, bool, SecItemKeySource::Key) const override {
        throw std::bad_alloc();
    }
};

TEST_F(SecItem, WantOfMemoryIsAStatusAndTheStoreCanBeUsedAfterwards) {
    SecItemStore::setKeySource(std::make_shared<Throwing>());
    EXPECT_EQ(add(kPin, {1}), errSecAllocate);
    SecItemStore::setKeySource(nullptr);
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
}

TEST_F(SecItem, AChangedValueIsReportedAndTheOthersAreNotTouched) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(add(password(u"other"), {2}), errSecSuccess);
    // The last byte is one of the tag's.
    execute(
        "UPDATE entries SET value=CAST(substr(value,1,length(value)-1)||"
        "CASE substr(value,-1) WHEN x'00' THEN x'01' ELSE x'00' END AS BLOB) WHERE row=1");
    SecItemDictionary query = kPin;
    for (const std::u16string_view key : {kSecReturnData, kSecReturnAttributes, kSecReturnPersistentRef}) {
        query.set(key, true);
        SecItemResult result;
        EXPECT_EQ(SecItemCopyMatching(query, &result), errSecDecode);
        EXPECT_TRUE(result.isEmpty());
    }
    EXPECT_EQ(SecItemUpdate(kPin, {{u"v_Data", Data{9}}}), errSecDecode);
    EXPECT_EQ(add(kPin, {3}), errSecDuplicateItem);
    EXPECT_EQ(valueOf(password(u"other")), Data{2});
    EXPECT_EQ(SecItemDelete(kPin), errSecSuccess);
    EXPECT_EQ(add(kPin, {3}), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), Data{3});
}

TEST_F(SecItem, AValueThatIsTooShortOrMissingIsReported) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    for (const char* sql : {"UPDATE entries SET value=x'0011'", "UPDATE entries SET value=x''"}) {
        execute(sql);
        EXPECT_EQ(SecItemCopyMatching(kPin), errSecDecode) << sql;
    }
}

TEST_F(SecItem, AValueMovedToAnotherItemIsReported) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(add(password(u"other"), {2}), errSecSuccess);
    execute("UPDATE entries SET value=(SELECT value FROM entries WHERE row=2) WHERE row=1");
    EXPECT_EQ(SecItemCopyMatching(kPin), errSecDecode);
}

TEST_F(SecItem, AChangedAttributeIsReported) {
    SecItemDictionary item = kPin;
    item.set(kSecAttrLabel, u"label");
    EXPECT_EQ(add(item, {1}), errSecSuccess);
    execute("UPDATE entries SET attributes=CAST(replace(CAST(attributes AS TEXT),'label','babel') AS BLOB)");
    EXPECT_EQ(SecItemCopyMatching(kPin), errSecDecode);
}

TEST_F(SecItem, AttributesThatAreNoneAreReportedAndCanBeDeletedByTheirKey) {
    SecItemDictionary item = kPin;
    item.set(kSecAttrGeneric, Data{1});
    EXPECT_EQ(add(item, {1}), errSecSuccess);
    execute("UPDATE entries SET attributes=x'010203'");
    EXPECT_EQ(SecItemCopyMatching(kPin), errSecDecode);
    EXPECT_EQ(SecItemCopyMatching(item), errSecDecode);
    EXPECT_EQ(SecItemDelete(item), errSecDecode);
    EXPECT_EQ(SecItemDelete(kPin), errSecSuccess);
}

// The page of a table that has three rows has the offset of its second one at byte 10.
TEST_F(SecItem, APageWhoseCellsAreOutOfPlaceIsReportedEachTime) {
    for (const char16_t* account : {u"a", u"b", u"c"}) EXPECT_EQ(add(password(account), {1}), errSecSuccess);
    const std::vector<std::uint8_t> bytes = changePagesOfThreeRows(10, 0x20);
    for (int time = 0; time < 3; ++time) expectOfEveryCall(password(u"a"), errSecDecode);
    SecItemStore::close();
    EXPECT_EQ(support::readFile(store()), bytes);
}

// SQLite reads a page that says at byte 5 that its rows begin too far behind, and would write over them.
TEST_F(SecItem, AStoreInWhichAChangeWouldLoseRowsIsOnlyRead) {
    for (const char16_t* account : {u"a", u"b", u"c"}) EXPECT_EQ(add(password(account), {1}), errSecSuccess);
    const std::vector<std::uint8_t> bytes = changePagesOfThreeRows(5, 0x01);
    for (int time = 0; time < 3; ++time) {
        for (const char16_t* account : {u"a", u"b", u"c"}) {
            EXPECT_EQ(valueOf(password(account)), Data{1});
            EXPECT_EQ(SecItemUpdate(password(account), {{u"v_Data", Data(100)}}), errSecDecode);
            EXPECT_EQ(SecItemDelete(password(account)), errSecDecode);
        }
        EXPECT_EQ(add(password(u"d"), {1}), errSecDecode);
    }
    EXPECT_FALSE(SecItemStore::examine().isSound);
    SecItemStore::close();
    EXPECT_EQ(support::readFile(store()), bytes);
}

TEST_F(SecItem, ItemsWhoseKeyMarkWasTakenAwayAreReported) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    execute("DELETE FROM key_check");
    expectOfEveryCall(errSecDecode);
}

TEST_F(SecItem, WhatIsNoDatabaseIsReportedAndLeftAlone) {
    fs::create_directory(store().parent_path());
    const Data garbage = support::bytesOf("this has never been a database, and will not become one by being opened");
    support::writeFile(store(), garbage);
    expectOfEveryCall(errSecDecode);
    EXPECT_EQ(support::readFile(store()), garbage);
    EXPECT_FALSE(fs::exists(keyFile()));
}

TEST_F(SecItem, TheDatabaseOfAnotherProgramIsReportedAndLeftAlone) {
    fs::create_directory(store().parent_path());
    execute("CREATE TABLE theirs(x)");
    expectOfEveryCall(errSecDecode);
    execute("PRAGMA user_version=1");
    expectOfEveryCall(errSecDecode);
    execute("INSERT INTO theirs VALUES(1)");
    EXPECT_FALSE(fs::exists(keyFile()));
}

TEST_F(SecItem, AFileOfALaterReleaseIsReportedAndLeftAlone) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    execute("PRAGMA user_version=1000");
    expectOfEveryCall(errSecDecode);
    execute("PRAGMA user_version=2");
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, AnOlderSchemaIsBroughtUpToDateOnce) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::close();
    const auto steps = SQLiteItemStorage::migrations();
    const std::array<const char*, 4> migrations{steps[0], steps[1], "UPDATE entries SET value=x'02'",
                                                "UPDATE entries SET value=x'0203' WHERE value=x'02'"};
    for (int round = 0; round < 2; ++round) {
        std::unique_ptr<SQLiteItemStorage> storage;
        ASSERT_EQ(SQLiteItemStorage::open(store(), storage, migrations), errSecSuccess);
        std::string value;
        EXPECT_EQ(storage->visit("genp",
                                 [&value](const ItemRow& row) {
                                     value = row.sealed;
                                     return errSecSuccess;
                                 }),
                  errSecSuccess);
        EXPECT_EQ(value, "\x02\x03");
    }
    expectOfEveryCall(errSecDecode);  // It is of a later release.
    execute("PRAGMA user_version=2");
    EXPECT_EQ(SecItemCopyMatching(kPin), errSecDecode) << "the value is what the steps made of it";
}

TEST_F(SecItem, AStoreOfTheFirstVersionKeepsItsItemsAndTheirNumbers) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(add(kCard, {2}), errSecSuccess);
    const Data pin = referenceOf(kPin);
    const Data card = referenceOf(kCard);
    SecItemStore::close();
    // As version 1 had it, with a counter that has come to 9.
    execute(
        "BEGIN;"
        "CREATE TABLE items(row INTEGER PRIMARY KEY AUTOINCREMENT, identity BLOB NOT NULL UNIQUE, "
        "attributes BLOB NOT NULL, value BLOB NOT NULL) STRICT;"
        "INSERT INTO items SELECT row, identity, attributes, value FROM entries;"
        "UPDATE sqlite_sequence SET seq=9 WHERE name='items';"
        "DROP TABLE entries; PRAGMA user_version=1;"
        "COMMIT");
    EXPECT_EQ(valueOf(kPin), Data{1});
    EXPECT_EQ(valueOf(kCard), Data{2});
    EXPECT_EQ(referenceOf(kPin), pin);
    EXPECT_EQ(referenceOf(kCard), card);
    EXPECT_EQ(SecItemStore::examine().schemaVersion, 2);
    EXPECT_EQ(SecItemDelete(kCard), errSecSuccess);
    EXPECT_EQ(add(kCard, {3}), errSecSuccess);
    Data tenth = card;
    tenth.back() = 10;
    EXPECT_EQ(referenceOf(kCard), tenth) << "no number below the counter is given again";
}

TEST_F(SecItem, TheHighestNumberThatWasRemovedKeepsOnePlaceAndNobodySeesIt) {
    const auto insert = [](SQLiteItemStorage& storage, std::string_view identity) {
        std::int64_t number = 0;
        EXPECT_EQ(storage.insert(identity, "attributes", "sealed", number), errSecSuccess);
        return number;
    };
    const auto visible = [](SQLiteItemStorage& storage) {
        std::vector<std::int64_t> numbers;
        const auto visitor = [&numbers](const ItemRow& row) {
            numbers.push_back(row.number);
            return errSecSuccess;
        };
        EXPECT_EQ(storage.visit({}, visitor), errSecSuccess);
        for (std::int64_t number = 0; number < 10; ++number) {
            EXPECT_EQ(storage.visitRow(number, visitor), errSecSuccess);
        }
        return numbers;
    };
    using Numbers = std::vector<std::int64_t>;
    std::unique_ptr<SQLiteItemStorage> storage;
    ASSERT_EQ(SQLiteItemStorage::open(store(), storage), errSecSuccess);
    EXPECT_EQ(insert(*storage, "a"), 1);
    EXPECT_EQ(insert(*storage, "b"), 2);
    EXPECT_EQ(storage->remove(2), errSecSuccess);
    EXPECT_EQ(visible(*storage), (Numbers{1, 1}));
    EXPECT_EQ(insert(*storage, "b"), 3);
    EXPECT_EQ(storage->remove(1), errSecSuccess);
    EXPECT_EQ(storage->remove(3), errSecSuccess);
    EXPECT_EQ(visible(*storage), Numbers{});
    std::optional<std::string> mark = "";
    EXPECT_EQ(storage->keyCheck(mark), errSecSuccess) << "a place is no item that misses its key";
    EXPECT_EQ(mark, std::nullopt);
    EXPECT_EQ(insert(*storage, "c"), 4);
    EXPECT_EQ(visible(*storage), (Numbers{4, 4}));
    storage.reset();
    EXPECT_EQ(countOf("SELECT count(*) FROM entries WHERE identity=x''"), 1);
    EXPECT_TRUE(holds(store(), "cattributessealed"));
    EXPECT_FALSE(holds(store(), "battributessealed")) << "what was removed is overwritten";
}

TEST_F(SecItem, AMigrationThatFailsChangesNothing) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::close();
    const auto steps = SQLiteItemStorage::migrations();
    const std::array<const char*, 4> migrations{steps[0], steps[1], "DELETE FROM entries", "UPDATE nowhere SET x=1"};
    std::unique_ptr<SQLiteItemStorage> storage;
    EXPECT_EQ(SQLiteItemStorage::open(store(), storage, migrations), errSecDecode);
    EXPECT_EQ(storage, nullptr);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

/// The store's rows behind a prefix, as one of its connections has them.
std::vector<std::string> sealedRows(SQLiteItemStorage& storage, std::string_view prefix) {
    std::vector<std::string> rows;
    const auto visitor = [&rows](const ItemRow& row) {
        rows.emplace_back(row.sealed);
        return errSecSuccess;
    };
    EXPECT_EQ(storage.visit(prefix, visitor), errSecSuccess);
    std::sort(rows.begin(), rows.end());
    return rows;
}

TEST_F(SecItem, WhatAnotherConnectionCommitsIsSeenByOneThatHasReadBefore) {
    using Rows = std::vector<std::string>;
    std::unique_ptr<SQLiteItemStorage> reader;
    std::unique_ptr<SQLiteItemStorage> writer;
    ASSERT_EQ(SQLiteItemStorage::open(store(), reader), errSecSuccess);
    ASSERT_EQ(SQLiteItemStorage::open(store(), writer), errSecSuccess);
    // Twice each time: at first from the file, then from what the connection remembers.
    const auto expectRows = [&reader](const Rows& rows) {
        EXPECT_EQ(sealedRows(*reader, "pin"), rows);
        EXPECT_EQ(sealedRows(*reader, "pin"), rows);
    };
    expectRows({});
    std::int64_t first = 0;
    ASSERT_EQ(writer->insert("pin1", "", "one", first), errSecSuccess);
    expectRows({"one"});
    std::int64_t second = 0;
    ASSERT_EQ(writer->insert("pin2", "", "two", second), errSecSuccess);
    expectRows({"one", "two"});
    ASSERT_EQ(writer->replace(first, std::nullopt, "", "three"), errSecSuccess);
    expectRows({"three", "two"});
    ASSERT_EQ(writer->begin(), errSecSuccess);
    ASSERT_EQ(writer->remove(first), errSecSuccess);
    expectRows({"three", "two"});
    ASSERT_EQ(writer->commit(), errSecSuccess);
    expectRows({"two"});
    ASSERT_EQ(writer->replace(second, "card2", "", "two"), errSecSuccess);
    expectRows({});
}

TEST_F(SecItem, AChangeSeesItsOwnStepsAndNobodyDoesOnceItIsUndone) {
    using Rows = std::vector<std::string>;
    std::unique_ptr<SQLiteItemStorage> storage;
    ASSERT_EQ(SQLiteItemStorage::open(store(), storage), errSecSuccess);
    std::int64_t number = 0;
    ASSERT_EQ(storage->insert("pin", "", "old", number), errSecSuccess);
    EXPECT_EQ(sealedRows(*storage, "pin"), Rows{"old"});
    ASSERT_EQ(storage->begin(), errSecSuccess);
    ASSERT_EQ(storage->replace(number, std::nullopt, "", "new"), errSecSuccess);
    EXPECT_EQ(sealedRows(*storage, "pin"), Rows{"new"});
    storage->rollback();
    EXPECT_EQ(sealedRows(*storage, "pin"), Rows{"old"});
}

TEST_F(SecItem, ExaminingMakesNoStore) {
    const SecItemStoreReport report = SecItemStore::examine();
    EXPECT_FALSE(report.exists);
    EXPECT_EQ(report.path, store());
    EXPECT_EQ(report.keySource, "key file " + keyFile().string());
    EXPECT_EQ(report.keyFile, keyFile());
    EXPECT_FALSE(fs::exists(store().parent_path()));
}

TEST_F(SecItem, ExaminingASoundStoreFindsNothing) {
    for (const char16_t* account : {u"a", u"b", u"c"}) EXPECT_EQ(add(password(account), {1}), errSecSuccess);
    EXPECT_EQ(SecItemAdd({{u"class", u"keys"}}), errSecSuccess);
    const SecItemStoreReport report = SecItemStore::examine();
    EXPECT_TRUE(report.exists);
    EXPECT_EQ(report.status, errSecSuccess);
    EXPECT_EQ(report.schemaVersion, 2);
    EXPECT_EQ(report.items, 4);
    EXPECT_TRUE(report.isSound);
    EXPECT_EQ(report.damagedItems, std::vector<std::string>{});
}

TEST_F(SecItem, ExaminingNamesWhatIsDamaged) {
    for (const char16_t* account : {u"a", u"b", u"c", u"d", u"e"})
        EXPECT_EQ(add(password(account), {1}), errSecSuccess);
    execute(
        "UPDATE entries SET value=zeroblob(40) WHERE row=1;"
        "UPDATE entries SET attributes=x'' WHERE row=2;"
        "UPDATE entries SET identity=x'6B657973' WHERE row=3;"
        "UPDATE entries SET identity=x'FF' WHERE row=4;");
    const SecItemStoreReport report = SecItemStore::examine();
    EXPECT_EQ(report.status, errSecSuccess);
    EXPECT_EQ(report.items, 5);
    std::vector<std::string> damaged = report.damagedItems;
    std::sort(damaged.begin(), damaged.end());
    EXPECT_EQ(damaged, (std::vector<std::string>{"genp-1", "genp-2", "keys-3", "row-4"}));
    EXPECT_EQ(valueOf(password(u"e")), Data{1});
}

TEST_F(SecItem, ExaminingSaysWhyAStoreCannotBeOpened) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::setKeySource(std::make_shared<SecItemSuppliedKey>(Key{1}));
    const SecItemStoreReport report = SecItemStore::examine();
    EXPECT_EQ(report.status, errSecAuthFailed);
    EXPECT_EQ(report.keySource, "key supplied by the application");
    EXPECT_EQ(report.keyFile, std::nullopt);
    EXPECT_EQ(report.items, 0);
}

TEST_F(SecItem, TriggersViewsAndForeignTablesAreNotLetIn) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    const std::array<std::pair<const char*, const char*>, 3> additions{{
        {"CREATE TRIGGER t AFTER INSERT ON entries BEGIN DELETE FROM entries; END", "DROP TRIGGER t"},
        {"CREATE VIEW v AS SELECT 1", "DROP VIEW v"},
        {"CREATE TABLE t(x)", "DROP TABLE t"},
    }};
    for (const auto& [create, drop] : additions) {
        execute(create);
        expectOfEveryCall(errSecDecode);
        execute(drop);
        EXPECT_EQ(valueOf(kPin), Data{1});
    }
}

TEST_F(SecItem, AStoreThatCannotBeMadeIsReported) {
    support::writeFile(directory() / "file", {});
    for (const fs::path& path : {fs::path("/proc/nowhere/items.sqlite"), directory() / "file" / "items.sqlite",
                                 fs::path("relative.sqlite"), fs::path("/"), directory(), fs::path("")}) {
        HostEnvironment::setItemStorePath(path);
        expectOfEveryCall(errSecIO);
    }
    EXPECT_FALSE(fs::exists("relative.sqlite"));
}

// Root may do what the modes forbid, so the store is used by somebody else.
TEST_F(SecItem, AReadOnlyStoreIsReportedAndNothingIsLost) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    SecItemStore::close();
    fs::permissions(directory(), fs::perms::owner_all | fs::perms::others_exec);
    fs::permissions(store().parent_path(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(store(), fs::perms::owner_read | fs::perms::others_read);
    fs::permissions(keyFile(), fs::perms::owner_read | fs::perms::others_read);
    if (::geteuid() != 0) fs::permissions(store().parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(inChild([] {
                  if (::geteuid() == 0 && ::setuid(65534) != 0) return 1;
                  return add(password(u"new"), {1}) == errSecIO && SecItemDelete(kPin) == errSecIO ? 0 : 2;
              }),
              0);
    fs::permissions(store().parent_path(), fs::perms::owner_all);
    fs::permissions(store(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, AStoreThatWasRemovedIsMadeAnew) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    fs::remove_all(store().parent_path());
    EXPECT_EQ(SecItemCopyMatching(kPin), errSecItemNotFound);
    EXPECT_EQ(add(kPin, {2}), errSecSuccess);
    SecItemStore::close();
    EXPECT_EQ(valueOf(kPin), Data{2});
}

TEST_F(SecItem, APathSetLaterIsUsedFromThenOn) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    HostEnvironment::setItemStorePath(directory() / "second.sqlite");
    EXPECT_EQ(SecItemCopyMatching(kPin), errSecItemNotFound);
    HostEnvironment::setItemStorePath(store());
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, ParentAndChildOfAForkShareTheStore) {
    EXPECT_EQ(add(kPin, {1}), errSecSuccess);
    EXPECT_EQ(inChild([] {
                  if (valueOf(kPin) != Data{1}) return 1;
                  return add(password(u"child"), {2}) == errSecSuccess ? 0 : 2;
              }),
              0);
    EXPECT_EQ(valueOf(password(u"child")), Data{2});
    EXPECT_EQ(add(password(u"parent"), {3}), errSecSuccess);
    EXPECT_EQ(valueOf(kPin), Data{1});
}

TEST_F(SecItem, SeveralProcessesMayOpenANewStoreAtOnce) {
    for (int round = 0; round < 10; ++round) {
        fs::remove_all(store().parent_path());
        std::vector<pid_t> children;
        for (int i = 0; i < 4; ++i) {
            children.push_back(::fork());
            if (children.back() != 0) continue;
            const std::u16string account(1, static_cast<char16_t>(u'a' + i));
            ::_exit(add(password(account.c_str()), {1}) == errSecSuccess ? 0 : 1);
        }
        for (const pid_t child : children) {
            int status = 0;
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
        for (const char16_t* account : {u"a", u"b", u"c", u"d"}) EXPECT_EQ(valueOf(password(account)), Data{1});
    }
}

TEST_F(SecItem, SeveralThreadsMayUseTheStore) {
    constexpr int kThreads = 4;
    constexpr int kItems = 25;
    const auto account = [](int thread, int item) {
        return SecItemDictionary{{u"class", u"genp"},
                                 {u"acct", Data{static_cast<std::uint8_t>(thread), static_cast<std::uint8_t>(item)}}};
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int item = 0; item < kItems; ++item) {
                EXPECT_EQ(add(account(thread, item), {static_cast<std::uint8_t>(item)}), errSecSuccess);
                EXPECT_EQ(valueOf(account(thread, item)), Data{static_cast<std::uint8_t>(item)});
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    SecItemResult all;
    EXPECT_EQ(SecItemCopyMatching({{u"class", u"genp"}, {u"m_Limit", u"m_LimitAll"}, {u"r_Data", true}}, &all),
              errSecSuccess);
    EXPECT_EQ(all.as<SecItemResult::Array>()->size(), std::size_t{kThreads} * kItems);
}

}  // namespace
}  // namespace ZORPlatform
