// SPDX-License-Identifier: Apache-2.0
//
// The keychain beside the parts that it cannot do without: SQLite asked by key in the same mode, and one AES-256-GCM. A
// thousand keys are there; values have 32 bytes.

#include <benchmarks/Comparison.h>

#include <ZORFoundation/Encryption/ZORKeychain.h>
#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <openssl/evp.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using benchmarks::Comparison;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kKeys = 1000;
constexpr int kVectorBytes = 12;
constexpr int kTagBytes = 16;
const Bytes kValue(32, 7);
// What a sealed value takes.
const Bytes kSealedValue(kVectorBytes + 32 + kTagBytes, 7);

const fs::path& directory() {
    static const fs::path path = [] {
        std::string name = (fs::temp_directory_path() / "zor-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) std::abort();
        std::atexit([] { fs::remove_all(directory()); });
        return fs::path(name);
    }();
    return path;
}

std::string key(std::size_t number) { return "settings.key-" + std::to_string(number); }

const std::vector<std::u16string>& keys() {
    static const std::vector<std::u16string> texts = [] {
        std::vector<std::u16string> made;
        for (std::size_t i = 0; i < kKeys; ++i) made.push_back(ZORPlatform::utf16(key(i)));
        return made;
    }();
    return texts;
}

ZORFoundation::ZORKeychain& keychain() {
    static ZORFoundation::ZORKeychain& filled = [&]() -> ZORFoundation::ZORKeychain& {
        ZORPlatform::HostEnvironment::setItemStorePath(directory() / "items.sqlite");
        auto& store = *new ZORFoundation::ZORKeychain(u"be.example.bank");
        for (const std::u16string& text : keys()) {
            if (!store.set(kValue, text)) std::abort();
        }
        return store;
    }();
    return filled;
}

/// SQLite as an expert uses it: the same mode, statements prepared once.
class RawStore {
public:
    static RawStore& instance() {
        static RawStore& store = *new RawStore;
        return store;
    }

    void reopen() {
        for (sqlite3_stmt* statement : {insert_, update_, find_}) sqlite3_finalize(statement);
        sqlite3_close(connection_);
        open();
    }
    void insert(const std::string& text) { run(insert_, text, kSealedValue); }
    /// With another value each time: SQLite neither writes nor syncs what is there already.
    void update(const std::string& text) {
        for (std::uint8_t& byte : changing_) {
            if (++byte != 0) break;
        }
        run(update_, text, changing_);
    }
    std::size_t find(const std::string& text) {
        sqlite3_bind_blob(find_, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        if (sqlite3_step(find_) != SQLITE_ROW) std::abort();
        const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(find_, 0));
        found_.assign(bytes, bytes + sqlite3_column_bytes(find_, 0));
        sqlite3_reset(find_);
        return found_.size();
    }

private:
    RawStore() {
        open();
        for (std::size_t i = 0; i < kKeys; ++i) insert(key(i));
    }
    void open() {
        sqlite3_open((directory() / "raw.sqlite").c_str(), &connection_);
        sqlite3_exec(connection_,
                     "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"
                     "CREATE TABLE IF NOT EXISTS items(key BLOB PRIMARY KEY NOT NULL, value BLOB NOT NULL) STRICT",
                     nullptr, nullptr, nullptr);
        insert_ = prepared("INSERT INTO items VALUES(?1, ?2)");
        update_ = prepared("UPDATE items SET value=?2 WHERE key=?1");
        find_ = prepared("SELECT value FROM items WHERE key=?1");
    }
    sqlite3_stmt* prepared(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v3(connection_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
        return statement;
    }
    static void run(sqlite3_stmt* statement, const std::string& text, const Bytes& value) {
        sqlite3_bind_blob(statement, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        sqlite3_bind_blob(statement, 2, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
        if (sqlite3_step(statement) != SQLITE_DONE) std::abort();
        sqlite3_reset(statement);
    }

    sqlite3* connection_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
    sqlite3_stmt* update_ = nullptr;
    sqlite3_stmt* find_ = nullptr;
    Bytes found_;
    Bytes changing_ = kSealedValue;
};

/// One value opened: the cipher fetched once, the context reused and reset, so that no key stays behind.
void openValue() {
    static EVP_CIPHER* const cipher = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
    static EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    static constexpr std::array<std::uint8_t, 32> kKey{};
    static constexpr std::array<std::uint8_t, kVectorBytes> kVector{};
    static const auto sealed = [] {
        std::array<std::uint8_t, 32 + kTagBytes> bytes{};
        int length = 0;
        EVP_CipherInit_ex2(context, cipher, kKey.data(), kVector.data(), 1, nullptr);
        EVP_CipherUpdate(context, bytes.data(), &length, kValue.data(), 32);
        EVP_CipherFinal_ex(context, bytes.data() + 32, &length);
        EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, kTagBytes, bytes.data() + 32);
        EVP_CIPHER_CTX_reset(context);
        return bytes;
    }();
    auto tag = sealed;
    Bytes value(32);
    int length = 0;
    EVP_CipherInit_ex2(context, cipher, kKey.data(), kVector.data(), 0, nullptr);
    EVP_CipherUpdate(context, value.data(), &length, sealed.data(), 32);
    EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_TAG, kTagBytes, tag.data() + 32);
    if (EVP_CipherFinal_ex(context, value.data(), &length) != 1) std::abort();
    EVP_CIPHER_CTX_reset(context);
    benchmark::DoNotOptimize(value);
}

std::size_t next() {
    static std::size_t number = 0;
    return number = (number + 7) % kKeys;
}

void readValue() { benchmark::DoNotOptimize(keychain().data(keys()[next()])); }

void readRawValue() {
    benchmark::DoNotOptimize(RawStore::instance().find(key(next())));
    openValue();
}

const Comparison reading = Comparison("keychain: a value read")
                               .candidate(readValue)
                               .floor("raw select and one GCM", readRawValue)
                               .atMost(1.5, "raw select and one GCM")
                               .add();

constexpr std::size_t kReadings = 100;

/// The time that it takes to read values after a change, which makes everybody go to the file again.
template <class Change, class Read>
std::chrono::nanoseconds timeAfter(const Change& change, const Read& read) {
    change();
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < kReadings; ++i) read();
    return std::chrono::steady_clock::now() - start;
}

void changeValue() {
    if (!keychain().set(kValue, keys()[next()])) std::abort();
}

void changeRawValue() { RawStore::instance().update(key(next())); }

const Comparison readingAnew =
    Comparison("keychain: a value read for the first time since a change")
        .itemsPerCall(kReadings)
        .candidate([] { return timeAfter(changeValue, readValue); })
        .floor("raw select and one GCM", [] { return timeAfter(changeRawValue, readRawValue); })
        .add();

// A failing input.
const Comparison readingNothing = Comparison("keychain: a key that is missing")
                                      .candidate([] { benchmark::DoNotOptimize(keychain().data(u"missing")); })
                                      .floor("a value read", readValue)
                                      .atMost(1.0, "a value read")
                                      .add();

void addRawValue() {
    static std::size_t number = 0;
    RawStore::instance().insert("new-" + std::to_string(number++));
}

const Comparison writing = Comparison("keychain: a new value written")
                               .inElapsedTime()
                               .candidate([] {
                                   static std::size_t number = 0;
                                   if (!keychain().set(kValue, ZORPlatform::utf16("new-" + std::to_string(number++))))
                                       std::abort();
                               })
                               .floor("raw insert", addRawValue)
                               .atMost(1.15, "raw insert")
                               .add();

const Comparison rewriting = Comparison("keychain: a value replaced")
                                 .inElapsedTime()
                                 .candidate(changeValue)
                                 .floor("raw update", changeRawValue)
                                 .floor("raw insert", addRawValue)
                                 .atMost(1.15, "raw update")
                                 .atMost(1.15, "raw insert")
                                 .add();

// Before its first change a connection goes through the structure of the file. Last, for it begins with a new log.
const Comparison opening = Comparison("keychain: a store of 1000 values opened and one replaced")
                               .inElapsedTime()
                               .candidate([] {
                                   ZORPlatform::SecItemStore::close();
                                   changeValue();
                               })
                               .floor("raw open and update",
                                      [] {
                                          RawStore::instance().reopen();
                                          changeRawValue();
                                      })
                               .add();

}  // namespace
