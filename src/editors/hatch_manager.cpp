// "Hatch manager": the files KESTRA sends out into fileechos of its own accord (HATCH).
#include <cstring>

#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"

namespace ks {

namespace {
constexpr int kTopic = 16;
}  // namespace

std::optional<Refusal> CheckHatchEntry(const HatchMGRrec& r) {
  using namespace hatch_page;
  if (r.area.empty()) return Refusal{kArea, "Enter the fileecho to hatch the file into"};
  if (r.fileSpec.empty()) return Refusal{kFile, "Enter the file specification to hatch", true};
  if ((r.days & kAllDays) == 0) return Refusal{kDays, "Choose at least one day to hatch on", true};
  return std::nullopt;
}

void RunHatchManager(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, "HATCH", sizeof(HatchMGRrec), 3, 5, 77, 15, "Hatch manager");
  DeclareKeys(mgr, RecordFileId::kHatch);
  const int row_width =
      AddColumns(mgr, {{.type = Str, .offset = 0, .length = 41, .width = 30, .caption = "Fileecho"},
                       {.type = Str,
                        .offset = offsetof(HatchMGRrec, fileSpec),
                        .length = 80,
                        .width = 40,
                        .caption = "File"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = Str,
       .col = c,
       .row = 1,
       .offset = offsetof(HatchMGRrec, area),
       .size = 40,
       .prompt = "Fileecho area",
       .help = "Fileecho area",
       .upper = true},
      {.type = Str,
       .col = c,
       .row = 2,
       .offset = offsetof(HatchMGRrec, fileSpec),
       .size = 79,
       .prompt = "File",
       .help = "File specification to hatch",
       .width = kLongWidth},
      {.type = Str,
       .col = c,
       .row = 3,
       .offset = offsetof(HatchMGRrec, replaces),
       .size = 12,
       .prompt = "Replaces",
       .help = "Which file specification to replace"},
      {.type = Str,
       .col = c,
       .row = 4,
       .offset = offsetof(HatchMGRrec, magic),
       .size = 20,
       .prompt = "Magic",
       .help = "Magic name that KESTRA should update/add to the alias file"},
      {.type = Str,
       .col = c,
       .row = 5,
       .offset = offsetof(HatchMGRrec, description),
       .size = 80,
       .prompt = "Description",
       .help = "Description of file",
       .width = kLongWidth},
      DaysField({.col = c,
                 .row = 6,
                 .offset = offsetof(HatchMGRrec, days),
                 .prompt = "Days",
                 .help = "Days of the week on which the file is hatched"},
                kTopic),
      {.type = Bol,
       .col = c,
       .row = 7,
       .offset = offsetof(HatchMGRrec, always),
       .size = 1,
       .prompt = "Always",
       .help = "Hatch the file even when it has not changed"},
      {.type = Bol,
       .col = c,
       .row = 8,
       .offset = offsetof(HatchMGRrec, copy),
       .size = 1,
       .prompt = "Copy",
       .help = "Copy the file instead of moving it"},
      InactiveField(c, 9, offsetof(HatchMGRrec, inactive)),
  });
  mgr.init = [](std::uint8_t* rec) { rec[offsetof(HatchMGRrec, days)] = kAllDays; };
  mgr.check = [](std::uint8_t* rec, bool) {
    HatchMGRrec r;
    std::memcpy(&r, rec, sizeof r);
    auto refusal = CheckHatchEntry(r);
    return Refuse(refusal);
  };
  mgr.unique = false;  // several files may be hatched into one fileecho
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  RunWithCompanion(mgr, ctx, "HATCH", row_width);
}

}  // namespace ks
