// The process-wide state of the user interface: the screen, the installed colour slots, the
// speech-friendly flag, and the hooks through which menus reach help and the pop-up utility.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tui/colours.h"
#include "tui/screen.h"

namespace ks {

struct Ui {
  Screen* screen = nullptr;
  ColourSlots colours;
  bool sfi = false;                          // speech-friendly interface active
  bool popup_enabled = false;                // Alt-Z opens the pop-up utility
  std::function<void(int topic)> show_help;  // F1; topic 0 means none
  std::function<void()> popup;               // Alt-Z
  std::function<void()> find_setting;        // Ctrl-F in a menu
  // The operator's choices of "Miscellaneous" in the configuration.
  bool confirm_delete = true;     // ask before a list entry is deleted
  bool offer_create_dirs = true;  // offer to create a directory typed that does not exist
  bool beep_on_error = false;     // sound the bell with an error message
  std::string header_line2;       // left part of the header's text rows
  std::string header_line3;
  std::string header_right2;  // right-aligned on row 2, its last character two columns
                              // from the right edge
  std::string header_right3;  // on row 3, starting nine columns from the right edge
};

// The one instance. Tests reset it through UiScope.
Ui& ui();
Screen& scr();

// Installs a screen for the lifetime of the scope and restores a fresh Ui afterwards. The
// screen's backdrop is the desktop (DrawDesktop), redrawn that way when the size changes.
class UiScope {
 public:
  explicit UiScope(Screen& screen);
  ~UiScope();
  UiScope(const UiScope&) = delete;
  UiScope& operator=(const UiScope&) = delete;
};

// Rows of the header at the top of the screen.
inline constexpr int kHeaderRows = 4;

// Fills the screen with the desktop: the header, the background character in the background
// colour, and an empty status line. Both draw the screen's backdrop, so they follow the
// screen's size.
void DrawDesktop();
void DrawHeader();

// `text` with each "~" turned into a switch between the `normal` and the `key` colour.
std::string KeyText(std::string_view text, std::uint8_t normal, std::uint8_t key);

// The status line on the last row, across the full width. Each "~" toggles between the status
// text colour and the key colour and is not shown itself.
void ShowStatus(std::string_view text);

// Asks for help on `topic` (F1) and opens the pop-up utility (Alt-Z), when they are set up.
void RequestHelp(int topic);
void RequestPopup();

// The extended keys every screen honours: F1 shows `topic`, Alt-Z opens the pop-up utility.
// Returns true when `scan` was one of them.
bool HandleCommonKey(std::uint8_t scan, int topic);

}  // namespace ks
