// What the plug-in would do, or did, with each font of a document.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/DocumentFonts.h"
#include "propertylist/FontRecord.h"

enum class FontStatus {
  eActive,     // on already, or always on
  eActivated,  // turned on by this open
  eInactive,   // in the library; an open would turn it on
  eMissing,    // the library does not know it, and the system does not either
  eChoice,     // several fonts fit; the user is to choose
  eShadowed    // on, but another font of the same name comes first
};

const char* NameOf(FontStatus status);

struct ReportedFont {
  DocumentFont font;
  FontStatus status = FontStatus::eMissing;
  FontRecord match;  // the library's font; null if there is none
  std::string note;  // why nothing is to be done about it; empty otherwise
};

struct FontReport {
  DocumentFonts document;
  std::vector<ReportedFont> fonts;

  // A font that has a note is open to nobody.
  int Count(FontStatus status) const;
  bool LeavesQuestions() const;
  std::vector<std::uint32_t> MatchedIDs() const;
};

// Asks the plug-in's own pipeline. Needs a started plug-in.
FontReport CheckDocument(DocumentFonts document);

// Brings a report up to date after the document was opened: what is on now, and whose file an
// application of the user would get. `activePaths` are the activated files by font ID.
void UpdateAfterOpen(FontReport& report, const std::map<std::uint32_t, std::string>& activePaths);

nlohmann::json ToJson(const FontReport& report);
std::vector<std::string> ToLines(const FontReport& report);
