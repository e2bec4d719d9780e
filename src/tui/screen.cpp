#include "tui/screen.h"

#include "tui/frame.h"

#include <algorithm>

namespace ks {

Screen::Screen(Terminal& term)
    : term_(term),
      width_(term.Width()),
      height_(term.Height()),
      cells_(static_cast<std::size_t>(width_ * height_)),
      backdrop_(cells_),
      layers_(cells_.size(), Layer::kBackdrop),
      dirty_(static_cast<std::size_t>(height_), true) {
  term_.OnResize([this] {
    Resize(term_.Width(), term_.Height());
    if (after_resize_) after_resize_();
    Flush();
  });
}

Screen::~Screen() {
  term_.OnResize(nullptr);
}

void Screen::Set(int col, int row, Cell c) {
  if (!Inside(col, row)) return;
  const std::size_t i = Index(col, row);
  cells_[i] = c;
  if (in_backdrop_) backdrop_[i] = c;
  layers_[i] = in_backdrop_ ? Layer::kBackdrop : Layer::kWindow;
  MarkDirty(row);
}

void Screen::MarkDirty(int row) {
  dirty_[static_cast<std::size_t>(row - 1)] = true;
  any_dirty_ = true;
}

void Screen::Resize(int width, int height) {
  if (width == width_ && height == height_) return;
  const std::vector<Cell> old = std::move(cells_);
  const std::vector<Layer> old_layers = std::move(layers_);
  const int old_width = width_;
  const int old_height = height_;
  width_ = width;
  height_ = height;
  cells_.assign(static_cast<std::size_t>(width_ * height_), Cell{});
  backdrop_ = cells_;
  layers_.assign(cells_.size(), Layer::kBackdrop);
  dirty_.assign(static_cast<std::size_t>(height_), true);
  any_dirty_ = true;
  if (paint_backdrop_) paint_backdrop_();

  const auto old_at = [&](int col, int row) {
    return static_cast<std::size_t>((row - 1) * old_width + (col - 1));
  };
  const int cols = std::min(old_width, width_);
  for (int y = 1; y < std::min(old_height, height_); ++y)
    for (int x = 1; x <= cols; ++x) {
      const std::size_t o = old_at(x, y), n = Index(x, y);
      if (old_layers[o] == Layer::kBackdrop) continue;
      if (old_layers[o] == Layer::kWindow)
        cells_[n] = old[o];
      else
        cells_[n].attr = old[o].attr;  // a shadow falls on the new backdrop
      layers_[n] = old_layers[o];
    }
  // The status line, its last cell's colour carried on across new columns.
  for (int x = 1; x <= width_; ++x)
    cells_[Index(x, height_)] =
        x <= cols ? old[old_at(x, old_height)] : Cell{' ', old[old_at(old_width, old_height)].attr};
  cur_col_ = std::min(cur_col_, width_);
  cur_row_ = std::min(cur_row_, height_);
  cursor_changed_ = true;
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
    Set(x++, row, {static_cast<std::uint8_t>(s[i]), attr});
  }
  for (; x < col + width; ++x) Set(x, row, {' ', start});
}

void Screen::WriteStrCursor(int col, int row, std::uint8_t attr, std::string_view s, int width) {
  WriteStr(col, row, attr, s, width);
  GotoXY(col, row);
}

void Screen::Put(int col, int row, Cell c) {
  Set(col, row, c);
}

Cell Screen::At(int col, int row) const {
  return Inside(col, row) ? cells_[Index(col, row)] : Cell{};
}

void Screen::FillRect(int left, int top, int right, int bottom, std::uint8_t ch,
                      std::uint8_t attr) {
  for (int y = std::max(top, 1); y <= std::min(bottom, height_); ++y)
    for (int x = std::max(left, 1); x <= std::min(right, width_); ++x) Set(x, y, {ch, attr});
}

void Screen::SetAttrRect(int left, int top, int right, int bottom, std::uint8_t attr) {
  for (int y = std::max(top, 1); y <= std::min(bottom, height_); ++y)
    for (int x = std::max(left, 1); x <= std::min(right, width_); ++x) {
      const Layer was = layers_[Index(x, y)];
      Set(x, y, {At(x, y).ch, attr});
      if (!in_backdrop_ && was != Layer::kWindow) layers_[Index(x, y)] = Layer::kShade;
    }
}

Screen::Saved Screen::Save(int left, int top, int right, int bottom) const {
  Saved s;
  s.left = std::max(left, 1);
  s.top = std::max(top, 1);
  s.right = std::min(right, width_);
  s.bottom = std::min(bottom, height_);
  s.last_row = height_;
  for (int y = s.top; y <= s.bottom; ++y)
    for (int x = s.left; x <= s.right; ++x) {
      s.cells.push_back(cells_[Index(x, y)]);
      s.layers.push_back(layers_[Index(x, y)]);
    }
  return s;
}

void Screen::Restore(const Saved& s) {
  std::size_t i = 0;
  for (int y = s.top; y <= s.bottom; ++y)
    for (int x = s.left; x <= s.right; ++x, ++i) {
      if (y == s.last_row) {
        Set(x, height_, s.cells[i]);
        continue;
      }
      if (y >= height_ || !Inside(x, y)) continue;
      const std::size_t n = Index(x, y);
      const Layer layer = s.layers[i];
      if (layer == Layer::kWindow)
        cells_[n] = s.cells[i];
      else
        cells_[n] = {backdrop_[n].ch, layer == Layer::kShade ? s.cells[i].attr : backdrop_[n].attr};
      layers_[n] = layer;
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

void Screen::RunOutside(const std::function<void()>& fn) {
  Flush();
  term_.Suspend();
  struct Back {
    Screen& s;
    ~Back() {
      s.term_.Resume();
      // The other program may have written anywhere: every row is shown again.
      std::fill(s.dirty_.begin(), s.dirty_.end(), true);
      s.any_dirty_ = true;
      s.cursor_changed_ = true;
      s.Flush();
    }
  } back{*this};
  fn();
}

std::uint8_t Screen::ReadKey() {
  Flush();
  return term_.ReadByte();
}

bool Screen::FitFullWindow(int left, int top, int& right, int& bottom, Saved& beneath,
                           std::uint8_t fill, std::uint8_t frame) {
  if (!beneath.empty() && right == Width() && bottom == Height() - 1) return false;
  if (!beneath.empty()) Restore(beneath);
  right = Width();
  bottom = Height() - 1;
  beneath = Save(left, top, right, Height());
  FillRect(left, top, right, bottom, ' ', fill);
  DrawFrame(left, top, right, bottom, frame, kDoubleFrame);
  return true;
}

std::uint8_t Screen::ReadCodeFitted(const std::function<void()>& draw, bool* extended) {
  draw();  // a resize while a box stood on the window is made up for here
  const AfterResize refit(*this, draw);
  return ReadCode(extended);
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
