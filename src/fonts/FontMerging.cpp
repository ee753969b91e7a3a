#include "fonts/FontMerging.h"

#include "fontmanager/FontManagerInterface.h"
#include "fonts/FontNameIndex.h"
#include "fonts/FontNames.h"
#include "fonts/FontSlugIndex.h"
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

void Replace(const FontRecordArray& fonts, std::size_t place, const FontRecord& old,
             const FontRecord& record, FontNameIndex& index) {
  index.Remove(old, place);
  index.Add(record, place);
  fonts->Set(place, record);
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
  const FontRecord merged = MergeOne(source, old, sourceEntry, static_cast<int>(*found), name);
  if (merged) Replace(destination, *found, old, merged, index);
}

}  // namespace

int MergeFaceprintDictionaryIntoArray(const FontRecordArray& fonts, const FontRecord& record) {
  FontNameIndex index(fonts);
  return MergeFaceprintDictionaryIntoArray(fonts, record, index);
}

int MergeFaceprintDictionaryIntoArray(const FontRecordArray& fonts, const FontRecord& record,
                                      FontNameIndex& index) {
  if (!fonts || !record) return kErrorBadArgument;
  const std::string* name = FindString(record, kFP_PostScriptNameKey);
  const std::optional<std::size_t> found = name ? index.Find(*name) : std::nullopt;
  if (!found) {
    index.Add(record, fonts->Count());
    fonts->Append(record);
    return static_cast<int>(fonts->Count() - 1);
  }
  const FontRecord old = fonts->DictionaryAt(*found);
  if (record->Count() > old->Count()) Replace(fonts, *found, old, record, index);
  return static_cast<int>(*found);
}

void MergeFontsIntoFontsArray(const FontRecordArray& source, const FontRecordArray& destination) {
  FontNameIndex index(destination);
  MergeFontsIntoFontsArray(source, destination, index);
}

void MergeFontsIntoFontsArray(const FontRecordArray& source, const FontRecordArray& destination,
                              FontNameIndex& index) {
  if (!source || !destination) return;
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
  const FontSlugIndex slugs(slugFonts);
  FontRecordArray result = MakeFontRecordArray();
  for (std::size_t i = 0; i < documentFonts->Count(); ++i) {
    const FontRecord record = documentFonts->DictionaryAt(i);
    const std::string* name = FindString(record, kFP_PostScriptNameKey);
    if (name == nullptr) continue;
    const FontRecord slug = slugs.Find(*name);
    result->Append(slug ? slug : record);
  }
  return result;
}

int RemoveUniqueFontsFromFontArray(const FontRecordArray& arrayToTrim,
                                   const FontRecordArray& other) {
  const FontNameIndex names(other);
  const std::size_t removed = RemoveFromBack(arrayToTrim, [&](std::size_t i) {
    const FontRecord record = arrayToTrim->DictionaryAt(i);
    const std::string* name = FindString(record, kFP_PostScriptNameKey);
    if (name != nullptr) return !names.Find(*name);
    OutputFormattedDebugString(
        "WARNING: ignoring entry %d in arrayToTrim because it does not contain a postscript name.",
        static_cast<int>(i));
    return false;
  });
  return static_cast<int>(removed);
}

bool AllFontsResolved(const FontRecordArray& fonts, const FontRecordArray& outResolved) {
  bool allResolved = true;
  const std::size_t count = CountOf(fonts);  // `outResolved` may be the same array
  for (std::size_t i = 0; i < count; ++i) {
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
