// Bundles as folders, and their executables as shared libraries.
#pragma once

#include <map>
#include <string>

#include "platform/Bundle.h"

// Frameworks for all users, where the installed package puts them.
inline constexpr const char* kSystemFrameworksPath = "/usr/lib/vendrel/Frameworks";

class LinuxBundles : public BundleLayer {
 public:
  std::shared_ptr<Bundle> FindByIdentifier(const std::string& identifier) override;
  std::shared_ptr<Bundle> Open(const std::string& path) override;
  bool IsLoaded(const std::string& identifier) override;
  std::string SystemFrameworksPath() override { return kSystemFrameworksPath; }

 private:
  void ReadLoadedLibraries();

  // By real path; a library that was opened stays, so its bundle does.
  std::map<std::string, std::shared_ptr<Bundle>> mOpened;
  // Of the libraries in this process, by the library's path; null for one that is in no bundle.
  std::map<std::string, std::shared_ptr<Bundle>> mLoaded;
  // The loader's count of libraries ever loaded, as of the last look.
  unsigned long long mSeenLoads = 0;
};
