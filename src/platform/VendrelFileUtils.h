// Small questions about files.
#pragma once

#include <ctime>
#include <string>

namespace VendrelFileUtils {

// Seconds since 1970; 0 if the file is not there.
std::time_t GetFileModificationDate(const std::string& path);
bool FileExistsAtPath(const std::string& path);

}  // namespace VendrelFileUtils
