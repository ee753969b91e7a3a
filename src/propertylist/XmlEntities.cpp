#include "propertylist/XmlEntities.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "foundation/GString.h"
#include "foundation/XMLText.h"

namespace PropertyList {

namespace {

// "#x10FFFF" is the longest.
constexpr std::size_t kMaxEntityLength = 8;

struct NamedEntity {
  std::string_view name;
  std::string_view character;
};

constexpr NamedEntity kNamedEntities[] = {
    {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"apos", "'"}, {"quot", "\""},
};

// UTF-8 of the number between "&#" and ";"; empty if it is none.
std::string CharacterOfNumber(std::string_view digits) {
  int base = 10;
  if (digits.starts_with('x')) {
    digits.remove_prefix(1);
    base = 16;
  }
  std::uint32_t character = 0;
  const char* const last = digits.data() + digits.size();
  const auto [end, error] = std::from_chars(digits.data(), last, character, base);
  if (error != std::errc() || end != last) return {};
  const std::string utf8 = GString::OSUnicodeToUtf8(std::u32string(1, character));
  return XMLText::IsPossible(utf8) ? utf8 : std::string();
}

std::string CharacterOf(std::string_view entity) {
  if (entity.starts_with('#')) return CharacterOfNumber(entity.substr(1));
  for (const NamedEntity& row : kNamedEntities) {
    if (row.name == entity) return std::string(row.character);
  }
  return {};
}

}  // namespace

std::optional<std::string> DecodeEntities(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t entity = std::min(text.find('&', start), text.size());
    decoded.append(text.substr(start, entity - start));
    if (entity == text.size()) break;
    const std::size_t length = text.substr(entity + 1, kMaxEntityLength + 1).find(';');
    if (length == std::string_view::npos) return std::nullopt;
    const std::string character = CharacterOf(text.substr(entity + 1, length));
    if (character.empty()) return std::nullopt;
    decoded += character;
    start = entity + length + 2;
  }
  return decoded;
}

}  // namespace PropertyList
