// What the design leaves alive to the end of the process, by type. Nothing here is ever destroyed,
// and everything stays reachable, so that a leak checker reports only real leaks.
//
// Threads: [main-thread].
#pragma once

#include <memory>
#include <vector>

template <typename T>
std::vector<std::unique_ptr<T>>& ParkedObjects() {
  static auto& parked = *new std::vector<std::unique_ptr<T>>;
  return parked;
}
