#include "agent/LibraryStore.h"

#include "agent/library/LibraryReader.h"
#include "agent/library/Schema.h"

namespace Nodrix {
namespace {

std::string_view LastComponent(std::string_view path) {
  return path.substr(path.find_last_of('/') + 1);
}

bool LiesBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return path.size() > 1;
  return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

}  // namespace

std::unique_ptr<LibraryStore> LibraryStore::Open(const std::string& path, std::string& error) {
  auto database = Database::Open(path, Database::Access::eWrite, error);
  if (!database || !PrepareSchema(*database, error)) return nullptr;
  return std::unique_ptr<LibraryStore>(new LibraryStore(std::move(database)));
}

StoredFiles LibraryStore::Files(Query query) {
  StoredFiles files;
  while (query.Next()) {
    files.emplace(query.Text(0),
                  StoredFile{query.Integer(1), query.ID(2), query.Integer(3), query.Count(4),
                             query.Integer(5), query.Integer(6) != 0, query.Integer(7) != 0});
  }
  return files;
}

StoredFiles LibraryStore::FilesOfWorkgroup(std::uint32_t workgroup) {
  const auto lock = Lock();
  return Files(mDatabase->Ask(
      "SELECT path, id, workgroup_id, ifnull(folder_id, 0), size, mtime_ns, missing, error IS NOT "
      "NULL FROM files WHERE workgroup_id = ?",
      workgroup));
}

StoredFiles LibraryStore::FilesOfFolder(std::int64_t folder) {
  const auto lock = Lock();
  return Files(mDatabase->Ask(
      "SELECT path, id, workgroup_id, ifnull(folder_id, 0), size, mtime_ns, missing, error IS NOT "
      "NULL FROM files WHERE folder_id = ?",
      folder));
}

bool LibraryStore::Write(std::span<const ScannedFile> files, std::int64_t folder) {
  const auto lock = Lock();
  Transaction transaction(*mDatabase);
  for (const ScannedFile& file : files) {
    if (!WriteFile(file, folder)) return false;
  }
  return transaction.Commit();
}

bool LibraryStore::WriteFile(const ScannedFile& scanned, std::int64_t folder) {
  const FoundFile& file = scanned.file;
  const bool broken = !scanned.info.error.empty();
  const std::optional<std::string> error =
      broken ? std::optional(scanned.info.error) : std::nullopt;
  auto query = mDatabase->Ask(
      "INSERT INTO files (workgroup_id, folder_id, path, name, size, mtime_ns, missing, error) "
      "VALUES (?, nullif(?, 0), ?, ?, ?, ?, 0, ?) ON CONFLICT (path) DO UPDATE SET workgroup_id = "
      "excluded.workgroup_id, folder_id = excluded.folder_id, size = excluded.size, mtime_ns = "
      "excluded.mtime_ns, missing = 0, error = excluded.error RETURNING id",
      folder != 0 ? kPersonalWorkgroupID : kSystemWorkgroupID, folder, Blob{file.path},
      Blob{LastComponent(file.path)}, file.size, file.modifiedNs, error);
  if (!query.Next()) return false;
  const std::int64_t id = query.Integer(0);
  if (!query.Run()) return false;
  return WriteFaces(id, scanned.info.faces);
}

bool LibraryStore::WriteFaces(std::int64_t file, std::span<const FaceInfo> faces) {
  std::unordered_map<std::int32_t, std::int64_t> gone;
  {
    auto query = mDatabase->Ask("SELECT face_index, id FROM fonts WHERE file_id = ?", file);
    while (query.Next()) gone[static_cast<std::int32_t>(query.Integer(0))] = query.Integer(1);
  }
  for (const FaceInfo& face : faces) {
    const std::int64_t family = FamilyID(face.family);
    if (family == 0) return false;
    gone.erase(face.faceIndex);
    // Another font in the same file is another font.
    if (!mDatabase->Do(
            "DELETE FROM fonts WHERE file_id = ? AND face_index = ? AND postscript_name <> ?", file,
            face.faceIndex, face.postScriptName)) {
      return false;
    }
    // A file that changed has other checksums: those computed before are no longer true.
    if (!mDatabase->Do(
            "INSERT INTO fonts (file_id, face_index, postscript_name, family_id, style, kind, "
            "foundry, version) VALUES (?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (file_id, face_index) "
            "DO UPDATE SET postscript_name = excluded.postscript_name, family_id = "
            "excluded.family_id, style = excluded.style, kind = excluded.kind, foundry = "
            "excluded.foundry, version = excluded.version, checksum11 = NULL, checksum12 = NULL, "
            "kerning_checksum = NULL",
            file, face.faceIndex, face.postScriptName, family, face.style, face.kind, face.foundry,
            face.version)) {
      return false;
    }
  }
  for (const auto& [index, id] : gone) {
    if (!mDatabase->Do("DELETE FROM fonts WHERE id = ?", id)) return false;
  }
  return true;
}

std::int64_t LibraryStore::FamilyID(const std::string& name) {
  {
    auto known = mDatabase->Ask("SELECT id FROM families WHERE name = ?", name);
    if (known.Next()) return known.Integer(0);
  }
  return mDatabase->Do("INSERT INTO families (name) VALUES (?)", name) ? mDatabase->LastRowID() : 0;
}

bool LibraryStore::MarkMissing(std::span<const std::int64_t> files,
                               std::vector<std::uint32_t>& faces) {
  const auto lock = Lock();
  Transaction transaction(*mDatabase);
  for (const std::int64_t file : files) {
    if (!mDatabase->Do("UPDATE files SET missing = 1 WHERE id = ?", file)) return false;
    auto query = mDatabase->Ask("SELECT id FROM fonts WHERE file_id = ?", file);
    while (query.Next()) faces.push_back(query.ID(0));
  }
  return transaction.Commit();
}

bool LibraryStore::MarkPresent(std::span<const std::int64_t> files) {
  const auto lock = Lock();
  Transaction transaction(*mDatabase);
  for (const std::int64_t file : files) {
    if (!mDatabase->Do("UPDATE files SET missing = 0 WHERE id = ?", file)) return false;
  }
  return transaction.Commit();
}

std::vector<StoredFolder> LibraryStore::Folders() {
  const auto lock = Lock();
  std::vector<StoredFolder> folders;
  auto query = mDatabase->Ask("SELECT id, path FROM folders ORDER BY id");
  while (query.Next()) folders.push_back({query.Integer(0), query.Text(1)});
  return folders;
}

std::int64_t LibraryStore::AddFolder(const std::string& path) {
  const auto lock = Lock();
  const std::vector<StoredFolder> before = Folders();
  for (const StoredFolder& folder : before) {
    if (folder.path == path) return folder.id;
  }
  Transaction transaction(*mDatabase);
  if (!mDatabase->Do("INSERT INTO folders (path) VALUES (?)", Blob{path})) return 0;
  const std::int64_t id = mDatabase->LastRowID();
  for (const StoredFolder& folder : before) {
    if (!LiesBelow(folder.path, path)) continue;
    if (!mDatabase->Do("UPDATE files SET folder_id = ? WHERE folder_id = ?", id, folder.id) ||
        !mDatabase->Do("DELETE FROM folders WHERE id = ?", folder.id)) {
      return 0;
    }
  }
  return transaction.Commit() ? id : 0;
}

bool LibraryStore::MarkFolder(std::int64_t folder, bool missing) {
  const auto lock = Lock();
  return mDatabase->Do("UPDATE folders SET missing = ? WHERE id = ?", missing ? 1 : 0, folder);
}

bool LibraryStore::RemoveFolder(std::int64_t folder) {
  const auto lock = Lock();
  Transaction transaction(*mDatabase);
  return mDatabase->Do("DELETE FROM files WHERE folder_id = ?", folder) &&
         mDatabase->Do("DELETE FROM folders WHERE id = ?", folder) && transaction.Commit();
}

void LibraryStore::CountFolder(std::int64_t folder, ScanOutcome& outcome) {
  const auto lock = Lock();
  auto query = mDatabase->Ask(
      "SELECT count(*), total(error IS NOT NULL), total((SELECT count(*) FROM fonts WHERE file_id "
      "= files.id)) FROM files WHERE folder_id = ? AND NOT missing",
      folder);
  if (!query.Next()) return;
  outcome.files += query.Count(0);
  outcome.broken += query.Count(1);
  outcome.faces += query.Count(2);
}

std::string LibraryStore::Setting(const std::string& key) {
  const auto lock = Lock();
  auto query = mDatabase->Ask("SELECT value FROM settings WHERE key = ?", key);
  return query.Next() ? query.Text(0) : std::string();
}

bool LibraryStore::SetSetting(const std::string& key, const std::string& value) {
  const auto lock = Lock();
  return mDatabase->Do(
      "INSERT INTO settings (key, value) VALUES (?, ?) ON CONFLICT (key) DO UPDATE SET value = "
      "excluded.value",
      key, value);
}

}  // namespace Nodrix
