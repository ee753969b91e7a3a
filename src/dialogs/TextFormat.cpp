#include "dialogs/TextFormat.h"

std::string FormatOneValue(std::string_view format, std::string_view letters,
                           std::string_view value) {
  constexpr std::string_view kModifiers = "0123456789$l";
  std::string text;
  bool done = false;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      text += format[i];
      continue;
    }
    const std::size_t letter = format.find_first_not_of(kModifiers, i + 1);
    if (letter == i + 1 && format[letter] == '%') {
      text += '%';
      i = letter;
    } else if (!done && letter != std::string_view::npos &&
               letters.find(format[letter]) != std::string_view::npos) {
      text += value;
      done = true;
      i = letter;
    } else {
      text += '%';
    }
  }
  return text;
}
