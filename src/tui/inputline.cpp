#include "tui/inputline.h"

#include <algorithm>

#include "tui/dialog.h"
#include "tui/keys.h"
#include "tui/ui.h"

namespace ks {

namespace {
constexpr std::uint8_t kCtrlY = 25;
}

std::optional<std::string> InputLine(int col, int row, int width, int max_len, std::string initial,
                                     std::uint8_t attr) {
  Screen& s = scr();
  const CursorShape old_shape = s.cursor_shape();
  std::string text = std::move(initial);
  if (static_cast<int>(text.size()) > max_len) text.resize(static_cast<std::size_t>(max_len));
  int pos = static_cast<int>(text.size());
  int first = 0;  // first character shown
  bool insert = true;
  s.SetCursorShape(CursorShape::kUnderline);
  std::optional<std::string> result;
  for (;;) {
    if (pos < first) first = pos;
    if (pos >= first + width) first = pos - width + 1;
    s.WriteStr(col, row, attr,
               std::string_view(text).substr(static_cast<std::size_t>(first),
                                             static_cast<std::size_t>(width)),
               width);
    s.GotoXY(col + pos - first, row);
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    if (extended) {
      switch (k) {
        case key::kLeft:
          pos = std::max(0, pos - 1);
          break;
        case key::kRight:
          pos = std::min(static_cast<int>(text.size()), pos + 1);
          break;
        case key::kHome:
          pos = 0;
          break;
        case key::kEnd:
          pos = static_cast<int>(text.size());
          break;
        case key::kDel:
          if (pos < static_cast<int>(text.size())) text.erase(static_cast<std::size_t>(pos), 1);
          break;
        case key::kIns:
          insert = !insert;
          break;
        default:
          break;
      }
      continue;
    }
    if (k == key::kEnter) {
      result = text;
      break;
    }
    if (k == key::kEsc) break;
    if (k == key::kBackspace) {
      if (pos > 0) text.erase(static_cast<std::size_t>(--pos), 1);
    } else if (k == kCtrlY) {
      text.clear();
      pos = first = 0;
    } else if (k >= 32) {
      const auto p = static_cast<std::size_t>(pos);
      if (!insert && p < text.size()) {
        text[p] = static_cast<char>(k);
        ++pos;
      } else if (static_cast<int>(text.size()) < max_len) {
        text.insert(p, 1, static_cast<char>(k));
        ++pos;
      }
    }
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
