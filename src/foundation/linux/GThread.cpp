#include "foundation/GThread.h"

// The kernel keeps 15 bytes.
void GThread::OSSetThreadName(const std::string& name) {
  pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
}

// Nothing has to be set up around a function here.
void GThread::OSThreadSetup() {}

void GThread::OSThreadCleanup() {}
