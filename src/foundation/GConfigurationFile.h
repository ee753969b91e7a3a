// Small text files of key=value lines. "#" starts a comment; keys come back in lower case; an
// illegal line is logged and skipped.
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
  static TModuleErrorCode ParseString(const std::string& text,
                                      std::map<std::string, std::string>& values);
  static TModuleErrorCode WriteFile(const GFileSystemSpec& spec,
                                    const std::map<std::string, std::string>& values);
};
