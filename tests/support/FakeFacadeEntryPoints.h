// What a FakeFacade exports: every entry point of the table, by name. Those that the fake has no
// data for record the call and answer their scripted code, kNotImplemented if there is none; a
// column-name getter gives its own name.
#pragma once

#include <map>
#include <string>

std::map<std::string, void*> FakeFacadeSymbols();
