#include "foundation/linux/SystemErrors.h"

#include <cerrno>

#include "foundation/GFileSystem.h"

bool IsOutOfRoom(int error) { return error == ENOSPC || error == EDQUOT || error == EFBIG; }

TModuleErrorCode CodeOfSystemError(int error, TModuleErrorCode codeOfMissing) {
  if (IsOutOfRoom(error)) return GFileSystem::kDiskFull;
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return codeOfMissing;
    case EEXIST:
      return GFileSystem::kFileOrDirectoryAlreadyExists;
    case ENOTEMPTY:
      return GFileSystem::kDirectoryNotEmpty;
    case EINVAL:
    case ELOOP:
    case ENAMETOOLONG:
      return GFileSystem::kInvalidPath;
    case EMLINK:
      return GFileSystem::kDirectoryFull;
    case EBUSY:
    case ETXTBSY:
    case EWOULDBLOCK:
      return GFileSystem::kFileIsLocked;
    case EILSEQ:
      return GFileSystem::kInvalidCharacterForFileSystemRepresentation;
    default:
      return CoreErrorCodes::kError;
  }
}
