// SPDX-License-Identifier: Apache-2.0
#pragma once

// The rows of the item store in a SQLite file. docs/item-store.md has the schema.

#include <ZORPlatform/Security/CommittedRowsInternal.h>
#include <ZORPlatform/Security/ItemStorageInternal.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace ZORPlatform {

/// A connection of its own, with a write-ahead log and a sync at each change, beside those of other processes. Not to
/// be taken across a fork.
class SQLiteItemStorage : public ItemStorage {
public:
    /// What makes each version of the schema of the one before, beginning with an empty file.
    using Migrations = std::span<const char* const>;
    [[nodiscard]] static Migrations migrations() noexcept;

    /// Opens the file, making it (mode 0600) and its directory (0700) where they are missing, and brings an older
    /// schema up to date: wholly, or not at all.
    [[nodiscard]] static OSStatus open(const std::filesystem::path& path, std::unique_ptr<SQLiteItemStorage>& storage,
                                       Migrations steps = migrations());
    ~SQLiteItemStorage() override;

    [[nodiscard]] OSStatus visit(std::string_view prefix, const Visitor& visitor) override;
    [[nodiscard]] OSStatus visitRow(std::int64_t number, const Visitor& visitor) override;
    [[nodiscard]] OSStatus contains(std::string_view identity, bool& isThere) override;
    [[nodiscard]] OSStatus insert(std::string_view identity, std::string_view attributes, std::string_view sealed,
                                  std::int64_t& number) override;
    [[nodiscard]] OSStatus replace(std::int64_t number, std::optional<std::string_view> identity,
                                   std::string_view attributes, std::string_view sealed) override;
    [[nodiscard]] OSStatus remove(std::int64_t number) override;
    [[nodiscard]] OSStatus begin() override;
    [[nodiscard]] OSStatus commit() override;
    void rollback() noexcept override;
    [[nodiscard]] OSStatus keyCheck(std::optional<std::string>& mark) override;
    [[nodiscard]] OSStatus setKeyCheck(std::string_view mark) override;
    [[nodiscard]] OSStatus check(bool& isSound) override;
    [[nodiscard]] bool isCurrent() noexcept override;

private:
    using Clock = std::chrono::steady_clock;

    struct Close {
        void operator()(sqlite3* connection) const noexcept;
    };
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

    SQLiteItemStorage();

    [[nodiscard]] OSStatus openFile(const std::filesystem::path& path);
    [[nodiscard]] OSStatus configure();
    [[nodiscard]] OSStatus checkOwner();
    [[nodiscard]] OSStatus useWriteAheadLog();
    [[nodiscard]] OSStatus migrate(Migrations steps);
    [[nodiscard]] OSStatus checkSchema();
    [[nodiscard]] OSStatus prepare();
    void findLogIndex();
    [[nodiscard]] OSStatus execute(const char* sql);
    [[nodiscard]] OSStatus readNumber(const char* sql, int& number);
    [[nodiscard]] OSStatus visitRows(sqlite3_stmt* statement, const Visitor& visitor);
    [[nodiscard]] std::optional<CommittedRows::State> committedState() const noexcept;
    [[nodiscard]] OSStatus runCheck(const char* sql, bool& isSound);
    [[nodiscard]] OSStatus checkBeforeChange();
    static int waitForOthers(void* self, int attempt);

    // The statements end before the connection does.
    std::unique_ptr<sqlite3, Close> connection_;
    Statement visitAll_;
    Statement visit_;
    Statement visitRow_;
    Statement contains_;
    Statement insert_;
    Statement replace_;
    Statement replaceWithIdentity_;
    Statement removeHighest_;
    Statement remove_;
    Statement begin_;
    Statement commit_;
    Statement rollback_;
    Clock::time_point waitingSince_;
    bool isSound_ = false;
    std::uint32_t* logIndex_ = nullptr;  ///< The connection's.
    CommittedRows committed_;
    std::string end_;  ///< Of what a visit goes through. Kept for its memory.
};

}  // namespace ZORPlatform
