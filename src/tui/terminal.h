// The terminal as the screen layer sees it: a grid of cells to show, a cursor, and a stream of
// key bytes. CursesTerminal talks to a real terminal; VirtualTerminal is an in-memory one for
// tests.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace ks {

struct Cell {
  std::uint8_t ch = ' ';     // CP437 character
  std::uint8_t attr = 0x07;  // low nibble foreground, high nibble background
  bool operator==(const Cell&) const = default;
};

// kBlock is the very visible cursor (the overwrite mode of a text editor); a terminal that has
// only one shows its normal cursor.
enum class CursorShape { kHidden, kUnderline, kBlock };

class Terminal {
 public:
  virtual ~Terminal() = default;

  // The size in cells. It changes when the terminal is resized; the handler set with OnResize
  // is told so.
  virtual int Width() const = 0;
  virtual int Height() const = 0;

  // Shows `cells` (Width() x Height(), row by row). Only the rows marked in `dirty` changed
  // since the last call; an empty `dirty` means all of them.
  virtual void Present(const std::vector<Cell>& cells, const std::vector<bool>& dirty) = 0;

  // Cursor shape and 1-based position, applied with the next Present.
  virtual void SetCursor(CursorShape shape, int col, int row) = 0;

  // The next key byte: a character code, or 0 followed (on the next call) by a PC scan code.
  // Blocks until a key is pressed.
  virtual std::uint8_t ReadByte() = 0;

  // True when a key byte is waiting (never blocks).
  virtual bool KeyWaiting() = 0;

  // Monochrome rendering: attributes become plain, bold and reverse video instead of colours.
  virtual void SetMonochrome(bool mono) = 0;
  // Sounds the terminal's bell.
  virtual void Beep() {}

  // Leaves full-screen mode. The top `keepRows` rows of the last presented cells stay on the
  // terminal, the rest of it is cleared and the cursor waits at the start of the next row.
  virtual void Close(int keepRows) = 0;

  // Hands the terminal to another program for a while: Suspend leaves full-screen mode, so the
  // terminal is back in its normal screen and modes; Resume returns to full-screen mode and
  // shows the last presented cells again.
  virtual void Suspend() {}
  virtual void Resume() {}

  // `handler` runs, from inside ReadByte or KeyWaiting, each time the size has changed; it is
  // expected to present cells of the new size. A resize never shows up as a key.
  void OnResize(std::function<void()> handler) { on_resize_ = std::move(handler); }

 protected:
  void NotifyResize() {
    if (on_resize_) on_resize_();
  }

 private:
  std::function<void()> on_resize_;
};

}  // namespace ks
