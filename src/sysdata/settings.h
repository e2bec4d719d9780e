// The settings screens: windows of fields on the configuration record. Each screen is a table
// (its name, window and fields); the same tables draw the screens and feed "Find setting".
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shell/kestracfg.h"
#include "tui/fields.h"

namespace ks {

// The offset of a member of the configuration record, for the field tables. Nested members
// and array elements may be named: CFG(internet.address), CFG(phone[1]).
#define CFG(member) static_cast<std::uint16_t>(offsetof(::ks::KESTRAcfg, member))

// Help topics of the screens.
inline constexpr int kSystemDataTopic = 30;
inline constexpr int kAddressTopic = 34;
inline constexpr int kPathnamesTopic = 35;
inline constexpr int kFilenamesTopic = 36;
inline constexpr int kInternetTopic = 37;
inline constexpr int kOriginTopic = 43;
inline constexpr int kProgramsTopic = 45;
inline constexpr int kProgramOptionsTopic = 46;
inline constexpr int kGlobalTopic = 48;
inline constexpr int kMiscTopic = 49;
inline constexpr int kFindTopic = 50;
inline constexpr int kOptionsTopic = 44;  // fileecho and echomail options
inline constexpr int kLongDescTopic = 52;
inline constexpr int kUplinksTopic = 27;
inline constexpr int kUplinkOptionsTopic = 47;
inline constexpr int kRequestTopic = 23;

// What a screen says when it is left: a warning (the page closes, the values stay) or, with
// `stay`, a refusal that keeps the page open on field `field`.
struct LeaveNote {
  std::string message;  // "/" splits lines
  int field = 0;
  bool stay = false;
};

// A key a field answers besides its editing keys, e.g. F3 to edit the file the field names.
// The field's value is in the record when `run` is called.
struct FieldKey {
  std::uint16_t offset = 0;  // the field, by its place in the record
  std::uint8_t scan = 0;     // an extended key
  std::function<void(KESTRAcfg& cfg)> run;
};

struct SettingsScreen {
  std::string name;   // the menu item it opens from: "Pathnames (part 1)"
  std::string title;  // the window's title
  int width = 0;      // inner columns of the window
  int height = 0;     // inner rows; a page with rows below them scrolls
  int topic = 0;      // F1
  std::vector<FieldDef> fields;
  std::function<std::optional<LeaveNote>(const KESTRAcfg&)> on_leave;
  std::vector<FieldKey> keys;
};

// Runs `screen` on `cfg` with the cursor starting on field `first`, until Esc or F10.
void RunSettings(const SettingsScreen& screen, KESTRAcfg& cfg, int first = 0);

// The window of the running settings screen is drawn again, e.g. in new colours.
void RedrawSettingsWindow();

// Places a column of fields: row r of `rows` gets its prompt at column 2 and its value at
// `value_col`, one row apart from row `first_row` on.
void StackRows(std::vector<FieldDef>& fields, int value_col, int first_row = 1);

// A Yes/No switch (a byte).
FieldDef YesNo(std::uint16_t offset, std::string prompt, std::string help);

// A caption drawn in the column of the prompts.
FieldDef Label(std::string text);

// A screen of one column of `fields` (see StackRows), `width` columns wide and as tall as its
// rows, up to the 18 rows of the desktop (a longer one scrolls).
SettingsScreen StackedScreen(std::string name, std::string title, std::vector<FieldDef> fields,
                             int topic, int value_col, int width = 76);

}  // namespace ks
