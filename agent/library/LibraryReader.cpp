#include "agent/library/LibraryReader.h"

#include <unistd.h>

#include <algorithm>

#include "agent/library/Database.h"

namespace Nodrix {
namespace {

constexpr std::uint32_t kInactive = 0, kAuto = 1, kAutoOther = 2, kUser = 4, kSystem = 5;

bool Restricts(std::span<const std::uint32_t> workgroups) {
  return !workgroups.empty() && std::ranges::none_of(workgroups, IsEveryWorkgroup);
}

// The IDs of rows (font, workgroup).
std::vector<std::uint32_t> FontsOf(Query&& query, std::span<const std::uint32_t> workgroups) {
  const bool restricts = Restricts(workgroups);
  std::vector<std::uint32_t> ids;
  while (query.Next()) {
    if (restricts && std::ranges::find(workgroups, query.ID(1)) == workgroups.end()) continue;
    ids.push_back(query.ID(0));
  }
  return ids;
}

// The state of a face, from the rows of its file's activations; a file without any gives one row
// whose mode is null.
class RawState {
 public:
  RawState(std::uint32_t workgroup, bool missing, std::int64_t clientPid)
      : mIsSystem(workgroup == kSystemWorkgroupID), mClientPid(clientPid) {
    if (mIsSystem && !missing) mState = kSystem;
  }

  // The columns `column`, the mode, and the next one, the process.
  void Add(const Query& activation, int column) {
    if (mIsSystem || mState == kUser || activation.IsNull(column)) return;
    if (activation.ID(column) == static_cast<std::uint32_t>(ActivationMode::eUser)) {
      mState = kUser;
    } else if (activation.Integer(column + 1) == mClientPid) {
      mState = kAuto;
    } else if (mState == kInactive) {
      mState = kAutoOther;
    }
  }

  std::uint32_t Get() const { return mState; }

