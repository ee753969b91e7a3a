// The client library without an agent: exports, questions, the log, local fonts, what is not
// served.
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

#include "foundation/ErrorCodes.h"
#include "frameworks/FrameworkLibraries.h"
#include "frameworks/ScratchLibrary.h"
#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"
#include "support/TestFonts.h"

namespace fs = std::filesystem;
using IDs = std::vector<std::uint32_t>;

class PluginInterface : public testing::Test {
 protected:
  IDs Named(const char* name, const IDs& workgroups, std::uint32_t capacity = 1024) {
    IDs found(1024, 7);
    std::uint32_t count = 99;
    EXPECT_EQ(facade.GetFontsByPostscriptName(instance, name, workgroups.data(),
                                              static_cast<std::uint32_t>(workgroups.size()),
                                              found.data(), capacity, &count),
              0u);
    found.resize(count);
    return found;
  }
  FontRecord Info(std::uint32_t id, const IDs& workgroups = {}) {
    PLDictionaryRef record = nullptr;
    facade.GetFontInfoByID(instance, workgroups.data(),
                           static_cast<std::uint32_t>(workgroups.size()), nullptr, &id, &record);
    return PropertyList::AdoptHandle(record);
  }

  ScratchHome home;
  FacadeTable facade;
  PluginFacadeInstance instance = facade.GetPluginFacadeInstance();
};

TEST_F(PluginInterface, ExportsTheWholeTableAndNothingElse) {
  int count = 0;
#define BOUND(result, name, arguments)      \
  EXPECT_NE(facade.name, nullptr) << #name; \
  ++count;
  PLUGIN_INTERFACE_ENTRY_POINTS(BOUND)
#undef BOUND
  EXPECT_EQ(count, 80);
  EXPECT_EQ(FacadeSymbol("_ZN12PluginFacade8InstanceEv"), nullptr);
  EXPECT_EQ(facade.GetPluginFacadeInstance(), instance);
}

TEST_F(PluginInterface, WithoutDatabaseAndAgent) {
  std::int32_t flag = 9;
  std::uint32_t id = 9, count = 9, failed = 9, second = 9;
  PLArrayRef list = reinterpret_cast<PLArrayRef>(&flag);
  EXPECT_EQ(facade.InitAppInstance(instance, 1, 21), 0u);
  EXPECT_EQ(facade.GetAreSchemaVersionsInSync(instance, &flag), 0u);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(facade.GetIsCoreAgentProcessRunning(instance, &flag), 0u);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(facade.InitThreadInstance(instance), kPluginInterface_AgentNotFound);
  EXPECT_EQ(facade.GetFontsByPostscriptName(instance, "A", nullptr, 0, &id, 1, &count),
            CoreErrorCodes::kDatabaseError);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(facade.GetAllWorkgroupsForUser(instance, &list, 1, 1), CoreErrorCodes::kDatabaseError);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(facade.ActivateFonts(instance, 1, &id, 0, 1, 1, 1, 1, 1, &id, &id, &failed, &second),
            kPluginInterface_ServiceUnavailable);
  EXPECT_EQ(failed, 0u);
  EXPECT_EQ(second, 0u);
  EXPECT_EQ(facade.CleanUpOnShutdown(instance), 0u);
}

TEST_F(PluginInterface, RefusesAnotherSchema) {
  ScratchLibrary library;
  library.Execute("PRAGMA user_version = 2");
  std::int32_t flag = 9;
  EXPECT_EQ(facade.InitAppInstance(instance, 1, 21), CoreErrorCodes::kVersionMismatch);
  EXPECT_EQ(facade.GetAreSchemaVersionsInSync(instance, &flag), 0u);
  EXPECT_EQ(flag, 0);
}

TEST_F(PluginInterface, TellsABrokenDatabaseFromAnotherSchema) {
  home.WriteFile(".local/share/vendrel/library.db", std::string(4096, 'x'));
  std::int32_t flag = 9;
  EXPECT_EQ(facade.InitAppInstance(instance, 1, 21), CoreErrorCodes::kDatabaseError);
  EXPECT_EQ(facade.GetAreSchemaVersionsInSync(instance, &flag), CoreErrorCodes::kDatabaseError);
  EXPECT_EQ(flag, 1);
}

