// Static file-system operations; the system's half stands in linux/.
#pragma once

#include <string>

#include "foundation/ErrorCodes.h"
#include "foundation/GFileSystemSpec.h"

class GFileSystem {
 public:
  static constexpr TModuleErrorCode kFileNotFound = MakeErrorCode(0x001005, 1);
  static constexpr TModuleErrorCode kDirectoryNotFound = MakeErrorCode(0x001005, 2);
  static constexpr TModuleErrorCode kFileOrDirectoryAlreadyExists = MakeErrorCode(0x001005, 4);
  static constexpr TModuleErrorCode kInvalidPath = MakeErrorCode(0x001005, 5);
  static constexpr TModuleErrorCode kDiskFull = MakeErrorCode(0x001005, 9);

  static bool OSDoesFileExist(const GFileSystemSpec& spec);
  static bool OSDoesDirectoryExist(const GFileSystemSpec& spec);
  static bool OSIsExecutableFile(const GFileSystemSpec& spec);
  // Absolute and free of zero bytes.
  static bool OSIsValidFullPath(const std::string& path);
  // Resolves a leading "~" and "." and ".." components by text; no link is followed.
  static std::string OSExpandPath(const std::string& path);

  // An existing folder is no error.
  static TModuleErrorCode OSCreateDirectory(const GFileSystemSpec& spec, bool recursive);
  static TModuleErrorCode OSDeleteFile(const GFileSystemSpec& spec);
  static TModuleErrorCode OSGetFileSize(const GFileSystemSpec& spec, unsigned long long& size);
  // Is this file or folder, and every folder above it, writable by nobody but root and this user
  // (and the user's private group)? What is run or loaded must be.
  static bool OSIsTrustedLocation(const GFileSystemSpec& spec);

  // XDG base directories with their defaults; not created.
  static GFileSystemSpec OSGetSystemAppDataDirectory();        // /etc/xdg
  static GFileSystemSpec OSGetUsersAppDataDirectory();         // $XDG_DATA_HOME
  static GFileSystemSpec OSGetUsersRoamingAppDataDirectory();  // $XDG_CONFIG_HOME
  static GFileSystemSpec OSGetUsersLogDirectory();             // $XDG_STATE_HOME/vendrel
  static GFileSystemSpec OSGetUsersRootDirectory();            // $HOME
  static GFileSystemSpec OSGetTempDirectory();
  static GFileSystemSpec OSGetCWD();
};
