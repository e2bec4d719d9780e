// "FileFind areas": the message areas scanned for FileFind requests (AREAS).
#include <cstring>

#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"

namespace ks {

namespace {
constexpr int kTopic = 12;
}  // namespace

std::optional<Refusal> CheckFileFindArea(const AreaMGRRec& r) {
  using namespace filefind_page;
  if (r.comment.empty()) return Refusal{kComment, "Enter a comment for this area"};
  if (auto p = MsgAreaProblem(r.scan, "Scan"); !p.empty()) return Refusal{kScan, p};
  // A reply area of "None" means the replies go to the scan area.
  if (auto p = MsgAreaProblem(r.reply, "Reply"); !p.empty()) return Refusal{kReply, p};
  if (r.scan.type == mbNone) return Refusal{kScan, "Choose the message area to scan", true};
  return std::nullopt;
}

void RunFileFindAreas(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, "AREAS", sizeof(AreaMGRRec), 3, 5, 77, 16, "FileFind areas");
  DeclareKeys(mgr, RecordFileId::kAreas);
  const int row_width =
      AddColumns(mgr, {{.type = Str, .offset = 0, .length = 56, .width = 55, .caption = "Comment"},
                       {.type = Bol,
                        .offset = offsetof(AreaMGRRec, inactive),
                        .length = 1,
                        .width = 8,
                        .caption = "InActive"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = Str,
       .col = c,
       .row = 1,
       .offset = offsetof(AreaMGRRec, comment),
       .size = 55,
       .prompt = "Comment",
       .help = "Description of this FileFind message area"},
      MsgAreaField({.col = c,
                    .row = 2,
                    .offset = offsetof(AreaMGRRec, scan),
                    .prompt = "Scan",
                    .help = "Msg area to scan for FileFind requests"},
                   kTopic),
      MsgAreaField({.col = c,
                    .row = 3,
                    .offset = offsetof(AreaMGRRec, reply),
                    .prompt = "Reply",
                    .help = "Msg area to write replies in (only if different from scan area)"},
                   kTopic),
      FileAreasField({.col = c,
                      .row = 4,
                      .offset = offsetof(AreaMGRRec, fileAreas),
                      .prompt = "Fileareas",
                      .help = "File areas to scan for this message area"}),
      OriginField(c, 5, offsetof(AreaMGRRec, origin)),
      UseAkaField({.col = c,
                   .row = 6,
                   .offset = offsetof(AreaMGRRec, useAka),
                   .prompt = "Use aka",
                   .help = "Which address to use for replies"},
                  ctx.addresses),
      {.type = Str,
       .col = c,
       .row = 7,
       .offset = offsetof(AreaMGRRec, templateFile),
       .size = 12,
       .prompt = "Template",
       .help = "Template file to use for FileFind replies"},
      {.type = Int,
       .col = c,
       .row = 8,
       .offset = offsetof(AreaMGRRec, maxFiles),
       .size = 2,
       .low = 0,
       .high = 100,
       .prompt = "Files",
       .help = "Maximum number of files to include in a FileFind reply (~0~=default)"},
      InactiveField(c, 9, offsetof(AreaMGRRec, inactive)),
  });
  mgr.check = [](std::uint8_t* rec, bool) {
    AreaMGRRec r;
    std::memcpy(&r, rec, sizeof r);
    auto refusal = CheckFileFindArea(r);
    return Refuse(refusal);
  };
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  RunWithCompanion(mgr, ctx, "AREAS", row_width);
}

}  // namespace ks
