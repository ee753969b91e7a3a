// The progress window of one opening or closing.
#pragma once

#include <memory>
#include <string>

#include "dialogs/ProgressProperties.h"

class TarnInterface;

// Goes through the font manager to ProgressCallback. All is lent.
struct ProgressCallbackContext {
  bool showProgress = false;
  TarnInterface* tarn = nullptr;
  FontProgressProperties* progress = nullptr;
};

// A FontProgressCallback; `context` is a ProgressCallbackContext. Does nothing if anything in it is
// missing.
void ProgressCallback(int current, int total, const std::string& name, void* context);

// Shows a window with localised texts; null without a dialog interface or where none is wanted.
std::unique_ptr<FontProgressProperties> ShowFontProgress(TarnInterface* tarn, bool wanted,
                                                         std::size_t maximum, const char* titleKey,
                                                         const char* headerFormatKey);
