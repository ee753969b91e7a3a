#include "foundation/JsonNode.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <tuple>

#include "foundation/JsonParser.h"

namespace {

using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;

TEST(JsonNode, TestsOfEachType) {
  const std::pair<bool (Node::*)() const, const char*> tests[] = {
      {&Node::is_null, "null "},     {&Node::is_string, "string "}, {&Node::is_int, "int "},
      {&Node::is_double, "double "}, {&Node::is_bool, "bool "},     {&Node::is_array, "array "},
      {&Node::is_map, "map "}};
  const std::pair<const char*, std::vector<const char*>> rows[] = {
      {"null ", {"null"}},
      {"string ", {"\"\""}},
      {"int double ", {"5", "-0", "9223372036854775807", "-9223372036854775808"}},
      {"double ", {"1.5", "1.0", "1E2", "5e-324", "9223372036854775808", "9223372036854775870"}},
      {"bool ", {"true", "false"}},
      {"array ", {"[]"}},
      {"map ", {"{}"}},
      {"", {"1e999"}}};
  for (const auto& [types, texts] : rows) {
    for (const char* text : texts) {
      Parser parser;
      parser.load(text);
      std::string found;
      for (const auto& [isOne, type] : tests) found += (parser.root().*isOne)() ? type : "";
      EXPECT_EQ(found, types) << text;
      EXPECT_EQ(parser.root().dump(), text);
    }
  }
}

TEST(JsonNode, ReadersRefuseOtherTypes) {
  Parser parser;
  parser.load(
      R"({"s":"text","i":5,"big":5000000000,"d":1.50,"huge":1e999,"t":true,"f":false,"n":null,
                  "a":[1,"x"],"m":{"k":"v","l":1}})");
  const std::tuple<const char*, std::function<void(const Node&)>, const char*> rows[] = {
      {"i", &Node::to_string, "i\" to be STRING, found INTEGER: 5"},
      {"s", &Node::to_int, "s\" to be INTEGER, found STRING: text"},
      {"big", &Node::to_int, "big\" to be INTEGER, found INTEGER: 5000000000"},
      {"d", &Node::to_int64, "d\" to be INTEGER, found DOUBLE: 1.50"},
      {"huge", &Node::to_double, "huge\" to be DOUBLE, found DOUBLE: 1e999"},
      {"t", &Node::to_double, "t\" to be DOUBLE, found BOOLEAN: true"},
      {"f", &Node::to_array, "f\" to be ARRAY, found BOOLEAN: false"},
      {"n", &Node::to_bool, "n\" to be BOOLEAN, found"},
      {"a", &Node::to_map, "a\" to be OBJECT, found ARRAY"},
      {"a", &Node::to_int_map, "a\" to be OBJECT, found ARRAY"},
      {"m", &Node::to_int_array, "m\" to be ARRAY, found OBJECT"},
      {"a", &Node::to_int_array, "a[1]\" to be INTEGER, found STRING: x"},
      {"a", [](const Node& n) { n.to_array()[1].to_bool(); },
       "a[1]\" to be BOOLEAN, found STRING: x"},
      {"m", &Node::to_string_map, "m[\"l\"]\" to be STRING, found INTEGER: 1"},
      {"m", [](const Node& n) { n.to_map().at("k").to_int(); },
       "m[\"k\"]\" to be INTEGER, found STRING: v"}};
  for (const auto& [key, read, rest] : rows) {
    try {
      read(parser.find(key));
      ADD_FAILURE() << key;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), std::string("Expected JSON node \"") + rest);
    }
  }
  EXPECT_THROW(Node().to_string(), std::runtime_error);
  EXPECT_EQ(Node().dump(), "null");
}

TEST(JsonNode, ReadersGiveArraysAndMaps) {
  Parser p;
  p.load(R"({"i":[1,-2],"d":[1,2.5],"b":[true,false],"s":["a",""],"im":{"a":1,"a":2},
             "dm":{"a":0.5},"bm":{"a":true},"sm":{"b":"x","a":"y"}})");
  EXPECT_EQ(p.find("i").to_int_array(), (std::vector<int>{1, -2}));
  EXPECT_EQ(p.find("d").to_double_array(), (std::vector<double>{1, 2.5}));
  EXPECT_EQ(p.find("b").to_bool_array(), (std::vector<bool>{true, false}));
  EXPECT_EQ(p.find("s").to_string_array(), (std::vector<std::string>{"a", ""}));
  EXPECT_EQ(p.find("im").to_int_map().at("a"), 1);  // the first of two
  EXPECT_EQ(p.find("im/a").to_int(), 1);
  EXPECT_EQ(p.find("dm").to_double_map().at("a"), 0.5);
  EXPECT_TRUE(p.find("bm").to_bool_map().at("a"));
  EXPECT_EQ(p.find("sm").to_string_map().at("b"), "x");
}

TEST(JsonNode, WritersKeepTheOrderOfCalls) {
  Parser parser;
  Node root = parser.root();
  Node array;
  Node map;
  Node out;
  EXPECT_TRUE(root.add_string("z", "\"\xc3\xa9/\n", out) && root.add_int("i", -5, out));
  EXPECT_TRUE(root.add_int64("low", std::numeric_limits<std::int64_t>::min(), out));
  EXPECT_TRUE(root.add_double("d", 0.1, out) && root.add_double("whole", 5, out));
  EXPECT_FALSE(out.is_int());
  EXPECT_TRUE(root.add_bool("b", false, out) && root.add_array("a", array));
  EXPECT_TRUE(array.add_string("s", out) && array.add_int(1, out));
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
  out = root;
  EXPECT_FALSE(root.add_double("nan", std::numeric_limits<double>::quiet_NaN(), out));
  EXPECT_FALSE(root.add_double("infinite", std::numeric_limits<double>::infinity(), out));
  EXPECT_FALSE(root.add_int(1, out));
  EXPECT_FALSE(array.add_int("key", 1, out));
  EXPECT_FALSE(Node().add_int("key", 1, out));
  EXPECT_EQ(out.tree(), root.tree());  // a failure leaves it
}

// Every length from 0 on, so that any room counted wrongly is written over.
TEST(JsonNode, ValuesAddedToWhatWasParsed) {
  for (int parsed = 0; parsed < 40; ++parsed) {
    std::string elements;
    std::string fields;
    for (int i = 0; i < parsed; ++i) {
      elements += (i > 0 ? "," : "") + std::to_string(i);
      fields += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":" + std::to_string(i);
    }
    Parser parser;
    parser.load("{\"a\":[" + elements + "],\"m\":{" + fields + "}}");
    Node array = parser.find("a");
    Node map = parser.find("m");
    Node out;
    for (int i = parsed; i < 80; ++i) {
      ASSERT_TRUE(array.add_int(i, out) && map.add_int(std::to_string(i), i, out));
    }
    const std::vector<int> numbers = array.to_int_array();
    ASSERT_EQ(numbers.size(), 80U);
    for (int i = 0; i < 80; ++i) EXPECT_EQ(numbers[static_cast<std::size_t>(i)], i);
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

TEST(JsonNode, DumpOfTooDeepATreeEnds) {
  Parser parser;
  Node node = parser.root();
  Node out;
  for (int depth = 1; depth < 127; ++depth) ASSERT_TRUE(node.add_map("m", node));
  EXPECT_TRUE(parser.root().dump().ends_with("{}" + std::string(126, '}')));
  ASSERT_TRUE(node.add_map("m", node));
  EXPECT_TRUE(parser.root().dump().ends_with("{\"m\":"));
  EXPECT_FALSE(node.add_node("too deep", parser.root(), out));
}

}  // namespace
