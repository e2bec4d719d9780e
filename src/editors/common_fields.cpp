#include "editors/common_fields.h"

#include <cstddef>
#include <cstring>
#include <utility>

#include "tui/box.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {
namespace {

// A value too long for its cells ends in "..." so that the cut shows.
std::string Fit(std::string text, int width) {
  if (width <= 3 || static_cast<int>(text.size()) <= width) return text;
  text.resize(static_cast<std::size_t>(width - 3));
  return text + "...";
}

// Runs `fields` on `rec` in a framed box of `width` x `height` cells (inside the frame),
// centred on the desktop, until Esc; the values typed are kept.

// A sub-page or list opened by an action field leaves its own help on the status line; the
// field's help is shown again when it returns.
FieldDef RestoreStatus(FieldDef f) {
  auto select = std::move(f.select);
  f.select = [select = std::move(select), help = f.help](std::uint8_t* rec) {
    const bool changed = select(rec);
    ShowStatus(help);
    return changed;
  };
  return f;
}

}  // namespace

void RunSubPage(std::vector<FieldDef> fields, std::uint8_t* rec, const std::string& title,
                int width, int height, int topic, int first) {
  const int left = (80 - width - 2) / 2 + 1;
  const int top = 5 + (19 - height - 2) / 2;
  BoxOBJ box(left, top, left + width + 1, top + height + 1, title);
  box.Draw();
  EditPage page(std::move(fields));
  page.topic = topic;
  page.Draw(rec, left, top);
  page.Run(rec, left, top, first);
  box.Hide();
}

// --- Message areas -------------------------------------------------------------------------

const std::vector<std::string>& MsgBaseNames() {
  static const std::vector<std::string> names = {"None",  "Hudson",  "Squish", "JAM",
                                                 "*.MSG", "PCBoard", "EzyCom", "GoldBase"};
  return names;
}

bool UsesBoard(std::uint8_t type) {
  return type == mbHudson || type == mbEzyCom || type == mbGoldBase;
}

namespace {
bool UsesPath(std::uint8_t type) {
  return type >= mbSquish && type <= mbPcBoard;
}
}  // namespace

std::string MsgAreaText(const MsgArea& area) {
  const auto& names = MsgBaseNames();
  if (area.type >= names.size()) return "Unknown format";
  if (UsesBoard(area.type)) return names[area.type] + " board " + std::to_string(area.board);
  if (UsesPath(area.type)) return names[area.type] + " " + area.path.str();
  return names[area.type];
}

std::string MsgAreaProblem(const MsgArea& area, const std::string& name) {
  if (area.type >= MsgBaseNames().size()) return "The " + name + " area has an unknown format";
  if (UsesBoard(area.type) && area.board == 0) return "The " + name + " area needs a board number";
  // A Hudson message base has 200 boards.
  if (area.type == mbHudson && area.board > 200)
    return "Hudson boards are numbered 1 to 200 (" + name + " area)";
  if (UsesPath(area.type) && area.path.empty()) return "The " + name + " area needs a path";
  return {};
}

bool EditMsgArea(MsgArea& area, const std::string& title, int topic) {
  MsgArea work = area;
  auto* rec = reinterpret_cast<std::uint8_t*>(&work);
  RunSubPage(
      {
          {.type = Chrs,
           .col = 10,
           .row = 1,
           .offset = offsetof(MsgArea, type),
           .size = 1,
           .prompt = "Format",
           .help = "Message base format of the area (~Space~ or ~+~/~-~ to change)",
           .choices = MsgBaseNames()},
          {.type = Wrd,
           .col = 10,
           .row = 2,
           .offset = offsetof(MsgArea, board),
           .size = 2,
           .low = 0,
           .high = 65535,
           .prompt = "Board",
           .help = "Board number of the area (Hudson, EzyCom and GoldBase)",
           .applies = [](const std::uint8_t* r) { return UsesBoard(r[0]); }},
          {.type = Str,
           .col = 10,
           .row = 3,
           .offset = offsetof(MsgArea, path),
           .size = 79,
           .prompt = "Path",
           .help = "Path of the area (Squish, JAM and PCBoard: with the base name)",
           .width = 52,
           .applies = [](const std::uint8_t* r) { return UsesPath(r[0]); }},
      },
      rec, title, 64, 3, topic);
  if (std::memcmp(&work, &area, sizeof area) == 0) return false;
  area = work;
  return true;
}

