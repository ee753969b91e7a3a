#include "host/DocumentFonts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "documents/AdobeByteScan.h"
#include "fonts/FontRecordOperations.h"
#include "foundation/GString.h"

namespace {

// A regular file that can be opened for reading; otherwise why not.
std::string WhyUnreadable(const std::string& path, struct stat& status) {
  if (stat(path.c_str(), &status) != 0) {
    return errno == ENOENT || errno == ENOTDIR ? "no such file" : std::strerror(errno);
  }
  if (S_ISDIR(status.st_mode)) return "is a folder";
  if (!S_ISREG(status.st_mode)) return "is no regular file";
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return errno == EACCES ? "no permission to read it" : std::strerror(errno);
  close(file);
  return {};
}

bool IsSameContent(const struct stat& a, const struct stat& b) {
  return a.st_size == b.st_size && a.st_ino == b.st_ino && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

bool IsPhotoshopDocument(const std::string& path) {
  return CommonFunctionality::FileExtensionIs(path.c_str(), ".psd") ||
         CommonFunctionality::FileExtensionIs(path.c_str(), ".psb");
}

FontRecordArray ScanNames(const std::string& path, bool& readAsHost) {
  FontRecordArray fonts;
  if (IsPhotoshopDocument(path)) PSGetDocumentFonts(&fonts, path, false);
  readAsHost = CountOf(fonts) > 0;
  if (readAsHost) return fonts;
  std::vector<std::string> names;
  CommonFunctionality::GetFontNamesFromNonXMPSectionOfAdobeDocument(path.c_str(), names);
  fonts = MakeFontRecordArray();
  for (const std::string& name : names) {
    FaceprintSupport::AddFontToArray(name.c_str(), fonts, false);
  }
  return fonts;
}

}  // namespace

DocumentFonts ReadDocumentFonts(const std::string& document) {
  DocumentFonts result;
  result.document = document;
  std::error_code ignored;
  result.path = std::filesystem::absolute(document, ignored).lexically_normal().string();
  result.nameIsText = GString::IsValidUtf8(result.path);
  struct stat before;
  result.error = WhyUnreadable(result.path, before);
  if (!result.error.empty()) return result;
  const FontRecordArray fonts = ScanNames(result.path, result.readAsHost);
  struct stat after;
  result.error = WhyUnreadable(result.path, after);
  if (result.error.empty() && !IsSameContent(before, after)) {
    result.error = "changed while it was read";
  }
  if (!result.error.empty()) return result;
  for (std::size_t i = 0; i < fonts->Count(); ++i) {
    result.fonts.push_back({RecordString(fonts->DictionaryAt(i), kFP_PostScriptNameKey), {"scan"}});
  }
  return result;
}
