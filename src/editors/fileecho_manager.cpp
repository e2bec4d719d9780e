// "Fileecho manager": the fileechos KESTRA processes (FAREAS). The list shows one fileecho at a
// time with its edit page; the advanced switches, cost sharing, RAID flags and connected
// systems have pages of their own. Saving checks the tag and the destination, and a changed
// destination may take the listed files along; deleting may take the fileecho's hatch and
// magic entries along.
#include <cstddef>
#include <cstring>

#include "common/fileutil.h"
#include "editors/common_fields.h"
#include "editors/fileecho_parts.h"
#include "editors/lists.h"
#include "tui/colours.h"
#include "tui/dialog.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

using namespace fileecho;

// Page fields the check names; the rest follow in page order.
constexpr int kTagField = 0;
constexpr int kDestField = 2;

constexpr int kLeftValue = 11, kRightPrompt = 31, kRightValue = 45;
constexpr int kLeftWidth = kRightPrompt - kLeftValue - 1;  // values of the left column
constexpr int kRightWidth = 27;
constexpr int kDestRow = 4;
constexpr int kMarkerCol = 62, kMarkerRow = 2;

const std::vector<std::string>& LongDescNames() {
  static const std::vector<std::string> names = {"Normal", "FILE_ID.DIZ/Normal", "LDESC/Normal",
                                                 "FILE_ID.DIZ/LDESC", "LDESC/FILE_ID.DIZ"};
  return names;
}

bool NotPassThrough(const std::uint8_t* rec) {
  return !PassThrough(rec);
}

// An action field of the edit page: Enter opens `open`, the field shows `show`.
FieldDef Action(int col, int row, int prompt_col, int width, std::string prompt, std::string help,
                std::function<bool(std::uint8_t*)> open,
                std::function<std::string(const std::uint8_t*)> show) {
  const std::string status = help;
  return {.col = col,
          .row = row,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .prompt_col = prompt_col,
          .width = width,
          .select =
              [open = std::move(open), status](std::uint8_t* rec) {
                const bool changed = open(rec);
                ShowStatus(status);  // the page it opened left its own help there
                return changed;
              },
          .show = std::move(show)};
}

