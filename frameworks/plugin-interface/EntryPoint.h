// What the entry points of the facade share.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "foundation/ErrorCodes.h"
#include "frameworks/Wall.h"
#include "sdk/PluginInterface.h"

// A code answers an exception.
template <typename Body>
std::uint32_t Answer(Body&& body) noexcept {
  return BehindWall<std::uint32_t>(CoreErrorCodes::kUnknownError, std::forward<Body>(body));
}

// Fills a caller's buffer: cut to `size`, at the start of a character, and terminated.
std::uint32_t CopyTextOut(std::string_view text, char* out, std::uint32_t size);

// A list given in. Null stands for an empty list.
inline std::span<const std::uint32_t> ListIn(const std::uint32_t* ids, std::uint32_t count) {
  return ids ? std::span(ids, count) : std::span<const std::uint32_t>();
}

// A count without a list.
inline bool IsListBroken(const std::uint32_t* ids, std::uint32_t count) {
  return ids == nullptr && count != 0;
}
