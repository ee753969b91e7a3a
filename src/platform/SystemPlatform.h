// The running system's own set of ports.
#pragma once

class Platform;

// Made on first use and never destroyed. [main-thread]
Platform& GetSystemPlatform();
