#include "foundation/JsonNode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>

#include "foundation/JsonParser.h"

namespace {

using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;

std::string ErrorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(JsonNode, TestsOfEachType) {
  struct Row {
    const char* text;
    const char* types;  // those whose test is true
  };
  const Row rows[] = {
      {"null", "null"},
      {"\"\"", "string"},
      {"5", "int double"},
      {"-0", "int double"},
      {"1.5", "double"},
      {"1.0", "double"},
      {"1E2", "double"},
      {"true", "bool"},
      {"false", "bool"},
      {"[]", "array"},
      {"{}", "map"},
      {"1e999", ""},
      {"5e-324", "double"},
      {"9223372036854775807", "int double"},
      {"-9223372036854775808", "int double"},
      {"9223372036854775808", "double"},
      {"9223372036854775870", "double"},
  };
  for (const Row& row : rows) {
    Parser parser;
    parser.load(row.text);
    const Node node = parser.root();
    std::string types;
    const auto add = [&types](bool isOne, const char* type) {
      if (isOne) types += (types.empty() ? "" : " ") + std::string(type);
    };
    add(node.is_null(), "null");
    add(node.is_string(), "string");
    add(node.is_int(), "int");
    add(node.is_double(), "double");
    add(node.is_bool(), "bool");
    add(node.is_array(), "array");
    add(node.is_map(), "map");
    EXPECT_EQ(types, row.types) << row.text;
    EXPECT_EQ(node.dump(), row.text);
  }
  EXPECT_TRUE(Node().is_null());
  EXPECT_EQ(Node().dump(), "null");
}

TEST(JsonNode, ReadersRefuseOtherTypes) {
  Parser parser;
  parser.load(
      R"({"s":"text","i":5,"big":5000000000,"d":1.50,"huge":1e999,"t":true,"f":false,"n":null,
                  "a":[1,"x"],"m":{"k":"v","l":1}})");
  const Node root = parser.root();
  struct Row {
    const char* key;
    std::function<void(const Node&)> read;
    const char* rest;  // behind: Expected JSON node "
  };
  const Row rows[] = {
      {"i", [](const Node& n) { n.to_string(); }, "i\" to be STRING, found INTEGER: 5"},
      {"s", [](const Node& n) { n.to_int(); }, "s\" to be INTEGER, found STRING: text"},
      {"big", [](const Node& n) { n.to_int(); }, "big\" to be INTEGER, found INTEGER: 5000000000"},
      {"d", [](const Node& n) { n.to_int64(); }, "d\" to be INTEGER, found DOUBLE: 1.50"},
      {"huge", [](const Node& n) { n.to_double(); }, "huge\" to be DOUBLE, found DOUBLE: 1e999"},
      {"t", [](const Node& n) { n.to_double(); }, "t\" to be DOUBLE, found BOOLEAN: true"},
      {"f", [](const Node& n) { n.to_array(); }, "f\" to be ARRAY, found BOOLEAN: false"},
      {"n", [](const Node& n) { n.to_bool(); }, "n\" to be BOOLEAN, found"},
      {"a", [](const Node& n) { n.to_map(); }, "a\" to be OBJECT, found ARRAY"},
      {"m", [](const Node& n) { n.to_int_array(); }, "m\" to be ARRAY, found OBJECT"},
      {"a", [](const Node& n) { n.to_int_array(); }, "a[1]\" to be INTEGER, found STRING: x"},
      {"a", [](const Node& n) { n.to_array()[1].to_bool(); },
       "a[1]\" to be BOOLEAN, found STRING: x"},
      {"m", [](const Node& n) { n.to_string_map(); }, "m[\"l\"]\" to be STRING, found INTEGER: 1"},
      {"m", [](const Node& n) { n.to_map().at("k").to_int(); },
       "m[\"k\"]\" to be INTEGER, found STRING: v"},
  };
  for (const Row& row : rows) {
    Node node;
    ASSERT_TRUE(root.find(row.key, node));
    EXPECT_EQ(ErrorOf([&] { row.read(node); }), std::string("Expected JSON node \"") + row.rest);
  }
  EXPECT_EQ(ErrorOf([] { Node().to_string(); }), "Expected JSON node \"\" to be STRING, found");
}

TEST(JsonNode, ReadersGiveArraysAndMaps) {
  Parser parser;
  parser.load(R"({"i":[1,-2],"d":[1,2.5],"b":[true,false],"s":["a",""],"im":{"a":1,"a":2},
                  "dm":{"a":0.5},"bm":{"a":true},"sm":{"b":"x","a":"y"}})");
  const Parser& p = parser;
  EXPECT_EQ(p.find("i").to_int_array(), (std::vector<int>{1, -2}));
  EXPECT_EQ(p.find("d").to_double_array(), (std::vector<double>{1, 2.5}));
  EXPECT_EQ(p.find("b").to_bool_array(), (std::vector<bool>{true, false}));
  EXPECT_EQ(p.find("s").to_string_array(), (std::vector<std::string>{"a", ""}));
  EXPECT_EQ(p.find("im").to_int_map(), (std::map<std::string, int>{{"a", 1}}));
  EXPECT_EQ(p.find("im/a").to_int(), 1);  // the first of two
  EXPECT_EQ(p.find("dm").to_double_map(), (std::map<std::string, double>{{"a", 0.5}}));
  EXPECT_EQ(p.find("bm").to_bool_map(), (std::map<std::string, bool>{{"a", true}}));
  EXPECT_EQ(p.find("sm").to_string_map(),
            (std::map<std::string, std::string>{{"a", "y"}, {"b", "x"}}));
}

