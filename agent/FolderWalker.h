// Finds the files below a folder.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Nodrix {

struct FoundFile {
  std::string path;
  std::uint64_t size = 0;
  std::int64_t modifiedNs = 0;  // nanoseconds since 1970
};

// Size and time of a regular file (links followed); false if there is none.
bool DescribeFile(const std::string& path, FoundFile& file);

// Adds the regular files below `folder` to `files`. Links are followed, each folder is entered
// once, at most 64 folders deep; names that begin with "._" (another system's resource files) and
// the folder `except` are left out. False if the folder itself can't be read.
bool WalkFolder(const std::string& folder, const std::string& except,
                const std::atomic<bool>& stopped, std::vector<FoundFile>& files);

}  // namespace Nodrix
