// Questions about the library as a whole, its workgroups, its edition, the user and the agent.
#include <string>

#include "agent/library/Paths.h"
#include "foundation/GFileSystem.h"
#include "frameworks/plugin-interface/ColumnNames.h"
#include "frameworks/plugin-interface/EntryPoint.h"
#include "frameworks/plugin-interface/Facade.h"
#include "propertylist/FontRecord.h"
#include "sdk/FontRecordKeys.h"

namespace {

// What a library is called that nobody renamed. A caller tells a renamed one by the difference.
constexpr const char* kDefaultLibraryName = "Font Library";

std::uint32_t AnswerFlag(PluginFacadeInstance instance, std::int32_t* out, bool flag) {
  if (out != nullptr) *out = 0;
  if (instance == nullptr || out == nullptr) return CoreErrorCodes::kNullPointer;
  *out = flag;
  return CoreErrorCodes::kSuccess;
}

FontRecord RecordOfWorkgroup(const Nodrix::WorkgroupRow& row) {
  const FontRecord record = MakeFontRecord();
  record->Set(kFP_WorkgroupIDKey, std::to_string(row.id));
  record->Set(kFP_WorkgroupNameKey, row.name);
  record->Set(kFP_WorkgroupTypeKey, std::to_string(row.type));
  return record;
}

std::uint32_t ListWorkgroups(PluginFacade& facade, bool withSystem, PLArrayRef* out) {
  Nodrix::LibraryReader* const reader = facade.Reader();
  if (reader == nullptr) return CoreErrorCodes::kDatabaseError;
  FontRecordArray workgroups = MakeFontRecordArray();
  for (const auto& row : reader->Workgroups()) {
    if (withSystem || row.type != kWorkgroupType_System) workgroups->Append(RecordOfWorkgroup(row));
  }
  *out = workgroups.Detach();
  return CoreErrorCodes::kSuccess;
}

// One user with a library of their own: there is nothing to cross, and what is theirs may be taken
// out.
std::uint32_t Permission(std::string_view column, std::int32_t* out) {
  if (column == kColumn_ExportFonts) {
    *out = 1;
  } else if (column != kColumn_CanActivateAcrossWorkgroups) {
    return CoreErrorCodes::kNotFound;
  }
  return CoreErrorCodes::kSuccess;
}

}  // namespace

uint32_t GetAllWorkgroupsForUser(PluginFacadeInstance instance, PLArrayRef* outWorkgroups,
                                 int32_t includeSpecial, int32_t) {
  return Answer([&]() -> std::uint32_t {
    if (outWorkgroups != nullptr) *outWorkgroups = nullptr;
    if (instance == nullptr || outWorkgroups == nullptr) return CoreErrorCodes::kNullPointer;
    return ListWorkgroups(*instance, includeSpecial != 0, outWorkgroups);
  });
}

// A database that can't be read at all is an error, but not one of the schema.
uint32_t GetAreSchemaVersionsInSync(PluginFacadeInstance instance, int32_t* outInSync) {
  return Answer([&]() -> std::uint32_t {
    const auto schema = PluginFacade::CheckSchema();
    const auto code = AnswerFlag(instance, outInSync, schema != PluginFacade::Schema::eDiffers);
    if (code == CoreErrorCodes::kSuccess && schema == PluginFacade::Schema::eUnreadable) {
      return CoreErrorCodes::kDatabaseError;
    }
    return code;
  });
}

uint32_t GetDefaultLibraryName(PluginFacadeInstance instance, char* outName, uint32_t size) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr) return CoreErrorCodes::kNullPointer;
    return CopyTextOut(kDefaultLibraryName, outName, size);
  });
}

uint32_t GetFontVaultPath(PluginFacadeInstance instance, uint32_t size, char* outPath) {
  return Answer([&]() -> std::uint32_t {
    if (instance == nullptr) return CoreErrorCodes::kNullPointer;
    const std::string path = Nodrix::DatabasePath();
    return CopyTextOut(std::string_view(path).substr(0, path.rfind('/')), outPath, size);
  });
}

uint32_t GetSystemWorkgroupID(PluginFacadeInstance instance, uint32_t* outWorkgroupID) {
  if (instance == nullptr || outWorkgroupID == nullptr) return CoreErrorCodes::kNullPointer;
  *outWorkgroupID = Nodrix::kSystemWorkgroupID;
  return CoreErrorCodes::kSuccess;
}

uint32_t IsAllWorkgroups(PluginFacadeInstance instance, uint32_t workgroupID, int32_t* outIsAll) {
  return AnswerFlag(instance, outIsAll, Nodrix::IsEveryWorkgroup(workgroupID));
}

uint32_t GetPermission(PluginFacadeInstance instance, uint16_t, const char* columnName, uint32_t,
                       int32_t* outPermission) {
  return Answer([&]() -> std::uint32_t {
    if (outPermission != nullptr) *outPermission = 0;
    if (instance == nullptr || columnName == nullptr || outPermission == nullptr) {
      return CoreErrorCodes::kNullPointer;
    }
    return Permission(columnName, outPermission);
  });
}

uint32_t GetIsCoreAgentProcessRunning(PluginFacadeInstance instance, int32_t* outRunning) {
  return Answer(
      [&] { return AnswerFlag(instance, outRunning, instance && instance->IsAgentRunning()); });
}

// The edition: one user, on this machine, always there.
uint32_t GetIsStandaloneMode(PluginFacadeInstance instance, int32_t* outStandalone) {
  return AnswerFlag(instance, outStandalone, true);
}
uint32_t GetIsLoggedIn(PluginFacadeInstance instance, int32_t* outLoggedIn) {
  return AnswerFlag(instance, outLoggedIn, true);
}
uint32_t GetIsOnline(PluginFacadeInstance instance, int32_t* outOnline) {
  return AnswerFlag(instance, outOnline, true);
}
uint32_t GetIsGoogleWebFontsEnabled(PluginFacadeInstance instance, int32_t* outEnabled) {
  return AnswerFlag(instance, outEnabled, false);
}
uint32_t CanAccessGoogleFonts(PluginFacadeInstance) { return 0; }

uint32_t OSDoesDirectoryExist(const char* path) {
  return BehindWall<std::uint32_t>(0, [&] {
    return path != nullptr && GFileSystem::OSDoesDirectoryExist(GFileSystemSpec(path));
  });
}

uint32_t OSCreateDirectory(const char* path, int32_t recursive) {
  return Answer([&]() -> std::uint32_t {
    if (path == nullptr) return CoreErrorCodes::kNullPointer;
    return GFileSystem::OSCreateDirectory(GFileSystemSpec(path), recursive != 0);
  });
}
