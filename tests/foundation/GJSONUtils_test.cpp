#include "foundation/GJSONUtils.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "foundation/ErrorCodes.h"
#include "support/ErrorRecords.h"

namespace {

using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;
using namespace std::string_literals;

class GJSONUtilsTest : public testing::Test {
 protected:
  void SetUp() override { GLogger::GetSharedInstance()->ResetAllLoggingLevels(); }
  // What was logged since the last call.
  std::string TakeLog() {
    std::string all;
    for (const std::string& line : mLog->Lines()) all += line.substr(line.find('\t'));
    mLog = &RecordingAppender::Install();
    return all;
  }
  std::string TakeExpressions() {
    const std::string all = ExpressionsOf(*mLog);
    mLog = &RecordingAppender::Install();
    return all;
  }
  RecordingAppender* mLog = &RecordingAppender::Install();
  Parser mParser;
  Node mRoot = mParser.root();
  Node mNew;
};

TEST_F(GJSONUtilsTest, ParseGivesACodeOrTheRoot) {
  EXPECT_EQ(GJSONUtils::Parse(mParser, "[1]", mRoot), 0U);
  EXPECT_EQ(mRoot.name() + mRoot.dump() + TakeLog(), "root[1]");
  EXPECT_EQ(GJSONUtils::Parse(mParser, "{", mRoot), CoreErrorCodes::kInvalidParam);
  EXPECT_TRUE(mRoot.is_null());
  const std::string failed = "\t[Miscellaneous]\t[Error]\tFailed to parse JSON: ";
  EXPECT_TRUE(TakeLog().starts_with(failed + "JSON parse error:\nparse error: premature EOF"));
  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  EXPECT_EQ(GJSONUtils::Parse(mParser, "{\"%s\":1}", mRoot), 0U);
  EXPECT_EQ(TakeLog(), "\t[Miscellaneous]\t[Debug]\tAttempting to parse JSON: {\"%s\":1}\n");

  GLogger::GetSharedInstance()->ResetAllLoggingLevels();
  nlohmann::json value;
  EXPECT_EQ(GJSONUtils::Parse(value, R"({"a":[1,"\ud83d\ude00"]})"), 0U);
  EXPECT_EQ(value.dump() + TakeLog(), "{\"a\":[1,\"\xF0\x9F\x98\x80\"]}");
  for (const std::string& text :
       {""s, "nul"s, "[1]x"s, "{"s, "1e999"s, "\"\xff\""s, "/**/1"s, "\"\\ud800\""s, "1\0"s,
        std::string(100'000, '['), std::string(std::size_t{50} << 20, ' ')}) {
    EXPECT_EQ(GJSONUtils::Parse(value, text), CoreErrorCodes::kInvalidParam) << text.substr(0, 9);
    EXPECT_TRUE(value.is_null());
    EXPECT_TRUE(TakeLog().starts_with(failed));
  }
}

enum class Kind : unsigned char { eNone, eLast = 200 };
enum PlainKind { eMinus = -7 };

TEST_F(GJSONUtilsTest, WritesEachType) {
  using GJSONUtils::AddValueToArray;
  using GJSONUtils::SetValueForKey;
  Node array;
  Node map;
  unsigned int codes = 0;
  codes |= SetValueForKey(Kind::eLast, "kind", mRoot, mNew);
  codes |= SetValueForKey(eMinus, "plain", mRoot, mNew);
  codes |= SetValueForKey(std::uint64_t{1} << 62, "wide", mRoot, mNew);
  codes |= SetValueForKey("literal", "text", mRoot, mNew);
  codes |= SetValueForKey(true, "bool", mRoot, mNew);
  codes |= SetValueForKey(1.5F, "float", mRoot, mNew);
  codes |= GJSONUtils::AddArrayForKey("a", mRoot, array);
  codes |= AddValueToArray(7U, array, mNew) | AddValueToArray("x", array, mNew) |
           AddValueToArray(0.5, array, mNew) | AddValueToArray(false, array, mNew) |
           GJSONUtils::AddArrayToArray(array, mNew) | GJSONUtils::AddMapToArray(array, mNew);
  codes |= SetValueForKey(3, "in", mNew, map) | AddValueToArray(mNew, array, map);
  codes |= GJSONUtils::AddMapForKey("m", mRoot, map);
  codes |= SetValueForKey<Node>(mNew, "copy", map, mNew);
  EXPECT_EQ(codes, 0U);
  EXPECT_EQ(mRoot.dump(), R"({"kind":200,"plain":-7,"wide":4611686018427387904,)"
                          R"("text":"literal","bool":true,"float":1.5,)"
                          R"("a":[7,"x",0.5,false,[],{"in":3},{"in":3}],"m":{"copy":{"in":3}}})");
  EXPECT_TRUE(GJSONUtils::HasValueForKey(mRoot, "m") && !GJSONUtils::HasValueForKey(mRoot, "q"));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(GJSONUtilsTest, FailedWritesAreRecorded) {
  constexpr unsigned kNoMemory = CoreErrorCodes::kOutOfMemory;
  Node array;
  ASSERT_EQ(GJSONUtils::AddArrayForKey("a", mRoot, array), 0U);
  using GJSONUtils::SetValueForKey;
  constexpr auto kNaN = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(SetValueForKey("s", "k", array, mNew), kNoMemory);
  EXPECT_EQ(SetValueForKey(5U, "k", array, mNew), kNoMemory);
  EXPECT_EQ(SetValueForKey(kNaN, "k", mRoot, mNew), kNoMemory);
  EXPECT_EQ(SetValueForKey(true, "k", array, mNew), kNoMemory);
  EXPECT_EQ(GJSONUtils::AddMapForKey("k", array, mNew), kNoMemory);
  EXPECT_EQ(GJSONUtils::AddValueToArray(5, mRoot, mNew), kNoMemory);
  EXPECT_EQ(SetValueForKey(~std::uint64_t{0}, "k", mRoot, mNew), CoreErrorCodes::kInvalidParam);
  const char* none = nullptr;
  EXPECT_EQ(SetValueForKey(none, "k", mRoot, mNew), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(TakeExpressions(),
            "!jsonValue.add_string(key, value, newValue)\n"
            "!jsonValue.add_int64(key, value, newValue)\n"
            "!jsonValue.add_double(key, value, newValue)\n"
            "!jsonValue.add_bool(key, value, newValue)\n!jsonValue.add_map(key, newMap)\n"
            "!array.add_int64(value, newValue)\n!std::in_range<std::int64_t>(value)\n"
            "(value) == nullptr\n");
  EXPECT_EQ(mRoot.dump(), "{\"a\":[]}");
}

// A value, read as each type: the expression of the record, or what is read.
TEST_F(GJSONUtilsTest, ReadsTestTheType) {
  const auto read = [this]<typename T>(const std::string& json, T value) {
    EXPECT_EQ(GJSONUtils::Parse(mParser, "{\"k\":" + json + "}", mRoot), 0U);
    const T before = value;
    const unsigned code = GJSONUtils::GetValueForKey(mRoot, "k", value);
    const std::string expressions = TakeExpressions();
    if (code == 0) return testing::PrintToString(value) + expressions;
    EXPECT_EQ(code, CoreErrorCodes::kError);
    EXPECT_EQ(value, before);
    return expressions;
  };
  const std::string range = "number < lowest || number > highest\n";
  EXPECT_EQ(read("4294967295", 1U), "4294967295");
  EXPECT_EQ(read("4294967296", 1U) + read("-1", 1U), range + range);
  EXPECT_EQ(read("1.5", 1U) + read("\"1\"", 1), "!valueObject.is_int()\n!valueObject.is_int()\n");
  EXPECT_EQ(read("9223372036854775808", std::uint64_t{1}), "!valueObject.is_int()\n");
  EXPECT_EQ(read("9223372036854775807", std::uint64_t{1}), "9223372036854775807");
  EXPECT_EQ(read("-9223372036854775808", 1LL), "-9223372036854775808");
  EXPECT_EQ(read("-129", static_cast<signed char>(1)), range);
  EXPECT_EQ(read("5", 1.0) + read("null", 1.0), "5!valueObject.is_double()\n");
  EXPECT_EQ(read("true", false) + read("1", false), "true!valueObject.is_bool()\n");
  EXPECT_EQ(read("\"x\"", ""s) + read("[]", ""s), "\"x\"!valueObject.is_string()\n");
  using Numbers = std::vector<unsigned int>;
  EXPECT_EQ(read("[]", Numbers()), "{}");
  EXPECT_EQ(read("[3,4294967295,3]", Numbers{1}), "{ 3, 4294967295, 3 }");
  EXPECT_EQ(read("{}", Numbers()), "!valueObject.is_array()\n");
  EXPECT_EQ(read("[1,1.5]", Numbers()), "valueObject.to_int64_array()\n");
  EXPECT_EQ(read("[1,-1]", Numbers()), "!std::in_range<unsigned int>(number)\n");
}

TEST_F(GJSONUtilsTest, MissingKeyIsRecordedOnceAndAgainAtDebugLevel) {
  unsigned int value = 9;
  std::vector<unsigned int> numbers{1};
  EXPECT_EQ(GJSONUtils::GetValueForKey(mRoot, "none", value), CoreErrorCodes::kNotFound);
  EXPECT_EQ(value, 9U);
  EXPECT_EQ(TakeExpressions(), "!jsonValue.find(key, value)\n");
  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  EXPECT_EQ(GJSONUtils::GetValueForKey(mRoot, "none", numbers), CoreErrorCodes::kNotFound);
  EXPECT_TRUE(numbers.empty());
  EXPECT_NE(mLog->Lines().back().find("[Debug]"), std::string::npos);
  EXPECT_EQ(TakeExpressions(),
            "!jsonValue.find(key, value)\nGetValueForKey(jsonValue, key, valueObject)\n");
}

TEST(GJSONUtils, WordsOfJsonPatch) {
  using namespace GJSONUtils;
  EXPECT_EQ(GetJSONPatchOpKey() + GetJSONPatchPathDelimiter() + GetJSONPatchPathKey() +
                GetJSONPatchPathDelimiter() + GetJSONPatchValueKey() + GetJSONPatchFromKey(),
            "op/path/valuefrom");
  EXPECT_EQ(GetJSONPatchOpAdd() + GetJSONPatchOpRemove() + GetJSONPatchOpReplace() +
                GetJSONPatchOpCopy() + GetJSONPatchOpMove() + GetJSONPatchOpTest(),
            "addremovereplacecopymovetest");
}

}  // namespace
