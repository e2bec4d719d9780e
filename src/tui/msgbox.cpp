#include "tui/msgbox.h"

#include <algorithm>
#include <cctype>

#include "tui/frame.h"
#include "tui/keys.h"
#include "tui/ui.h"

namespace ks {

std::vector<std::string> SplitMessage(std::string_view text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (;;) {
    std::size_t slash = text.find('/', start);
    if (slash == std::string_view::npos) {
      lines.emplace_back(text.substr(start));
      return lines;
    }
    lines.emplace_back(text.substr(start, slash - start));
    start = slash + 1;
  }
}

std::bitset<256> EndKeys(std::string_view extra) {
  std::bitset<256> keys;
  keys.set(key::kEnter);
  keys.set(key::kEsc);
  for (unsigned char c : extra) keys.set(c);
  return keys;
}

namespace {

// Where the parts of a message box go.
struct MsgLayout {
  int left, top, right, bottom;
  int button_row;
  std::vector<int> button_col;
};

std::string ButtonText(const std::string& label) {
  return " " + label + " ";
}

MsgLayout Layout(const MessageBoxSpec& box) {
  constexpr int kGap = 2;
  int text_w = 0;
  for (const auto& l : box.lines) text_w = std::max(text_w, Screen::VisibleLength(l));
  int buttons_w = 0;
  for (const auto& b : box.buttons) buttons_w += static_cast<int>(ButtonText(b).size()) + kGap;
  if (buttons_w) buttons_w -= kGap;
  int inner = std::max(text_w, buttons_w) + 4;
  if (!box.title.empty()) inner = std::max(inner, static_cast<int>(box.title.size()) + 6);
  const int height = static_cast<int>(box.lines.size()) + 6;
  Screen& s = scr();
  MsgLayout m;
  m.left = std::max(1, (s.Width() - inner - 2) / 2 + 1);
  m.right = m.left + inner + 1;
  m.top = std::max(kHeaderRows + 1, (s.Height() - height) / 2 + 1);
  m.bottom = m.top + height - 1;
  m.button_row = m.bottom - 2;
  int x = m.left + 1 + (inner - buttons_w) / 2;
  for (const auto& b : box.buttons) {
    m.button_col.push_back(x);
    x += static_cast<int>(ButtonText(b).size()) + kGap;
  }
  return m;
}

}  // namespace

std::uint8_t RunMessageBox(const MessageBoxSpec& box) {
  Screen& s = scr();
  const auto& c = ui().colours;
  const MsgLayout m = Layout(box);
  const Screen::Saved beneath =
      s.Save(m.left, m.top, m.right + kShadowCols, m.bottom + kShadowRows);
  const CursorShape shape = s.cursor_shape();
  const int cur_col = s.cursor_col(), cur_row = s.cursor_row();

  s.FillRect(m.left, m.top, m.right, m.bottom, ' ', c[kMessageData]);
  DrawFrame(m.left, m.top, m.right, m.bottom, c[kMessageFrame], kDoubleFrame);
  DrawFrameTitle(m.right, m.top, c[kMessageFrame], box.title);
  DrawShadow(m.left, m.top, m.right, m.bottom);
  const int inner = m.right - m.left - 1;
  for (std::size_t i = 0; i < box.lines.size(); ++i) {
    const auto& l = box.lines[i];
    const int col = m.left + 1 + (inner - Screen::VisibleLength(l)) / 2;
    s.WriteStr(col, m.top + 2 + static_cast<int>(i), c[kMessageData], l);
  }

  const int count = static_cast<int>(box.buttons.size());
  auto draw_button = [&](int n, bool selected) {
    if (n < 1 || n > count) return;
    const auto i = static_cast<std::size_t>(n - 1);
    const int col = m.button_col[i];
    const std::string text = ButtonText(box.buttons[i]);
    if (selected && ui().sfi)
      s.WriteStrCursor(col, m.button_row, c[kMessageSelect], text);
    else
      s.WriteStr(col, m.button_row, selected ? c[kMessageSelect] : c[kMessageButton], text);
  };
  int current = std::clamp(box.first_button, 1, std::max(count, 1));
  for (int n = 1; n <= count; ++n) draw_button(n, n == current);
  auto move = [&](int to) {
    if (count == 0) return;
    if (to < 1) to = count;
    if (to > count) to = 1;
    if (to == current) return;
    draw_button(current, false);
    current = to;
    draw_button(current, true);
  };

  std::uint8_t result = 0;
  for (;;) {
    std::uint8_t k = s.ReadKey();
    if (k == 0) {
      const std::uint8_t scan = s.ReadKey();
      if (scan == key::kShiftTab || scan == key::kLeft)
        move(current - 1);
      else if (scan == key::kRight)
        move(current + 1);
      else
        HandleCommonKey(scan, box.topic);
      continue;
    }
    k = static_cast<std::uint8_t>(std::toupper(k));
    if (k == key::kTab) {
      move(current + 1);
      continue;
    }
    if (!box.end_keys.test(k)) continue;
    if (k == key::kEnter && count > 0) {
      const std::string& label = box.buttons[static_cast<std::size_t>(current - 1)];
      result = label.empty() ? key::kEnter : static_cast<std::uint8_t>(label[0]);
    } else {
      result = k;
    }
    break;
  }
  s.Restore(beneath);
  s.SetCursorShape(shape);
  s.GotoXY(cur_col, cur_row);
  return result;
}

std::uint8_t MessageBox(std::string_view text, std::vector<std::string> buttons,
                        std::uint8_t topic) {
  return MessageBoxLines(SplitMessage(text), std::move(buttons), topic);
}

std::uint8_t MessageBoxLines(std::vector<std::string> lines, std::vector<std::string> buttons,
                             std::uint8_t topic) {
  MessageBoxSpec box;
  box.lines = std::move(lines);
  box.buttons = std::move(buttons);
  box.end_keys = EndKeys();
  box.topic = topic;
  return RunMessageBox(box);
}

void ErrorBox(std::string_view text, std::uint8_t topic) {
  if (ui().beep_on_error && ui().screen) scr().terminal().Beep();
  MessageBoxSpec box;
  if (!text.empty() && text.front() == '/')
    box.lines = {std::string(text.substr(1))};
  else
    box.lines = SplitMessage(text);
  box.buttons = {"Ok"};
  box.end_keys = EndKeys();
  box.topic = topic;
  RunMessageBox(box);
}

bool AskYesNo(std::string_view text, std::uint8_t topic) {
  return MessageBox(text, {"Yes", "No"}, topic) == 'Y';
}

}  // namespace ks
