#include <exception>
#include <nlohmann/json.hpp>

#include "foundation/ErrorCodes.h"
#include "foundation/GJSONUtils.h"
#include "foundation/GLogger.h"
#include "foundation/JsonLimits.h"

namespace GJSONUtils {

namespace {

unsigned int RefuseText(const char* reason) {
  GLogger::GetSharedInstance()->LogError("Miscellaneous", "Failed to parse JSON: %s", reason);
  return CoreErrorCodes::kInvalidParam;
}

}  // namespace

unsigned int Parse(nlohmann::json& root, const std::string& text) {
  GLogger::GetSharedInstance()->LogDebug("Miscellaneous", "Attempting to parse JSON: %s",
                                         text.c_str());
  root = nullptr;
  if (const char* fault = restful_mapper::Json::FindTextFault(text)) {
    return RefuseText((std::string("JSON parse error:\n") + fault).c_str());
  }
  try {
    root = nlohmann::json::parse(text);
  } catch (const std::exception& error) {
    return RefuseText(error.what());
  }
  return CoreErrorCodes::kSuccess;
}

}  // namespace GJSONUtils
