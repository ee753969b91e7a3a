// Promise: whatever bytes a font file holds, reading what it says of its faces ends, within its
// bounds, with faces or with a reason, never with both or neither.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "agent/FontFileReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int file = memfd_create("font.ttf", MFD_CLOEXEC);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  static Nodrix::FontFileReader reader;
  if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
    return 0;
  const Nodrix::FontFileInfo info = reader.Read(path);
  if (info.isFontFile && info.faces.empty() == info.error.empty()) std::abort();
  for (const Nodrix::FaceInfo& face : info.faces) {
    if (face.postScriptName.empty()) std::abort();
  }
  return 0;
}
