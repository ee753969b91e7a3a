/* Property lists over a library border.
 *
 * A property list is a tree of null, bool, integer, real, string, data, array and dictionary.
 * Arrays and dictionaries cross a border as counted handles; scalars cross as C values. A handle is
 * a plain pointer, so null is a legal handle: every getter then answers "absent", every setter does
 * nothing.
 *
 * Ownership. "Create", "Copy" and out parameters named `out...` give the caller one count, which
 * PL...Release gives back. Everything else lends: a container that a getter returns lives as long
 * as its own container holds it; text, bytes and keys only until their container is changed.
 *
 * Threads. [any-thread] Counts are atomic. A container may be read from several threads as long as
 * nobody changes it; one that was handed to another thread is not changed any more.
 *
 * Text is UTF-8. Strings may hold zero bytes when they are given and read with a length.
 * Implemented by libvendrel-core.
 */
#ifndef SDK_PROPERTY_LIST_H
#define SDK_PROPERTY_LIST_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* No exception crosses: memory that runs out ends the process. */
#ifdef __cplusplus
#define PL_NOEXCEPT noexcept
#else
#define PL_NOEXCEPT
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PLString* PLStringRef;         /* immutable text */
typedef struct PLArray* PLArrayRef;           /* ordered, mutable */
typedef struct PLDictionary* PLDictionaryRef; /* keys in insertion order, mutable */

typedef enum PLKind {
  kPLAbsent = -1, /* no such key or index */
  kPLNull = 0,
  kPLBool,
  kPLInteger,
  kPLReal,
  kPLStringKind,
  kPLData,
  kPLArrayKind,
  kPLDictionaryKind
} PLKind;

PLStringRef PLStringCreate(const char* bytes, size_t length) PL_NOEXCEPT;
PLStringRef PLStringRetain(PLStringRef string) PL_NOEXCEPT;
void PLStringRelease(PLStringRef string) PL_NOEXCEPT;
/* Zero-terminated; "" for null. Lent. */
const char* PLStringGetText(PLStringRef string) PL_NOEXCEPT;
size_t PLStringGetLength(PLStringRef string) PL_NOEXCEPT;

PLArrayRef PLArrayCreate(void) PL_NOEXCEPT;
/* Another array of the same entries; containers in it stay shared. Null for null. */
PLArrayRef PLArrayCopy(PLArrayRef array) PL_NOEXCEPT;
PLArrayRef PLArrayRetain(PLArrayRef array) PL_NOEXCEPT;
void PLArrayRelease(PLArrayRef array) PL_NOEXCEPT;
/* By contents, to a depth of 64 and 2^20 values; an integer never equals a real. Null equals null
 * alone. */
bool PLArrayEquals(PLArrayRef array, PLArrayRef other) PL_NOEXCEPT;
size_t PLArrayGetCount(PLArrayRef array) PL_NOEXCEPT;
PLKind PLArrayGetKind(PLArrayRef array, size_t index) PL_NOEXCEPT;
/* Lent; null if the entry is absent or of another kind. `length` may be null. Strings are
 * zero-terminated. The scalars answer false then, and leave `value` as it was. */
const char* PLArrayGetString(PLArrayRef array, size_t index, size_t* length) PL_NOEXCEPT;
const void* PLArrayGetData(PLArrayRef array, size_t index, size_t* length) PL_NOEXCEPT;
bool PLArrayGetBool(PLArrayRef array, size_t index, bool* value) PL_NOEXCEPT;
bool PLArrayGetInteger(PLArrayRef array, size_t index, int64_t* value) PL_NOEXCEPT;
bool PLArrayGetReal(PLArrayRef array, size_t index, double* value) PL_NOEXCEPT;
PLArrayRef PLArrayGetArray(PLArrayRef array, size_t index) PL_NOEXCEPT;
PLDictionaryRef PLArrayGetDictionary(PLArrayRef array, size_t index) PL_NOEXCEPT;
/* Bytes are copied; of a container the array takes a count of its own, and a null one is not
 * appended. A container that comes to hold itself is never freed. */
void PLArrayAppendNull(PLArrayRef array) PL_NOEXCEPT;
void PLArrayAppendString(PLArrayRef array, const char* bytes, size_t length) PL_NOEXCEPT;
void PLArrayAppendData(PLArrayRef array, const void* bytes, size_t length) PL_NOEXCEPT;
void PLArrayAppendBool(PLArrayRef array, bool value) PL_NOEXCEPT;
void PLArrayAppendInteger(PLArrayRef array, int64_t value) PL_NOEXCEPT;
void PLArrayAppendReal(PLArrayRef array, double value) PL_NOEXCEPT;
void PLArrayAppendArray(PLArrayRef array, PLArrayRef value) PL_NOEXCEPT;
void PLArrayAppendDictionary(PLArrayRef array, PLDictionaryRef value) PL_NOEXCEPT;
/* Takes an entry to another place, those between move by one: append and move to insert, move and
 * remove the next to replace. An index past the end changes nothing. */