TEST_F(PluginInterface, FindsFontsByNameWithinWorkgroups) {
  ScratchLibrary library;
  library.Add({10, "Grotesk-Bold", 1, 1, "/s/a.ttf"});
  library.Add({11, "Grotesk-Bold", 1, 2, "/l/b.ttf"});
  EXPECT_EQ(Named("Grotesk-Bold", {2}), IDs{11});
  EXPECT_EQ(Named("Grotesk-Bold", {1}), IDs{10});
  EXPECT_EQ(Named("Grotesk-Bold", {0}), (IDs{10, 11}));
  EXPECT_EQ(Named("Grotesk-Bold", {2, 0xFFFFFFFF}), (IDs{10, 11}));
  EXPECT_EQ(Named("Grotesk-Bold", {0}, 1), IDs{10});
  EXPECT_EQ(Named("grotesk-bold", {0}), IDs{});
  std::uint32_t found[4], count = 0;
  EXPECT_EQ(facade.GetFontsByFamilyName(instance, "Grotesk", nullptr, 0, found, 4, &count), 0u);
  EXPECT_EQ(count, 2u);
}

TEST_F(PluginInterface, WritesARecordOfStrings) {
  ScratchLibrary library;
  library.Add({11, "Grotesk-Bold", 1, 2, "/l/Gr\xF6tesk.ttf"});
  const FontRecord record = Info(11);
  ASSERT_TRUE(record);
  const std::map<std::string, std::string> expected{
      {kFP_PostScriptNameKey, "Grotesk-Bold"},
      {kFP_KindKey, "TrueType"},
      {kFP_FoundryKey, "Vale"},
      {kFP_VersionKey, "1.5"},
      {kFP_ChecksumKey, "4294967295"},
      {kFP_Faceprint_1_2_Key, "12"},
      {kFP_OutlineFileSizeKey, "4711"},
      {kFP_OutlineFileNameKey, "Gr\xEF\xBF\xBDtesk.ttf"},
      {kFP_FamilyKey, "Grotesk"},
      {kFP_AssignedFamilyGroupIDKey, "1"},
      {kFP_AssignedFamilyGroupNameKey, "Grotesk"},
      {kFP_DatabaseIDKey, "11"},
      {kFP_ActivationStateKey, "0"},
      {kFP_WorkgroupIDKey, "2"},
      {kFP_WorkgroupNameKey, "Font Library"},
      {kFP_WorkgroupTypeKey, "3"},
      {kFP_IsSystemKey, "0"},
      {kFP_IsVaultKey, "0"},
      {kFP_IsLocalKey, "1"}};
  std::map<std::string, std::string> found;
  for (const auto& [key, value] : record->Entries()) {
    found[key] = value.AsString() ? *value.AsString() : "no string";
  }
  EXPECT_EQ(found, expected);  // no Path: its bytes are no text
}

TEST_F(PluginInterface, TakesTheFontFromItsIDOrItsRecord) {
  ScratchLibrary library;
  library.Add({10, "System", 1, 1, "/s/a.ttf"});
  library.Add({11, "Mine", 1, 2, "/l/b.ttf"});
  const FontRecord asked = MakeFontRecord();
  asked->Set(kFP_DatabaseIDKey, "11");
  std::uint32_t id = 0;
  PLDictionaryRef record = nullptr;
  EXPECT_EQ(facade.GetFontInfoByID(instance, nullptr, 0, asked.Get(), &id, &record), 0u);
  EXPECT_EQ(id, 11u);
  EXPECT_EQ(RecordString(PropertyList::AdoptHandle(record), kFP_PostScriptNameKey), "Mine");
  id = 77;
  record = asked.Get();
  EXPECT_EQ(facade.GetFontInfoByID(instance, nullptr, 0, asked.Get(), &id, &record),
            CoreErrorCodes::kNotFound);
  EXPECT_EQ(record, nullptr);
  EXPECT_FALSE(Info(11, {5}));
  EXPECT_TRUE(Info(11, {0xFFFFFFFF}));
  EXPECT_TRUE(Info(10, {2})) << "the system's faces are everybody's";
}

TEST_F(PluginInterface, TellsStatesOfActivation) {
  ScratchLibrary library;
  const std::uint32_t ids[] = {10, 11, 12, 13, 14, 99};
  for (const std::uint32_t id : {10u, 11u, 12u, 13u, 14u}) {
    library.Add({id, "F", 2, id == 10 ? 1u : 2u, "/l/" + std::to_string(id)});
  }
  library.Activate(11, 1, getpid());
  library.Activate(12, 1, getpid() + 1);
  library.Activate(13, 4, 0);
  const char* raw[] = {"5", "1", "2", "4", "0"};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(RecordString(Info(ids[i]), kFP_ActivationStateKey), raw[i]) << ids[i];
  }
  std::array<std::int32_t, 6> states{};
  EXPECT_EQ(facade.GetFontIsActivated(instance, 6, ids, states.data()), 0u);
  EXPECT_EQ(states, (std::array<std::int32_t, 6>{1, 1, 1, 1, 0, 0}));
  EXPECT_EQ(facade.GetClientFontActivationStates(6, ids, states.data()), 0u);
  EXPECT_EQ(states, (std::array<std::int32_t, 6>{0, 1, 1, 0, 0, 0}));
  std::int32_t can = 9;
  EXPECT_EQ(facade.CanExportFonts(instance, 2, ids + 1, &can), 0u);
  EXPECT_EQ(can, 1);
  facade.CanExportFonts(instance, 2, ids, &can);
  EXPECT_EQ(can, 0) << "a system font";
  facade.CanExportFonts(instance, 1, ids + 5, &can);
  EXPECT_EQ(can, 0) << "no font";
  std::uint32_t conflict = 9;
  EXPECT_EQ(facade.GetFontConflicts(instance, 1, ids + 4, &conflict), 0u);
  EXPECT_EQ(conflict, 10u);
}

