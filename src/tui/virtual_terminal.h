// An in-memory terminal for tests: it keeps the presented cells and plays back a script of
// keys. Reading a key when the script is used up throws, so a test can never hang.
#pragma once

#include <cstdint>
#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tui/terminal.h"

namespace ks {

class KeysExhausted : public std::runtime_error {
 public:
  KeysExhausted() : std::runtime_error("the key script is used up") {}
};

class VirtualTerminal : public Terminal {
 public:
  explicit VirtualTerminal(int width = 80, int height = 25);

  // Queues keys. Plain characters stand for themselves; names in angle brackets stand for
  // keys: <Enter> <Esc> <Tab> <S-Tab> <BS> <Space> <Up> <Down> <Left> <Right> <Home> <End>
  // <PgUp> <PgDn> <Ins> <Del> <C-Home> <C-End> <C-Y> <F1>..<F10> <Alt-A>..<Alt-Z> <lt> (a
  // literal "<").
  // <Resize WxH> is no key: the terminal takes that size when the program reads up to it.
  void Keys(std::string_view script);
  std::size_t KeysLeft() const { return keys_.size(); }

  // When true, KeyWaiting() reports queued keys (a key typed during a long operation);
  // by default it reports none, so scripts are never eaten by such checks.
  void set_type_ahead(bool on) { type_ahead_ = on; }

  // Takes a new size, as when the user resizes the window, and tells the resize handler.
  void Resize(int width, int height);

  // What is on the virtual screen.
  std::string Row(int row) const;  // CP437 bytes, 1-based row
  bool Contains(std::string_view text) const;
  Cell At(int col, int row) const;
  std::uint8_t AttrOf(std::string_view text) const;  // attribute of the first cell of `text`
  std::string Dump() const;                          // the whole screen, rows joined by "\n"

  CursorShape cursor_shape() const { return shape_; }
  int cursor_col() const { return col_; }
  int cursor_row() const { return row_; }
  int present_count() const { return presents_; }
  bool monochrome() const { return mono_; }
  bool closed() const { return closed_; }
  int kept_rows() const { return kept_rows_; }
  // How often the terminal was handed to another program and taken back.
  int suspend_count() const { return suspends_; }
  int resume_count() const { return resumes_; }

  // Terminal
  int Width() const override { return width_; }
  int Height() const override { return height_; }
  void Present(const std::vector<Cell>& cells, const std::vector<bool>& dirty) override;
  void SetCursor(CursorShape shape, int col, int row) override;
  std::uint8_t ReadByte() override;
  bool KeyWaiting() override { return type_ahead_ && !keys_.empty(); }
  void SetMonochrome(bool mono) override { mono_ = mono; }
  void Close(int keepRows) override;
  void Suspend() override { ++suspends_; }
  void Resume() override { ++resumes_; }

 private:
  int width_, height_;
  std::vector<Cell> cells_;
  struct Step {
    std::uint8_t key = 0;
    int width = 0, height = 0;  // a resize when width > 0
  };
  std::deque<Step> keys_;
  bool type_ahead_ = false;
  CursorShape shape_ = CursorShape::kHidden;
  int col_ = 1, row_ = 1;
  int presents_ = 0;
  bool mono_ = false;
  bool closed_ = false;
  int kept_rows_ = -1;
  int suspends_ = 0;
  int resumes_ = 0;
};

}  // namespace ks
