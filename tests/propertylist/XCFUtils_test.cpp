#include "propertylist/XCFUtils.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <climits>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <limits>

#include "foundation/GFile.h"
#include "support/ScratchHome.h"

namespace {

using namespace XCFUtils;
namespace fs = std::filesystem;
using PropertyList::Array;
using PropertyList::Dictionary;

template <typename T>
std::optional<T> Got(bool (*get)(const Value*, T&), const Value& value) {
  T out{};
  return get(&value, out) ? std::optional<T>(out) : std::nullopt;
}

TEST(XCFUtils, NumbersAreGivenAsFarAsTheirTypeHoldsThem) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr auto kNone = std::nullopt;
  struct Row {
    Value value;
    std::optional<int> asChar;
    std::optional<int> asShort;
    std::optional<long> asLong;
    std::optional<float> asFloat;
    std::optional<double> asDouble;
  };
  const Row rows[] = {
      {0, 0, 0, 0, 0.0F, 0.0},
      {-128, -128, -128, -128, -128.0F, -128.0},
      {128, kNone, 128, 128, 128.0F, 128.0},
      {-32769, kNone, kNone, -32769, -32769.0F, -32769.0},
      {Value(std::int64_t{INT64_MAX}), kNone, kNone, INT64_MAX, 0x1p63F, 0x1p63},
      {7.0, 7, 7, 7, 7.0F, 7.0},
      {-0.5, kNone, kNone, kNone, -0.5F, -0.5},
      {0.1, kNone, kNone, kNone, 0.1F, 0.1},
      {0x1p63, kNone, kNone, kNone, 0x1p63F, 0x1p63},
      {-0x1p63, kNone, kNone, INT64_MIN, -0x1p63F, -0x1p63},
      {1e300, kNone, kNone, kNone, kNone, 1e300},
      {kInfinity, kNone, kNone, kNone, HUGE_VALF, kInfinity},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    EXPECT_EQ(Got(GetCharFromCFValue, row.value), row.asChar);
    EXPECT_EQ(Got(GetShortFromCFValue, row.value), row.asShort);
    EXPECT_EQ(Got(GetLongFromCFValue, row.value), row.asLong);
    EXPECT_EQ(Got(GetLongLongFromCFValue, row.value), row.asLong);
    EXPECT_EQ(Got(GetFloatFromCFValue, row.value), row.asFloat);
    EXPECT_EQ(Got(GetDoubleFromCFValue, row.value), row.asDouble);
  }
  for (const Value& none : {Value(std::nan("")), Value("7"), Value(true), Value()}) {
    EXPECT_FALSE(Got(GetLongFromCFValue, none));
  }
  long kept = 5;
  EXPECT_FALSE(GetLongFromCFValue(nullptr, kept));
  EXPECT_EQ(kept, 5);
}

TEST(XCFUtils, OtherKindsAreNotConverted) {
  const DictionaryRef dict = Dictionary::Create();
  const std::pair<std::string, Value> entries[] = {
      {"bool", true}, {"number", 1}, {"real", 1.5}, {"text", "1"}, {"array", Array::Create()}};
  for (const auto& [key, entry] : entries) dict->Set(key, entry);
  bool flag = false;
  for (const std::string name : {"bool", "number", "real", "text", "array", "absent"}) {
    EXPECT_EQ(GetCFStringFromDict(dict, name) != nullptr, name == "text");
    EXPECT_EQ(XCFGetCFStringFromDictionary(dict, name) != nullptr, name == "text");
    EXPECT_EQ(GetCFBooleanFromDict(dict, name) != nullptr, name == "bool");
    EXPECT_EQ(GetBoolFromDict(dict, name, flag), name == "bool");
    EXPECT_EQ(GetCFNumberFromDict(dict, name) != nullptr, name == "number" || name == "real");
    EXPECT_EQ(GetCFArrayFromDict(dict, name) != nullptr, name == "array");
  }
  EXPECT_TRUE(flag);
  const Value* value = nullptr;
  EXPECT_TRUE(GetCFTypeFromDict(dict, "real", kPLReal, value));
  EXPECT_FALSE(GetCFTypeFromDict(dict, "real", kPLInteger, value));
  EXPECT_EQ(value, dict->Find("real"));
  EXPECT_FALSE(GetBoolFromDict(nullptr, "bool", flag));
}

