// "BBS fileareas": the sets of BBS file areas scanned for new files, by group (BBSAREAS).
#include <algorithm>
#include <cstring>

#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"

namespace ks {

namespace {
constexpr int kTopic = 18;
}  // namespace

std::optional<Refusal> CheckBbsFileAreas(const BbsAreaMgrRec& r) {
  using namespace bbsareas_page;
  if (r.comment.empty()) return Refusal{kDescription, "Enter a description for this entry"};
  const bool any = std::any_of(std::begin(r.areas.bits), std::end(r.areas.bits),
                               [](std::uint8_t b) { return b != 0; });
  if (!any) return Refusal{kFileAreas, "Choose the BBS file areas to scan", true};
  return std::nullopt;
}

void RunBbsFileAreas(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, "BBSAREAS", sizeof(BbsAreaMgrRec), 3, 5, 77, 9, "BBS fileareas");
  DeclareKeys(mgr, RecordFileId::kBbsAreas);
  const int row_width = AddColumns(mgr, {{.type = Int,
                                          .offset = offsetof(BbsAreaMgrRec, group),
                                          .length = 1,
                                          .width = 5,
                                          .caption = "Group"},
                                         {.type = Str,
                                          .offset = offsetof(BbsAreaMgrRec, comment),
                                          .length = 56,
                                          .width = 55,
                                          .caption = "Description"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = Str,
       .col = c,
       .row = 1,
       .offset = offsetof(BbsAreaMgrRec, comment),
       .size = 55,
       .prompt = "Description",
       .help = "Description of this entry"},
      {.type = Int,
       .col = c,
       .row = 2,
       .offset = offsetof(BbsAreaMgrRec, group),
       .size = 1,
       .low = 0,
       .high = 255,
       .prompt = "Group",
       .help = "Group",
       .group = true},
      FileAreasField({.col = c,
                      .row = 3,
                      .offset = offsetof(BbsAreaMgrRec, areas),
                      .prompt = "Fileareas",
                      .help = "BBS file areas to scan for new files"}),
  });
  mgr.check = [](std::uint8_t* rec, bool) {
    BbsAreaMgrRec r;
    std::memcpy(&r, rec, sizeof r);
    auto refusal = CheckBbsFileAreas(r);
    return Refuse(refusal);
  };
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  RunWithCompanion(mgr, ctx, "BBSAREAS", row_width);
}

}  // namespace ks
