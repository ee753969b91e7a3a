// What must hold before strangers' bytes reach the property-list library, which takes much for
// granted: it recurses, lets a key without a value and a second root pass, reads half a number and
// writes text raw.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace PropertyList {

// Nothing if this is not one property list: at most one <plist> around exactly one value, every
// element closed in order, keys and values of dictionaries in turn, numbers and base64 well-formed,
// entities known, within the bounds of XmlForm.h. Declarations inside a DOCTYPE are refused, and so
// are comments inside of texts. Else the same list without entities, which the library takes time
// for that grows with the square of them.
std::optional<std::string> CheckXml(std::string_view xml);

}  // namespace PropertyList
