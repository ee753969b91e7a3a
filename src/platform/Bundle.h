// Bundles: a folder X.plugin or X.framework with Contents/Info.plist, Contents/Linux/X and
// Contents/Frameworks/. A library that was opened is never unloaded.
#pragma once

#include <memory>
#include <optional>
#include <string>

class Bundle {
 public:
  virtual ~Bundle() = default;
  // The folder itself, without a trailing slash.
  virtual std::string Path() const = 0;
  virtual std::string Identifier() const = 0;
  // A string of Info.plist.
  virtual std::optional<std::string> Value(const std::string& key) const = 0;
  virtual std::string ExecutablePath() const = 0;
  // Contents/Frameworks.
  virtual std::string PrivateFrameworksPath() const = 0;
  // A text of Contents/Resources/<table>.strings.plist; the default if table or key are missing.
  virtual std::string LocalizedString(const std::string& table, const std::string& key,
                                      const std::string& defaultValue) const = 0;
  // Loads the executable at the first call; null if there is no such symbol or it can't be loaded.
  virtual void* LookUpSymbol(const char* name) = 0;
};

class BundleLayer {
 public:
  virtual ~BundleLayer() = default;
  // A bundle among those that this process has loaded (opened here, or holding the code of a loaded
  // library); null if there is none.
  virtual std::shared_ptr<Bundle> FindByIdentifier(const std::string& identifier) = 0;
  // Null if the folder is no bundle, or if somebody but root and this user could have changed it.
  virtual std::shared_ptr<Bundle> Open(const std::string& path) = 0;
  virtual bool IsLoaded(const std::string& identifier) = 0;
  // Where frameworks for all users are installed.
  virtual std::string SystemFrameworksPath() = 0;
};

// The bundle of this identifier: by identifier and, failing that, among all loaded bundles.
std::shared_ptr<Bundle> GetBundleWithIdentifierReliably(const std::string& identifier);

// Opens the framework of this name in the private frameworks of the bundle of this identifier; null
// if there is none.
std::shared_ptr<Bundle> LoadPrivateFramework(const std::string& bundleIdentifier,
                                             const std::string& frameworkName);