void PLArrayMove(PLArrayRef array, size_t from, size_t to) PL_NOEXCEPT;
void PLArrayRemove(PLArrayRef array, size_t index) PL_NOEXCEPT;
void PLArrayClear(PLArrayRef array) PL_NOEXCEPT;

PLDictionaryRef PLDictionaryCreate(void) PL_NOEXCEPT;
/* As PLArrayCopy. */
PLDictionaryRef PLDictionaryCopy(PLDictionaryRef dictionary) PL_NOEXCEPT;
PLDictionaryRef PLDictionaryRetain(PLDictionaryRef dictionary) PL_NOEXCEPT;
void PLDictionaryRelease(PLDictionaryRef dictionary) PL_NOEXCEPT;
/* As PLArrayEquals, in any order of the keys. */
bool PLDictionaryEquals(PLDictionaryRef dictionary, PLDictionaryRef other) PL_NOEXCEPT;
size_t PLDictionaryGetCount(PLDictionaryRef dictionary) PL_NOEXCEPT;
/* The key at a position of the insertion order, zero-terminated; null past the end. Lent. */
const char* PLDictionaryGetKeyAt(PLDictionaryRef dictionary, size_t index) PL_NOEXCEPT;
PLKind PLDictionaryGetKind(PLDictionaryRef dictionary, const char* key) PL_NOEXCEPT;
/* As the getters of arrays. */
const char* PLDictionaryGetString(PLDictionaryRef dictionary, const char* key,
                                  size_t* length) PL_NOEXCEPT;
const void* PLDictionaryGetData(PLDictionaryRef dictionary, const char* key,
                                size_t* length) PL_NOEXCEPT;
bool PLDictionaryGetBool(PLDictionaryRef dictionary, const char* key, bool* value) PL_NOEXCEPT;
bool PLDictionaryGetInteger(PLDictionaryRef dictionary, const char* key,
                            int64_t* value) PL_NOEXCEPT;
bool PLDictionaryGetReal(PLDictionaryRef dictionary, const char* key, double* value) PL_NOEXCEPT;
PLArrayRef PLDictionaryGetArray(PLDictionaryRef dictionary, const char* key) PL_NOEXCEPT;
PLDictionaryRef PLDictionaryGetDictionary(PLDictionaryRef dictionary, const char* key) PL_NOEXCEPT;
/* Replaces in place or appends; else as the appending functions of arrays. A null key does nothing.
 */
void PLDictionarySetNull(PLDictionaryRef dictionary, const char* key) PL_NOEXCEPT;
void PLDictionarySetString(PLDictionaryRef dictionary, const char* key, const char* bytes,
                           size_t length) PL_NOEXCEPT;
void PLDictionarySetData(PLDictionaryRef dictionary, const char* key, const void* bytes,
                         size_t length) PL_NOEXCEPT;
void PLDictionarySetBool(PLDictionaryRef dictionary, const char* key, bool value) PL_NOEXCEPT;
void PLDictionarySetInteger(PLDictionaryRef dictionary, const char* key, int64_t value) PL_NOEXCEPT;
void PLDictionarySetReal(PLDictionaryRef dictionary, const char* key, double value) PL_NOEXCEPT;
void PLDictionarySetArray(PLDictionaryRef dictionary, const char* key,
                          PLArrayRef value) PL_NOEXCEPT;
void PLDictionarySetDictionary(PLDictionaryRef dictionary, const char* key,
                               PLDictionaryRef value) PL_NOEXCEPT;
void PLDictionaryRemove(PLDictionaryRef dictionary, const char* key) PL_NOEXCEPT;
void PLDictionaryClear(PLDictionaryRef dictionary) PL_NOEXCEPT;

/* The XML form, version 1.0, in UTF-8. Null if there is none: a null value, a real that is not
 * finite, text that is no UTF-8 or that XML can't hold, more than 64 levels, 64 MiB, 2^20 values or
 * 2^16 keys in a dictionary. */
PLStringRef PLArrayCopyXml(PLArrayRef array) PL_NOEXCEPT;
PLStringRef PLDictionaryCopyXml(PLDictionaryRef dictionary) PL_NOEXCEPT;
/* The reverse, from any bytes. Null if they are no property list, or beyond the same bounds, or its
 * root is of another kind. */
PLArrayRef PLArrayCreateFromXml(const char* bytes, size_t length) PL_NOEXCEPT;
PLDictionaryRef PLDictionaryCreateFromXml(const char* bytes, size_t length) PL_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
