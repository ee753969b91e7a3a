// The entry points of the dialog framework; any of them may be null.
#pragma once

#include <memory>

#define TARN_NO_PROTOTYPES
#include "sdk/Tarn.h"

class Bundle;

struct TarnFunctionTable {
  std::shared_ptr<Bundle> bundle;
  bool shared = false;  // the framework came from the system-wide folder
#define TARN_MEMBER(result, name, arguments) result(*name) arguments = nullptr;
  TARN_ENTRY_POINTS(TARN_MEMBER)
#undef TARN_MEMBER
};