FieldDef MsgAreaField(FieldDef f, int topic) {
  const std::uint16_t off = f.offset;
  const std::string title = f.prompt + " area";
  if (f.width == 0) f.width = kLongWidth;
  const int width = f.width;
  f.select = [off, title, topic](std::uint8_t* rec) {
    MsgArea area;
    std::memcpy(&area, rec + off, sizeof area);
    if (!EditMsgArea(area, title, topic)) return false;
    std::memcpy(rec + off, &area, sizeof area);
    return true;
  };
  f.show = [off, width](const std::uint8_t* rec) {
    MsgArea area;
    std::memcpy(&area, rec + off, sizeof area);
    return Fit(MsgAreaText(area), width);
  };
  return RestoreStatus(std::move(f));
}

// --- Addresses -----------------------------------------------------------------------------

FieldDef OriginField(int col, int row, std::uint16_t offset) {
  return {.type = Str,
          .col = col,
          .row = row,
          .offset = offset,
          .size = 60,
          .prompt = "Origin",
          .help = "Origin line",
          .width = kLongWidth};
}

std::string AkaText(const std::vector<NetAddr>& addresses, std::uint8_t index) {
  if (index < addresses.size() && addresses[index].IsSet()) return FormatAddr(addresses[index]);
  if (index == 0) return "Main address";
  return "Aka " + std::to_string(index) + " (not set)";
}

FieldDef UseAkaField(FieldDef f, std::vector<NetAddr> addresses) {
  const std::uint16_t off = f.offset;
  if (f.width == 0) f.width = 24;
  f.show = [off, addresses](const std::uint8_t* rec) { return AkaText(addresses, rec[off]); };
  f.select = [off, addresses](std::uint8_t* rec) {
    // Only the addresses in use are offered; the record keeps the address's own index.
    std::vector<std::uint8_t> index;
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < addresses.size() && i < 256; ++i) {
      if (!addresses[i].IsSet()) continue;
      index.push_back(static_cast<std::uint8_t>(i));
      std::string name = i == 0 ? "Main" : "Aka " + std::to_string(i);
      name.resize(8, ' ');
      rows.push_back(name + FormatAddr(addresses[i]));
    }
    PickList list;
    list.title = "Use aka";
    list.key_line = "~Enter~-select ~Esc~-cancel";
    list.count = static_cast<int>(rows.size());
    list.row = [&rows](int r) { return rows[static_cast<std::size_t>(r)]; };
    list.empty_message = "There are no addresses defined";
    for (std::size_t r = 0; r < index.size(); ++r)
      if (index[r] == rec[off]) list.current = static_cast<int>(r);
    const int chosen = RunPickList(list);
    if (chosen < 0 || index[static_cast<std::size_t>(chosen)] == rec[off]) return false;
    rec[off] = index[static_cast<std::size_t>(chosen)];
    return true;
  };
  return RestoreStatus(std::move(f));
}

// --- Switches ------------------------------------------------------------------------------

FieldDef InactiveField(int col, int row, std::uint16_t offset) {
  return {.type = Bol,
          .col = col,
          .row = row,
          .offset = offset,
          .size = 1,
          .prompt = "InActive",
          .help = "Should this area be temporarily disabled"};
}

// --- BBS file areas ------------------------------------------------------------------------

std::string FileAreaSetText(const FileAreaSet& set) {
  return NumberRangesText(static_cast<int>(FileAreaSet::kAreas),
                          [&](int n) { return set.Has(static_cast<std::size_t>(n)); });
}

