// What fontconfig shows to every application, asked through a configuration of its own each time.
//
// Threads: any; nothing is shared between calls.
#pragma once

#include <string>
#include <vector>

#include "agent/FolderWalker.h"

namespace Nodrix {

// The font files that fontconfig lists, those below `except` left out; ordered by path. False if
// fontconfig could not be set up.
bool ListSystemFonts(const std::string& except, std::vector<FoundFile>& files);

// How a face of a file can be seen.
enum class Visibility {
  eVisible,   // a question by its PostScript name is answered with this file
  eShadowed,  // it is listed, and another file answers the question
  eHidden     // not listed at all
};

struct VisibilityQuestion {
  std::string path;
  std::string postScriptName;
  std::int32_t faceIndex = 0;
};

// Answers all questions with one configuration, in their order. Setting it up also writes
// fontconfig's caches of changed folders, which spares every other application that work.
std::vector<Visibility> AskVisibility(const std::vector<VisibilityQuestion>& questions);

}  // namespace Nodrix
