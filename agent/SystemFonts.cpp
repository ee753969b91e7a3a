#include "agent/SystemFonts.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <set>
#include <string_view>

namespace Nodrix {
namespace {

struct ReleaseConfiguration {
  void operator()(FcConfig* configuration) const { FcConfigDestroy(configuration); }
};
struct ReleasePattern {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct ReleaseFontSet {
  void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
};
struct ReleaseObjectSet {
  void operator()(FcObjectSet* objects) const { FcObjectSetDestroy(objects); }
};
using Configuration = std::unique_ptr<FcConfig, ReleaseConfiguration>;
using Pattern = std::unique_ptr<FcPattern, ReleasePattern>;
using FontSet = std::unique_ptr<FcFontSet, ReleaseFontSet>;
using ObjectSet = std::unique_ptr<FcObjectSet, ReleaseObjectSet>;

std::string_view Text(const FcPattern* pattern, const char* object) {
  FcChar8* text = nullptr;
  if (FcPatternGetString(pattern, object, 0, &text) != FcResultMatch) return {};
  return reinterpret_cast<const char*>(text);
}

int Index(const FcPattern* pattern) {
  int index = 0;
  return FcPatternGetInteger(pattern, FC_INDEX, 0, &index) == FcResultMatch ? index : 0;
}

FontSet Listed(FcConfig* configuration, const char* object, const std::string& value) {
  const Pattern pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), object, reinterpret_cast<const FcChar8*>(value.c_str()));
  const ObjectSet objects(FcObjectSetBuild(FC_FILE, FC_INDEX, FC_POSTSCRIPT_NAME, nullptr));
  return FontSet(FcFontList(configuration, pattern.get(), objects.get()));
}

// The file that an application gets which asks for this name.
std::string MatchedFile(FcConfig* configuration, const std::string& postScriptName) {
  const Pattern pattern(FcPatternCreate());
  FcPatternAddString(pattern.get(), FC_POSTSCRIPT_NAME,
                     reinterpret_cast<const FcChar8*>(postScriptName.c_str()));
  FcConfigSubstitute(configuration, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  FcResult result = FcResultNoMatch;
  const Pattern match(FcFontMatch(configuration, pattern.get(), &result));
  return match ? std::string(Text(match.get(), FC_FILE)) : std::string();
}

Visibility VisibilityOf(FcConfig* configuration, const VisibilityQuestion& question) {
  // fontconfig gives the instances of a variable font names of its own making, so that only their
  // place can be asked for.
  if (question.faceIndex >> 16 != 0) {
    const FontSet listed = Listed(configuration, FC_FILE, question.path);
    for (int i = 0; listed && i < listed->nfont; ++i) {
      if (Index(listed->fonts[i]) == question.faceIndex) return Visibility::eVisible;
    }
    return Visibility::eHidden;
  }
  const FontSet listed = Listed(configuration, FC_POSTSCRIPT_NAME, question.postScriptName);
  bool ours = false, others = false;
  // The list ignores case.
  for (int i = 0; listed && i < listed->nfont; ++i) {
    (Text(listed->fonts[i], FC_FILE) == question.path ? ours : others) = true;
  }
  if (!ours) return Visibility::eHidden;
  if (!others) return Visibility::eVisible;
  return MatchedFile(configuration, question.postScriptName) == question.path
             ? Visibility::eVisible
             : Visibility::eShadowed;
}

}  // namespace

bool ListSystemFonts(const std::string& except, std::vector<FoundFile>& files) {
  const Configuration configuration(FcInitLoadConfigAndFonts());
  if (!configuration) return false;
  const std::string exceptBelow = except + "/";
  std::set<std::string> paths;
  const Pattern all(FcPatternCreate());
  const ObjectSet objects(FcObjectSetBuild(FC_FILE, nullptr));
  const FontSet fonts(FcFontList(configuration.get(), all.get(), objects.get()));
  for (int i = 0; fonts && i < fonts->nfont; ++i) {
    const std::string_view path = Text(fonts->fonts[i], FC_FILE);
    if (!path.starts_with(exceptBelow)) paths.emplace(path);
  }
  for (const std::string& path : paths) {
    if (FoundFile file; DescribeFile(path, file)) files.push_back(std::move(file));
  }
  return true;
}

std::vector<Visibility> AskVisibility(const std::vector<VisibilityQuestion>& questions) {
  std::vector<Visibility> answers(questions.size(), Visibility::eHidden);
  if (questions.empty()) return answers;
  const Configuration configuration(FcInitLoadConfigAndFonts());
  if (!configuration) return answers;
  for (std::size_t i = 0; i < questions.size(); ++i) {
    answers[i] = VisibilityOf(configuration.get(), questions[i]);
  }
  return answers;
}

}  // namespace Nodrix
