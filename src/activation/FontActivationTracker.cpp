#include "activation/FontActivationTracker.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <random>

#include "activation/ConnectedFontManager.h"
#include "dialogs/TarnInterface.h"
#include "foundation/GScopedLock.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace {

// Version 4 (random), in capitals. Empty if the system has no random numbers.
std::string MakeUUID() {
  std::array<unsigned char, 16> bytes{};
  try {
    std::random_device random;
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random() & 0xFF);
  } catch (const std::exception&) {
    return {};
  }
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
    text.push_back(kDigits[bytes[i] >> 4]);
    text.push_back(kDigits[bytes[i] & 0x0F]);
  }
  return text;
}

// Did the user, rather than automatic activation or the system, turn this font on?
bool WasActivatedByHand(const FontRecord& font, const std::string& name, long workgroupID) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager == nullptr) return false;
  FontRecordArray candidates = MakeFontRecordArray();
  bool excludedRemote = false;
  static_cast<void>(fontManager->GetFaceprintData(font, kPostScriptFontName, &excludedRemote,
                                                  workgroupID, candidates));
  if (CountOf(candidates) == 0) return false;
  const FontRecord best = candidates->DictionaryAt(0);
  const auto isAutoActivated = static_cast<int>(RecordInteger(best, kFP_IsAutoActivatedKey));
  const auto isSystem = static_cast<int>(RecordInteger(best, kFP_IsSystemKey));
  OutputFormattedDebugString("Font:  '%s':  kFP_IsAutoActivatedKey=%d, kFP_IsSystemKey=%d",
                             name.c_str(), isAutoActivated, isSystem);
  return isAutoActivated == 0 && isSystem == 0;
}

}  // namespace

FontActivationTracker::FontActivationTracker(TarnInterface* tarn) : m_pTarnInterface(tarn) {}

FontActivationTracker::~FontActivationTracker() {
  GScopedLock lock(m_mutex);
  m_mFonts.clear();
}

std::string FontActivationTracker::GenerateUniqueIdentifier() {
  std::string identifier = MakeUUID();
  if (identifier.empty()) identifier.assign(1, static_cast<char>(std::rand() & 0xFF));
  OutputFormattedDebugString("FontActivationTracker::GenerateUniqueIdentifier() returning '%s'",
                             identifier.c_str());
  return identifier;
}

void FontActivationTracker::RegisterFontWithDocument(const FontRecord& font,
                                                     const std::string& psName,
                                                     std::uint32_t nDatabaseID, bool bAlreadyActive,
                                                     const std::string& sDocumentIdentifier,
                                                     void* context) {
  GScopedLock lock(m_mutex);
  const auto [entry, isNew] = m_mFonts.try_emplace(nDatabaseID);
  SFontRecord& record = entry->second;
  // An entry without a record is one that only a count made.
  if (isNew || !record.fontInfo) {
    record.fontInfo = font;
    record.nDatabaseID = nDatabaseID;
    record.wasAlreadyActive = bAlreadyActive;
    record.postscriptName = psName;
    record.documentIdentifier = sDocumentIdentifier;
    record.activationContext = context;
  }
  record.isOpen = true;
  ++record.refCount;
  SDocumentRecord& document = m_mDocuments[sDocumentIdentifier];
  document.documentIdentifier = sDocumentIdentifier;
  document.fontIDs.push_back(nDatabaseID);
}

void FontActivationTracker::SFontRecord::Release() {
  isOpen = false;
  fontInfo = nullptr;
  postscriptName.clear();
}

void FontActivationTracker::RemoveActivatedFonts(const FontRecordArray& fonts, long inWorkgroupID,
                                                 bool removeOnlyManuallyActivated) {
  const OperationTrace trace(__func__);
  RemoveFromBack(fonts, [&](std::size_t i) {
    const FontRecord font = fonts->DictionaryAt(i);
    if (!font) {
      OutputFormattedDebugString("ERROR:  fontArray[%d] is NULL", static_cast<int>(i));
      return false;
    }
    const std::string name = RecordString(font, kFP_PostScriptNameKey);
    return FontManagerInterface::IsFontActive(name) &&
           (!removeOnlyManuallyActivated || WasActivatedByHand(font, name, inWorkgroupID));
  });
}

void FontActivationTracker::EndFontChangeSession(bool bHideProgress) {
  const OperationTrace trace(__func__);
  if (bHideProgress && m_pTarnInterface != nullptr) m_pTarnInterface->HideProgress();
  EndActivationChange();
}

std::size_t FontActivationTracker::CountFontsRegisteredForIdentifier(
    const std::string& identifier) {
  GScopedLock lock(m_mutex);
  const auto document = m_mDocuments.find(identifier);
  if (document == m_mDocuments.end()) {
    OutputFormattedDebugString("No entry in FontActivationTracker::m_mDocuments for '%s'",
                               identifier.c_str());
    return 0;
  }
  return document->second.fontIDs.size();
}

std::size_t FontActivationTracker::CountFontsOpenedForIdentifier(const std::string& identifier,
                                                                 std::size_t& alreadyActiveCount) {
  GScopedLock lock(m_mutex);
  alreadyActiveCount = 0;
  const auto document = m_mDocuments.find(identifier);
  if (document == m_mDocuments.end()) return 0;
  std::size_t count = 0;
  GScopedLock walkLock(m_mutex);
  for (const std::uint32_t id : document->second.fontIDs) {
    const SFontRecord& font = m_mFonts[id];  // makes an empty entry for an unknown ID
    if (!font.isOpen || font.documentIdentifier != identifier) continue;
    ++(font.wasAlreadyActive ? alreadyActiveCount : count);
  }
  return count;
}

void FontActivationTracker::AddUnresolvedFont(const std::string& identifier,
                                              const std::string& name) {
  m_mUnresolvedFonts[identifier].push_back(name);
}

const std::vector<std::string>& FontActivationTracker::GetUnresolvedFonts(
    const std::string& identifier) {
  return m_mUnresolvedFonts[identifier];
}
