/* Property lists over a library border.
 *
 * A property list is a tree of null, bool, integer, real, string, data, array and dictionary.
 * Arrays and dictionaries cross a border as counted handles; scalars cross as C values. A handle is
 * a plain pointer, so null is a legal handle: every getter then answers "absent", every setter does
 * nothing.
 *
 * Ownership. "Create", "Copy" and out parameters named `out...` give the caller one count, which
 * PL...Release gives back. Everything else lends: what a getter returns lives as long as the
 * container holds it.
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

PLStringRef PLStringCreate(const char* bytes, size_t length);
PLStringRef PLStringRetain(PLStringRef string);
void PLStringRelease(PLStringRef string);
/* Zero-terminated; "" for null. Lent. */
const char* PLStringGetText(PLStringRef string);
size_t PLStringGetLength(PLStringRef string);

PLArrayRef PLArrayCreate(void);
PLArrayRef PLArrayRetain(PLArrayRef array);
void PLArrayRelease(PLArrayRef array);
size_t PLArrayGetCount(PLArrayRef array);
PLKind PLArrayGetKind(PLArrayRef array, size_t index);
/* Lent; null if the entry is absent or of another kind. */
PLDictionaryRef PLArrayGetDictionary(PLArrayRef array, size_t index);
const char* PLArrayGetString(PLArrayRef array, size_t index, size_t* length);
bool PLArrayGetInteger(PLArrayRef array, size_t index, int64_t* value);
/* The array takes a count of its own. */
void PLArrayAppendDictionary(PLArrayRef array, PLDictionaryRef value);
void PLArrayAppendString(PLArrayRef array, const char* bytes, size_t length);
void PLArrayAppendInteger(PLArrayRef array, int64_t value);

PLDictionaryRef PLDictionaryCreate(void);
PLDictionaryRef PLDictionaryRetain(PLDictionaryRef dictionary);
void PLDictionaryRelease(PLDictionaryRef dictionary);
size_t PLDictionaryGetCount(PLDictionaryRef dictionary);
/* The key at a position of the insertion order, zero-terminated; null past the end. Lent. */
const char* PLDictionaryGetKeyAt(PLDictionaryRef dictionary, size_t index);
PLKind PLDictionaryGetKind(PLDictionaryRef dictionary, const char* key);
/* Lent, zero-terminated; null if absent or of another kind. `length` may be null. */
const char* PLDictionaryGetString(PLDictionaryRef dictionary, const char* key, size_t* length);
bool PLDictionaryGetBool(PLDictionaryRef dictionary, const char* key, bool* value);
bool PLDictionaryGetInteger(PLDictionaryRef dictionary, const char* key, int64_t* value);
bool PLDictionaryGetReal(PLDictionaryRef dictionary, const char* key, double* value);
PLArrayRef PLDictionaryGetArray(PLDictionaryRef dictionary, const char* key);
PLDictionaryRef PLDictionaryGetDictionary(PLDictionaryRef dictionary, const char* key);
void PLDictionarySetString(PLDictionaryRef dictionary, const char* key, const char* bytes,
                           size_t length);
void PLDictionarySetBool(PLDictionaryRef dictionary, const char* key, bool value);
void PLDictionarySetInteger(PLDictionaryRef dictionary, const char* key, int64_t value);
void PLDictionarySetReal(PLDictionaryRef dictionary, const char* key, double value);
void PLDictionarySetArray(PLDictionaryRef dictionary, const char* key, PLArrayRef value);
void PLDictionarySetDictionary(PLDictionaryRef dictionary, const char* key, PLDictionaryRef value);
void PLDictionaryRemove(PLDictionaryRef dictionary, const char* key);

#ifdef __cplusplus
}
#endif

#endif
