// What kind of font a face is, as the records of the library tell it.
#pragma once

#include <string>

#include "sdk/FontRecordKeys.h"

namespace Nodrix {

// What a face's file says of itself.
struct FaceTraits {
  bool isType1 = false;
  bool hasMasters = false;         // Multiple Master; only looked at for Type 1
  bool hasCFFOutlines = false;     // an sfnt with PostScript outlines
  bool hasOpenTypeTables = false;  // GSUB, GPOS or DSIG
};

inline std::string FontKind(const FaceTraits& traits) {
  if (traits.isType1) return traits.hasMasters ? kFP_Kind_PostscriptMM : kFP_Kind_Postscript;
  if (traits.hasCFFOutlines) return kFP_Kind_OpenTypePS;
  return traits.hasOpenTypeTables ? kFP_Kind_OpenTypeTT : kFP_Kind_TrueType;
}

}  // namespace Nodrix
