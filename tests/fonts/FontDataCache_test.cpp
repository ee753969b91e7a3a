#include "fonts/FontDataCache.h"

#include <gtest/gtest.h>

#include "support/FontRecords.h"
#include "support/LogCapture.h"
#include "support/TextTable.h"

using namespace FontDataPreviouslyGottenFromDatabase;

namespace {

void Deliver(std::uint32_t id, std::uint16_t state, const char* record) {
  Add(id, {1, id, state, ReadRecord(record)});
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

class FontDataCache : public testing::Test {
 protected:
  FontDataCache() { DeleteAll(); }
};

}  // namespace

TEST_F(FontDataCache, TheStateAtDeliveryAndTheLiveOneHaveToAgree) {
  Deliver(5, 2, "PostScriptName=Foo|ActivationStatus=2");
  Deliver(3, 3, "PostScriptName=Foo|ActivationStatus=3");
  Deliver(4, 1, "PostScriptName=Bar|ActivationStatus=1");
  Deliver(6, 0, "PostScriptName=Unknown|ActivationStatus=2");
  Deliver(7, 2, "PostScriptName=Never|ActivationStatus=0");
  Deliver(8, 2, "PostScriptName=Odd|IsActive=1");
  Deliver(9, 2, "ActivationStatus=2");
  Deliver(3, 2, "PostScriptName=Late|ActivationStatus=2");  // the first delivery stands
  // A version, whether it becomes active, and the active version afterwards. One that is active
  // already changes nothing; one that becomes active puts the other off.
  const char* steps = R"(5 / 1 / 3;  3 / 0 / 5;  5 / 0 / 0;  3 / 1 / 3;  5 / 1 / 5;  5 / 0 / 0
                         5 / 0 / 0;  99 / 1 / 0)";
  EXPECT_EQ(ActiveVersionOf("Foo"), 3u);
  for (const auto& step : ReadTable(steps)) {
    SetFontActivationState(static_cast<std::uint32_t>(std::stoul(step[0])), step[1] == "1");
    EXPECT_EQ(ActiveVersionOf("Foo"), std::stoul(step[2])) << step[0] << " " << step[1];
    EXPECT_EQ(ActiveVersionOf("Unknown"), 6u) << "another name";
  }
  for (const std::uint32_t id : {4u, 7u, 8u, 9u}) SetFontActivationState(id, true);
  for (const char* name : {"Late", "foo", "Bar", "Never", "Odd", ""}) {
    EXPECT_EQ(ActiveVersionOf(name), 0u) << name;
  }
}

TEST_F(FontDataCache, IsEmptyAfterDeletion) {
  LogCapture log;
  for (int round = 0; round < 2; ++round) {
    Deliver(4, 2, "PostScriptName=Bar|ActivationStatus=2");
    EXPECT_EQ(ActiveVersionOf("Bar"), 4u);
    EXPECT_EQ(DeleteAll(), 0);
    EXPECT_EQ(ActiveVersionOf("Bar"), 0u);
    SetFontActivationState(4, round == 0);
    EXPECT_TRUE(log.HasPart(std::string("failing to record transition to activation state ") +
                            (round == 0 ? "3" : "1") + " because font with databaseID 4 not in "));
  }
  EXPECT_TRUE(
      log.Has("FontDataPreviouslyGottenFromDatabase::DeleteAll() removing 4 ('Bar') from cache."));
}
