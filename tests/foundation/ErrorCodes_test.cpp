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
#include "support/RecordingAppender.h"

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
  };
  for (const Row& row : rows) EXPECT_EQ(GetNameForErrorCode(row.code), row.name);
}

TEST(ErrorCodes, UnknownOnesAreSaid) {
  EXPECT_EQ(GetNameForErrorCode(0x0B000000), "Unknown error code");  // a gap in the generic list
  for (const TModuleErrorCode code :
       {0x0100100EU, 0x02005001U, 0x02007005U, 0x02007008U, 0x03007005U, 0xFFFFFFFFU}) {
    EXPECT_EQ(GetNameForErrorCode(code), "Unknown error code") << code;
  }
  EXPECT_EQ(GetErrorCodeForName("no such name"), 0x15000000U);
  EXPECT_EQ(GetErrorCodeForName("coreerrorcodes::kerror"), 0x15000000U);
}

TEST(ErrorCodes, ConstantsOfClassesAgreeWithTheTable) {
  EXPECT_EQ(GetErrorCodeForName("GFile::kFileNotOpen"), GFile::kFileNotOpen);
  EXPECT_EQ(GetErrorCodeForName("GFileSystem::kFileNotFound"), GFileSystem::kFileNotFound);
  EXPECT_EQ(GetErrorCodeForName("GFileSystem::kDirectoryNotFound"),
            GFileSystem::kDirectoryNotFound);
  EXPECT_EQ(GetErrorCodeForName("GDateTime::kParsingError"), GDateTime::kParsingError);
  EXPECT_EQ(GetErrorCodeForName("GFileSystem::kFileOrDirectoryAlreadyExists"),
            GFileSystem::kFileOrDirectoryAlreadyExists);
  EXPECT_EQ(GetErrorCodeForName("GFileSystem::kInvalidPath"), GFileSystem::kInvalidPath);
  EXPECT_EQ(GetErrorCodeForName("GFileSystem::kDiskFull"), GFileSystem::kDiskFull);
  EXPECT_EQ(GetErrorCodeForName("GMutex::kMutexDeadlockErr"), GMutex::kMutexDeadlockErr);
  EXPECT_EQ(GetErrorCodeForName("GMutex::kMutexInvalidErr"), GMutex::kMutexInvalidErr);
  EXPECT_EQ(GetErrorCodeForName("GLockable::kLockBusyErr"), GLockable::kLockBusyErr);
}

TEST(ErrorCodes, FirstLookUpsOfSeveralThreadsAgree) {
  std::string names[4];
  TModuleErrorCode codes[4] = {};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&names, &codes, i] {
      names[i] = GetNameForErrorCode(0x01004016);
      codes[i] = GetErrorCodeForName("GTaskThread::kTaskAlreadyBusy");
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(names[i], "GTaskThread::kTaskAlreadyBusy");
    EXPECT_EQ(codes[i], 0x01004016U);
  }
}

TEST(ErrorCodes, ACodeTravelsAsAnException) {
  try {
    throw restful_mapper::TModuleErrorCodeError(CoreErrorCodes::kNotFound);
  } catch (const std::exception& caught) {
    EXPECT_STREQ(caught.what(), "CoreErrorCodes::kNotFound");
    EXPECT_EQ(dynamic_cast<const restful_mapper::TModuleErrorCodeError&>(caught).error(),
              CoreErrorCodes::kNotFound);
  }
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

TModuleErrorCode CheckCondition(int count) {
  G_CHECK_CONDITION(count < 1, CoreErrorCodes::kNotInitialized);
  return 0;
}

TModuleErrorCode CheckNull(const int* pointer) {
  G_CHECK_NULL(pointer);
  return 0;
}

TEST(ErrorChecks, RecordAndLeaveWithTheCode) {
  RecordingAppender& log = RecordingAppender::Install();
  EXPECT_EQ(CheckCall(), CoreErrorCodes::kNotFound);
  EXPECT_EQ(CheckCallQuietly(), CoreErrorCodes::kNotFound);  // below the level: no line
  EXPECT_EQ(CheckCondition(0), CoreErrorCodes::kNotInitialized);
  EXPECT_EQ(CheckCondition(1), 0U);
  EXPECT_EQ(CheckNull(nullptr), CoreErrorCodes::kNullPointer);
  ASSERT_EQ(log.Lines().size(), 3U);
  EXPECT_NE(log.Lines()[0].find("File='ErrorCodes_test'"), std::string::npos);
  EXPECT_NE(log.Lines()[0].find("Expression='Fails(static_cast<int>(1), 2 > 1 ? 3 : 4)'"),
            std::string::npos);
  EXPECT_NE(log.Lines()[1].find("Expression='count < 1'"), std::string::npos);
  EXPECT_NE(log.Lines()[2].find("Expression='(pointer) == nullptr'"), std::string::npos);

  GLogger::GetSharedInstance()->SetLoggingLevelForIdentifier("Miscellaneous", GLogger::eDebug);
  CheckCallQuietly();
  ASSERT_EQ(log.Lines().size(), 4U);
  EXPECT_NE(log.Lines()[3].find("[Debug]"), std::string::npos);
}

}  // namespace
