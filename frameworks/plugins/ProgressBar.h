// The progress window as one line of a terminal. Silent where the output is no terminal.
#pragma once

#include "frameworks/plugins/Terminal.h"
#include "propertylist/Value.h"

class ProgressBar {
 public:
  static ProgressBar& Standard();
  explicit ProgressBar(const Terminal& terminal) : mTerminal(terminal) {}

  // `progress` has the keys of sdk/Tarn.h; null is ignored. The window's title stands on a line of
  // its own above the bar.
  void Show(const PropertyList::DictionaryRef& progress);
  void Update(const PropertyList::DictionaryRef& progress);
  void Hide();

 private:
  const Terminal& mTerminal;
  bool mShown = false;
};
