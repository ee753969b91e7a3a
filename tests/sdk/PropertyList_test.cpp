#include "sdk/PropertyList.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>
#include <utility>

#include "propertylist/Value.h"

extern "C" PLDictionaryRef MakeRecordInC(void);

namespace {

TEST(PropertyListBorder, RecordMadeInCIsReadThroughHandles) {
  PLDictionaryRef record = MakeRecordInC();
  const std::pair<const char*, PLKind> kinds[] = {
      {"name", kPLStringKind},     {"flag", kPLBool}, {"number", kPLInteger},
      {"data", kPLData},           {"null", kPLNull}, {"list", kPLArrayKind},
      {"inner", kPLDictionaryKind}};
  EXPECT_EQ(PLDictionaryGetCount(record), std::size(kinds));
  for (size_t i = 0; i < std::size(kinds); ++i) {
    EXPECT_STREQ(PLDictionaryGetKeyAt(record, i), kinds[i].first);
    EXPECT_EQ(PLDictionaryGetKind(record, kinds[i].first), kinds[i].second);
  }
  EXPECT_EQ(PLDictionaryGetKeyAt(record, std::size(kinds)), nullptr);

  size_t length = 0;
  bool flag = false;
  int64_t number = 0;
  double real = 0;
  EXPECT_STREQ(PLDictionaryGetString(record, "name", &length), "Alpha");
  EXPECT_EQ(std::exchange(length, 0), 5U);
  EXPECT_TRUE(PLDictionaryGetBool(record, "flag", &flag));
  EXPECT_TRUE(std::exchange(flag, false));
  EXPECT_TRUE(PLDictionaryGetInteger(record, "number", &number));
  EXPECT_EQ(number, INT64_MIN);
  EXPECT_EQ(std::memcmp(PLDictionaryGetData(record, "data", &length), "abc", 3), 0);
  EXPECT_EQ(length, 3U);
  EXPECT_TRUE(PLDictionaryGetReal(PLDictionaryGetDictionary(record, "inner"), "size", &real));
  EXPECT_EQ(real, 1.5);

  PLArrayRef list = PLDictionaryGetArray(record, "list");
  const PLKind order[] = {kPLStringKind, kPLReal,           kPLBool,    kPLData,  kPLNull,
                          kPLArrayKind,  kPLDictionaryKind, kPLInteger, kPLAbsent};
  for (size_t i = 0; i < std::size(order); ++i) EXPECT_EQ(PLArrayGetKind(list, i), order[i]) << i;
  EXPECT_EQ(std::memcmp(PLArrayGetString(list, 0, &length), "one\0two", 8), 0);
  EXPECT_EQ(length, 7U);
  EXPECT_TRUE(PLArrayGetReal(list, 1, &real));
  EXPECT_EQ(real, -0.5);
  EXPECT_TRUE(PLArrayGetBool(list, 2, &flag));
  EXPECT_TRUE(flag);
  EXPECT_EQ(std::memcmp(PLArrayGetData(list, 3, &length), "\0\377", 2), 0);
  EXPECT_EQ(PLArrayGetData(list, 0, &length), nullptr);
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(PLArrayGetCount(PLArrayGetArray(list, 5)), 0U);
  EXPECT_EQ(PLArrayGetDictionary(list, 6), PLDictionaryGetDictionary(record, "inner"));
  EXPECT_TRUE(PLArrayGetInteger(list, 7, &number));
  EXPECT_EQ(number, -5);

  // A count of one's own outlives the container.
  PLArrayRetain(list);
  PLDictionaryRelease(record);
  PLArrayMove(list, 0, 7);
  PLArrayMove(list, 0, 8);
  PLArrayRemove(list, 8);
  PLArrayRemove(list, 4);
  EXPECT_EQ(PLArrayGetKind(list, 6), kPLStringKind);
  PLArrayRef copy = PLArrayCopy(list);
  EXPECT_TRUE(PLArrayEquals(copy, list));
  PLArrayClear(copy);
  EXPECT_EQ(PLArrayGetCount(list), 7U);
  EXPECT_FALSE(PLArrayEquals(copy, list));
  PLArrayRelease(copy);
  PLArrayRelease(list);
}

TEST(PropertyListBorder, XmlFormAndCopies) {
  PLDictionaryRef record = MakeRecordInC();
  EXPECT_EQ(PLDictionaryCopyXml(record), nullptr);  // a null and a zero byte
  PLDictionaryRemove(record, "null");
  PLDictionarySetArray(record, "list", nullptr);
  EXPECT_EQ(PLDictionaryGetKind(record, "list"), kPLArrayKind);
  PLDictionaryRemove(record, "list");
  PLArrayRef fonts = PLArrayCreate();
  PLArrayAppendDictionary(fonts, record);
  PLArrayAppendDictionary(fonts, nullptr);
  EXPECT_EQ(PLArrayGetCount(fonts), 1U);
  for (PLStringRef xml : {PLArrayCopyXml(fonts), PLDictionaryCopyXml(record)}) {
    ASSERT_NE(xml, nullptr);
    const char* text = PLStringGetText(xml);
    PLArrayRef array = PLArrayCreateFromXml(text, PLStringGetLength(xml));
    PLDictionaryRef dictionary = PLDictionaryCreateFromXml(text, PLStringGetLength(xml));
    EXPECT_TRUE(array == nullptr ? PLDictionaryEquals(dictionary, record)
                                 : dictionary == nullptr && PLArrayEquals(array, fonts));
    EXPECT_EQ(PLArrayCreateFromXml(text, PLStringGetLength(xml) / 2), nullptr);
    PLArrayRelease(array);
    PLDictionaryRelease(dictionary);
    PLStringRelease(xml);
  }
  PLDictionaryRef other = PLDictionaryCopy(record);
  EXPECT_TRUE(PLDictionaryEquals(other, record));
  PLDictionaryClear(other);
  EXPECT_FALSE(PLDictionaryEquals(other, record));
  PLDictionaryRelease(other);
  PLDictionaryRelease(record);
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
  for (const char* key : {"text", "none"}) {
    EXPECT_FALSE(PLDictionaryGetInteger(record, key, &number));
    EXPECT_FALSE(PLDictionaryGetBool(record, key, &flag));
    EXPECT_FALSE(PLDictionaryGetReal(record, key, &real));
    EXPECT_EQ(PLDictionaryGetArray(record, key), nullptr);
    EXPECT_EQ(PLDictionaryGetDictionary(record, key), nullptr);
  }
  EXPECT_EQ(number, 77);
  EXPECT_EQ(PLDictionaryGetString(record, "none", &length), nullptr);
  EXPECT_EQ(length, 0U);
  PLDictionaryRelease(record);
}

TEST(PropertyListBorder, NullHandlesAreEmpty) {
  EXPECT_EQ(PLArrayGetCount(nullptr), 0U);
  EXPECT_EQ(PLArrayGetData(nullptr, 0, nullptr), nullptr);
  EXPECT_EQ(PLDictionaryGetCount(nullptr), 0U);
  EXPECT_EQ(PLDictionaryGetKind(nullptr, "a"), kPLAbsent);
  EXPECT_EQ(PLDictionaryGetKeyAt(nullptr, 0), nullptr);
  EXPECT_STREQ(PLStringGetText(nullptr), "");
  EXPECT_EQ(PLStringGetLength(nullptr), 0U);
  EXPECT_EQ(PropertyList::AdoptString(nullptr), "");
  EXPECT_EQ(PLArrayRetain(nullptr), nullptr);
  PLArrayAppendInteger(nullptr, 1);
  PLDictionarySetBool(nullptr, "a", true);
  PLDictionaryRemove(nullptr, "a");
  PLArrayMove(nullptr, 0, 0);
  PLArrayRemove(nullptr, 0);
  EXPECT_EQ(PLArrayCopy(nullptr), nullptr);
  EXPECT_EQ(PLDictionaryCopyXml(nullptr), nullptr);
  EXPECT_TRUE(PLDictionaryEquals(nullptr, nullptr));
  PLStringRelease(nullptr);
  PLArrayRelease(nullptr);
  PLDictionaryRelease(nullptr);
}

TEST(PropertyListBorder, HandlesAreTheObjectsThemselvesAndCounted) {
  PLStringRef string = PLStringCreate("a\0b", 3);
  EXPECT_EQ(PLStringRetain(string), string);
  PLStringRelease(string);
  EXPECT_EQ(PLStringGetLength(string), 3U);
  EXPECT_EQ(std::string(PLStringGetText(string), 4), std::string("a\0b\0", 4));
  EXPECT_EQ(PropertyList::AdoptString(string), std::string("a\0b", 3));
  EXPECT_EQ(PropertyList::AdoptString(PLStringCreate(nullptr, 7)), "");

  const PropertyList::ArrayRef array = PropertyList::AdoptHandle(PLArrayCreate());
  PLArrayAppendInteger(PropertyList::AsHandle(array), 4);
  EXPECT_EQ(array->Count(), 1U);
  {
    const PropertyList::ArrayRef shared = PropertyList::FromHandle(AsHandle(array));
    EXPECT_EQ(array->GetRetainCount(), 2U);
  }
  EXPECT_EQ(array->GetRetainCount(), 1U);
}

}  // namespace
