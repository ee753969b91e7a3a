// Every font record that the font manager has delivered in this process. `activationState` is the
// live state, which notifications change; kFP_ActivationStateKey in the record stays what it was at
// delivery. Lives until the process ends. Threads: [main-thread].
#pragma once

#include <cstdint>
#include <string>

#include "fontmanager/FontManagerInterface.h"

namespace FontDataPreviouslyGottenFromDatabase {

// The first delivery wins until DeleteAll.
void Add(std::uint32_t databaseID, FontManagerInterface::FontOrSetInfoRec rec);
void SetFontActivationState(std::uint32_t databaseID, bool isActive);
// A copy for the caller to own, of the version of this name that is active now.
bool CreateCopyOfFaceprintDataForActiveFont(const std::string& postScriptName,
                                            FontRecord& outRecord, std::uint32_t& outID);
int DeleteAll();

}  // namespace FontDataPreviouslyGottenFromDatabase
