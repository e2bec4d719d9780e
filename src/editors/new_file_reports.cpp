// "New file reports": the reports of newly arrived files (REPORTS).
#include <algorithm>
#include <cstring>

#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"
#include "editors/record_picks.h"
#include "tui/box.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kTopic = 14;
constexpr std::uint16_t kExportsOffset = offsetof(NewFileMgrRec, exports);

std::vector<NetAddr> ReadExports(const std::uint8_t* rec) {
  return ReadAddressList(rec, kExportsOffset, kExportSlots);
}

// Asks for one address in a small window; zone 0 when the user cleared it.
NetAddr AskAddress(NetAddr addr) {
  BoxOBJ box(20, 11, 59, 13, "Export to");
  box.Draw();
  EditPage page({{.type = Aka,
                  .col = 11,
                  .row = 1,
                  .offset = 0,
                  .size = 8,
                  .prompt = "System",
                  .help = "Network address to send the report to (empty=remove)",
                  .na_when_empty = true}});
  page.topic = kTopic;
  page.Run(reinterpret_cast<std::uint8_t*>(&addr), box.left(), box.top());
  box.Hide();
  return addr;
}

// The netmail export list: a list of the systems with a last row to add one; Enter edits the
// highlighted system (an emptied address removes it), Esc ends.
bool EditExports(std::uint8_t* rec) {
  std::vector<NetAddr> used = ReadExports(rec);
  const std::vector<NetAddr> before = used;
  int current = 0;
  for (;;) {
    const bool can_add = used.size() < kExportSlots;
    PickList list;
    list.title = "Export to";
    list.key_line = "~Enter~-edit/add ~Esc~-done";
    list.count = static_cast<int>(used.size()) + (can_add ? 1 : 0);
    list.row = [&used](int r) {
      return r < static_cast<int>(used.size()) ? FormatAddr(used[static_cast<std::size_t>(r)])
                                               : std::string("<add a system>");
    };
    list.width = 24;
    list.current = current;
    list.topic = kTopic;
    const int chosen = RunPickList(list);
    if (chosen < 0) break;
    current = chosen;
    const bool adding = chosen >= static_cast<int>(used.size());
    const NetAddr addr = AskAddress(adding ? NetAddr{} : used[static_cast<std::size_t>(chosen)]);
    if (!addr.IsSet()) {
      if (!adding) used.erase(used.begin() + chosen);
      continue;
    }
    const auto same = std::find(used.begin(), used.end(), addr);
    if (same != used.end() && same - used.begin() != chosen) {
      ErrorBox("This system is already in the list", kTopic);
      continue;
    }
    if (adding)
      used.push_back(addr);
    else
      used[static_cast<std::size_t>(chosen)] = addr;
  }
  ShowStatus("Systems to send the report to by netmail");
  if (used == before) return false;
  WriteAddressList(rec, kExportsOffset, kExportSlots, used);
  return true;
}

}  // namespace

std::optional<Refusal> CheckNewFileReport(const NewFileMgrRec& r) {
  using namespace report_page;
  // The group set is the first key: a report without groups would count as deleted.
  if (r.groups.Empty()) return Refusal{kGroups, "Choose the groups to include in this report"};
  const bool exports = std::any_of(std::begin(r.exports), std::end(r.exports),
                                   [](const NetAddr& a) { return a.IsSet(); });
  if (auto p = MsgAreaProblem(r.area, "Msg"); !p.empty()) return Refusal{kArea, p};
  if (r.area.type == mbNone && !exports)
    return Refusal{kArea, "The report needs a message area or systems to export it to", true};
  return std::nullopt;
}

void RunNewFileReports(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, "REPORTS", sizeof(NewFileMgrRec), 3, 5, 77, 17, "New file reports");
  DeclareKeys(mgr, RecordFileId::kReports);
  const int row_width = AddColumns(
      mgr, {{.type = GrpArray, .offset = 0, .length = 32, .width = 20, .caption = "Groups"},
            {.type = Str,
             .offset = offsetof(NewFileMgrRec, subject),
             .length = 73,
             .width = 40,
             .caption = "Subject"},
            {.type = Bol,
             .offset = offsetof(NewFileMgrRec, inactive),
             .length = 1,
             .width = 8,
             .caption = "InActive"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = GrpArray,
       .col = c,
       .row = 1,
       .offset = offsetof(NewFileMgrRec, groups),
       .size = 32,
       .prompt = "Groups",
       .help = "Groups to include in this report",
       .width = kLongWidth},
      InactiveField(c, 2, offsetof(NewFileMgrRec, inactive)),
      {.type = Str,
       .col = c,
       .row = 3,
       .offset = offsetof(NewFileMgrRec, from),
       .size = 35,
       .prompt = "From",
       .help = "Who the report is from"},
      {.type = Str,
       .col = c,
       .row = 4,
       .offset = offsetof(NewFileMgrRec, to),
       .size = 35,
       .prompt = "To",
       .help = "Who the report is to"},
      {.type = Str,
       .col = c,
       .row = 5,
       .offset = offsetof(NewFileMgrRec, subject),
       .size = 72,
       .prompt = "Subject",
       .help = "The subject of the report",
       .width = kLongWidth},
      MsgAreaField({.col = c,
                    .row = 6,
                    .offset = offsetof(NewFileMgrRec, area),
                    .prompt = "Msg area",
                    .help = "Msg area to write the report in"},
                   kTopic),
      UseAkaField({.col = c,
                   .row = 7,
                   .offset = offsetof(NewFileMgrRec, useAka),
                   .prompt = "Use aka",
                   .help = "Which address to write the report from"},
                  ctx.addresses),
      OriginField(c, 8, offsetof(NewFileMgrRec, origin)),
      {.type = Str,
       .col = c,
       .row = 9,
       .offset = offsetof(NewFileMgrRec, templateFile),
       .size = 12,
       .prompt = "Template",
       .help = "Template file to use for this report"},
      {.col = c,
       .row = 10,
       .offset = kExportsOffset,
       .prompt = "Export",
       .help = "Systems to send the report to by netmail",
       .width = kLongWidth,
       .select = EditExports,
       .show =
           [](const std::uint8_t* rec) { return AddressListText(ReadExports(rec), kLongWidth); }},
  });
  mgr.init = [](std::uint8_t* rec) {
    NewFileMgrRec r;
    std::memcpy(&r, rec, sizeof r);
    r.from = "KESTRA";
    r.to = "All";
    r.subject = "New files";
    std::memcpy(rec, &r, sizeof r);
  };
  mgr.check = [](std::uint8_t* rec, bool) {
    NewFileMgrRec r;
    std::memcpy(&r, rec, sizeof r);
    auto refusal = CheckNewFileReport(r);
    return Refuse(refusal);
  };
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  mgr.searchable = false;  // the key is a group set: nothing to type
  RunWithCompanion(mgr, ctx, "REPORTS", row_width);
}

}  // namespace ks
