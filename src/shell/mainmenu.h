// The main menu tree: "Main" with its submenus "Echomail system", "Fileecho system" and
// "Utilities", the header address, and the exit path with the save question.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "shell/kestracfg.h"
#include "tui/menu.h"

namespace ks {

const MenuDef& MainMenuDef();
const MenuDef& FileechoMenuDef();
const MenuDef& EchomailMenuDef();
const MenuDef& UtilitiesMenuDef();

// Choices of the main menu.
enum MainChoice {
  kSystemData = 1,
  kFileFindAreas,
  kEchomailSystem,
  kFileechoSystem,
  kNewFileReports,
  kBbsFileareas,
  kAllfilesLists,
  kRequestProcessor,
  kNodeManager,
  kUtilities,
  kInformation,
  kExitProgram,
};

// True when the configuration differs from `snapshot` before its very last byte (a change
// confined to the last byte is not reported).
bool ConfigChanged(const KESTRAcfg& cfg, const std::vector<std::uint8_t>& snapshot);

// Puts the main address into the header, right-aligned on row 2 (nothing when there is none).
void WriteHeaderAddress(const KESTRAcfg& cfg);

// The screen behind an item, by menu and choice; the screens of later parts of the program
// register here. An item with no screen opens nothing.
struct MenuActions {
  std::function<void()> main[kExitProgram + 1];
  std::function<void()> fileecho[9];
  std::function<void()> echomail[4];
  std::function<void()> utilities[5];
};
MenuActions& menu_actions();

// Runs the main menu until the user leaves it; saves the configuration on request.
void RunMainMenu();

}  // namespace ks
