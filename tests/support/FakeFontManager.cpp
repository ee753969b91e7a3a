#include "support/FakeFontManager.h"

#include <cstring>
#include <stdexcept>

#include "fonts/FontRecordOperations.h"
#include "support/FontRecords.h"

FakeFontManager::Font& FakeFontManager::Add(
    std::uint32_t id, const std::string& name,
    std::initializer_list<std::pair<const char*, const char*>> entries, std::uint16_t state) {
  FontRecord info = FaceprintSupport::CreateFaceprintDictionary(name.c_str());
  SetRecordNumber(info, kFP_DatabaseIDKey, id);
  for (const auto& [key, value] : entries) info->Set(key, value);
  return fonts.emplace_back(Font{id, state, info, {}});
}

FakeFontManager::Font* FakeFontManager::Find(std::uint32_t id) {
  for (Font& font : fonts) {
    if (font.id == id) return &font;
  }
  return nullptr;
}

void FakeFontManager::FailAt(const std::string& operation, int nth, int code) {
  mFailures[{operation, nth}] = code;
}

int FakeFontManager::CountOfCalls(const std::string& operation) const {
  const auto found = mCounts.find(operation);
  return found == mCounts.end() ? 0 : found->second;
}

std::vector<std::string> FakeFontManager::CallsOf(const std::string& operation) const {
  std::vector<std::string> result;
  for (const std::string& call : calls) {
    if (call.starts_with(operation + "(")) result.push_back(call);
  }
  return result;
}

std::string FakeFontManager::NamesAsked() const {
  std::string names;
  for (const std::string& call : CallsOf("CountNamedFonts")) {
    const std::size_t start = call.find('(') + 1;
    names += (names.empty() ? "" : ", ") + call.substr(start, call.size() - start - 1);
  }
  return names;
}

int FakeFontManager::Call(const std::string& operation, const std::string& arguments) {
  calls.push_back(operation + "(" + arguments + ")");
  return Count(operation, calls.back());
}

bool FakeFontManager::Ask(const std::string& operation, bool answer) {
  return Count(operation, operation) == 0 && answer;
}

int FakeFontManager::Count(const std::string& operation, const std::string& call) {
  const int nth = ++mCounts[operation];
  if (mFailures.empty()) return 0;
  for (const auto& key : {std::pair(operation, nth), {operation, 0}, {call, 0}}) {
    const auto failure = mFailures.find(key);
    if (failure == mFailures.end()) continue;
    if (failure->second == kThrow) throw std::runtime_error(operation);
    return failure->second;
  }
  return 0;
}

std::vector<const FakeFontManager::Font*> FakeFontManager::Named(const std::string& name,
                                                                 TypeOfFontName type) const {
  std::vector<const Font*> named;
  for (const Font& font : fonts) {
    const char* key = type == kFamilyFontName ? kFP_FamilyKey : kFP_PostScriptNameKey;
    if (RecordString(font.info, key) == name) named.push_back(&font);
  }
  return named;
}

int FakeFontManager::FontIDsForPostScriptName(const std::string& name, long, FontIDs& outIDs) {
  if (const int code = Call("FontIDsForPostScriptName", name)) return code;
  for (const Font* font : Named(name, kPostScriptFontName)) outIDs.push_back(font->id);
  return 0;
}

int FakeFontManager::FontIDsForFamilyName(const std::string& name, long, FontIDs& outIDs) {
  if (const int code = Call("FontIDsForFamilyName", name)) return code;
  for (const Font* font : Named(name, kFamilyFontName)) outIDs.push_back(font->id);
  return 0;
}

std::map<std::uint32_t, bool> FakeFontManager::GetClientFontActivationStates(const FontIDs& ids) {
  if (Call("GetClientFontActivationStates", std::to_string(ids.size())) != 0) return {};
  return clientStates;
}

std::map<std::uint32_t, bool> FakeFontManager::GetFontIsActivated(const FontRecordArray& asked) {
  if (Call("GetFontIsActivated", IDsOf(asked)) != 0) return {};
  std::map<std::uint32_t, bool> states;
  for (const Font& font : fonts) states[font.id] = font.state >= kActivationStateActive;
  return states;
}

int FakeFontManager::ActivateFontByID(const FontRecord& font, const std::string&, void*) {
  return Call("ActivateFontByID", std::to_string(RecordDatabaseID(font)));
}

int FakeFontManager::ActivateFontsByID(const FontRecordArray& asked, const std::string&, void*,
                                       const FontRecordArray& outActivated,
                                       const FontRecordArray& outSecond,
                                       FontProgressCallback progress, void* progressContext) {
  if (const int code = Call("ActivateFontsByID", IDsOf(asked))) return code;
  const int total = static_cast<int>(asked->Count());
  for (int i = 0; i < total; ++i) {
    const FontRecord font = asked->DictionaryAt(static_cast<std::size_t>(i));
    const std::uint32_t id = RecordDatabaseID(font);
    if (progress)
      progress(i + 1, total, RecordString(font, kFP_PostScriptNameKey), progressContext);
    if (refused.contains(id)) {
      if (outSecond) outSecond->Append(font);
    } else if (!unable.contains(id) && Find(id) != nullptr) {
      Find(id)->state = kActivationStateActive;
      if (outActivated) outActivated->Append(font);
    }
  }
  return 0;
}

