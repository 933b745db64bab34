// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SQLiteItemStorageInternal.h>

#include <ZORPlatform/Foundation/NSFileManager.h>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <utility>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;

// "ZORI" in the file's header: other programs' databases are left alone.
constexpr int kApplicationId = 0x5A4F5249;

constexpr auto kLongestWait = std::chrono::seconds(10);

// The log is cut back after it has been copied into the file, but not below what it has grown to by then, 1000 pages:
// to write where the log has been is twice as fast as to make it grow.
constexpr const char* kSettings =
    "PRAGMA synchronous=FULL;"
    "PRAGMA secure_delete=ON;"
    "PRAGMA cell_size_check=ON;"
    "PRAGMA trusted_schema=OFF;"
    "PRAGMA temp_store=MEMORY;"
    "PRAGMA journal_size_limit=4325376;";

// The index of the log, in memory that the connections share, begins with two copies of its header. A commit changes
// both, whichever process makes it; SQLite itself tells by the same bytes whether the pages that it remembers are still
// right. https://www.sqlite.org/walformat.html
constexpr std::uint32_t kLogIndexVersion = 3007000;
constexpr int kLogIndexRegionBytes = 32768;

struct Table {
    const char* name;
    const char* sql;
};

// The tables as `sqlite_schema` shows them. A file with any other is not a store, or not one of this release.
constexpr std::array kTables{
    Table{"entries",
          "CREATE TABLE entries(row INTEGER PRIMARY KEY, identity BLOB NOT NULL UNIQUE, "
          "attributes BLOB NOT NULL, value BLOB NOT NULL) STRICT"},
    Table{"key_check", "CREATE TABLE key_check(mark BLOB NOT NULL) STRICT"},
};

// Step n makes version n + 1 of version n. A step that a release has had never changes.
constexpr std::array<const char*, 2> kMigrations{
    "CREATE TABLE items(row INTEGER PRIMARY KEY AUTOINCREMENT, identity BLOB NOT NULL UNIQUE, "
    "attributes BLOB NOT NULL, value BLOB NOT NULL) STRICT;"
    "CREATE TABLE key_check(mark BLOB NOT NULL) STRICT;"
    "PRAGMA application_id=1515147849;",
    // A counter is one more page to write with each row that is added. Only the highest number could be given again, so
    // it is enough that its row stays, empty, when it is removed. The table has another name, so that a process of an
    // older release which has the file open does not go on to add rows in its own way.
    "CREATE TABLE entries(row INTEGER PRIMARY KEY, identity BLOB NOT NULL UNIQUE, "
    "attributes BLOB NOT NULL, value BLOB NOT NULL) STRICT;"
    "INSERT INTO entries SELECT row, identity, attributes, value FROM items;"
    "INSERT INTO entries SELECT seq, x'', x'', x'' FROM sqlite_sequence "
    "WHERE name='items' AND seq>ifnull((SELECT max(row) FROM items), 0);"
    "DROP TABLE items;",
};
static_assert(kApplicationId == 1515147849);

// The one place where a failure of SQLite becomes a status of the item store.
OSStatus statusOf(int result) {
    switch (result & 0xFF) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return errSecSuccess;
        case SQLITE_CONSTRAINT:
            return result == SQLITE_CONSTRAINT_UNIQUE ? errSecDuplicateItem : errSecDecode;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return errSecNotAvailable;
        case SQLITE_NOMEM:
            return errSecAllocate;
        case SQLITE_TOOBIG:
            return errSecParam;
        case SQLITE_FULL:
        case SQLITE_IOERR:
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_NOLFS:
        case SQLITE_CANTOPEN:
            return errSecIO;
        default:
            return errSecDecode;
    }
}

void bindBytes(sqlite3_stmt* statement, int position, std::string_view bytes) {
    // Bytes that do not move before the statement is done with. An empty blob needs an address, else it is NULL.
    sqlite3_bind_blob64(statement, position, bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_STATIC);
}

