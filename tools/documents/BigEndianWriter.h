// Puts numbers into a string in big-endian order, and lengths in front of what they count.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace DocumentBuilders {

class BigEndianWriter {
 public:
  BigEndianWriter& U8(std::uint64_t value) { return Number(value, 1); }
  BigEndianWriter& U16(std::uint64_t value) { return Number(value, 2); }
  BigEndianWriter& U32(std::uint64_t value) { return Number(value, 4); }
  BigEndianWriter& U64(std::uint64_t value) { return Number(value, 8); }
  BigEndianWriter& F64(double value) { return U64(std::bit_cast<std::uint64_t>(value)); }
  BigEndianWriter& Number(std::uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) mBytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return *this;
  }
  BigEndianWriter& Text(std::string_view text) {
    mBytes += text;
    return *this;
  }
  BigEndianWriter& Zeros(std::size_t count) {
    mBytes.append(count, '\0');
    return *this;
  }
  // The bytes with their length in front.
  BigEndianWriter& Sized(std::string_view bytes, int lengthBytes = 4) {
    return Number(bytes.size(), lengthBytes).Text(bytes);
  }
  BigEndianWriter& PadTo(std::size_t multiple) {
    return Zeros((multiple - mBytes.size() % multiple) % multiple);
  }
  const std::string& Bytes() const { return mBytes; }

 private:
  std::string mBytes;
};

}  // namespace DocumentBuilders
