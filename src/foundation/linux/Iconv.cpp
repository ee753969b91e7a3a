#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "foundation/iconv_string.h"

namespace {

constexpr std::size_t kFirstBufferSize = 64;
constexpr std::size_t kLongestCharacter = 16;

class Converter {
 public:
  Converter(const char* to, const char* from)
      : mHandle(iconv_open(to, from)), mTo(to), mDrops(mTo.ends_with("//IGNORE")) {
    if (!IsOpen()) {
      throw std::runtime_error("Unable to initialize iconv (error " + std::to_string(errno) + ")");
    }
  }
  ~Converter() { iconv_close(mHandle); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  std::string Convert(std::string_view text) {
    mOut.assign(std::max(text.size(), kFirstBufferSize), '\0');
    mUsed = 0;
    char* input = const_cast<char*>(text.data());  // iconv does not write to it
    std::size_t inputLeft = text.size();
    Run(&input, &inputLeft);
    Run(nullptr, nullptr);  // the bytes that end a shift sequence
    mOut.resize(mUsed);
    return std::move(mOut);
  }

 private:
  // iconv_open fails with the pointer form of -1.
  bool IsOpen() const { return reinterpret_cast<std::intptr_t>(mHandle) != -1; }

  void Run(char** input, std::size_t* inputLeft) {
    for (;;) {
      const std::size_t leftBefore = inputLeft == nullptr ? 0 : *inputLeft;
      char* output = mOut.data() + mUsed;
      std::size_t outputLeft = mOut.size() - mUsed;
      const std::size_t result = iconv(mHandle, input, inputLeft, &output, &outputLeft);
      const int error = errno;
      mUsed = mOut.size() - outputLeft;
      if (result != static_cast<std::size_t>(-1)) return;
      // A full buffer that the library reports as the character that it dropped last.
      if (error == E2BIG || outputLeft < kLongestCharacter) {
        mOut.resize(mOut.size() * 2);
      } else if (!mDrops) {
        Throw(error);
      } else if (inputLeft == nullptr || *inputLeft == 0 || error == EINVAL) {
        return;  // it tells that something was dropped, or a character is cut at the end
      } else if (*inputLeft == leftBefore) {
        ++*input;
        --*inputLeft;
      }
    }
  }

  [[noreturn]] void Throw(int error) const {
    throw std::runtime_error("Unable to convert string to " + mTo + " (error " +
                             std::to_string(error) +
                             "): " + std::generic_category().message(error));
  }

  iconv_t mHandle;
  std::string mTo;
  bool mDrops;
  std::string mOut;
  std::size_t mUsed = 0;
};

std::string LocalEncoding() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return nl_langinfo(CODESET);
  std::string encoding = nl_langinfo_l(CODESET, locale);
  freelocale(locale);
  return encoding;
}

}  // namespace

std::string iconv_string(std::string_view text, const char* to, const char* from) {
  return Converter(to, from).Convert(text);
}

std::string local_to_utf8(std::string_view text) {
  return iconv_string(text, "UTF-8//IGNORE", LocalEncoding().c_str());
}

std::string utf8_to_local(std::string_view text) {
  return iconv_string(text, LocalEncoding().c_str(), "UTF-8");
}
