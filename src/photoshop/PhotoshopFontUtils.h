// The only reader of the host's document model, and the few host actions that the plug-in plays.
// `ReplaceSubstitutes`' flag and the scan of a document's bytes stand with the byte scan
// (documents/AdobeByteScan.h); the walk through a descriptor stands in DescriptorWalk.h.
//
// Results: 0, or the host's error as a short integer; a suite that can't be acquired throws
// (AutoSuite.h). Paths are UTF-8. Document IDs are the host's; indices start at 1.
//
// Threads: [main-thread].
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/HostActions.h"

class OneTrackedDocument;

namespace PhotoshopFontUtils {

// A host error cut to 16 bits; an error stays one.
using OSErr = std::int16_t;

OSErr GetCurrentDocumentID(int* id);
// -1 if there is no document of this path.
OSErr GetDocumentID(int* id, const std::string& path);
// The highest index of this path, byte for byte; an empty path stands for the current document's.
// -1 if there is none or the host can't be read.
int IndexOfDocumentWithPath(const std::string& path);
// Unchanged on an error; empty for a document without a file.
OSErr GetCurrentDocumentPathUnstableInCS6(std::string* path);
OSErr GetCurrentDocumentPathTracked(std::string* path);
// In the host's order, empty strings included; ends with the first error.
OSErr GetUTF8PathsForAllOpenDocuments(std::vector<std::string>& paths);
// Empty if the alias leads nowhere or to a file that is not there.
std::string GetUTF8EncodedPathFromFileAlias(AliasHandle alias);
OSErr DocumentExists(int id, bool* exists);
// The host's answer goes to the low byte of `id`, and `dirty` stays as the caller preset it: a
// document preset as clean is always told as clean.
OSErr GetDocumentDirtyFlag(int* id, bool* dirty);
std::string FileNameOnly(const std::string& path);
OSErr BringDocumentToFront(int id);
// Does the window that has just appeared belong to the opening of a file? Null stands for the
// tracked record of the current document. May set the record's open time.
bool isCurrentDocumentBeingOpened(OneTrackedDocument* document);
// PostScript names of the fonts that the host lists.
OSErr GetPhotoshopFonts(std::vector<std::string>& names);

// Closes the current document without saving and without a dialog, and shows an indeterminate
// progress window, which stays until PlayeventOpen.
OSErr PlayeventClose();
// Opens a file without a dialog; `path` is in Mac Roman. Ends the progress window in any case.
OSErr PlayeventOpen(const std::string& path);
// Lets the host lay its text out anew; 0 and nothing played unless a document was scanned for it.
OSErr PlayreplaceSubstitutes();
bool CanReplaceSubstitutes();

// Throws an error as a long.
void ThrowSPErr(long error);
// The basic suite's operations, throwing by ThrowSPErr. Releasing a null suite does nothing.
const void* AcquireSuite(const char* name, int32_t version);
void ReleaseSuite(const char* name, int32_t version, const void** suite);

}  // namespace PhotoshopFontUtils
