// Birth and end of the font manager; the operations themselves are declared with the interface.
#pragma once

#include <cstdint>
#include <string_view>

// By which the dialog framework knows the edition that it speaks for.
inline constexpr const char* kKestraneDuoraPlugin = "KestraneDuoraPlugin";  // standalone
inline constexpr const char* kOmnarelPlugin = "OmnarelPlugin";              // server

// CompatibleFontManagerIsRunning: everything is there, but nobody is logged in.
inline constexpr std::uint32_t kFontManagerNotLoggedIn = 3;

// Do a facade and a plug-in of these versions work together? They agree in their first three
// numbers, or one is a dotted prefix of the other, or one is "1.0.0.0", an unnumbered build.
bool VersionsAreCompatible(std::string_view facadeVersion, std::string_view pluginVersion);
