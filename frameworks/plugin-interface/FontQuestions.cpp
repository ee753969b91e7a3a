// Questions about fonts, answered from the database.
#include <unistd.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "frameworks/plugin-interface/EntryPoint.h"
#include "frameworks/plugin-interface/Facade.h"
#include "frameworks/plugin-interface/FontRecords.h"
#include "sdk/FontRecordKeys.h"

namespace {

using Nodrix::LibraryReader;
using FindByName = std::vector<std::uint32_t> (LibraryReader::*)(std::string_view,
                                                                 std::span<const std::uint32_t>);

std::uint32_t FindFonts(PluginFacadeInstance instance, FindByName find, const char* name,
                        std::span<const std::uint32_t> workgroups, std::uint32_t* outIDs,
                        std::uint32_t capacity, std::uint32_t* outCount) {
  if (outCount != nullptr) *outCount = 0;
  if (instance == nullptr || name == nullptr || outCount == nullptr ||
      IsListBroken(outIDs, capacity)) {
    return CoreErrorCodes::kNullPointer;
  }
  LibraryReader* const reader = instance->Reader();
  if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
  const auto found = (reader->*find)(name, workgroups);
  const std::size_t filled = std::min<std::size_t>(found.size(), capacity);
  std::copy_n(found.begin(), filled, outIDs);
  *outCount = static_cast<std::uint32_t>(filled);
  return CoreErrorCodes::kSuccess;
}

// Faces of the system belong to everybody, so an ID of one is known whatever workgroup is asked.
bool IsWithin(const Nodrix::FontRow& row, std::span<const std::uint32_t> workgroups) {
  if (workgroups.empty() || row.workgroupType == kWorkgroupType_System) return true;
  return std::any_of(workgroups.begin(), workgroups.end(), [&](std::uint32_t id) {
    return Nodrix::IsEveryWorkgroup(id) || id == row.workgroupID;
  });
}

std::uint32_t FindRecord(PluginFacade& facade, std::span<const std::uint32_t> workgroups,
                         std::uint32_t id, PLDictionaryRef* outRecord) {
  LibraryReader* const reader = facade.Reader();
  if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
  const auto row = id == 0 ? std::nullopt : facade.Font(*reader, id);
  if (!row || !IsWithin(*row, workgroups)) return CoreErrorCodes::kNotFound;
  *outRecord = RecordOfRow(*row).Detach();
  return CoreErrorCodes::kSuccess;
}

// The family of a record, by its ID or by the family of its database font. 0 for none.
std::uint32_t FamilyOf(LibraryReader& reader, const FontRecord& font) {
  if (RecordHas(font, kFP_AssignedFamilyGroupIDKey)) {
    const std::int64_t family = RecordInteger(font, kFP_AssignedFamilyGroupIDKey);
    return std::in_range<std::uint32_t>(family) ? static_cast<std::uint32_t>(family) : 0;
  }
  const auto row = reader.FontByID(RecordDatabaseID(font));
  return row ? row->familyID : 0;
}

std::uint32_t FindFamily(PluginFacade& facade, PLDictionaryRef font,
                         std::span<const std::uint32_t> workgroups, PLArrayRef* outFonts) {
  LibraryReader* const reader = facade.Reader();
  if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
  const std::uint32_t family = FamilyOf(*reader, PropertyList::FromHandle(font));
  FontRecordArray fonts = MakeFontRecordArray();
  if (family != 0) {
    for (const std::uint32_t id : reader->FontsOfFamily(family, workgroups)) {
      const auto row = facade.Font(*reader, id);
      if (row) fonts->Append(RecordOfRow(*row));
    }
  }
  *outFonts = fonts.Detach();
  return CoreErrorCodes::kSuccess;
}

// One value for each ID of a list; all are 0 unless the answer is success.
template <typename T, typename Question>
std::uint32_t AskForEach(PluginFacadeInstance instance, std::uint32_t count,
                         const std::uint32_t* fontIDs, T* out, Question question) {
  if (out != nullptr) std::fill_n(out, count, T{0});
  if (instance == nullptr || IsListBroken(fontIDs, count) || (out == nullptr && count != 0)) {
    return CoreErrorCodes::kNullPointer;
  }
  LibraryReader* const reader = instance->Reader();
  if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
  std::transform(fontIDs, fontIDs + count, out,
                 [&](std::uint32_t id) { return static_cast<T>(question(*reader, id)); });
  return CoreErrorCodes::kSuccess;
}

bool CanExport(LibraryReader& reader, std::uint32_t id) {
  const auto row = reader.FontByID(id);
  return row && row->workgroupType != kWorkgroupType_System;
}

}  // namespace