std::vector<FieldDef> EditPageFields(const ListContext& ctx) {
  // Without a BBS file database the row of its two switches is left out and every row below
  // it moves up by one.
  const int d = ctx.bbs_file_database ? 0 : -1;
  constexpr int l = kLeftValue, r = kRightValue, rp = kRightPrompt;
  std::vector<FieldDef> f = {
      {.type = Str,
       .col = l,
       .row = 2,
       .offset = offsetof(FixedRec, tag),
       .size = 40,
       .prompt = "Tag",
       .help = "Fileecho tag",
       .upper = true},
      {.type = Str,
       .col = l,
       .row = 3,
       .offset = offsetof(FixedRec, description),
       .size = 55,
       .prompt = "Desc",
       .help = "Fileecho description"},
      {.type = Path,
       .col = l,
       .row = kDestRow,
       .offset = offsetof(FixedRec, destination),
       .size = 100,
       .prompt = "Dest",
       .help = "Destination directory                                  ~F6~-list of BBS file areas",
       .width = 60},
      {.type = Int,
       .col = l,
       .row = 5,
       .offset = offsetof(FixedRec, group),
       .size = 1,
       .low = 0,
       .high = 255,
       .prompt = "Group",
       .help = "Group",
       .group = true},
  };
  if (ctx.bbs_file_database) {
    f.push_back({.type = Bol,
                 .col = l,
                 .row = 6,
                 .offset = kOptionsOffset,
                 .size = 2,
                 .prompt = "Use FDB",
                 .help = "Update BBS specific file data base",
                 .mask = kFeUseFdb,
                 .applies = NotPassThrough});
    f.push_back({.type = Bol,
                 .col = r,
                 .row = 6,
                 .offset = kOptions2Offset,
                 .size = 2,
                 .prompt = "Use FBBS",
                 .help = "Update FILES.BBS file database file",
                 .prompt_col = rp,
                 .mask = kFe2UseFbbs,
                 .applies = NotPassThrough});
  }
  f.push_back({.type = Int,
               .col = l,
               .row = 7 + d,
               .offset = offsetof(FixedRec, keep),
               .size = 2,
               .low = -1,
               .high = 99,
               .prompt = "Keep #",
               .help = "Number of files to keep, (0=all -1=all and no sort)"});
  f.push_back(UseAkaField({.col = r,
                           .row = 7 + d,
                           .offset = offsetof(FixedRec, useAka),
                           .prompt = "Use aka",
                           .help = "Aka to use for this area",
                           .prompt_col = rp},
                          ctx.addresses));
  f.push_back({.type = Str,
               .col = l,
               .row = 8 + d,
               .offset = offsetof(FixedRec, templateFile),
               .size = 12,
               .prompt = "Template",
               .help = "Template file to include in netmail announcement when forwarding files"});
  f.push_back({.type = Chrs,
               .col = r,
               .row = 8 + d,
               .offset = offsetof(FixedRec, longDesc),
               .size = 1,
               .prompt = "LongDesc",
               .help = "The type of long description and priority",
               .prompt_col = rp,
               .choices = LongDescNames()});
  f.push_back({.type = Str,
               .col = l,
               .row = 9 + d,
               .offset = offsetof(FixedRec, banner),
               .size = 60,
               .prompt = "Banner",
               .help = "Banner to add to all archives processed in this area",
               .width = kLeftWidth});
  f.push_back(
      Action(r, 9 + d, rp, kRightWidth, "Cost", "Cost sharing menu", RunCostPage, CostText));
  f.push_back(Action(
      l, 10 + d, 2, kLeftWidth, "Advanced", "Advanced fileecho options menu",
      [&ctx](std::uint8_t* rec) { return RunAdvancedPage(rec, ctx); },
      [&ctx](const std::uint8_t* rec) { return AdvancedText(rec, ctx); }));
  f.push_back(Action(r, 10 + d, rp, kRightWidth, "RAID", "RAID flags menu", RunRaidPage, RaidText));
  f.push_back({.type = Wrd,
               .col = l,
               .row = 11 + d,
               .offset = offsetof(FixedRec, maxDays),
               .size = 2,
               .low = 0,
               .high = 1825,
               .prompt = "Max days",
               .help = "Maximum number of days to keep a file (~1~-~1825~, ~0~=infinite)"});
  f.push_back({.type = Wrd,
               .col = r,
               .row = 11 + d,
               .offset = offsetof(FixedRec, maxSize),
               .size = 2,
               .low = 0,
               .high = 65535,
               .prompt = "Max size",
               .help = "Maximum number of kb's in directory (~1~-~65535~, ~0~=infinite)",
               .prompt_col = rp});
  f.push_back({.type = Wrd,
               .col = 65,
               .row = 11 + d,
               .offset = offsetof(FixedRec, maxFiles),
               .size = 2,
               .low = 0,
               .high = 16383,
               .prompt = "Max file",
               .help = "Maximum number of files to keep in directory (~1~-~16383~, ~0~=infinite)",
               .prompt_col = 51});
  const int capacity = ctx.systems_per_area;
  f.push_back(Action(
      l, 12 + d, 2, 60, "Systems", "Connected systems",
      [capacity](std::uint8_t* rec) { return EditSystems(rec, capacity); },
      [capacity](const std::uint8_t* rec) { return SystemsText(rec, capacity, 60); }));
  return f;
}

std::vector<FileAreaName> FileAreas() {
  return file_area_source() ? file_area_source()() : std::vector<FileAreaName>{};
}

// F6 on "Dest": the path of a BBS file area becomes the destination.
bool PickDestination(std::uint8_t* rec) {
  FixedRec r = Fixed(rec);
  const std::string dest = r.destination.str();
  std::uint16_t current = 0;
  for (const auto& a : FileAreas())
    if (!dest.empty() && AddSlash(a.path) == dest) current = a.number;
  const auto area = PickFileArea(current);
  ShowStatus("Destination directory                                  ~F6~-list of BBS file areas");
  if (!area) return false;
  r.destination.set(AddSlash(area->path));
  PutFixed(rec, r);
  return true;
}

bool InFileAreaDatabase(const std::string& dest) {
  for (const auto& a : FileAreas())
    if (AddSlash(a.path) == AddSlash(dest)) return true;
  return false;
}

// True when another fileecho than the one at `self` (-1 for none) has a different tag and
// the destination `dest`.
bool DestinationShared(ksDataBase& db, const FixedRec& rec, int self) {
  const std::string tag = rec.tag.str(), dest = rec.destination.str();
  std::vector<std::uint8_t> other(db.record_size());
  for (int i = 0; i < db.count(); ++i) {
    if (i == self || !db.ReadRecord(i, other.data())) continue;
    const FixedRec o = Fixed(other.data());
    if (o.tag.str() != tag && o.destination.str() == dest) return true;
  }
  return false;
}

