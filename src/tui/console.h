// Plain console output, before and after full-screen mode: CP437 text written as UTF-8 (or
// ASCII stand-ins) with the PC text attribute as ANSI colour sequences.
#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "tui/terminal.h"

namespace ks {

struct ConsoleOptions {
  bool ansi = false;  // colour with SGR sequences
  bool utf8 = false;  // UTF-8 output; otherwise ASCII stand-ins for CP437 characters
};

// Options for standard output as the environment describes it: colours when it is a terminal
// other than "dumb" and NO_COLOR is unset or empty; UTF-8 when the locale's character set is.
ConsoleOptions DetectConsoleOptions();

// The same decision from its inputs (null for an unset variable).
ConsoleOptions ConsoleOptionsFor(bool isTerminal, const char* noColor, const char* term,
                                 std::string_view codeset);

// True when the C library's current LC_CTYPE character set is UTF-8.
bool LocaleIsUtf8();

// The SGR sequence for a PC attribute: 16-colour foreground and background, or a plain reset
// for light grey on black (7), the terminal's own colours.
std::string SgrForAttr(std::uint8_t attr);

// One row of cells as console text: the characters with an SGR sequence wherever the
// attribute changes, trailing plain blanks left out, attributes reset at the end.
std::string EncodeRow(std::span<const Cell> cells, ConsoleOptions opts);

class Console {
 public:
  Console(std::ostream& out, ConsoleOptions opts) : out_(out), opts_(opts) {}

  // The attribute of the text written from now on.
  void SetAttr(std::uint8_t attr) { attr_ = attr; }
  std::uint8_t Attr() const { return attr_; }

  // Writes CP437 text; "\n" ends a line.
  void Write(std::string_view cp437);
  void WriteLine(std::string_view cp437 = {});

  void Flush() { out_.flush(); }

 private:
  void EmitAttr();
  void EndLine();

  std::ostream& out_;
  ConsoleOptions opts_;
  std::uint8_t attr_ = 0x07;
  std::uint8_t shown_ = 0x07;  // the attribute the terminal is set to
};

}  // namespace ks
