// The font manager, as far as it can be asked.
#pragma once

#include "fontmanager/FontManagerInterface.h"

// Null if there is none or it is not connected. Lent, and not beyond the next call into it.
inline FontManagerInterface* ConnectedFontManager() {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  return fontManager != nullptr && fontManager->IsFontManagerConnected() ? fontManager : nullptr;
}
