#include "agent/ActivationBooks.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "agent/SystemFonts.h"

namespace Nodrix {
namespace {

constexpr auto kAuto = static_cast<std::uint32_t>(ActivationMode::eAuto);
constexpr auto kUser = static_cast<std::uint32_t>(ActivationMode::eUser);

void Append(std::vector<std::uint32_t>& all, const std::vector<std::uint32_t>& some) {
  all.insert(all.end(), some.begin(), some.end());
}

}  // namespace

std::optional<ActivationBooks::File> ActivationBooks::FileOfFont(std::uint32_t font) {
  auto query = mStore.Connection().Ask(
      "SELECT files.id, workgroup_id, files.path, files.name, missing FROM fonts JOIN files ON "
      "files.id = file_id WHERE fonts.id = ?",
      font);
  if (!query.Next()) return std::nullopt;
  File file;
  file.id = query.Integer(0);
  file.workgroup = query.ID(1);
  file.source = query.Text(2);
  file.name = query.Text(3);
  file.missing = query.Integer(4) != 0;
  return file;
}

std::vector<ActivationBooks::Face> ActivationBooks::FacesOf(std::int64_t file) {
  std::vector<Face> faces;
  auto query = mStore.Connection().Ask(
      "SELECT id, postscript_name, face_index FROM fonts WHERE file_id = ? ORDER BY id", file);
  while (query.Next()) {
    faces.push_back({query.ID(0), query.Text(1), static_cast<std::int32_t>(query.Integer(2))});
  }
  return faces;
}

std::vector<std::uint32_t> ActivationBooks::FaceIDs(std::int64_t file) {
  std::vector<std::uint32_t> ids;
  for (const Face& face : FacesOf(file)) ids.push_back(face.id);
  return ids;
}

std::vector<std::int64_t> ActivationBooks::FileIDs(Query query) {
  std::vector<std::int64_t> ids;
  while (query.Next()) ids.push_back(query.Integer(0));
  return ids;
}

std::optional<std::string> ActivationBooks::CopyOf(std::int64_t file) {
  auto query =
      mStore.Connection().Ask("SELECT path FROM activations WHERE file_id = ? LIMIT 1", file);
  return query.Next() ? std::optional(query.Text(0)) : std::nullopt;
}

bool ActivationBooks::Insert(std::int64_t file, ActivationMode mode, const ClientIdentity& client,
                             const std::string& path) {
  const bool isUsers = mode == ActivationMode::eUser;
  return mStore.Connection().Do(
      "INSERT OR REPLACE INTO activations (file_id, mode, client_pid, client_start, client_name, "
      "path) VALUES (?, ?, ?, ?, ?, ?)",
      file, static_cast<std::uint32_t>(mode), isUsers ? 0 : client.pid,
      isUsers ? 0 : static_cast<std::int64_t>(client.start), client.name, Blob{path});
}

ActivationOutcome ActivationBooks::Activate(std::span<const std::uint32_t> fonts,
                                            ActivationMode mode, const ClientIdentity& client,
                                            ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  ActivationOutcome outcome;
  Files files = FilesToTurnOn(fonts, outcome);
  InstallCopies(files, changes);
  RefuseDoubles(files, changes);
  LookForThem(files, changes);
  Record(files, mode, client, changes);
  for (const File& file : files) {
    if (file.failed) {
      Append(outcome.failed, file.asked);
    } else if (file.shadowed) {
      Append(outcome.shadowed, file.asked);
    }
  }
  return outcome;
}

ActivationBooks::Files ActivationBooks::FilesToTurnOn(std::span<const std::uint32_t> fonts,
                                                      ActivationOutcome& outcome) {
  Files files;
  std::map<std::int64_t, std::size_t> places;
  for (const std::uint32_t font : fonts) {
    std::optional<File> file = FileOfFont(font);
    if (!file || (file->workgroup == kSystemWorkgroupID && file->missing)) {
      outcome.failed.push_back(font);
      continue;
    }
    if (file->workgroup == kSystemWorkgroupID) continue;
    const auto [place, isNew] = places.emplace(file->id, files.size());
    if (isNew) {
      file->faces = FacesOf(file->id);
      const auto copy = CopyOf(file->id);
      file->wasOn = copy.has_value();
      file->path = copy ? *copy : mActivator.PathFor(file->id, file->name);
      files.push_back(std::move(*file));
    }
    files[place->second].asked.push_back(font);
  }
  return files;
}

void ActivationBooks::Fail(File& file, std::string problem, ActivationChanges& changes) {
  file.failed = true;
  if (!file.wasOn) mActivator.Remove(file.path);
  changes.problems.push_back(std::move(problem));
}

void ActivationBooks::InstallCopies(Files& files, ActivationChanges& changes) {
  for (File& file : files) {
    std::string error;
    const Activator::Result result = mActivator.Install(file.source, file.path, error);
    if (result == Activator::Result::eDone) continue;
    file.failed = true;
    changes.problems.push_back(error);
    if (result != Activator::Result::eNoSource || file.missing) continue;
    if (!mStore.MarkMissing(std::span(&file.id, 1), changes.missing)) {
      changes.problems.push_back(mStore.Connection().ErrorText());
    }
  }
}

void ActivationBooks::RefuseDoubles(Files& files, ActivationChanges& changes) {
  std::set<std::string> names;
  for (const File& file : files) {
    if (!file.wasOn) continue;
    for (const Face& face : file.faces) names.insert(face.name);
  }
  for (File& file : files) {
    if (file.failed || file.wasOn) continue;
    const bool isDouble = std::ranges::any_of(
        file.faces, [&](const Face& face) { return names.contains(face.name); });
    if (isDouble) {
      Fail(file, file.source + ": another font of its name was asked for together with it",
           changes);
      continue;
    }
    for (const Face& face : file.faces) names.insert(face.name);
  }
}

// Asks fontconfig as applications will; what nobody can see is taken back.
void ActivationBooks::LookForThem(Files& files, ActivationChanges& changes) {
  std::vector<VisibilityQuestion> questions;
  std::vector<File*> asked;
  for (File& file : files) {
    if (file.failed) continue;
    for (const Face& face : file.faces) {
      if (std::ranges::find(file.asked, face.id) == file.asked.end()) continue;
      questions.push_back({file.path, face.name, face.index});
      asked.push_back(&file);
    }
  }
  std::vector<Visibility> answers = AskVisibility(questions);
  if (std::ranges::find(answers, Visibility::eHidden) != answers.end()) {
    // A cache that somebody wrote in the very moment of our change is taken for a new one.
    mActivator.TouchChanged();
    answers = AskVisibility(questions);
  }
  std::set<File*> seen;
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if (answers[i] != Visibility::eHidden) seen.insert(asked[i]);
  }
  bool madeRoom = false;
  for (File& file : files) {
    if (file.failed) continue;
    if (!seen.contains(&file) && !file.wasOn) {
      Fail(file, file.path + ": fontconfig does not show it", changes);
    } else if (!file.wasOn && MakeRoomFor(file, changes)) {
      madeRoom = true;
    }
  }
  if (madeRoom) answers = AskVisibility(questions);
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if (answers[i] != Visibility::eVisible) asked[i]->shadowed = true;
  }
}

