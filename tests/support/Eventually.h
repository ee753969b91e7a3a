// Waiting for what comes in its own time, without a fixed sleep.
#pragma once

#include <functional>

// Asks again and again, turning the default main context meanwhile; false after half a minute.
bool Eventually(const std::function<bool()>& condition);
