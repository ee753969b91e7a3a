// Small fonts, built by tools/fonts/make_font.py.
#pragma once

#include <string>
#include <vector>

// Builds a font at `path` with these arguments of the builder. What was built once is kept beside
// the test programs and copied.
void BuildFont(const std::string& path, const std::vector<std::string>& arguments);
// The usual one: a TrueType font of this PostScript name, family "Test <name>".
void BuildFont(const std::string& path, const std::string& postScriptName);