TEST(XCFUtils, TextsAsNumbers) {
  const DictionaryRef dict = Dictionary::Create();
  const std::tuple<const char*, CFStringEncoding, long> rows[] = {
      {" \t-12x", kCFStringEncodingUTF8, -12},
      {"none", kCFStringEncodingUTF8, 0},
      {"99999999999", kCFStringEncodingMacRoman, 99999999999},
      {"99999999999\xC3\xA9", kCFStringEncodingUTF8, 99999999999},
      {"99999999999\xC3\xA9", kCFStringEncodingMacRoman, INT32_MAX},
      {"-99999999999\xC3\xA9", kCFStringEncodingASCII, INT32_MIN},
      {"99999999999999999999", kCFStringEncodingUTF8, INT64_MAX},
  };
  for (const auto& [text, encoding, number] : rows) {
    dict->Set("k", text);
    EXPECT_EQ(GetLongFromDictString(dict, "k", encoding), number) << text;
  }
  EXPECT_EQ(GetLongFromDictString(dict, "absent", kCFStringEncodingUTF8), 0);
  dict->Set("k", 5);
  EXPECT_EQ(GetLongFromDictString(dict, "k", kCFStringEncodingUTF8), 0);
}

TEST(XCFUtils, PutAndAppend) {
  const DictionaryRef dict = Dictionary::Create();
  PutCharIntoDict(dict, "a", -5);
  PutShortIntoDict(dict, "b", -300);
  PutULongIntoDict(dict, "c", ULONG_MAX);
  PutLongIntoDictAsString(dict, "d", LONG_MIN);
  PutULongIntoDictAsString(dict, "e", ULONG_MAX);
  EXPECT_TRUE(PutUTF8NullTermCharPtrIntoDict(dict, "f", "\xC3\xA9"));
  EXPECT_FALSE(PutUTF8NullTermCharPtrIntoDict(dict, "f", "\xE9"));
  const std::tuple<const char*, CFStringEncoding, bool> texts[] = {
      {"\x8E", kCFStringEncodingMacRoman, true},
      {"\x80\xE9", kCFStringEncodingWindowsLatin1, true},
      {"\xE9", kCFStringEncodingISOLatin1, true},
      {"\xE9", kCFStringEncodingASCII, false},
      {"\x81", kCFStringEncodingWindowsLatin1, false}};
  for (const auto& [text, encoding, isText] : texts) {
    EXPECT_EQ(PutNullTermCharPtrIntoDict(dict, text, text, encoding), isText);
  }
  const DictionaryRef expected = Dictionary::Create();
  for (const char* key : {"f", "\x8E", "\xE9"}) expected->Set(key, "\xC3\xA9");
  expected->Set("a", -5);
  expected->Set("b", -300);
  expected->Set("c", -1);
  expected->Set("d", "-9223372036854775808");
  expected->Set("e", "18446744073709551615");
  expected->Set("\x80\xE9", "\xE2\x82\xAC\xC3\xA9");
  EXPECT_TRUE(Value(dict).Equals(expected));

  const ArrayRef array = Array::Create();
  AppendBoolOntoArray(array, true);
  AppendShortOntoArray(array, -1);
  AppendLongOntoArray(array, LONG_MAX);
  AppendULongOntoArray(array, 7);
  EXPECT_TRUE(AppendUTF8NullTermCharPtrOntoArray(array, "x"));
  EXPECT_FALSE(AppendUTF8NullTermCharPtrOntoArray(array, "\xFF"));
  const ArrayRef values = Array::Create();
  for (const Value& value :
       {Value(true), Value(-1), Value(std::int64_t{LONG_MAX}), Value(7), Value("x")})
    values->Append(value);
  EXPECT_TRUE(Value(array).Equals(values));
}

