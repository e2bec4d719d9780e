#include "editors/record_picks.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "dbase/recordfile.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kStatusWidth = 80;
constexpr std::size_t kTagCols = 30;  // as the fileecho manager's browse list
constexpr std::size_t kAddrCols =
    23;  // the widest address, 5:5/5.5 in five digits each, and a blank

std::string Pad(std::string s, std::size_t width) {
  s.resize(std::max(s.size(), width), ' ');
  return s;
}

bool Has(const std::vector<NetAddr>& list, const NetAddr& a) {
  return std::find(list.begin(), list.end(), a) != list.end();
}

}  // namespace

// --- Address lists ---------------------------------------------------------------------------

std::vector<NetAddr> ReadAddressList(const std::uint8_t* rec, std::uint16_t offset,
                                     std::size_t slots) {
  std::vector<NetAddr> used;
  for (std::size_t i = 0; i < slots; ++i) {
    NetAddr a;
    std::memcpy(&a, rec + offset + i * sizeof a, sizeof a);
    if (a.IsSet()) used.push_back(a);
  }
  return used;
}

void WriteAddressList(std::uint8_t* rec, std::uint16_t offset, std::size_t slots,
                      const std::vector<NetAddr>& used) {
  for (std::size_t i = 0; i < slots; ++i) {
    const NetAddr a = i < used.size() ? used[i] : NetAddr{};
    std::memcpy(rec + offset + i * sizeof a, &a, sizeof a);
  }
}

std::string AddressListText(const std::vector<NetAddr>& used, int width) {
  if (used.empty()) return "None";
  std::string text;
  for (const auto& a : used) text += (text.empty() ? "" : " ") + FormatAddr(a);
  if (static_cast<int>(text.size()) > width) {
    const std::string count = std::to_string(used.size()) + " systems: ";
    const int room = std::max(0, width - static_cast<int>(count.size()) - 3);
    text = count + text.substr(0, static_cast<std::size_t>(room)) + "...";
  }
  return text;
}

// --- Pick lists ------------------------------------------------------------------------------

std::optional<std::string> PickFileecho(const ListContext& ctx, std::string_view current,
                                        bool all) {
  TFAreasFile areas(static_cast<std::size_t>(ctx.systems_per_area));
  areas.Open(ctx.data_dir);  // a missing pair lists no fileechos
  const int first = all ? 1 : 0;
  std::vector<std::uint8_t> rec(areas.record_size());
  const auto tag = [&areas](int i) { return areas.GetIndex(i).tag.str(); };
  PickList list;
  list.title = "Select fileecho";
  list.key_line = "~Enter~-select ~Esc~-cancel";
  list.header = Pad("Fileecho", kTagCols + 1) + "Description";
  list.count = first + areas.Count();
  list.row = [&](int r) {
    if (r < first) return std::string(kAllFileechos);
    std::string desc;
    if (areas.ReadRecordBytes(r - first, rec.data()))
      desc = ReadPStr(rec.data() + offsetof(FileechoRecord<1>, description), 55);
    return Pad(tag(r - first), kTagCols) + " " + desc;
  };
  list.empty_message = "There are no fileechos defined";
  if (!current.empty() && current != kAllFileechos) {
    const int found = areas.Find(current);
    if (found >= 0) list.current = first + found;
  }
  const int chosen = RunPickList(list);
  if (chosen < 0) return std::nullopt;
  return chosen < first ? std::string(kAllFileechos) : tag(chosen - first);
}

bool PickSystems(const ListContext& ctx, std::vector<NetAddr>& chosen, std::size_t limit) {
  TNodeFile nodes;
  nodes.Open(ctx.data_dir);  // a missing pair lists only the addresses already chosen
  std::vector<NetAddr> rows;
  for (int i = 0; i < nodes.Count(); ++i) rows.push_back(nodes.GetIndex(i).address);
  const int known = static_cast<int>(rows.size());
  for (const auto& a : chosen)
    if (!Has(rows, a)) rows.push_back(a);
  std::vector<bool> marks(rows.size());
  for (std::size_t r = 0; r < rows.size(); ++r) marks[r] = Has(chosen, rows[r]);

  PickList list;
  list.title = "Select systems";
  list.key_line = "~Space~-select ~F2~-(de)select all ~Esc~/~Enter~-done";
  list.header = "  " + Pad("System", kAddrCols) + "Sysop";  // over the mark columns too
  list.count = static_cast<int>(rows.size());
  list.marks = &marks;
  list.row = [&](int r) {
    std::string sysop = "(not in the node manager)";
    NodeMGRrec node;
    if (r < known && nodes.ReadRecord(r, node)) sysop = node.sysop.str();
    return Pad(FormatAddr(rows[static_cast<std::size_t>(r)]), kAddrCols) + sysop;
  };
  list.empty_message = "There are no systems defined";
  RunPickList(list);

  std::vector<NetAddr> result;
  for (const auto& a : chosen) {
    const auto r = std::find(rows.begin(), rows.end(), a) - rows.begin();
    if (marks[static_cast<std::size_t>(r)]) result.push_back(a);
  }
  for (std::size_t r = 0; r < rows.size(); ++r)
    if (marks[r] && !Has(result, rows[r])) result.push_back(rows[r]);
  if (result.size() > limit) {
    ErrorBox("Only the first " + std::to_string(limit) + " systems are kept");
    result.resize(limit);
  }
  if (result == chosen) return false;
  chosen = std::move(result);
  return true;
}

// --- Fields ----------------------------------------------------------------------------------

std::string WithListKey(std::string_view help, std::string_view what) {
  const std::string key = "F6-list of " + std::string(what);
  const int gap = kStatusWidth - static_cast<int>(help.size() + key.size());
  return std::string(help) + std::string(static_cast<std::size_t>(std::max(1, gap)), ' ') + "~F6~" +
         key.substr(2);
}

FieldDef FileechoField(FieldDef f) {
  f.type = Str;
  f.upper = true;
  f.help = WithListKey(f.help, "fileechos");
  return f;
}

ManagerHotKey FileechoHotKey(const ListContext& ctx, const FieldDef& f, bool all) {
  const std::uint16_t off = f.offset;
  const std::size_t size = f.size;
  return {.col = f.col,
          .row = f.row,
          .scan = key::kF6,
          .proc = [&ctx, off, size, all](std::uint8_t* rec) {
            const std::string current = ReadPStr(rec + off, size);
            const auto tag = PickFileecho(ctx, current, all);
            if (!tag || *tag == current) return false;
            const std::string value = tag->substr(0, size);
            rec[off] = static_cast<std::uint8_t>(value.size());
            std::memset(rec + off + 1, 0, size);
            std::memcpy(rec + off + 1, value.data(), value.size());
            return true;
          }};
}

FieldDef SystemsField(FieldDef f, const ListContext& ctx, std::size_t slots) {
  const std::uint16_t off = f.offset;
  const int width = f.width > 0 ? f.width : 40;
  f.width = width;
  f.select = [&ctx, off, slots, help = f.help](std::uint8_t* rec) {
    std::vector<NetAddr> used = ReadAddressList(rec, off, slots);
    const bool changed = PickSystems(ctx, used, slots);
    if (changed) WriteAddressList(rec, off, slots, used);
    ShowStatus(help);  // the list left its own keys there
    return changed;
  };
  f.show = [off, slots, width](const std::uint8_t* rec) {
    return AddressListText(ReadAddressList(rec, off, slots), width);
  };
  return f;
}

}  // namespace ks
