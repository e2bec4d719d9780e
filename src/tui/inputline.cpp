#include "tui/inputline.h"

#include <algorithm>

#include "tui/dialog.h"
#include "tui/keys.h"
#include "tui/ui.h"

namespace ks {

namespace {
constexpr std::uint8_t kCtrlY = 25;
}

LineEditor::LineEditor(std::string text, int max_len) : max_len_(max_len) {
  set_text(std::move(text));
}

void LineEditor::set_text(std::string text) {
  text_ = std::move(text);
  if (static_cast<int>(text_.size()) > max_len_) text_.resize(static_cast<std::size_t>(max_len_));
  pos_ = static_cast<int>(text_.size());
  first_ = 0;
}

void LineEditor::Show(int col, int row, int width, std::uint8_t attr) {
  const int len = static_cast<int>(text_.size());
  if (len == width && pos_ == len) {
    first_ = 0;
  } else {
    if (pos_ < first_) first_ = pos_;
    if (pos_ >= first_ + width) first_ = pos_ - width + 1;
  }
  Screen& s = scr();
  s.WriteStr(col, row, attr,
             std::string_view(text_).substr(static_cast<std::size_t>(first_),
                                            static_cast<std::size_t>(width)),
             width);
  s.GotoXY(col + pos_ - first_, row);
}

bool LineEditor::HandleKey(std::uint8_t code, bool extended) {
  const int len = static_cast<int>(text_.size());
  if (extended) {
    switch (code) {
      case key::kLeft:
        pos_ = std::max(0, pos_ - 1);
        return true;
      case key::kRight:
        pos_ = std::min(len, pos_ + 1);
        return true;
      case key::kHome:
        pos_ = 0;
        return true;
      case key::kEnd:
        pos_ = len;
        return true;
      case key::kDel:
        if (pos_ < len) text_.erase(static_cast<std::size_t>(pos_), 1);
        return true;
      case key::kIns:
        insert = !insert;
        return true;
      default:
        return false;
    }
  }
  if (code == key::kBackspace) {
    if (pos_ > 0) text_.erase(static_cast<std::size_t>(--pos_), 1);
    return true;
  }
  if (code == kCtrlY) {
    text_.clear();
    pos_ = first_ = 0;
    return true;
  }
  if (code < 32) return false;
  char c = static_cast<char>(code);
  if (accept && !accept(c, pos_)) return true;
  const auto p = static_cast<std::size_t>(pos_);
  if (!insert && p < text_.size()) {
    text_[p] = c;
    ++pos_;
  } else if (len < max_len_) {
    text_.insert(p, 1, c);
    ++pos_;
  }
  return true;
}

std::optional<std::string> InputLine(int col, int row, int width, int max_len, std::string initial,
                                     std::uint8_t attr) {
  Screen& s = scr();
  const CursorShape old_shape = s.cursor_shape();
  LineEditor ed(std::move(initial), max_len);
  s.SetCursorShape(CursorShape::kUnderline);
  std::optional<std::string> result;
  for (;;) {
    ed.Show(col, row, width, attr);
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    if (ed.HandleKey(k, extended)) continue;
    if (extended) continue;
    if (k == key::kEnter) {
      result = ed.text();
      break;
    }
    if (k == key::kEsc) break;
  }
  s.SetCursorShape(old_shape);
  return result;
}

std::optional<std::string> AskText(const std::string& title, const std::string& prompt, int max_len,
                                   std::string initial) {
  Screen& s = scr();
  const auto& c = ui().colours;
  const int field = std::min(max_len + 1, 50);  // room for the cursor after a full text
  const int width = static_cast<int>(prompt.size()) + field + 5;
  const Dialog d = Dialog::Centred(width, 3, title.c_str());
  s.WriteStr(d.left() + 2, d.top() + 1, c[kWindowText], prompt);
  return InputLine(d.left() + 2 + static_cast<int>(prompt.size()), d.top() + 1, field, max_len,
                   std::move(initial), c[kDataInput]);
}

}  // namespace ks