std::string_view column(sqlite3_stmt* statement, int position) {
    const void* bytes = sqlite3_column_blob(statement, position);
    const int size = sqlite3_column_bytes(statement, position);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

/// Puts a statement back at its beginning, whatever has happened.
class Run {
public:
    explicit Run(sqlite3_stmt* statement) : statement_(statement) {}
    ~Run() {
        const int result = sqlite3_reset(statement_);
        // SQLite checks the cells of a page only where it reads the page from the file, and keeps a damaged one:
        // without this the next statement would trust it, and a change could write over the cells of other rows.
        if ((result & 0xFF) == SQLITE_CORRUPT) sqlite3_db_release_memory(sqlite3_db_handle(statement_));
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    [[nodiscard]] int step() { return sqlite3_step(statement_); }

private:
    sqlite3_stmt* statement_;
};

/// Makes `next` the first string above all those that begin with `prefix`, which does not consist of 0xFF alone.
void makeSuccessor(std::string_view prefix, std::string& next) {
    next = prefix;
    while (!next.empty() && next.back() == '\xFF') next.pop_back();
    if (!next.empty()) next.back() = static_cast<char>(static_cast<unsigned char>(next.back()) + 1);
}

}  // namespace

SQLiteItemStorage::SQLiteItemStorage() = default;

SQLiteItemStorage::~SQLiteItemStorage() = default;

void SQLiteItemStorage::Close::operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }

void SQLiteItemStorage::Finalize::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

SQLiteItemStorage::Migrations SQLiteItemStorage::migrations() noexcept { return kMigrations; }

OSStatus SQLiteItemStorage::open(const fs::path& path, std::unique_ptr<SQLiteItemStorage>& storage, Migrations steps) {
    std::unique_ptr<SQLiteItemStorage> opened(new SQLiteItemStorage);
    OSStatus status = opened->openFile(path);
    if (status == errSecSuccess) status = opened->configure();
    if (status == errSecSuccess) status = opened->checkOwner();
    if (status == errSecSuccess) status = opened->useWriteAheadLog();
    if (status == errSecSuccess) status = opened->migrate(steps);
    if (status == errSecSuccess) status = opened->checkSchema();
    if (status == errSecSuccess) status = opened->prepare();
    if (status == errSecSuccess) opened->findLogIndex();
    if (status == errSecSuccess) storage = std::move(opened);
    return status;
}

OSStatus SQLiteItemStorage::openFile(const fs::path& path) {
    if (!path.is_absolute() || path.native().find('\0') != std::string::npos) return errSecIO;
    // SQLite would give a new file the mode that the umask leaves of 0644.
    if (!NSFileManager::createPrivateDirectory(path.parent_path()) ||
        NSFileManager::createPrivateFile(path, {}) == NSFileManager::Creation::failed) {
        return errSecIO;
    }
    sqlite3* connection = nullptr;
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    const int result = sqlite3_open_v2(path.c_str(), &connection, kFlags, nullptr);
    connection_.reset(connection);
    // SQLite is content with reading where it may not write; then it would refuse every change for as long as it lives.
    if (result == SQLITE_OK && sqlite3_db_readonly(connection, "main") != 0) return errSecIO;
    return statusOf(result);
}

