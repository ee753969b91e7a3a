#include "agent/NameTable.h"

#include <algorithm>

#include "agent/library/GLibOwners.h"

namespace Nodrix {
namespace {

constexpr std::size_t kHeaderSize = 6;
constexpr std::size_t kRecordSize = 12;
constexpr std::size_t kMaxNameBytes = 1024;
constexpr std::uint16_t kUnicode = 0, kMacintosh = 1, kWindows = 3;
constexpr std::uint16_t kUSEnglish = 0x409, kPrimaryLanguage = 0x3FF, kEnglish = 9;

std::uint16_t Word(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(bytes[offset] << 8 | bytes[offset + 1]);
}

// Lower is better; kUnusable for an encoding that is not read.
constexpr int kUnusable = 100;
int Rank(std::uint16_t platform, std::uint16_t encoding, std::uint16_t language) {
  if (platform == kWindows && (encoding <= 1 || encoding == 10)) {
    if (language == kUSEnglish) return 0;
    return (language & kPrimaryLanguage) == kEnglish ? 2 : 4;
  }
  if (platform == kMacintosh && encoding == 0) return language == 0 ? 1 : 5;
  return platform == kUnicode ? 3 : kUnusable;
}

void AppendUTF8(std::string& text, std::uint32_t character) {
  char buffer[6];
  text.append(buffer, static_cast<std::size_t>(g_unichar_to_utf8(character, buffer)));
}

std::string FromUTF16(std::span<const std::uint8_t> bytes) {
  constexpr std::uint32_t kReplacement = 0xFFFD;
  std::string text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    std::uint32_t unit = Word(bytes, i);
    if (unit >= 0xD800 && unit < 0xE000) {
      const std::uint32_t low = i + 3 < bytes.size() ? Word(bytes, i + 2) : 0;
      if (unit < 0xDC00 && low >= 0xDC00 && low < 0xE000) {
        unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      } else {
        unit = kReplacement;
      }
    }
    AppendUTF8(text, unit);
  }
  return text;
}

std::string FromMacRoman(std::span<const std::uint8_t> bytes) {
  const StringOwner text(g_convert(reinterpret_cast<const gchar*>(bytes.data()),
                                   static_cast<gssize>(bytes.size()), "UTF-8", "MACINTOSH", nullptr,
                                   nullptr, nullptr));
  return text ? text.get() : "";
}

// A name as a record holds it.
std::string Tidy(std::string text) {
  std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  text = text.substr(first, text.find_last_not_of(' ') - first + 1);
  if (text.size() <= kMaxNameBytes) return text;
  std::size_t end = kMaxNameBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

}  // namespace

NameTable::NameTable(std::vector<std::uint8_t> table) : mTable(std::move(table)) {}

std::string NameTable::Decode(std::size_t record) const {
  const std::size_t length = Word(mTable, record + 8);
  const std::size_t offset = std::size_t{Word(mTable, 4)} + Word(mTable, record + 10);
  if (offset > mTable.size() || length > mTable.size() - offset) return {};
  const auto bytes = std::span(mTable).subspan(offset, length);
  return Tidy(Word(mTable, record) == kMacintosh ? FromMacRoman(bytes) : FromUTF16(bytes));
}

std::string NameTable::Text(std::uint16_t id) const {
  if (mTable.size() < kHeaderSize) return {};
  const std::size_t count =
      std::min<std::size_t>(Word(mTable, 2), (mTable.size() - kHeaderSize) / kRecordSize);
  std::string best;
  int bestRank = kUnusable;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t record = kHeaderSize + i * kRecordSize;
    if (Word(mTable, record + 6) != id) continue;
    const int rank = Rank(Word(mTable, record), Word(mTable, record + 2), Word(mTable, record + 4));
    if (rank >= bestRank) continue;
    if (std::string text = Decode(record); !text.empty()) {
      best = std::move(text);
      bestRank = rank;
    }
  }
  return best;
}

}  // namespace Nodrix
