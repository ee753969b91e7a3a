// What everything that writes XML shares: which characters it can hold, how they are escaped, where
// lines break. [any-thread]
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "foundation/ErrorCodes.h"

namespace XMLText {

// UTF-8 of characters that XML 1.0 knows.
bool IsPossible(std::string_view text);
// So that a parser, which normalises line ends and, in attributes, blanks, gives back each byte.
std::string EscapeContent(std::string_view text);
std::string EscapeAttribute(std::string_view text);

// A line break and 2 * `indent` blanks; nothing below 0.
void BreakLine(std::string& xml, int indent);
int Deeper(int indent);
// What a document begins with: the blanks of its first line.
std::string FirstBlanks(int& indent);

// CoreErrorCodes::kNotSupported beyond GLibXMLSerializable::kMaxXMLBytes, CoreErrorCodes::kError if
// the stream refuses.
TModuleErrorCode WriteInOnePiece(std::ostream& stream, std::string_view xml);

}  // namespace XMLText
