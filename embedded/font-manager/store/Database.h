// The SQLite C interface (https://www.sqlite.org/cintro.html) as owners and calls.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ErrorCodes.h"

struct sqlite3;
struct sqlite3_stmt;

namespace pellwick {

/// Thrown by everything here when SQLite refuses.
class DatabaseError : public std::runtime_error {
public:
    DatabaseError(ErrorCode code, const std::string& message) : std::runtime_error(message), mCode(code) {}
    ErrorCode Code() const { return mCode; }  ///< a GSqliteDatabase code

private:
    ErrorCode mCode;
};

/// A prepared statement in use: bind the parameters in order, then step through the rows. Goes back to the
/// database for the next use when it is destroyed.
class Statement {
public:
    explicit Statement(sqlite3_stmt* statement) : mStatement(statement) {}
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    template <class... Values>
    Statement& Bind(const Values&... values) {
        (BindNext(values), ...);
        return *this;
    }
    /// Moves to the next row; false when there is none.
    bool Step();
    /// For statements without rows.
    void Run();

    int64_t Integer(int column) const;
    std::string Text(int column) const;

private:
    void BindNext(int64_t value);
    void BindNext(std::string_view value);
    void BindNext(const std::string& value) { BindNext(std::string_view(value)); }
    void BindNext(const char* value) { BindNext(std::string_view(value)); }
    template <class Integer>
    requires std::is_integral_v<Integer>
    void BindNext(Integer value) { BindNext(static_cast<int64_t>(value)); }

    sqlite3_stmt* mStatement;
    int mBound = 0;
};

/// One connection to a database file. One thread.
class Database {
public:
    /// Opens the file, making it when it is missing.
    explicit Database(const std::string& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs statements without parameters.
    void Execute(const char* sql);
    /// The statement, prepared once and kept. Not to be used again while a former use still lives.
    Statement Prepare(const char* sql);
    int64_t LastInsertedID() const;
    /// Rows that the last statement changed.
    int ChangedRows() const;
    /// What is wrong with the file, in SQLite's words, up to ten of them; none when it is as it should be.
    /// Reads all of it.
    std::vector<std::string> FindDamage();
    /// Has everything that is committed stand in the database itself, so that it survives the loss of the
    /// log (https://www.sqlite.org/wal.html) beside it; false when that cannot be done now. Not within a
    /// transaction.
    bool WriteBackLog();
    /// Whether another connection has committed something since the last call. The first call says no.
    bool HasChangedElsewhere();
    /// Whether what is committed from now on survives a loss of power, not only the end of this process.
    void SetDurable(bool isDurable);

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };

    std::unique_ptr<sqlite3, Closer> mDatabase;
    std::optional<int64_t> mVersionOfOthers;
    std::map<std::string, std::unique_ptr<sqlite3_stmt, Finalizer>, std::less<>> mStatements;
};

enum class Durability {
    kPowerLoss,  ///< what people add and change
    kProcess     ///< what concerns processes, which do not survive a loss of power either
};

/// All changes of a scope, or none.
class Transaction {
public:
    explicit Transaction(Database& database, Durability durability = Durability::kPowerLoss);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    /// Comes before the transaction and ends after it: within one it cannot be changed.
    class DurabilityScope {
    public:
        DurabilityScope(Database& database, Durability durability);
        ~DurabilityScope();
        DurabilityScope(const DurabilityScope&) = delete;
        DurabilityScope& operator=(const DurabilityScope&) = delete;

    private:
        Database& mDatabase;
        const bool mIsRelaxed;
    };

    Database& mDatabase;
    const DurabilityScope mDurability;
    bool mIsOpen = true;
};

}  // namespace pellwick