TEST(XCFUtils, Utf16OfStrings) {
  const DictionaryRef dict = Dictionary::Create();
  dict->Set("ten", "0123456789");
  dict->Set("pair", "a\xF0\x9F\x98\x80");
  dict->Set("bad", "\xC3(");
  dict->Set("number", 1);
  std::u16string buffer(12, u'-');
  EXPECT_EQ(XCFGetUniStringFromDictionary(dict, "ten", std::span(buffer).first(5)), -10);
  EXPECT_EQ(XCFGetUniStringNullTermFromDictionary(dict, "ten", std::span(buffer).first(9)), -10);
  EXPECT_EQ(XCFGetUniStringFromDictionary(dict, "number", buffer), 0);
  EXPECT_EQ(XCFGetUniStringFromDictionary(dict, "bad", buffer), 0);
  EXPECT_EQ(buffer, std::u16string(12, u'-'));
  EXPECT_EQ(XCFGetUniStringNullTermFromDictionary(dict, "ten", std::span(buffer).first(10)), 10);
  EXPECT_EQ(buffer, u"0123456789--");
  EXPECT_EQ(XCFGetUniStringNullTermFromDictionary(dict, "ten", buffer), 10);
  EXPECT_EQ(buffer, std::u16string(u"0123456789\0-", 12));
  EXPECT_EQ(XCFGetUniStringNullTermFromDictionary(dict, "absent", buffer), 0);
  EXPECT_EQ(buffer[0], u'\0');

  std::u16string text;
  EXPECT_TRUE(GetStringFromCFValue(dict->Find("pair"), text));
  EXPECT_EQ(text, u"a\xD83D\xDE00");
  for (const char* none : {"number", "bad"}) {
    EXPECT_FALSE(GetStringFromCFValue(dict->Find(none), text));
    EXPECT_EQ(CFStringGetUTF8StdString(dict->GetString(none)), "");
  }
  EXPECT_EQ(CFStringCreateFromUtf16CString(text.c_str()), *dict->GetString("pair"));
  EXPECT_FALSE(CFStringCreateFromUtf16CString(u"\xD83D"));
  EXPECT_FALSE(CFStringCreateFromUtf16CString(nullptr));
  EXPECT_EQ(CFStringGetAsNewUtf16Buffer(nullptr), u"");
}

TEST(XCFUtils, StringsAreSearched) {
  const DictionaryRef dict = Dictionary::Create();
  dict->Set("k", "Alpha Stra\xC3\x9F");
  dict->Set("n", 1);
  const std::tuple<const char*, const char*, bool, bool> rows[] = {
      {"k", "pha S", true, true},  {"k", "ALPHA", false, true}, {"k", "STRASS", false, true},
      {"k", "beta", false, false}, {"k", "", true, true},       {"n", "1", false, false},
      {"absent", "", false, false}};
  for (const auto& [key, text, exactly, anyCase] : rows) {
    EXPECT_EQ(CFDictionaryDoesStringValueContain(dict, key, text, kCFCompareExactly), exactly);
    EXPECT_EQ(CFDictionaryDoesStringValueContain(dict, key, text, kCFCompareCaseInsensitive),
              anyCase);
  }
}

TEST(XCFUtilsDeathTest, ErrorsOfTheCallerEndTheProcess) {
  const DictionaryRef dict = Dictionary::Create();
  const testing::KilledBySignal aborted(SIGABRT);
  std::u16string buffer(1, u' ');
  EXPECT_EXIT(XCFGetCFStringFromDictionary(nullptr, "k"), aborted, "");
  EXPECT_EXIT(XCFGetUniStringFromDictionary(nullptr, "k", buffer), aborted, "");
  EXPECT_EXIT(XCFGetUniStringFromDictionary(dict, "k", {}), aborted, "");
  EXPECT_EXIT((void)PutUTF8NullTermCharPtrIntoDict(dict, "k", nullptr), aborted, "");
  EXPECT_EXIT(PutBoolIntoDict(nullptr, "k", true), aborted, "");
  EXPECT_EXIT(AppendBoolOntoArray(nullptr, true), aborted, "");
  EXPECT_EXIT(GetNumberFromCFValue<long>(nullptr, nullptr), aborted, "");
}

