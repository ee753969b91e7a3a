#include <algorithm>

#include "frameworks/plugin-interface/ColumnNames.h"
#include "frameworks/plugin-interface/EntryPoint.h"

std::uint32_t CopyTextOut(std::string_view text, char* out, std::uint32_t size) {
  if (out == nullptr) return CoreErrorCodes::kNullPointer;
  if (size == 0) return CoreErrorCodes::kInvalidParam;
  std::size_t length = text.size();
  if (length >= size) {
    length = size - 1;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  }
  std::copy_n(text.data(), length, out);
  out[length] = '\0';
  return CoreErrorCodes::kSuccess;
}

#define COLUMN(getter, name)                                         \
  uint32_t getter(char* outName, uint32_t size) {                    \
    return Answer([&] { return CopyTextOut(name, outName, size); }); \
  }
#include "frameworks/plugin-interface/ColumnNames.def"
#undef COLUMN
