// A panel's message in and out: parsed and dumped by our layer, beside two parses and one dump by
// yajl, in one run. "ratio" is our time by yajl's; to reach: 2.
#include <benchmark/benchmark.h>
#include <yajl/yajl_gen.h>
#include <yajl/yajl_tree.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "foundation/GJSONUtils.h"

namespace {

using Clock = std::chrono::steady_clock;

// Font names and IDs, as the lists of the panels have them.
std::string Message(std::size_t size) {
  std::string text = R"({"messageID":41,"fonts":[)";
  for (unsigned id = 100'000; text.size() < size; ++id) {
    const std::string number = std::to_string(id);
    if (id > 100'000) text += ",";
    text += "{\"fontID\":" + number + ",\"postscriptName\":\"Sample-Bold" + number +
            "\",\"displayName\":\"Sample Bold\",\"size\":10.5,\"isActive\":true,\"setIDs\":[1,2]}";
  }
  return text + "]}";
}

void Generate(yajl_gen gen, yajl_val value) {
  const auto string = [gen](const char* text) {
    yajl_gen_string(gen, reinterpret_cast<const unsigned char*>(text), std::strlen(text));
  };
  if (YAJL_IS_OBJECT(value)) {
    yajl_gen_map_open(gen);
    for (std::size_t i = 0; i < value->u.object.len; ++i) {
      string(value->u.object.keys[i]);
      Generate(gen, value->u.object.values[i]);
    }
    yajl_gen_map_close(gen);
  } else if (YAJL_IS_ARRAY(value)) {
    yajl_gen_array_open(gen);
    for (std::size_t i = 0; i < value->u.array.len; ++i) Generate(gen, value->u.array.values[i]);
    yajl_gen_array_close(gen);
  } else if (YAJL_IS_STRING(value)) {
    string(value->u.string);
  } else if (YAJL_IS_NUMBER(value)) {
    yajl_gen_number(gen, value->u.number.r, std::strlen(value->u.number.r));
  } else {
    yajl_gen_bool(gen, YAJL_IS_TRUE(value) ? 1 : 0);
  }
}

std::string ByYajl(const std::string& text) {
  std::array<char, 1024> error{};
  yajl_tree_free(yajl_tree_parse(text.c_str(), error.data(), error.size()));
  yajl_val tree = yajl_tree_parse(text.c_str(), error.data(), error.size());
  yajl_gen gen = yajl_gen_alloc(nullptr);
  yajl_gen_config(gen, yajl_gen_validate_utf8, 1);
  Generate(gen, tree);
  const unsigned char* buffer = nullptr;
  std::size_t length = 0;
  yajl_gen_get_buf(gen, &buffer, &length);
  std::string dump(reinterpret_cast<const char*>(buffer), length);
  yajl_gen_free(gen);
  yajl_tree_free(tree);
  return dump;
}

std::string ByOurs(const std::string& text) {
  GJSONUtils::Parser parser;
  GJSONUtils::Node root;
  if (GJSONUtils::Parse(parser, text, root) != 0) std::abort();
  return root.dump();
}

double SecondsOf(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Both in turn, and the fastest of each counts.
void InAndOut(benchmark::State& state) {
  const std::string text = Message(static_cast<std::size_t>(state.range(0)));
  if (ByOurs(text) != text || ByYajl(text) != text) std::abort();
  double ours = 1e9;
  double yajl = 1e9;
  for (auto _ : state) {
    yajl = std::min(yajl, SecondsOf([&] { benchmark::DoNotOptimize(ByYajl(text)); }));
    const double seconds = SecondsOf([&] { benchmark::DoNotOptimize(ByOurs(text)); });
    ours = std::min(ours, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["ours_s"] = ours;
  state.counters["yajl_s"] = yajl;
  state.counters["ratio"] = ours / yajl;
}
BENCHMARK(InAndOut)->Arg(1'000)->UseManualTime()->Iterations(2000)->Unit(benchmark::kMicrosecond);
BENCHMARK(InAndOut)->Arg(500'000)->UseManualTime()->Iterations(20)->Unit(benchmark::kMicrosecond);

}  // namespace
