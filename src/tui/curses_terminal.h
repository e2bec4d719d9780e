// The real terminal, through ncursesw: CP437 cells drawn as Unicode (or the alternate character
// set, or ASCII), PC colours mapped onto what the terminal offers, keys decoded into PC key
// bytes. Full-screen mode starts only when the terminal is opened; until then and after Close
// the program writes to the plain console.
#pragma once

#include <memory>
#include <string>

#include "tui/terminal.h"

namespace ks {

struct CursesOptions {
  // How long curses waits after an Esc for the rest of a key sequence, unless the ESCDELAY
  // environment variable says otherwise.
  int escDelayMs = 25;
  // NO_COLOR in the environment starts the terminal in monochrome.
  bool honourNoColor = true;
  // Named in the message shown while the terminal is too small.
  std::string programName = "KSETUP";
};

class CursesTerminal final : public Terminal {
 public:
  struct Impl;
  explicit CursesTerminal(std::unique_ptr<Impl> impl);
  ~CursesTerminal() override;  // closes with no rows kept when Close was not called
  CursesTerminal(const CursesTerminal&) = delete;
  CursesTerminal& operator=(const CursesTerminal&) = delete;

  int Width() const override;
  int Height() const override;
  void Present(const std::vector<Cell>& cells, const std::vector<bool>& dirty) override;
  void SetCursor(CursorShape shape, int col, int row) override;
  std::uint8_t ReadByte() override;
  bool KeyWaiting() override;
  void SetMonochrome(bool mono) override;
  void Beep() override;
  void Close(int keepRows) override;

  // Leaves full-screen mode for a while, to let another program use the terminal; Resume
  // returns to it and redraws the last presented cells.
  void Suspend() override;
  void Resume() override;

  // True when colours can be shown: the terminal has them and NO_COLOR did not turn them off.
  bool ColourCapable() const;

  // Puts the terminal back into its normal state without going through curses: leaves the
  // alternate screen, shows the cursor, resets attributes and the terminal modes. For the
  // program's fatal-error path; does nothing when no terminal is open. A terminal restored
  // this way is abandoned: closing or destroying it afterwards writes nothing.
  static void EmergencyRestore() noexcept;

 private:
  // Reads what the keyboard has (waiting for it when `block`); false when nothing was there.
  // A resize is taken here: the program redraws through the resize handler, then the whole
  // screen is shown anew.
  bool Pump(bool block);

  std::unique_ptr<Impl> impl_;
};

// Enters full-screen mode on the process's terminal (standard input and output). Throws
// std::runtime_error when that is not possible: not a terminal, an unknown terminal type, or
// a terminal already open.
std::unique_ptr<CursesTerminal> OpenCursesTerminal(const CursesOptions& options = {});

}  // namespace ks
