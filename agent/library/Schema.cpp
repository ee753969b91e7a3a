#include "agent/library/Schema.h"

#include "agent/library/Database.h"
#include "agent/library/LibraryReader.h"

namespace Nodrix {
namespace {

constexpr char kTables[] = R"sql(
CREATE TABLE workgroups (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  type INTEGER NOT NULL,
  name TEXT NOT NULL);
CREATE TABLE folders (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  path BLOB NOT NULL UNIQUE,
  missing INTEGER NOT NULL DEFAULT 0);
CREATE TABLE families (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  name TEXT NOT NULL UNIQUE);
CREATE TABLE files (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  workgroup_id INTEGER NOT NULL REFERENCES workgroups(id),
  folder_id INTEGER REFERENCES folders(id),
  path BLOB NOT NULL UNIQUE,
  name BLOB NOT NULL,
  size INTEGER NOT NULL,
  mtime_ns INTEGER NOT NULL,
  missing INTEGER NOT NULL DEFAULT 0,
  error TEXT);
CREATE INDEX files_of_folder ON files(folder_id);
CREATE INDEX files_of_workgroup ON files(workgroup_id);
CREATE TABLE fonts (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  file_id INTEGER NOT NULL REFERENCES files(id) ON DELETE CASCADE,
  face_index INTEGER NOT NULL,
  postscript_name TEXT NOT NULL,
  family_id INTEGER NOT NULL REFERENCES families(id),
  style TEXT NOT NULL,
  kind TEXT NOT NULL,
  foundry TEXT,
  version TEXT NOT NULL,
  checksum11 INTEGER,
  checksum12 INTEGER,
  kerning_checksum INTEGER,
  UNIQUE (file_id, face_index));
CREATE INDEX fonts_by_name ON fonts(postscript_name);
CREATE INDEX fonts_of_family ON fonts(family_id);
CREATE TABLE activations (
  file_id INTEGER NOT NULL REFERENCES files(id) ON DELETE CASCADE,
  mode INTEGER NOT NULL,
  client_pid INTEGER NOT NULL,
  client_start INTEGER NOT NULL,
  client_name TEXT NOT NULL,
  path BLOB NOT NULL,
  PRIMARY KEY (file_id, mode, client_pid)) WITHOUT ROWID;
CREATE TABLE settings (
  key TEXT PRIMARY KEY,
  value TEXT NOT NULL) WITHOUT ROWID;
)sql";

bool MakeTables(Database& database) {
  Transaction transaction(database);
  const std::string version = "PRAGMA user_version = " + std::to_string(kSchemaVersion);
  constexpr char kAdd[] = "INSERT INTO workgroups (id, type, name) VALUES (?, ?, ?)";
  return database.Execute(kTables) && database.Do(kAdd, kSystemWorkgroupID, 4, "System Fonts") &&
         database.Do(kAdd, kPersonalWorkgroupID, 3, "Font Library") &&
         database.Execute(version.c_str()) && transaction.Commit();
}

}  // namespace

bool PrepareSchema(Database& database, std::string& error) {
  const int version = database.UserVersion();
  if (version != 0 && version != kSchemaVersion) {
    error = version < 0 ? database.ErrorText()
                        : "the font library has schema " + std::to_string(version) +
                              ", this program knows schema " + std::to_string(kSchemaVersion);
    return false;
  }
  // A commit is in the file after a crash of the program; after a power cut the last ones may be
  // gone, and the next scan and reconciliation bring them back.
  if (!database.Execute("PRAGMA journal_mode = WAL") ||
      !database.Execute("PRAGMA synchronous = NORMAL") ||
      !database.Execute("PRAGMA foreign_keys = ON") || (version == 0 && !MakeTables(database))) {
    error = database.ErrorText();
    return false;
  }
  return true;
}

}  // namespace Nodrix
