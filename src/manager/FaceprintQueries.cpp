// From a document font to the font manager's candidates for it.
#include <algorithm>
#include <cstring>

#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontNames.h"
#include "fonts/MatchRules.h"
#include "foundation/PluginLog.h"
#include "propertylist/StringConversion.h"
#include "propertylist/XmlForm.h"
#include "sdk/FontRecordKeys.h"

namespace {

// A name is looked up only if it fits with its terminator.
constexpr std::size_t kNameBufferSize = 128;
// No font manager has as many versions of one name.
constexpr long kMaxNamedFonts = 65536;
// The text form of one record; a longer one is passed over.
constexpr std::size_t kSlugBufferSize = 65536;
// Of a text that can't be read, in the log.
constexpr std::size_t kShownOfSlug = 200;

// The one record of a slug; null if the text is no slug.
FontRecord DecodeSlug(std::string_view text) {
  const auto value = PropertyList::ReadXml(text);
  const PropertyList::Array* records = value ? value->AsArray() : nullptr;
  return records ? records->DictionaryAt(0) : nullptr;
}

void WriteDatabaseState(const FontRecord& record,
                        const FontManagerInterface::FontOrSetInfoRec& rec) {
  const bool isTemporary = rec.activationState == kActivationStateTemporary;
  const bool isActive = IsActiveState(rec.activationState);
  SetRecordNumber(record, kFP_DatabaseIDKey, rec.databaseID);
  SetRecordNumber(record, kFP_IsTempKey, isTemporary ? 1 : 0);
  SetRecordNumber(record, kFP_IsActiveKey, isActive ? 1 : 0);
  SetRecordNumber(record, kFP_ActivationStateKey, rec.activationState);
}

// The query's code as its callers see it.
int AsShort(int code) { return static_cast<std::int16_t>(code); }

bool EndsLadder(int error, const FontRecordArray& candidates) {
  return error == kErrorKestraneNotRunning || (error == 0 && CountOf(candidates) > 0);
}

}  // namespace

int FontManagerInterface::GetFaceprintData(const FontRecord& sourceFont, int nameType,
                                           bool* outExcludedRemote, long workgroupID,
                                           FontRecordArray& ioCandidates) {
  const OperationTrace trace(__func__);
  if (nameType != kPostScriptFontName && nameType != kFamilyFontName)
    return trace.Return(kErrorGeneral);
  const char* key = nameType == kFamilyFontName ? kFP_FamilyKey : kFP_PostScriptNameKey;
  const std::string* found = sourceFont ? sourceFont->GetString(key) : nullptr;
  if (!found || !ioCandidates) return trace.Return(kErrorGeneral);

  const std::string name = *found;
  int error = kErrorGeneral;
  if (name.size() < kNameBufferSize) {
    error = ClimbNameLadder(name, static_cast<TypeOfFontName>(nameType), outExcludedRemote,
                            workgroupID, ioCandidates);
  }
  if (CountOf(ioCandidates) > 1) {
    OutputFormattedDebugString("...Sorting a %d-element array of Faceprint data for '%s'.",
                               static_cast<int>(CountOf(ioCandidates)), name.c_str());
    FaceprintSupport::SortByBestMatch(ioCandidates, sourceFont);
  }
  return trace.Return(error);
}

int FontManagerInterface::ClimbNameLadder(const std::string& name, TypeOfFontName nameType,
                                          bool* outExcludedRemote, long workgroupID,
                                          FontRecordArray& ioCandidates) {
  int error =
      GetFaceprintDataForFontName(name, nameType, outExcludedRemote, workgroupID, ioCandidates);
  if (error != 0 || CountOf(ioCandidates) > 0) return error;
  error = GetFaceprintDataForFontName(FaceprintSupport::StripIllegalPostScriptCharacters(name),
                                      nameType, outExcludedRemote, workgroupID, ioCandidates);
  if (error != 0 || CountOf(ioCandidates) > 0) return error;
  return AskShortenedNames(name, outExcludedRemote, workgroupID, ioCandidates);
}

