#include "foundation/ErrorCodes.h"

#include <atomic>
#include <map>

#include "foundation/GScopedLock.h"

namespace {

using NamesByCode = std::map<TModuleErrorCode, std::string>;
using CodesByName = std::map<std::string, TModuleErrorCode>;

struct ErrorRow {
  TModuleErrorCode code;
  const char* name;
};

constexpr ErrorRow kErrorRows[] = {
#define G_ERROR_CODE(module, class, number, name) \
  {MakeErrorCode(module, number), #class "::" #name},
#include "foundation/ErrorCodes.def"
#undef G_ERROR_CODE
};

// Both maps live to the end of the process; once built they are only read, without the lock.
const NamesByCode& GetNamesByCode() {
  static GMutex& mutex = *new GMutex;
  static std::atomic<const NamesByCode*> names{nullptr};
  if (const NamesByCode* existing = names.load(std::memory_order_acquire)) return *existing;
  const GScopedLock lock(mutex, true, new GBlockingLockStrategy);
  if (names.load(std::memory_order_relaxed) == nullptr) {
    auto* made = new NamesByCode;
    for (const ErrorRow& row : kErrorRows) made->emplace(row.code, row.name);
    names.store(made, std::memory_order_release);
  }
  return *names.load(std::memory_order_relaxed);
}

const CodesByName& GetCodesByName() {
  static GMutex& mutex = *new GMutex;
  static std::atomic<const CodesByName*> codes{nullptr};
  if (const CodesByName* existing = codes.load(std::memory_order_acquire)) return *existing;
  const GScopedLock lock(mutex, true, new GBlockingLockStrategy);
  if (codes.load(std::memory_order_relaxed) == nullptr) {
    auto* made = new CodesByName;
    for (const ErrorRow& row : kErrorRows) made->emplace(row.name, row.code);
    codes.store(made, std::memory_order_release);
  }
  return *codes.load(std::memory_order_relaxed);
}

}  // namespace

std::string GetNameForErrorCode(unsigned int code) {
  const NamesByCode& names = GetNamesByCode();
  const auto found = names.find(code);
  return found == names.end() ? "Unknown error code" : found->second;
}

TModuleErrorCode GetErrorCodeForName(const std::string& name) {
  const CodesByName& codes = GetCodesByName();
  const auto found = codes.find(name);
  return found == codes.end() ? CoreErrorCodes::kUnknownError : found->second;
}
