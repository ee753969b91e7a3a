#include "agent/library/Database.h"

namespace Nodrix {
namespace {

// How long a writer waits for another one, in milliseconds.
constexpr int kBusyTimeout = 5000;

}  // namespace

Query::~Query() {
  if (mStatement == nullptr) return;
  sqlite3_reset(mStatement);
  sqlite3_clear_bindings(mStatement);
}

bool Query::Next() {
  if (mStatement == nullptr || mFailed) {
    mFailed = true;
    return false;
  }
  const int result = sqlite3_step(mStatement);
  if (result == SQLITE_ROW) return true;
  mFailed = result != SQLITE_DONE;
  return false;
}

bool Query::Run() {
  while (Next()) {
  }
  return !mFailed;
}

std::string Query::Text(int column) const {
  const void* bytes = sqlite3_column_blob(mStatement, column);
  const int size = sqlite3_column_bytes(mStatement, column);
  if (bytes == nullptr || size <= 0) return {};
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

void Query::BindAt(int index, std::int64_t value) { sqlite3_bind_int64(mStatement, index, value); }

void Query::BindAt(int index, std::string_view value) {
  // A null pointer would bind NULL.
  const char* text = value.data() != nullptr ? value.data() : "";
  sqlite3_bind_text64(mStatement, index, text, value.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void Query::BindAt(int index, const Blob& value) {
  const char* bytes = value.bytes.data() != nullptr ? value.bytes.data() : "";
  sqlite3_bind_blob64(mStatement, index, bytes, value.bytes.size(), SQLITE_STATIC);
}

void Query::BindAt(int index, std::nullptr_t) { sqlite3_bind_null(mStatement, index); }

std::unique_ptr<Database> Database::Open(const std::string& path, Access access,
                                         std::string& error) {
  sqlite3* connection = nullptr;
  const int flags =
      access == Access::eRead ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  const int result =
      sqlite3_open_v2(path.c_str(), &connection, flags | SQLITE_OPEN_FULLMUTEX, nullptr);
  if (result != SQLITE_OK) {
    error = path + ": " + (connection != nullptr ? sqlite3_errmsg(connection) : "out of memory");
    sqlite3_close_v2(connection);
    return nullptr;
  }
  sqlite3_extended_result_codes(connection, 1);
  sqlite3_busy_timeout(connection, kBusyTimeout);
  return std::unique_ptr<Database>(new Database(connection));
}

Database::~Database() {
  for (const auto& [text, statement] : mStatements) sqlite3_finalize(statement);
  sqlite3_close_v2(mConnection);
}

sqlite3_stmt* Database::Prepared(const char* sql) {
  if (const auto found = mStatements.find(sql); found != mStatements.end()) return found->second;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(mConnection, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
      SQLITE_OK) {
    return nullptr;
  }
  // The statement keeps a copy of its text, which lives as long as the entry.
  mStatements.emplace(sqlite3_sql(statement), statement);
  return statement;
}

bool Database::Execute(const char* sql) {
  return sqlite3_exec(mConnection, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

int Database::UserVersion() {
  auto query = Ask("PRAGMA user_version");
  return query.Next() ? static_cast<int>(query.Integer(0)) : -1;
}

Transaction::Transaction(Database& database)
    : mDatabase(database), mOpen(database.Execute("BEGIN IMMEDIATE")) {}

Transaction::~Transaction() {
  if (mOpen) (void)mDatabase.Execute("ROLLBACK");
}

bool Transaction::Commit() {
  if (!mOpen) return false;
  mOpen = !mDatabase.Execute("COMMIT");
  return !mOpen;
}

}  // namespace Nodrix