// The check on saving: the errors keep the page open on the field at fault; the warnings
// only inform. A destination that changed may then take the listed files along.
int CheckFileecho(ManagerOBJ& mgr, const ListContext& ctx, std::uint8_t* rec, bool adding) {
  const FixedRec r = Fixed(rec);
  if (r.tag.empty()) return Refuse("You must specify a fileecho name", kTagField);
  const bool pass = r.Has(kFePassThrough);
  const std::string dest = r.destination.str();
  if (!pass && dest.empty())
    return Refuse("You must specify a valid destination directory", kDestField);
  if (ctx.bbs_file_database && r.Has(kFeUseFdb) && !pass && !InFileAreaDatabase(dest))
    MessageBox("Could not find destination directory/in filearea database", {"Ok"}, kTopic);
  ksDataBase& db = mgr.db();
  const int self = adding ? -1 : db.current();
  if (!pass && DestinationShared(db, r, self))
    MessageBox("This destination directory is also/used in at least one other fileecho", {"Ok"},
               kTopic);
  // A new fileecho (a copy too) has no files of its own to move yet.
  std::string old_dest;
  std::vector<std::uint8_t> old(db.record_size());
  if (self >= 0 && db.ReadRecord(self, old.data())) old_dest = Fixed(old.data()).destination.str();
  // A save the duplicate check will refuse moves nothing: it is asked again on the next try.
  if (pass || dest.empty() || old_dest.empty() || old_dest == dest || db.IsDuplicate(rec, self))
    return -1;
  if (!AskYesNo("Would you like to move the files to/the new location?", kTopic)) return -1;
  ShowStatus("~Working...~");
  scr().Flush();
  const int moved = MoveListedFiles(old_dest, dest);
  MessageBox("Moved " + std::to_string(moved) +
                 " file(s).//Only files in listed in the File database have been moved.//"
                 "The other files and the old File database have not been deleted.",
             {"Ok"}, kTopic);
  return -1;
}

bool DeleteFileecho(const ListContext& ctx, const std::uint8_t* rec) {
  if (AskYesNo("Delete hatch and magic filename entries/for this fileecho?", kTopic)) {
    const int removed = RemoveHatchAndMagic(ctx.data_dir, Fixed(rec).tag.str());
    MessageBox("Removed " + std::to_string(removed) + " hatch and magicfile name entries", {"Ok"},
               kTopic);
  }
  return true;
}

// The group filter of the marking list: the fileechos of the chosen groups.
std::function<bool(const std::uint8_t*)> GroupFilter() {
  GroupSet set;
  {
    const Dialog caption(24, 20, 56, 22, "");
    scr().WriteStr(26, 21, ui().colours[kWindowText], "Groups to include in search");
    PickGroups(set);
  }
  if (set.Empty()) return {};
  return [set](const std::uint8_t* rec) { return set.Has(rec[offsetof(FixedRec, group)]); };
}

void ShowMarker(const std::uint8_t* rec, int left, int top) {
  const auto& c = ui().colours;
  if (Fixed(rec).Has2(kFe2AutoAdded))
    scr().WriteStr(left + kMarkerCol, top + kMarkerRow, c[kWindowSelect], "auto-added", 10);
  else
    scr().WriteStr(left + kMarkerCol, top + kMarkerRow, c[kWindowText], "", 10);
}

}  // namespace

void RunFileechoManager(const ListContext& ctx) {
  const auto systems = static_cast<std::size_t>(ctx.systems_per_area);
  ManagerOBJ mgr(ctx.data_dir, "FAREAS", FileechoRecordSize(systems), 4, 4, 77,
                 ctx.bbs_file_database ? 22 : 21, "Fileecho manager");
  DeclareKeys(mgr, RecordFileId::kFAreas);
  const int row_width = AddColumns(
      mgr, {{.type = Str, .offset = 0, .length = 41, .width = 30, .caption = " Fileecho"},
            {.type = Str,
             .offset = offsetof(FixedRec, description),
             .length = 56,
             .width = 40,
             .caption = " Description"}});
  mgr.AddFields(EditPageFields(ctx));
  mgr.AddHotKey({.col = kLeftValue, .row = kDestRow, .scan = key::kF6, .proc = PickDestination});
  mgr.init = [](std::uint8_t* rec) {
    FixedRec r = Fixed(rec);
    r.options = kFeAnnounce | kFeDupeCheck | kFeVisible;
    PutFixed(rec, r);
  };
  mgr.check = [&mgr, &ctx](std::uint8_t* rec, bool adding) {
    return CheckFileecho(mgr, ctx, rec, adding);
  };
  mgr.on_delete = [&ctx](const std::uint8_t* rec) { return DeleteFileecho(ctx, rec); };
  mgr.display = ShowMarker;
  mgr.edit = [&ctx](std::uint8_t* rec) { return RunAdvancedPage(rec, ctx); };
  mgr.mark_filter = GroupFilter;
  AddFileechoGlobalEdit(mgr, ctx);
  mgr.topic = kTopic;
  mgr.max_entries = 65000;
  mgr.key_line = "~F2~-global ~F3~-advanced";
  RunWithCompanion(mgr, ctx, "FAREAS", row_width);
}

}  // namespace ks
