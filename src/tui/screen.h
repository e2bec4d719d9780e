// The screen: a buffer of cells (CP437 character + attribute) that everything draws into, and
// the only place that talks to the terminal. Coordinates are 1-based, column first.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tui/terminal.h"

namespace ks {

// Inside any drawn string, this byte followed by an attribute byte changes the colour.
inline constexpr char kColourEscape = '\x01';

class Screen {
 public:
  explicit Screen(Terminal& term);

  int Width() const { return width_; }
  int Height() const { return height_; }

  // Writes `s` at (col,row) starting in `attr`; 0x01 + byte switches the attribute. When
  // `width` is larger than the visible length the rest is filled with blanks in `attr`.
  // Anything beyond the right edge is clipped.
  void WriteStr(int col, int row, std::uint8_t attr, std::string_view s, int width = 0);

  // The same, and leaves the hardware cursor at the start of the string (for screen readers).
  void WriteStrCursor(int col, int row, std::uint8_t attr, std::string_view s, int width = 0);

  // The number of cells `s` occupies (colour escapes take none).
  static int VisibleLength(std::string_view s);

  void Put(int col, int row, Cell c);
  Cell At(int col, int row) const;
  void FillRect(int left, int top, int right, int bottom, std::uint8_t ch, std::uint8_t attr);
  void SetAttrRect(int left, int top, int right, int bottom, std::uint8_t attr);

  // A copy of the cells of a rectangle, to put back later (what lies beneath a box).
  struct Saved {
    int left = 0, top = 0, right = -1, bottom = -1;
    std::vector<Cell> cells;
    bool empty() const { return cells.empty(); }
  };
  Saved Save(int left, int top, int right, int bottom) const;
  void Restore(const Saved& saved);

  void SetCursorShape(CursorShape shape);
  CursorShape cursor_shape() const { return shape_; }
  void GotoXY(int col, int row);
  int cursor_col() const { return cur_col_; }
  int cursor_row() const { return cur_row_; }

  // Sends the changed rows and the cursor to the terminal.
  void Flush();

  // One key byte: a character, or 0 and then (next call) a scan code. Flushes first.
  std::uint8_t ReadKey();

  // One code per key: the character, or the scan code of an extended key. `extended` tells
  // which it was. Characters and scan codes thus share one code space.
  std::uint8_t ReadCode(bool* extended = nullptr);

  // True when a key is waiting to be read.
  bool KeyPressed();

  // The characters of one row as text (CP437 bytes), for tests and diagnostics.
  std::string RowText(int row) const;

  Terminal& terminal() { return term_; }

 private:
  Cell* CellAt(int col, int row);
  void MarkDirty(int row);

  Terminal& term_;
  int width_;
  int height_;
  std::vector<Cell> cells_;
  std::vector<bool> dirty_;
  bool any_dirty_ = true;
  CursorShape shape_ = CursorShape::kHidden;
  int cur_col_ = 1;
  int cur_row_ = 1;
  bool cursor_changed_ = true;
};

}  // namespace ks