TEST(JsonNode, WritersKeepTheOrderOfCalls) {
  Parser parser;
  Node root = parser.root();
  Node array;
  Node map;
  Node out;
  EXPECT_TRUE(root.add_string("z", "\"\xc3\xa9/\n", out));
  EXPECT_EQ(out.name(), "z");
  EXPECT_TRUE(root.add_int("i", -5, out));
  EXPECT_TRUE(root.add_int64("low", std::numeric_limits<std::int64_t>::min(), out));
  EXPECT_EQ(out.to_int64(), std::numeric_limits<std::int64_t>::min());
  EXPECT_TRUE(root.add_double("d", 0.1, out));
  EXPECT_TRUE(root.add_double("whole", 5, out));
  EXPECT_FALSE(out.is_int());
  EXPECT_TRUE(root.add_bool("b", false, out));
  EXPECT_TRUE(root.add_array("a", array));
  EXPECT_TRUE(array.add_string("s", out));
  EXPECT_TRUE(array.add_int(1, out));
  EXPECT_EQ(out.name(), "a[1]");
  EXPECT_TRUE(array.add_int64(2, out) && array.add_double(1e30, out) && array.add_bool(true, out));
  EXPECT_TRUE(array.add_map(map) && array.add_array(out));
  EXPECT_TRUE(map.add_map("m", map));  // its own out argument
  EXPECT_TRUE(map.add_string("z", "twice", out) && map.add_string("z", "again", out));
  EXPECT_TRUE(map.add_string(std::string("a\0b", 3), std::string("c\0d", 3), out));
  EXPECT_EQ(root.dump(),
            "{\"z\":\"\\\"\xc3\xa9/\\n\",\"i\":-5,\"low\":-9223372036854775808,\"d\":0.1,"
            "\"whole\":5.0,\"b\":false,\"a\":[\"s\",1,2,1e+30,true,"
            "{\"m\":{\"z\":\"twice\",\"z\":\"again\",\"a\":\"c\"}},[]]}");
  EXPECT_TRUE(map.find("z", out));
  EXPECT_EQ(out.to_string(), "twice");

  out = root;
  EXPECT_FALSE(root.add_double("nan", std::nan(""), out));
  EXPECT_FALSE(root.add_double("infinite", HUGE_VAL, out));
  EXPECT_FALSE(root.add_int(1, out));
  EXPECT_FALSE(array.add_int("key", 1, out));
  EXPECT_FALSE(Node().add_int("key", 1, out));
  EXPECT_EQ(out.tree(), root.tree());  // a failure leaves it
}

// Every length from 0 on, so that any room counted wrongly is written over; also from each length
// that was parsed.
TEST(JsonNode, ValuesAddedToWhatWasParsed) {
  for (int parsed = 0; parsed < 40; ++parsed) {
    std::string elements;
    std::string fields;
    for (int i = 0; i < parsed; ++i) {
      elements += (i > 0 ? "," : "") + std::to_string(i);
      fields += (i > 0 ? "," : "") + ("\"" + std::to_string(i) + "\":" + std::to_string(i));
    }
    Parser parser;
    parser.load("{\"a\":[" + elements + "],\"m\":{" + fields + "}}");
    Node array = parser.find("a");
    Node map = parser.find("m");
    Node out;
    const std::vector<Node> early = array.to_array();
    for (int i = parsed; i < 80; ++i) {
      ASSERT_TRUE(array.add_int(i, out) && map.add_int(std::to_string(i), i, out));
    }
    const std::vector<int> numbers = array.to_int_array();
    ASSERT_EQ(numbers.size(), 80U);
    for (int i = 0; i < 80; ++i) EXPECT_EQ(numbers[static_cast<std::size_t>(i)], i);
    for (int i = 0; i < parsed; ++i) EXPECT_EQ(early[static_cast<std::size_t>(i)].to_int(), i);
    EXPECT_TRUE(map.find("79", out));
    EXPECT_EQ(map.to_int_map().size(), 80U);
  }
}

TEST(JsonNode, AddedNodesAreCopies) {
  Parser parser;
  Node root = parser.root();
  Node out;
  {
    Parser other;
    other.load(R"({"a":[1.50,null,"x"],"b":{"c":true}})");
    EXPECT_TRUE(root.add_node("copy", other.root(), out));
  }
  EXPECT_TRUE(out.add_node("self", out, out));
  EXPECT_TRUE(out.add_node("none", Node(), out));
  const std::string copy = R"("a":[1.50,null,"x"],"b":{"c":true})";
  EXPECT_EQ(root.dump(), "{\"copy\":{" + copy + ",\"self\":{" + copy + ",\"none\":null}}}");
}

TEST(JsonNode, DumpEndsAtTextThatIsNoUtf8) {
  Parser parser;
  Node root = parser.root();
  Node out;
  EXPECT_TRUE(root.add_int("first", 1, out) && root.add_string("bad", "\xff", out));
  EXPECT_TRUE(root.add_int("last", 2, out));
  EXPECT_EQ(root.dump(), "{\"first\":1,\"bad\"");
}

TEST(JsonNode, DumpOfTooDeepATreeEnds) {
  Parser parser;
  Node node = parser.root();
  for (int depth = 1; depth < 127; ++depth) ASSERT_TRUE(node.add_map("m", node));
  EXPECT_TRUE(parser.root().dump().ends_with("{}" + std::string(126, '}')));
  ASSERT_TRUE(node.add_map("m", node));
  EXPECT_TRUE(parser.root().dump().ends_with("{\"m\":"));
  Node out;
  EXPECT_FALSE(node.add_node("too deep", parser.root(), out));
}

}  // namespace
