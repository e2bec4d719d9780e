// "ALLFILES lists": the complete file listings KESTRA writes (ALLFILES).
#include <algorithm>
#include <cstring>

#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"

namespace ks {

namespace {
constexpr int kTopic = 21;
}  // namespace

std::optional<Refusal> CheckAllfilesList(const AllfilesMgrRec& r) {
  using namespace allfiles_page;
  if (r.tag.empty()) return Refusal{kTag, "Enter a tag for this ALLFILES listing"};
  if (r.listPath.empty()) return Refusal{kListing, "Enter the name and path of the listing", true};
  const bool any = std::any_of(std::begin(r.fileAreas.bits), std::end(r.fileAreas.bits),
                               [](std::uint8_t b) { return b != 0; });
  if (!any) return Refusal{kFileAreas, "Choose the file areas to include in the listing", true};
  return std::nullopt;
}

void RunAllfilesLists(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, "ALLFILES", sizeof(AllfilesMgrRec), 3, 5, 77, 11, "ALLFILES lists");
  DeclareKeys(mgr, RecordFileId::kAllfiles);
  const int row_width =
      AddColumns(mgr, {{.type = Str, .offset = 0, .length = 41, .width = 30, .caption = "Tag"},
                       {.type = Wrd,
                        .offset = offsetof(AllfilesMgrRec, age),
                        .length = 2,
                        .width = 5,
                        .caption = "Age"},
                       {.type = Str,
                        .offset = offsetof(AllfilesMgrRec, listPath),
                        .length = 61,
                        .width = 38,
                        .caption = "Listing"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = Str,
       .col = c,
       .row = 1,
       .offset = offsetof(AllfilesMgrRec, tag),
       .size = 40,
       .prompt = "Tag",
       .help = "Tag used to identify this ALLFILES listing",
       .upper = true},
      {.type = Wrd,
       .col = c,
       .row = 2,
       .offset = offsetof(AllfilesMgrRec, age),
       .size = 2,
       .low = 0,
       .high = 365,
       .prompt = "Age",
       .help = "Age of files to include in this ALLFILES listing (0=all)"},
      {.type = Str,
       .col = c,
       .row = 3,
       .offset = offsetof(AllfilesMgrRec, listPath),
       .size = 60,
       .prompt = "Listing",
       .help = "Name and path of the ALLFILES listing",
       .width = kLongWidth},
      {.type = Str,
       .col = c,
       .row = 4,
       .offset = offsetof(AllfilesMgrRec, templateFile),
       .size = 8,
       .prompt = "Template",
       .help = "Template file to use for this listing (name without .APL)"},
      FileAreasField({.col = c,
                      .row = 5,
                      .offset = offsetof(AllfilesMgrRec, fileAreas),
                      .prompt = "File areas",
                      .help = "File areas to include in this ALLFILES listing"}),
  });
  mgr.check = [](std::uint8_t* rec, bool) {
    AllfilesMgrRec r;
    std::memcpy(&r, rec, sizeof r);
    auto refusal = CheckAllfilesList(r);
    return Refuse(refusal);
  };
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  RunWithCompanion(mgr, ctx, "ALLFILES", row_width);
}

}  // namespace ks
