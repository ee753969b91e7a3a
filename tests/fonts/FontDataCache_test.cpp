#include "fonts/FontDataCache.h"

#include <gtest/gtest.h>

#include "support/FontRecords.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FontDataPreviouslyGottenFromDatabase;

namespace {

std::uint32_t NumberOf(const std::string& text) {
  return static_cast<std::uint32_t>(std::stoul(text));
}

// The ID of the hit, 0 for none.
std::uint32_t ActiveVersionOf(const char* name) {
  FontRecord copy;
  std::uint32_t id = 0;
  const bool found = CreateCopyOfFaceprintDataForActiveFont(name, copy, id);
  EXPECT_EQ(found, id != 0);
  if (found) copy->Set(kFP_ActivationStateKey, "1");  // the caller's own
  return id;
}

}  // namespace

TEST(FontDataCache, TheStateAtDeliveryAndTheLiveOneHaveToAgree) {
  DeleteAll();
  // The ID, the live state and the record. The second delivery of 3 doesn't count.
  const char* deliveries = R"(
    5 / 2 / PostScriptName=Foo|ActivationStatus=2;     3 / 3 / PostScriptName=Foo|ActivationStatus=3
    4 / 1 / PostScriptName=Bar|ActivationStatus=1;     6 / 0 / PostScriptName=Unknown|ActivationStatus=2
    7 / 2 / PostScriptName=Never|ActivationStatus=0;   8 / 2 / PostScriptName=Odd|IsActive=1
    9 / 2 / ActivationStatus=2;                        3 / 2 / PostScriptName=Late|ActivationStatus=2)";
  for (const auto& row : ReadTable(deliveries)) {
    const auto state = static_cast<std::uint16_t>(NumberOf(row[1]));
    Add(NumberOf(row[0]), {1, NumberOf(row[0]), state, ReadRecord(row[2])});
  }
  // A version, whether it becomes active, and the active version afterwards. One that is active
  // already changes nothing; one that becomes active puts the other off.
  const char* steps = R"(5 / 1 / 3;  3 / 0 / 5;  5 / 0 / 0;  3 / 1 / 3;  5 / 1 / 5;  5 / 0 / 0
                         5 / 0 / 0;  99 / 1 / 0)";
  EXPECT_EQ(ActiveVersionOf("Foo"), 3u);
  for (const auto& step : ReadTable(steps)) {
    SetFontActivationState(NumberOf(step[0]), step[1] == "1");
    EXPECT_EQ(ActiveVersionOf("Foo"), NumberOf(step[2])) << step[0] << " " << step[1];
    EXPECT_EQ(ActiveVersionOf("Unknown"), 6u) << "another name";
  }
  for (const std::uint32_t id : {4u, 7u, 8u, 9u}) SetFontActivationState(id, true);
  for (const char* name : {"Late", "foo", "Bar", "Never", "Odd", ""}) {
    EXPECT_EQ(ActiveVersionOf(name), 0u) << name;
  }
  LogCapture log;
  EXPECT_EQ(DeleteAll(), 0);
  EXPECT_EQ(ActiveVersionOf("Unknown"), 0u);
  EXPECT_TRUE(
      log.Has("FontDataPreviouslyGottenFromDatabase::DeleteAll() removing 4 ('Bar') from cache."));
  for (const bool isActive : {true, false}) {
    SetFontActivationState(4, isActive);
    EXPECT_TRUE(log.HasPart(std::string("failing to record transition to activation state ") +
                            (isActive ? "3" : "1") + " because font with databaseID 4 not in "));
  }
  Add(6, {1, 6, 2, ReadRecord("PostScriptName=Unknown|ActivationStatus=2")});
  EXPECT_EQ(ActiveVersionOf("Unknown"), 6u);
  DeleteAll();
}
