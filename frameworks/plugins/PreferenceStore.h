// The preferences in a key file, $XDG_CONFIG_HOME/Vendrel/preferences.conf, mode 0600, which a
// person may edit as well. Any number of processes share it: a change is seen at the next question,
// and a write takes turns with others and starts from what they wrote, so no key is lost.
//
// A file that is no key file is kept aside as preferences.conf.broken (or .broken-2 and so on) with
// a line on standard error. One that can't be read or kept aside is left as it is: nothing is known
// then and nothing can be stored.
//
// Threads: one.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

typedef struct _GKeyFile GKeyFile;

class PreferenceStore {
 public:
  explicit PreferenceStore(std::string folder);

  // Of this process, in the folder that the environment names at this moment. Lent until then.
  static PreferenceStore& Shared();

  // Nothing if it was never set. A key that a key file can't hold is never set.
  std::optional<std::string> Get(const char* key);
  // A number, 0 if it is none or was never set; cut to the type.
  std::int32_t GetNumber(const char* key);
  // False, with a line on standard error, if it could not be stored.
  bool Set(const char* key, const std::string& value);

 private:
  struct FreeKeyFile {
    void operator()(GKeyFile* file) const;
  };
  using KeyFile = std::unique_ptr<GKeyFile, FreeKeyFile>;
  class Turn;
  enum class Reading { eGood, eBroken, eFailed };

  void Refresh();
  void Load(bool haveTurn);
  Reading ReadFile(KeyFile& file, struct stat& info, std::string& error) const;
  bool KeepAside(const std::string& error);
  bool Write();

  std::string mFolder;
  std::string mPath;
  KeyFile mFile;
  struct stat mRead {};  // the file that mFile was read from; all zero if there was none
  bool mWritable = true;
  std::string mToldError;  // said once, not at every question
};
