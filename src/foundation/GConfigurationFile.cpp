#include "foundation/GConfigurationFile.h"

#include "foundation/ErrorChecks.h"
#include "foundation/GFile.h"
#include "foundation/GLogger.h"
#include "foundation/GStringUtils.h"

namespace {

constexpr const char* kLogIdentifier = "Configuration";
constexpr char kCommentStart = '#';

// False for an illegal line. `line` is not empty and has no comment.
bool ParseLine(const std::string& line, std::map<std::string, std::string>& values) {
  const std::size_t delimiter = line.find(GConfigurationFile::GetKeyValueDelimiter());
  if (delimiter == std::string::npos) return false;
  const std::string_view text = line;
  const std::string key =
      GStringUtils::OSToLowerCase(GStringUtils::StripWhitespace(text.substr(0, delimiter)));
  if (key.empty()) return false;
  const std::string value = GStringUtils::StripWhitespace(text.substr(delimiter + 1));
  GLogger::GetSharedInstance()->LogInfo(kLogIdentifier, "Configuration key = %s, value = %s",
                                        key.c_str(), value.c_str());
  values[key] = value;
  return true;
}

}  // namespace

TModuleErrorCode GConfigurationFile::ParseFile(const GFileSystemSpec& confFileSpec,
                                               std::map<std::string, std::string>& values) {
  GFile confFile;
  std::string text;
  // The check forms record the expression as it stands.
  // clang-format off
  G_CHECK_CALL(confFile.Open(confFileSpec, GFile::eRead|GFile::eBinary));
  // clang-format on
  G_CHECK_CALL(confFile.Read(text));
  G_CHECK_CALL(confFile.Close());
  return ParseString(text, values);
}

TModuleErrorCode GConfigurationFile::ParseString(const std::string& text,
                                                 std::map<std::string, std::string>& values) {
  GLogger* logger = GLogger::GetSharedInstance();
  values.clear();
  for (const std::string& line : GStringUtils::OSTokenizeString(text, "\r\n")) {
    logger->LogDebug(kLogIdentifier, "Configuration line:\n%s", line.c_str());
    const std::string stripped =
        GStringUtils::StripWhitespace(std::string_view(line).substr(0, line.find(kCommentStart)));
    if (stripped.empty() || ParseLine(stripped, values)) continue;
    logger->LogWarning(kLogIdentifier, "Ignoring illegal line in configuration:\n%s", line.c_str());
  }
  return 0;
}

TModuleErrorCode GConfigurationFile::WriteFile(const GFileSystemSpec& confFileSpec,
                                               const std::map<std::string, std::string>& values) {
  std::string text;
  for (const auto& [key, value] : values) {
    text.append(key).append(GetKeyValueDelimiter()).append(value).append(GetLineDelimiter());
  }
  GFile confFile;
  // clang-format off
  G_CHECK_CALL(confFile.Open(confFileSpec, GFile::eWrite|GFile::eBinary|GFile::eTruncate));
  // clang-format on
  G_CHECK_CALL(confFile.Write(text.data(), text.size()));
  G_CHECK_CALL(confFile.Close());
  return 0;
}
