#include "fontmanager/FontManagerInterface.h"

#include "foundation/PluginLog.h"
#include "platform/FontLookup.h"
#include "platform/Platform.h"

std::atomic<FontManagerInterface*> FontManagerInterface::sm_pFontManager{nullptr};
std::int16_t FontManagerInterface::sValidWorkgroupSelected = 0;
std::int16_t FontManagerInterface::sSelectWorkgroupInProgress = 0;

namespace {

bool IsVisibleByName(const std::string& name) {
  const bool isVisible = Platform::Current().GetFontLookup().IsVisible(name);
  OutputFormattedDebugString(isVisible ? "Found active match for %s." : "No active match for %s.",
                             name.c_str());
  return isVisible;
}

}  // namespace

FontManagerInterface* FontManagerInterface::ExchangeFontManager(FontManagerInterface* fontManager) {
  return sm_pFontManager.exchange(fontManager, std::memory_order_acq_rel);
}

GMutex& FontManagerInterface::FontManagerMutex() {
  static GMutex& mutex = *new GMutex;  // reachable to the end, never destroyed
  return mutex;
}

int FontManagerInterface::FontIDsForPostScriptName(const std::string&, long, FontIDs&) {
  return kErrorGeneral;
}

int FontManagerInterface::FontIDsForFamilyName(const std::string&, long, FontIDs&) {
  return kErrorGeneral;
}

std::map<std::uint32_t, bool> FontManagerInterface::GetClientFontActivationStates(
    const FontIDs& ids) {
  std::map<std::uint32_t, bool> states;
  for (const std::uint32_t id : ids) {
    if (id != 0) states[id] = true;
  }
  OutputFormattedDebugString(
      "FontManagerInterface::GetClientFontActivationStates returning a map with %d entries",
      static_cast<int>(states.size()));
  return states;
}

std::map<std::uint32_t, std::uint32_t> FontManagerInterface::GetFontConflicts(const FontIDs&) {
  return {};
}

int FontManagerInterface::ActivateFontByName(const std::string&, long, const std::string&,
                                             std::uint32_t& outFontID) {
  outFontID = 0;
  return kErrorGeneral;
}

int FontManagerInterface::CountNamedFonts(const std::string&, TypeOfFontName, long, long& outCount,
                                          const std::string&) {
  outCount = 0;
  return kErrorGeneral;
}

int FontManagerInterface::GetNamedFontInfo(const std::string&, TypeOfFontName, long, long,
                                           const std::string&, FontOrSetInfoRec&) {
  return kErrorGeneral;
}

int FontManagerInterface::GetFontInfoByID(const FontRecord&, FontOrSetInfoRec&) {
  return kErrorGeneral;
}

int FontManagerInterface::GetPostscriptNameByID(std::string&, long, std::uint32_t) {
  return kErrorGeneral;
}

int FontManagerInterface::GetFaceprintInfo(std::uint32_t, const FontRecord&, char*, std::size_t&) {
  return kErrorGeneral;
}

int FontManagerInterface::FindFontsInSameFamilyForActivation(const FontRecord&,
                                                             const FontRecordArray&, long,
                                                             const FontRecordArray&) {
  return kErrorGeneral;
}

int FontManagerInterface::MakeSetForDocumentFonts(const std::string&, const FontRecordArray&) {
  return kErrorGeneral;
}

int FontManagerInterface::CollectFontsUsedByCurrentDocument(const std::string&, const std::string&,
                                                            const FontRecordArray&) {
  return kErrorGeneral;
}

bool FontManagerInterface::IsFontActive(const std::string& name) {
  PlatformString platformString{};
  if (!CopyUTF8CStringToMacRomanPascalString(platformString, name)) return IsVisibleByName(name);
  return IsFontActive(platformString);
}

bool FontManagerInterface::IsFontActive(const PlatformString& name) {
  return IsVisibleByName(XCFStringCreateWithPlatformString(name.data()).value_or(std::string()));
}

std::string FontManagerInterface::GetStringFromDictionary(
    const PropertyList::DictionaryRef& dictionary, const std::string& key) {
  return RecordString(dictionary, key);
}
