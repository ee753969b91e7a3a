// What a person and a script see. Data goes to standard output, words to standard error.
//
// Standard output is for data only: what a plug-in prints on it by itself is sent away, since its
// log lines would stand in the middle of a list or of JSON.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

// Exit codes of every command; 128+n after signal n.
enum ExitCode : int {
  kExitOk = 0,
  kExitOpenQuestion = 1,  // a font is missing, shadowed, or a choice is open
  kExitUsage = 2,
  kExitDocument = 3,  // a document that can't be read or written
  kExitNoFontManager = 4
};

class Console {
 public:
  // Keeps the real standard output to itself and points the descriptor that others write to at
  // /dev/null.
  Console();
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // Data: one line.
  void Print(std::string_view line);
  void PrintJson(const nlohmann::json& json);
  // Words: "kestrane: <text>".
  void Say(std::string_view text);
  void Error(std::string_view text);
  // One line that is drawn over and over, on a terminal only; EndProgress leaves the line empty.
  void Progress(std::uint64_t done, std::uint64_t total, std::string_view what);
  void EndProgress();

  bool ErrorIsTerminal() const { return mErrorIsTerminal; }
  bool OutputIsTerminal() const { return mOutputIsTerminal; }
  // The real standard output, for a child that runs in our place. Lent.
  int OutputDescriptor() const { return mOutput; }
  // False once the reader of the output has gone.
  bool OutputIsThere() const { return mOutputIsThere; }

 private:
  void Write(int descriptor, std::string_view text);

  int mOutput;
  bool mOutputIsThere = true;
  bool mErrorIsTerminal;
  bool mOutputIsTerminal;
  bool mProgressShown = false;
  std::int64_t mLastProgress = 0;
};

// Bytes of a file name or of a font name as text that is safe on a terminal: malformed UTF-8 and
// control characters become U+FFFD.
std::string Printable(std::string_view bytes);
