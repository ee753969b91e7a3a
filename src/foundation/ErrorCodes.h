// Result codes of the whole font manager family: the error number in the top byte, the module in
// the low 24 bits, 0 for success. The table of all codes and names is ErrorCodes.def.
//
// The font manager also sends codes that the family never named: 0x02005001, 0x02007005, 0x02007008
// and 0x03007005. They are plain constants where they are used, and the look-ups don't know them.
#pragma once

#include <cstdint>
#include <string>

using TModuleErrorCode = std::uint32_t;

constexpr TModuleErrorCode MakeErrorCode(std::uint32_t module, std::uint32_t number) {
  return (number << 24) | module;
}

// Modules whose class exists here have their codes as members of it (GFile::kOpenFailed).
namespace CoreErrorCodes {
inline constexpr TModuleErrorCode kSuccess = 0;
inline constexpr TModuleErrorCode kError = MakeErrorCode(0, 1);
inline constexpr TModuleErrorCode kFatalError = MakeErrorCode(0, 2);
inline constexpr TModuleErrorCode kUnstatic = MakeErrorCode(0, 3);
inline constexpr TModuleErrorCode kInvalidParam = MakeErrorCode(0, 4);
inline constexpr TModuleErrorCode kNullPointer = MakeErrorCode(0, 5);
inline constexpr TModuleErrorCode kOutOfMemory = MakeErrorCode(0, 6);
inline constexpr TModuleErrorCode kNotFound = MakeErrorCode(0, 7);
inline constexpr TModuleErrorCode kNotImplemented = MakeErrorCode(0, 8);
inline constexpr TModuleErrorCode kItemAlreadyExists = MakeErrorCode(0, 9);
inline constexpr TModuleErrorCode kItemNotHandled = MakeErrorCode(0, 10);
inline constexpr TModuleErrorCode kIndexOutOfRange = MakeErrorCode(0, 12);
inline constexpr TModuleErrorCode kDatabaseError = MakeErrorCode(0, 13);
inline constexpr TModuleErrorCode kVersionMismatch = MakeErrorCode(0, 14);
inline constexpr TModuleErrorCode kNotANumber = MakeErrorCode(0, 15);
inline constexpr TModuleErrorCode kNotSupported = MakeErrorCode(0, 16);
inline constexpr TModuleErrorCode kNotInitialized = MakeErrorCode(0, 17);
inline constexpr TModuleErrorCode kAlreadyInitialized = MakeErrorCode(0, 18);
inline constexpr TModuleErrorCode kMissingParam = MakeErrorCode(0, 19);
inline constexpr TModuleErrorCode kStopped = MakeErrorCode(0, 20);
inline constexpr TModuleErrorCode kUnknownError = MakeErrorCode(0, 21);
}  // namespace CoreErrorCodes

// The code's name, such as "GFile::kOpenFailed"; "Unknown error code" for a code not in the table.
// [any-thread]
std::string GetNameForErrorCode(unsigned int code);

// The inverse, with case; CoreErrorCodes::kUnknownError for a name not in the table. [any-thread]
TModuleErrorCode GetErrorCodeForName(const std::string& name);
