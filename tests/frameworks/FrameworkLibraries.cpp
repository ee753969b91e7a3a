#include "frameworks/FrameworkLibraries.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>

namespace {

void* Open(const std::string& name) {
  const std::string path = TEST_BUILD_DIR "/plugins/AutoActivation.plugin/Contents/Frameworks/" +
                           name + ".framework/Contents/Linux/" + name;
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw std::runtime_error(dlerror());
  return library;
}

}  // namespace

void* FacadeSymbol(const char* name) {
  static void* const library = Open("VendrelPluginInterface");
  return dlsym(library, name);
}

void* DialogSymbol(const char* name) {
  static void* const library = Open("VendrelPlugins");
  return dlsym(library, name);
}

StandardErrorCapture::StandardErrorCapture()
    : mFile(memfd_create("standard error", MFD_CLOEXEC)), mBefore(dup(STDERR_FILENO)) {
  dup2(mFile, STDERR_FILENO);
}

StandardErrorCapture::~StandardErrorCapture() {
  dup2(mBefore, STDERR_FILENO);
  close(mBefore);
  close(mFile);
}

std::string StandardErrorCapture::Text() const {
  std::string text(static_cast<std::size_t>(lseek(mFile, 0, SEEK_END)), '\0');
  const ssize_t count = pread(mFile, text.data(), text.size(), 0);
  text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return text;
}
