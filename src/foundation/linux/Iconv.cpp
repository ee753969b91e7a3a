#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <stdexcept>
#include <system_error>

#include "foundation/GString.h"

namespace {

constexpr std::size_t kFirstBufferSize = 64;

class Converter {
 public:
  Converter(const char* to, const char* from) : mHandle(iconv_open(to, from)), mTo(to) {
    if (!IsOpen()) {
      throw std::runtime_error("Unable to initialize iconv (error " + std::to_string(errno) + ")");
    }
  }
  ~Converter() { iconv_close(mHandle); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  std::string Convert(std::string_view text) {
    std::string out(std::max(text.size(), kFirstBufferSize), '\0');
    std::size_t used = 0;
    char* input = const_cast<char*>(text.data());  // iconv does not write to it
    std::size_t inputLeft = text.size();
    Run(&input, &inputLeft, out, used);
    Run(nullptr, nullptr, out, used);  // the bytes that end a shift sequence
    out.resize(used);
    return out;
  }

 private:
  // iconv_open fails with the pointer form of -1.
  bool IsOpen() const { return reinterpret_cast<std::intptr_t>(mHandle) != -1; }

  void Run(char** input, std::size_t* inputLeft, std::string& out, std::size_t& used) {
    for (;;) {
      char* output = out.data() + used;
      std::size_t outputLeft = out.size() - used;
      const std::size_t result = iconv(mHandle, input, inputLeft, &output, &outputLeft);
      const int error = errno;
      used = out.size() - outputLeft;
      if (result != static_cast<std::size_t>(-1)) return;
      if (error != E2BIG) Throw(error);
      out.resize(out.size() * 2);
    }
  }

  [[noreturn]] void Throw(int error) const {
    throw std::runtime_error("Unable to convert string to " + mTo + " (error " +
                             std::to_string(error) +
                             "): " + std::generic_category().message(error));
  }

  iconv_t mHandle;
  std::string mTo;
};

}  // namespace

std::string iconv_string(std::string_view text, const char* to, const char* from) {
  return Converter(to, from).Convert(text);
}
