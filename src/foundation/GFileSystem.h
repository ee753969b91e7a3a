// Static file-system operations; the system's half stands in linux/. [any-thread]
//
// Every failure is recorded where it is met. An empty spec leads nowhere. Unless an operation says
// otherwise, links on the way and at the end of a path are followed, and the codes are:
// - kFileNotFound, kDirectoryNotFound: nothing there, or something of the other kind;
// - kInvalidPath: a name of more than 255 bytes, a path of more than 4,095, links in a circle; "/"
//   and an empty spec where something is to be made, moved or deleted;
// - kDiskFull: no room on the disk, in the user's quota or in a file of the largest size;
// - kFileIsLocked: busy, such as a mount point or a program that runs;
// - kDirectoryFull: the folder holds no more entries;
// - kInvalidCharacterForFileSystemRepresentation: the disk does not take that name;
// - CoreErrorCodes::kError: all else, such as a missing permission.
#pragma once

#include <span>
#include <string>

#include "foundation/ErrorCodes.h"
#include "foundation/GFileSystemSpec.h"

class GEnumFolderContentsCallback;
class GStopCallback;

class GFileSystem {
 public:
  static constexpr TModuleErrorCode kFileNotFound = MakeErrorCode(0x001005, 1);
  static constexpr TModuleErrorCode kDirectoryNotFound = MakeErrorCode(0x001005, 2);
  static constexpr TModuleErrorCode kCouldNotDecodeInput = MakeErrorCode(0x001005, 3);
  static constexpr TModuleErrorCode kFileOrDirectoryAlreadyExists = MakeErrorCode(0x001005, 4);
  static constexpr TModuleErrorCode kInvalidPath = MakeErrorCode(0x001005, 5);
  static constexpr TModuleErrorCode kDirectoryNotEmpty = MakeErrorCode(0x001005, 6);
  static constexpr TModuleErrorCode kEnumFolderContentsCanceled = MakeErrorCode(0x001005, 7);
  static constexpr TModuleErrorCode kDirectoryFull = MakeErrorCode(0x001005, 8);
  static constexpr TModuleErrorCode kDiskFull = MakeErrorCode(0x001005, 9);
  static constexpr TModuleErrorCode kFileIsLocked = MakeErrorCode(0x001005, 10);
  static constexpr TModuleErrorCode kMoveFailed = MakeErrorCode(0x001005, 11);
  static constexpr TModuleErrorCode kInvalidCharacterForFileSystemRepresentation =
      MakeErrorCode(0x001005, 12);

  // Existence.

  // Anything but a folder is a file here.
  static bool OSDoesFileExist(const GFileSystemSpec& spec);
  static bool OSDoesDirectoryExist(const GFileSystemSpec& spec);
  static bool OSIsExecutableFile(const GFileSystemSpec& spec);
  // Absolute and free of zero bytes.
  static bool OSIsValidFullPath(const std::string& path);
  // Is this file or folder, and every folder above it, writable by nobody but root and this user
  // (and the user's private group)? What is run or loaded must be.
  static bool OSIsTrustedLocation(const GFileSystemSpec& spec);

  // Create, delete.

  // For this user alone (0700). An existing folder is no error. `recursive` makes the folders on
  // the way too.
  static TModuleErrorCode OSCreateDirectory(const GFileSystemSpec& spec, bool recursive);
  // A link goes, not what it leads to.
  static TModuleErrorCode OSDeleteFile(const GFileSystemSpec& spec);
  // Without `recursive`, kDirectoryNotEmpty unless it is empty. With it all that is in the folder
  // goes first, up to the first entry that can't; a link inside goes, not what it leads to, also
  // when it takes a folder's place meanwhile. What is mounted there stays (kFileIsLocked). A link
  // in place of the folder is no folder (kDirectoryNotFound), and "/" is refused (kInvalidPath).
  // Any depth; a few descriptors.
  static TModuleErrorCode OSDeleteDirectory(const GFileSystemSpec& spec, bool recursive);

  // Copy, move. The destination must not exist (kFileOrDirectoryAlreadyExists), its folder must
  // (kDirectoryNotFound). It appears whole or not at all: it is built beside its place under a
  // name that begins with ".copy-" and then renamed without replacing anything, so that a failed or
  // stopped copy leaves nothing; only one whose process is killed leaves that.

