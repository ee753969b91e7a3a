#include "frameworks/plugin-interface/EntryPoint.h"

namespace {

template <typename... Out>
std::uint32_t Refuse(Out*... out) {
  ((out != nullptr ? void(*out = Out{}) : void()), ...);
  return CoreErrorCodes::kNotImplemented;
}

}  // namespace

#define NOT_SERVED(name, arguments, ...) \
  uint32_t name arguments { return Refuse(__VA_ARGS__); }
#include "frameworks/plugin-interface/NotServed.def"
#undef NOT_SERVED
