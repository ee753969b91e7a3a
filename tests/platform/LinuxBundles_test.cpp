#include "platform/linux/LinuxBundles.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "sdk/PropertyList.h"
#include "support/FakePlatform.h"
#include "support/ScratchHome.h"

namespace fs = std::filesystem;

namespace {

std::string PropertyListText(const std::string& entries) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>" + entries +
         "</dict></plist>";
}

std::string Entry(const std::string& key, const std::string& text) {
  return "<key>" + key + "</key><string>" + text + "</string>";
}

// A bundle around a copy of a real library.
std::string MakeBundle(const ScratchHome& home, const std::string& folder,
                       const std::string& identifier) {
  home.WriteFile(folder + "/Contents/Info.plist",
                 PropertyListText(Entry("CFBundleIdentifier", identifier) +
                                  Entry("CFBundleShortVersionString", "22.0.1")));
  home.WriteFile(folder + "/Contents/Resources/NonLocalized.strings.plist",
                 PropertyListText(Entry("Hello", "Good day")));
  const std::string code = home.MakeFolder(folder + "/Contents/Linux");
  fs::copy_file(TEST_BUILD_DIR "/lib/libvendrel-core.so",
                code + "/" + fs::path(folder).stem().string());
  return home.Path() + "/" + folder;
}

TEST(LinuxBundles, AnOpenedBundleAnswersAllQuestions) {
  ScratchHome home;
  const std::string path = MakeBundle(home, "Some.framework", "com.example.some");
  LinuxBundles bundles;
  EXPECT_FALSE(bundles.IsLoaded("com.example.some"));
  const std::shared_ptr<Bundle> bundle = bundles.Open(path + "/");
  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->Path(), path);
  EXPECT_EQ(bundle->Identifier(), "com.example.some");
  EXPECT_EQ(bundle->Value("CFBundleShortVersionString"), "22.0.1");
  EXPECT_EQ(bundle->Value("HostApp"), std::nullopt);
  EXPECT_EQ(bundle->ExecutablePath(), path + "/Contents/Linux/Some");
  EXPECT_EQ(bundle->PrivateFrameworksPath(), path + "/Contents/Frameworks");
  EXPECT_EQ(bundle->LocalizedString("NonLocalized", "Hello", "none"), "Good day");
  EXPECT_EQ(bundle->LocalizedString("NonLocalized", "Bye", "none"), "none");
  EXPECT_EQ(bundle->LocalizedString("../NonLocalized", "Hello", "none"), "none");
  EXPECT_NE(bundle->LookUpSymbol("PLDictionaryCreate"), nullptr);
  EXPECT_EQ(bundle->LookUpSymbol("NoSuchEntryPoint"), nullptr);
  EXPECT_EQ(bundles.Open(path), bundle);
  EXPECT_EQ(bundles.FindByIdentifier("com.example.some"), bundle);
}

TEST(LinuxBundles, ALoadedLibraryTellsItsBundle) {
  ScratchHome home;
  LinuxBundles bundles;
  const std::string path = MakeBundle(home, "Other.plugin", "com.example.other");
  EXPECT_EQ(bundles.FindByIdentifier("com.example.other"), nullptr);
  ASSERT_NE(dlopen((path + "/Contents/Linux/Other").c_str(), RTLD_NOW | RTLD_LOCAL), nullptr);
  const std::shared_ptr<Bundle> bundle = bundles.FindByIdentifier("com.example.other");
  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->Path(), path);
}

TEST(LinuxBundles, PrivateFrameworksAreThoseOfTheOwner) {
  ScratchHome home;
  FakePlatform platform;
  auto& owner = platform.bundles.AddLoaded("/opt/Owner.plugin", "com.example.owner");
  platform.bundles.Add(owner.PrivateFrameworksPath() + "/Part.framework", "com.example.part");
  const auto part = LoadPrivateFramework("com.example.owner", "Part.framework");
  ASSERT_NE(part, nullptr);
  EXPECT_EQ(part->Identifier(), "com.example.part");
  EXPECT_EQ(LoadPrivateFramework("com.example.nobody", "Part.framework"), nullptr);
}

TEST(LinuxBundles, WhatOthersCanWriteOrWhatIsNoBundleIsRefused) {
  ScratchHome home;
  LinuxBundles bundles;
  EXPECT_EQ(bundles.Open(home.Path() + "/nothing"), nullptr);
  EXPECT_EQ(bundles.Open(home.MakeFolder("Empty.framework")), nullptr);
  home.WriteFile("Broken.framework/Contents/Info.plist", "<plist><dict><key>");
  EXPECT_EQ(bundles.Open(home.Path() + "/Broken.framework"), nullptr);

  const std::string open = MakeBundle(home, "Open.framework", "com.example.open");
  fs::permissions(open, fs::perms::others_write, fs::perm_options::add);
  EXPECT_EQ(bundles.Open(open), nullptr);
  const std::string linked = home.Path() + "/Link.framework";
  fs::create_directory_symlink(open, linked);
  EXPECT_EQ(bundles.Open(linked), nullptr);

  const std::string code = MakeBundle(home, "Code.framework", "com.example.code");
  fs::permissions(code + "/Contents/Linux", fs::perms::others_write, fs::perm_options::add);
  const std::shared_ptr<Bundle> bundle = bundles.Open(code);
  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->LookUpSymbol("PLDictionaryCreate"), nullptr);
}

}  // namespace
