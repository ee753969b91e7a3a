#include "sdk/PropertyList.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>

#include "propertylist/Value.h"
#include "tests/sdk/PropertyListFromC.h"

namespace {

TEST(PropertyListBorder, RecordMadeInCIsReadThroughHandles) {
  PLArrayRef fonts = MakeFontsInC();
  ASSERT_EQ(PLArrayGetCount(fonts), 1U);
  EXPECT_EQ(PLArrayGetKind(fonts, 0), kPLDictionaryKind);
  PLDictionaryRef record = PLArrayGetDictionary(fonts, 0);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(PLDictionaryGetCount(record), 5U);
  EXPECT_STREQ(PLDictionaryGetKeyAt(record, 0), "name");
  EXPECT_STREQ(PLDictionaryGetKeyAt(record, 4), "inner");
  EXPECT_EQ(PLDictionaryGetKeyAt(record, 5), nullptr);

  size_t length = 0;
  EXPECT_STREQ(PLDictionaryGetString(record, "name", &length), "Alpha");
  EXPECT_EQ(length, 5U);
  EXPECT_STREQ(PLDictionaryGetString(record, "name", nullptr), "Alpha");
  bool flag = false;
  EXPECT_TRUE(PLDictionaryGetBool(record, "flag", &flag));
  EXPECT_TRUE(flag);
  int64_t number = 0;
  EXPECT_TRUE(PLDictionaryGetInteger(record, "number", &number));
  EXPECT_EQ(number, INT64_MIN);
  double real = 0;
  EXPECT_TRUE(PLDictionaryGetReal(PLDictionaryGetDictionary(record, "inner"), "size", &real));
  EXPECT_EQ(real, 1.5);

  PLArrayRef names = PLDictionaryGetArray(record, "names");
  const char* text = PLArrayGetString(names, 0, &length);
  ASSERT_EQ(length, 7U);
  EXPECT_EQ(std::memcmp(text, "one\0two", 8), 0);
  EXPECT_TRUE(PLArrayGetInteger(names, 1, &number));
  EXPECT_EQ(number, -5);
  EXPECT_EQ(PLArrayGetKind(names, 1), kPLInteger);

  // A count of one's own outlives the container.
  PLDictionaryRetain(record);
  PLArrayRelease(fonts);
  EXPECT_EQ(PLDictionaryGetKind(record, "flag"), kPLBool);
  PLDictionaryRemove(record, "flag");
  EXPECT_EQ(PLDictionaryGetKind(record, "flag"), kPLAbsent);
  PLDictionaryRelease(record);
}

TEST(PropertyListBorder, EveryKindFromC) {
  PLDictionaryRef record = MakeEveryKindInC();
  size_t length = 0;
  EXPECT_EQ(std::memcmp(PLDictionaryGetData(record, "data", &length), "abc", 3), 0);
  EXPECT_EQ(length, 3U);
  EXPECT_EQ(PLDictionaryGetKind(record, "null"), kPLNull);
  PLArrayRef list = PLDictionaryGetArray(record, "list");
  const PLKind kinds[] = {kPLStringKind, kPLReal,      kPLBool,  kPLData,
                          kPLNull,       kPLArrayKind, kPLAbsent};
  for (size_t i = 0; i < std::size(kinds); ++i) EXPECT_EQ(PLArrayGetKind(list, i), kinds[i]) << i;
  double real = 0;
  bool flag = false;
  EXPECT_TRUE(PLArrayGetReal(list, 1, &real));
  EXPECT_EQ(real, -0.5);
  EXPECT_FALSE(PLArrayGetReal(list, 0, &real));
  EXPECT_TRUE(PLArrayGetBool(list, 2, &flag));
  EXPECT_TRUE(flag);
  EXPECT_EQ(std::memcmp(PLArrayGetData(list, 3, &length), "\0\377", 2), 0);
  EXPECT_EQ(PLArrayGetData(list, 0, &length), nullptr);
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(PLArrayGetCount(PLArrayGetArray(list, 5)), 0U);

  PLArrayMove(list, 0, 5);
  PLArrayMove(list, 0, 6);
  PLArrayRemove(list, 6);
  PLArrayRemove(list, 4);
  EXPECT_STREQ(PLArrayGetString(list, 4, nullptr), "first");
  PLArrayRef copy = PLArrayCopy(list);
  EXPECT_TRUE(PLArrayEquals(copy, list));
  PLArrayClear(copy);
  EXPECT_EQ(PLArrayGetCount(list), 5U);
  EXPECT_FALSE(PLArrayEquals(copy, list));
  PLArrayRelease(copy);
  PLDictionaryRef other = PLDictionaryCopy(record);
  EXPECT_TRUE(PLDictionaryEquals(other, record));
  PLDictionaryClear(other);
  EXPECT_FALSE(PLDictionaryEquals(other, record));
  PLDictionaryRelease(other);
  PLDictionaryRelease(record);
}

TEST(PropertyListBorder, XmlForm) {
  PLArrayRef fonts = MakeFontsInC();
  EXPECT_EQ(PLArrayCopyXml(fonts), nullptr);  // a zero byte
  PLArrayAppendString(PLDictionaryGetArray(PLArrayGetDictionary(fonts, 0), "names"), "two", 3);
  PLArrayRemove(PLDictionaryGetArray(PLArrayGetDictionary(fonts, 0), "names"), 0);
  PLStringRef xml = PLArrayCopyXml(fonts);
  ASSERT_NE(xml, nullptr);
  PLArrayRef read = PLArrayCreateFromXml(PLStringGetText(xml), PLStringGetLength(xml));
  EXPECT_TRUE(PLArrayEquals(read, fonts));
  EXPECT_EQ(PLDictionaryCreateFromXml(PLStringGetText(xml), PLStringGetLength(xml)), nullptr);
  EXPECT_EQ(PLArrayCreateFromXml(PLStringGetText(xml), PLStringGetLength(xml) / 2), nullptr);
  PLArrayRelease(read);
  PLStringRelease(xml);

  PLStringRef record = PLDictionaryCopyXml(PLArrayGetDictionary(fonts, 0));
  PLDictionaryRef copy =
      PLDictionaryCreateFromXml(PLStringGetText(record), PLStringGetLength(record));
  EXPECT_TRUE(PLDictionaryEquals(copy, PLArrayGetDictionary(fonts, 0)));
  PLDictionaryRelease(copy);
  PLStringRelease(record);
  PLArrayRelease(fonts);
  EXPECT_EQ(PLArrayCreateFromXml(nullptr, 9), nullptr);
}

TEST(PropertyListBorder, AbsentAndOtherKinds) {
  PLDictionaryRef record = PLDictionaryCreate();
  PLDictionarySetString(record, "text", "12", 2);
  int64_t number = 77;
  bool flag = true;
  double real = 7;
  size_t length = 9;
  EXPECT_FALSE(PLDictionaryGetInteger(record, "text", &number));
  EXPECT_FALSE(PLDictionaryGetBool(record, "text", &flag));
  EXPECT_FALSE(PLDictionaryGetReal(record, "none", &real));
  EXPECT_EQ(number, 77);
  EXPECT_EQ(PLDictionaryGetArray(record, "text"), nullptr);
  EXPECT_EQ(PLDictionaryGetDictionary(record, "text"), nullptr);
  EXPECT_EQ(PLDictionaryGetString(record, "none", &length), nullptr);
  EXPECT_EQ(length, 0U);
  PLDictionarySetArray(record, "text", nullptr);
  EXPECT_EQ(PLDictionaryGetKind(record, "text"), kPLStringKind);
  PLDictionaryRelease(record);

  PLArrayRef array = PLArrayCreate();
  PLArrayAppendDictionary(array, nullptr);
  EXPECT_EQ(PLArrayGetCount(array), 0U);
  EXPECT_EQ(PLArrayGetKind(array, 0), kPLAbsent);
  EXPECT_EQ(PLArrayGetString(array, 0, nullptr), nullptr);
  PLArrayRelease(array);
}

TEST(PropertyListBorder, NullHandlesAreEmpty) {
  EXPECT_EQ(PLArrayGetCount(nullptr), 0U);
  EXPECT_EQ(PLArrayGetDictionary(nullptr, 0), nullptr);
  EXPECT_EQ(PLDictionaryGetCount(nullptr), 0U);
  EXPECT_EQ(PLDictionaryGetKind(nullptr, "a"), kPLAbsent);
  EXPECT_EQ(PLDictionaryGetKeyAt(nullptr, 0), nullptr);
  EXPECT_STREQ(PLStringGetText(nullptr), "");
  EXPECT_EQ(PLStringGetLength(nullptr), 0U);
  EXPECT_EQ(PLArrayRetain(nullptr), nullptr);
  PLArrayAppendInteger(nullptr, 1);
  PLDictionarySetBool(nullptr, "a", true);
  PLDictionaryRemove(nullptr, "a");
  PLArrayMove(nullptr, 0, 0);
  PLArrayRemove(nullptr, 0);
  EXPECT_EQ(PLArrayCopy(nullptr), nullptr);
  EXPECT_EQ(PLDictionaryCopyXml(nullptr), nullptr);
  EXPECT_TRUE(PLDictionaryEquals(nullptr, nullptr));
  EXPECT_EQ(PLArrayGetData(nullptr, 0, nullptr), nullptr);
  PLStringRelease(nullptr);
  PLArrayRelease(nullptr);
  PLDictionaryRelease(nullptr);
}

TEST(PropertyListBorder, StringsAreCounted) {
  PLStringRef string = PLStringCreate("a\0b", 3);
  EXPECT_EQ(PLStringRetain(string), string);
  PLStringRelease(string);
  EXPECT_EQ(PLStringGetLength(string), 3U);
  EXPECT_EQ(std::string(PLStringGetText(string), 4), std::string("a\0b\0", 4));
  EXPECT_EQ(PropertyList::AdoptString(string), std::string("a\0b", 3));
  EXPECT_EQ(PropertyList::AdoptString(nullptr), "");
  PLStringRef empty = PLStringCreate(nullptr, 0);
  EXPECT_STREQ(PLStringGetText(empty), "");
  PLStringRelease(empty);
}

TEST(PropertyListBorder, HandlesAreTheObjectsThemselves) {
  using PropertyList::Array;
  const PropertyList::ArrayRef array = Array::Create();
  PLArrayAppendInteger(PropertyList::AsHandle(array), 4);
  EXPECT_EQ(array->Count(), 1U);
  {
    const PropertyList::ArrayRef shared = PropertyList::FromHandle(AsHandle(array));
    EXPECT_EQ(array->GetRetainCount(), 2U);
  }
  const PropertyList::ArrayRef adopted = PropertyList::AdoptHandle(MakeFontsInC());
  EXPECT_EQ(adopted->GetRetainCount(), 1U);
  EXPECT_EQ(array->GetRetainCount(), 1U);
}

}  // namespace
