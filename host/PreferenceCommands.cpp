#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>

#include "dialogs/TarnInterface.h"
#include "foundation/GStringUtils.h"
#include "host/Commands.h"
#include "host/PluginSession.h"
#include "photoshop/CommonStartup.h"
#include "state/KestraneGlobals.h"

namespace {

enum class Kind { eBool, eLong, eString };

struct PreferenceRow {
  const char* key;
  Kind kind;
  const char* meaning;
};

// Every preference of the plug-in that a user may want to change.
constexpr PreferenceRow kRows[] = {
    {"EnablePlugin", Kind::eBool, "activate fonts automatically"},
    {"EnableFaceprint", Kind::eBool, "use and write the fonts' identity"},
    {"SuppressHostAppDialogs", Kind::eBool, "keep the host's missing-fonts window away"},
    {"SuppressPluginCoreDialogs", Kind::eBool, "keep the plug-in's own messages away"},
    {"PickBestMatch", Kind::eBool, "take the best match instead of asking"},
    {"SupportEmbeddedObjects", Kind::eBool, "look into embedded objects"},
    {"CloseFontsOnHostAppQuit", Kind::eBool, "give fonts back when the host quits"},
    {"CloseFontsOnDocClose", Kind::eBool, "give fonts back when their last document closes"},
    {"ActivateEntireFamilies", Kind::eBool, "activate the whole family of a font"},
    {"ActivateGlobally", Kind::eBool, "activate for every application as well"},
    {"ActivateLocally", Kind::eBool, "activate for the host alone"},
    {"EnableLogging", Kind::eBool, "write the plug-in's log"},
    {"CurrentWorkgroup", Kind::eLong, "workgroup in use; -2 means all"},
    {"RMF4", Kind::eLong, "delay of older hosts in milliseconds, at least 4000"},
    {"RMF5", Kind::eLong, "delay before a document is reopened in milliseconds, at least 4000"},
};

const PreferenceRow* FindRow(const std::string& key) {
  const auto found = std::find_if(std::begin(kRows), std::end(kRows), [&key](const auto& row) {
    return GStringUtils::AsciiEqualsNoCase(row.key, key);
  });
  return found == std::end(kRows) ? nullptr : found;
}

nlohmann::json Read(const TarnInterface& tarn, const PreferenceRow& row) {
  switch (row.kind) {
    case Kind::eBool:
      return tarn.GetPreferenceForKey(row.key);
    case Kind::eLong:
      return tarn.GetLongPreferenceForKey(row.key);
    case Kind::eString:
      return tarn.GetStringPreferenceForKey(row.key).value_or("");
  }
  return nullptr;
}

std::optional<bool> ParseBool(const std::string& value) {
  const std::string text = GStringUtils::AsciiToLowerCase(value);
  if (text == "true" || text == "yes" || text == "on" || text == "1") return true;
  if (text == "false" || text == "no" || text == "off" || text == "0") return false;
  return std::nullopt;
}

// False if the value does not fit the preference.
bool Write(TarnInterface& tarn, const PreferenceRow& row, const std::string& value) {
  if (row.kind == Kind::eBool) {
    const std::optional<bool> flag = ParseBool(value);
    if (flag) tarn.SetPreferenceForKey(row.key, *flag);
    return flag.has_value();
  }
  if (row.kind == Kind::eLong) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size()) return false;
    tarn.SetLongPreferenceForKey(row.key, number);
    return true;
  }
  tarn.SetStringPreferenceForKey(row.key, value.c_str());
  return true;
}

}  // namespace

int Commands::Preferences(Console& console, const std::string& key, const std::string& value,
                          bool hasValue, bool json) {
  const PreferenceRow* only = key.empty() ? nullptr : FindRow(key);
  if (!key.empty() && only == nullptr) {
    console.Error(Printable(key) + " is no preference; `kestrane preferences` lists them");
    return kExitUsage;
  }
  PluginSession session;
  std::string error;
  if (!session.Load(error)) {
    console.Error(error);
    return kExitNoFontManager;
  }
  TarnInterface* tarn = KestraneGlobals::GetSharedTarnInterface();
  if (tarn == nullptr || !tarn->IsValid()) {
    console.Error("the preference framework can't be loaded");
    return kExitNoFontManager;
  }
  CommonFunctionality::InitializeCommonPreferences();
  if (hasValue && only != nullptr) {
    if (!Write(*tarn, *only, value)) {
      console.Error(std::string(only->key) + " takes " +
                    (only->kind == Kind::eBool ? "true or false" : "a whole number") + ", not " +
                    Printable(value));
      return kExitUsage;
    }
    return kExitOk;
  }
  nlohmann::json all = nlohmann::json::object();
  for (const PreferenceRow& row : kRows) {
    if (only && only != &row) continue;
    const nlohmann::json current = Read(*tarn, row);
    all[row.key] = current;
    if (json) continue;
    std::string line = row.key;
    if (!only) line.resize(28, ' ');
    console.Print(only ? current.dump() : line + current.dump() + "  " + row.meaning);
  }
  if (json) console.PrintJson(all);
  return kExitOk;
}
