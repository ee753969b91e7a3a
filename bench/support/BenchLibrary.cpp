#include "bench/support/BenchLibrary.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "agent/LibraryStore.h"
#include "agent/library/Paths.h"

namespace {

using Nodrix::FaceInfo;
using Nodrix::LibraryStore;
using Nodrix::ScannedFile;

constexpr const char* kFirst[] = {"Al",  "Bren", "Cas",  "Dor",  "Els", "Fer", "Gal",
                                  "Hel", "Iv",   "Jas",  "Kor",  "Lun", "Mar", "Nor",
                                  "Or",  "Pal",  "Quil", "Rosk", "Sil", "Tam"};
constexpr const char* kSecond[] = {"ado",   "antis",  "area",  "barra", "cella", "denza", "eliana",
                                   "fonte", "grave",  "idian", "lara",  "mondo", "nova",  "olia",
                                   "perla", "quista", "ronda", "stadt", "tora",  "vento"};
constexpr const char* kSort[] = {"Sans", "Serif", "Slab", "Mono", "Text", "Display"};
constexpr const char* kMaker[] = {"Pro", "Std", "Next", "LT", "Neue", "Office"};
constexpr const char* kStyles[BenchLibrary::kStyleCount] = {
    "Light", "LightItalic", "Regular", "Italic", "Medium", "Bold", "BoldItalic", "Black"};
constexpr const char* kFoundries[] = {"Vale Type", "Nordlicht", "Adelphi Foundry", "Kranich"};
constexpr const char* kKinds[] = {"OpenType - PS", "OpenType - TT", "TrueType", "Postscript"};
constexpr const char* kEndings[] = {".otf", ".ttf", ".ttf", ".pfb"};

template <std::size_t N>
const char* Pick(const char* const (&list)[N], std::size_t index) {
  return list[index % N];
}

std::string FamilyOf(std::size_t family, const char* blank) {
  std::string name = Pick(kFirst, family);
  name += Pick(kSecond, family / std::size(kFirst));
  family /= std::size(kFirst) * std::size(kSecond);
  name += blank + std::string(Pick(kSort, family)) + blank;
  return name + Pick(kMaker, family / std::size(kSort));
}

ScannedFile FileOf(std::size_t family, std::size_t style, std::size_t version) {
  FaceInfo face;
  face.postScriptName = BenchLibrary::NameOf(family, style);
  face.family = FamilyOf(family, " ");
  face.style = kStyles[style];
  face.kind = Pick(kKinds, family + version);
  face.foundry = Pick(kFoundries, family);
  face.version = std::to_string(version + 1) + "." + std::to_string(100 + family % 800);
  ScannedFile scanned;
  scanned.file = {"/srv/fonts/" + face.family + "/" + face.version + "/" + face.postScriptName +
                      Pick(kEndings, family + version),
                  20'000 + (family * 8 + style) * 7, 1'600'000'000'000'000'000};
  scanned.info.isFontFile = true;
  scanned.info.faces.push_back(std::move(face));
  return scanned;
}

void Demand(bool done, const std::string& reason) {
  if (!done) Give(reason);
}

}  // namespace

void Give(const std::string& reason) {
  std::fprintf(stderr, "%s\n", reason.c_str());
  std::abort();
}

BenchLibrary::BenchLibrary() : mAgent({BENCH_BUILD_DIR "/bin/Nodrix"}) {
  std::string error;
  const auto agent = Nodrix::AgentClient::Connect("bench", 30'000, error);
  Demand(agent != nullptr, error);
  // The agent looks at the disk once; what is written after that stays as it is.
  Nodrix::ScanOutcome outcome;
  const auto result = agent->Rescan({}, outcome, error);
  Demand(result == Nodrix::CallResult::eOk, "the agent can't scan: " + error);
  Fill();
  mReader = Nodrix::LibraryReader::Open(Nodrix::DatabasePath(), error);
  Demand(mReader && mReader->CountAll().libraryFaces == kFaceCount, "the library is not full");
}

BenchLibrary::~BenchLibrary() {
  mAgent.Signal(SIGTERM);
  mAgent.Wait();
}

std::string BenchLibrary::NameOf(std::size_t family, std::size_t style) {
  return FamilyOf(family, "") + "-" + kStyles[style];
}

std::vector<Nodrix::FontRow> BenchLibrary::FacesOf(const std::string& postScriptName) {
  std::vector<Nodrix::FontRow> rows;
  for (const std::uint32_t id : mReader->FontsByPostScriptName(postScriptName, {})) {
    rows.push_back(mReader->FontByID(id).value());
  }
  return rows;
}

// One file to a face, and checksums as if each had been activated once.
void BenchLibrary::Fill() {
  std::string error;
  const auto store = LibraryStore::Open(Nodrix::DatabasePath(), error);
  Demand(store != nullptr, error);
  const std::int64_t folder = store->AddFolder("/srv/fonts");
  std::vector<ScannedFile> files;
  for (std::size_t family = 0; files.size() < kFaceCount; ++family) {
    const std::size_t versions = family % kFamiliesPerDoubleOne == 0 ? 2 : 1;
    for (std::size_t face = 0; face < kStyleCount * versions && files.size() < kFaceCount; ++face) {
      files.push_back(FileOf(family, face / versions, face % versions));
    }
  }
  Demand(folder != 0 && store->Write(files, folder) &&
             store->Connection().Do("UPDATE fonts SET checksum11 = (id * 2654435761) % 4294967291, "
                                    "checksum12 = (id * 2246822519) % 4294967291, "
                                    "kerning_checksum = id % 65521"),
         store->Connection().ErrorText());
}

QuietOutput::QuietOutput() {
  std::fflush(stdout);
  mBefore = dup(STDOUT_FILENO);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

QuietOutput::~QuietOutput() {
  std::fflush(stdout);
  dup2(mBefore, STDOUT_FILENO);
  close(mBefore);
}
