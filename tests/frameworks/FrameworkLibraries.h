// The built frameworks as a caller meets them: opened by path, every entry point bound by name.
#pragma once

#include <cstddef>
#include <string>

#define PLUGIN_INTERFACE_NO_PROTOTYPES
#include "sdk/PluginInterface.h"
#define TARN_NO_PROTOTYPES
#include "sdk/Tarn.h"

// A symbol of VendrelPluginInterface or VendrelPlugins; null if it is not exported.
void* FacadeSymbol(const char* name);
void* DialogSymbol(const char* name);

struct FacadeTable {
#define MEMBER(result, name, arguments) \
  result(*name) arguments = reinterpret_cast<result(*) arguments>(FacadeSymbol(#name));
  PLUGIN_INTERFACE_ENTRY_POINTS(MEMBER)
#undef MEMBER
};

struct DialogTable {
#define MEMBER(result, name, arguments) \
  result(*name) arguments = reinterpret_cast<result(*) arguments>(DialogSymbol(#name));
  TARN_ENTRY_POINTS(MEMBER)
#undef MEMBER
};

// Takes what this process writes to standard error while it lives.
class StandardErrorCapture {
 public:
  StandardErrorCapture();
  ~StandardErrorCapture();
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;
  std::string Text() const;

 private:
  int mFile;
  int mBefore;
};
