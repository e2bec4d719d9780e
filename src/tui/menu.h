// Menus declared as tables: the box, its items (one per row from row 2), their status lines and
// help topics.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "tui/box.h"

namespace ks {

struct MenuItemDef {
  const char* prefix;  // tree connector drawn in front of the title, or ""
  const char* title;
  const char* help;    // status line while highlighted
  std::uint8_t topic;  // F1; 0 = the menu's own topic
};

struct MenuDef {
  const char* title;
  int left, top, right, bottom;
  bool top_menu;       // F9/F10 end it
  std::uint8_t topic;  // the menu's own help topic
  std::vector<MenuItemDef> items;
};

// The tree connectors: a blank, then a tee or a corner, then a horizontal line.
inline constexpr const char* kTee = " \xC3\xC4";
inline constexpr const char* kCorner = " \xC0\xC4";

// Builds the box of a menu; items stand at column 2, rows 2, 3, ...
std::unique_ptr<BoxOBJ> MakeMenu(const MenuDef& def);

// Runs a submenu until Esc (or F9/F10 in a top menu): each choice hides the menu, calls
// `act` with the item's number and shows the menu again.
void RunMenu(const MenuDef& def, const std::function<void(int choice)>& act);

}  // namespace ks
