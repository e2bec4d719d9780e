#include "tui/box.h"

#include <algorithm>
#include <cstdlib>

#include "tui/frame.h"
#include "tui/keys.h"
#include "tui/ui.h"

namespace ks {

BoxOBJ::BoxOBJ(int left, int top, int right, int bottom, std::string title)
    : left_(left), top_(top), right_(right), bottom_(bottom), title_(std::move(title)) {
  if (title_.size() > 30) title_.resize(30);
  TakeColours();
  exit_keys_.set(key::kEnter);
  exit_keys_.set(key::kEsc);
}

void BoxOBJ::TakeColours() {
  const auto& c = ui().colours;
  frame_ = c[kWindowFrame];
  line_ = c[kWindowLine];
  title_attr_ = c[kWindowTitle];
  select_ = c[kWindowSelect];
  text_ = c[kWindowText];
  data_ = c[kWindowData];
}

BoxOBJ::~BoxOBJ() {
  if (visible_ && ui().screen) Hide();
}

void BoxOBJ::AddItem(int col, int row, std::string title, std::string help, std::uint8_t topic) {
  if (items_.size() >= kMaxItems) return;
  if (title.size() > 75) title.resize(75);
  if (help.size() > 100) help.resize(100);
  items_.push_back({col, row, std::move(title), std::move(help), topic, 0, {}});
  widest_ = std::max(widest_, Screen::VisibleLength(items_.back().title));
  if (current_ == 0) current_ = 1;
}

void BoxOBJ::SetPrefix(int item, std::string prefix) {
  if (item < 1 || item > static_cast<int>(items_.size())) return;
  if (prefix.size() > 10) prefix.resize(10);
  auto& it = items_[static_cast<std::size_t>(item - 1)];
  it.prefix = std::move(prefix);
  widest_ = std::max(widest_, Screen::VisibleLength(it.prefix + it.title));
}

void BoxOBJ::SetItemWidth(int item, int width) {
  if (item >= 1 && item <= static_cast<int>(items_.size()))
    items_[static_cast<std::size_t>(item - 1)].width = width;
}

void BoxOBJ::AddHotKey(HotKey hk) {
  if (hot_keys_.size() < kMaxHotKeys) hot_keys_.push_back(std::move(hk));
}

void BoxOBJ::set_current(int item) {
  if (item >= 1 && item <= static_cast<int>(items_.size())) current_ = item;
}

int BoxOBJ::BarWidth(const BoxItem& it) const {
  return it.width ? it.width : widest_;
}

void BoxOBJ::DrawItem(int n, bool selected) {
  const BoxItem& it = item(n);
  const std::uint8_t attr = selected ? select_ : text_;
  const int col = left_ + it.col;
  const int row = top_ + it.row;
  if (ui().sfi && selected)
    scr().WriteStrCursor(col, row, attr, it.prefix + it.title, BarWidth(it));
  else
    scr().WriteStr(col, row, attr, it.prefix + it.title, BarWidth(it));
}

void BoxOBJ::Draw() {
  Screen& s = scr();
  if (!visible_) beneath_ = s.Save(left_, top_, right_ + kShadowCols, bottom_ + kShadowRows);
  visible_ = true;
  TakeColours();  // the colour set may have changed since the box was made
  s.FillRect(left_ + 1, top_ + 1, right_ - 1, bottom_ - 1, ' ', text_);
  DrawFrame(left_, top_, right_, bottom_, frame_, kDoubleFrame);
  DrawFrameTitle(right_, top_, title_attr_, title_);
  if (!caption_.empty()) s.WriteStr(left_ + 1, top_, title_attr_, " " + caption_ + " ");
  DrawShadow(left_, top_, right_, bottom_);
  for (int n = 1; n <= static_cast<int>(items_.size()); ++n) DrawItem(n, false);
  // A screen reader starts on the first item; the highlight then goes where it belongs.
  if (ui().sfi && !items_.empty()) {
    const BoxItem& first = items_.front();
    s.GotoXY(left_ + first.col, top_ + first.row);
  }
  if (current_ >= 1) DrawItem(current_, true);
  if (show_help_ && current_ >= 1) ShowStatus(item(current_).help);
}

void BoxOBJ::Hide() {
  if (!visible_) return;
  scr().Restore(beneath_);
  beneath_ = {};
  visible_ = false;
}

void BoxOBJ::Select(int n) {
  if (items_.empty()) return;
  const int count = static_cast<int>(items_.size());
  if (n < 1) n = count;
  if (n > count) n = 1;
  if (n != current_ && current_ >= 1) DrawItem(current_, false);
  current_ = n;
  DrawItem(current_, true);
  if (show_help_) ShowStatus(item(current_).help);
}

int BoxOBJ::Nearest(int dir) const {
  if (current_ < 1) return 0;
  const BoxItem& cur = item(current_);
  int best = 0;
  int best_rows = 0, best_cols = 0;
  for (int n = 1; n <= static_cast<int>(items_.size()); ++n) {
    const BoxItem& it = item(n);
    const int dc = (it.col - cur.col) * dir;
    if (dc <= 0) continue;
    const int dr = std::abs(it.row - cur.row);
    // The nearest column first, then the nearest row within it.
    if (best == 0 || dc < best_cols || (dc == best_cols && dr < best_rows)) {
      best = n;
      best_rows = dr;
      best_cols = dc;
    }
  }
  return best;
}

int BoxOBJ::Run() {
  if (!visible_) Draw();
  for (;;) {
    const int code = scr().ReadCode();
    switch (code) {
      case key::kEnter:
        return current_;
      case key::kEsc:
        return kChoiceEsc;
      case key::kUp:
      case key::kShiftTab:
        Select(current_ - 1);
        continue;
      case key::kDown:
      case key::kTab:
        Select(current_ + 1);
        continue;
      case key::kLeft:
      case key::kRight:
        if (int n = Nearest(code == key::kLeft ? -1 : 1)) Select(n);
        continue;
      case key::kHome:
      case key::kPgUp:
        Select(1);
        continue;
      case key::kEnd:
      case key::kPgDn:
        Select(static_cast<int>(items_.size()));
        continue;
      case key::kF1:
      case key::kAltZ:
        HandleCommonKey(code,
                        current_ >= 1 && item(current_).topic ? item(current_).topic : topic_);
        continue;
      case key::kCtrlF:
        // Nothing in a menu is typed, so Ctrl-F can always open "Find setting".
        if (ui().find_setting) ui().find_setting();
        continue;
      case key::kF9:
        if (top_menu_) return kChoiceF9;
        break;
      case key::kF10:
        if (top_menu_) return kChoiceF10;
        break;
      default:
        break;
    }
    if (exit_keys_.test(static_cast<std::size_t>(code))) return current_;
    for (auto& hk : hot_keys_) {
      if (hk.key == code && !hk.disabled && hk.proc) {
        hk.proc(*this, hk.params);
        break;
      }
    }
  }
}

}  // namespace ks
