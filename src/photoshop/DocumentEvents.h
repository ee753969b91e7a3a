// The four notifiers of the host. None raises anything to the host: what a handler meets is logged
// and ends there.
//
// Threads: [main-thread], inside the host's event dispatch; re-entrant, since a played close or
// open delivers events of its own.
#pragma once

#include "sdk/HostActions.h"

// "Opn ": tracks the document and activates its fonts, or notes the open time of one that is
// tracked already; refreshes its handle.
void OpenEvent(DescriptorEventID event, PIActionDescriptor descriptor, int32_t options,
               void* userData);
// "Mk  ": tracks a new document under the empty path. While one untitled document is tracked, a
// second gets no entry.
void MakeEvent(DescriptorEventID event, PIActionDescriptor descriptor, int32_t options,
               void* userData);
// "Cls ": lets closed documents go, while the plug-in is at work.
void CloseEvent(DescriptorEventID event, PIActionDescriptor descriptor, int32_t options,
                void* userData);
// "save": twice a save. Notes path and time of the document, ready for work or not.
void SaveEvent(DescriptorEventID event, PIActionDescriptor descriptor, int32_t options,
               void* userData);
