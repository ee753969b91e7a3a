#include <string>

#include "foundation/GStringUtils.h"

namespace {

struct CharacterAndXmlEquivalent {
  std::string_view character;
  std::string_view equivalent;
};

// "&" comes first, so that the ampersands of the other entities are not escaped again.
constexpr CharacterAndXmlEquivalent kCharactersAndXmlEquivalents[] = {
    {"&", "&amp;"}, {">", "&gt;"}, {"<", "&lt;"}, {"'", "&apos;"}, {"\"", "&quot;"},
};

}  // namespace

namespace GStringUtils {

std::string EscapeRequiredXMLEntities(std::string_view text) {
  std::string escaped(text);
  for (const CharacterAndXmlEquivalent& row : kCharactersAndXmlEquivalents) {
    escaped = StringReplace(escaped, row.character, row.equivalent);
  }
  return escaped;
}

}  // namespace GStringUtils
