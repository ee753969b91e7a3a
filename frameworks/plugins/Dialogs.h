// The dialogs in their terminal form: words on standard error, and a question only where a person
// can answer it. A test gives a terminal of its own.
#pragma once

#include <cstdint>
#include <string_view>

#include "frameworks/plugins/Terminal.h"
#include "propertylist/FontRecord.h"

// Buttons of a message box.
enum : std::int32_t { kFirstButton = 1, kSecondButton = 2 };

// Title and message are keys or texts; an empty title is left out. With two buttons "yes" is the
// first and "no" the second, which is also the answer when nobody can be asked.
std::int32_t ShowMessage(const Terminal& terminal, std::string_view titleKey,
                         std::string_view message, bool asksForAnswer);

void ShowAbout(const Terminal& terminal);

void ShowRestricted(const Terminal& terminal, const FontRecordArray& fonts);

// Lists each font with its candidates, and sets kFP_MatchedFontKey to the one that a person
// chooses. Changes nothing when nobody can be asked.
void ResolveFonts(const Terminal& terminal, const FontRecordArray& fonts);
