// The platform's plain message, for the time when no dialog framework is there.
#pragma once

#include <string>

class MessageBox {
 public:
  virtual ~MessageBox() = default;
  // Never waits where nobody can answer.
  virtual void ShowMessage(const std::string& message) = 0;
};