// Peels a decorated name apart; each rest is asked as PostScript name, as family name, and as
// family name with blanks for hyphens. `name` fits the buffer.
int FontManagerInterface::AskShortenedNames(const std::string& name, bool* outExcludedRemote,
                                            long workgroupID, FontRecordArray& ioCandidates) {
  char shortened[kNameBufferSize] = {};
  name.copy(shortened, sizeof shortened - 1);
  int error = 0;
  while (FaceprintSupport::PSNameMightHaveCruftAppended(shortened, sizeof shortened, shortened)) {
    const std::string rest = shortened;
    const std::pair<std::string, TypeOfFontName> questions[] = {
        {rest, kPostScriptFontName},
        {rest, kFamilyFontName},
        {replaceAll(rest, "-", " "), kFamilyFontName}};
    for (const auto& [question, type] : questions) {
      error =
          GetFaceprintDataForFontName(question, type, outExcludedRemote, workgroupID, ioCandidates);
      if (EndsLadder(error, ioCandidates)) return error;
    }
  }
  return error;
}

int FontManagerInterface::GetFaceprintDataForFontName(const std::optional<std::string>& name,
                                                      TypeOfFontName nameType,
                                                      bool* outExcludedRemote, long workgroupID,
                                                      FontRecordArray& outCandidates) {
  const OperationTrace trace(__func__);
  if (!name || !outCandidates) return trace.Return(kErrorBadArgument);
  long count = 0;
  int error = CountNamedFonts(*name, nameType, workgroupID, count, std::string());
  if (error != 0 || count == 0) return trace.Return(AsShort(error));
  if (count < 0) return trace.Return(0);
  count = std::min(count, kMaxNamedFonts);

  FontRecordArray candidates;
  std::vector<char> buffer(kSlugBufferSize);
  for (long index = 1; index <= count && error != kErrorKestraneNotRunning; ++index) {
    FontOrSetInfoRec rec;
    error = GetNamedFontInfo(*name, nameType, workgroupID, index, std::string(), rec);
    if (error != 0) continue;
    const FontRecord record = ReadCandidate(*name, rec, buffer, error);
    if (!record) continue;
    if (IsRemoteWorkgroupTypeDisabled(
            static_cast<long>(RecordInteger(record, kFP_WorkgroupTypeKey)))) {
      if (outExcludedRemote) *outExcludedRemote = true;
      OutputFormattedDebugString(
          "Excluding version with checksum %d because it's remote and we're running standalone.",
          static_cast<int>(RecordInteger(record, kFP_Faceprint_1_2_Key)));
      continue;
    }
    WriteDatabaseState(record, rec);
    if (!candidates) candidates = MakeFontRecordArray();
    candidates->Append(record);
  }
  if (candidates) outCandidates = candidates;
  EndGetFaceprintInfo(*name);
  return trace.Return(AsShort(error));
}

// One record by way of its text form, so that the caller owns what it gets. Null if there is none.
FontRecord FontManagerInterface::ReadCandidate(const std::string& name, const FontOrSetInfoRec& rec,
                                               std::vector<char>& buffer, int& outError) {
  std::size_t size = buffer.size();
  std::fill(buffer.begin(), buffer.end(), '\0');
  const int databaseID = static_cast<int>(rec.databaseID);
  outError = GetFaceprintInfo(rec.databaseID, rec.info, buffer.data(), size);
  if (outError != 0) {
    OutputFormattedDebugString("...GetFaceprintInfo returned %d for %s (databaseID %d).", outError,
                               name.c_str(), databaseID);
    if (outError == kErrorKestraneNotRunning) return nullptr;
  }
  if (size == 0 || buffer[0] == '\0') {
    OutputFormattedDebugString(
        "...GetFaceprintInfo returned %d but no Faceprint info for %s (databaseID %d).", outError,
        name.c_str(), databaseID);
    return nullptr;
  }
  if (size > buffer.size()) {
    OutputFormattedDebugString("...CFDataCreate could not deal with \"%s\".", name.c_str());
    return nullptr;
  }
  const std::string_view text(buffer.data(), strnlen(buffer.data(), size));
  FontRecord record = DecodeSlug(text);
  if (!record) {
    OutputFormattedDebugString(
        "...CFPropertyListCreateFromXMLData failed on \"%.*s\".  OS message is:\n   \"%s\"",
        static_cast<int>(std::min(text.size(), kShownOfSlug)), text.data(),
        "The text is no list of font records.");
  }
  return record;
}