OSStatus SQLiteItemStorage::configure() {
    sqlite3_busy_handler(connection_.get(), waitForOthers, this);
    sqlite3_db_config(connection_.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    return execute(kSettings);
}

// Before anything is written: the database of another program keeps its mode, too.
OSStatus SQLiteItemStorage::checkOwner() {
    // In this order: whoever makes the tables at this moment makes both at once.
    int tables = 0;
    int applicationId = 0;
    OSStatus status = readNumber("SELECT count(*) FROM sqlite_schema", tables);
    if (status == errSecSuccess) status = readNumber("PRAGMA application_id", applicationId);
    return status == errSecSuccess && tables != 0 && applicationId != kApplicationId ? errSecDecode : status;
}

// The switch does not go through the busy handler: who comes second is refused at once, and has to come again.
OSStatus SQLiteItemStorage::useWriteAheadLog() {
    for (int attempt = 0;; ++attempt) {
        sqlite3_stmt* prepared = nullptr;
        int result = sqlite3_prepare_v2(connection_.get(), "PRAGMA journal_mode=WAL", -1, &prepared, nullptr);
        const Statement statement(prepared);
        if (result == SQLITE_OK) result = sqlite3_step(statement.get());
        // Where a log cannot be shared, the mode stays another.
        if (result == SQLITE_ROW) return column(statement.get(), 0) == "wal" ? errSecSuccess : errSecIO;
        if ((result & 0xFF) != SQLITE_BUSY || waitForOthers(this, attempt) == 0) return statusOf(result);
    }
}

OSStatus SQLiteItemStorage::migrate(Migrations steps) {
    const int current = static_cast<int>(steps.size());
    int version = 0;
    OSStatus status = readNumber("PRAGMA user_version", version);
    if (status == errSecSuccess && version == current) return errSecSuccess;

    if (status == errSecSuccess) status = checkBeforeChange();
    if (status == errSecSuccess) status = execute("BEGIN IMMEDIATE");
    if (status != errSecSuccess) return status;
    // Again, for another process may have been here first.
    status = readNumber("PRAGMA user_version", version);
    // A later release wrote it.
    if (status == errSecSuccess && (version < 0 || version > current)) status = errSecDecode;
    for (; status == errSecSuccess && version < current; ++version) {
        status = execute(steps[static_cast<std::size_t>(version)]);
    }
    if (status == errSecSuccess) status = execute(("PRAGMA user_version=" + std::to_string(version)).c_str());
    if (status == errSecSuccess) status = execute("COMMIT");
    if (status != errSecSuccess && sqlite3_get_autocommit(connection_.get()) == 0) {
        static_cast<void>(execute("ROLLBACK"));
    }
    return status;
}

// A schema can hold triggers and views, which run in whoever opens the file. Exactly the known tables are let in.
OSStatus SQLiteItemStorage::checkSchema() {
    sqlite3_stmt* prepared = nullptr;
    int result = sqlite3_prepare_v2(connection_.get(),
                                    "SELECT type, name, sql FROM sqlite_schema "
                                    "WHERE name NOT IN ('sqlite_sequence', 'sqlite_autoindex_entries_1')",
                                    -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result != SQLITE_OK) return statusOf(result);
    std::size_t known = 0;
    while ((result = sqlite3_step(statement.get())) == SQLITE_ROW) {
        const bool isKnown = std::any_of(kTables.begin(), kTables.end(), [&](const Table& table) {
            return column(statement.get(), 0) == "table" && column(statement.get(), 1) == table.name &&
                   column(statement.get(), 2) == table.sql;
        });
        if (!isKnown) return errSecDecode;
        ++known;
    }
    if (result != SQLITE_DONE) return statusOf(result);
    return known == kTables.size() ? errSecSuccess : errSecDecode;
}

OSStatus SQLiteItemStorage::prepare() {
    const std::array<std::pair<Statement*, const char*>, 12> statements{{
        {&visitAll_, "SELECT row, identity, attributes, value FROM entries WHERE +identity<>x''"},
        {&visit_, "SELECT row, identity, attributes, value FROM entries WHERE identity>=?1 AND identity<?2"},
        {&visitRow_, "SELECT row, identity, attributes, value FROM entries WHERE row=?1 AND +identity<>x''"},
        {&contains_, "SELECT 1 FROM entries WHERE identity=?1"},
        {&insert_, "INSERT INTO entries VALUES(NULL, ?1, ?2, ?3)"},
        {&replace_, "UPDATE entries SET attributes=?1, value=?2 WHERE row=?3"},
        {&replaceWithIdentity_, "UPDATE entries SET attributes=?1, value=?2, identity=?4 WHERE row=?3"},
        {&remove_, "DELETE FROM entries WHERE row=?1"},
        {&removeHighest_,
         "UPDATE OR REPLACE entries SET identity=x'', attributes=x'', value=x'' "
         "WHERE row=?1 AND row=(SELECT max(row) FROM entries)"},
        {&begin_, "BEGIN IMMEDIATE"},
        {&commit_, "COMMIT"},
        {&rollback_, "ROLLBACK"},
    }};
    for (const auto& [statement, sql] : statements) {
        sqlite3_stmt* prepared = nullptr;
        const int result =
            sqlite3_prepare_v3(connection_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
        statement->reset(prepared);
        if (result != SQLITE_OK) return statusOf(result);
    }
    return errSecSuccess;
}

// Mapped already, for the schema has been read, and it stays where it is for as long as the connection does.
void SQLiteItemStorage::findLogIndex() {
    const auto fileOf = [this](int which) {
        sqlite3_file* file = nullptr;
        sqlite3_file_control(connection_.get(), "main", which, static_cast<void*>(&file));
        return file != nullptr && file->pMethods != nullptr ? file : nullptr;
    };
    // Between changes a journal is open only if it is the log. Without one nobody would unmap what is mapped here.
    if (fileOf(SQLITE_FCNTL_JOURNAL_POINTER) == nullptr) return;
    sqlite3_file* const file = fileOf(SQLITE_FCNTL_FILE_POINTER);
    if (file == nullptr || file->pMethods->iVersion < 2) return;
    volatile void* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, kLogIndexRegionBytes, /*extend=*/0, &region) != SQLITE_OK) return;
    // What makes the accesses volatile here is that they are atomic.
    logIndex_ =
        static_cast<std::uint32_t*>(const_cast<void*>(region));  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

OSStatus SQLiteItemStorage::execute(const char* sql) {
    return statusOf(sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr));
}