class XCFUtilsFiles : public testing::Test {
 protected:
  std::string PathOf(const std::string& name) { return mHome.Path() + "/" + name; }
  // The number of files in the folder: no temporary one stays.
  long CountFiles() { return std::distance(fs::directory_iterator(mHome.Path()), {}); }
  ScratchHome mHome;
};

TEST_F(XCFUtilsFiles, ListsRoundTrip) {
  const DictionaryRef dict = Dictionary::Create();
  dict->Set("k", Data{0, 255});
  const std::string path = PathOf("a.plist");
  const long before = CountFiles();
  EXPECT_TRUE(XCFWriteCFPropertyListToXMLFile(dict, path));
  EXPECT_TRUE(XCFCreateCFPropertyListFromPath(path).value().Equals(dict));
  dict->Set("bad", Value());
  EXPECT_FALSE(XCFWriteCFPropertyListToXMLFile(dict, path));
  EXPECT_TRUE(XCFCreateCFPropertyListFromPath(path));
  EXPECT_TRUE(XCFWriteCFDataRefToXMLFile({'x'}, path));
  EXPECT_EQ(XCFCreateCFDataRefFromPath(path), (Data{'x'}));
  EXPECT_FALSE(XCFCreateCFPropertyListFromPath(path));
  EXPECT_TRUE(XCFWriteCFDataRefToXMLFile({}, path));
  EXPECT_FALSE(XCFCreateCFDataRefFromPath(path));
  EXPECT_EQ(CountFiles(), before + 1);
}

TEST_F(XCFUtilsFiles, WhatIsNoFileIsRefused) {
  mHome.MakeFolder("folder");
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  fs::resize_file(mHome.WriteFile("large", ""), kMaxFileBytes + 1);
  const long before = CountFiles();
  for (const std::string& path : {std::string(), std::string("relative"), PathOf("missing/a"),
                                  PathOf("folder"), PathOf("pipe"), PathOf("large")}) {
    EXPECT_FALSE(XCFCreateCFDataRefFromPath(path)) << path;
    if (path == PathOf("large")) continue;
    EXPECT_FALSE(XCFWriteCFDataRefToXMLFile({'x'}, path)) << path;
    EXPECT_FALSE(XCFWriteCFPropertyListToXMLFile(1, path)) << path;
  }
  EXPECT_EQ(CountFiles(), before);
}

TEST_F(XCFUtilsFiles, LinksAndModesStay) {
  const std::string target = PathOf("target");
  const std::string link = PathOf("link");
  ASSERT_TRUE(XCFWriteCFDataRefToXMLFile({'x'}, target));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms{0600});
  fs::permissions(target, fs::perms{0644});
  fs::create_symlink(target, link);
  EXPECT_TRUE(XCFWriteCFDataRefToXMLFile({'y', 'z'}, link));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(XCFCreateCFDataRefFromPath(target), (Data{'y', 'z'}));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms{0644});
}

TEST_F(XCFUtilsFiles, LengthIsMeasuredFromAnywhere) {
  GFile file;
  ASSERT_EQ(file.Open(mHome.WriteFile("f", "abc"), GFile::eRead), 0);
  std::vector<char> bytes;
  ASSERT_EQ(file.Read(2, bytes), 0);
  unsigned long long length = 0;
  EXPECT_EQ(GetFileLengthAndRewind(file, length), 0);
  EXPECT_EQ(length, 3U);
  EXPECT_EQ(file.Read(3, bytes), 0);
  ASSERT_EQ(file.Close(), 0);
  EXPECT_EQ(GetFileLengthAndRewind(file, length), GFile::kFileNotOpen);
}

}  // namespace
