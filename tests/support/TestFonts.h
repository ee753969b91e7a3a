// Small fonts, built by tools/fonts/make_font.py, and what other programs see of them.
#pragma once

#include <string>
#include <vector>

// Builds a font at `path` with these arguments of the builder. What was built once is kept beside
// the test programs and copied.
void BuildFont(const std::string& path, const std::vector<std::string>& arguments);
// The usual one: a TrueType font of this PostScript name, family "Test <name>".
void BuildFont(const std::string& path, const std::string& postScriptName);
// The file that another program gets for this name, asked in a process of its own; "" if it gets
// none of that name.
std::string MatchedFile(const std::string& postScriptName);
