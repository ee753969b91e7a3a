#include "fonts/MatchRules.h"

#include <algorithm>

#include "fonts/FontRecordOperations.h"
#include "fonts/RecordAccess.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"

namespace FaceprintSupport {
namespace {

using GStringUtils::AsciiToLowerCase;

// The keys of a perfect match, in the order in which they are compared.
constexpr const char* kComparedKeys[] = {
    kFP_KindKey,
    kFP_FamilyKey,
    kFP_PostScriptNameKey,
    kFP_FoundryKey,
    kFP_VersionKey,
    kFP_PrinterFontKey,
    kFP_Faceprint_1_2_Key,
    kFP_ChecksumKey,
    kFP_KerningChecksumKey,
    kFP_OutlineFileSizeKey,
};

// Fewer equal keys than this prove nothing.
constexpr int kKeysOfAPerfectMatch = 3;

enum class KeyResult { kNotAsked, kMatch, kMismatch };

struct XMPTypeRow {
  std::string_view xmpType;
  std::string_view kinds[2];
};

// Lower case. Kinds are compared as a whole, so a bare "OpenType" is never accepted.
constexpr XMPTypeRow kXMPTypes[] = {
    {"open type", {"opentype - ps", "opentype - tt"}}, {"truetype", {"opentype - tt", "truetype"}},
    {"type 1", {"postscript", "postscript"}},          {"type 2", {"postscript", "postscript"}},
    {"type 3", {"postscript", "postscript"}},          {"postscript", {"postscript", "postscript"}},
};

bool IsFaceprintChecksum(std::string_view key) {
  return key == kFP_Faceprint_1_2_Key || key == kFP_ChecksumKey;
}

// Both records are there and the source says more than one thing.
bool CanBeCompared(const FontRecord& source, const FontRecord& candidate) {
  if (source && candidate && source->Count() >= 2) return true;
  OutputFormattedDebugString(
      "Source font (CFDictionaryRef 0x%08x) has %d element(s), so it must not have any Faceprint "
      "data.",
      static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(source.Get())),
      static_cast<int>(source ? source->Count() : 0));
  return false;
}

// Checksums are 32-bit numbers, whatever the text holds; a zero one is not known and fits any.
bool ChecksumsMatch(const FontRecord& source, const FontRecord& candidate, const char* key) {
  const std::uint32_t a = ChecksumBits(source, key);
  const std::uint32_t b = ChecksumBits(candidate, key);
  if (a == 0 || b == 0 || a == b) return true;
  OutputFormattedDebugString("0x%08x != 0x%08x", a, b);
  return false;
}

KeyResult CompareKey(const FontRecord& source, const FontRecord& candidate, const char* key) {
  if (!source->Has(key)) return KeyResult::kNotAsked;
  if (!candidate->Has(key)) return KeyResult::kMismatch;
  const std::string* sourceText = source->GetString(key);
  const std::string* candidateText = candidate->GetString(key);
  if (sourceText == nullptr || candidateText == nullptr) return KeyResult::kMatch;
  const std::string a = GStringUtils::StripWhitespace(*sourceText);
  const std::string b = GStringUtils::StripWhitespace(*candidateText);
  if (a.empty() || b.empty()) return KeyResult::kMatch;
  if (IsFaceprintChecksum(key) || key == std::string_view(kFP_KerningChecksumKey)) {
    return ChecksumsMatch(source, candidate, key) ? KeyResult::kMatch : KeyResult::kMismatch;
  }
  if (SameIgnoringCase(a, b)) return KeyResult::kMatch;
  OutputFormattedDebugString("KeysHaveSameValueIfDefined found mismatch between '%s' and '%s'",
                             a.c_str(), b.c_str());
  return KeyResult::kMismatch;
}

void LogXMPMismatch(const char* xmpKey, const char* key) {
  OutputFormattedDebugString("Found mismatch when trying to match XMP '%s' with Kestrane '%s'",
                             xmpKey, key);
}

bool XMPTypeMatches(const FontRecord& source, const FontRecord& candidate) {
  const std::string* type = FindString(source, kAdobeXMPFontData_TypeKey);
  const std::string* kind = FindString(candidate, kFP_KindKey);
  if (type == nullptr || kind == nullptr) return false;
  const std::string wanted = AsciiToLowerCase(*type);
  const std::string offered = AsciiToLowerCase(*kind);
  return std::any_of(std::begin(kXMPTypes), std::end(kXMPTypes), [&](const XMPTypeRow& row) {
    return row.xmpType == wanted && (row.kinds[0] == offered || row.kinds[1] == offered);
  });
}

bool XMPVersionMatches(const FontRecord& source, const FontRecord& candidate) {
  const std::string* xmpVersion = FindString(source, kAdobeXMPFontData_VersionStringKey);
  const std::string* version = FindString(candidate, kFP_VersionKey);
  if (xmpVersion == nullptr || version == nullptr) return false;
  const std::string_view plain = std::string_view(*xmpVersion).substr(0, xmpVersion->find(';'));
  return plain.find(*version) != std::string_view::npos;
}

}  // namespace

