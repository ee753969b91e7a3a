// Opening and closing documents whose fonts they share, beside the same insertions and erasures in
// a map and vectors made directly, in one run. "ratio" is ours by theirs; "us_each" is the time of
// one registration with its end, and stays the same however many documents and fonts there are.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "activation/FontActivationTracker.h"
#include "bench/support/BenchLibrary.h"
#include "sdk/FontRecordKeys.h"
#include "support/InertFontManager.h"

namespace {

using Clock = std::chrono::steady_clock;

// Does all it is asked for at once.
class WillingFontManager : public InertFontManager {
 public:
  WillingFontManager() : mOld(ExchangeFontManager(this)) {}
  ~WillingFontManager() override { ExchangeFontManager(mOld); }
  WillingFontManager(const WillingFontManager&) = delete;
  WillingFontManager& operator=(const WillingFontManager&) = delete;

  bool ConnectedToCoreAgent() override { return true; }
  std::map<std::uint32_t, bool> GetClientFontActivationStates(const FontIDs&) override {
    return {};
  }
  int ActivateFontsByID(const FontRecordArray& asked, const std::string&, void*,
                        const FontRecordArray& activated, const FontRecordArray&,
                        FontProgressCallback, void*) override {
    for (const PropertyList::Value& font : asked->Values()) activated->Append(font);
    return 0;
  }

 private:
  FontManagerInterface* mOld;
};

FontRecordArray MatchedFonts(std::uint32_t count) {
  FontRecordArray fonts = MakeFontRecordArray();
  for (std::uint32_t id = 1; id <= count; ++id) {
    const FontRecord matched = MakeFontRecord();
    matched->Set(kFP_PostScriptNameKey, "Sample-Bold" + std::to_string(id));
    SetRecordNumber(matched, kFP_DatabaseIDKey, 100'000 + id);
    const FontRecord font = MakeFontRecord();
    font->Set(kFP_MatchedFontKey, matched);
    fonts->Append(font);
  }
  return fonts;
}

void ByTracker(const FontRecordArray& fonts, const std::vector<std::string>& documents) {
  FontActivationTracker tracker(nullptr);
  for (const std::string& document : documents) {
    if (tracker.OpenFontsForIdentifier(fonts, document, false, nullptr, nullptr) != 0) std::abort();
  }
  for (const std::string& document : documents) {
    if (tracker.CloseAllFontsForIdentifier(document, true, false, nullptr) != 0) std::abort();
  }
}

void ByContainers(const FontRecordArray& fonts, const std::vector<std::string>& documents) {
  struct Record {
    FontRecord font;
    std::string name;
    std::string document;
    unsigned count = 0;
  };
  std::map<std::uint32_t, Record> records;
  std::map<std::string, std::vector<std::uint32_t>> held;
  for (const std::string& document : documents) {
    for (std::size_t i = 0; i < fonts->Count(); ++i) {
      const FontRecord font = fonts->DictionaryAt(i)->GetDictionary(kFP_MatchedFontKey);
      const std::uint32_t id = RecordDatabaseID(font);
      const auto [entry, isNew] = records.try_emplace(id);
      if (isNew) entry->second = {font, RecordString(font, kFP_PostScriptNameKey), document};
      ++entry->second.count;
      held[document].push_back(id);
    }
  }
  for (const std::string& document : documents) {
    for (const std::uint32_t id : held[document]) {
      if (--records[id].count == 0) records.erase(id);
    }
    held.erase(document);
  }
  if (!records.empty()) std::abort();
}

double MicrosecondsOf(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// Both in turn, and the fastest of each counts.
void OpenAndClose(benchmark::State& state) {
  const FontRecordArray fonts = MatchedFonts(static_cast<std::uint32_t>(state.range(1)));
  std::vector<std::string> documents(static_cast<std::size_t>(state.range(0)));
  for (std::string& document : documents) {
    document = "document " + std::to_string(&document - documents.data());
  }
  const auto registrations = static_cast<double>(state.range(0) * state.range(1));
  const WillingFontManager manager;
  double ours = 1e12;
  double theirs = 1e12;
  for (auto _ : state) {
    theirs = std::min(theirs, MicrosecondsOf([&] { ByContainers(fonts, documents); }));
    const QuietOutput quiet;
    const double time = MicrosecondsOf([&] { ByTracker(fonts, documents); });
    ours = std::min(ours, time);
    state.SetIterationTime(time / 1e6);
  }
  state.counters["us_each"] = ours / registrations;
  state.counters["containers_us_each"] = theirs / registrations;
  state.counters["ratio"] = ours / theirs;
}
BENCHMARK(OpenAndClose)
    ->Args({10, 1000})
    ->Args({100, 100})
    ->Args({100, 1000})
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
