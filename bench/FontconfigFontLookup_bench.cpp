// "Does this process see a font of this name?" among 3,000 fonts in 256 folders, while nothing
// changes. The reference, in the same run: the name looked up in a set, and one system call that
// finds nothing new. "ratio" is ours by its, the looks at every folder that come once a second
// included. A folder of the configuration that is not there costs a system call more, for which the
// argument stands: how many are missing. "rebuild_ms" is the first question after another font
// came.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <unordered_set>
#include <vector>

#include "bench/support/BenchLibrary.h"
#include "platform/linux/FontconfigFontLookup.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFonts = 3000;
constexpr int kFolders = 256;

std::string NameOf(int number) { return "LookupBench-" + std::to_string(10'000 + number); }

// A font of another name: the same letters, in both encodings of the name table.
std::string Renamed(std::string font, const std::string& from, const std::string& to) {
  const auto wide = [](const std::string& text) {
    std::string bytes;
    for (const char c : text) bytes += {'\0', c};
    return bytes;
  };
  for (const auto& [old, next] : {std::pair(from, to), std::pair(wide(from), wide(to))}) {
    for (std::size_t at = 0; (at = font.find(old, at)) != std::string::npos; at += old.size()) {
      font.replace(at, old.size(), next);
    }
  }
  return font;
}

class Fonts {
 public:
  explicit Fonts(bool allFolders) {
    if (allFolders) mHome.MakeFolder("usr/share/fonts");
    const std::string built = mHome.Path() + "/built.ttf";
    const auto result =
        RunProgram({"/usr/bin/python3", BENCH_SOURCE_DIR "/tools/fonts/make_font.py", "--family",
                    NameOf(0), "--psname", NameOf(0), built});
    if (result.exitCode != 0) Give(result.error);
    mFont = ReadWholeFile(built);
    for (int i = 0; i < kFonts; ++i) Add(i);
  }

  void Add(int number) const {
    const std::string name = NameOf(number);
    mHome.WriteFile(
        ".local/share/fonts/vendrel/" + std::to_string(number % kFolders) + "/" + name + ".ttf",
        Renamed(mFont, NameOf(0), name));
  }

 private:
  ScratchHome mHome;
  std::string mFont;
};

template <typename IsVisible>
double NanosecondsOf(const std::vector<std::string>& names, IsVisible isVisible) {
  constexpr int kRounds = 40;
  const auto start = Clock::now();
  for (int round = 0; round < kRounds; ++round) {
    for (const std::string& name : names) {
      if (!isVisible(name)) Give(name + " is not seen");
    }
  }
  const auto time = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
  return time / static_cast<double>(kRounds * names.size());
}

// Both in turn; the fastest of each counts: what else the machine does only slows.
void NothingChanged(benchmark::State& state) {
  const Fonts fonts(state.range(0) == 0);
  std::vector<std::string> names;
  names.reserve(kFonts);
  for (int i = 0; i < kFonts; ++i) names.push_back(NameOf(i));
  const std::unordered_set<std::string> set(names.begin(), names.end());
  int nothing[2];
  if (pipe2(nothing, O_NONBLOCK | O_CLOEXEC) != 0) Give("no pipe");
  const auto plainly = [&](const std::string& name) {
    char byte;
    return read(nothing[0], &byte, 1) < 0 && set.contains(name);
  };
  FontconfigFontLookup lookup;
  const auto ours = [&lookup](const std::string& name) { return lookup.IsVisible(name); };
  if (!lookup.IsVisible(NameOf(0))) Give("the fonts are not seen");
  // What has just been written is looked at again until its time is past.
  usleep(1'500'000);
  fonts.Add(kFonts);
  const auto start = Clock::now();
  if (!lookup.IsVisible(NameOf(kFonts))) Give("the new font is not seen");
  const double rebuild = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  usleep(100'000);
  lookup.IsVisible(NameOf(0));
  double reference = 1e9;
  double mine = 1e9;
  for (auto _ : state) {
    reference = std::min(reference, NanosecondsOf(names, plainly));
    mine = std::min(mine, NanosecondsOf(names, ours));
  }
  state.counters["rebuild_ms"] = rebuild;
  state.counters["reference_ns"] = reference;
  state.counters["ours_ns"] = mine;
  state.counters["ratio"] = mine / reference;
}
BENCHMARK(NothingChanged)
    ->ArgName("missing")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

}  // namespace
