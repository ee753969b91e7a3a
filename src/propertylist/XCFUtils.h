// Thin, type-checked access to property lists, and property lists in files.
//
// Nothing is converted between kinds: a text is no number, a number no bool. Pointers that come
// back are lent by the container until it changes, and null is "absent or of another kind"; outs
// stay as they were when the answer is false. Keys and texts are UTF-8 unless an encoding is named;
// UTF-16 is in host order.
//
// An assertion marks an error of the caller, never one of the data: it writes a line to the plug-in
// log and ends the process, in every build. It guards a null container where one is written to, and
// where a function says so.
//
// [any-thread], as far as nobody else changes the container.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "foundation/ErrorCodes.h"
#include "propertylist/StringEncodings.h"
#include "propertylist/Value.h"

class GFile;

namespace XCFUtils {

using PropertyList::ArrayRef;
using PropertyList::Data;
using PropertyList::DictionaryRef;
using PropertyList::Value;

// Files. Paths are UTF-8 and absolute, or begin with "~"; any other path counts as empty.

// Reads and writes alike are refused beyond it; the bound of property lists.
inline constexpr std::size_t kMaxFileBytes = std::size_t{64} << 20;

// The length in bytes; the next read begins at the start.
[[nodiscard]] TModuleErrorCode GetFileLengthAndRewind(GFile& file, unsigned long long& length);
// The whole file. Nothing for an empty path, for what can't be opened or is no regular file (a
// folder, a pipe), for an empty or too large file and for a short read.
[[nodiscard]] std::optional<Data> XCFCreateCFDataRefFromPath(std::string_view path);
// The property list of an XML file, as XmlForm.h reads it. Nothing as above; a file that is no list
// is told to the plug-in log too. What was read belongs to the caller and can be changed, so that
// no mutability is asked for.
[[nodiscard]] std::optional<Value> XCFCreateCFPropertyListFromPath(std::string_view path);
// Both replace a file as a whole (GFileSystem::OSReplaceFile). False for an empty path, for a value
// without an XML form, beyond the bound and when writing fails; the old file then stands.
[[nodiscard]] bool XCFWriteCFPropertyListToXMLFile(const Value& list, std::string_view path);
[[nodiscard]] bool XCFWriteCFDataRefToXMLFile(const Data& data, std::string_view path);

// Values of dictionaries by kind; a null dictionary holds nothing.

const std::string* GetCFStringFromDict(const DictionaryRef& dict, std::string_view key);
const bool* GetCFBooleanFromDict(const DictionaryRef& dict, std::string_view key);
// An integer or a real.
const Value* GetCFNumberFromDict(const DictionaryRef& dict, std::string_view key);
PropertyList::Array* GetCFArrayFromDict(const DictionaryRef& dict, std::string_view key);
bool GetCFTypeFromDict(const DictionaryRef& dict, std::string_view key, PLKind typeID,
                       const Value*& out);
// Asserts the dictionary.
const std::string* XCFGetCFStringFromDictionary(const DictionaryRef& dict, std::string_view key);

// Numbers and bools. A null value is a missing one. An integer is given only as it is: false if it
// is outside of the asked type, or comes from a real with a fraction. A real is given as near as
// its type can, false if that were infinite without need.

bool GetBoolFromDict(const DictionaryRef& dict, std::string_view key, bool& out);
bool GetCharFromDict(const DictionaryRef& dict, std::string_view key, std::int8_t& out);
bool GetShortFromDict(const DictionaryRef& dict, std::string_view key, short& out);
bool GetLongFromDict(const DictionaryRef& dict, std::string_view key, long& out);
bool GetLongLongFromDict(const DictionaryRef& dict, std::string_view key, long long& out);
bool GetFloatFromDict(const DictionaryRef& dict, std::string_view key, float& out);
bool GetDoubleFromDict(const DictionaryRef& dict, std::string_view key, double& out);
bool GetBoolFromCFValue(const Value* value, bool& out);
bool GetCharFromCFValue(const Value* value, std::int8_t& out);
bool GetShortFromCFValue(const Value* value, short& out);
bool GetLongFromCFValue(const Value* value, long& out);
bool GetLongLongFromCFValue(const Value* value, long long& out);
bool GetFloatFromCFValue(const Value* value, float& out);
bool GetDoubleFromCFValue(const Value* value, double& out);
// Any of the number types above. Asserts `out`.
template <typename Number>
bool GetNumberFromCFValue(const Value* value, Number* out);

// A text as a number; 0 when missing. If the text can be had in `encoding` as it stands (in UTF-8
// always, in the others if it is ASCII) this is atol; else a 32-bit integer. Both take what number
// the text begins with, behind blanks, and stop at their type's limits.
long GetLongFromDictString(const DictionaryRef& dict, std::string_view key,
                           CFStringEncoding encoding);

// Writing; these assert the container. An unsigned number beyond the largest signed one is stored
// with its bits, and so reads back negative; as a string it stays.

void PutBoolIntoDict(const DictionaryRef& dict, std::string_view key, bool value);
void PutCharIntoDict(const DictionaryRef& dict, std::string_view key, std::int8_t value);
void PutShortIntoDict(const DictionaryRef& dict, std::string_view key, short value);
void PutLongIntoDict(const DictionaryRef& dict, std::string_view key, long value);
void PutULongIntoDict(const DictionaryRef& dict, std::string_view key, unsigned long value);
// In decimal digits.
void PutLongIntoDictAsString(const DictionaryRef& dict, std::string_view key, long value);
void PutULongIntoDictAsString(const DictionaryRef& dict, std::string_view key, unsigned long value);
// These assert the text too. False, with nothing stored, for text that is not in its encoding.
[[nodiscard]] bool PutUTF8NullTermCharPtrIntoDict(const DictionaryRef& dict, std::string_view key,
                                                  const char* text);
[[nodiscard]] bool PutNullTermCharPtrIntoDict(const DictionaryRef& dict, std::string_view key,
                                              const char* text, CFStringEncoding encoding);
void AppendBoolOntoArray(const ArrayRef& array, bool value);
void AppendShortOntoArray(const ArrayRef& array, short value);
void AppendLongOntoArray(const ArrayRef& array, long value);
void AppendULongOntoArray(const ArrayRef& array, unsigned long value);
[[nodiscard]] bool AppendUTF8NullTermCharPtrOntoArray(const ArrayRef& array, const char* text);

// Text. A string that is no UTF-8 has no UTF-16: it counts as missing.

// Copies the UTF-16 of a string into the buffer; both arguments are asserted. The result is its
// length, 0 when it is missing, and the negative length, with nothing copied, when it does not fit.
std::ptrdiff_t XCFGetUniStringFromDictionary(const DictionaryRef& dict, std::string_view key,
                                             std::span<char16_t> buffer);
// The same, then a terminator when there is room; none if the string did not fit.
std::ptrdiff_t XCFGetUniStringNullTermFromDictionary(const DictionaryRef& dict,
                                                     std::string_view key,
                                                     std::span<char16_t> buffer);
// The UTF-16 of a string value; false for any other.
bool GetStringFromCFValue(const Value* value, std::u16string& out);
// Zero-terminated, as the type is; empty for null.
std::u16string CFStringGetAsNewUtf16Buffer(const std::string* string);
// Up to the first zero. Nothing for null and for a lone surrogate.
std::optional<std::string> CFStringCreateFromUtf16CString(const char16_t* text);
// Empty for null, for an empty string and for one that is no UTF-8.
std::string CFStringGetUTF8StdString(const std::string* string);

enum CFStringCompareFlags : unsigned { kCFCompareExactly = 0, kCFCompareCaseInsensitive = 1 };
// Is the value a string in which the text stands, if asked for without regard to case (by full case
// folding)? An empty text stands in every string. Asserts the dictionary.
bool CFDictionaryDoesStringValueContain(const DictionaryRef& dict, std::string_view key,
                                        std::string_view text, CFStringCompareFlags options);

}  // namespace XCFUtils