// Turns off what holds one of the file's names; the user's own stays and comes first. True if
// something was turned off.
bool ActivationBooks::MakeRoomFor(File& file, ActivationChanges& changes) {
  std::set<std::int64_t> others;
  for (const Face& face : file.faces) {
    auto query = mStore.Connection().Ask(
        "SELECT file_id, EXISTS (SELECT 1 FROM activations WHERE activations.file_id = "
        "fonts.file_id AND mode = ?1) FROM fonts WHERE postscript_name = ?2 AND file_id <> ?3 AND "
        "EXISTS (SELECT 1 FROM activations WHERE activations.file_id = fonts.file_id)",
        kUser, face.name, file.id);
    while (query.Next()) {
      if (query.Integer(1) != 0) {
        file.shadowed = true;
      } else {
        others.insert(query.Integer(0));
      }
    }
  }
  for (const std::int64_t other : others) TurnOff(other, changes);
  return !others.empty();
}

void ActivationBooks::Record(Files& files, ActivationMode mode, const ClientIdentity& client,
                             ActivationChanges& changes) {
  for (File& file : files) {
    if (file.failed) continue;
    if (!Insert(file.id, mode, client, file.path)) {
      Fail(file, mStore.Connection().ErrorText(), changes);
    } else if (!file.wasOn) {
      for (const Face& face : file.faces) changes.activated.push_back(face.id);
    }
  }
}

void ActivationBooks::TurnOff(std::int64_t file, ActivationChanges& changes) {
  const auto copy = CopyOf(file);
  if (!copy) return;
  if (!mStore.Connection().Do("DELETE FROM activations WHERE file_id = ?", file)) {
    changes.problems.push_back(mStore.Connection().ErrorText());
    return;
  }
  mActivator.Remove(*copy);
  Append(changes.deactivated, FaceIDs(file));
}

void ActivationBooks::GiveBack(std::int64_t file, ActivationMode mode, std::int64_t pid,
                               ActivationChanges& changes) {
  const auto copy = CopyOf(file);
  if (!copy) return;
  Database& database = mStore.Connection();
  if (!database.Do("DELETE FROM activations WHERE file_id = ? AND mode = ? AND client_pid = ?",
                   file, static_cast<std::uint32_t>(mode), pid)) {
    changes.problems.push_back(database.ErrorText());
    return;
  }
  if (database.Changes() == 0 || CopyOf(file)) return;
  const std::vector<std::uint32_t> faces = FaceIDs(file);
  if (const ClientIdentity* heir = mClients.UserOf(faces, pid)) {
    if (Insert(file, ActivationMode::eAuto, *heir, *copy)) return;
  }
  mActivator.Remove(*copy);
  Append(changes.deactivated, faces);
}

