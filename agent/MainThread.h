// Hands work to the main loop.
#pragma once

#include <functional>

namespace Nodrix {

// Runs `work` in a later turn of the default main context. Threads: any.
void RunOnMainThread(std::function<void()> work);

}  // namespace Nodrix
