#include "tui/charchart.h"

#include <cstdio>
#include <string>

#include "tui/dialog.h"
#include "tui/keys.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kWidth = 56;   // frame included
constexpr int kHeight = 20;  // frame included
constexpr int kHelpTopic = 6;

void DrawChart(int left, int top, int sel) {
  Screen& s = scr();
  const auto& c = ui().colours;
  static const char kHex[] = "0123456789ABCDEF";
  std::string head = "    ";
  for (int x = 0; x < 16; ++x) head += std::string(" ") + kHex[x] + " ";
  s.WriteStr(left + 2, top + 1, c[kWindowTitle], head);
  for (int y = 0; y < 16; ++y) {
    s.WriteStr(left + 2, top + 2 + y, c[kWindowTitle], std::string(" ") + kHex[y] + "_ ");
    for (int x = 0; x < 16; ++x) {
      const int code = y * 16 + x;
      const std::uint8_t attr = code == sel ? c[kWindowSelect] : c[kWindowData];
      const int col = left + 6 + x * 3;
      s.Put(col, top + 2 + y, {' ', attr});
      s.Put(col + 1, top + 2 + y, {static_cast<std::uint8_t>(code), attr});
      s.Put(col + 2, top + 2 + y, {' ', attr});
    }
  }
  char info[48];
  std::snprintf(info, sizeof info, "    Decimal %3d    Hexadecimal %02X", sel, sel);
  // The character itself is put as a cell: byte 0x01 would read as a colour change in a string.
  s.WriteStr(left + 2, top + kHeight - 2, c[kWindowText], std::string("Character  ") + info,
             kWidth - 4);
  s.Put(left + 12, top + kHeight - 2, {static_cast<std::uint8_t>(sel), c[kWindowData]});
}

}  // namespace

void ShowCharacterChart() {
  Screen& s = scr();
  const Dialog d = Dialog::Centred(kWidth, kHeight, "Character chart");
  const int left = d.left(), top = d.top();
  ShowStatus("~Arrows~-move ~Home~/~End~-row ~PgUp~/~PgDn~-column ~Esc~-close");
  int sel = 'A';
  for (;;) {
    DrawChart(left, top, sel);
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    if (!extended) {
      if (k == key::kEsc || k == key::kEnter) break;
      sel = k;  // typing a character jumps to it
      continue;
    }
    switch (k) {
      case key::kLeft:
        sel = (sel + 255) % 256;
        break;
      case key::kRight:
        sel = (sel + 1) % 256;
        break;
      case key::kUp:
        sel = (sel + 240) % 256;
        break;
      case key::kDown:
        sel = (sel + 16) % 256;
        break;
      case key::kHome:
        sel -= sel % 16;
        break;
      case key::kEnd:
        sel += 15 - sel % 16;
        break;
      case key::kPgUp:
        sel %= 16;
        break;
      case key::kPgDn:
        sel = 240 + sel % 16;
        break;
      case key::kF1:
        RequestHelp(kHelpTopic);
        break;
      default:
        break;
    }
  }
}

}  // namespace ks
