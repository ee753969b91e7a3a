#include "fontmanager/FontManagerInterface.h"

#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "support/InertFontManager.h"
#include "support/LogCapture.h"

TEST(IsFontActive, AsksForTheNameAfterARoundTripThroughMacRoman) {
  const std::string tooLong(256, 'x');
  FakePlatform platform;
  // What has no place in MacRoman, or in a platform string, is asked for as it is.
  for (const std::string& name : {std::string("Foo-Bold"), std::string("Café"), std::string("明朝"),
                                  tooLong, std::string()}) {
    platform.fonts.questions.clear();
    platform.fonts.visible = {name};
    EXPECT_TRUE(FontManagerInterface::IsFontActive(name)) << name;
    EXPECT_EQ(platform.fonts.questions, std::vector<std::string>{name});
  }
  platform.fonts.visible = {"foo-bold", "Foo-Bold2", "Café"};
  EXPECT_FALSE(FontManagerInterface::IsFontActive("Foo-Bold"));
  const PlatformString name = {4, 'C', 'a', 'f', 0x8E};
  EXPECT_TRUE(FontManagerInterface::IsFontActive(name));
  const PlatformString shorter = {3, 'C', 'a', 'f', 0x8E};
  EXPECT_FALSE(FontManagerInterface::IsFontActive(shorter));
}

TEST(FontManagerInterface, DoesNothingByItself) {
  InertFontManager inert;
  FontManagerInterface& manager = inert;
  for (const bool yes : {manager.RunningStandalone(), manager.IsFontManagerConnected(),
                         manager.FontManagerIsClientServer(), manager.AreSchemaVersionsInSync(),
                         manager.CheckForWorkgroups(), manager.IsAllWorkgroups(-2),
                         manager.IsLoggedIn(), manager.IsOnline()}) {
    EXPECT_TRUE(yes);
  }
  for (const bool no :
       {manager.ConnectedToKestrane(), manager.ConnectedToKestraneDuora(),
        manager.ConnectedToCoreAgent(), manager.GoogleWebFontsEnabled(),
        manager.IsAllWorkgroups(-1), manager.IsAllWorkgroups(0), manager.IsSelectedWorkgroupLocal(),
        manager.IsRemoteWorkgroupTypeDisabled(8), manager.CanActivateFromAllWorkgroups(),
        manager.CanExportFromWorkgroup(nullptr), manager.CannotExportFromSomeWorkgroup(),
        manager.IsRunning(), manager.IsWindows()}) {
    EXPECT_FALSE(no);
  }
  for (const int done : {manager.DisconnectFromFontManager(),
                         manager.SetFontAutoActivationStatus(true), manager.EndActivationChange(),
                         manager.EndGetFaceprintInfo(""), manager.ProcessNotifications()}) {
    EXPECT_EQ(done, 0);
  }
  EXPECT_TRUE(manager.GetFontConflicts({7}).empty());
  const LogCapture log;
  EXPECT_EQ(manager.GetClientFontActivationStates({7, 0, 9, 7}),
            (std::map<std::uint32_t, bool>{{7, true}, {9, true}}));
  EXPECT_TRUE(log.Has(
      "FontManagerInterface::GetClientFontActivationStates returning a map with 2 entries"));

  // What can't be answered is -1, and a count or an ID is cleared.
  std::uint32_t id = 5;
  long count = 5;
  std::size_t size = 5;
  std::string name;
  FontManagerInterface::FontIDs ids;
  FontManagerInterface::FontOrSetInfoRec rec;
  for (const int code :
       {manager.FontIDsForPostScriptName("A", 0, ids), manager.FontIDsForFamilyName("A", 0, ids),
        manager.ActivateFontByName("A", 0, "d", id),
        manager.CountNamedFonts("A", kPostScriptFontName, 0, count, ""),
        manager.GetNamedFontInfo("A", kPostScriptFontName, 0, 1, "", rec),
        manager.GetFontInfoByID(nullptr, rec), manager.GetPostscriptNameByID(name, 0, 1),
        manager.GetFaceprintInfo(1, nullptr, nullptr, size),
        manager.FindFontsInSameFamilyForActivation(nullptr, nullptr, 0, nullptr),
        manager.MakeSetForDocumentFonts("", nullptr),
        manager.CollectFontsUsedByCurrentDocument("", "", nullptr), manager.GoOnline(),
        manager.GoOffline()}) {
    EXPECT_EQ(code, -1);
  }
  EXPECT_EQ(id, 0u);
  EXPECT_EQ(count, 0);
}
