// Who makes what. The shared objects of KestraneGlobals are made, and cleaned up, here; their
// accessors are declared low, so that every room reaches them without knowing this one.
//
// Threads: [main-thread].
#pragma once

// Puts this host's PhotoshopInterface in place; a second call does nothing.
void InstallHostAppInterface();
