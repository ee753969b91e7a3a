// The suites for the data of the action model: descriptors, lists, references and aliases. They
// need no host behind them. [main-thread]
#pragma once

#include "sdk/HostActions.h"

const PSActionDescriptorProcs& ActionDescriptorSuite();
const PSActionListProcs& ActionListSuite();
const PSActionReferenceProcs& ActionReferenceSuite();
const PSAliasProcs& AliasSuite();
