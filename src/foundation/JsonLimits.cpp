#include "foundation/JsonLimits.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace restful_mapper::Json {

namespace {

// The four digits at `at`; none if they are no digits: the parser says so.
std::optional<unsigned> ReadHexDigits(std::string_view text, std::size_t at) {
  const std::string_view digits = text.substr(std::min(at, text.size()), 4);
  unsigned value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (digits.size() < 4 || error != std::errc() || end != digits.data() + 4) return std::nullopt;
  return value;
}

bool IsHighSurrogate(unsigned unit) { return (unit & 0xFC00U) == 0xD800U; }
bool IsLowSurrogate(unsigned unit) { return (unit & 0xFC00U) == 0xDC00U; }

class TextScan {
 public:
  explicit TextScan(std::string_view text) : mText(text) {}

  const char* Run() {
    for (; mAt < mText.size() && mFault == nullptr; ++mAt) {
      switch (mText[mAt]) {
        case '"':
          SkipString();
          break;
        case '/':
          SkipComment();
          break;
        case '[':
        case '{':
          Open();
          break;
        case ']':
        case '}':
          if (mDepth > 0) mDepth -= 1;
          break;
        case ',':
          CountValue();
          break;
        default:
          break;
      }
    }
    return mFault;
  }

 private:
  void CountValue() {
    mValues += 1;
    if (mValues > kMaxValues) mFault = "more than 1048576 values";
  }

  void Open() {
    CountValue();
    mDepth += 1;
    if (mDepth > kMaxDepth) mFault = "more than 127 arrays and maps within each other";
  }

  // From the opening quotation mark to the closing one, or the end.
  void SkipString() {
    for (mAt += 1; mAt < mText.size() && mText[mAt] != '"' && mFault == nullptr; ++mAt) {
      if (mText[mAt] == '\\') SkipEscape();
    }
  }

  // To the last byte of the escape.
  void SkipEscape() {
    mAt += 1;
    if (mAt >= mText.size() || mText[mAt] != 'u') return;
    const std::optional<unsigned> unit = ReadHexDigits(mText, mAt + 1);
    if (!unit) return;
    mAt += 4;
    if (*unit == 0) mFault = "an escaped zero byte in a string";
    if (IsLowSurrogate(*unit)) mFault = kHalfPair;
    if (!IsHighSurrogate(*unit)) return;
    const std::optional<unsigned> second = mText.substr(mAt + 1).starts_with("\\u")
                                               ? ReadHexDigits(mText, mAt + 3)
                                               : std::optional<unsigned>();
    if (!second || !IsLowSurrogate(*second)) mFault = kHalfPair;
    mAt += 6;
  }

  // From the solidus to the last byte, or the end; a solidus alone is the parser's to refuse.
  void SkipComment() {
    const std::string_view rest = mText.substr(mAt);
    std::size_t length = 1;
    if (rest.starts_with("//")) {
      length = rest.find('\n');
    } else if (rest.starts_with("/*")) {
      length = rest.find("*/", 2);
      if (length != std::string_view::npos) length += 2;
    }
    mAt = length == std::string_view::npos ? mText.size() : mAt + length - 1;
  }

  static constexpr const char* kHalfPair = "an escape in a string is half of a surrogate pair";

  std::string_view mText;
  std::size_t mAt = 0;
  std::size_t mDepth = 0;
  std::size_t mValues = 0;
  const char* mFault = nullptr;
};

}  // namespace

const char* FindTextFault(std::string_view text) {
  if (text.size() > kMaxTextBytes) return "more than 32 MiB of text";
  if (text.find('\0') != std::string_view::npos) return "a zero byte in the text";
  return TextScan(text).Run();
}

}  // namespace restful_mapper::Json
