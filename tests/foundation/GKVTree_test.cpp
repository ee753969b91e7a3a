#include "foundation/GKVTree.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <nlohmann/json.hpp>
#include <sstream>

#include "foundation/GLibXMLDoc.h"
#include "foundation/GLogger.h"
#include "support/RecordingAppender.h"

namespace {

using S = GLibXMLSerializable;

constexpr TModuleErrorCode kOk = CoreErrorCodes::kSuccess;

std::string ToXML(const GKVTree& tree, int indent = GKVTree::kNoIndent) {
  std::ostringstream stream;
  const TModuleErrorCode code = tree.WriteToXMLStream(stream, indent);
  return code == kOk ? stream.str() : GetNameForErrorCode(code) + stream.str();
}

TModuleErrorCode FromXML(const std::string& xml, GKVTree& tree) {
  return tree.SetFromXMLBuffer(xml.data(), xml.size());
}

std::string Value(const std::string& type, const std::string& children, int size = 1) {
  return "<value type=\"" + type + "\" isArray=\"false\" size=\"" + std::to_string(size) + "\">" +
         children + "</value>";
}

std::string Entry(const std::string& key, const std::string& children) {
  return "<kv key=\"" + key + "\">" + children + "</kv>";
}

std::string Tree(const std::string& entries) { return "<kvtree>" + entries + "</kvtree>"; }

const std::string kInt = Value("TSInt32", "<integer>1</integer>");

std::string Repeat(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// `depth` trees, the innermost empty.
GKVTree Nested(int depth) {
  GKVTree tree;
  for (int i = 1; i < depth; ++i) {
    GKVTree outer;
    outer.SetValueForKey(tree, "k");
    tree = outer;
  }
  return tree;
}

TEST(GKVTree, KeepsEntries) {
  GKVTree tree;
  tree.SetValueForKey("x", "b");
  tree.SetValueForKey(1, "a");
  tree.SetValueForKey(2.0, "b");
  std::vector<std::string> keys = {"old"};
  tree.GetKeys(keys);
  EXPECT_EQ(keys, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(tree.GetValueTypeForKey("b"), GValue::kValueType_double);
  GKVTree copy = tree;
  *copy.GetWritableValuePtrForKey("a") = "changed";
  EXPECT_EQ(tree.GetValuePtrForKey("a")->GetValueType(), GValue::kValueType_long);
  copy.ClearValueForKey("a");
  copy.ClearValueForKey("absent");
  EXPECT_EQ(copy.GetValuePtrForKey("a"), nullptr);
  EXPECT_EQ(copy.GetWritableValuePtrForKey("a"), nullptr);
  EXPECT_EQ(copy.GetValueTypeForKey("a"), GValue::kValueType_NULL);
  copy.SetValueForKey(*copy.GetValuePtrForKey("b"), "b");
  EXPECT_EQ(copy.GetValueTypeForKey("b"), GValue::kValueType_double);
}

TEST(GKVTree, TakesATreeFromWithinItself) {
  auto inner = boost::make_shared<GKVTree>();
  inner->SetValueForKey(1, "leaf");
  GKVTree tree;
  tree.SetValueForKey(inner, "k");
  GKVTree* within = inner.get();
  inner.reset();
  tree.Assign(*within);
  EXPECT_EQ(ToXML(tree), Tree(Entry("leaf", kInt)));
  tree.Assign(static_cast<const GKVTree&>(tree));
  EXPECT_EQ(tree.GetValueTypeForKey("leaf"), GValue::kValueType_long);
  tree.Clear();
  EXPECT_EQ(ToXML(tree), "<kvtree></kvtree>");
}

TEST(GKVTree, WritesAndReads) {
  GKVTree inner;
  inner.SetValueForKey(std::vector<std::string>{"x", " "}, "list");
  GKVTree tree;
  tree.SetValueForKey(1, "b");
  tree.SetValueForKey(inner, "a&'\"<\t\n\r \xC3\xA9");
  const std::string list =
      "<value type=\"string\" isArray=\"true\" size=\"2\"><str>x</str><str> </str></value>";
  const std::string xml = Tree(Entry("a&amp;&apos;&quot;&lt;&#9;&#10;&#13; \xC3\xA9",
                                     Value("kvtree", Tree(Entry("list", list)))) +
                               Entry("b", kInt));
  EXPECT_EQ(ToXML(tree), xml);
  const std::string indented = ToXML(tree, 1);
  EXPECT_TRUE(indented.starts_with("  <kvtree>\n    <kv key")) << indented;
  for (const std::string& text :
       {xml, indented, "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + xml + "\n"}) {
    GKVTree back;
    back.SetValueForKey(1, "old");
    ASSERT_EQ(FromXML(text, back), kOk) << text;
    EXPECT_EQ(ToXML(back), xml);
  }
  GKVTree empty;
  EXPECT_EQ(FromXML("<kvtree></kvtree>", tree), kOk);
  EXPECT_EQ(ToXML(tree), ToXML(empty));
}

TEST(GKVTree, RefusesWhatIsNoTree) {
  const std::string two = "<integer>1</integer><integer>2</integer>";
  const struct {
    std::string xml;
    TModuleErrorCode code;
    std::string expression = {};
  } rows[] = {
      {"<tree/>", S::kWrongElementName, "!node.VerifyName(kXMLElementName_kvtree)"},
      {Tree("text"), S::kInvalidChildNode, "!node.IsNodeBlank()"},
      {Tree("<!-- -->"), S::kInvalidChildNode},
      {Tree("<![CDATA[ ]]>"), S::kInvalidChildNode},
      {Tree("<?p i?>"), S::kInvalidChildNode},
      {Tree("<KV/>"), S::kWrongElementName},
      {Tree("<kv>" + kInt + "</kv>"), S::kMissingRequiredAttribute, "strKey.empty()"},
      {Tree(Entry("", kInt)), S::kMissingRequiredAttribute, "strKey.empty()"},
      {Tree(Entry("a", " ")), S::kMissingRequiredChildElement, "!bSetValue"},
      {Tree(Entry("a", kInt) + Entry("b", "")), S::kMissingRequiredChildElement, "!bSetValue"},
      {Tree(Entry("a", "<v/>")), S::kWrongElementName,
       "!node.VerifyName(GValue::kStrElementName_value)"},
      {Tree(Entry("a", kInt + kInt)), S::kInvalidChildElement},
      {Tree(Entry("a", kInt + "x")), S::kInvalidChildNode},
      {Tree(Entry("a", kInt) + Entry("a", kInt)), CoreErrorCodes::kItemAlreadyExists,
       "!mapInsertion.second"},
      {Tree(Entry("a", Value("int", two))), S::kInvalidAttributeContent,
       "eType == kValueType_NULL"},
      {Tree(Entry("a", "<value type='TSInt32'/>")), S::kMissingRequiredAttribute},
      {Tree(Entry("a", "<value size='0'/>")), S::kMissingRequiredAttribute},
      {Tree(Entry("a", "<value type='bool' size='-1'/>")), S::kInvalidAttributeContent},
      {Tree(Entry("a", "<value type='bool' size='4294967296000'/>")), GValue::kValueSizeMismatch},
      {Tree(Entry("a", Value("TSInt32", two))), GValue::kValueSizeMismatch},
      {Tree(Entry("a", Value("string", "<str><![CDATA[x]]></str>"))),
       GLibXMLNode::kUnexpectedNodes},
      {Tree(Entry("a", Value("kvtree", "<str/>"))), S::kWrongElementName},
  };
  for (const auto& row : rows) {
    GKVTree tree;
    tree.SetValueForKey(1, "old");
    const RecordingAppender& log = RecordingAppender::Install();
    EXPECT_EQ(FromXML(row.xml, tree), row.code) << row.xml;
    EXPECT_EQ(ToXML(tree), Tree(Entry("old", kInt)));
    ASSERT_FALSE(log.Lines().empty());
    EXPECT_NE(log.Lines()[0].find("Expression='" + row.expression), std::string::npos)
        << log.Lines()[0];
  }
}

TEST(GKVTree, RefusesHostileDocuments) {
  using namespace std::string_literals;
  const std::string good = Tree(Entry("a", kInt));
  const auto wide = [](std::string_view text) {
    std::string bytes = "\xFE\xFF";
    for (const char c : text) bytes.append({'\0', c});
    return bytes;
  };
  std::string laughs = "<!DOCTYPE kvtree [<!ENTITY l0 'lol'>";
  for (int i = 1; i < 12; ++i) {
    const std::string inner = "&l" + std::to_string(i - 1) + ";";
    laughs += "<!ENTITY l" + std::to_string(i) + " '" + Repeat(inner, 10) + "'>";
  }
  const std::string rows[] = {
      "",
      "\0"s,
      "\xEF\xBB\xBF",
      laughs + "]>" + Tree(Entry("&l11;", kInt)),
      laughs + "]>" + Tree(Entry("a", Value("string", "<str>&l11;</str>"))),
      "<!DOCTYPE kvtree [<!ENTITY f SYSTEM 'file:///etc/passwd'>]>" +
          Tree(Entry("a", Value("string", "<str>&f;</str>"))),
      "<!DOCTYPE kvtree SYSTEM 'file:///etc/passwd'>" + good,
      "<!DOCTYPE kvtree>" + good,
      Tree(Entry("&undeclared;", kInt)),
      Tree(Entry("&#0;", kInt)),
      Repeat("<kvtree>", 100'000),
      Repeat("<kvtree>", 100'000) + Repeat("</kvtree>", 100'000),
      good.substr(0, good.size() - 1),
      good + "\0"s,
      good + good,
      "<kvtree>\0</kvtree>"s,
      wide(good),
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + Tree(Entry("\xE9", kInt)),
      "\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95",
  };
  for (const std::string& xml : rows) {
    GKVTree tree;
    EXPECT_EQ(FromXML(xml, tree), GLibXML::kParseFailed) << xml.substr(0, 80);
  }
  GKVTree tree;
  for (const char* encoding : {"UTF-16", "EBCDIC-CP-US", "no-such"}) {
    const std::string xml =
        std::string("<?xml version=\"1.0\" encoding=\"") + encoding + "\"?>" + good;
    EXPECT_EQ(FromXML(xml, tree), kOk) << encoding;
  }
  EXPECT_EQ(FromXML(good + std::string(GKVTree::kMaxXMLBytes, ' '), tree),
            CoreErrorCodes::kNotSupported);
  // libxml2 would take half a minute.
  std::string attributes;
  for (int i = 0; i < 100'000; ++i) attributes += " a" + std::to_string(i) + "='>='";
  EXPECT_EQ(FromXML("<kvtree" + attributes + "/>", tree), CoreErrorCodes::kNotSupported);
  const std::string many = attributes.substr(0, attributes.find(" a64="));
  EXPECT_EQ(FromXML("<kvtree" + many + ">" + good.substr(8), tree), kOk);
  EXPECT_EQ(tree.SetFromXMLBuffer(nullptr, 0), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(tree.SetFromXMLBuffer(good.data(), 0x1'0000'0000UL), CoreErrorCodes::kNotSupported);
  EXPECT_EQ(ToXML(tree), good);
  EXPECT_EQ(tree.SetFromXMLNode(GLibXMLNode()), S::kWrongElementName);
}

TEST(GKVTree, DepthIsBounded) {
  const int limit = GKVTree::kMaxTreeDepth;
  nlohmann::json json;
  GKVTree back;
  ASSERT_EQ(FromXML(ToXML(Nested(limit)), back), kOk);
  EXPECT_EQ(ToXML(back), ToXML(Nested(limit)));
  EXPECT_EQ(back.ConvertToJSON(json), kOk);
  const GKVTree deeper = Nested(limit + 1);
  EXPECT_EQ(ToXML(deeper), "CoreErrorCodes::kNotSupported");
  EXPECT_EQ(deeper.ConvertToJSON(json), CoreErrorCodes::kNotSupported);
  const std::string start = "<kvtree><kv key='k'><value type='kvtree' size='1'>";
  const std::string end = "</value></kv></kvtree>";
  EXPECT_EQ(FromXML(Repeat(start, limit) + "<kvtree/>" + Repeat(end, limit), back),
            CoreErrorCodes::kNotSupported);
  EXPECT_EQ(ToXML(back), ToXML(Nested(limit)));

  GKVTree abyss = Nested(100'000);
  GKVTree copy = abyss;
  abyss.Clear();
  EXPECT_EQ(ToXML(copy), "CoreErrorCodes::kNotSupported");
}

TEST(GKVTree, CirclesAndFansEnd) {
  const auto circle = boost::make_shared<GKVTree>();
  circle->SetValueForKey(circle, "self");
  nlohmann::json json = "before";
  EXPECT_EQ(ToXML(*circle), "CoreErrorCodes::kNotSupported");
  EXPECT_EQ(circle->ConvertToJSON(json), CoreErrorCodes::kNotSupported);
  circle->Clear();
  // 2^40 empty trees in 41 objects.
  auto fan = boost::make_shared<GKVTree>();
  for (int i = 0; i < 40; ++i) {
    const auto outer = boost::make_shared<GKVTree>();
    outer->SetValueForKey(std::vector<GKVTreePtr>{fan, fan}, "k");
    fan = outer;
  }
  EXPECT_EQ(ToXML(*fan), "CoreErrorCodes::kNotSupported");
  EXPECT_EQ(fan->ConvertToJSON(json), CoreErrorCodes::kNotSupported);
  EXPECT_EQ(json, "before");
}

TEST(GKVTree, WritesWholeOrNothing) {
  for (const char* key : {"", "\x01", "\xFF", "\uFFFE"}) {
    GKVTree tree;
    tree.SetValueForKey(1, "A");
    tree.SetValueForKey(1, key);
    EXPECT_EQ(ToXML(tree), "GLibXMLSerializable::kInvalidAttributeContent");
  }
  GKVTree tree;
  tree.SetValueForKey(1, "a");
  tree.SetValueForKey(GValue(), "b");
  EXPECT_EQ(ToXML(tree), "GValue::kValueTypeError");
}

TEST(GKVTree, BecomesJson) {
  GKVTree inner;
  inner.SetValueForKey(std::vector<int>{1, -2}, "list");
  GKVTree tree;
  tree.SetValueForKey(std::vector<GKVTree>{inner, GKVTree()}, "trees");
  tree.SetValueForKey(inner, "in\"ner");
  nlohmann::json json;
  ASSERT_EQ(tree.ConvertToJSON(json), kOk);
  EXPECT_EQ(json.dump(), R"({"in\"ner":{"list":[1,-2]},"trees":[{"list":[1,-2]},{}]})");
  tree.SetValueForKey(1, "\xFF");
  EXPECT_EQ(tree.ConvertToJSON(json), GValue::kValueConversionError);
  EXPECT_EQ(json.size(), 2U);
}

TEST(GKVTree, SetsLoggingLevels) {
  GKVTree levels;
  levels.SetValueForKey("warn", "One");
  levels.SetValueForKey("verbose", "Two");
  levels.SetValueForKey(4, "Three");
  levels.SetValueForKey(std::vector<std::string>{"DEBUG", "error"}, "Four");
  levels.SetValueForKey(std::vector<std::string>(), "Five");
  GLogger& logger = *GLogger::GetSharedInstance();
  logger.SetDefaultLoggingLevel(GLogger::eError);
  logger.SetLoggingLevelsFromKVTree(levels);
  const char* identifiers[] = {"one", "two", "three", "four", "five"};
  const GLogger::LoggingLevel expected[] = {GLogger::eWarning, GLogger::eError, GLogger::eError,
                                            GLogger::eDebug, GLogger::eError};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(logger.GetLoggingLevelForIdentifier(identifiers[i]), expected[i]) << identifiers[i];
  }
}

}  // namespace
