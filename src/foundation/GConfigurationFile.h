// Small text files of key=value lines, each ended by a carriage return, a line feed or both. "#"
// starts a comment wherever it stands, and there is no way to escape it; the first "=" ends the
// key, so a value may hold more of them. Blanks at both ends of key and value are dropped. Keys
// come back in lower case, and the last of several lines with one key counts. [any-thread]
//
// A line without "=", or with nothing before it, is logged as a warning, as it came (to a zero
// byte), and skipped: it is no error. All other bytes, zero bytes too, pass as they are.
#pragma once

#include <map>
#include <string>

#include "foundation/ErrorCodes.h"
#include "foundation/GFileSystemSpec.h"

class GConfigurationFile {
 public:
  static const char* GetKeyValueDelimiter() { return "="; }
  static const char* GetLineDelimiter() { return "\r\n"; }

  // A GFile or GFileSystem code for a file that can't be read; the map then stays as it was.
  static TModuleErrorCode ParseFile(const GFileSystemSpec& spec,
                                    std::map<std::string, std::string>& values);
  // 0 whatever the text; `values` holds only what the text says.
  static TModuleErrorCode ParseString(const std::string& text,
                                      std::map<std::string, std::string>& values);
  // In the map's order, over what the file held. What can't be said in such a file (a "#" or a line
  // end in a text, an "=" in a key) is written all the same and is read back differently.
  static TModuleErrorCode WriteFile(const GFileSystemSpec& spec,
                                    const std::map<std::string, std::string>& values);
};
