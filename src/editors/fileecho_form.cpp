// The fields a fileecho record and a group's fileecho defaults share on their edit pages, from
// "Desc" down to "Systems", and the list of BBS file areas that "Dest" offers.
#include <cstddef>

#include "common/fileutil.h"
#include "editors/common_fields.h"
#include "editors/fileecho_parts.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks::fileecho {

namespace {

constexpr int kLeftWidth = kRightPrompt - kLeftValue - 1;  // values of the left column
constexpr int kRightWidth = 27;

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

}  // namespace

std::vector<FieldDef> DefaultsFields(const ListContext& ctx, const FormSpec& form) {
  // Rows below "Dest" follow from the fileecho's own "Group" row, when there is one, and the
  // row of the two BBS file database switches, which is left out without such a database.
  const int fdb_row = DestRow(form) + (form.with_group ? 2 : 1);
  const int d = fdb_row - 6 + (ctx.bbs_file_database ? 0 : -1);
  constexpr int l = kLeftValue, r = kRightValue, rp = kRightPrompt;
  std::vector<FieldDef> f = {
      {.type = Str,
       .col = l,
       .row = form.desc_row,
       .offset = offsetof(FixedRec, description),
       .size = 55,
       .prompt = "Desc",
       .help = "Fileecho description"},
      {.type = Path,
       .col = l,
       .row = DestRow(form),
       .offset = offsetof(FixedRec, destination),
       .size = 100,
       .prompt = "Dest",
       .help = "Destination directory                                  ~F6~-list of BBS file areas",
       .width = 60},
  };
  if (form.with_group)
    f.push_back({.type = Int,
                 .col = l,
                 .row = DestRow(form) + 1,
                 .offset = offsetof(FixedRec, group),
                 .size = 1,
                 .low = 0,
                 .high = 255,
                 .prompt = "Group",
                 .help = "Group",
                 .group = true});
  if (ctx.bbs_file_database) {
    f.push_back({.type = Bol,
                 .col = l,
                 .row = fdb_row,
                 .offset = kOptionsOffset,
                 .size = 2,
                 .prompt = "Use FDB",
                 .help = "Update BBS specific file data base",
                 .mask = kFeUseFdb,
                 .applies = NotPassThrough});
    f.push_back({.type = Bol,
                 .col = r,
                 .row = fdb_row,
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
      l, 10 + d, 2, kLeftWidth, "Advanced", form.advanced_help,
      [&ctx](std::uint8_t* rec) { return RunAdvancedPage(rec, ctx); },
      [&ctx](const std::uint8_t* rec) { return AdvancedText(rec, ctx); }));
  f.push_back(Action(r, 10 + d, rp, kRightWidth, "RAID", form.raid_help, RunRaidPage, RaidText));
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
  const int capacity = form.capacity;
  f.push_back(Action(
      l, 12 + d, 2, 60, "Systems", "Connected systems",
      [capacity](std::uint8_t* rec) { return EditSystems(rec, capacity); },
      [capacity](const std::uint8_t* rec) { return SystemsText(rec, capacity, 60); }));
  return f;
}

std::vector<FileAreaName> BbsFileAreas() {
  return file_area_source() ? file_area_source()() : std::vector<FileAreaName>{};
}

// F6 on "Dest": the path of a BBS file area becomes the destination.
bool PickDestination(std::uint8_t* rec) {
  FixedRec r = Fixed(rec);
  const std::string dest = r.destination.str();
  std::uint16_t current = 0;
  for (const auto& a : BbsFileAreas())
    if (!dest.empty() && AddSlash(a.path) == dest) current = a.number;
  const auto area = PickFileArea(current);
  ShowStatus("Destination directory                                  ~F6~-list of BBS file areas");
  if (!area) return false;
  r.destination.set(AddSlash(area->path));
  PutFixed(rec, r);
  return true;
}

}  // namespace ks::fileecho
