// "Group manager": the groups fileechos are gathered in (GRPFILE). A group record is a
// fileecho record, the defaults of the fileechos KESTRA adds to the group on its own, with the
// group's name behind it. A group whose number changes may be renumbered across the setup;
// a group deleted may take its fileechos, and their hatch and magic entries, along.
#include <cstddef>
#include <optional>

#include "common/fileutil.h"
#include "dbase/group_ops.h"
#include "dbase/maintain.h"
#include "dbase/maintenance_order.h"
#include "editors/common_fields.h"
#include "editors/fileecho_parts.h"
#include "editors/lists.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {

namespace {

using namespace fileecho;

constexpr int kGroupTopic = 39;
constexpr std::uint16_t kGroupOffset = offsetof(FixedRec, group);

// The fields of the group itself, above its fileecho defaults.
std::vector<FieldDef> GroupFields() {
  constexpr int l = kLeftValue, r = kRightValue, rp = kRightPrompt;
  return {
      {.type = Int,
       .col = l,
       .row = 1,
       .offset = kGroupOffset,
       .size = 1,
       .low = 0,
       .high = 255,
       .prompt = "Group",
       .help = "Group to set defaults for"},
      {.type = Str,
       .col = l,
       .row = 2,
       .offset = offsetof(GrpFileMgrRec, name),
       .size = 25,
       .prompt = "Name",
       .help = "Group name"},
      {.type = Str,
       .col = l,
       .row = 3,
       .offset = offsetof(FixedRec, tag),
       .size = 40,
       .prompt = "Mask",
       .help = "Fileecho mask (WIN*, etc)",
       .upper = true},
      {.type = Int,
       .col = l,
       .row = 4,
       .offset = offsetof(FixedRec, groupUplink),
       .size = 1,
       .low = 0,
       .high = 20,
       .prompt = "Uplink",
       .help = "Uplink for this group"},
      {.type = Bol,
       .col = r,
       .row = 4,
       .offset = offsetof(FixedRec, groupUnique),
       .size = 1,
       .prompt = "Unique",
       .help = "Create a unique directory for each fileecho added for this group",
       .prompt_col = rp},
      {.type = Bol,
       .col = l,
       .row = 5,
       .offset = offsetof(FixedRec, groupAddBbs),
       .size = 1,
       .prompt = "Add BBS",
       .help = "If new areas should be added to BBS"},
      // The same two bytes as "Max file" below.
      {.type = Wrd,
       .col = r,
       .row = 5,
       .offset = offsetof(FixedRec, maxFiles),
       .size = 2,
       .low = 0,
       .high = 32000,
       .prompt = "BBS Mask",
       .help = "The filearea number that should be used as a template for areas added to BBS",
       .prompt_col = rp},
  };
}

// Rebuilds the indexes of `files` in `dir`, each under its status line; a file that is not
// there is not created.
void RebuildIndexes(const std::string& dir, std::size_t systems,
                    std::initializer_list<RecordFileId> files) {
  for (const RecordFileId id : files) {
    const RecordFileDef& def = FileDef(id);
    if (!FileExists(DataFileName(dir, def.base))) continue;
    ShowStatus(MaintenanceStep(id).index_status);
    scr().Flush();
    BuildIndex(dir, def.base, def.RecordSize(systems), def.keys);
  }
}

// After a save: a group that had another number may take its old number's places along.
void Renumber(const ListContext& ctx, std::optional<std::uint8_t> old_group,
              const std::uint8_t* rec) {
  const std::uint8_t group = rec[kGroupOffset];
  if (!old_group || *old_group == group) return;
  if (!AskYesNo("Replace old group number with/new group number in rest of setup?", kGroupTopic))
    return;
  int places = 0;
  for (GroupSet* set : ctx.config_group_sets)
    if (set && set->Renumber(*old_group, group)) ++places;
  const auto systems = static_cast<std::size_t>(ctx.systems_per_area);
  const RenumberCount files = RenumberGroupInFiles(ctx.data_dir, systems, *old_group, group);
  places += files.total();
  // The group is a key of the fileechos, the group set the first key of the reports.
  if (files.fileechos > 0) RebuildIndexes(ctx.data_dir, systems, {RecordFileId::kFAreas});
  if (files.reports > 0) RebuildIndexes(ctx.data_dir, systems, {RecordFileId::kReports});
  MessageBox("The group was updated in " + std::to_string(places) + " place(s)", {"Ok"},
             kGroupTopic);
}

bool DeleteGroup(const ListContext& ctx, const std::uint8_t* rec) {
  if (!AskYesNo("Delete group from rest of setup?", kGroupTopic)) return true;
  const auto systems = static_cast<std::size_t>(ctx.systems_per_area);
  const GroupRemoval removed = DeleteGroupFromFiles(ctx.data_dir, systems, rec[kGroupOffset]);
  MessageBox("Removed " + std::to_string(removed.total()) +
                 " fileechos, hatch, and/ magicfile name entries",
             {"Ok"}, kGroupTopic);
  if (removed.total() > 0)
    RebuildIndexes(ctx.data_dir, systems,
                   {RecordFileId::kFAreas, RecordFileId::kMagic, RecordFileId::kHatch});
  return true;
}

}  // namespace

void RunGroupManager(const ListContext& ctx) {
  // The defaults always hold as many systems as a fileecho of the default size.
  ListContext defaults = ctx;
  defaults.systems_per_area = kDefaultSystemsPerArea;
  ManagerOBJ mgr(ctx.data_dir, "GRPFILE", sizeof(GrpFileMgrRec), 4, 3, 77,
                 ctx.bbs_file_database ? 23 : 22, "Group manager");
  DeclareKeys(mgr, RecordFileId::kGroups);
  const int row_width = AddColumns(
      mgr, {{.type = Int, .offset = kGroupOffset, .length = 1, .width = 5, .caption = "Group"},
            {.type = Str, .offset = 0, .length = 41, .width = 35, .caption = "Mask"},
            {.type = Str,
             .offset = offsetof(GrpFileMgrRec, name),
             .length = 26,
             .width = 30,
             .caption = "Group name"}});
  const FormSpec form{.desc_row = 7,
                      .with_group = false,
                      .advanced_help = "Advanced fileecho options",
                      .raid_help = "Raid flags"};
  mgr.AddFields(GroupFields());
  mgr.AddFields(DefaultsFields(defaults, form));
  mgr.AddHotKey(
      {.col = kLeftValue, .row = DestRow(form), .scan = key::kF6, .proc = PickDestination});
  mgr.init = InitFileecho;
  std::optional<std::uint8_t> old_group;
  mgr.on_open = [&old_group](const std::uint8_t* rec, bool adding) {
    old_group = adding ? std::nullopt : std::optional<std::uint8_t>(rec[kGroupOffset]);
  };
  mgr.after_save = [&ctx, &old_group](const std::uint8_t* rec, bool) {
    Renumber(ctx, old_group, rec);
  };
  mgr.on_delete = [&ctx](const std::uint8_t* rec) { return DeleteGroup(ctx, rec); };
  mgr.edit = [&defaults](std::uint8_t* rec) { return RunAdvancedPage(rec, defaults); };
  AddFileechoGlobalEdit(mgr, defaults);
  mgr.topic = kGroupTopic;
  mgr.max_entries = 256;
  mgr.key_line = "~F2~-global ~F3~-advanced";
  RunWithCompanion(mgr, ctx, "GRPFILE", row_width);
}

}  // namespace ks
