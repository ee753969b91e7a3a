#include "foundation/GJSONUtils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "foundation/ErrorCodes.h"
#include "support/RecordingAppender.h"

namespace {

using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;

class GJSONUtilsTest : public testing::Test {
 protected:
  void SetUp() override { GLogger::GetSharedInstance()->ResetAllLoggingLevels(); }
  // The one line since the last call holds this text.
  void ExpectRecord(const std::string& text) {
    ASSERT_EQ(mLog->Lines().size(), 1U) << text;
    EXPECT_NE(mLog->Lines()[0].find(text), std::string::npos) << mLog->Lines()[0];
    mLog = &RecordingAppender::Install();
  }
  RecordingAppender* mLog = &RecordingAppender::Install();
  Parser mParser;
  Node mRoot = mParser.root();
  Node mNew;
};

TEST_F(GJSONUtilsTest, ParseGivesACodeOrTheRoot) {
  EXPECT_EQ(GJSONUtils::Parse(mParser, "[1]", mRoot), 0U);
  EXPECT_TRUE(mRoot.is_array());
  EXPECT_EQ(mRoot.name(), "root");
  EXPECT_TRUE(mLog->Lines().empty());
  EXPECT_EQ(GJSONUtils::Parse(mParser, "{", mRoot), CoreErrorCodes::kInvalidParam);
  EXPECT_TRUE(mRoot.is_null());
  ExpectRecord(
      "\t[Miscellaneous]\t[Error]\tFailed to parse JSON: JSON parse error:\n"
      "parse error: premature EOF");
  EXPECT_EQ(GJSONUtils::Parse(mParser, std::string(100'000, '['), mRoot),
            CoreErrorCodes::kInvalidParam);

  mLog = &RecordingAppender::Install();
  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  EXPECT_EQ(GJSONUtils::Parse(mParser, "{\"%s\":1}", mRoot), 0U);
  ExpectRecord("\t[Miscellaneous]\t[Debug]\tAttempting to parse JSON: {\"%s\":1}\n");
}

TEST_F(GJSONUtilsTest, ParseOfTheSecondForm) {
  nlohmann::json value;
  EXPECT_EQ(GJSONUtils::Parse(value, R"({"a":[1,"\ud83d\ude00"]})"), 0U);
  EXPECT_EQ(value["a"][0], 1);
  const std::string bad[] = {"",
                             "nul",
                             "[1]x",
                             "{",
                             "1e999",
                             "\"\xff\"",
                             "/**/1",
                             R"("\ud800")",
                             std::string("1\0", 2),
                             std::string(100'000, '['),
                             std::string(std::size_t{50} << 20, ' ')};
  for (const std::string& text : bad) {
    mLog = &RecordingAppender::Install();
    EXPECT_EQ(GJSONUtils::Parse(value, text), CoreErrorCodes::kInvalidParam) << text.substr(0, 9);
    EXPECT_TRUE(value.is_null());
    ExpectRecord("\t[Miscellaneous]\t[Error]\tFailed to parse JSON: ");
  }
}

enum class Kind : unsigned char { eNone, eLast = 200 };
enum PlainKind { eMinus = -7 };

TEST_F(GJSONUtilsTest, WritesEachType) {
  using GJSONUtils::AddValueToArray;
  using GJSONUtils::SetValueForKey;
  Node array;
  Node map;
  EXPECT_EQ(SetValueForKey(Kind::eLast, "kind", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey(eMinus, "plain", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey<unsigned int>(4294967295U, "uint", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey(std::uint64_t{1} << 62, "wide", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey('c', "char", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey("literal", "text", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey(std::string("s"), "string", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey(true, "bool", mRoot, mNew), 0U);
  EXPECT_EQ(SetValueForKey(1.5F, "float", mRoot, mNew), 0U);
  EXPECT_EQ(GJSONUtils::AddArrayForKey("a", mRoot, array), 0U);
  EXPECT_EQ(AddValueToArray(7U, array, mNew) + AddValueToArray("x", array, mNew) +
                AddValueToArray(0.5, array, mNew) + AddValueToArray(false, array, mNew) +
                GJSONUtils::AddArrayToArray(array, mNew) + GJSONUtils::AddMapToArray(array, mNew),
            0U);
  EXPECT_EQ(SetValueForKey(3, "in", mNew, map), 0U);
  EXPECT_EQ(AddValueToArray(mNew, array, map), 0U);
  EXPECT_EQ(GJSONUtils::AddMapForKey("m", mRoot, map), 0U);
  EXPECT_EQ(SetValueForKey<Node>(mNew, "copy", map, mNew), 0U);
  EXPECT_EQ(mRoot.dump(),
            R"({"kind":200,"plain":-7,"uint":4294967295,"wide":4611686018427387904,"char":99,)"
            R"("text":"literal","string":"s","bool":true,"float":1.5,)"
            R"("a":[7,"x",0.5,false,[],{"in":3},{"in":3}],"m":{"copy":{"in":3}}})");
  EXPECT_TRUE(GJSONUtils::HasValueForKey(mRoot, "m") && !GJSONUtils::HasValueForKey(mRoot, "q"));
  EXPECT_FALSE(GJSONUtils::HasValueForKey(array, "m"));
  EXPECT_TRUE(mLog->Lines().empty());
}

TEST_F(GJSONUtilsTest, FailedWritesAreRecorded) {
  constexpr unsigned kNoMemory = CoreErrorCodes::kOutOfMemory;
  Node array;
  ASSERT_EQ(GJSONUtils::AddArrayForKey("a", mRoot, array), 0U);
  const auto expect = [this](unsigned code, unsigned expected, const std::string& expression) {
    EXPECT_EQ(code, expected) << expression;
    ExpectRecord("Expression='" + expression + "'  Code='" + std::to_string(expected) + "'");
  };
  using GJSONUtils::AddValueToArray;
  using GJSONUtils::SetValueForKey;
  expect(SetValueForKey("s", "k", array, mNew), kNoMemory,
         "!jsonValue.add_string(key, value, newValue)");
  expect(SetValueForKey(5U, "k", array, mNew), kNoMemory,
         "!jsonValue.add_int64(key, value, newValue)");
  expect(SetValueForKey(std::nan(""), "k", mRoot, mNew), kNoMemory,
         "!jsonValue.add_double(key, value, newValue)");
  expect(SetValueForKey(true, "k", array, mNew), kNoMemory,
         "!jsonValue.add_bool(key, value, newValue)");
  expect(GJSONUtils::AddMapForKey("k", array, mNew), kNoMemory, "!jsonValue.add_map(key, newMap)");
  expect(AddValueToArray(5, mRoot, mNew), kNoMemory, "!array.add_int64(value, newValue)");
  expect(SetValueForKey(~std::uint64_t{0}, "k", mRoot, mNew), CoreErrorCodes::kInvalidParam,
         "!std::in_range<std::int64_t>(value)");
  expect(SetValueForKey(static_cast<const char*>(nullptr), "k", mRoot, mNew),
         CoreErrorCodes::kNullPointer, "(value) == nullptr");
  EXPECT_EQ(mRoot.dump(), "{\"a\":[]}");
}

// A value, read as each type: the expression of the record, or what is read.
TEST_F(GJSONUtilsTest, ReadsTestTheType) {
  const auto read = [this]<typename T>(const std::string& json, T value) {
    EXPECT_EQ(GJSONUtils::Parse(mParser, "{\"k\":" + json + "}", mRoot), 0U);
    mLog = &RecordingAppender::Install();
    const T before = value;
    const unsigned code = GJSONUtils::GetValueForKey(mRoot, "k", value);
    if (code == 0) {
      EXPECT_TRUE(mLog->Lines().empty());
      return testing::PrintToString(value);
    }
    EXPECT_EQ(code, CoreErrorCodes::kError);
    EXPECT_EQ(value, before);
    const std::string& line = mLog->Lines().at(0);
    const std::size_t start = line.find("Expression='") + 12;
    return line.substr(start, line.find('\'', start) - start);
  };
  const std::string range = "number < lowest || number > highest";
  EXPECT_EQ(read("4294967295", 1U), "4294967295");
  EXPECT_EQ(read("4294967296", 1U), range);
  EXPECT_EQ(read("-1", 1U), range);
  EXPECT_EQ(read("1.5", 1U), "!valueObject.is_int()");
  EXPECT_EQ(read("\"1\"", 1), "!valueObject.is_int()");
  EXPECT_EQ(read("9223372036854775808", std::uint64_t{1}), "!valueObject.is_int()");
  EXPECT_EQ(read("9223372036854775807", std::uint64_t{1}), "9223372036854775807");
  EXPECT_EQ(read("-9223372036854775808", 1LL), "-9223372036854775808");
  EXPECT_EQ(read("-129", static_cast<signed char>(1)), range);
  EXPECT_EQ(read("-5", 1), "-5");
  EXPECT_EQ(read("5", 1.0), "5");
  EXPECT_EQ(read("null", 1.0), "!valueObject.is_double()");
  EXPECT_EQ(read("1", false), "!valueObject.is_bool()");
  EXPECT_EQ(read("true", false), "true");
  EXPECT_EQ(read("\"x\"", std::string()), "\"x\"");
  EXPECT_EQ(read("[]", std::string()), "!valueObject.is_string()");

  using Numbers = std::vector<unsigned int>;
  EXPECT_EQ(read("[]", Numbers()), "{}");
  EXPECT_EQ(read("[3,4294967295,3]", Numbers{1}), "{ 3, 4294967295, 3 }");
  EXPECT_EQ(read("{}", Numbers()), "!valueObject.is_array()");
  EXPECT_EQ(read("[1,1.5]", Numbers()), "valueObject.to_int64_array()");
  EXPECT_EQ(read("[1,-1]", Numbers()), "!std::in_range<unsigned int>(number)");
}

TEST_F(GJSONUtilsTest, MissingKeyIsRecordedOnceAndAgainAtDebugLevel) {
  unsigned int value = 9;
  std::vector<unsigned int> numbers{1};
  EXPECT_EQ(GJSONUtils::GetValueForKey(mRoot, "none", value), CoreErrorCodes::kNotFound);
  EXPECT_EQ(value, 9U);
  ASSERT_EQ(mLog->Lines().size(), 1U);
  EXPECT_NE(mLog->Lines()[0].find("File='GJSONUtils'"), std::string::npos);
  ExpectRecord("Expression='!jsonValue.find(key, value)'  Code='117440512'  \n");
  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  EXPECT_EQ(GJSONUtils::GetValueForKey(mRoot, "none", numbers), CoreErrorCodes::kNotFound);
  EXPECT_TRUE(numbers.empty());
  ASSERT_EQ(mLog->Lines().size(), 2U);
  EXPECT_NE(mLog->Lines()[1].find("[Debug]"), std::string::npos);
  EXPECT_NE(mLog->Lines()[1].find("Expression='GetValueForKey(jsonValue, key, valueObject)'"),
            std::string::npos);
}

TEST(GJSONUtils, WordsOfJsonPatch) {
  std::string all;
  for (auto* get : {GJSONUtils::GetJSONPatchOpKey, GJSONUtils::GetJSONPatchPathKey,
                    GJSONUtils::GetJSONPatchValueKey, GJSONUtils::GetJSONPatchFromKey,
                    GJSONUtils::GetJSONPatchPathDelimiter, GJSONUtils::GetJSONPatchOpAdd,
                    GJSONUtils::GetJSONPatchOpRemove, GJSONUtils::GetJSONPatchOpReplace,
                    GJSONUtils::GetJSONPatchOpCopy, GJSONUtils::GetJSONPatchOpMove,
                    GJSONUtils::GetJSONPatchOpTest}) {
    all += get() + " ";
  }
  EXPECT_EQ(all, "op path value from / add remove replace copy move test ");
}

}  // namespace
