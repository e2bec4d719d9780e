#include "tui/screen.h"

#include <algorithm>

namespace ks {

Screen::Screen(Terminal& term)
    : term_(term),
      width_(term.Width()),
      height_(term.Height()),
      cells_(static_cast<std::size_t>(width_ * height_)),
      dirty_(static_cast<std::size_t>(height_), true) {}

Cell* Screen::CellAt(int col, int row) {
  if (col < 1 || row < 1 || col > width_ || row > height_) return nullptr;
  return &cells_[static_cast<std::size_t>((row - 1) * width_ + (col - 1))];
}

void Screen::MarkDirty(int row) {
  dirty_[static_cast<std::size_t>(row - 1)] = true;
  any_dirty_ = true;
}

int Screen::VisibleLength(std::string_view s) {
  int n = 0;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == kColourEscape) {
      ++i;
      continue;
    }
    ++n;
  }
  return n;
}

void Screen::WriteStr(int col, int row, std::uint8_t attr, std::string_view s, int width) {
  if (row < 1 || row > height_) return;
  const std::uint8_t start = attr;
  int x = col;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == kColourEscape) {
      if (i + 1 < s.size()) attr = static_cast<std::uint8_t>(s[++i]);
      continue;
    }
    if (Cell* c = CellAt(x, row)) *c = {static_cast<std::uint8_t>(s[i]), attr};
    ++x;
  }
  for (; x < col + width; ++x)
    if (Cell* c = CellAt(x, row)) *c = {' ', start};
  MarkDirty(row);
}

void Screen::WriteStrCursor(int col, int row, std::uint8_t attr, std::string_view s, int width) {
  WriteStr(col, row, attr, s, width);
  GotoXY(col, row);
}

void Screen::Put(int col, int row, Cell c) {
  if (Cell* p = CellAt(col, row)) {
    *p = c;
    MarkDirty(row);
  }
}

Cell Screen::At(int col, int row) const {
  if (col < 1 || row < 1 || col > width_ || row > height_) return {};
  return cells_[static_cast<std::size_t>((row - 1) * width_ + (col - 1))];
}

void Screen::FillRect(int left, int top, int right, int bottom, std::uint8_t ch,
                      std::uint8_t attr) {
  for (int y = std::max(top, 1); y <= std::min(bottom, height_); ++y) {
    for (int x = std::max(left, 1); x <= std::min(right, width_); ++x) *CellAt(x, y) = {ch, attr};
    MarkDirty(y);
  }
}

void Screen::SetAttrRect(int left, int top, int right, int bottom, std::uint8_t attr) {
  for (int y = std::max(top, 1); y <= std::min(bottom, height_); ++y) {
    for (int x = std::max(left, 1); x <= std::min(right, width_); ++x) CellAt(x, y)->attr = attr;
    MarkDirty(y);
  }
}

Screen::Saved Screen::Save(int left, int top, int right, int bottom) const {
  Saved s;
  s.left = std::max(left, 1);
  s.top = std::max(top, 1);
  s.right = std::min(right, width_);
  s.bottom = std::min(bottom, height_);
  for (int y = s.top; y <= s.bottom; ++y)
    for (int x = s.left; x <= s.right; ++x) s.cells.push_back(At(x, y));
  return s;
}

void Screen::Restore(const Saved& s) {
  std::size_t i = 0;
  for (int y = s.top; y <= s.bottom; ++y) {
    for (int x = s.left; x <= s.right; ++x) *CellAt(x, y) = s.cells[i++];
    MarkDirty(y);
  }
}

void Screen::SetCursorShape(CursorShape shape) {
  shape_ = shape;
  cursor_changed_ = true;
}

void Screen::GotoXY(int col, int row) {
  cur_col_ = std::clamp(col, 1, width_);
  cur_row_ = std::clamp(row, 1, height_);
  cursor_changed_ = true;
}

void Screen::Flush() {
  if (!any_dirty_ && !cursor_changed_) return;
  term_.SetCursor(shape_, cur_col_, cur_row_);
  term_.Present(cells_, dirty_);
  std::fill(dirty_.begin(), dirty_.end(), false);
  any_dirty_ = false;
  cursor_changed_ = false;
}

std::uint8_t Screen::ReadKey() {
  Flush();
  return term_.ReadByte();
}

std::uint8_t Screen::ReadCode(bool* extended) {
  std::uint8_t k = ReadKey();
  if (extended) *extended = (k == 0);
  return k == 0 ? ReadKey() : k;
}

bool Screen::KeyPressed() {
  Flush();
  return term_.KeyWaiting();
}

std::string Screen::RowText(int row) const {
  std::string s;
  for (int x = 1; x <= width_; ++x) s += static_cast<char>(At(x, row).ch);
  return s;
}

}  // namespace ks
