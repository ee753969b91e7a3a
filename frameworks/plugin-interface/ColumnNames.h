// The two columns that are permissions. All names of columns stand in ColumnNames.def.
#pragma once

// May the user activate a font of any workgroup, whichever is selected?
inline constexpr const char* kColumn_CanActivateAcrossWorkgroups = "CanActivateAcrossWorkgroups";
// May the user take copies of fonts out of the library?
inline constexpr const char* kColumn_ExportFonts = "ExportFonts";
