// Small questions about files.
#pragma once

#include <ctime>
#include <string>

namespace VendrelFileUtils {

// Seconds since 1970; 0 if the file is not there.
std::time_t GetFileModificationDate(const std::string& path);
// The access time stays. False if the file is not there or not ours to change.
bool SetFileModificationDate(const std::string& path, std::time_t date);
bool FileExistsAtPath(const std::string& path);

}  // namespace VendrelFileUtils
