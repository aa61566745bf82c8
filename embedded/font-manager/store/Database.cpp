#include "store/Database.h"

#include <sqlite3.h>

#include <utility>

#include "platform/SystemError.h"

namespace pellwick {
namespace {

ErrorCode CodeOf(int sqliteCode) {
    switch (sqliteCode & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return GSqliteDatabase::kDatabaseLocked;
        case SQLITE_PERM:
            return GSqliteDatabase::kPermissionDenied;
        case SQLITE_READONLY:
            return GSqliteDatabase::kDatabaseReadonly;
        case SQLITE_IOERR:
            return GSqliteDatabase::kDatabaseIOError;
        case SQLITE_CORRUPT:
            return GSqliteDatabase::kDatabaseCorrupted;
        case SQLITE_FULL:
            return GSqliteDatabase::kDatabaseFull;
        case SQLITE_CANTOPEN:
            return GSqliteDatabase::kDatabaseOpenFailed;
        case SQLITE_CONSTRAINT:
            return GSqliteDatabase::kConstraintViolation;
        case SQLITE_NOTADB:
            return GSqliteDatabase::kInvalidDatabaseFile;
        default:
            return CoreErrorCodes::kDatabaseError;
    }
}

/// For people: SQLite's own texts say neither which file it is nor what to do.
std::string MessageOf(const std::string& path, sqlite3* database, int code) {
    const char* text = database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code);
    switch (code & 0xFF) {
        case SQLITE_FULL:
            return platform::WriteFailureText(path, platform::kDiskFull);
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:  // which of the two, it does not keep
            return path + " cannot be read or written (" + text +
                   "); see whether its disk is full, faulty or closed to you, and try again";
        default:
            return text;
    }
}

[[noreturn]] void Throw(sqlite3* database, int code) {
    throw DatabaseError(CodeOf(code), MessageOf(sqlite3_db_filename(database, "main"), database, code));
}

void Check(sqlite3* database, int code) {
    if (code != SQLITE_OK)
        Throw(database, code);
}

}  // namespace

Statement::~Statement() {
    if (mStatement != nullptr) {
        sqlite3_reset(mStatement);
        sqlite3_clear_bindings(mStatement);
    }
}

Statement::Statement(Statement&& other) noexcept
    : mStatement(std::exchange(other.mStatement, nullptr)), mBound(other.mBound) {}

bool Statement::Step() {
    const int code = sqlite3_step(mStatement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        Throw(sqlite3_db_handle(mStatement), code);
    return code == SQLITE_ROW;
}

void Statement::Run() {
    while (Step()) {
    }
}

int64_t Statement::Integer(int column) const {
    return sqlite3_column_int64(mStatement, column);
}

std::string Statement::Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(mStatement, column));
    return text != nullptr ? std::string(text, static_cast<size_t>(sqlite3_column_bytes(mStatement, column)))
                           : std::string();
}

void Statement::BindNext(int64_t value) {
    Check(sqlite3_db_handle(mStatement), sqlite3_bind_int64(mStatement, ++mBound, value));
}

void Statement::BindNext(std::string_view value) {
    // A null pointer would bind NULL, which is not the empty text.
    const char* text = value.data() != nullptr ? value.data() : "";
    Check(sqlite3_db_handle(mStatement),
          sqlite3_bind_text64(mStatement, ++mBound, text, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void Database::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

void Database::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Database::Database(const std::string& path) {
    sqlite3* database = nullptr;
    const int code = sqlite3_open_v2(
        path.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    mDatabase.reset(database);
    if (code != SQLITE_OK)
        throw DatabaseError(CodeOf(code), MessageOf(path, database, code));
    sqlite3_extended_result_codes(database, 1);
    sqlite3_busy_timeout(database, 1000);
}

Database::~Database() = default;

void Database::Execute(const char* sql) {
    Check(mDatabase.get(), sqlite3_exec(mDatabase.get(), sql, nullptr, nullptr, nullptr));
}

Statement Database::Prepare(const char* sql) {
    auto found = mStatements.find(std::string_view(sql));
    if (found == mStatements.end()) {
        sqlite3_stmt* statement = nullptr;
        Check(mDatabase.get(),
              sqlite3_prepare_v3(mDatabase.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
        found = mStatements.emplace(sql, statement).first;
    }
    return Statement(found->second.get());
}

bool Database::WriteBackLog() {
    int frames = 0;
    int written = 0;
    return sqlite3_wal_checkpoint_v2(mDatabase.get(), nullptr, SQLITE_CHECKPOINT_PASSIVE, &frames,
                                     &written) == SQLITE_OK &&
           frames == written;
}

int64_t Database::LastInsertedID() const {
    return sqlite3_last_insert_rowid(mDatabase.get());
}

int Database::ChangedRows() const {
    return sqlite3_changes(mDatabase.get());
}

std::vector<std::string> Database::FindDamage() {
    std::vector<std::string> problems;
    Statement check = Prepare("PRAGMA integrity_check(10)");
    while (check.Step()) {
        if (check.Text(0) != "ok")
            problems.push_back(check.Text(0));
    }
    return problems;
}

bool Database::HasChangedElsewhere() {
    Statement query = Prepare("PRAGMA data_version");
    query.Step();
    const int64_t version = query.Integer(0);
    return std::exchange(mVersionOfOthers, version).value_or(version) != version;
}

void Database::SetDurable(bool isDurable) {
    Execute(isDurable ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

Transaction::DurabilityScope::DurabilityScope(Database& database, Durability durability)
    : mDatabase(database), mIsRelaxed(durability == Durability::kProcess) {
    if (mIsRelaxed)
        mDatabase.SetDurable(false);
}

Transaction::DurabilityScope::~DurabilityScope() {
    try {
        if (mIsRelaxed)
            mDatabase.SetDurable(true);
    } catch (const DatabaseError&) {  // no memory for a statement; the next scope sets it again
    }
}

Transaction::Transaction(Database& database, Durability durability)
    : mDatabase(database), mDurability(database, durability) {
    mDatabase.Execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
    if (!mIsOpen)
        return;
    try {
        mDatabase.Execute("ROLLBACK");
    } catch (const DatabaseError&) {  // SQLite has rolled back by itself
    }
}

void Transaction::Commit() {
    mDatabase.Execute("COMMIT");
    mIsOpen = false;
}

}  // namespace pellwick
