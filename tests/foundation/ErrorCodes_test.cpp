#include "foundation/ErrorCodes.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "foundation/ErrorChecks.h"
#include "foundation/GDateTime.h"
#include "foundation/GFile.h"
#include "foundation/GFileSystem.h"
#include "foundation/GMutex.h"
#include "foundation/TModuleErrorCodeError.h"
#include "support/ErrorRecords.h"

namespace {

struct Row {
  TModuleErrorCode code;
  const char* name;
};

constexpr Row kRows[] = {
#define G_ERROR_CODE(module, class, number, name) \
  {MakeErrorCode(module, number), #class "::" #name},
#include "foundation/ErrorCodes.def"
#undef G_ERROR_CODE
};

TEST(ErrorCodes, EveryRowRoundTripsAndIsUnique) {
  std::set<TModuleErrorCode> codes;
  std::set<std::string> names;
  for (const Row& row : kRows) {
    EXPECT_EQ(GetNameForErrorCode(row.code), row.name);
    EXPECT_EQ(GetErrorCodeForName(row.name), row.code) << row.name;
    EXPECT_TRUE(codes.insert(row.code).second) << row.name;
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
  }
}

TEST(ErrorCodes, NumberIsInTheTopByte) {
  const Row rows[] = {
      {0, "CoreErrorCodes::kSuccess"},
      {0x07000000, "CoreErrorCodes::kNotFound"},
      {0x02001004, "GFile::kOpenFailed"},
      {0x16001012, "GSqliteDatabase::kCannotEndTransactionOutOfOrder"},
      {0x07004005, "GFontToolResults::kFontAlreadyInDatabase"},
      {0x01004005, "GKVMessageHandler_FontAdder::kPathTooLong"},
      {0x0600400D, "GFontToolResults::kInvalidFaceprintVersion"},
      {0x10004018, "GFontServerProxy::kSessionDeleted"},
      {0x03007003, "GTovickVaultCommand::kPathDataNotSpecified"},
      {GFile::kFileNotOpen, "GFile::kFileNotOpen"},
      {GFileSystem::kFileNotFound, "GFileSystem::kFileNotFound"},
      {GFileSystem::kDirectoryNotFound, "GFileSystem::kDirectoryNotFound"},
      {GFileSystem::kFileOrDirectoryAlreadyExists, "GFileSystem::kFileOrDirectoryAlreadyExists"},
      {GFileSystem::kInvalidPath, "GFileSystem::kInvalidPath"},
      {GFileSystem::kDiskFull, "GFileSystem::kDiskFull"},
      {GDateTime::kParsingError, "GDateTime::kParsingError"},
      {GMutex::kMutexDeadlockErr, "GMutex::kMutexDeadlockErr"},
      {GMutex::kMutexInvalidErr, "GMutex::kMutexInvalidErr"},
      {GLockable::kLockBusyErr, "GLockable::kLockBusyErr"}};
  for (const Row& row : rows) EXPECT_EQ(GetNameForErrorCode(row.code), row.name);
  // Others have none, beginning with a gap in the generic list.
  for (const TModuleErrorCode code : {0x0B000000U, 0x0100100EU, 0x02005001U, 0x02007005U,
                                      0x02007008U, 0x03007005U, 0xFFFFFFFFU}) {
    EXPECT_EQ(GetNameForErrorCode(code), "Unknown error code") << code;
  }
  EXPECT_EQ(GetErrorCodeForName("coreerrorcodes::kerror"), 0x15000000U);
}

TEST(ErrorCodes, FirstLookUpsOfSeveralThreadsAgree) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      EXPECT_EQ(GetNameForErrorCode(0x01004016), "GTaskThread::kTaskAlreadyBusy");
      EXPECT_EQ(GetErrorCodeForName("GTaskThread::kTaskAlreadyBusy"), 0x01004016U);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(ErrorCodes, ACodeTravelsAsAnException) {
  const restful_mapper::TModuleErrorCodeError error(CoreErrorCodes::kNotFound);
  EXPECT_STREQ(static_cast<const std::exception&>(error).what(), "CoreErrorCodes::kNotFound");
  EXPECT_EQ(error.error(), CoreErrorCodes::kNotFound);
}

TModuleErrorCode Fails(int = 0, int = 0) { return CoreErrorCodes::kNotFound; }

TModuleErrorCode CheckCall() {
  // clang-format off
  G_CHECK_CALL(Fails(static_cast<int>(1),
                     2 > 1 ? 3 : 4));
  // clang-format on
  return 0;
}

TModuleErrorCode CheckCallQuietly() {
  G_CHECK_CALL_QUIET(Fails());
  return 0;
}

TModuleErrorCode CheckArguments(int count, const int* pointer) {
  G_CHECK_CONDITION(count < 1, CoreErrorCodes::kNotInitialized);
  G_CHECK_NULL(pointer);
  return 0;
}

TEST(ErrorChecks, RecordAndLeaveWithTheCode) {
  const RecordingAppender& log = RecordingAppender::Install();
  const int number = 0;
  EXPECT_EQ(CheckCallQuietly(), CoreErrorCodes::kNotFound);  // below the level: no line
  EXPECT_EQ(CheckCall(), CoreErrorCodes::kNotFound);
  EXPECT_EQ(CheckArguments(0, nullptr), CoreErrorCodes::kNotInitialized);
  EXPECT_EQ(CheckArguments(1, nullptr), CoreErrorCodes::kNullPointer);
  EXPECT_EQ(CheckArguments(1, &number), 0U);
  EXPECT_EQ(ExpressionsOf(log),
            "Fails(static_cast<int>(1), 2 > 1 ? 3 : 4)\ncount < 1\n(pointer) == nullptr\n");
  EXPECT_NE(log.Lines()[0].find("File='ErrorCodes_test'"), std::string::npos);
  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  CheckCallQuietly();
  EXPECT_NE(log.Lines().back().find("[Debug]"), std::string::npos);
}

}  // namespace
