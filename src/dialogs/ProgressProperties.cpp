#include "dialogs/ProgressProperties.h"

#include "dialogs/TextFormat.h"

#define TARN_NO_PROTOTYPES
#include "sdk/Tarn.h"

ProgressProperties::ProgressProperties(int maximum) : mMaximum(maximum) {
  mDictionary.SetIntForKey(kTarnMaxProgress, maximum);
  mDictionary.SetIntForKey(kTarnCurrentProgress, 0);
  mDictionary.SetBoolForKey(kTarnIsIndeterminate, false);
}

void ProgressProperties::SetCurrentProgress(int current) {
  mDictionary.SetIntForKey(kTarnCurrentProgress, current);
}

FontProgressProperties::FontProgressProperties(int maximum, const std::optional<std::string>& title,
                                               std::optional<std::string> headerFormat)
    : ProgressProperties(maximum), mHeaderFormat(std::move(headerFormat)) {
  if (title) Dictionary().SetStringForKey(kTarnWindowTitle, title->c_str());
  Dictionary().SetStringForKey(kTarnStatus, "");
  FontProgressProperties::SetCurrentProgress(0);
}

void FontProgressProperties::SetCurrentProgress(int current) {
  if (mHeaderFormat && Maximum() > current) {
    const std::string header =
        FormatOneValue(*mHeaderFormat, "diu", std::to_string(Maximum() - current));
    Dictionary().SetStringForKey(kTarnHeader, header.c_str());
  }
  ProgressProperties::SetCurrentProgress(current);
}

void FontProgressProperties::SetCurrentPostscriptName(const std::string& name) {
  Dictionary().SetStringForKey(kTarnStatus, name.c_str());
}
