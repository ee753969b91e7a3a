#include "platform/Platform.h"

#include "platform/SystemPlatform.h"

namespace {

Platform* sCurrent = nullptr;

}  // namespace

Platform& Platform::Current() { return sCurrent ? *sCurrent : GetSystemPlatform(); }

void Platform::SetCurrent(Platform* platform) { sCurrent = platform; }
