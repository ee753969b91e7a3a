// The wall of a C border: no exception leaves a framework. Every entry point runs its body here.
#pragma once

#include <utility>

// The body's result, or `onException` if it threw.
template <typename Result, typename Body>
Result BehindWall(Result onException, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return onException;
  }
}

template <typename Body>
void BehindWall(Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is nobody to tell
  }
}
