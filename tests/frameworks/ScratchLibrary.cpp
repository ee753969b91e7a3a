#include "frameworks/ScratchLibrary.h"

#include <stdexcept>

#include "agent/library/Paths.h"
#include "agent/library/Schema.h"

ScratchLibrary::ScratchLibrary() {
  const std::string path = Nodrix::DatabasePath();
  std::string error;
  Nodrix::MakeFolder(path.substr(0, path.rfind('/')), error);
  mDatabase = Nodrix::Database::Open(path, Nodrix::Database::Access::eWrite, error);
  if (!mDatabase || !Nodrix::PrepareSchema(*mDatabase, error)) throw std::runtime_error(error);
  Execute("INSERT INTO families VALUES (1, 'Grotesk'), (2, 'Antiqua')");
}

void ScratchLibrary::Add(const ScratchFace& face) {
  const std::string name = face.path.substr(face.path.rfind('/') + 1);
  const bool done =
      mDatabase->Do("INSERT INTO files VALUES (?, ?, NULL, ?, ?, 4711, 1, 0, NULL)", face.id,
                    face.workgroup, Nodrix::Blob{face.path}, Nodrix::Blob{name}) &&
      mDatabase->Do(
          "INSERT INTO fonts VALUES (?, ?, 0, ?, ?, 'Regular', 'TrueType', 'Vale', '1.5', "
          "4294967295, 12, NULL)",
          face.id, face.id, face.postScriptName, face.family);
  if (!done) throw std::runtime_error(mDatabase->ErrorText());
}

void ScratchLibrary::Activate(std::uint32_t fontID, std::uint32_t mode, std::int64_t pid) {
  if (!mDatabase->Do("INSERT INTO activations VALUES (?, ?, ?, 0, 'test', x'2f')", fontID, mode,
                     pid)) {
    throw std::runtime_error(mDatabase->ErrorText());
  }
}

void ScratchLibrary::Execute(const std::string& sql) {
  if (!mDatabase->Execute(sql.c_str())) throw std::runtime_error(mDatabase->ErrorText());
}
