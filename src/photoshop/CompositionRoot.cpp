#include "photoshop/CompositionRoot.h"

#include <memory>
#include <optional>
#include <string>

#include "activation/FontActivationTracker.h"
#include "dialogs/TarnInterface.h"
#include "facade/SkerryLoader.h"
#include "foundation/PluginLog.h"
#include "photoshop/ParkedObjects.h"
#include "photoshop/PhotoshopInterface.h"
#include "state/HostAppInterface.h"
#include "state/KestraneGlobals.h"

namespace {

// Never destroyed by a static destructor: whoever ends the process without a shutdown ends these
// with it.
struct SharedObjects {
  std::unique_ptr<TarnInterface> tarnInterface;
  std::unique_ptr<FontActivationTracker> tracker;
};

SharedObjects& Shared() {
  static SharedObjects& shared = *new SharedObjects;
  return shared;
}

std::optional<std::string> NothingIfEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
}

// The identity is stored and released as a whole, the version last of what always has a text. The
// accessor of the bundle identifier stops the process where there is none.
std::optional<std::string> BundleIdentifierIfKnown() {
  if (KestraneGlobals::GetPluginVersion().empty()) return std::nullopt;
  return KestraneGlobals::GetPluginBundleIdentifier();
}

}  // namespace

TarnInterface* KestraneGlobals::GetSharedTarnInterface() {
  auto& tarnInterface = Shared().tarnInterface;
  if (!tarnInterface) {
    const std::optional<std::string> hostApp = NothingIfEmpty(GetPluginHostApp());
    if (!hostApp) OutputFormattedDebugString("ERROR: sHostApp is NULL in %s()", __func__);
    tarnInterface = std::make_unique<TarnInterface>(hostApp, NothingIfEmpty(GetPluginVersion()),
                                                    BundleIdentifierIfKnown(),
                                                    NothingIfEmpty(GetPluginInterfaceVersion()));
  }
  return tarnInterface.get();
}

FontActivationTracker* KestraneGlobals::GetSharedFontActivationTracker() {
  auto& tracker = Shared().tracker;
  if (!tracker) tracker = std::make_unique<FontActivationTracker>(GetSharedTarnInterface());
  return tracker.get();
}

FontActivationTracker* KestraneGlobals::GetExistingFontActivationTracker() {
  return Shared().tracker.get();
}

void KestraneGlobals::CleanUpOnShutdown() {
  SetPluginServicesEnabled(false);
  Shared().tracker.reset();
  const SkerryLoader* facade = SkerryLoader::GetSharedInstance();
  if (facade->pfGetPluginFacadeInstance && facade->pfCleanUpOnShutdown) {
    facade->pfCleanUpOnShutdown(facade->pfGetPluginFacadeInstance());
  }
  // Forgotten, not destroyed: its framework may still have a dialog on screen.
  if (Shared().tarnInterface) {
    ParkedObjects<TarnInterface>().push_back(std::move(Shared().tarnInterface));
  }
  ReleaseIdentity();
}

void InstallHostAppInterface() {
  auto& interfaces = ParkedObjects<PhotoshopInterface>();
  if (!interfaces.empty()) return;
  interfaces.push_back(std::make_unique<PhotoshopInterface>());
  HostAppInterface::SetHostAppInterface(interfaces.back().get());
}
