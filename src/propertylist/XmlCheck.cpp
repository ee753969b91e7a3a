#include "propertylist/XmlCheck.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/GStringUtils.h"
#include "foundation/XMLText.h"
#include "propertylist/XmlEntities.h"
#include "propertylist/XmlForm.h"

namespace PropertyList {

namespace {

// A search that asks about each character: the library's own, for any of a set, makes a call for
// each.
template <typename IsWanted>
std::size_t FindIf(std::string_view text, IsWanted isWanted) {
  return static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isWanted) - text.begin());
}

constexpr bool IsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

std::string_view StripBlanks(std::string_view text) {
  text.remove_prefix(FindIf(text, std::not_fn(IsBlank)));
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// The whole text is one number of this type.
template <typename Number>
bool IsNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

// Without the blanks around it and without a plus sign, which from_chars knows nothing of.
std::string_view NumberText(std::string_view text) {
  text = StripBlanks(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  return text;
}

bool IsInteger(std::string_view text) {
  const std::string_view number = NumberText(text);
  const std::string_view digits = number.substr(number.starts_with('-') ? 1 : 0);
  // The library takes a leading zero for octal.
  if (digits.size() > 1 && digits.front() == '0') return false;
  return IsNumber<std::int64_t>(number);
}

bool IsReal(std::string_view text) {
  const std::string_view number = NumberText(text);
  // No "inf" and no "nan".
  return number.find_first_not_of("+-.0123456789eE") == std::string_view::npos &&
         IsNumber<double>(number);
}

bool IsBase64(std::string_view text) {
  std::size_t count = 0;
  std::size_t padding = 0;
  for (const char character : text) {
    if (IsBlank(character)) continue;
    const bool isDigit =
        (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
        (character >= '0' && character <= '9') || character == '+' || character == '/';
    if (character == '=') {
      padding += 1;
    } else if (!isDigit || padding != 0) {
      return false;
    }
    count += 1;
  }
  return count % 4 == 0 && padding <= 2;
}

enum class Place { eInArray, eAtKey, eAtValue };

struct Container {
  Place place;
  std::size_t keyCount = 0;
};

struct Tag {
  std::string_view name;
  bool isClosing = false;
  bool isEmpty = false;
};

class Checker {
 public:
  explicit Checker(std::string_view xml) : mRest(xml), mKept(xml) {}

  bool Check() {
    while (SkipBetweenElements()) {
      if (mRest.empty()) return mHasRoot && mContainers.empty() && !mIsInPlist;
      const std::optional<Tag> tag = TakeTag();
      if (!tag || !CheckTag(*tag)) return false;
    }
    return false;
  }

  // After a check that went well.
  std::string TakeXml() {
    mXml.append(mKept);
    return std::move(mXml);
  }

 private:
  // Passes over the text up to and with `end`; false if that does not come.
  bool SkipThrough(std::string_view end) {
    const std::size_t found = mRest.find(end);
    if (found == std::string_view::npos) return false;
    mRest.remove_prefix(found + end.size());
    return true;
  }

  // Up to the first ">": no "<" before it, and no quotation mark open at it, so that every reader
  // sees the same end.
  std::optional<std::string_view> TakeMarkup() {
    const std::size_t end = FindIf(mRest, [](char c) { return c == '<' || c == '>'; });
    if (end == mRest.size() || mRest[end] == '<') return std::nullopt;
    const std::string_view markup = mRest.substr(0, end);
    if (std::count(markup.begin(), markup.end(), '"') % 2 != 0) return std::nullopt;
    mRest.remove_prefix(end + 1);
    return markup;
  }

  // Blanks, comments, processing instructions and the DOCTYPE. False if one of these has no end.
  bool SkipBetweenElements() {
    for (;;) {
      mRest.remove_prefix(FindIf(mRest, std::not_fn(IsBlank)));
      if (mRest.starts_with("<!--")) {
        mRest.remove_prefix(4);
        if (!SkipThrough("-->")) return false;
      } else if (mRest.starts_with("<?")) {
        mRest.remove_prefix(2);
        const std::optional<std::string_view> markup = TakeMarkup();
        if (!markup || !markup->ends_with('?')) return false;
      } else if (mRest.starts_with("<!DOCTYPE")) {
        mRest.remove_prefix(1);
        const std::optional<std::string_view> markup = TakeMarkup();
        if (!markup || markup->find('[') != std::string_view::npos) return false;
      } else {
        return true;
      }
    }
  }

  std::optional<Tag> TakeTag() {
    if (!mRest.starts_with('<')) return std::nullopt;
    mRest.remove_prefix(1);
    std::optional<std::string_view> markup = TakeMarkup();
    if (!markup) return std::nullopt;
    Tag tag;
    tag.isClosing = markup->starts_with('/');
    if (tag.isClosing) markup->remove_prefix(1);
    tag.isEmpty = markup->ends_with('/');
    if (tag.isEmpty) markup->remove_suffix(1);
    if (tag.isClosing && tag.isEmpty) return std::nullopt;
    tag.name = markup->substr(0, FindIf(*markup, IsBlank));
    return tag;
  }

  bool CheckTag(const Tag& tag) {
    if (tag.name == "plist") return CheckPlistTag(tag);
    if (tag.isClosing) return CloseContainer(tag.name);
    if (tag.name == "key") return CheckKey(tag);
    if (!BeginValue()) return false;
    if (tag.name == "dict" || tag.name == "array") return OpenContainer(tag);
    return CheckLeaf(tag);
  }

  bool CheckPlistTag(const Tag& tag) {
    if (tag.isEmpty || !mContainers.empty()) return false;
    // Opens before the value, closes behind it.
    if (tag.isClosing != mIsInPlist || tag.isClosing != mHasRoot) return false;
    mIsInPlist = !tag.isClosing;
    return true;
  }

  // Is this the place for a value?
  bool BeginValue() {
    mValueCount += 1;
    if (mValueCount > kMaxXmlValues) return false;
    if (mContainers.empty()) return !std::exchange(mHasRoot, true);
    Place& place = mContainers.back().place;
    if (place == Place::eAtKey) return false;
    if (place == Place::eAtValue) place = Place::eAtKey;
    return true;
  }

  bool OpenContainer(const Tag& tag) {
    if (mContainers.size() >= static_cast<std::size_t>(kMaxXmlDepth)) return false;
    if (tag.isEmpty) return true;
    mContainers.push_back({tag.name == "dict" ? Place::eAtKey : Place::eInArray});
    return true;
  }

  bool CloseContainer(std::string_view name) {
    if (mContainers.empty()) return false;
    const Place expected = name == "dict" ? Place::eAtKey : Place::eInArray;
    if ((name != "dict" && name != "array") || mContainers.back().place != expected) return false;
    mContainers.pop_back();
    return true;
  }

  bool CheckKey(const Tag& tag) {
    if (mContainers.empty() || mContainers.back().place != Place::eAtKey) return false;
    Container& dictionary = mContainers.back();
    dictionary.place = Place::eAtValue;
    dictionary.keyCount += 1;
    return dictionary.keyCount <= kMaxXmlKeys && CheckText(tag);
  }

  bool CheckLeaf(const Tag& tag) {
    if (tag.name == "string") return CheckText(tag);
    const std::optional<std::string_view> text = TakeSimpleText(tag);
    if (!text) return false;
    if (tag.name == "true" || tag.name == "false") return StripBlanks(*text).empty();
    if (tag.name == "integer") return IsInteger(*text);
    if (tag.name == "real") return IsReal(*text);
    return tag.name == "data" && IsBase64(*text);
  }

  // Text, CDATA sections in it and the closing tag.
  bool CheckText(const Tag& tag) {
    if (tag.isEmpty) return true;
    for (;;) {
      const std::size_t end = std::min(mRest.find('<'), mRest.size());
      if (!ReplaceEntities(mRest.substr(0, end))) return false;
      mRest.remove_prefix(end);
      if (!mRest.starts_with("<![CDATA[")) return TakeClosingTag(tag.name);
      mRest.remove_prefix(9);
      if (!SkipThrough("]]>")) return false;
    }
  }

  // The library moves the rest of a text at each entity: it gets a section without any.
  bool ReplaceEntities(std::string_view text) {
    if (text.find('&') == std::string_view::npos) return true;
    const std::optional<std::string> decoded = DecodeEntities(text);
    if (!decoded) return false;
    mXml.append(mKept.substr(0, static_cast<std::size_t>(text.data() - mKept.data())));
    mXml.append("<![CDATA[");
    mXml.append(GStringUtils::StringReplace(*decoded, "]]>", "]]]]><![CDATA[>"));
    mXml.append("]]>");
    mKept.remove_prefix(static_cast<std::size_t>(text.data() + text.size() - mKept.data()));
    return true;
  }

  std::optional<std::string_view> TakeSimpleText(const Tag& tag) {
    if (tag.isEmpty) return std::string_view();
    const std::string_view text = mRest.substr(0, mRest.find('<'));
    mRest.remove_prefix(text.size());
    if (!TakeClosingTag(tag.name)) return std::nullopt;
    return text;
  }

  bool TakeClosingTag(std::string_view name) {
    const std::optional<Tag> tag = TakeTag();
    return tag && tag->isClosing && tag->name == name;
  }

  std::string_view mRest;
  std::string_view mKept;  // what mXml does not have yet
  std::string mXml;
  std::vector<Container> mContainers;
  std::size_t mValueCount = 0;
  bool mHasRoot = false;
  bool mIsInPlist = false;
};

}  // namespace

std::optional<std::string> CheckXml(std::string_view xml) {
  if (xml.size() > kMaxXmlBytes || !XMLText::IsPossible(xml)) return std::nullopt;
  Checker checker(xml);
  if (!checker.Check()) return std::nullopt;
  return checker.TakeXml();
}

}  // namespace PropertyList
