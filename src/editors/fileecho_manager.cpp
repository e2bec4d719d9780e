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

constexpr int kMarkerCol = 62, kMarkerRow = 2;

bool InFileAreaDatabase(const std::string& dest) {
  for (const auto& a : BbsFileAreas())
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
  const FormSpec form{.capacity = ctx.systems_per_area};
  mgr.AddField({.type = Str,
                .col = kLeftValue,
                .row = 2,
                .offset = offsetof(FixedRec, tag),
                .size = 40,
                .prompt = "Tag",
                .help = "Fileecho tag",
                .upper = true});
  mgr.AddFields(DefaultsFields(ctx, form));
  mgr.AddHotKey(
      {.col = kLeftValue, .row = DestRow(form), .scan = key::kF6, .proc = PickDestination});
  mgr.init = InitFileecho;
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
