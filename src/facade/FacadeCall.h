// Calls through the facade's table. The instance is asked for anew at each call; an entry point
// that the library lacks (an older one, or none at all) is not called and answers
// kMissingEntryPoint, so that out values keep what they were set to.
#pragma once

#include <cstdint>
#include <type_traits>

#include "facade/SkerryLoader.h"
#include "foundation/ErrorCodes.h"

namespace FacadeCall {

inline constexpr std::uint32_t kMissingEntryPoint = CoreErrorCodes::kNotImplemented;

// The one rule by which a facade's code becomes an operation's result.
inline int ResultFromCode(std::uint32_t code) {
  return static_cast<std::int32_t>(code) > 0 ? -1 : 0;
}

template <typename... Parameters>
using EntryPoint = std::uint32_t (*SkerryLoader::*)(Parameters...);

template <typename... Parameters>
std::uint32_t WithoutInstance(EntryPoint<Parameters...> entryPoint,
                              std::type_identity_t<Parameters>... arguments) {
  const auto function = SkerryLoader::GetSharedInstance()->*entryPoint;
  return function ? function(arguments...) : kMissingEntryPoint;
}

template <typename... Parameters>
std::uint32_t WithInstance(EntryPoint<PluginFacadeInstance, Parameters...> entryPoint,
                           std::type_identity_t<Parameters>... arguments) {
  const SkerryLoader* facade = SkerryLoader::GetSharedInstance();
  const auto function = facade->*entryPoint;
  if (!function || !facade->pfGetPluginFacadeInstance) return kMissingEntryPoint;
  return function(facade->pfGetPluginFacadeInstance(), arguments...);
}

// A boolean question that goes with a start value.
struct Answer {
  std::uint32_t code;
  bool value;
};
inline Answer Ask(EntryPoint<PluginFacadeInstance, std::int32_t*> entryPoint, bool startValue) {
  std::int32_t value = startValue ? 1 : 0;
  const std::uint32_t code = WithInstance(entryPoint, &value);
  return {code, value != 0};
}

}  // namespace FacadeCall
