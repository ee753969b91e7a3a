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

std::string ErrorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

// The dump, or the error's text.
std::string Loaded(const std::string& text) {
  Parser parser;
  const std::string error = ErrorOf([&] { parser.load(text); });
  EXPECT_EQ(parser.is_loaded(), error.empty());
  return error.empty() ? parser.root().dump() : error;
}

TEST(JsonParser, LoadTakesJson) {
  const std::pair<std::string, const char*> rows[] = {
      {" [ 1 , 2.50 ] ", "[1,2.50]"},
      {"/* {\" */ {\"a\" // ]\"\n :/**/1}//", "{\"a\":1}"},
      {R"("\u00e9\ud83d\ude00\\ud800")", "\"\xc3\xa9\xf0\x9f\x98\x80\\\\ud800\""},
      {R"({"b":1,"a":2,"b":3})", R"({"b":1,"a":2,"b":3})"},
      {"[\"[[[{{{\\\"[\",[]]", "[\"[[[{{{\\\"[\",[]]"}};
  for (const auto& [text, dump] : rows) EXPECT_EQ(Loaded(text), dump) << text;
}

TEST(JsonParser, LoadRefusesWhatIsNone) {
  using Texts = std::vector<std::string>;
  const std::pair<const char*, Texts> rows[] = {
      {"parse error: premature EOF", {"", "{", "/* ["}},
      {"parse error: trailing garbage", {"[1]x", "{} {}"}},
      {"parse error: unallowed token", {"[1,]"}},
      {"lexical error", {"nul", "\"\\u12", "\"\\u12xy\"", "\"\\"}},
      {"lexical error: invalid bytes in UTF8 string.",
       {"\"\xff\"", "\"\xed\xa0\x80\"", "\"\xc0\x80\""}},
      {"an escaped zero byte in a string", {R"({"a\u0000b":1})", R"(["c\u0000"])"}},
      {"an escape in a string is half of a surrogate pair",
       {R"("\ud800")", R"("\ud800\u0041")", R"("\udc00\ud800")", R"("\\\udc00")"}},
      {"a zero byte in the text", {std::string("{}\0x", 4)}}};
  for (const auto& [error, texts] : rows) {
    const std::string start = std::string("JSON parse error:\n") + error;
    for (const std::string& text : texts) EXPECT_EQ(Loaded(text).substr(0, start.size()), start);
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
  EXPECT_EQ(parser.root().name() + parser.root().dump(), "root{}");
  EXPECT_THROW(parser.load("{"), std::runtime_error);
  EXPECT_FALSE(parser.is_loaded() || parser.exists("") || !parser.empty(""));
  EXPECT_EQ(ErrorOf([&] { parser.root(); }), "No JSON loaded in parser");
}

TEST(JsonParser, PathsLeadThroughMaps) {
  Parser parser;
  parser.load(R"({"a":{"b":[1],"":{"c":5}},"n":null,"e":"","l":[],"m":{},"zero":0})");
  for (const char* path : {"", "/", "a", "/a/b", "a//c", "n", "zero"}) {
    EXPECT_TRUE(parser.exists(path)) << path;
  }
  for (const char* path : {"a/b/0", "b", "a/b/"}) EXPECT_FALSE(parser.exists(path)) << path;
  for (const char* path : {"n", "e", "l", "m", "none"}) EXPECT_TRUE(parser.empty(path)) << path;
  for (const char* path : {"", "a", "a/b", "zero"}) EXPECT_FALSE(parser.empty(path)) << path;
  EXPECT_EQ(parser.find("a/b").name(), "b");
  EXPECT_EQ(parser.find("a//c").to_int(), 5);
  EXPECT_EQ(ErrorOf([&] { (void)parser.find("a/x"); }), "JSON node \"a/x\" not found");
}

TEST(JsonEmitter, WritesEachForm) {
  Emitter emitter;
  EXPECT_TRUE(emitter.emit_map_open() && emitter.emit("z", std::string("a\0b", 3)));
  EXPECT_TRUE(emitter.emit("i", 1) && emitter.emit("l", std::int64_t{-5'000'000'000}));
  EXPECT_TRUE(emitter.emit("d", 0.5) && emitter.emit("b", true) && emitter.emit_null("n"));
  EXPECT_TRUE(emitter.emit("is", std::vector{1, 2}) &&
              emitter.emit("bs", std::vector{true, false}));
  EXPECT_TRUE(emitter.emit("m", std::map<std::string, double>{{"a", 1}, {"b", 1e100}}));
  EXPECT_TRUE(emitter.emit_json("j", "[ 1.0, null ]"));
  EXPECT_TRUE(emitter.emit_array_open("a") && emitter.emit_map_open() && emitter.emit_map_close());
  EXPECT_TRUE(emitter.emit_array_close() && emitter.emit_map_close());
  EXPECT_EQ(emitter.dump(),
            R"({"z":"a\u0000b","i":1,"l":-5000000000,"d":0.5,"b":true,"n":null,"is":[1,2],)"
            R"("bs":[true,false],"m":{"a":1.0,"b":1e+100},"j":[1.0,null],"a":[{}]})");
  EXPECT_FALSE(emitter.emit(1));  // the text is whole
  emitter.reset();
  EXPECT_TRUE(emitter.emit(false));
  EXPECT_EQ(emitter.dump(), "false");
}

TEST(JsonEmitter, EndsAtTheFirstRefusal) {
  const std::pair<std::function<bool(Emitter&)>, const char*> rows[] = {
      {[](Emitter& emitter) { return emitter.emit("\xff"); }, "[1"},
      {[](Emitter& emitter) { return emitter.emit(HUGE_VAL); }, "[1"},
      {[](Emitter& emitter) { return emitter.emit_json("{"); }, "[1"},
      {[](Emitter& emitter) { return emitter.emit_map_open() && emitter.emit(5); }, "[1,{"}};
  for (const auto& [step, dump] : rows) {
    Emitter emitter;
    EXPECT_TRUE(emitter.emit_array_open() && emitter.emit(1));
    EXPECT_FALSE(step(emitter) || emitter.emit(2) || emitter.emit_array_close());
    EXPECT_EQ(emitter.dump(), dump);
  }
}

}  // namespace
