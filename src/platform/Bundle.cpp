#include "platform/Bundle.h"

#include "platform/Platform.h"

std::shared_ptr<Bundle> GetBundleWithIdentifierReliably(const std::string& identifier) {
  return Platform::Current().GetBundles().FindByIdentifier(identifier);
}

std::shared_ptr<Bundle> LoadPrivateFramework(const std::string& bundleIdentifier,
                                             const std::string& frameworkName) {
  const std::shared_ptr<Bundle> owner = GetBundleWithIdentifierReliably(bundleIdentifier);
  if (!owner) return nullptr;
  return Platform::Current().GetBundles().Open(owner->PrivateFrameworksPath() + "/" +
                                               frameworkName);
}
