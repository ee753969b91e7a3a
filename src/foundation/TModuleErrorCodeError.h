// A result code that travels as an exception, inside one component.
#pragma once

#include <stdexcept>

#include "foundation/ErrorCodes.h"

namespace restful_mapper {

// what() is the code's name.
class TModuleErrorCodeError : public std::runtime_error {
 public:
  explicit TModuleErrorCodeError(TModuleErrorCode code)
      : std::runtime_error(GetNameForErrorCode(code)), mCode(code) {}
  TModuleErrorCode error() const noexcept { return mCode; }

 private:
  TModuleErrorCode mCode;
};

}  // namespace restful_mapper
