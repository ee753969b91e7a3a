#include "propertylist/Value.h"

#include <gtest/gtest.h>

#include <thread>

#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"

namespace {

using PropertyList::Array;
using PropertyList::ArrayRef;
using PropertyList::Dictionary;
using PropertyList::DictionaryRef;
using PropertyList::Value;

TEST(Value, ContainersAreSharedNotCopied) {
  const DictionaryRef record = Dictionary::Create();
  const ArrayRef first = Array::Create();
  const ArrayRef second = Array::Create();
  first->Append(record);
  second->Append(record);
  EXPECT_EQ(record->GetRetainCount(), 3U);
  first->DictionaryAt(0)->Set("a", 1);
  EXPECT_TRUE(second->DictionaryAt(0)->Has("a"));
  first->Copy()->Clear();
  EXPECT_EQ(first->Count(), 1U);
  EXPECT_FALSE(first->DictionaryAt(1));
  first->Set(0, DictionaryRef());
  EXPECT_TRUE(first->At(0).IsNull());
  EXPECT_FALSE(first->DictionaryAt(0));
  second->Remove(0);
  EXPECT_EQ(record->GetRetainCount(), 1U);
}

TEST(Value, DictionariesKeepTheirOrder) {
  const DictionaryRef record = Dictionary::Create();
  for (const char* key : {"b", "a", "c", "b"}) record->Set(key, key);
  record->Set("c", 3);
  EXPECT_TRUE(record->Remove("a"));
  EXPECT_FALSE(record->Remove("a"));
  ASSERT_EQ(record->Count(), 2U);
  EXPECT_EQ(record->Entries()[0].first, "b");
  EXPECT_EQ(*record->GetString("b"), "b");
  EXPECT_EQ(record->GetString("c"), nullptr);
  EXPECT_FALSE(record->GetArray("b"));
}

TEST(Value, EqualityIsDeepAndEnds) {
  const auto make = [](const char* first, Value one, const char* second, Value other) {
    const DictionaryRef inner = Dictionary::Create();
    inner->Set(first, std::move(one));
    inner->Set(second, std::move(other));
    const ArrayRef outer = Array::Create();
    outer->Append(inner);
    return Value(outer);
  };
  const Value one = make("a", "1", "b", 2);
  EXPECT_TRUE(one.Equals(make("b", 2, "a", "1")));  // in another order
  EXPECT_FALSE(one.Equals(make("a", "1", "c", 2)));
  EXPECT_FALSE(one.Equals(make("a", "1", "b", 2.0)));
  EXPECT_FALSE(make("a", "1", "a", "1").Equals(one));

  const ArrayRef snake = Array::Create();
  const ArrayRef twin = Array::Create();
  snake->Append(snake);
  twin->Append(twin);
  EXPECT_FALSE(Value(snake).Equals(twin));
  EXPECT_TRUE(Value(snake).Equals(snake));
  snake->Clear();
  twin->Clear();
}

TEST(Value, SharedContainersAreComparedInBoundedTime) {
  const auto doubled = [] {
    Value value = "x";
    for (int i = 0; i < 40; ++i) {
      const ArrayRef array = Array::Create();
      array->Append(value);
      array->Append(value);
      value = array;
    }
    return value;
  };
  EXPECT_FALSE(doubled().Equals(doubled()));
}

TEST(Value, WhatIsAssignedMayStandWithin) {
  for (const Value& inner : {Value(7), Value("text"), Value(Array::Create())}) {
    Value value = Array::Create();
    value.AsArray()->Append(inner);
    value = value.AsArray()->At(0);
    EXPECT_TRUE(value.Equals(inner));
  }
}

TEST(Value, DeepNestingIsFreedWithoutRecursion) {
  Value chain;
  for (int i = 0; i < 500'000; ++i) {
    const ArrayRef array = Array::Create();
    array->Append(std::move(chain));
    const DictionaryRef dictionary = Dictionary::Create();
    dictionary->Set("k", array);
    chain = dictionary;
  }
  chain = Value();
  EXPECT_TRUE(chain.IsNull());
}

TEST(Value, SharedObjectsAreReleasedOnAnyThread) {
  const DictionaryRef record = Dictionary::Create();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([record] {
      for (int turn = 0; turn < 500; ++turn) {
        const ArrayRef array = Array::Create();
        array->Append(record);
        array->Append(array->Copy());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  EXPECT_EQ(record->GetRetainCount(), 1U);
}

TEST(FontRecord, NumbersAreReadFromText) {
  const std::pair<const char*, std::int64_t> rows[] = {{"12x", 12},
                                                       {"x", 0},
                                                       {"", 0},
                                                       {" \t-7", -7},
                                                       {"+8", 8},
                                                       {"1.9", 1},
                                                       {"0x10", 0},
                                                       {"9223372036854775807", INT64_MAX},
                                                       {"99999999999999999999", INT64_MAX},
                                                       {"-99999999999999999999", INT64_MIN}};
  const FontRecord record = MakeFontRecord();
  const auto read = [&record](const Value& value) {
    record->Set("k", value);
    return RecordInteger(record, "k");
  };
  for (const auto& [text, number] : rows) EXPECT_EQ(read(text), number) << text;
  EXPECT_EQ(read(5), 5);
  EXPECT_EQ(read(true), 0);
  EXPECT_EQ(RecordInteger(record, "absent"), 0);
  SetRecordNumber(record, "k", -3);
  EXPECT_EQ(RecordString(record, "k"), "-3");
}

TEST(FontRecord, DatabaseIDsAndFlags) {
  const FontRecord record = MakeFontRecord();
  for (const auto& [text, number] :
       {std::pair("4294967295", 4294967295U), std::pair("4294967296", 0U), std::pair("-2", 0U)}) {
    record->Set(kFP_DatabaseIDKey, text);
    EXPECT_EQ(RecordDatabaseID(record), number);
  }
  for (const auto& [value, flag] : {std::pair(Value("1"), true), std::pair(Value("01"), false),
                                    std::pair(Value(true), false)}) {
    record->Set(kFP_IsActiveKey, value);
    EXPECT_EQ(RecordFlag(record, kFP_IsActiveKey), flag);
  }
}

TEST(FontRecord, NullRecordsAnswerAbsent) {
  const FontRecord none;
  EXPECT_EQ(RecordString(none, "k"), "");
  EXPECT_FALSE(RecordHas(none, "k"));
  EXPECT_EQ(RecordDatabaseID(none), 0U);
  EXPECT_FALSE(RecordFlag(none, "k"));
  SetRecordNumber(none, "k", 1);
  EXPECT_EQ(CountOf(nullptr), 0U);
}

}  // namespace
