#include "foundation/GKVTree.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>

#include "foundation/GLibXMLDoc.h"
#include "foundation/GLogger.h"
#include "support/ErrorRecords.h"

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
  GKVTree copy = tree;
  *copy.GetWritableValuePtrForKey("a") = "changed";
  EXPECT_EQ(tree.GetValueTypeForKey("a"), GValue::kValueType_long);
  copy.ClearValueForKey("a");
  copy.ClearValueForKey("absent");
  EXPECT_EQ(copy.GetWritableValuePtrForKey("a"), nullptr);
  EXPECT_EQ(copy.GetValueTypeForKey("a"), GValue::kValueType_NULL);
  copy.SetValueForKey(*copy.GetValuePtrForKey("b"), "b");
  EXPECT_EQ(copy.GetValueTypeForKey("b"), GValue::kValueType_double);
}

TEST(GKVTree, TakesATreeFromWithinItself) {
  GKVTree tree = Nested(2);
  GKVTree* outer = &tree;
  GKVTreePtr within;
  ASSERT_EQ(tree.GetValuePtrForKey("k")->GetValue(within), kOk);
  within->SetValueForKey(1, "leaf");
  outer->Assign(*std::exchange(within, nullptr));
  outer->Assign(tree);
  EXPECT_EQ(ToXML(tree), Tree(Entry("leaf", kInt)));
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
  EXPECT_EQ(FromXML("<kvtree/>", tree), kOk);
  EXPECT_EQ(ToXML(tree), "<kvtree></kvtree>");
}

