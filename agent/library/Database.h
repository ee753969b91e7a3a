// SQLite with owners: a connection, its prepared statements, one question at a time.
//
// A statement is prepared at its first use and kept. Failures are answers, not exceptions; the text
// of the last one is ErrorText.
//
// Threads: SQLite's own locking (serialised mode) covers a call; who shares a connection serialises
// whole transactions.
#pragma once

#include <sqlite3.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Nodrix {

// Bytes that need not be text, such as paths.
struct Blob {
  std::string_view bytes;
};

// A statement while it runs; the end of its life resets it.
class Query {
 public:
  template <typename... Values>
  explicit Query(sqlite3_stmt* statement, const Values&... values) : mStatement(statement) {
    [[maybe_unused]] int index = 0;
    if (mStatement != nullptr) (BindAt(++index, values), ...);
  }
  ~Query();
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  // The next row; false at the end and after a failure.
  bool Next();
  // Runs to its end; false after a failure.
  [[nodiscard]] bool Run();
  bool Failed() const { return mFailed; }

  std::int64_t Integer(int column) const { return sqlite3_column_int64(mStatement, column); }
  std::uint32_t ID(int column) const { return static_cast<std::uint32_t>(Integer(column)); }
  std::uint64_t Count(int column) const { return static_cast<std::uint64_t>(Integer(column)); }
  bool IsNull(int column) const { return sqlite3_column_type(mStatement, column) == SQLITE_NULL; }
  // Text or bytes as they are.
  std::string Text(int column) const;

  void BindAt(int index, std::int64_t value);
  void BindAt(int index, std::string_view value);
  void BindAt(int index, const Blob& value);
  void BindAt(int index, std::nullptr_t);
  template <std::integral T>
  requires(!std::same_as<T, std::int64_t>) void BindAt(int index, T value) {
    BindAt(index, static_cast<std::int64_t>(value));
  }
  template <typename T>
  void BindAt(int index, const std::optional<T>& value) {
    value ? BindAt(index, *value) : BindAt(index, nullptr);
  }
  void BindAt(int index, const std::string& value) { BindAt(index, std::string_view(value)); }
  void BindAt(int index, const char* value) { BindAt(index, std::string_view(value)); }

 private:
  sqlite3_stmt* mStatement;
  bool mFailed = false;
};

class Database {
 public:
  enum class Access { eRead, eWrite };
  // Null with a reason. Writing makes the file when it is not there.
  static std::unique_ptr<Database> Open(const std::string& path, Access access, std::string& error);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // A question with its values. The same text must not run twice at one time. Text and bytes are
  // borrowed until the query ends.
  template <typename... Values>
  Query Ask(const char* sql, const Values&... values) {
    return Query(Prepared(sql), values...);
  }
  // A statement without rows; false after a failure.
  template <typename... Values>
  [[nodiscard]] bool Do(const char* sql, const Values&... values) {
    return Ask(sql, values...).Run();
  }
  // Several statements without values, not kept.
  [[nodiscard]] bool Execute(const char* sql);

  std::int64_t LastRowID() const { return sqlite3_last_insert_rowid(mConnection); }
  int Changes() const { return sqlite3_changes(mConnection); }
  int UserVersion();
  std::string ErrorText() const { return sqlite3_errmsg(mConnection); }

 private:
  explicit Database(sqlite3* connection) : mConnection(connection) {}
  sqlite3_stmt* Prepared(const char* sql);

  sqlite3* mConnection;
  std::unordered_map<std::string_view, sqlite3_stmt*> mStatements;  // keyed by their own text
};

// A transaction that is undone unless it was committed.
class Transaction {
 public:
  explicit Transaction(Database& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  [[nodiscard]] bool Commit();

 private:
  Database& mDatabase;
  bool mOpen;
};

}  // namespace Nodrix
