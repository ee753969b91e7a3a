// Operations on UTF-8 text. Positions and lengths are bytes; npos is "not found". Pure functions,
// any thread; memory is linear in the texts, time at worst text by pattern. Text that is no UTF-8
// is never refused unless a function says so: what needs characters then works on its bytes, of
// which only ASCII letters have a case.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/ErrorCodes.h"

namespace GStringUtils {

inline constexpr std::size_t npos = std::string_view::npos;

// Comparing. By full case folding, so "STRASSE" equals "straße"; no normalisation, no language.

// Below 0, 0 or above 0 as `a` stands before, equals or stands behind `b`.
int CompareStringsNoCase(std::string_view a, std::string_view b);
// The same of texts in another encoding, named as iconv_string names it. If one of them does not
// convert, both are compared by their bytes.
int OSCompareStringsNoCase(const char* encoding, std::string_view a, std::string_view b);
bool ISUTF8StringLessThanNoCase(std::string_view a, std::string_view b);
// Where `part` begins in `text`; an empty part is found at 0. Only whole characters are found: "ss"
// in "straße" but not "as". By bytes if one of the two is no UTF-8.
std::size_t StringFindNoCase(std::string_view text, std::string_view part);
// Does the whole text match? ECMAScript over bytes, with ranges of ASCII only, without back
// references and without any locale; false for a pattern that is none. No exponential time, no deep
// stack; therefore false also for patterns beyond 256 characters, 256 states or 32 groups, and for
// texts that are too long for their pattern (400 KB for one of 10 characters, 16 KB for the
// longest, less by the number of groups; with a look-ahead 640 and 120 bytes).
bool IsRegExMatch(const std::string& text, const std::string& pattern);
// By full case mapping without a language: "ß" has two upper-case letters, "I" becomes "i".
std::string OSToLowerCase(std::string_view text);
std::string OSToUpperCase(std::string_view text);
// The first letter of each word in title case, all others in lower case, words by Unicode's text
// segmentation: "o'hara type-works" becomes "O'hara Type-Works". A text that is no UTF-8 stays.
std::string OSToTitleCase(std::string_view text);
// ASCII letters only; for keys and extensions.
std::string AsciiToLowerCase(std::string_view text);
bool AsciiEqualsNoCase(std::string_view a, std::string_view b);
bool BeginsWith(std::string_view text, std::string_view prefix);
bool EndsWith(std::string_view text, std::string_view suffix);
bool Contains(std::string_view text, std::string_view part);
void EnsureEndsWith(std::string& text, std::string_view suffix);

// Cutting and joining. An empty pattern or separator changes nothing; Split then gives one part.

// Takes whole characters off the end until at most `maxBytes` are left.
// CoreErrorCodes::kNullPointer, and the text stays, if it is no UTF-8, even if it is short enough.
TModuleErrorCode OSTruncateUTF8String(std::string& text, unsigned int maxBytes);
// Each character of `delimiters` separates; empty tokens are dropped.
std::vector<std::string> OSTokenizeString(std::string_view text, std::string_view delimiters);
// `separator` is a whole string. Split keeps empty parts, so that Join gives the text back, and an
// empty text is one empty part; TokenizeString drops them.
std::vector<std::string> Split(std::string_view text, std::string_view separator);
std::vector<std::string> TokenizeString(std::string_view text, std::string_view separator);
std::string Join(const std::vector<std::string>& parts, std::string_view separator);
// Replaced text is not scanned again; `count` -1 replaces every occurrence.
std::string StringReplace(std::string_view text, std::string_view from, std::string_view to,
                          int count = -1);
// Blanks are space, tab, line feed, vertical tab, form feed and carriage return.
std::string StripWhitespace(std::string_view text);
std::string StripPrecedingWhitespace(std::string_view text);
std::string StripTrailingWhitespace(std::string_view text);
// npos if there are only blanks.
std::size_t FirstNonWhiteSpaceCharacterLoc(std::string_view text);
// Once, even if the string stands there twice.
std::string StripPrecedingString(std::string_view text, std::string_view part);
std::string StripTrailingString(std::string_view text, std::string_view part);

// Numbers. By stream extraction: leading blanks and a sign are read, what follows the number is
// ignored, no number gives 0, one beyond the type the type's limit. The locale does not matter: a
// host may have set one with a decimal comma or groups of digits.

// A cheap test: is the last character a digit that counts, or does it begin with "0" or "-0"? "12a"
// and "5 " are none, "0abc" is one, nor is a number that has a digit more than an int's limit.
bool IsNumber(const std::string& text);
int NumberFromString(const std::string& text);
// "true", "yes" in any case and any number but 0, also "2" and "-1".
bool UTF8StringToBool(std::string_view text);
// "-1" as an unsigned number is the type's largest. "1e" is no real number, nor are "inf" and
// "nan".
std::int16_t UTF8StringToSInt16(const std::string& text);
std::uint16_t UTF8StringToUInt16(const std::string& text);
std::int32_t UTF8StringToSInt32(const std::string& text);
std::uint32_t UTF8StringToUInt32(const std::string& text);
std::int64_t UTF8StringToSInt64(const std::string& text);
std::uint64_t UTF8StringToUInt64(const std::string& text);
double UTF8StringToTFloat64(const std::string& text);
bool IsValidHexChar(char character);
std::string AsciiStringFromNumber(int number);
std::string AsciiStringFromUnsignedNumber(unsigned int number);
// Two lower-case digits a byte.
std::string HexadecimalString(const char* bytes, unsigned int count);

// Escaping.

// & > < ' " become entities, and back: unescaping runs the table in reverse ("&amp;lt;" gives
// "&lt;"), so that every text comes back. Other entities stay.
std::string EscapeRequiredXMLEntities(std::string_view text);
std::string UnescapeRequiredXMLEntities(std::string_view text);
// ASCII letters, digits, "-", ".", "/" and ":" stay, and the last two only without `component`; any
// other byte becomes "%" and two lower-case digits.
std::string EscapeURL(std::string_view text, bool component);
std::string EscapeURLComponent(std::string_view text);
// Backspace, tab, line feed, form feed, carriage return, quotation mark, solidus and backslash; all
// else passes.
std::string EscapeJSON(std::string_view text);

std::vector<char> StringToByteVector(std::string_view text);
std::vector<unsigned char> StringToUByteVector(std::string_view text);
// vsnprintf.
int OSvsnprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));

}  // namespace GStringUtils