TEST_F(PluginInterface, GivesTheWholeFamily) {
  ScratchLibrary library;
  library.Add({10, "Grotesk-Light", 1, 1, "/s/a.ttf"});
  library.Add({11, "Grotesk-Bold", 1, 2, "/l/b.ttf"});
  library.Add({12, "Antiqua", 2, 2, "/l/c.ttf"});
  const FontRecord asked = Info(11);
  const auto family = [&](std::uint32_t workgroup) {
    PLArrayRef fonts = nullptr;
    EXPECT_EQ(facade.FindFontsInSameFamilyForActivation(asked.Get(), &workgroup, 1, &fonts), 0u);
    return PropertyList::AdoptHandle(fonts);
  };
  EXPECT_EQ(CountOf(family(0)), 2u);
  ASSERT_EQ(CountOf(family(2)), 1u);
  EXPECT_EQ(RecordDatabaseID(family(2)->DictionaryAt(0)), 11u);
}

TEST_F(PluginInterface, ListsWorkgroups) {
  ScratchLibrary library;
  const auto list = [&](std::int32_t special) {
    PLArrayRef workgroups = nullptr;
    EXPECT_EQ(facade.GetAllWorkgroupsForUser(instance, &workgroups, special, 1), 0u);
    return PropertyList::AdoptHandle(workgroups);
  };
  ASSERT_EQ(CountOf(list(0)), 1u);
  const FontRecord mine = list(0)->DictionaryAt(0);
  char name[128], cut[5];
  EXPECT_EQ(facade.GetDefaultLibraryName(instance, name, sizeof(name)), 0u);
  EXPECT_EQ(RecordString(mine, kFP_WorkgroupNameKey), name);
  EXPECT_EQ(RecordString(mine, kFP_WorkgroupIDKey), "2");
  EXPECT_EQ(RecordString(mine, kFP_WorkgroupTypeKey), "3");
  EXPECT_EQ(CountOf(list(1)), 2u);
  facade.GetDefaultLibraryName(instance, cut, sizeof(cut));
  EXPECT_STREQ(cut, "Font");
}

TEST_F(PluginInterface, FollowsADatabaseThatWasReplaced) {
  auto library = std::make_unique<ScratchLibrary>();
  library->Add({11, "Old", 1, 2, "/l/b.ttf"});
  EXPECT_EQ(Named("Old", {}), IDs{11});
  library.reset();
  fs::remove_all(home.Path() + "/.local/share/vendrel");
  EXPECT_FALSE(Info(11));
  ScratchLibrary other;
  other.Add({12, "New", 1, 2, "/l/c.ttf"});
  EXPECT_EQ(Named("New", {}), IDs{12});
  EXPECT_EQ(Named("Old", {}), IDs{});
}

TEST_F(PluginInterface, ShowsALocalFontToThisProcessOnce) {
  const std::string path = home.Path() + "/local.ttf";
  BuildFont(path, "ScratchLocal");
  ScratchLibrary library;
  library.Add({11, "ScratchLocal", 1, 2, path});
  library.Add({12, "Gone", 1, 2, home.Path() + "/gone.ttf"});
  const std::uint32_t ids[] = {11, 12, 99};
  for (int i = 0; i < 2; ++i) EXPECT_EQ(facade.PreviewActivateFonts(instance, 1, ids, 0), 0u);
  EXPECT_NE(facade.PreviewActivateFonts(instance, 3, ids, 0), 0u);
  EXPECT_EQ(FcConfigGetFonts(nullptr, FcSetApplication)->nfont, 1);
  EXPECT_EQ(RecordString(Info(11), kFP_ActivationStateKey), "3");
  EXPECT_EQ(RecordString(Info(12), kFP_ActivationStateKey), "0");
  std::int32_t state = 9;
  facade.GetFontIsActivated(instance, 1, ids, &state);
  EXPECT_EQ(state, 0) << "not for every application";
  library.Activate(11, 4, 0);
  EXPECT_EQ(RecordString(Info(11), kFP_ActivationStateKey), "4");
  FcFini();  // a leak checker does not see what fontconfig holds
}

