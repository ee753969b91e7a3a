// The byte scan beside a plain read of the same file, in one run. "ratio" is the scan's time by the
// read's; to reach: 1.5. "peak_MB" is the process's memory at its highest.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "documents/AdobeByteScan.h"

namespace {

using Clock = std::chrono::steady_clock;

// A file in a temporary folder of its own, which goes with the object.
class BenchFile {
 public:
  BenchFile(std::uint64_t size, const std::function<void(std::string& block)>& fill) {
    std::string pattern = (std::filesystem::temp_directory_path() / "byte-scan-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    mFolder = pattern;
    std::ofstream out(Path(), std::ios::binary);
    std::string block;
    for (std::uint64_t written = 0; written < size; written += block.size()) {
      fill(block);
      out << block;
    }
  }
  ~BenchFile() {
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
  }
  BenchFile(const BenchFile&) = delete;
  BenchFile& operator=(const BenchFile&) = delete;
  std::string Path() const { return mFolder + "/document.bin"; }

 private:
  std::string mFolder;
};

void ReadPlainly(const std::string& path) {
  const auto buffer = std::make_unique<char[]>(1 << 20);
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  while (read(file, buffer.get(), 1 << 20) > 0) benchmark::DoNotOptimize(buffer[0]);
  close(file);
}

double SecondsOf(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

std::size_t Scan(const std::string& path) {
  std::vector<std::string> names;
  CommonFunctionality::GetFontNamesFromNonXMPSectionOfAdobeDocument(path.c_str(), names);
  return names.size();
}

// Both are done in turn, and the fastest of each counts: what else the machine does only slows.
void CompareWithRead(benchmark::State& state, const BenchFile& file) {
  ReadPlainly(file.Path());  // into the page cache
  double read = 1e9;
  double scan = 1e9;
  for (auto _ : state) {
    read = std::min(read, SecondsOf([&] { ReadPlainly(file.Path()); }));
    const double seconds = SecondsOf([&] { benchmark::DoNotOptimize(Scan(file.Path())); });
    scan = std::min(scan, seconds);
    state.SetIterationTime(seconds);
  }
  state.counters["read_s"] = read;
  state.counters["scan_s"] = scan;
  state.counters["ratio"] = scan / read;
  state.counters["peak_MB"] = PeakMegabytes();
}

constexpr std::uint64_t kFileBytes = std::uint64_t{512} << 20;

void RandomBytes(benchmark::State& state) {
  std::mt19937_64 random(1);
  const BenchFile file(kFileBytes, [&random](std::string& block) {
    block.resize(1 << 20);
    for (std::size_t i = 0; i < block.size(); i += sizeof(std::uint64_t)) {
      const std::uint64_t word = random();
      std::copy_n(reinterpret_cast<const char*>(&word), sizeof word,
                  block.begin() + static_cast<std::ptrdiff_t>(i));
    }
  });
  CompareWithRead(state, file);
}
BENCHMARK(RandomBytes)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);

void ZeroBytes(benchmark::State& state) {
  const BenchFile file(kFileBytes, [](std::string& block) { block.assign(1 << 20, '\0'); });
  CompareWithRead(state, file);
}
BENCHMARK(ZeroBytes)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);

// Sections without an end of a name. To reach: 1 s, 64 MB.
void EndlessNames(benchmark::State& state) {
  const BenchFile file(100'000'000, [](std::string& block) {
    block.clear();
    for (int i = 0; i < 10'000; ++i) block += "/FontSet [/Name (]";
  });
  for (auto _ : state) benchmark::DoNotOptimize(Scan(file.Path()));
  std::vector<std::string> names;
  state.counters["photoshop_s"] =
      SecondsOf([&] { PhotoshopFontUtils::GetDocumentFonts(file.Path(), names, false); });
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(EndlessNames)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
