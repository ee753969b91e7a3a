// Where nobody may be there to press a button: one line on standard error.
#pragma once

#include "platform/MessageBox.h"

class StderrMessageBox : public MessageBox {
 public:
  // Line feeds in the text become blanks. A closed standard error does no harm.
  void ShowMessage(const std::string& message) override;
};
