#include "fonts/FontNames.h"

#include <algorithm>
#include <cstring>

#include "fonts/RecordAccess.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace FaceprintSupport {
namespace {

bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }
bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Walks the normal form of a name without building it.
class NormalisedName {
 public:
  NormalisedName(std::string_view text, bool strict) : mText(text), mStrict(strict) {}

  // The next kept character, 0 at the end.
  char Next() {
    while (mPosition < mText.size()) {
      const char c = mText[mPosition++];
      if (IsAsciiLetter(c) || IsAsciiDigit(c)) return c;
      if (mStrict && c == '#') {
        while (mPosition < mText.size() && IsAsciiDigit(mText[mPosition])) ++mPosition;
      }
      if (mStrict && c == '-' && ++mHyphens == 2) mPosition = mText.size();
    }
    return '\0';
  }

 private:
  std::string_view mText;
  bool mStrict;
  std::size_t mPosition = 0;
  int mHyphens = 0;
};

bool SameNormalForm(std::string_view a, std::string_view b, bool strict) {
  NormalisedName first(a, strict);
  NormalisedName second(b, strict);
  for (;;) {
    const char c = first.Next();
    if (c != second.Next()) return false;
    if (c == '\0') return true;
  }
}

// The index of the first record whose name fulfils `matches`.
template <typename Predicate>
std::optional<std::size_t> FindName(const FontRecordArray& fonts, Predicate matches) {
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    const PropertyList::Dictionary* record = fonts->At(i).AsDictionary();
    const std::string* name = record ? record->GetString(kFP_PostScriptNameKey) : nullptr;
    if (name != nullptr && matches(*name)) return i;
  }
  return std::nullopt;
}

bool IsInstanceOf(std::string_view asked, std::string_view baseName) {
  return asked.size() > baseName.size() && asked[baseName.size()] == '_' &&
         asked.starts_with(baseName);
}

void StoreIndex(std::size_t* out, std::size_t index) {
  if (out != nullptr) *out = index;
}

// Where the shorter form of a decorated name begins and ends.
std::optional<std::string_view> WithoutCruft(std::string_view name) {
  if (name.front() == '+' || name.front() == ' ') return name.substr(1);
  const std::size_t stop = name.find_first_of(" -_+");
  if (stop != std::string_view::npos && name[stop] == '+') return name.substr(stop + 1);
  const std::size_t cut = name.find_last_of(" ()-_");
  if (cut == std::string_view::npos || cut == 0) return std::nullopt;
  return name.substr(0, cut);
}

}  // namespace

std::string GFontToolUtils_StripCharsAndNormalizeString(const std::string& text, bool strict) {
  std::string result;
  NormalisedName name(text, strict);
  while (const char c = name.Next()) result.push_back(c);
  return result;
}

std::string StripIllegalPostScriptCharacters(const std::string& name) {
  return GFontToolUtils_StripCharsAndNormalizeString(name, true);
}

bool PSNameMightHaveCruftAppended(const char* name, std::size_t size, char* out) {
  if (name == nullptr || out == nullptr || size == 0 || *name == '\0') return false;
  const std::optional<std::string_view> shorter = WithoutCruft(name);
  if (!shorter) return false;
  const std::size_t length = std::min(shorter->size(), size - 1);
  std::memmove(out, shorter->data(), length);
  out[length] = '\0';
  return true;
}

std::optional<std::string> CreateResolvedMMFontName(const std::optional<std::string>& name) {
  if (!name || name->size() < 3) return std::nullopt;
  bool markerSeen = false;
  for (std::size_t i = 0; i + 2 < name->size(); ++i) {
    if (markerSeen && (*name)[i] == '_') return name->substr(0, i);
    if (name->compare(i, 3, "MM_") == 0 || name->compare(i, 3, "MM-") == 0) markerSeen = true;
  }
  OutputFormattedDebugString(
      "FaceprintSupport::CreateResolvedMMFontName.  Not a Multiple Master font name.");
  return std::nullopt;
}

void ResolveMMFontString(std::string& name) {
  if (std::optional<std::string> resolved = CreateResolvedMMFontName(name)) {
    name = std::move(*resolved);
  }
}

void ResolveDictionaryMMFontName(const FontRecord& record) {
  const std::string* name = FindString(record, kFP_PostScriptNameKey);
  if (name == nullptr) return;
  if (std::optional<std::string> resolved = CreateResolvedMMFontName(*name)) {
    record->Set(kFP_PostScriptNameKey, std::move(*resolved));
  }
}

bool DoesArrayContainFontWithPostScriptName(const FontRecordArray& fonts, const char* name,
                                            std::size_t* outIndex) {
  if (!fonts || name == nullptr) return false;
  const std::string_view asked = name;
  // Names equal after a weaker form were found by the pass before, so each pass tests its own form.
  std::optional<std::size_t> index =
      FindName(fonts, [&](const std::string& entry) { return entry == asked; });
  for (const bool strict : {false, true}) {
    if (index) break;
    index = FindName(
        fonts, [&](const std::string& entry) { return SameNormalForm(entry, asked, strict); });
  }
  if (index) StoreIndex(outIndex, *index);
  return index.has_value();
}

bool DoesArrayContainFontWithDatabaseID(const FontRecordArray& fonts, std::uint32_t id,
                                        std::size_t* outIndex) {
  if (!fonts || id == 0) return false;
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    const FontRecord record = fonts->DictionaryAt(i);
    if (record && RecordDatabaseID(record) == id) {
      StoreIndex(outIndex, i);
      return true;
    }
  }
  return false;
}

bool IsMultipleMaster(const FontRecord& record) {
  const std::string* kind = FindString(record, kFP_KindKey);
  return kind != nullptr &&
         (*kind == kFP_Kind_PostscriptMM || *kind == kFP_Kind_PostscriptMultipleMaster);
}

void TellOfMultipleMasterBase(const std::string& baseName, const std::string& name) {
  OutputFormattedDebugString(
      "...Special case for MM:  matching Faceprint data for PS name \"%s\" to PS name \"%s\"",
      baseName.c_str(), name.c_str());
}

FontRecord GetFaceprintDictionaryFromArrayWithPostscriptName(const FontRecordArray& fonts,
                                                             const char* name,
                                                             std::size_t* outIndex) {
  if (!fonts || name == nullptr) return nullptr;
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    FontRecord record = fonts->DictionaryAt(i);
    const std::string* entryName = FindString(record, kFP_PostScriptNameKey);
    if (entryName == nullptr) continue;
    const bool isInstance = IsInstanceOf(name, *entryName) && IsMultipleMaster(record);
    if (isInstance) TellOfMultipleMasterBase(*entryName, name);
    if (isInstance || *entryName == name) {
      StoreIndex(outIndex, i);
      return record;
    }
  }
  return nullptr;
}

}  // namespace FaceprintSupport
