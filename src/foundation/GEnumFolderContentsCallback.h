// Told of the entries of a folder by GFileSystem::OSEnumFolderContents.
#pragma once

#include "foundation/GFileSystemSpec.h"

class GEnumFolderContentsCallback {
 public:
  // A link is a link, wherever it leads. eOther is a FIFO, socket or device.
  enum EKind { eFile, eFolder, eLink, eOther };

  virtual ~GEnumFolderContentsCallback() = default;
  // On the caller's thread. It may change or delete the entry. false ends the run with
  // GFileSystem::kEnumFolderContentsCanceled.
  virtual bool OnEntry(const GFileSystemSpec& spec, EKind kind) = 0;
};
