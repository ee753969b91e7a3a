#include "fonts/FontMerging.h"

#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontNameIndex.h"
#include "fonts/FontNames.h"
#include "fonts/RecordAccess.h"
#include "foundation/PluginLog.h"
#include "sdk/FontRecordKeys.h"

namespace FaceprintSupport {
namespace {

struct KeyComparison {
  bool valuesDiffer = false;
  bool sourceHasMore = false;  // keys that the destination lacks
};

bool SameValue(const PropertyList::Value& a, const PropertyList::Value& b) {
  const std::string* first = a.AsString();
  const std::string* second = b.AsString();
  if (first == nullptr || second == nullptr) return a.Equals(b);
  return SameIgnoringCase(*first, *second);
}

KeyComparison CompareKeys(const FontRecord& source, const FontRecord& destination) {
  KeyComparison result;
  for (const auto& [key, value] : source->Entries()) {
    const PropertyList::Value* other = destination->Find(key);
    if (other == nullptr) {
      result.sourceHasMore = true;
    } else if (!SameValue(value, *other)) {
      result.valuesDiffer = true;
    }
  }
  return result;
}

FontRecord Completed(const FontRecord& record, const FontRecord& from) {
  FontRecord copy = record->Copy();
  for (const auto& [key, value] : from->Entries()) {
    if (!copy->Has(key)) copy->Set(key, value);
  }
  return copy;
}

void LogIgnored(int entry, const std::string& name, bool destinationHasMore) {
  OutputFormattedDebugString(
      "Ignoring entry %d in srcFontArray (for '%s') because dstFontArray already has %s info for "
      "that font.",
      entry, name.c_str(), destinationHasMore ? "more complete" : "identical");
}

// What stands in the destination's place afterwards; null if `destination` stays.
FontRecord MergeOne(const FontRecord& source, const FontRecord& destination, int sourceEntry,
                    int destinationEntry, const std::string& name) {
  const KeyComparison keys = CompareKeys(source, destination);
  if (!keys.valuesDiffer && keys.sourceHasMore) {
    OutputFormattedDebugString(
        "Merging info from srcFontArray for entry %d in dstFontArray (for '%s').", destinationEntry,
        name.c_str());
    return Completed(destination, source);
  }
  if (keys.valuesDiffer && source->Count() > destination->Count()) {
    OutputFormattedDebugString(
        "WARNING: replacing entry %d in dstFontArray (for '%s') because srcFontArray has more "
        "complete info for that font.",
        destinationEntry, name.c_str());
    return source;
  }
  LogIgnored(sourceEntry, name, destination->Count() > source->Count());
  return nullptr;
}

void MergeEntry(const FontRecord& source, int sourceEntry, const FontRecordArray& destination,
                FontNameIndex& index) {
  const std::string name = RecordString(source, kFP_PostScriptNameKey);
  const std::optional<std::size_t> found = index.Find(name);
  if (!found) {
    OutputFormattedDebugString(
        "Appending entry %d in srcFontArray (for '%s') because dstFontArray has no such postscript "
        "name.",
        sourceEntry, name.c_str());
    index.Add(source, destination->Count());
    destination->Append(source);
    return;
  }
  const FontRecord old = destination->DictionaryAt(*found);
  FontRecord merged = MergeOne(source, old, sourceEntry, static_cast<int>(*found), name);
  if (!merged) return;
  index.Remove(old, *found);
  index.Add(merged, *found);
  destination->Set(*found, std::move(merged));
}

}  // namespace

int MergeFaceprintDictionaryIntoArray(const FontRecordArray& fonts, const FontRecord& record) {
  if (!fonts || !record) return kErrorBadArgument;
  const std::string* name = FindString(record, kFP_PostScriptNameKey);
  std::size_t index = fonts->Count();
  if (!DoesArrayContainFontWithPostScriptName(fonts, name ? name->c_str() : nullptr, &index)) {
    fonts->Append(record);
  } else if (record->Count() > fonts->DictionaryAt(index)->Count()) {
    fonts->Set(index, record);
  }
  return static_cast<int>(index);
}

void MergeFontsIntoFontsArray(const FontRecordArray& source, const FontRecordArray& destination) {
  if (!source || !destination) return;
  FontNameIndex index(destination);
  const std::size_t count = source->Count();
  for (std::size_t i = 0; i < count; ++i) {
    const FontRecord record = source->DictionaryAt(i);
    if (!record) continue;
    if (FindString(record, kFP_PostScriptNameKey) == nullptr) {
      OutputFormattedDebugString(
          "WARNING: ignoring entry %d in srcFontArray because it does not contain a postscript "
          "name.",
          static_cast<int>(i));
      continue;
    }
    MergeEntry(record, static_cast<int>(i), destination, index);
  }
}

int CountMissingFonts(const FontRecordArray& fonts) {
  int missing = 0;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord record = fonts->DictionaryAt(i);
    if (record && CountOf(record->GetArray(kFP_PossibleReplacementsKey)) == 0) ++missing;
  }
  return missing;
}

