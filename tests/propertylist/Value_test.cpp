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

TEST(Value, KnowsItsKind) {
  EXPECT_EQ(Value().Kind(), kPLNull);
  EXPECT_EQ(Value(true).Kind(), kPLBool);
  EXPECT_EQ(Value(1).Kind(), kPLInteger);
  EXPECT_EQ(Value(1.5).Kind(), kPLReal);
  EXPECT_EQ(Value("1").Kind(), kPLStringKind);
  EXPECT_EQ(Value(PropertyList::Data{1}).Kind(), kPLData);
  EXPECT_EQ(Value(Array::Create()).Kind(), kPLArrayKind);
  EXPECT_EQ(Value(Dictionary::Create()).Kind(), kPLDictionaryKind);
  EXPECT_TRUE(Value(ArrayRef()).IsNull());
  EXPECT_TRUE(Value(DictionaryRef()).IsNull());
  EXPECT_EQ(Value(1).AsBool(), nullptr);
}

TEST(Value, ContainersAreSharedNotCopied) {
  const DictionaryRef record = Dictionary::Create();
  const ArrayRef first = Array::Create();
  const ArrayRef second = Array::Create();
  first->Append(record);
  second->Append(record);
  EXPECT_EQ(record->GetRetainCount(), 3U);
  first->DictionaryAt(0)->Set("a", 1);
  EXPECT_TRUE(second->DictionaryAt(0)->Has("a"));
  const ArrayRef copy = first->Copy();
  copy->Clear();
  EXPECT_EQ(first->Count(), 1U);
  EXPECT_FALSE(first->DictionaryAt(1));
  first->Set(0, Value());
  EXPECT_FALSE(first->DictionaryAt(0));
  second->Remove(0);
  EXPECT_EQ(record->GetRetainCount(), 1U);
}

TEST(Value, DictionariesKeepTheirOrder) {
  const DictionaryRef record = Dictionary::Create();
  record->Set("b", "1");
  record->Set("a", Array::Create());
  record->Set("c", 3);
  record->Set("b", "2");
  EXPECT_TRUE(record->Remove("a"));
  EXPECT_FALSE(record->Remove("a"));
  ASSERT_EQ(record->Count(), 2U);
  EXPECT_EQ(record->Entries()[0].first, "b");
  EXPECT_EQ(*record->GetString("b"), "2");
  EXPECT_EQ(record->GetString("c"), nullptr);
  EXPECT_FALSE(record->GetArray("b"));
}

TEST(Value, EqualityIsDeepAndEnds) {
  const auto make = [](const char* first, const char* second) {
    const DictionaryRef inner = Dictionary::Create();
    inner->Set(first, "1");
    inner->Set(second, 2.5);
    const ArrayRef outer = Array::Create();
    outer->Append(inner);
    return Value(outer);
  };
  EXPECT_TRUE(make("a", "b").Equals(make("a", "b")));
  EXPECT_FALSE(make("a", "b").Equals(make("a", "c")));
  const DictionaryRef one = Dictionary::Create();
  const DictionaryRef other = Dictionary::Create();
  one->Set("a", 1);
  one->Set("b", "x");
  other->Set("b", "x");
  other->Set("a", 1);
  EXPECT_TRUE(Value(one).Equals(other));  // in another order
  EXPECT_FALSE(Value(1).Equals(1.0));
  EXPECT_FALSE(Value(1).Equals(true));

  const ArrayRef snake = Array::Create();
  const ArrayRef twin = Array::Create();
  snake->Append(snake);
  twin->Append(twin);
  EXPECT_FALSE(Value(snake).Equals(twin));
  EXPECT_TRUE(Value(snake).Equals(snake));
  snake->Clear();
  twin->Clear();
}

TEST(Value, DeepNestingIsFreedWithoutRecursion) {
  Value chain;
  for (int i = 0; i < 1'000'000; ++i) {
    if (i % 2 == 0) {
      const ArrayRef array = Array::Create();
      array->Append(std::move(chain));
      chain = array;
    } else {
      const DictionaryRef dictionary = Dictionary::Create();
      dictionary->Set("k", std::move(chain));
      chain = dictionary;
    }
  }
  EXPECT_EQ(chain.Kind(), kPLDictionaryKind);
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
  const std::pair<const char*, std::int64_t> rows[] = {
      {"12", 12},
      {"12x", 12},
      {"x", 0},
      {"", 0},
      {" \t-7", -7},
      {"+8", 8},
      {"1.9", 1},
      {"0x10", 0},
      {"9223372036854775807", INT64_MAX},
      {"99999999999999999999", INT64_MAX},
      {"-99999999999999999999", INT64_MIN},
  };
  const FontRecord record = MakeFontRecord();
  for (const auto& [text, number] : rows) {
    record->Set("k", text);
    EXPECT_EQ(RecordInteger(record, "k"), number) << text;
  }
  record->Set("k", 5);
  EXPECT_EQ(RecordInteger(record, "k"), 5);
  record->Set("k", true);
  EXPECT_EQ(RecordInteger(record, "k"), 0);
  EXPECT_EQ(RecordInteger(record, "absent"), 0);
  SetRecordNumber(record, "k", -3);
  EXPECT_EQ(RecordString(record, "k"), "-3");
}

TEST(FontRecord, DatabaseIDsAndFlags) {
  const FontRecord record = MakeFontRecord();
  EXPECT_EQ(RecordDatabaseID(record), 0U);
  record->Set(kFP_DatabaseIDKey, "4294967295");
  EXPECT_EQ(RecordDatabaseID(record), 4294967295U);
  record->Set(kFP_DatabaseIDKey, "4294967297");
  EXPECT_EQ(RecordDatabaseID(record), 1U);
  record->Set(kFP_DatabaseIDKey, "-2");
  EXPECT_EQ(RecordDatabaseID(record), 4294967294U);
  record->Set(kFP_IsActiveKey, "1");
  EXPECT_TRUE(RecordFlag(record, kFP_IsActiveKey));
  record->Set(kFP_IsActiveKey, "01");
  EXPECT_FALSE(RecordFlag(record, kFP_IsActiveKey));
  record->Set(kFP_IsActiveKey, true);
  EXPECT_FALSE(RecordFlag(record, kFP_IsActiveKey));
}

TEST(FontRecord, NullRecordsAnswerAbsent) {
  const FontRecord none;
  EXPECT_EQ(RecordString(none, "k"), "");
  EXPECT_FALSE(RecordHas(none, "k"));
  EXPECT_EQ(RecordInteger(none, "k"), 0);
  EXPECT_EQ(RecordDatabaseID(none), 0U);
  EXPECT_FALSE(RecordFlag(none, "k"));
  SetRecordNumber(none, "k", 1);
  EXPECT_EQ(CountOf(nullptr), 0U);
}

}  // namespace
