// The font manager, as far as it can be asked. It may go in any call that turns the host's run loop
// (a message box, a progress window), so that nobody keeps a pointer to it over a call: who asks,
// asks through these.
#pragma once

#include <cstddef>

#include "fontmanager/FontManagerInterface.h"

// Null if there is none or it is not connected. Lent, and not beyond the next call into it.
inline FontManagerInterface* ConnectedFontManager() {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  return fontManager != nullptr && fontManager->IsFontManagerConnected() ? fontManager : nullptr;
}

// The code of `question`, which gets the font manager; 1000 without one.
template <typename Question>
int AskFontManager(Question question) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  return fontManager != nullptr ? question(*fontManager) : kErrorKestraneNotRunning;
}

// The same; 1000 also where it is not connected.
template <typename Question>
int AskConnectedFontManager(Question question) {
  FontManagerInterface* fontManager = ConnectedFontManager();
  return fontManager != nullptr ? question(*fontManager) : kErrorKestraneNotRunning;
}

// Does nothing without a font manager.
template <typename Action>
void TellFontManager(Action action) {
  FontManagerInterface* fontManager = FontManagerInterface::GetFontManager();
  if (fontManager != nullptr) action(*fontManager);
}

inline void EndActivationChange() {
  TellFontManager([](FontManagerInterface& fontManager) {
    static_cast<void>(fontManager.EndActivationChange());
  });
}

inline void SetCountForLongOperations(std::size_t count) {
  TellFontManager([count](FontManagerInterface& fontManager) {
    fontManager.SetCountForLongOperations(static_cast<int>(count));
  });
}
