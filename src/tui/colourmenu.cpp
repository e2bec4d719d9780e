#include "tui/colourmenu.h"

#include <string>

#include "tui/box.h"
#include "tui/dialog.h"
#include "tui/keys.h"
#include "tui/menu.h"
#include "tui/ui.h"

namespace ks {

namespace {

struct EditorSlot {
  const char* name;
  Slot slot;
};

// The slots the editor offers, in its order: two columns of sixteen.
constexpr EditorSlot kEditorSlots[] = {
    {"Window.frame", kWindowFrame},
    {"Window.line", kWindowLine},
    {"Window.title", kWindowTitle},
    {"Window.select", kWindowSelect},
    {"Window.text", kWindowText},
    {"Window.data", kWindowData},
    {"Window.key", kWindowKey},
    {"Bottom.line", kBottomLine},
    {"Bottom.text", kBottomText},
    {"Bottom.key", kBottomKey},
    {"Help.frame", kHelpFrame},
    {"Help.title", kHelpTitle},
    {"Help.text", kHelpText},
    {"Help.find", kHelpFind},
    {"Edit.frame", kEditFrame},
    {"Edit.title", kEditTitle},
    {"Edit.text", kEditText},
    {"Edit.select", kEditSelect},
    {"Header.frame", kHeaderFrame},
    {"Header.text", kHeaderText},
    {"Background", kBackground},
    {"Message.frame", kMessageFrame},
    {"Message.select", kMessageSelect},
    {"Message.button", kMessageButton},
    {"Message.data", kMessageData},
    {"Data input", kDataInput},
    {"Send to", kSendTo},
    {"Receive from", kReceiveFrom},
    {"Send/receive", kSendReceive},
    {"Locked out", kLockedOut},
    {"Inactive", kInactive},
    {"BG character", kBgChar},
};
constexpr int kSlotsPerColumn = 16;

const MenuDef& ColorsMenuDef() {
  static const MenuDef def = {"Colors",
                              36,
                              11,
                              51,
                              20,
                              false,
                              kColorsHelpTopic,
                              {
                                  {"", "Customized", "Edit the colours one by one", 0},
                                  {"", "Quenmark", "Colour scheme Quenmark", 0},
                                  {"", "Norton", "Colour scheme Norton", 0},
                                  {"", "Novell", "Colour scheme Novell", 0},
                                  {"", "TurboVision", "Colour scheme TurboVision", 0},
                                  {"", "Monochrome", "Colour scheme Monochrome", 0},
                              }};
  return def;
}

std::string Hex2(int v) {
  static const char kHex[] = "0123456789ABCDEF";
  return {kHex[(v >> 4) & 15], kHex[v & 15]};
}

}  // namespace

std::optional<std::uint8_t> PickColour(std::uint8_t current) {
  Dialog d(14, 5, 67, 24, "Select colour");
  Screen& s = scr();
  const auto& c = ui().colours;
  ShowStatus("~Arrows~-select ~Enter~-accept ~Esc~-abort");
  int fg = current & 0x0F, bg = current >> 4;
  for (;;) {
    for (int b = 0; b < 16; ++b) {
      for (int f = 0; f < 16; ++f) {
        const auto attr = static_cast<std::uint8_t>(b << 4 | f);
        const bool sel = f == fg && b == bg;
        const int col = d.left() + 3 + f * 3;
        s.Put(col, d.top() + 1 + b, {static_cast<std::uint8_t>(sel ? 0x10 : ' '), attr});
        s.Put(col + 1, d.top() + 1 + b, {'x', attr});
        s.Put(col + 2, d.top() + 1 + b, {static_cast<std::uint8_t>(sel ? 0x11 : ' '), attr});
      }
    }
    const auto attr = static_cast<std::uint8_t>(bg << 4 | fg);
    s.WriteStr(d.left() + 3, d.top() + 18, c[kWindowText], "Attribute " + Hex2(attr) + "  ", 16);
    s.WriteStr(d.left() + 20, d.top() + 18, attr, " sample text ");
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    if (!extended) {
      if (k == key::kEnter) return attr;
      if (k == key::kEsc) return std::nullopt;
      continue;
    }
    switch (k) {
      case key::kLeft:
        fg = (fg + 15) % 16;
        break;
      case key::kRight:
        fg = (fg + 1) % 16;
        break;
      case key::kUp:
        bg = (bg + 15) % 16;
        break;
      case key::kDown:
        bg = (bg + 1) % 16;
        break;
      case key::kHome:
        fg = 0;
        break;
      case key::kEnd:
        fg = 15;
        break;
      case key::kPgUp:
        bg = 0;
        break;
      case key::kPgDn:
        bg = 15;
        break;
      default:
        HandleCommonKey(k, kColorsHelpTopic);
        break;
    }
  }
}

std::optional<std::uint8_t> AskBackgroundChar(std::uint8_t current) {
  Dialog d(10, 11, 70, 16, "BG character");
  Screen& s = scr();
  const auto& c = ui().colours;
  ShowStatus("~Enter~-accept ~Esc~-abort");
  std::uint8_t candidate = current;
  for (;;) {
    const std::string text = "Current background character : '";
    const int col = d.left() + 2;
    s.WriteStr(col, d.top() + 2, c[kWindowText],
               text + " ' (ASCII " + std::to_string(candidate) + ")", 56);
    // The character itself is put as a cell: it may be the colour escape byte.
    s.Put(col + static_cast<int>(text.size()), d.top() + 2, {candidate, c[kWindowData]});
    s.WriteStr(col, d.top() + 3, c[kWindowText],
               "Enter new character. Press Enter to accept or Esc to abort");
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    if (extended) continue;
    if (k == key::kEnter) return candidate;
    if (k == key::kEsc) return std::nullopt;
    candidate = k;
  }
}

bool RunColourEditor(ColourSet& set) {
  constexpr int kLeft = 23, kTop = 5;
  BoxOBJ box(kLeft, kTop, kLeft + 33, kTop + kSlotsPerColumn + 1, "Customized");
  int n = 0;
  for (const auto& e : kEditorSlots) {
    const int column = n < kSlotsPerColumn ? 2 : 17;
    box.AddItem(column, 1 + n % kSlotsPerColumn, e.name,
                "Choose the colour of " + std::string(e.name), kColorsHelpTopic);
    ++n;
  }
  box.set_topic(kColorsHelpTopic);
  bool changed = false;
  for (int choice = box.Run(); choice != kChoiceEsc; choice = box.Run()) {
    const EditorSlot& e = kEditorSlots[choice - 1];
    std::uint8_t& value = set[e.slot - 1];
    const auto picked = e.slot == kBgChar ? AskBackgroundChar(value) : PickColour(value);
    if (picked && *picked != value) {
      value = *picked;
      set[kSchemeNumber - 1] = kSchemeCustomized;
      changed = true;
    }
    ShowStatus(box.item(box.current()).help);
  }
  return changed;
}

bool RunColorsMenu(ColourSet& set) {
  auto box = MakeMenu(ColorsMenuDef());
  const int scheme = set[kSchemeNumber - 1];
  box->set_current(scheme >= kSchemeCustomized && scheme <= kSchemeLastPreset ? scheme : 1);
  bool changed = false;
  for (;;) {
    const int choice = box->Run();
    if (choice == kChoiceEsc) return changed;
    if (choice == kSchemeCustomized) {
      box->Hide();
      changed = RunColourEditor(set) || changed;
      box->Show();
      continue;
    }
    set = PresetColourSet(choice);
    return true;
  }
}

}  // namespace ks
