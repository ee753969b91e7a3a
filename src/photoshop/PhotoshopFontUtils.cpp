#include "photoshop/PhotoshopFontUtils.h"

#include <array>
#include <cstddef>

#include "activation/TrackedDocuments.h"
#include "foundation/PluginLog.h"
#include "foundation/WallClock.h"
#include "photoshop/AutoSuite.h"
#include "photoshop/HostText.h"
#include "photoshop/PIUtilities.h"
#include "platform/VendrelFileUtils.h"
#include "propertylist/StringConversion.h"

namespace PhotoshopFontUtils {
namespace {

constexpr std::size_t kAliasPathBytes = 1024;  // what the host's alias suite is asked for
constexpr std::time_t kSecondsOfOpening = 4;   // an open event of this age still counts as fresh

SPErr CountDocuments(int& count) {
  return PIUGetInfo(classApplication, keyNumberOfDocuments, &count);
}

SPErr PathOfDocument(int index, std::string& path) {
  OwnedAlias alias;
  if (const SPErr error = PIUGetInfoByIndex(index, classDocument, keyFileReference, alias)) {
    return error;
  }
  path = GetUTF8EncodedPathFromFileAlias(alias.Get());
  return 0;
}

unsigned HandleForLog(HostDocumentHandle handle) { return static_cast<unsigned>(handle); }

// A document that is on the host's list but not on ours is only now being opened.
bool AnyOpenDocumentIsUntracked(int currentID) {
  std::vector<std::string> paths;
  GetUTF8PathsForAllOpenDocuments(paths);
  bool anyOnDisk = false;
  bool anyUntracked = false;
  for (const std::string& path : paths) {
    if (path.empty()) continue;
    anyOnDisk = true;
    if (AllTrackedDocuments::FindTrackedDocumentByPath(path)) continue;
    anyUntracked = true;
    OutputFormattedDebugString(
        "Document 0x%08x (%s) is in Photoshop's document list, but we aren't yet tracking it, so "
        "it must be in the process of opening.",
        static_cast<unsigned>(currentID), path.c_str());
  }
  if (!anyOnDisk) OutputFormattedDebugString("No document on disk appears to be open.");
  return anyUntracked;
}

// The rule of the open time, for a record that has a path and a handle.
bool IsRecordBeingOpened(OneTrackedDocument& document, const std::string& path) {
  const unsigned handle = HandleForLog(document.GetDocumentHandle());
  if (const std::time_t opened = document.GetTimeOpenEventWasHandled()) {
    if (WallClock::Now() - opened > kSecondsOfOpening) return false;
    OutputFormattedDebugString(
        "Document 0x%08x (%s) got an openEvent within the last five seconds.", handle,
        path.c_str());
    return true;
  }
  if (document.GetTimeSaveEventWasHandled() != 0) {
    OutputFormattedDebugString("Document 0x%08x (%s) must be a save of a newly created document.",
                               handle, path.c_str());
    return false;
  }
  OutputFormattedDebugString(
      "Document 0x%08x (%s) is being opened, but we haven't yet gotten an openEvent for it.",
      handle, path.c_str());
  document.SetTimeOpenEventWasHandled();  // this question starts the five seconds
  return true;
}

}  // namespace

OSErr GetCurrentDocumentID(int* id) {
  return ShortError(PIUGetInfo(classDocument, keyDocumentID, id));
}

OSErr GetDocumentID(int* id, const std::string& path) {
  const int index = IndexOfDocumentWithPath(path);
  if (index < 0) return -1;
  return PIUGetInfoByIndex(index, classDocument, keyDocumentID, id) == 0 ? 0 : -1;
}

int IndexOfDocumentWithPath(const std::string& path) {
  std::string wanted = path;
  if (wanted.empty()) GetCurrentDocumentPathUnstableInCS6(&wanted);
  if (wanted.empty()) return -1;
  int count = 0;
  if (CountDocuments(count) != 0 || count < 1) return -1;
  for (int index = count; index >= 1; --index) {
    std::string candidate;
    if (PathOfDocument(index, candidate) != 0) return -1;
    if (candidate == wanted) return index;
  }
  return -1;
}

OSErr GetCurrentDocumentPathUnstableInCS6(std::string* path) {
  OwnedAlias alias;
  const SPErr error = PIUGetInfo(classDocument, keyFileReference, alias);
  if (error == 0) *path = GetUTF8EncodedPathFromFileAlias(alias.Get());
  return ShortError(error);
}

OSErr GetCurrentDocumentPathTracked(std::string* path) {
  return GetCurrentDocumentPathUnstableInCS6(path);
}

OSErr GetUTF8PathsForAllOpenDocuments(std::vector<std::string>& paths) {
  int count = 0;
  if (const SPErr error = CountDocuments(count)) return ShortError(error);
  for (int index = 1; index <= count; ++index) {
    std::string path;
    if (const SPErr error = PathOfDocument(index, path)) return ShortError(error);
    paths.push_back(std::move(path));
  }
  return 0;
}

std::string GetUTF8EncodedPathFromFileAlias(AliasHandle alias) {
  std::array<char, kAliasPathBytes + 1> buffer{};  // stays terminated whatever the host writes
  if (alias) sPSAlias->AliasToFullPath(alias, buffer.data(), kAliasPathBytes);
  const std::string path(buffer.data());
  if (path.empty()) return path;
  if (VendrelFileUtils::GetFileModificationDate(path) == 0) {
    OutputFormattedDebugString(
        "AliasToFullPath() returned '%s', which does not exist. Looking elsewhere.", path.c_str());
    return {};
  }
  return CreateUTF8StringFromUncertainEncoding(path.c_str());
}

OSErr DocumentExists(int id, bool* exists) {
  if (!exists) return 0;
  *exists = false;
  int count = 0;
  if (const SPErr error = CountDocuments(count)) return ShortError(error);
  for (int index = 1; index <= count && !*exists; ++index) {
    int candidate = 0;
    if (const SPErr error = PIUGetInfoByIndex(index, classDocument, keyDocumentID, &candidate)) {
      return ShortError(error);
    }
    *exists = candidate == id;
  }
  return 0;
}

OSErr GetDocumentDirtyFlag(int* id, bool* dirty) {
  const OSErr result = ShortError(PIUGetInfo(classDocument, keyIsDirty, id, dirty));
  OutputFormattedDebugString("%s(0x%08x, isDirty=%d) returning %d", __func__,
                             static_cast<unsigned>(*id), *dirty, result);
  return result;
}

std::string FileNameOnly(const std::string& path) {
  const std::size_t separator = path.find_last_of(":/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

OSErr BringDocumentToFront(int id) { return ShortError(PIUSelectByID(classDocument, id)); }

bool isCurrentDocumentBeingOpened(OneTrackedDocument* document) {
  int currentID = 0;
  GetCurrentDocumentID(&currentID);
  if (!document) document = AllTrackedDocuments::FindTrackedDocumentByHandle(currentID);
  if (!document) return AnyOpenDocumentIsUntracked(currentID);
  const std::string path = document->GetDocumentFilePath();
  if (path.empty()) return false;  // a new document: nothing is opened from disk
  if (document->GetDocumentHandle() == 0) {
    OutputFormattedDebugString(
        "WARNING: tracked document 0x%08x (%s) does not have an ID. Not safe to infer that it is "
        "being opened from disk.",
        HandleForLog(document->GetDocumentHandle()), path.c_str());
    return false;
  }
  return IsRecordBeingOpened(*document, path);
}

OSErr GetPhotoshopFonts(std::vector<std::string>& names) {
  DescriptorTypeID fontList = 0;
  DescriptorTypeID postScriptName = 0;
  if (const SPErr error = sPSActionControl->StringIDToTypeID("fontList", &fontList)) {
    return ShortError(error);
  }
  if (const SPErr error =
          sPSActionControl->StringIDToTypeID("fontPostScriptName", &postScriptName)) {
    return ShortError(error);
  }
  OwnedDescriptor answer;
  if (const SPErr error = PIUGetInfo(classApplication, fontList, answer)) return ShortError(error);
  OwnedDescriptor fonts;
  DescriptorClassID type = 0;
  if (const SPErr error =
          sPSActionDescriptor->GetObject(answer.Get(), fontList, &type, fonts.Out())) {
    return ShortError(error);
  }
  OwnedList list;
  if (const SPErr error = sPSActionDescriptor->GetList(fonts.Get(), postScriptName, list.Out())) {
    return ShortError(error);
  }
  std::uint32_t count = 0;
  if (const SPErr error = sPSActionList->GetCount(list.Get(), &count)) return ShortError(error);
  for (std::uint32_t index = 0; index < count; ++index) {
    std::string name;
    if (const SPErr error = ReadListText(list.Get(), index, name)) return ShortError(error);
    names.push_back(std::move(name));
  }
  return 0;
}

void ThrowSPErr(long error) {
  if (error != 0) throw error;
}

const void* AcquireSuite(const char* name, int32_t version) {
  const void* suite = nullptr;
  ThrowSPErr(sSPBasic ? sSPBasic->AcquireSuite(name, version, &suite) : kSPBadParameterError);
  return suite;
}

void ReleaseSuite(const char* name, int32_t version, const void** suite) {
  if (!*suite) return;
  *suite = nullptr;
  if (sSPBasic) ThrowSPErr(sSPBasic->ReleaseSuite(name, version));
}

}  // namespace PhotoshopFontUtils