int CountActiveFonts(const FontRecordArray& fonts) {
  int active = 0;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord record = fonts->DictionaryAt(i);
    const FontRecord matched = record ? record->GetDictionary(kFP_MatchedFontKey) : nullptr;
    if (!matched) continue;
    if (RecordFlag(matched, kFP_IsActiveKey)) {
      ++active;
    } else if (const std::string* family = matched->GetString(kFP_AssignedFamilyGroupNameKey)) {
      // Only its line in the log is of use: a family is no proof that this font is active.
      static_cast<void>(FontManagerInterface::IsFontActive(*family));
    }
  }
  return active;
}

FontRecordArray CreateFaceprintSlugsWithFaceprintFontsAndDocumentFonts(
    const FontRecordArray& slugFonts, const FontRecordArray& documentFonts) {
  if (!slugFonts || !documentFonts) return nullptr;
  FontRecordArray result = MakeFontRecordArray();
  for (std::size_t i = 0; i < documentFonts->Count(); ++i) {
    const FontRecord record = documentFonts->DictionaryAt(i);
    const std::string* name = FindString(record, kFP_PostScriptNameKey);
    if (name == nullptr) continue;
    const FontRecord slug =
        GetFaceprintDictionaryFromArrayWithPostscriptName(slugFonts, name->c_str());
    result->Append(slug ? slug : record);
  }
  return result;
}

int RemoveUniqueFontsFromFontArray(const FontRecordArray& arrayToTrim,
                                   const FontRecordArray& other) {
  int removed = 0;
  for (std::size_t i = CountOf(arrayToTrim); i-- > 0;) {
    const FontRecord record = arrayToTrim->DictionaryAt(i);
    const std::string* name = FindString(record, kFP_PostScriptNameKey);
    if (name == nullptr) {
      OutputFormattedDebugString(
          "WARNING: ignoring entry %d in arrayToTrim because it does not contain a postscript "
          "name.",
          static_cast<int>(i));
    } else if (!DoesArrayContainFontWithPostScriptName(other, name->c_str())) {
      arrayToTrim->Remove(i);
      ++removed;
    }
  }
  return removed;
}

bool AllFontsResolved(const FontRecordArray& fonts, const FontRecordArray& outResolved) {
  bool allResolved = true;
  for (std::size_t i = 0; i < CountOf(fonts); ++i) {
    const FontRecord record = fonts->DictionaryAt(i);
    if (!record) continue;
    if (record->Has(kFP_MatchedFontKey)) {
      if (outResolved) outResolved->Append(record);
    } else {
      OutputFormattedDebugString(
          "This font was skipped:  '%s' -- host app's Find Fonts dialog will be displayed",
          RecordString(record, kFP_PostScriptNameKey).c_str());
      allResolved = false;
    }
  }
  return allResolved;
}

}  // namespace FaceprintSupport
