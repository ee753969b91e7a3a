#include "photoshop/HostText.h"

#include "photoshop/AutoSuite.h"

namespace {

// `read` fills a buffer of the given size and terminates it.
template <typename Read>
SPErr ReadText(std::uint32_t length, std::string& text, Read read) {
  if (length > kMaxHostTextBytes) return kSPOutOfMemoryError;
  std::string buffer(std::size_t{length} + 1, '\0');
  if (const SPErr error = read(buffer.data(), length + 1)) return error;
  buffer.back() = '\0';
  text = buffer.c_str();
  return 0;
}

}  // namespace

std::int16_t ShortError(SPErr error) {
  const auto cut = static_cast<std::int16_t>(static_cast<std::uint16_t>(error));
  return error != 0 && cut == 0 ? std::int16_t{-1} : cut;
}

std::string FourCharTypeToStdString(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text.push_back(static_cast<char>(static_cast<unsigned char>(code >> shift)));
  }
  return text;
}

SPErr ReadDescriptorText(PIActionDescriptor descriptor, DescriptorKeyID key, std::string& text) {
  std::uint32_t length = 0;
  if (const SPErr error = sPSActionDescriptor->GetStringLength(descriptor, key, &length)) {
    return error;
  }
  return ReadText(length, text, [&](char* buffer, std::uint32_t size) {
    return sPSActionDescriptor->GetString(descriptor, key, buffer, size);
  });
}

SPErr ReadListText(PIActionList list, std::uint32_t index, std::string& text) {
  std::uint32_t length = 0;
  if (const SPErr error = sPSActionList->GetStringLength(list, index, &length)) return error;
  return ReadText(length, text, [&](char* buffer, std::uint32_t size) {
    return sPSActionList->GetString(list, index, buffer, size);
  });
}