void ActivationBooks::Deactivate(std::span<const std::uint32_t> fonts, ActivationMode mode,
                                 const ClientIdentity& client, ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  std::set<std::int64_t> files;
  for (const std::uint32_t font : fonts) {
    if (const auto file = FileOfFont(font)) files.insert(file->id);
  }
  const std::int64_t pid = mode == ActivationMode::eUser ? 0 : client.pid;
  for (const std::int64_t file : files) GiveBack(file, mode, pid, changes);
}

void ActivationBooks::ReleaseProcess(std::int64_t pid, ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  const auto files = FileIDs(mStore.Connection().Ask(
      "SELECT file_id FROM activations WHERE mode = ? AND client_pid = ?", kAuto, pid));
  for (const std::int64_t file : files) GiveBack(file, ActivationMode::eAuto, pid, changes);
}

void ActivationBooks::ReleaseFormer(const ClientIdentity& client, ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  const auto files = FileIDs(mStore.Connection().Ask(
      "SELECT file_id FROM activations WHERE mode = ? AND client_pid = ? AND client_start <> ?",
      kAuto, client.pid, client.start));
  for (const std::int64_t file : files) {
    GiveBack(file, ActivationMode::eAuto, client.pid, changes);
  }
}

void ActivationBooks::ReleaseAutomatic(ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  Database& database = mStore.Connection();
  for (const std::int64_t file : FileIDs(database.Ask(
           "SELECT DISTINCT file_id FROM activations AS one WHERE NOT EXISTS (SELECT 1 FROM "
           "activations WHERE file_id = one.file_id AND mode = ?)",
           kUser))) {
    TurnOff(file, changes);
  }
  if (!database.Do("DELETE FROM activations WHERE mode = ?", kAuto)) {
    changes.problems.push_back(database.ErrorText());
  }
}

void ActivationBooks::ReleaseFolder(std::int64_t folder, ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  for (const std::int64_t file : FileIDs(mStore.Connection().Ask(
           "SELECT DISTINCT file_id FROM activations JOIN files ON files.id = file_id WHERE "
           "folder_id = ?",
           folder))) {
    TurnOff(file, changes);
  }
}

void ActivationBooks::ReleaseSystemFiles(ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  for (const std::int64_t file : FileIDs(mStore.Connection().Ask(
           "SELECT DISTINCT file_id FROM activations JOIN files ON files.id = file_id WHERE "
           "workgroup_id = ?",
           kSystemWorkgroupID))) {
    TurnOff(file, changes);
  }
}

std::vector<ClientIdentity> ActivationBooks::Unconnected() {
  const auto lock = mStore.Lock();
  std::vector<ClientIdentity> processes;
  auto query = mStore.Connection().Ask(
      "SELECT DISTINCT client_pid, client_start FROM activations WHERE mode = ?", kAuto);
  while (query.Next()) {
    if (!mClients.IsConnected(query.Integer(0))) {
      processes.push_back({query.Integer(0), query.Count(1), {}});
    }
  }
  return processes;
}

void ActivationBooks::Reconcile(ActivationChanges& changes) {
  const auto lock = mStore.Lock();
  ReleaseSystemFiles(changes);
  for (const ClientIdentity& process : Unconnected()) {
    if (!IsAlive(process)) ReleaseProcess(process.pid, changes);
  }
  struct Copy {
    std::int64_t file;
    std::string source, path, wanted;
  };
  std::vector<Copy> copies;
  {
    auto query = mStore.Connection().Ask(
        "SELECT DISTINCT files.id, files.path, files.name, activations.path FROM activations JOIN "
        "files ON files.id = file_id");
    while (query.Next()) {
      copies.push_back({query.Integer(0), query.Text(1), query.Text(3),
                        mActivator.PathFor(query.Integer(0), query.Text(2))});
    }
  }
  std::set<std::string> wanted;
  for (const Copy& copy : copies) {
    std::string error;
    if (mActivator.Install(copy.source, copy.wanted, error) != Activator::Result::eDone ||
        !mStore.Connection().Do("UPDATE activations SET path = ? WHERE file_id = ?",
                                Blob{copy.wanted}, copy.file)) {
      changes.problems.push_back(error);
      TurnOff(copy.file, changes);
      continue;
    }
    wanted.insert(copy.wanted);
  }
  mActivator.RemoveAllBut(wanted);
}

std::vector<ActiveFont> ActivationBooks::Status() {
  const auto lock = mStore.Lock();
  std::vector<ActiveFont> fonts;
  auto query = mStore.Connection().Ask(
      "SELECT fonts.id, postscript_name, path, mode, client_pid, client_name FROM activations JOIN "
      "fonts ON fonts.file_id = activations.file_id ORDER BY fonts.id, mode, client_pid");
  while (query.Next()) {
    ActiveFont font;
    font.fontID = query.ID(0);
    font.postScriptName = query.Text(1);
    font.path = query.Text(2);
    font.mode = static_cast<ActivationMode>(query.ID(3));
    font.pid = query.Integer(4);
    font.client = query.Text(5);
    font.documents = mClients.DocumentsOf(font.pid, font.fontID);
    fonts.push_back(std::move(font));
  }
  return fonts;
}

}  // namespace Nodrix
