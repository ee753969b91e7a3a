// What the database knows of a face, as a font record. Scalars are strings; what is not known is
// absent.
#pragma once

#include "agent/library/LibraryReader.h"
#include "propertylist/FontRecord.h"

FontRecord RecordOfRow(const Nodrix::FontRow& row);
