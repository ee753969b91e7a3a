// Short ways to ask the host's document model: one property of the current object, of the n-th
// object or of a descriptor. Results are the host's errors, 0 for success; suites that can't be
// acquired throw (AutoSuite.h).
//
// Threads: [main-thread].
#pragma once

#include "photoshop/AutoSuite.h"

// Where one value goes, by the kind of value the caller expects. An integer goes to `first`; so
// does a boolean, as its low byte: the upper bytes of `first`, and `second`, stay as they were.
// Values of other kinds give kPSItemMissingError.
SPErr PIUGetSingleItemFromDescriptor(PIActionDescriptor descriptor, DescriptorKeyID key, int* first,
                                     bool* second = nullptr);
SPErr PIUGetSingleItemFromDescriptor(PIActionDescriptor descriptor, DescriptorKeyID key,
                                     OwnedAlias& alias);

// A property of the current object of the class.
SPErr PIUGetInfo(DescriptorClassID type, DescriptorKeyID key, int* first, bool* second = nullptr);
SPErr PIUGetInfo(DescriptorClassID type, DescriptorKeyID key, OwnedAlias& alias);
// The descriptor in which the host answers.
SPErr PIUGetInfo(DescriptorClassID type, DescriptorKeyID key, OwnedDescriptor& answer);

// A property of the `index`-th object of the class, from 1.
SPErr PIUGetInfoByIndex(int index, DescriptorClassID type, DescriptorKeyID key, int* first);
SPErr PIUGetInfoByIndex(int index, DescriptorClassID type, DescriptorKeyID key, OwnedAlias& alias);

// Makes the object of this ID the current one of its class: plays "slct" with a reference.
SPErr PIUSelectByID(DescriptorClassID type, int id);
