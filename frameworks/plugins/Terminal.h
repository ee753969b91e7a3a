// The words of this framework on a terminal: lines on standard error, answers from standard input.
// Nothing is asked unless both are terminals. A reader of standard error that has gone raises no
// signal, and text of strangers (font names) can't steer the terminal.
#pragma once

#include <optional>
#include <string>
#include <string_view>

class Terminal {
 public:
  // Of this process.
  static Terminal& Standard();
  // Descriptors, not owned.
  Terminal(int input, int output) : mInput(input), mOutput(output) {}

  // Can a person read and answer?
  bool IsInteractive() const;
  // Is the output a terminal?
  bool ShowsProgress() const;

  // Control characters become "?", line feeds stay.
  void WriteLine(std::string_view text) const;
  void WriteWithoutEnd(std::string_view text) const;
  // Goes back to the start of the line and puts the text there, in place of a longer one.
  void ReplaceLine(std::string_view text) const;
  // Without its end; nothing at the end of the input. At most kMaxAnswer bytes.
  std::optional<std::string> ReadLine() const;

  static constexpr std::size_t kMaxAnswer = 1024;

 private:
  void WriteBytes(std::string_view bytes) const;

  int mInput;
  int mOutput;
};