OSStatus SQLiteItemStorage::readNumber(const char* sql, int& number) {
    sqlite3_stmt* prepared = nullptr;
    int result = sqlite3_prepare_v2(connection_.get(), sql, -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result == SQLITE_OK) result = sqlite3_step(statement.get());
    if (result == SQLITE_ROW) number = sqlite3_column_int(statement.get(), 0);
    return statusOf(result);
}

// Short steps: a change of somebody else's is over within the time that a sync takes.
int SQLiteItemStorage::waitForOthers(void* self, int attempt) {
    auto& storage = *static_cast<SQLiteItemStorage*>(self);
    const Clock::time_point now = Clock::now();
    if (attempt == 0) storage.waitingSince_ = now;
    if (now - storage.waitingSince_ > kLongestWait) return 0;
    std::this_thread::sleep_for(std::chrono::microseconds(100) * std::min(attempt + 1, 50));
    return 1;
}

OSStatus SQLiteItemStorage::visitRows(sqlite3_stmt* statement, const Visitor& visitor) {
    Run run(statement);
    int result = SQLITE_OK;
    while ((result = run.step()) == SQLITE_ROW) {
        const ItemRow row{sqlite3_column_int64(statement, 0), column(statement, 1), column(statement, 2),
                          column(statement, 3)};
        if (const OSStatus status = visitor(row); status != errSecSuccess) return status;
    }
    return statusOf(result);
}

// Absent where it cannot be told: while a commit is under way, and within a change, which the log does not have yet.
std::optional<CommittedRows::State> SQLiteItemStorage::committedState() const noexcept {
    if (logIndex_ == nullptr || sqlite3_get_autocommit(connection_.get()) == 0) return std::nullopt;
    const auto copy = [this](std::size_t number) {
        CommittedRows::State state;
        std::uint32_t* word = logIndex_ + number * state.size();
        for (std::uint32_t& read : state) read = std::atomic_ref(*word++).load(std::memory_order_relaxed);
        // Whoever commits writes the second copy first.
        std::atomic_thread_fence(std::memory_order_acquire);
        return state;
    };
    const CommittedRows::State state = copy(0);
    return state == copy(1) && state.front() == kLogIndexVersion ? std::optional(state) : std::nullopt;
}

OSStatus SQLiteItemStorage::visit(std::string_view prefix, const Visitor& visitor) {
    if (prefix.empty()) return visitRows(visitAll_.get(), visitor);
    const std::optional<CommittedRows::State> before = committedState();
    if (before) {
        if (const CommittedRows::Visit* known = committed_.find(*before, prefix)) return known->replay(visitor);
    }
    CommittedRows::Visit visit;
    makeSuccessor(prefix, end_);
    bindBytes(visit_.get(), 1, prefix);
    bindBytes(visit_.get(), 2, end_);
    const OSStatus status = visitRows(visit_.get(), [&](const ItemRow& row) {
        if (before) visit.add(row);
        return visitor(row);
    });
    // The rows are of this state only if it was there before as well as after.
    if (status == errSecSuccess && before && committedState() == before) committed_.remember(prefix, std::move(visit));
    return status;
}

OSStatus SQLiteItemStorage::visitRow(std::int64_t number, const Visitor& visitor) {
    sqlite3_bind_int64(visitRow_.get(), 1, number);
    return visitRows(visitRow_.get(), visitor);
}

OSStatus SQLiteItemStorage::contains(std::string_view identity, bool& isThere) {
    bindBytes(contains_.get(), 1, identity);
    Run run(contains_.get());
    const int result = run.step();
    isThere = result == SQLITE_ROW;
    return statusOf(result);
}

// SQLite does not see all damage of a page that it writes to, and a change could move the cells of other rows over each
// other. So a damaged file is only read. Once for each connection: a sound file stays so whoever of them writes to it.
OSStatus SQLiteItemStorage::checkBeforeChange() {
    if (isSound_) return errSecSuccess;
    const OSStatus status = runCheck("PRAGMA quick_check(1)", isSound_);
    if (status != errSecSuccess || isSound_) return status;
    sqlite3_db_release_memory(connection_.get());
    return errSecDecode;
}