bool IsPerfectMatch(const FontRecord& source, const FontRecord& candidate) {
  if (!CanBeCompared(source, candidate)) return false;
  int comparedKeys = 0;
  for (const char* key : kComparedKeys) {
    const KeyResult result = CompareKey(source, candidate, key);
    if (result != KeyResult::kNotAsked) ++comparedKeys;
    if (result == KeyResult::kMismatch) {
      OutputFormattedDebugString("Found mismatch on '%s'", key);
      return false;
    }
    const bool settled = IsFaceprintChecksum(key) && KeyHasNonZeroValue(source, key) &&
                         KeyHasNonZeroValue(candidate, key);
    if (settled) break;
  }
  if (comparedKeys < kKeysOfAPerfectMatch) {
    OutputFormattedDebugString("source document lacks enough keys for a match.");
    return false;
  }
  return true;
}

bool IsXMPMatch(const FontRecord& source, const FontRecord& candidate) {
  if (!CanBeCompared(source, candidate)) return false;
  bool matches = true;
  if (!DoValuesExistAndMatch(FindString(source, kFP_PostScriptNameKey),
                             FindString(candidate, kFP_PostScriptNameKey))) {
    OutputFormattedDebugString("Found mismatch on '%s'", kFP_PostScriptNameKey);
    matches = false;
  }
  if (!DoValuesExistAndMatch(FindString(source, kAdobeXMPFontData_FamilyKey),
                             FindString(candidate, kFP_FamilyKey))) {
    LogXMPMismatch(kAdobeXMPFontData_FamilyKey, kFP_FamilyKey);
    matches = false;
  }
  if (!XMPTypeMatches(source, candidate)) {
    LogXMPMismatch(kAdobeXMPFontData_TypeKey, kFP_KindKey);
    matches = false;
  }
  if (!XMPVersionMatches(source, candidate)) return false;
  if (matches) OutputFormattedDebugString("XMP match found.");
  return matches;
}

bool KeyValueIs(const FontRecord& record, std::string_view key, std::string_view value) {
  const std::string* text = FindString(record, key);
  return text != nullptr && SameIgnoringCase(*text, value);
}

int KeyValueStringMatch(const FontRecord& source, const FontRecord& first, const FontRecord& second,
                        std::string_view key) {
  const std::string* wanted = FindString(source, key);
  if (wanted == nullptr) return 0;
  const bool firstMatches = KeyValueIs(first, key, *wanted);
  const bool secondMatches = KeyValueIs(second, key, *wanted);
  if (firstMatches == secondMatches) return 0;
  return firstMatches ? -1 : 1;
}

bool KeyValueContains(const FontRecord& record, std::string_view key, std::string_view value) {
  const std::string* text = FindString(record, key);
  return text != nullptr && GStringUtils::StringFindNoCase(*text, value) != GStringUtils::npos;
}

bool KeyHasNonZeroValue(const FontRecord& record, std::string_view key) {
  return RecordHas(record, key) && RecordInteger(record, key) != 0;
}

bool DoValuesExistAndMatch(const std::string* a, const std::string* b) {
  return a != nullptr && b != nullptr && GStringUtils::AsciiEqualsNoCase(*a, *b);
}

bool IsPostScriptNameOnly(const FontRecord& record) {
  return record && record->Count() == 1 && record->Has(kFP_PostScriptNameKey);
}

}  // namespace FaceprintSupport
