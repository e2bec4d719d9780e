// The screen: a buffer of cells (CP437 character + attribute) that everything draws into, and
// the only place that talks to the terminal. Coordinates are 1-based, column first.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tui/terminal.h"

namespace ks {

// Inside any drawn string, this byte followed by an attribute byte changes the colour.
inline constexpr char kColourEscape = '\x01';

class Screen {
 public:
  // Follows the terminal's size from now on (see Resize).
  explicit Screen(Terminal& term);
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  int Width() const { return width_; }
  int Height() const { return height_; }

  // The backdrop is what lies beneath all windows: the desktop and its header. Writes made
  // while a Backdrop object lives are backdrop writes; the screen keeps a copy of them and
  // knows of each cell which layer it shows. `paint` draws the whole backdrop for the current
  // size.
  void SetBackdropPainter(std::function<void()> paint) { paint_backdrop_ = std::move(paint); }
  class Backdrop {
   public:
    explicit Backdrop(Screen& s) : s_(s), was_(s.in_backdrop_) { s.in_backdrop_ = true; }
    ~Backdrop() { s_.in_backdrop_ = was_; }
    Backdrop(const Backdrop&) = delete;
    Backdrop& operator=(const Backdrop&) = delete;

   private:
    Screen& s_;
    bool was_;
  };

  // What a cell shows.
  enum class Layer : std::uint8_t {
    kBackdrop,
    kShade,   // the backdrop's character in a colour of its own: a window's shadow
    kWindow,  // anything else written
  };

  // Takes a new size: the backdrop is painted afresh, every window cell stays where it was (or
  // is cut off at the new edges) and the status line moves to the new last row. The terminal's
  // resize notification calls this and presents the result.
  void Resize(int width, int height);

  // While an AfterResize object lives, `redraw` runs after each change of size, before the new
  // screen is shown. A window that fills the screen sets one while it waits for its own keys,
  // so that it fits the new size at once.
  class AfterResize {
   public:
    AfterResize(Screen& s, std::function<void()> redraw)
        : s_(s), was_(std::exchange(s.after_resize_, std::move(redraw))) {}
    ~AfterResize() { s_.after_resize_ = std::move(was_); }
    AfterResize(const AfterResize&) = delete;
    AfterResize& operator=(const AfterResize&) = delete;

   private:
    Screen& s_;
    std::function<void()> was_;
  };

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

  // A copy of the cells of a rectangle, to put back later (what lies beneath a box). Restoring
  // puts back the window cells it holds where they were; where it held backdrop the backdrop
  // is drawn as it is now (shaded where it was), and its part of the status line goes to the
  // current last row. So a box that closes after a resize leaves the backdrop of the new size.
  struct Saved {
    int left = 0, top = 0, right = -1, bottom = -1;
    int last_row = 0;  // the status line's row when saved
    std::vector<Cell> cells;
    std::vector<Layer> layers;
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

  // Runs `fn` with the terminal out of full-screen mode, so that another program can use it,
  // then returns to full-screen mode and shows every cell again (also when `fn` throws).
  void RunOutside(const std::function<void()>& fn);

  // One key byte: a character, or 0 and then (next call) a scan code. Flushes first.
  std::uint8_t ReadKey();

  // One code per key: the character, or the scan code of an extended key. `extended` tells
  // which it was. Characters and scan codes thus share one code space.
  std::uint8_t ReadCode(bool* extended = nullptr);
  // For windows that fill the screen: `draw` lays the window out for the current size and
  // draws it, now and again after every resize while the key is awaited.
  // Lays out a framed window from (left, top) to the right edge and the row above the status
  // line, as the windows that fill the screen have it: the cells beneath are saved (those of
  // an earlier layout put back first), the inside is filled with `fill` and the double frame
  // drawn in `frame`. False, and nothing drawn, when it already fits the screen's size.
  bool FitFullWindow(int left, int top, int& right, int& bottom, Saved& beneath, std::uint8_t fill,
                     std::uint8_t frame);
  std::uint8_t ReadCodeFitted(const std::function<void()>& draw, bool* extended = nullptr);

  // True when a key is waiting to be read.
  bool KeyPressed();

  // The characters of one row as text (CP437 bytes), for tests and diagnostics.
  std::string RowText(int row) const;

  Terminal& terminal() { return term_; }

 private:
  std::size_t Index(int col, int row) const {
    return static_cast<std::size_t>((row - 1) * width_ + (col - 1));
  }
  bool Inside(int col, int row) const {
    return col >= 1 && row >= 1 && col <= width_ && row <= height_;
  }
  // Every write goes through here; a backdrop write also lands in the backdrop copy.
  void Set(int col, int row, Cell c);
  void MarkDirty(int row);

  Terminal& term_;
  int width_;
  int height_;
  std::vector<Cell> cells_;
  std::vector<Cell> backdrop_;  // what the backdrop shows at each cell
  std::vector<Layer> layers_;   // which layer each cell shows
  std::function<void()> paint_backdrop_;
  std::function<void()> after_resize_;
  bool in_backdrop_ = false;
  std::vector<bool> dirty_;
  bool any_dirty_ = true;
  CursorShape shape_ = CursorShape::kHidden;
  int cur_col_ = 1;
  int cur_row_ = 1;
  bool cursor_changed_ = true;
};

}  // namespace ks
