#include "tui/ui.h"

#include <stdexcept>

#include "tui/frame.h"
#include "tui/keys.h"

namespace ks {

namespace {
Ui g_ui;
}

Ui& ui() {
  return g_ui;
}

Screen& scr() {
  if (!g_ui.screen) throw std::logic_error("no screen is open");
  return *g_ui.screen;
}

UiScope::UiScope(Screen& screen) {
  g_ui = Ui();
  g_ui.screen = &screen;
  screen.SetBackdropPainter(DrawDesktop);
}

UiScope::~UiScope() {
  if (g_ui.screen) g_ui.screen->SetBackdropPainter(nullptr);
  g_ui = Ui();
}

void DrawHeader() {
  Screen& s = scr();
  const Screen::Backdrop backdrop(s);
  const Ui& u = ui();
  const auto& c = u.colours;
  DrawFrame(1, 1, s.Width(), kHeaderRows, c[kHeaderFrame], kDoubleFrame);
  s.FillRect(2, 2, s.Width() - 1, kHeaderRows - 1, ' ', c[kHeaderText]);
  s.WriteStr(3, 2, c[kHeaderText], u.header_line2);
  s.WriteStr(3, 3, c[kHeaderText], u.header_line3);
  s.WriteStr(s.Width() - 1 - Screen::VisibleLength(u.header_right2), 2, c[kHeaderText],
             u.header_right2);
  s.WriteStr(s.Width() - 9, 3, c[kHeaderText], u.header_right3);
}

void DrawDesktop() {
  Screen& s = scr();
  const auto& c = ui().colours;
  DrawHeader();
  {
    const Screen::Backdrop backdrop(s);
    s.FillRect(1, kHeaderRows + 1, s.Width(), s.Height() - 1, c[kBgChar], c[kBackground]);
  }
  ShowStatus("");
}

std::string KeyText(std::string_view text, std::uint8_t normal, std::uint8_t key) {
  std::string line;
  bool in_key = false;
  for (char ch : text) {
    if (ch == '~') {
      in_key = !in_key;
      line += kColourEscape;
      line += static_cast<char>(in_key ? key : normal);
    } else {
      line += ch;
    }
  }
  return line;
}

void ShowStatus(std::string_view text) {
  Screen& s = scr();
  const auto& c = ui().colours;
  if (text.empty()) {
    s.FillRect(1, s.Height(), s.Width(), s.Height(), ' ', c[kBottomLine]);
    return;
  }
  s.WriteStr(1, s.Height(), c[kBottomText], KeyText(text, c[kBottomText], c[kBottomKey]),
             s.Width());
}

void RequestHelp(int topic) {
  if (ui().show_help) ui().show_help(topic);
}

void RequestPopup() {
  if (ui().popup_enabled && ui().popup) ui().popup();
}

bool HandleCommonKey(std::uint8_t scan, int topic) {
  if (scan == key::kF1) {
    RequestHelp(topic);
    return true;
  }
  if (scan == key::kAltZ) {
    RequestPopup();
    return true;
  }
  return false;
}

}  // namespace ks
