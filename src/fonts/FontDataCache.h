// Every font record that the font manager has delivered in this process. `activationState` is the
// live state, which notifications change; kFP_ActivationStateKey in the record stays what it was at
// delivery. Lives until the process ends. Threads: [main-thread].
#pragma once

#include <cstdint>
#include <string>

#include "fontmanager/FontManagerInterface.h"

namespace FontDataPreviouslyGottenFromDatabase {

// The first delivery wins until DeleteAll. The record is shared: nobody changes it after this.
void Add(std::uint32_t databaseID, FontManagerInterface::FontOrSetInfoRec rec);
// An activation makes the live state 3, and that of all other versions of the name 1; it changes
// nothing where the state is 2 or 3 already.
void SetFontActivationState(std::uint32_t databaseID, bool isActive);
// A copy for the caller to own, of the version of this name that was active at delivery and is now;
// of several the one of the lowest ID.
bool CreateCopyOfFaceprintDataForActiveFont(const std::string& postScriptName,
                                            FontRecord& outRecord, std::uint32_t& outID);
int DeleteAll();

}  // namespace FontDataPreviouslyGottenFromDatabase