 private:
  bool mIsSystem;
  std::int64_t mClientPid;
  std::uint32_t mState = kInactive;
};

std::optional<std::uint32_t> Checksum(const Query& query, int column) {
  return query.IsNull(column) ? std::nullopt : std::optional(query.ID(column));
}

}  // namespace

struct LibraryReader::Statements {
  std::unique_ptr<Database> database;
};

LibraryReader::LibraryReader(std::unique_ptr<Statements> statements)
    : mStatements(std::move(statements)) {}

LibraryReader::~LibraryReader() = default;

std::unique_ptr<LibraryReader> LibraryReader::Open(const std::string& path, std::string& error) {
  if (access(path.c_str(), F_OK) != 0) {
    error = "There is no font library at " + path;
    return nullptr;
  }
  auto database = Database::Open(path, Database::Access::eRead, error);
  if (!database) return nullptr;
  const int version = database->UserVersion();
  if (version != kSchemaVersion) {
    error = version < 0 ? path + ": " + database->ErrorText()
                        : path + " has schema " + std::to_string(version) + ", not " +
                              std::to_string(kSchemaVersion);
    return nullptr;
  }
  return std::unique_ptr<LibraryReader>(
      new LibraryReader(std::make_unique<Statements>(Statements{std::move(database)})));
}

int LibraryReader::SchemaVersion() const { return mStatements->database->UserVersion(); }

std::vector<std::uint32_t> LibraryReader::FontsByPostScriptName(
    std::string_view name, std::span<const std::uint32_t> workgroups) {
  return FontsOf(mStatements->database->Ask(
                     "SELECT fonts.id, files.workgroup_id FROM fonts JOIN files ON files.id = "
                     "fonts.file_id WHERE postscript_name = ? AND NOT missing ORDER BY fonts.id",
                     name),
                 workgroups);
}

std::vector<std::uint32_t> LibraryReader::FontsByFamilyName(
    std::string_view name, std::span<const std::uint32_t> workgroups) {
  return FontsOf(mStatements->database->Ask(
                     "SELECT fonts.id, files.workgroup_id FROM fonts JOIN files ON files.id = "
                     "fonts.file_id WHERE family_id = (SELECT id FROM families WHERE name = ?) "
                     "AND NOT missing ORDER BY fonts.id",
                     name),
                 workgroups);
}

std::vector<std::uint32_t> LibraryReader::FontsOfFamily(std::uint32_t familyID,
                                                        std::span<const std::uint32_t> workgroups) {
  return FontsOf(mStatements->database->Ask(
                     "SELECT fonts.id, files.workgroup_id FROM fonts JOIN files ON files.id = "
                     "fonts.file_id WHERE family_id = ? AND NOT missing ORDER BY fonts.id",
                     familyID),
                 workgroups);
}

std::optional<FontRow> LibraryReader::FontByID(std::uint32_t id, std::int64_t clientPid) {
  // One row per activation of the face's file, or one without an activation.
  auto query = mStatements->database->Ask(
      "SELECT postscript_name, families.name, family_id, style, kind, foundry, version, "
      "checksum11, checksum12, kerning_checksum, files.path, files.name, size, face_index, "
      "workgroup_id, workgroups.type, workgroups.name, missing, mode, client_pid FROM fonts "
      "JOIN files ON files.id = fonts.file_id JOIN families ON families.id = family_id "
      "JOIN workgroups ON workgroups.id = workgroup_id "
      "LEFT JOIN activations ON activations.file_id = files.id WHERE fonts.id = ?",
      id);
  if (!query.Next()) return std::nullopt;
  FontRow row;
  row.id = id;
  row.postScriptName = query.Text(0);
  row.family = query.Text(1);
  row.familyID = query.ID(2);
  row.style = query.Text(3);
  row.kind = query.Text(4);
  if (!query.IsNull(5)) row.foundry = query.Text(5);
  row.version = query.Text(6);
  row.checksum11 = Checksum(query, 7);
  row.checksum12 = Checksum(query, 8);
  row.kerningChecksum = Checksum(query, 9);
  row.path = query.Text(10);
  row.outlineFileName = query.Text(11);
  row.outlineFileSize = query.Count(12);
  row.faceIndex = static_cast<std::int32_t>(query.Integer(13));
  row.workgroupID = query.ID(14);
  row.workgroupType = query.ID(15);
  row.workgroupName = query.Text(16);
  row.missing = query.Integer(17) != 0;
  RawState state(row.workgroupID, row.missing, clientPid);
  do {
    state.Add(query, 18);
  } while (query.Next());
  row.rawActivationState = state.Get();
  return row;
}

std::uint32_t LibraryReader::RawActivationState(std::uint32_t fontID, std::int64_t clientPid) {
  auto query = mStatements->database->Ask(
      "SELECT workgroup_id, missing, mode, client_pid FROM fonts JOIN files ON files.id = "
      "fonts.file_id LEFT JOIN activations ON activations.file_id = files.id WHERE fonts.id = ?",
      fontID);
  if (!query.Next()) return kInactive;
  RawState state(query.ID(0), query.Integer(1) != 0, clientPid);
  do {
    state.Add(query, 2);
  } while (query.Next());
  return state.Get();
}

std::uint32_t LibraryReader::ConflictingFont(std::uint32_t fontID) {
  auto query = mStatements->database->Ask(
      "SELECT other.id FROM fonts AS one JOIN fonts AS other "
      "ON other.postscript_name = one.postscript_name AND other.file_id <> one.file_id "
      "JOIN files ON files.id = other.file_id WHERE one.id = ?1 AND ("
      "(workgroup_id = ?2 AND NOT missing) OR "
      "EXISTS (SELECT 1 FROM activations WHERE activations.file_id = other.file_id)) "
      "ORDER BY other.id LIMIT 1",
      fontID, kSystemWorkgroupID);
  return query.Next() ? query.ID(0) : 0;
}

std::vector<WorkgroupRow> LibraryReader::Workgroups() {
  std::vector<WorkgroupRow> rows;
  auto query = mStatements->database->Ask("SELECT id, type, name FROM workgroups ORDER BY id");
  while (query.Next()) rows.push_back({query.ID(0), query.ID(1), query.Text(2)});
  return rows;
}

std::vector<FolderRow> LibraryReader::Folders() {
  std::vector<FolderRow> rows;
  auto query = mStatements->database->Ask(
      "SELECT folders.path, folders.missing, "
      "(SELECT count(*) FROM files WHERE folder_id = folders.id AND NOT missing), "
      "(SELECT count(*) FROM files JOIN fonts ON fonts.file_id = files.id "
      " WHERE folder_id = folders.id AND NOT missing), "
      "(SELECT count(*) FROM files WHERE folder_id = folders.id AND NOT missing "
      " AND error IS NOT NULL) FROM folders ORDER BY folders.id");
  while (query.Next()) {
    rows.push_back(
        {query.Text(0), query.Count(2), query.Count(3), query.Count(4), query.Integer(1) != 0});
  }
  return rows;
}

std::vector<BrokenFileRow> LibraryReader::BrokenFiles() {
  std::vector<BrokenFileRow> rows;
  auto query = mStatements->database->Ask(
      "SELECT path, error FROM files WHERE error IS NOT NULL AND NOT missing ORDER BY path");
  while (query.Next()) rows.push_back({query.Text(0), query.Text(1)});
  return rows;
}

LibraryReader::Totals LibraryReader::CountAll() {
  auto query = mStatements->database->Ask(
      "SELECT count(*), total(workgroup_id = ?1), total(CASE WHEN workgroup_id = ?2 THEN 1 ELSE "
      "EXISTS (SELECT 1 FROM activations WHERE activations.file_id = files.id) END) "
      "FROM fonts JOIN files ON files.id = fonts.file_id WHERE NOT missing",
      kPersonalWorkgroupID, kSystemWorkgroupID);
  if (!query.Next()) return {};
  return {query.Count(0), query.Count(1), query.Count(2)};
}

}  // namespace Nodrix