TEST_F(PluginInterface, WritesABoundedPrivateLog) {
  const std::string path = home.Path() + "/.local/state/vendrel/Host.log";
  EXPECT_EQ(facade.Log(instance, "early"), CoreErrorCodes::kNotInitialized);
  EXPECT_EQ(facade.BeginLogging(instance, "../.."), CoreErrorCodes::kInvalidParam);
  ASSERT_EQ(facade.BeginLogging(instance, "/etc/../Host.log"), 0u);
  EXPECT_EQ(facade.Log(instance, "one\n"), 0u);
  EXPECT_EQ(ReadWholeFile(path), "one\n");
  struct stat info {};
  ASSERT_EQ(stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777u, 0600u);
  const std::string much(std::size_t{1} << 20, 'x');
  for (int i = 0; i < 8; ++i) EXPECT_EQ(facade.Log(instance, much.c_str()), 0u);
  EXPECT_EQ(facade.Log(instance, "last\n"), 0u);
  EXPECT_EQ(ReadWholeFile(path), "last\n");
  EXPECT_EQ(fs::file_size(path + ".1"), std::uintmax_t{4} << 20);
  EXPECT_EQ(std::distance(fs::directory_iterator(fs::path(path).parent_path()), {}), 2);
}

TEST_F(PluginInterface, WritesNoLogThroughALink) {
  const std::string target = home.WriteFile("precious", "kept");
  fs::create_symlink(target, fs::path(home.MakeFolder(".local/state/vendrel")) / "Host.log");
  EXPECT_NE(facade.BeginLogging(instance, "Host.log"), 0u);
  EXPECT_NE(facade.Log(instance, "text"), 0u);
  EXPECT_EQ(ReadWholeFile(target), "kept");
}

TEST_F(PluginInterface, NamesColumnsAndPermissions) {
  std::set<std::string> names;
#define COLUMN(getter, name)                            \
  {                                                     \
    char buffer[256] = "";                              \
    EXPECT_EQ(facade.getter(buffer, 256), 0u);          \
    EXPECT_TRUE(names.insert(buffer).second) << buffer; \
  }
#include "frameworks/plugin-interface/ColumnNames.def"
#undef COLUMN
  EXPECT_EQ(names.size(), 24u);
  char across[256], exports[256];
  facade.GetCanActivateAcrossWorkgroupsColumnID(across, 256);
  facade.GetExportFontsColumnID(exports, 256);
  std::int32_t permission = 9;
  EXPECT_EQ(facade.GetPermission(instance, 1, across, 0, &permission), 0u);
  EXPECT_EQ(permission, 0);
  EXPECT_EQ(facade.GetPermission(instance, 0, exports, 2, &permission), 0u);
  EXPECT_EQ(permission, 1);
  EXPECT_EQ(facade.GetPermission(instance, 0, "Fly", 2, &permission), CoreErrorCodes::kNotFound);
  EXPECT_EQ(permission, 0);
}

TEST_F(PluginInterface, ClearsWhatItDoesNotServe) {
  std::uint32_t id = 9;
  char path[4] = "abc";
  PLStringRef tree = reinterpret_cast<PLStringRef>(&id);
  EXPECT_EQ(facade.CreateSmartList(instance, "n", 0, 0, 0, 0, 0, 0, &id),
            CoreErrorCodes::kNotImplemented);
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(facade.GetRenderedPNGsDirectory(instance, path, 4), CoreErrorCodes::kNotImplemented);
  EXPECT_STREQ(path, "");
  EXPECT_EQ(facade.GetPanelSmartListTree(instance, 1, &tree), CoreErrorCodes::kNotImplemented);
  EXPECT_EQ(tree, nullptr);
  EXPECT_EQ(facade.GetAllSmartLists(instance, nullptr), CoreErrorCodes::kNotImplemented);
}

TEST_F(PluginInterface, MakesFolders) {
  const std::string folder = home.Path() + "/a/b";
  EXPECT_EQ(facade.OSDoesDirectoryExist(folder.c_str()), 0u);
  EXPECT_NE(facade.OSCreateDirectory(folder.c_str(), 0), 0u);
  EXPECT_EQ(facade.OSCreateDirectory(folder.c_str(), 1), 0u);
  EXPECT_NE(facade.OSDoesDirectoryExist(folder.c_str()), 0u);
  EXPECT_EQ(facade.OSDoesDirectoryExist(nullptr), 0u);
}
