#include "support/FakeFacade.h"

#include <algorithm>

#include "sdk/FontRecordKeys.h"
#include "state/KestraneGlobals.h"
#include "support/FakeFacadeEntryPoints.h"
#include "support/FakePlatform.h"

namespace {

FakeFacade* sCurrent = nullptr;

}  // namespace

FakeFacade::FakeFacade() { sCurrent = this; }

FakeFacade::~FakeFacade() {
  if (mInstalled) delete SkerryLoader::GetSharedInstance();
  sCurrent = nullptr;
}

FakeFacade& FakeFacade::Current() { return *sCurrent; }

void FakeFacade::Install(FakePlatform& platform) {
  const FakeBundle& plugin = platform.bundles.Plugin();
  FakeBundle& library = platform.bundles.Add(
      plugin.PrivateFrameworksPath() + "/VendrelPluginInterface.framework", kLibraryBundleID);
  library.values["CFBundleShortVersionString"] = version;
  library.symbols = FakeFacadeSymbols();
  for (const std::string& name : missing) library.symbols.erase(name);
  KestraneGlobals::IdentifyPluginBundleID(FakeBundles::kPluginBundleID);
  mInstalled = true;
  SkerryLoader::GetSharedInstance();
}

FakeFacade::Font& FakeFacade::AddFont(
    std::uint32_t id, const std::string& postScriptName, const std::string& family,
    std::uint32_t workgroupID, std::initializer_list<std::pair<const char*, const char*>> entries) {
  Font& font = fonts.emplace_back();
  font.id = id;
  font.workgroupID = workgroupID;
  font.record = MakeFontRecord();
  font.record->Set(kFP_PostScriptNameKey, postScriptName);
  font.record->Set(kFP_FamilyKey, family);
  for (const auto& [key, value] : entries) font.record->Set(key, value);
  return font;
}

FakeFacade::Font* FakeFacade::Find(std::uint32_t id) {
  const auto found = std::ranges::find(fonts, id, &Font::id);
  return found == fonts.end() ? nullptr : &*found;
}

FontRecord FakeFacade::MakeDatabaseRecord(const Font& font) const {
  FontRecord record = font.record->Copy();
  SetRecordNumber(record, kFP_DatabaseIDKey, font.id);
  SetRecordNumber(record, kFP_WorkgroupIDKey, font.workgroupID);
  SetRecordNumber(record, kFP_ActivationStateKey, font.rawState);
  const auto workgroup = std::ranges::find(workgroups, font.workgroupID, &Workgroup::id);
  if (workgroup != workgroups.end()) {
    SetRecordNumber(record, kFP_WorkgroupTypeKey, workgroup->type);
  }
  if (!font.familyGroupID.empty()) {
    record->Set(kFP_AssignedFamilyGroupIDKey, font.familyGroupID);
  }
  return record;
}

void FakeFacade::Answer(const std::string& entryPoint, std::vector<std::uint32_t> codes) {
  mCodes[entryPoint] = std::move(codes);
}

void FakeFacade::AnswerAlways(const std::string& entryPoint, std::uint32_t code) {
  mStandingCodes[entryPoint] = code;
}

void FakeFacade::OnCall(const std::string& entryPoint, std::function<void()> action) {
  mActions[entryPoint] = std::move(action);
}

std::uint32_t FakeFacade::Record(const std::string& entryPoint, const std::string& arguments) {
  {
    const std::lock_guard lock(mMutex);
    mCalls.emplace_back(entryPoint, arguments);
  }
  const auto action = mActions.find(entryPoint);
  if (action != mActions.end()) action->second();
  std::vector<std::uint32_t>& codes = mCodes[entryPoint];
  if (codes.empty()) {
    const auto standing = mStandingCodes.find(entryPoint);
    return standing == mStandingCodes.end() ? 0 : standing->second;
  }
  const std::uint32_t code = codes.front();
  codes.erase(codes.begin());
  return code;
}

void FakeFacade::RecordLog(const char* text) {
  std::string line = text;
  if (!line.empty() && line.back() == '\n') line.pop_back();
  const std::lock_guard lock(mMutex);
  mLog.push_back(std::move(line));
}

FakeFacade::Calls FakeFacade::CallsOf(const std::string& entryPoint) const {
  const std::lock_guard lock(mMutex);
  Calls calls;
  for (const auto& [name, arguments] : mCalls) {
    if (name == entryPoint) calls.push_back(arguments);
  }
  return calls;
}

FakeFacade::Calls FakeFacade::AllCalls() const {
  const std::lock_guard lock(mMutex);
  Calls calls;
  for (const auto& call : mCalls) calls.push_back(call.first);
  return calls;
}

void FakeFacade::ForgetCalls() {
  const std::lock_guard lock(mMutex);
  mCalls.clear();
  mLog.clear();
}

FakeFacade::Calls FakeFacade::LogLines() const {
  const std::lock_guard lock(mMutex);
  return mLog;
}

bool FakeFacade::HasLogged(const std::string& line) const {
  const Calls lines = LogLines();
  return std::ranges::find(lines, line) != lines.end();
}

void FakeFacade::SetCallback(PluginInterfaceCallback callback) {
  const std::lock_guard lock(mCallbackMutex);
  mCallback = callback;
}

bool FakeFacade::HasCallback() const {
  const std::lock_guard lock(mCallbackMutex);
  return mCallback != nullptr;
}

bool FakeFacade::Notify(std::int32_t kind, const void* data) {
  const std::lock_guard lock(mCallbackMutex);
  if (!mCallback) return false;
  mCallback(kind, data);
  return true;
}
