#include "foundation/XMLText.h"

#include <algorithm>
#include <ostream>

#include "foundation/ErrorChecks.h"
#include "foundation/GLibXMLSerializable.h"
#include "foundation/GString.h"
#include "foundation/GStringUtils.h"

namespace {

// More would be blanks for their own sake.
constexpr int kMaxIndent = 64;

}  // namespace

namespace XMLText {

bool IsPossible(std::string_view text) {
  const auto isControl = [](char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
  };
  return std::none_of(text.begin(), text.end(), isControl) && GString::IsValidUtf8(text) &&
         text.find("\uFFFE") == std::string_view::npos &&
         text.find("\uFFFF") == std::string_view::npos;
}

std::string EscapeContent(std::string_view text) {
  return GStringUtils::StringReplace(GStringUtils::EscapeRequiredXMLEntities(text), "\r", "&#13;");
}

std::string EscapeAttribute(std::string_view text) {
  const std::string escaped = GStringUtils::StringReplace(EscapeContent(text), "\n", "&#10;");
  return GStringUtils::StringReplace(escaped, "\t", "&#9;");
}

void BreakLine(std::string& xml, int indent) {
  if (indent < 0) return;
  xml += '\n';
  xml.append(2 * static_cast<std::size_t>(indent), ' ');
}

int Deeper(int indent) { return indent < 0 ? indent : indent + 1; }

std::string FirstBlanks(int& indent) {
  indent = std::min(indent, kMaxIndent);
  return std::string(indent < 0 ? 0 : 2 * static_cast<std::size_t>(indent), ' ');
}

TModuleErrorCode WriteInOnePiece(std::ostream& stream, std::string_view xml) {
  G_CHECK_CONDITION(xml.size() > GLibXMLSerializable::kMaxXMLBytes, CoreErrorCodes::kNotSupported);
  stream.write(xml.data(), static_cast<std::streamsize>(xml.size()));
  G_CHECK_CONDITION(!stream, CoreErrorCodes::kError);
  return CoreErrorCodes::kSuccess;
}

}  // namespace XMLText
