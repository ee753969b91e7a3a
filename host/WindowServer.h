// The windows of a host without a screen: a window is ordered, told to whoever listens, and gone. A
// plug-in may put its order procedure in front and dismiss it with a key.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sdk/HostWindows.h"

struct HostWindow {
  std::string title;
  std::string text;
  std::vector<int> subviews;  // kinds, in order
  bool dismissed = false;
};

class WindowServer {
 public:
  // `show` gets every window that reaches the screen, that is, one that nobody dismissed before.
  explicit WindowServer(std::function<void(const HostWindow&)> show) : mShow(std::move(show)) {}

  // Runs the order procedures; true if the window reached the screen.
  bool Order(HostWindow& window);
  void SetModal(bool modal) { mModal = modal; }

  // For the suite.
  HostOrderWindowProc Exchange(HostOrderWindowProc procedure);
  void OrderFromSuite(HostWindowRef window);
  bool IsModal() const { return mModal; }

 private:
  std::function<void(const HostWindow&)> mShow;
  HostOrderWindowProc mOrder = nullptr;  // null: the host's own
  bool mModal = false;
};