int FakeFontManager::DeactivateFont(const FontRecord& font, void*) {
  const std::uint32_t id = RecordDatabaseID(font);
  if (const int code = Call("DeactivateFont", std::to_string(id))) return code;
  if (Find(id) != nullptr) Find(id)->state = kActivationStateInactive;
  return 0;
}

int FakeFontManager::DeactivateFonts(const FontRecordArray& asked, void*,
                                     const FontRecordArray& outDeactivated, FontProgressCallback,
                                     void*) {
  if (const int code = Call("DeactivateFonts", IDsOf(asked))) return code;
  for (std::size_t i = 0; i < asked->Count(); ++i) {
    const FontRecord font = asked->DictionaryAt(i);
    if (Font* known = Find(RecordDatabaseID(font))) known->state = kActivationStateInactive;
    if (outDeactivated) outDeactivated->Append(font);
  }
  return 0;
}

void FakeFontManager::BeginOpeningFontsForDocument(const std::string& document) {
  Call("BeginOpening", document);
}

void FakeFontManager::FinishOpeningFontsForDocument(const std::string& document) {
  Call("FinishOpening", document);
}

void FakeFontManager::FinishClosingFontsForDocument(const std::string& document, bool allClosed) {
  Call("FinishClosing", document + (allClosed ? ",all" : ",some"));
}

int FakeFontManager::CountNamedFonts(const std::string& name, TypeOfFontName type, long,
                                     long& outCount, const std::string&) {
  if (const int code = Call("CountNamedFonts", (type == kFamilyFontName ? "F:" : "P:") + name)) {
    return code;
  }
  outCount = countOfNamed.value_or(static_cast<long>(Named(name, type).size()));
  return 0;
}

int FakeFontManager::GetNamedFontInfo(const std::string& name, TypeOfFontName type, long,
                                      long index, const std::string&, FontOrSetInfoRec& outRec) {
  if (const int code = Call("GetNamedFontInfo", name)) return code;
  const std::vector<const Font*> named = Named(name, type);
  if (index < 1 || static_cast<std::size_t>(index) > named.size()) return kErrorGeneral;
  const Font* font = named[static_cast<std::size_t>(index - 1)];
  outRec = {1, font->id, font->state, font->info};
  return 0;
}

int FakeFontManager::GetPostscriptNameByID(std::string& outName, long, std::uint32_t fontID) {
  if (const int code = Call("GetPostscriptNameByID", std::to_string(fontID))) return code;
  if (Find(fontID) == nullptr) return kErrorGeneral;
  outName = RecordString(Find(fontID)->info, kFP_PostScriptNameKey);
  return 0;
}

int FakeFontManager::GetFaceprintInfo(std::uint32_t databaseID, const FontRecord& font,
                                      char* buffer, std::size_t& ioSize) {
  if (const int code = Call("GetFaceprintInfo", std::to_string(databaseID))) return code;
  std::string text = Find(databaseID) != nullptr ? Find(databaseID)->slug : "";
  if (text.empty()) {
    const FontRecordArray slug = MakeFontRecordArray();
    slug->Append(font);
    FaceprintSupport::CreateXMLFaceprintSlug(slug, &text);
  }
  // A text that doesn't fit is no text.
  const bool fits = text.size() < ioSize;
  if (fits) std::memcpy(buffer, text.c_str(), text.size() + 1);
  ioSize = fits ? text.size() : 0;
  return 0;
}

int FakeFontManager::FindFontsInSameFamilyForActivation(const FontRecord& font,
                                                        const FontRecordArray&, long,
                                                        const FontRecordArray& outFonts) {
  const std::string family = RecordString(font, kFP_AssignedFamilyGroupNameKey);
  if (const int code = Call("FindFontsInSameFamilyForActivation", family)) return code;
  for (const Font& other : fonts) {
    if (RecordString(other.info, kFP_AssignedFamilyGroupNameKey) == family) {
      outFonts->Append(other.info);
    }
  }
  return 0;
}

int FakeFontManager::GetAllWorkgroupsForUser(PropertyList::ArrayRef& outWorkgroups,
                                             bool addAllWorkgroupsEntry,
                                             bool includeSpecialWorkgroups,
                                             bool includeTypekitWorkgroup) {
  std::string flags;
  if (addAllWorkgroupsEntry) flags += "all,";
  if (includeSpecialWorkgroups) flags += "special,";
  if (includeTypekitWorkgroup) flags += "typekit,";
  if (const int code = Call("GetAllWorkgroupsForUser", flags)) return code;
  outWorkgroups = PropertyList::Array::Create();
  for (const auto& [id, name] : workgroups) {
    if (specialWorkgroupIDs.contains(id) && !includeSpecialWorkgroups) continue;
    const FontRecord workgroup = MakeFontRecord();
    workgroup->Set(kFP_WorkgroupIDKey, id);
    workgroup->Set(kFP_WorkgroupNameKey, name);
    outWorkgroups->Append(workgroup);
  }
  return 0;
}

int FakeFontManager::RemoveRemoteFonts(const FontRecordArray& candidates) {
  if (const int code = Call("RemoveRemoteFonts", "")) return code;
  for (std::size_t i = candidates->Count(); i-- > 0;) {
    const FontRecord candidate = candidates->DictionaryAt(i);
    if (remoteWorkgroupIDs.contains(RecordString(candidate, kFP_WorkgroupIDKey))) {
      candidates->Remove(i);
    }
  }
  return 0;
}

void FakeFontManager::SetCountForLongOperations(int count) {
  Call("SetCountForLongOperations", std::to_string(count));
}
