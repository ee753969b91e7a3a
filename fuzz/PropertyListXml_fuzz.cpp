// Promise: whatever the bytes, they are no property list, or the value that they give can be
// written, and what was written reads as an equal value and is written again in the same bytes.
// Inputs of a fuzzer are far too short for the bounds that writing has.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "propertylist/XmlForm.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using PropertyList::ReadXml;
  using PropertyList::Value;
  const std::optional<Value> value = ReadXml({reinterpret_cast<const char*>(data), size});
  if (!value) return 0;
  const std::optional<std::string> xml = PropertyList::WriteXml(*value);
  if (!xml) std::abort();
  const std::optional<Value> again = ReadXml(*xml);
  if (!again || !again->Equals(*value) || PropertyList::WriteXml(*again) != xml) std::abort();
  return 0;
}
