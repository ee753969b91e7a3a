// The data behind the progress window.
#pragma once

#include <optional>
#include <string>

#include "dialogs/TarnDictionary.h"

class ProgressProperties {
 public:
  explicit ProgressProperties(int maximum);
  virtual ~ProgressProperties() = default;
  virtual void SetCurrentProgress(int current);

  TarnDictionary& Dictionary() { return mDictionary; }
  int Maximum() const { return mMaximum; }

 private:
  TarnDictionary mDictionary;
  int mMaximum;
};

// Counts down in the header and names the current font below it.
class FontProgressProperties : public ProgressProperties {
 public:
  // `headerFormat` has one %d, the number of items left. Either may be missing.
  FontProgressProperties(int maximum, const std::optional<std::string>& title,
                         std::optional<std::string> headerFormat);
  void SetCurrentProgress(int current) override;
  void SetCurrentPostscriptName(const std::string& name);

 private:
  std::optional<std::string> mHeaderFormat;
};
