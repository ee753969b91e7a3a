#include "frameworks/plugins/PreferenceStore.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "foundation/GFileSystem.h"
#include "frameworks/plugins/Terminal.h"

namespace {

constexpr const char* kGroup = "Preferences";
constexpr off_t kMaxBytes = off_t{1} << 20;
constexpr int kTurnAttempts = 500;         // about five seconds: a stopped process may hold it
constexpr useconds_t kTurnPause = 10'000;  // microseconds
constexpr int kMaxKeptAside = 99;
constexpr auto kFlags =
    static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);

struct FreeText {
  void operator()(char* text) const { g_free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

// Takes the error's text.
std::string TextOf(GError* error) {
  std::string text = error ? error->message : "unknown error";
  g_clear_error(&error);
  return text;
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec &&
         a.st_ctim.tv_sec == b.st_ctim.tv_sec && a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

// What a key file takes for a key. A bracket would make it a translation.
bool IsUsableKey(const char* key) {
  if (key == nullptr || *key == '\0' || *key == '#' || !g_utf8_validate(key, -1, nullptr)) {
    return false;
  }
  const std::string_view text(key);
  if (text.front() == ' ' || text.back() == ' ') return false;
  return text.find_first_of("=[]") == std::string_view::npos &&
         std::none_of(text.begin(), text.end(), [](char c) { return g_ascii_iscntrl(c); });
}

void Tell(const std::string& line) { Terminal::Standard().WriteLine(line); }

}  // namespace

// One writer at a time, over all processes. The lock is a file of its own, since the preferences
// are replaced by each write.
class PreferenceStore::Turn {
 public:
  explicit Turn(const std::string& path)
      : mLock(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    for (int i = 0; mLock >= 0 && !mHeld && i < kTurnAttempts; ++i) {
      if (i > 0) usleep(kTurnPause);
      mHeld = flock(mLock, LOCK_EX | LOCK_NB) == 0;
    }
  }
  ~Turn() {
    if (mLock >= 0) close(mLock);
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  bool IsHeld() const { return mHeld; }

 private:
  int mLock;
  bool mHeld = false;
};

void PreferenceStore::FreeKeyFile::operator()(GKeyFile* file) const { g_key_file_unref(file); }

PreferenceStore::PreferenceStore(std::string folder)
    : mFolder(std::move(folder)), mPath(mFolder + "/preferences.conf"), mFile(g_key_file_new()) {}

PreferenceStore& PreferenceStore::Shared() {
  static auto* const store = new std::unique_ptr<PreferenceStore>;  // parked for the process's life
  const std::string folder =
      GFileSystem::OSGetUsersRoamingAppDataDirectory().GetPath() + "/Vendrel";
  if (!*store || (*store)->mFolder != folder) *store = std::make_unique<PreferenceStore>(folder);
  return **store;
}

std::optional<std::string> PreferenceStore::Get(const char* key) {
  if (!IsUsableKey(key)) return std::nullopt;
  Refresh();
  const Text value(g_key_file_get_string(mFile.get(), kGroup, key, nullptr));
  return value ? std::optional<std::string>(value.get()) : std::nullopt;
}

std::int32_t PreferenceStore::GetNumber(const char* key) {
  const std::string text = Get(key).value_or("");
  std::int32_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

bool PreferenceStore::Set(const char* key, const std::string& value) {
  if (!IsUsableKey(key)) {
    Tell("A preference of this name can't be stored: " + std::string(key ? key : ""));
    return false;
  }
  g_mkdir_with_parents(mFolder.c_str(), 0700);
  const Turn turn(mPath + ".lock");
  if (turn.IsHeld()) {
    Load(true);
    if (mWritable) {
      const Text valid(g_utf8_make_valid(value.data(), static_cast<gssize>(value.size())));
      const Text present(g_key_file_get_string(mFile.get(), kGroup, key, nullptr));
      if (present && std::strcmp(present.get(), valid.get()) == 0) return true;
      g_key_file_set_string(mFile.get(), kGroup, key, valid.get());
      if (Write()) return true;
    }
  }
  Tell("The preference " + std::string(key) + " could not be stored in " + mPath);
  return false;
}

// Reads the file if it is not the one that was read before.
void PreferenceStore::Refresh() {
  struct stat now {};
  if (stat(mPath.c_str(), &now) != 0) now = {};
  if (!IsSameFile(now, mRead)) Load(false);
}

void PreferenceStore::Load(bool haveTurn) {
  KeyFile file(g_key_file_new());
  struct stat info {};
  std::string error;
  Reading reading = ReadFile(file, info, error);
  if (reading == Reading::eBroken) {
    // Somebody may be mending it, so we look again when it is our turn.
    std::optional<Turn> turn;
    if (!haveTurn) turn.emplace(mPath + ".lock");
    file.reset(g_key_file_new());
    reading = ReadFile(file, info, error);
    if (reading == Reading::eBroken) {
      file.reset(g_key_file_new());
      reading = KeepAside(error) ? Reading::eGood : Reading::eFailed;
      if (reading == Reading::eGood) info = {};
    }
  }
  mFile = std::move(file);
  mRead = info;
  mWritable = reading == Reading::eGood;
  if (mWritable) {
    mToldError.clear();
  } else if (error != mToldError) {
    mToldError = error;
    Tell("The preferences can't be read: " + mPath + ": " + error);
  }
}

// No file is an empty one.
PreferenceStore::Reading PreferenceStore::ReadFile(KeyFile& file, struct stat& info,
                                                   std::string& error) const {
  info = {};
  if (stat(mPath.c_str(), &info) != 0) {
    if (errno == ENOENT) return Reading::eGood;
    error = g_strerror(errno);
    return Reading::eFailed;
  }
  if (!S_ISREG(info.st_mode)) {
    error = "not a file";
    return Reading::eFailed;
  }
  if (info.st_size > kMaxBytes) {
    error = "too large";
    return Reading::eBroken;
  }
  GError* problem = nullptr;
  if (g_key_file_load_from_file(file.get(), mPath.c_str(), kFlags, &problem)) return Reading::eGood;
  const bool broken = problem == nullptr || problem->domain == G_KEY_FILE_ERROR;
  error = TextOf(problem);
  return broken ? Reading::eBroken : Reading::eFailed;
}

bool PreferenceStore::KeepAside(const std::string& error) {
  for (int i = 1; i <= kMaxKeptAside; ++i) {
    const std::string aside = mPath + ".broken" + (i > 1 ? "-" + std::to_string(i) : "");
    if (renameat2(AT_FDCWD, mPath.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) {
      Tell("The preferences were broken (" + error + "): kept as " + aside);
      return true;
    }
    if (errno != EEXIST) return false;
  }
  return false;
}

// A link stays one: what it names is replaced.
bool PreferenceStore::Write() {
  gsize length = 0;
  const Text data(g_key_file_to_data(mFile.get(), &length, nullptr));
  const std::unique_ptr<char, decltype(&free)> target(realpath(mPath.c_str(), nullptr), free);
  const auto flags = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                        G_FILE_SET_CONTENTS_DURABLE);
  GError* error = nullptr;
  if (!g_file_set_contents_full(target ? target.get() : mPath.c_str(), data.get(),
                                static_cast<gssize>(length), flags, 0600, &error)) {
    Tell(TextOf(error));
    mRead = {};  // what we hold was not written: read again
    mFile.reset(g_key_file_new());
    Load(true);
    return false;
  }
  if (stat(mPath.c_str(), &mRead) != 0) mRead = {};
  return true;
}
