#include "foundation/JsonParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>

#include "foundation/JsonEmitter.h"

namespace {

using restful_mapper::Json::Emitter;
using restful_mapper::Json::Node;
using restful_mapper::Json::Parser;

std::string Repeat(const std::string& text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

// The dump, or the error's text.
std::string Loaded(const std::string& text) {
  Parser parser;
  try {
    parser.load(text);
    return parser.root().dump();
  } catch (const std::runtime_error& error) {
    EXPECT_FALSE(parser.is_loaded());
    return error.what();
  }
}

TEST(JsonParser, LoadTakesJson) {
  const std::pair<std::string, const char*> rows[] = {
      {" [ 1 , 2.50 ] ", "[1,2.50]"},
      {"/* {\" */ {\"a\" // ]\"\n :/**/1}//", "{\"a\":1}"},
      {R"("\u00e9\ud83d\ude00\\ud800")", "\"\xc3\xa9\xf0\x9f\x98\x80\\\\ud800\""},
      {R"({"a\u0000b":"c\u0000d"})", R"({"a":"c"})"},  // a text ends at a zero
      {R"({"b":1,"a":2,"b":3})", R"({"b":1,"a":2,"b":3})"},
      {"[\"[[[{{{\\\"[\",[]]", "[\"[[[{{{\\\"[\",[]]"},
  };
  for (const auto& [text, dump] : rows) EXPECT_EQ(Loaded(text), dump) << text;
}

TEST(JsonParser, LoadRefusesWhatIsNone) {
  const std::pair<std::string, const char*> rows[] = {
      {"", "parse error: premature EOF"},
      {"{", "parse error: premature EOF"},
      {"/* [", "parse error: premature EOF"},
      {"nul", "lexical error: invalid string in json text."},
      {"[1]x", "parse error: trailing garbage"},
      {"{} {}", "parse error: trailing garbage"},
      {"[1,]", "parse error: unallowed token"},
      {"\"\xff\"", "lexical error: invalid bytes in UTF8 string."},
      {"\"\xed\xa0\x80\"", "lexical error: invalid bytes in UTF8 string."},
      {"\"\xc0\x80\"", "lexical error: invalid bytes in UTF8 string."},
      {"\"\\u12", "lexical error"},
      {"\"\\u12xy\"", "lexical error"},
      {"\"\\", "lexical error"},
      {R"("\ud800")", "an escape in a string is half of a surrogate pair"},
      {R"("\ud800\u0041")", "an escape in a string is half of a surrogate pair"},
      {R"("\udc00\ud800")", "an escape in a string is half of a surrogate pair"},
      {R"("\\\udc00")", "an escape in a string is half of a surrogate pair"},
      {std::string("{}\0x", 4), "a zero byte in the text"},
  };
  for (const auto& [text, error] : rows) {
    EXPECT_TRUE(Loaded(text).starts_with(std::string("JSON parse error:\n") + error))
        << text << " -> " << Loaded(text);
  }
}

TEST(JsonParser, LimitsAreExact) {
  EXPECT_EQ(Loaded(Repeat("[", 127) + Repeat("]", 127)), Repeat("[", 127) + Repeat("]", 127));
  const std::string deep = "JSON parse error:\nmore than 127 arrays and maps within each other";
  EXPECT_EQ(Loaded(Repeat("[", 128) + Repeat("]", 128)), deep);
  EXPECT_EQ(Loaded(Repeat("{\"\":", 100'000)), deep);
  EXPECT_EQ(Loaded("[/*\"*/" + Repeat("[", 100'000)), deep);  // no string begins in a comment
  EXPECT_EQ(Loaded("[" + Repeat("1,", 1'100'000) + "1]"),
            "JSON parse error:\nmore than 1048576 values");
  EXPECT_EQ(Loaded("[" + Repeat("[],", 20'000) + "1]").size(), 60'003U);
  EXPECT_EQ(Loaded("\"" + std::string(std::size_t{50} << 20, 'x') + "\""),
            "JSON parse error:\nmore than 32 MiB of text");
  const std::string longNumber(1 << 20, '7');
  EXPECT_EQ(Loaded(longNumber), longNumber);
}

TEST(JsonParser, NewOneIsAnEmptyMapAndAFailureLeavesNothing) {
  Parser parser;
  EXPECT_TRUE(parser.is_loaded());
  EXPECT_EQ(parser.root().name(), "root");
  EXPECT_EQ(parser.root().dump(), "{}");
  EXPECT_THROW(parser.load("{"), std::runtime_error);
  EXPECT_FALSE(parser.is_loaded() || parser.exists("") || !parser.empty(""));
  try {
    parser.root();
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "No JSON loaded in parser");
  }
}

TEST(JsonParser, PathsLeadThroughMaps) {
  Parser parser;
  parser.load(R"({"a":{"b":[1],"":{"c":5}},"n":null,"e":"","l":[],"m":{},"zero":0})");
  const std::pair<const char*, bool> present[] = {
      {"", true},       {"/", true},  {"a", true},     {"/a/b", true}, {"a//c", true},
      {"a/b/0", false}, {"b", false}, {"a/b/", false}, {"n", true},    {"zero", true},
  };
  for (const auto& [path, isThere] : present) EXPECT_EQ(parser.exists(path), isThere) << path;
  for (const char* path : {"n", "e", "l", "m", "none"}) EXPECT_TRUE(parser.empty(path)) << path;
  for (const char* path : {"", "a", "a/b", "zero"}) EXPECT_FALSE(parser.empty(path)) << path;
  EXPECT_EQ(parser.find("a/b").name(), "b");
  EXPECT_EQ(parser.find("a//c").to_int(), 5);
  try {
    (void)parser.find("a/x");
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "JSON node \"a/x\" not found");
  }
}

TEST(JsonEmitter, WritesEachForm) {
  Emitter emitter;
  EXPECT_TRUE(emitter.emit_map_open());
  EXPECT_TRUE(emitter.emit("s", "t") && emitter.emit("z", std::string("a\0b", 3)));
  EXPECT_TRUE(emitter.emit("i", 1) && emitter.emit("l", std::int64_t{-5'000'000'000}));
  EXPECT_TRUE(emitter.emit("d", 0.5) && emitter.emit("b", true) && emitter.emit_null("n"));
  EXPECT_TRUE(emitter.emit("is", std::vector<int>{1, 2}));
  EXPECT_TRUE(emitter.emit("bs", std::vector<bool>{true, false}));
  EXPECT_TRUE(emitter.emit("ss", std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(emitter.emit("m", std::map<std::string, double>{{"a", 1}, {"b", 1e100}}));
  EXPECT_TRUE(emitter.emit_json("j", "[ 1.0, null ]"));
  EXPECT_TRUE(emitter.emit_array_open("a") && emitter.emit_map_open() && emitter.emit_map_close());
  EXPECT_TRUE(emitter.emit_array_close() && emitter.emit_map_close());
  EXPECT_EQ(
      emitter.dump(),
      R"({"s":"t","z":"a\u0000b","i":1,"l":-5000000000,"d":0.5,"b":true,"n":null,"is":[1,2],)"
      R"("bs":[true,false],"ss":["a","b"],"m":{"a":1.0,"b":1e+100},"j":[1.0,null],"a":[{}]})");
  EXPECT_FALSE(emitter.emit(1));  // the text is whole
  emitter.reset();
  EXPECT_TRUE(emitter.emit(false));
  EXPECT_EQ(emitter.dump(), "false");
}

TEST(JsonEmitter, EndsAtTheFirstRefusal) {
  const auto fails = [](const std::function<bool(Emitter&)>& step) {
    Emitter emitter;
    EXPECT_TRUE(emitter.emit_array_open() && emitter.emit(1));
    EXPECT_FALSE(step(emitter));
    EXPECT_FALSE(emitter.emit(2) || emitter.emit_array_close());
    return emitter.dump();
  };
  EXPECT_EQ(fails([](Emitter& emitter) { return emitter.emit("\xff"); }), "[1");
  EXPECT_EQ(fails([](Emitter& emitter) { return emitter.emit(HUGE_VAL); }), "[1");
  EXPECT_EQ(fails([](Emitter& emitter) { return emitter.emit_json("{"); }), "[1");
  EXPECT_EQ(fails([](Emitter& emitter) { return emitter.emit_map_open() && emitter.emit(5); }),
            "[1,{");
}

}  // namespace