TEST(GKVTree, RefusesWhatIsNoTree) {
  const std::string two = "<integer>1</integer><integer>2</integer>";
  const auto one = [](const std::string& children) { return Tree(Entry("a", children)); };
  const std::tuple<TModuleErrorCode, const char*, std::vector<std::string>> rows[] = {
      {S::kWrongElementName,
       "!node.VerifyName(kXMLElementName_kvtree)",
       {"<tree/>", one("<value type='kvtree' size='1'><str/></value>")}},
      {S::kInvalidChildNode,
       "!node.IsNodeBlank()",
       {Tree("text"), Tree("<!-- -->"), Tree("<![CDATA[ ]]>"), Tree("<?p i?>"), one(kInt + "x")}},
      {S::kWrongElementName, "!entry.VerifyName(kXMLElementName_kv)", {Tree("<KV/>")}},
      {S::kMissingRequiredAttribute,
       "strKey.empty()",
       {Tree("<kv>" + kInt + "</kv>"), Tree(Entry("", kInt))}},
      {S::kMissingRequiredChildElement,
       "!bSetValue",
       {one(" "), Tree(Entry("a", kInt) + Entry("b", ""))}},
      {S::kWrongElementName, "!node.VerifyName(GValue::kStrElementName_value)", {one("<v/>")}},
      {S::kInvalidChildElement, "bSetValue", {one(kInt + kInt)}},
      {CoreErrorCodes::kItemAlreadyExists,
       "!mapInsertion.second",
       {Tree(Entry("a", kInt) + Entry("a", kInt))}},
      {S::kInvalidAttributeContent, "eType == kValueType_NULL", {one(Value("int", two))}},
      {S::kMissingRequiredAttribute, "strSize.empty()", {one("<value type='TSInt32'/>")}},
      {S::kMissingRequiredAttribute, "strType.empty()", {one("<value size='0'/>")}},
      {S::kInvalidAttributeContent, "!isSize", {one("<value type='bool' size='-1'/>")}},
      {GValue::kValueSizeMismatch,
       "value.m_dataPtr->size() != size",
       {one("<value type='bool' size='4294967296000'/>"), one(Value("TSInt32", two))}}};
  for (const auto& [code, expression, texts] : rows) {
    for (const std::string& xml : texts) {
      GKVTree tree;
      tree.SetValueForKey(1, "old");
      const RecordingAppender& log = RecordingAppender::Install();
      EXPECT_EQ(FromXML(xml, tree), code) << xml;
      EXPECT_EQ(ToXML(tree), Tree(Entry("old", kInt)));
      EXPECT_TRUE(ExpressionsOf(log).starts_with(expression)) << xml << ExpressionsOf(log);
    }
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
  const auto one = [](const std::string& text) { return Tree(Entry("a", Value("string", text))); };
  const std::string levels = Repeat("<kvtree>", 100'000);
  const std::string outside = "SYSTEM 'file:///etc/passwd'>";
  for (const std::string& xml :
       {""s,
        "\0"s,
        "\xEF\xBB\xBF"s,
        laughs + "]>" + Tree(Entry("&l11;", kInt)),
        laughs + "]>" + one("<str>&l11;</str>"),
        "<!DOCTYPE kvtree [<!ENTITY f " + outside + "]>" + one("<str>&f;</str>"),
        "<kvtree xmlns='urn:n'></kvtree>"s,
        "<kvtree><kv xmlns:n='urn:n'/></kvtree>"s,
        "<!DOCTYPE kvtree " + outside + good,
        "<!DOCTYPE kvtree>" + good,
        Tree(Entry("&undeclared;", kInt)),
        Tree(Entry("&#0;", kInt)),
        levels,
        levels + Repeat("</kvtree>", 100'000),
        good.substr(0, good.size() - 1),
        good + "\0"s,
        good + good,
        "<kvtree>\0</kvtree>"s,
        wide(good),
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + Tree(Entry("\xE9", kInt)),
        "\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95"s}) {
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
  const GKVTree deepest = Nested(limit);
  ASSERT_EQ(FromXML(ToXML(deepest), back), kOk);
  EXPECT_EQ(back.ConvertToJSON(json), kOk);
  const std::string start = "<kvtree><kv key='k'><value type='kvtree' size='1'>";
  const std::string end = "</value></kv></kvtree>";
  EXPECT_EQ(FromXML(Repeat(start, limit) + "<kvtree/>" + Repeat(end, limit), back),
            CoreErrorCodes::kNotSupported);
  EXPECT_EQ(ToXML(back), ToXML(deepest));
  GKVTree abyss = Nested(100'000);
  const GKVTree copy = abyss;
  abyss.Clear();
  const auto circle = boost::make_shared<GKVTree>();
  circle->SetValueForKey(circle, "self");
  // 2^40 empty trees in 41 objects.
  auto fan = boost::make_shared<GKVTree>();
  for (int i = 0; i < 40; ++i) {
    const auto outer = boost::make_shared<GKVTree>();
    outer->SetValueForKey(std::vector<GKVTreePtr>{fan, fan}, "k");
    fan = outer;
  }
  json = "before";
  for (const GKVTree& tree : {Nested(limit + 1), copy, *circle, *fan}) {
    EXPECT_EQ(ToXML(tree), "CoreErrorCodes::kNotSupported");
    EXPECT_EQ(tree.ConvertToJSON(json), CoreErrorCodes::kNotSupported);
    EXPECT_EQ(json, "before");
  }
  circle->Clear();
}

TEST(GKVTree, BecomesJsonOrXmlWholeOrNotAtAll) {
  GKVTree inner;
  inner.SetValueForKey(std::vector<int>{1, -2}, "list");
  GKVTree tree;
  tree.SetValueForKey(std::vector<GKVTree>{inner, GKVTree()}, "in\"ner");
  nlohmann::json json;
  ASSERT_EQ(tree.ConvertToJSON(json), kOk);
  EXPECT_EQ(json.dump(), R"({"in\"ner":[{"list":[1,-2]},{}]})");
  tree.SetValueForKey(1, "\xFF");
  EXPECT_EQ(tree.ConvertToJSON(json), GValue::kValueConversionError);
  EXPECT_EQ(json.size(), 1U);
  for (const char* key : {"", "\x01", "\xFF", "\uFFFE"}) {
    inner.SetValueForKey(1, key);
    EXPECT_EQ(ToXML(inner), "GLibXMLSerializable::kInvalidAttributeContent");
    inner.ClearValueForKey(key);
  }
}

TEST(GKVTree, SetsLoggingLevels) {
  const std::vector<std::string> several = {"DEBUG", "error"};
  const std::pair<const char*, GValue> rows[] = {{"One", "warn"},
                                                 {"Two", "verbose"},
                                                 {"Three", 4},
                                                 {"Four", several},
                                                 {"Five", std::vector<std::string>()}};
  GKVTree levels;
  for (const auto& [identifier, level] : rows) levels.SetValueForKey(level, identifier);
  GLogger& logger = *GLogger::GetSharedInstance();
  logger.SetDefaultLoggingLevel(GLogger::eError);
  logger.SetLoggingLevelsFromKVTree(levels);
  std::string found;
  for (const char* identifier : {"one", "two", "three", "four", "five"}) {
    found += GLogger::LevelToString(logger.GetLoggingLevelForIdentifier(identifier)) + " ";
  }
  EXPECT_EQ(found, "Warning Error Error Debug Error ");
}

}  // namespace