OSStatus SQLiteItemStorage::insert(std::string_view identity, std::string_view attributes, std::string_view sealed,
                                   std::int64_t& number) {
    if (const OSStatus status = checkBeforeChange(); status != errSecSuccess) return status;
    bindBytes(insert_.get(), 1, identity);
    bindBytes(insert_.get(), 2, attributes);
    bindBytes(insert_.get(), 3, sealed);
    Run run(insert_.get());
    const OSStatus status = statusOf(run.step());
    if (status == errSecSuccess) number = sqlite3_last_insert_rowid(connection_.get());
    return status;
}

OSStatus SQLiteItemStorage::replace(std::int64_t number, std::optional<std::string_view> identity,
                                    std::string_view attributes, std::string_view sealed) {
    sqlite3_stmt* statement = identity ? replaceWithIdentity_.get() : replace_.get();
    bindBytes(statement, 1, attributes);
    bindBytes(statement, 2, sealed);
    sqlite3_bind_int64(statement, 3, number);
    if (identity) bindBytes(statement, 4, *identity);
    Run run(statement);
    return statusOf(run.step());
}

OSStatus SQLiteItemStorage::remove(std::int64_t number) {
    for (const Statement* statement : {&removeHighest_, &remove_}) {
        sqlite3_bind_int64(statement->get(), 1, number);
        Run run(statement->get());
        if (const OSStatus status = statusOf(run.step()); status != errSecSuccess) return status;
        if (sqlite3_changes(connection_.get()) != 0) break;
    }
    return errSecSuccess;
}

OSStatus SQLiteItemStorage::begin() {
    if (const OSStatus status = checkBeforeChange(); status != errSecSuccess) return status;
    Run run(begin_.get());
    return statusOf(run.step());
}

OSStatus SQLiteItemStorage::commit() {
    OSStatus status = errSecSuccess;
    {
        Run run(commit_.get());
        status = statusOf(run.step());
    }
    if (status != errSecSuccess) rollback();
    return status;
}

void SQLiteItemStorage::rollback() noexcept {
    // A failure may have ended the change already.
    if (sqlite3_get_autocommit(connection_.get()) != 0) return;
    Run run(rollback_.get());
    static_cast<void>(run.step());
}

OSStatus SQLiteItemStorage::keyCheck(std::optional<std::string>& mark) {
    mark.reset();
    sqlite3_stmt* prepared = nullptr;
    // One statement, so that both are of one moment.
    int result = sqlite3_prepare_v2(
        connection_.get(), "SELECT (SELECT mark FROM key_check), EXISTS(SELECT 1 FROM entries WHERE identity>x'')", -1,
        &prepared, nullptr);
    const Statement statement(prepared);
    if (result == SQLITE_OK) result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW) return statusOf(result);
    if (sqlite3_column_type(statement.get(), 0) != SQLITE_NULL) {
        mark = std::string(column(statement.get(), 0));
        return errSecSuccess;
    }
    // Items without the mark of their key: somebody took the mark away.
    return sqlite3_column_int(statement.get(), 1) == 0 ? errSecSuccess : errSecDecode;
}

OSStatus SQLiteItemStorage::setKeyCheck(std::string_view mark) {
    sqlite3_stmt* prepared = nullptr;
    int result = sqlite3_prepare_v2(connection_.get(), "INSERT INTO key_check VALUES(?1)", -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result != SQLITE_OK) return statusOf(result);
    bindBytes(statement.get(), 1, mark);
    result = sqlite3_step(statement.get());
    return statusOf(result);
}

OSStatus SQLiteItemStorage::check(bool& isSound) { return runCheck("PRAGMA integrity_check(1)", isSound); }

OSStatus SQLiteItemStorage::runCheck(const char* sql, bool& isSound) {
    sqlite3_stmt* prepared = nullptr;
    int result = sqlite3_prepare_v2(connection_.get(), sql, -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (result == SQLITE_OK) result = sqlite3_step(statement.get());
    isSound = result == SQLITE_ROW && column(statement.get(), 0) == "ok";
    return statusOf(result);
}

bool SQLiteItemStorage::isCurrent() noexcept {
    int hasMoved = 0;
    return sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved) == SQLITE_OK &&
           hasMoved == 0;
}

}  // namespace ZORPlatform
