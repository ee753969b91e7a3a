// A log call below its identifier's level beside a bare std::mutex and a std::map look-up of the
// same identifier, in one run. "ratio" is the call's time by the reference's; to reach: 2, and no
// "allocations". The rows "OneAtDebug" have another identifier that sees the call's level. In the
// row "SameBucket", for orientation, its name makes the logger look for this one too.
#include "foundation/GLogger.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <string>

namespace {

long sAllocations = 0;

}  // namespace

void* operator new(std::size_t size) {
  ++sAllocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCalls = 20'000;
const char* const kOthers[] = {"Activation",    "CoreAgent",   "Documents", "Panels",
                               "Miscellaneous", "FontManager", "Startup",   "Workgroups"};

double SecondsPerCall(const auto& call) {
  const auto start = Clock::now();
  for (int i = 0; i < kCalls; ++i) call();
  return std::chrono::duration<double>(Clock::now() - start).count() / kCalls;
}

// Levels of the first `others` identifiers are set to warning, and that of `identifier` if `isSet`.
// Both sides are timed in turn, and the fastest of each counts.
void SuppressedCall(benchmark::State& state, const char* identifier, bool isSet, int others,
                    const char* atDebug) {
  GLogger* logger = GLogger::GetSharedInstance();
  std::mutex mutex;
  std::map<std::string, GLogger::LoggingLevel> levels{{"default", GLogger::eWarning}};
  logger->ResetAllLoggingLevels();
  const auto set = [&](const std::string& name) {
    logger->SetLoggingLevelForIdentifier(name, GLogger::eWarning);
    levels[name] = GLogger::eWarning;
  };
  std::for_each_n(kOthers, others, set);
  if (isSet) set(identifier);
  if (atDebug != nullptr) {
    logger->SetLoggingLevelForIdentifier(atDebug, GLogger::eDebug);
    levels[atDebug] = GLogger::eDebug;
  }

  const std::string key = identifier;
  double reference = 1e9;
  double suppressed = 1e9;
  const long allocated = sAllocations;
  for (auto _ : state) {
    reference = std::min(reference, SecondsPerCall([&] {
                           const std::lock_guard lock(mutex);
                           auto found = levels.find(key);
                           benchmark::DoNotOptimize(found);
                         }));
    const double seconds = SecondsPerCall(
        [&] { logger->LogDebug(identifier, "Left %s with %d", identifier, kCalls); });
    suppressed = std::min(suppressed, seconds);
    state.SetIterationTime(seconds * kCalls);
  }
  state.counters["allocations"] = static_cast<double>(sAllocations - allocated);
  state.counters["reference_ns"] = reference * 1e9;
  state.counters["suppressed_ns"] = suppressed * 1e9;
  state.counters["ratio"] = suppressed / reference;
}

void Row(const char* name, const char* identifier, bool isSet, int others,
         const char* atDebug = nullptr) {
  benchmark::RegisterBenchmark(name, SuppressedCall, identifier, isSet, others, atDebug)
      ->UseManualTime()
      ->Iterations(50)
      ->Unit(benchmark::kMicrosecond);
}

const bool sRegistered = [] {
  Row("NotInTheMap", "Recovery", false, 0);
  Row("InTheMap", "Recovery", true, 0);
  Row("NotInTheMapOfOthers", "Recovery", false, 8);
  Row("InTheMapWithOthers", "Recovery", true, 8);
  Row("NotInTheMapOneAtDebug", "Recovery", false, 0, "Watched");
  Row("NotInTheMapOfOthersOneAtDebug", "Recovery", false, 8, "Watched");
  Row("InTheMapWithOthersOneAtDebug", "Recovery", true, 8, "Watched");
  Row("InTheMapWithOthersSameBucket", "Recovery", true, 8, "Registry");
  Row("LongNameWithOthers", "ActivationOfDocumentFonts", true, 8);
  return true;
}();

}  // namespace
