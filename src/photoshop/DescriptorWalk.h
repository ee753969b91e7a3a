// A walk through a host descriptor that finds font names and file references in it. It stands ready
// for a caller that holds a descriptor: a document's own fonts are scanned from its bytes.
//
// Threads: [main-thread]; a walk runs to its end before another can begin.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "sdk/HostActions.h"

namespace PhotoshopFontUtils {

// Nesting deeper than this is not followed.
inline constexpr int kMaxDescriptorDepth = 256;

// What a walk has visited, one text for each object, for inspection only: nothing is looked up in
// it, and no object of the host is freed through it.
class PSFU_FreeZone {
 public:
  void Add(const char* prefix, long value);  // "<prefix><value as a pointer>"
  void Add(PIActionReference reference);
  void Add(PIActionList list);
  void Add(PIActionDescriptor descriptor);
  void Add(AliasHandle alias);

  const std::vector<std::string>& Entries() const { return mEntries; }

 private:
  std::vector<std::string> mEntries;
};

// The zone of the walk in progress; null between walks.
extern std::unique_ptr<PSFU_FreeZone> sFreeZone;

// Adds each font name once to `fontNames` and counts every sighting in `count`; adds file
// references with their duplicates. Ends at once if a suite can't be acquired.
void ProcessDescriptor(DescriptorEventID event, PIActionDescriptor descriptor,
                       std::vector<std::string>& fontNames,
                       std::vector<std::string>& fileReferences, int& count);

}  // namespace PhotoshopFontUtils
