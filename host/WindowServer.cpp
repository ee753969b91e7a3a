#include "host/WindowServer.h"

#include <utility>

bool WindowServer::Order(HostWindow& window) {
  if (mOrder) {
    mOrder(&window);
  } else {
    OrderFromSuite(&window);
  }
  return !window.dismissed;
}

HostOrderWindowProc WindowServer::Exchange(HostOrderWindowProc procedure) {
  return std::exchange(mOrder, procedure);
}

void WindowServer::OrderFromSuite(HostWindowRef window) {
  if (!window->dismissed) mShow(*window);
}
