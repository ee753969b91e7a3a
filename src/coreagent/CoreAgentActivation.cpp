#include <algorithm>

#include "coreagent/CommandRetry.h"
#include "coreagent/CoreAgentInterface.h"
#include "dialogs/TarnInterface.h"
#include "facade/FacadeCall.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"
#include "state/KestraneGlobals.h"

// Where the facade leaves the fonts that it did not turn on.
struct CoreAgentInterface::Activation {
  FontIDs failed;
  FontIDs second;  // refused for this user
};

namespace {

using FontIDs = FontManagerInterface::FontIDs;

bool Contains(const FontIDs& ids, std::uint32_t id) {
  return std::ranges::find(ids, id) != ids.end();
}

// Each font of the database that is not in the failed list.
void CreateFontArrayWithErrorsRemoved(const FontRecordArray& fonts, const FontIDs& failed,
                                      const FontRecordArray& outFonts) {
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    const std::uint32_t id = RecordDatabaseID(font);
    if (id != 0 && !Contains(failed, id)) outFonts->Append(font);
  }
}

void AppendFontsInList(const FontRecordArray& fonts, const FontIDs& ids,
                       const FontRecordArray& outFonts) {
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord font = fonts->DictionaryAt(i);
    const std::uint32_t id = RecordDatabaseID(font);
    if (id != 0 && Contains(ids, id)) outFonts->Append(font);
  }
}

std::uint32_t SendActivateFonts(const FontIDs& ids, FontIDs& outFailed, FontIDs& outSecond) {
  const auto count = static_cast<std::uint32_t>(ids.size());
  return SendWithRetry([&] {
    std::uint32_t failedCount = 0;
    std::uint32_t secondCount = 0;
    outFailed.assign(count, 0);
    outSecond.assign(count, 0);
    const std::uint32_t code = FacadeCall::WithInstance(
        &SkerryLoader::pfActivateFonts, count, ids.data(), 0u, 1u, 1u, 1u, count, count,
        outFailed.data(), outSecond.data(), &failedCount, &secondCount);
    outFailed.resize(std::min(failedCount, count));
    outSecond.resize(std::min(secondCount, count));
    return code;
  });
}

std::uint32_t SendPreviewActivateFonts(const FontIDs& ids) {
  return SendWithRetry([&ids] {
    return FacadeCall::WithInstance(&SkerryLoader::pfPreviewActivateFonts,
                                    static_cast<std::uint32_t>(ids.size()), ids.data(), 0u);
  });
}

std::uint32_t SendDeactivateFonts(const FontIDs& ids) {
  return SendWithRetry([&ids] {
    return FacadeCall::WithInstance(&SkerryLoader::pfDeactivateFonts,
                                    static_cast<std::uint32_t>(ids.size()), ids.data(), 0u);
  });
}

}  // namespace

// The code of the last command sent; a failed global activation is not followed by a local one.
std::uint32_t CoreAgentInterface::SendActivation(const FontIDs& ids, Activation& outcome) {
  const TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  const bool locally = tarn && tarn->GetActivateLocally();
  const bool globally = tarn && tarn->GetActivateGlobally();
  std::uint32_t code = 0;
  if (!locally || globally) code = SendActivateFonts(ids, outcome.failed, outcome.second);
  if (locally && code == 0) code = SendPreviewActivateFonts(ids);
  return code;
}

int CoreAgentInterface::ActivateFontByName(const std::string& name, long workgroupID,
                                           const std::string& documentIdentifier,
                                           std::uint32_t& outFontID) {
  const OperationTrace trace(__func__);
  outFontID = 0;
  FontIDs ids;
  FontIDsForPostScriptName(name, workgroupID, ids);
  if (ids.size() != 1) return trace.Return(0);
  outFontID = ids.front();
  const FontRecord font = MakeFontRecord();
  SetRecordNumber(font, kFP_DatabaseIDKey, outFontID);
  SetRecordNumber(font, kFP_WorkgroupIDKey, workgroupID);
  return trace.Return(ActivateFontByID(font, documentIdentifier, nullptr));
}

int CoreAgentInterface::ActivateFontByID(const FontRecord& font, const std::string&, void*) {
  const std::uint32_t id = RecordDatabaseID(font);
  if (id == 0) return kErrorGeneral;
  Activation outcome;
  return FacadeCall::ResultFromCode(SendActivation({id}, outcome));
}

int CoreAgentInterface::ActivateFontsByID(const FontRecordArray& fonts, const std::string&, void*,
                                          const FontRecordArray& outActivated,
                                          const FontRecordArray& outSecond, FontProgressCallback,
                                          void*) {
  const OperationTrace trace(__func__);
  const FontIDs ids = GetFontIDsFromFontInfoArray(fonts, false);
  if (ids.empty()) {
    OutputFormattedDebugString(
        "CoreAgentInterface::ActivateFontsByID -- empty fonts vector, doing nothing.");
    return trace.Return(0);
  }
  Activation outcome;
  const std::uint32_t code = SendActivation(ids, outcome);
  if (code == 0 && outActivated) {
    CreateFontArrayWithErrorsRemoved(fonts, outcome.failed, outActivated);
  }
  if (outSecond) AppendFontsInList(fonts, outcome.second, outSecond);
  return trace.Return(FacadeCall::ResultFromCode(code));
}

int CoreAgentInterface::DeactivateFont(const FontRecord& font, void*) {
  const std::uint32_t id = RecordDatabaseID(font);
  if (id == 0) return kErrorGeneral;
  return FacadeCall::ResultFromCode(SendDeactivateFonts({id}));
}

int CoreAgentInterface::DeactivateFonts(const FontRecordArray& fonts, void*,
                                        const FontRecordArray& outDeactivated, FontProgressCallback,
                                        void*) {
  const OperationTrace trace(__func__);
  const FontIDs ids = GetFontIDsFromFontInfoArray(fonts, false);
  if (ids.empty()) return trace.Return(0);
  const std::uint32_t code = SendDeactivateFonts(ids);
  if (code == 0 && outDeactivated) CreateFontArrayWithErrorsRemoved(fonts, {}, outDeactivated);
  return trace.Return(FacadeCall::ResultFromCode(code));
}