  // Bytes and permission bits; owner, times and the bits that lend a program its owner's rights are
  // not copied. CoreErrorCodes::kNotSupported for a FIFO, socket or device. `stop`, which may be
  // null, is asked at least every 8 MiB: CoreErrorCodes::kStopped.
  static TModuleErrorCode OSCopyFile(const GFileSystemSpec& source,
                                     const GFileSystemSpec& destination,
                                     GStopCallback* stop = nullptr);
  // The same for a folder with all that is in it; `stop` is asked before each entry too. Links
  // inside are copied as links, with the text they have. A folder does not go into itself, by
  // whatever path (kInvalidPath).
  static TModuleErrorCode OSCopyDirectory(const GFileSystemSpec& source,
                                          const GFileSystemSpec& destination,
                                          GStopCallback* stop = nullptr);
  // A rename; to another file system a copy that is on the disk before the source is deleted. A
  // link moves itself. kMoveFailed for what has no code above. If the source of a copy can't be
  // deleted, or is no longer what was copied, a file's copy is withdrawn; a folder's stays, since
  // part of the source may be gone. What is put into a folder while it is copied goes with it.
  static TModuleErrorCode OSMoveFile(const GFileSystemSpec& source,
                                     const GFileSystemSpec& destination);
  // A link to a folder is a file here (kDirectoryNotFound).
  static TModuleErrorCode OSMoveDirectory(const GFileSystemSpec& source,
                                          const GFileSystemSpec& destination);

  // Puts the bytes in place of a file, or makes it, so that a half-written one never stands: they
  // are on the disk before they take its name, and whatever fails, the old file stays. A link stays
  // a link, and what it leads to is replaced; a hard link elsewhere keeps the old contents. Owner,
  // group and permissions stay those of the old file, which may be read-only; if they can't, it is
  // not replaced. A new one is for this user alone. kInvalidPath for what is no regular file and
  // for a link that leads nowhere. Of several writers the last one wins.
  static TModuleErrorCode OSReplaceFile(const GFileSystemSpec& spec,
                                        std::span<const unsigned char> bytes);

  // Enumerate.

  // Every entry, a folder before what is in it, those of one folder in the order of their bytes.
  // Links to folders are told, not entered. A name that is no UTF-8, and a folder inside that can't
  // be read, are recorded and skipped; the run goes on, but ends with the first such code
  // (kCouldNotDecodeInput for a name), since something is missing.
  static TModuleErrorCode OSEnumFolderContents(const GFileSystemSpec& spec,
                                               GEnumFolderContentsCallback& callback,
                                               bool recursive);

  // Size, in bytes. Files have no second data stream here, so both sizes are the same.

  static TModuleErrorCode OSGetFileSize(const GFileSystemSpec& spec, unsigned long long& size);
  static TModuleErrorCode OSGetFileSizeWithoutResourceFork(const GFileSystemSpec& spec,
                                                           unsigned long long& size);
  static bool OSHasResourceFork(const GFileSystemSpec& spec);

  // Attributes. kFileNotFound for a folder.

  // By its owner.
  static TModuleErrorCode OSMakeFileWritable(const GFileSystemSpec& spec);
  static TModuleErrorCode OSMakeFileWorldWritable(const GFileSystemSpec& spec);
  // Nobody may write.
  static TModuleErrorCode OSMakeFileReadOnly(const GFileSystemSpec& spec);
  // By its owner; `readable` false: by nobody.
  static TModuleErrorCode OSMakeFileReadable(const GFileSystemSpec& spec, bool readable);

  // Folders: those of the XDG base directories and user directories. Not created; a variable whose
  // value is no full path counts as not set. Empty if the user has no home.

  static GFileSystemSpec OSGetCWD();
  static GFileSystemSpec OSGetTempDirectory();                 // $TMPDIR, or /tmp
  static GFileSystemSpec OSGetSystemAppDataDirectory();        // /etc/xdg
  static GFileSystemSpec OSGetUsersAppDataDirectory();         // $XDG_DATA_HOME, or ~/.local/share
  static GFileSystemSpec OSGetUsersAppSupportDirectory();      // the same
  static GFileSystemSpec OSGetUsersRoamingAppDataDirectory();  // $XDG_CONFIG_HOME, or ~/.config
  static GFileSystemSpec
  OSGetUsersLogDirectory();  // $XDG_STATE_HOME/vendrel, or below ~/.local/state
  static GFileSystemSpec OSGetUsersRootDirectory();  // $HOME, or the home that the system knows
  // As user-dirs.dirs in the folder of configurations says; ~/Desktop and ~/Documents else.
  static GFileSystemSpec OSGetDesktopDirectory();
  static GFileSystemSpec OSGetDocumentsDirectory();
  // What all users share: the first folder of $XDG_DATA_DIRS, or /usr/local/share.
  static GFileSystemSpec OSGetSharedUserDirectory();

  // Paths.

  static std::string OSGetPathSeparator();
  // Resolves a leading "~" (not "~user", which stays and so is no full path) and "." and ".."
  // components by text, and drops slashes that say nothing; no link is followed.
  static std::string OSExpandPath(const std::string& path);
};
