// The four check forms. Each evaluates an expression; on failure it writes one error record and
// leaves the function with a code. The record has the text of the expression as it stands in the
// source (a line break counts as one blank) and, as its file, the source file's name without folder
// and ending. Nothing is paid on success but the test.
#pragma once

#include "foundation/ErrorCodes.h"

// Writes the record to GLogger. `level` is 1 (error) or 4 (debug). Defined with the logger.
// [any-thread]
void WriteErrorRecord(int level, const char* file, int line, const char* expression,
                      TModuleErrorCode code, const char* identifier = "Miscellaneous");

// An expression returning a code: leaves with that code if it is not 0.
#define G_CHECK_CALL(call)                                          \
  do {                                                              \
    const TModuleErrorCode gCheckedCode = (call);                   \
    if (gCheckedCode != 0) {                                        \
      WriteErrorRecord(1, __FILE__, __LINE__, #call, gCheckedCode); \
      return gCheckedCode;                                          \
    }                                                               \
  } while (false)

// The same, recorded at debug level.
#define G_CHECK_CALL_QUIET(call)                                    \
  do {                                                              \
    const TModuleErrorCode gCheckedCode = (call);                   \
    if (gCheckedCode != 0) {                                        \
      WriteErrorRecord(4, __FILE__, __LINE__, #call, gCheckedCode); \
      return gCheckedCode;                                          \
    }                                                               \
  } while (false)

// A condition that marks failure: leaves with `code` if it is true.
#define G_CHECK_CONDITION(condition, code)                             \
  do {                                                                 \
    if (condition) {                                                   \
      const TModuleErrorCode gFixedCode = (code);                      \
      WriteErrorRecord(1, __FILE__, __LINE__, #condition, gFixedCode); \
      return gFixedCode;                                               \
    }                                                                  \
  } while (false)

// Leaves with CoreErrorCodes::kNullPointer if the pointer is null.
#define G_CHECK_NULL(name)                                              \
  do {                                                                  \
    if ((name) == nullptr) {                                            \
      WriteErrorRecord(1, __FILE__, __LINE__, "(" #name ") == nullptr", \
                       CoreErrorCodes::kNullPointer);                   \
      return CoreErrorCodes::kNullPointer;                              \
    }                                                                   \
  } while (false)