FieldDef FileAreasField(FieldDef f) {
  const std::uint16_t off = f.offset;
  if (f.width == 0) f.width = kLongWidth;
  const int width = f.width;
  f.select = [off](std::uint8_t* rec) {
    FileAreaSet set;
    std::memcpy(&set, rec + off, sizeof set);
    if (!PickFileAreas(set)) return false;
    std::memcpy(rec + off, &set, sizeof set);
    return true;
  };
  f.show = [off, width](const std::uint8_t* rec) {
    FileAreaSet set;
    std::memcpy(&set, rec + off, sizeof set);
    const std::string text = FileAreaSetText(set);
    return text.empty() ? std::string("None") : Fit(text, width);
  };
  return RestoreStatus(std::move(f));
}

// --- Days of the week ----------------------------------------------------------------------

namespace {
constexpr const char* kDayNames[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                      "Thursday", "Friday", "Saturday"};
}  // namespace

std::string DaysText(std::uint8_t days) {
  days &= kAllDays;
  if (days == kAllDays) return "Every day";
  if (days == 0) return "Never";
  std::string text;
  for (int d = 0; d < 7; ++d) {
    if (!(days & (1u << d))) continue;
    if (!text.empty()) text += ' ';
    text += std::string(kDayNames[d], 3);
  }
  return text;
}

bool EditDays(std::uint8_t& days, int topic) {
  std::uint8_t work = days;
  std::vector<FieldDef> fields;
  for (int d = 0; d < 7; ++d)
    fields.push_back({.type = Bol,
                      .col = 14,
                      .row = d + 1,
                      .offset = 0,
                      .size = 1,
                      .prompt = kDayNames[d],
                      .help = std::string("Should the file be hatched on ") + kDayNames[d],
                      .mask = static_cast<std::uint16_t>(1u << d)});
  RunSubPage(std::move(fields), &work, "Hatch days", 20, 7, topic);
  if (work == days) return false;
  days = work;
  return true;
}

FieldDef DaysField(FieldDef f, int topic) {
  const std::uint16_t off = f.offset;
  if (f.width == 0) f.width = 28;
  f.select = [off, topic](std::uint8_t* rec) { return EditDays(rec[off], topic); };
  f.show = [off](const std::uint8_t* rec) { return DaysText(rec[off]); };
  return RestoreStatus(std::move(f));
}

// --- Setting up a list ---------------------------------------------------------------------

void DeclareKeys(ManagerOBJ& mgr, RecordFileId id) {
  DeclareKeys(mgr, FileDef(id).keys);
}

void DeclareKeys(ManagerOBJ& mgr, const KeySet& keys) {
  for (int i = 0; i < keys.count(); ++i)
    mgr.AddKey(keys[i].name, keys[i].type, keys[i].rec_offset, keys[i].length);
}

int AddColumns(ManagerOBJ& mgr, const std::vector<ListColumn>& columns) {
  int width = 0;
  for (const auto& c : columns) {
    mgr.AddColumn(c);
    width += c.width + 1;  // each column and the space that parts it from the next
  }
  return width > 0 ? width - 1 : 0;
}

void RunWithCompanion(ManagerOBJ& mgr, const ListContext& ctx, const std::string& base,
                      int row_width) {
  // Opened empty: Run sizes it to the index once the file pair is open.
  CompanionFile companion;
  companion.Open(CompanionName(ctx, base), static_cast<std::size_t>(1 + row_width), 0);
  mgr.Run(companion.is_open() ? &companion : nullptr);
}

int Refuse(const std::string& message, int field) {
  ErrorBox(message);
  return field;
}

int Refuse(const std::optional<Refusal>& refusal) {
  if (!refusal) return -1;
  if (!refusal->warning) return Refuse(refusal->message, refusal->field);
  return MessageBoxLines({refusal->message, "", "Save anyway?"}, {"Yes", "No"}) == 'Y'
             ? -1
             : refusal->field;
}

}  // namespace ks
