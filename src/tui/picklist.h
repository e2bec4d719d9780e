// Pick lists: a list in a framed box from which one entry is chosen, or several are marked.
// Rows are fetched by callback, only as they are drawn, so a list of tens of thousands of
// entries costs no more than the rows on screen.
#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/fileareaset.h"
#include "common/groupset.h"

namespace ks {

struct PickList {
  std::string title;
  std::string key_line;  // status line, keys between tildes
  // Optional column captions above the rows, from the first text column (a multi list's
  // header covers its mark columns too).
  std::string header;
  int count = 0;
  std::function<std::string(int row)> row;  // text of row 0..count-1
  // Multi-select when set: one flag per row; Space marks or unmarks the highlighted row, F2
  // marks all or, when all are marked, unmarks all. Enter and Esc both end the list.
  std::vector<bool>* marks = nullptr;
  // Shown (with "Ok") instead of the list when count is 0.
  std::string empty_message;
  // Typing a character opens "Enter string to search for : " with it; the search returns the
  // row found from `from` on, or -1. By default rows are compared, case folded, by their start.
  std::function<int(std::string_view text, int from)> search;
  // Further extended keys (scan codes); true when handled (marks may have changed).
  std::function<bool(std::uint8_t scan)> on_key;
  // Extended keys (scan codes) that end the list: RunPickList returns `current` and
  // `exit_scan` tells the key (0 when Enter or Esc ended it).
  std::bitset<256> exit_keys;
  std::uint8_t exit_scan = 0;
  // An empty list is shown as an empty box (its exit keys still work) instead of
  // `empty_message`.
  bool show_empty = false;
  int current = 0;  // the highlighted row, in and out
  // Box: `width` inner columns (0 = widest row, at most the screen), up to `height` rows
  // (0 = as many as fit); centred unless left/top are given.
  int width = 0, height = 0;
  int left = 0, top = 0;
  int topic = 0;
};

// Runs the list; returns the row chosen with Enter, or -1 for Esc or an empty list. A
// multi-select list returns `current` for Enter too.
int RunPickList(PickList& list);

// The search prompt of every pick list.
inline constexpr std::string_view kSearchPrompt = "Enter string to search for : ";

// --- Groups and BBS file areas, as the screens know them -----------------------------------

struct GroupName {
  std::uint8_t number = 0;
  std::string name;
};

struct FileAreaName {
  std::uint16_t number = 0;
  std::string path;
  std::string name;
};

// Where the pick lists find the groups and the BBS file areas (set by the program; empty
// lists when unset).
std::function<std::vector<GroupName>()>& group_source();
std::function<std::vector<FileAreaName>()>& file_area_source();

// "Select group": the group chosen, or nothing on Esc or when there are no groups ("There are
// no groups defined").
std::optional<std::uint8_t> PickGroup(std::uint8_t current);

// "Select groups" with "~Space~-select ~F2~-(de)select all ~Esc~-done": edits `set`;
// true when it changed.
bool PickGroups(GroupSet& set);

// "Select file area": the area chosen, or nothing.
std::optional<FileAreaName> PickFileArea(std::uint16_t current);

// "File areas" with "~Space~-select ~F2~-(de)select all ~Esc~/~Enter~-done": edits `set`;
// true when it changed.
bool PickFileAreas(FileAreaSet& set);

// The numbers 0..count-1 for which `has` is true, as fields show sets: ascending, a run of
// three or more as a range, "1-3,7,9,10" ("" when there are none).
std::string NumberRangesText(int count, const std::function<bool(int)>& has);

// The text of a group set as a field shows it, e.g. "1-3,7".
std::string GroupSetText(const GroupSet& set);

}  // namespace ks
