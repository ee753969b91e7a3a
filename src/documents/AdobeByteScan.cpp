#include "documents/AdobeByteScan.h"

#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>

#include "documents/FontNameScanner.h"
#include "fonts/FontNameIndex.h"
#include "fonts/FontRecordOperations.h"
#include "foundation/GString.h"
#include "foundation/GStringUtils.h"
#include "foundation/PluginLog.h"

namespace {

bool sReplaceSubstitutes = false;

// A file can hold millions of matches that do not count; a log of the first ones is enough.
constexpr int kMaxIgnoredMatchesLogged = 100;

class LoggingListener final : public FontNameListener {
 public:
  // `function` is lent.
  explicit LoggingListener(const char* function) : mFunction(function) {}

  void NameFound(const std::string& name) override {
    OutputFormattedDebugString("In %s(), adding '%s'", mFunction, name.c_str());
  }
  void MatchIgnored(std::uint64_t offset, char previous) override {
    if (mIgnoredMatches++ >= kMaxIgnoredMatchesLogged) return;
    OutputFormattedDebugString("Ignoring match at offset %d because previous char is 0x%04x",
                               static_cast<int>(offset),
                               static_cast<unsigned>(static_cast<unsigned char>(previous)));
  }

 private:
  const char* mFunction;
  int mIgnoredMatches = 0;
};

std::vector<FontNameRow> RowsOfType(const char* path) {
  using CommonFunctionality::FileExtensionIs;
  if (FileExtensionIs(path, ".ai") || FileExtensionIs(path, ".ait")) {
    return {kRowFontName, kRowFontNameSpaced};
  }
  if (FileExtensionIs(path, ".psd") || FileExtensionIs(path, ".psb")) return {kRowFontSet};
  if (FileExtensionIs(path, ".aep")) return {kRowCoolTypeFont};
  return {};
}

void MoveNames(std::vector<std::string>& from, std::vector<std::string>& to) {
  if (to.empty()) {
    to = std::move(from);
  } else {
    to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
  }
}

// What AddFontToArray without duplicates does for each name, in time linear in their number.
void AddDistinctFonts(const std::vector<std::string>& names, const FontRecordArray& fonts) {
  FaceprintSupport::FontNameIndex index(fonts);
  for (const std::string& name : names) {
    if (!GString::IsValidUtf8(name)) continue;
    const std::size_t place = CountOf(fonts);
    if (!FaceprintSupport::AddFontToArray(name.c_str(), fonts, true)) continue;
    const FontRecord added = fonts->DictionaryAt(place);
    if (index.Find(RecordString(added, kFP_PostScriptNameKey))) {
      fonts->Remove(place);
    } else {
      index.Add(added, place);
    }
  }
}

}  // namespace

namespace CommonFunctionality {

bool FileExtensionIs(const char* path, const char* extension) {
  bool result = false;
  const char* dot = path && extension ? std::strrchr(path, '.') : nullptr;
  if (dot != nullptr) {
    result = GStringUtils::AsciiEqualsNoCase(extension[0] == '.' ? dot : dot + 1, extension);
  }
  OutputFormattedDebugString("FileExtensionIs('%s', '%s') returning %d", path ? path : "",
                             extension ? extension : "", result ? 1 : 0);
  return result;
}

void GetFontNamesFromNonXMPSectionOfAdobeDocument(const char* path,
                                                  std::vector<std::string>& names) {
  if (path == nullptr || path[0] == '\0') return;
  FileByteSource file;
  if (!file.Open(path)) return;
  LoggingListener listener("GetFontNamesFromByteVector");
  FontNameScanner scanner(file, listener);
  scanner.ScanRows(RowsOfType(path));
  if (names.empty() && scanner.Names().empty()) {
    static constexpr FontNameRow kAllRows[] = {kRowFontName, kRowFontNameSpaced, kRowFontSet,
                                               kRowCoolTypeFont};
    scanner.ScanRows(kAllRows);
  }
  if (!scanner.Failed()) MoveNames(scanner.Names(), names);
}

FontRecordArray CreateFontArrayFromNonXMPSectionOfAdobeDocument(const char* path) {
  const OperationTrace trace(__func__);
  std::vector<std::string> names;
  GetFontNamesFromNonXMPSectionOfAdobeDocument(path, names);
  FontRecordArray fonts = FaceprintSupport::CreateFontArrayFromVectorOfPostscriptNames(names);
  return fonts ? fonts : MakeFontRecordArray();
}

}  // namespace CommonFunctionality

namespace PhotoshopFontUtils {

void GetDocumentFonts(const std::string& path, std::vector<std::string>& names,
                      bool replaceSubstitutes) {
  if (replaceSubstitutes) sReplaceSubstitutes = true;
  FileByteSource file;
  if (path.empty() || !file.Open(path)) return;
  LoggingListener listener("GetDocumentFonts");
  FontNameScanner scanner(file, listener);
  scanner.ScanFontSets();
  if (scanner.Failed()) {
    OutputFormattedDebugString("Unable to read %016llx bytes from '%s'",
                               static_cast<unsigned long long>(file.Size()), path.c_str());
    return;
  }
  MoveNames(scanner.Names(), names);
}

bool GetReplaceSubstitutes() { return sReplaceSubstitutes; }

}  // namespace PhotoshopFontUtils

void PSGetDocumentFonts(FontRecordArray* outFonts, const std::string& path,
                        bool replaceSubstitutes) {
  if (outFonts == nullptr) return;
  std::vector<std::string> names;
  PhotoshopFontUtils::GetDocumentFonts(path, names, replaceSubstitutes);
  *outFonts = MakeFontRecordArray();
  AddDistinctFonts(names, *outFonts);
  OutputFormattedDebugString("%d font name(s) found.", static_cast<int>(CountOf(*outFonts)));
}