uint32_t GetFontsByPostscriptName(PluginFacadeInstance instance, const char* name,
                                  const uint32_t* workgroupIDs, uint32_t workgroupCount,
                                  uint32_t* outIDs, uint32_t capacity, uint32_t* outCount) {
  return Answer([&] {
    return FindFonts(instance, &LibraryReader::FontsByPostScriptName, name,
                     ListIn(workgroupIDs, workgroupCount), outIDs, capacity, outCount);
  });
}

uint32_t GetFontsByFamilyName(PluginFacadeInstance instance, const char* name,
                              const uint32_t* workgroupIDs, uint32_t workgroupCount,
                              uint32_t* outIDs, uint32_t capacity, uint32_t* outCount) {
  return Answer([&] {
    return FindFonts(instance, &LibraryReader::FontsByFamilyName, name,
                     ListIn(workgroupIDs, workgroupCount), outIDs, capacity, outCount);
  });
}

uint32_t GetFontInfoByID(PluginFacadeInstance instance, const uint32_t* workgroupIDs,
                         uint32_t workgroupCount, PLDictionaryRef font, uint32_t* ioFontID,
                         PLDictionaryRef* outRecord) {
  return Answer([&]() -> std::uint32_t {
    if (outRecord != nullptr) *outRecord = nullptr;
    if (instance == nullptr || outRecord == nullptr) return CoreErrorCodes::kNullPointer;
    std::uint32_t id = ioFontID != nullptr ? *ioFontID : 0;
    if (id == 0) id = RecordDatabaseID(PropertyList::FromHandle(font));
    if (ioFontID != nullptr) *ioFontID = id;
    return FindRecord(*instance, ListIn(workgroupIDs, workgroupCount), id, outRecord);
  });
}

uint32_t FindFontsInSameFamilyForActivation(PLDictionaryRef font, const uint32_t* workgroupIDs,
                                            uint32_t workgroupCount, PLArrayRef* outFonts) {
  return Answer([&]() -> std::uint32_t {
    if (outFonts != nullptr) *outFonts = nullptr;
    if (font == nullptr || outFonts == nullptr) return CoreErrorCodes::kNullPointer;
    return FindFamily(PluginFacade::Instance(), font, ListIn(workgroupIDs, workgroupCount),
                      outFonts);
  });
}

uint32_t GetFontIsActivated(PluginFacadeInstance instance, uint32_t count, const uint32_t* fontIDs,
                            int32_t* outStates) {
  return Answer([&] {
    return AskForEach(instance, count, fontIDs, outStates,
                      [](LibraryReader& reader, std::uint32_t id) {
                        return reader.RawActivationState(id, 0) != kRawActivationState_Inactive;
                      });
  });
}

uint32_t GetClientFontActivationStates(uint32_t count, const uint32_t* fontIDs,
                                       int32_t* outStates) {
  return Answer([&] {
    return AskForEach(&PluginFacade::Instance(), count, fontIDs, outStates,
                      [client = getpid()](LibraryReader& reader, std::uint32_t id) {
                        const std::uint32_t state = reader.RawActivationState(id, client);
                        return state == kRawActivationState_Auto ||
                               state == kRawActivationState_AutoOther;
                      });
  });
}

uint32_t GetFontConflicts(PluginFacadeInstance instance, uint32_t count, const uint32_t* fontIDs,
                          uint32_t* outConflicts) {
  return Answer([&] {
    return AskForEach(
        instance, count, fontIDs, outConflicts,
        [](LibraryReader& reader, std::uint32_t id) { return reader.ConflictingFont(id); });
  });
}

uint32_t CanExportFonts(PluginFacadeInstance instance, uint32_t count, const uint32_t* fontIDs,
                        int32_t* outCan) {
  return Answer([&]() -> std::uint32_t {
    if (outCan != nullptr) *outCan = 0;
    if (instance == nullptr || outCan == nullptr || IsListBroken(fontIDs, count)) {
      return CoreErrorCodes::kNullPointer;
    }
    LibraryReader* const reader = instance->Reader();
    if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
    const auto fonts = ListIn(fontIDs, count);
    *outCan = std::all_of(fonts.begin(), fonts.end(),
                          [&](std::uint32_t id) { return CanExport(*reader, id); });
    return CoreErrorCodes::kSuccess;
  });
}
