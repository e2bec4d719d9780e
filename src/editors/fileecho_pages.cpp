// The pages a fileecho opens from its edit page: the advanced switches, cost sharing and the
// RAID flags.
#include <cstddef>
#include <cstdio>

#include "editors/common_fields.h"
#include "editors/fileecho_parts.h"
#include "tui/box.h"
#include "tui/fields.h"

namespace ks::fileecho {

namespace {

constexpr Switch kSwitches[] = {
    {1, kFeConvertAll, "Convert all", "Convert all",
     "Convert archives even if they are of the destination format"},
    {2, kFe2ConvertIncluded, "Convert inc", "Convert inc", "Convert included files"},
    {2, kFe2CompressUnknown, "Comp unknown", "Comp unknown", "Compress unknown files"},
    {1, kFePassThrough, "Pass through", "Pass through", "Pass through file echo"},
    {1, kFeAllowReplace, "Allow replace", "Allow replace", "Honor replace directive in TIC files"},
    {1, kFeAnnounce, "Announce", "Announce", "Include in new file reports"},
    {1, kFeVirusScan, "Virus scan", "Virus scan", "Scan incoming files for viruses"},
    {1, kFeDupeCheck, "Dupe check", "Dupe check", "Check for duplicates"},
    {1, kFeVisible, "Visible", "Visible",
     "Should this area be included in a list of available areas"},
    {1, kFeTinySeenBy, "Tiny SB", "TinySB", "Tiny seen by's"},
    {1, kFeNoTouch, "No Touch", "No Touch", "Do not touch file database"},
    {1, kFeSecurity, "Security", "Security",
     "Check if from address of TIC files is in the systems list with correct status"},
    {1, kFeSendOriginal, "Send original", "Send original",
     "Copy file to Queue directory and send to downlinks from there"},
    {1, kFeAddPicSpecs, "Add pic specs", "Add pic specs",
     "Should KESTRA add GIF and JPG file specs to the descriptions"},
    {1, kFeUpdateMagic, "Update magic", "Update magic",
     "Should KESTRA update the alias file for any magic commands in TIC files"},
    {1, kFeTouchAv, "Touch AV", "Touch AV",
     "No - KESTRA will not alter AV archives. Yes - KESTRA will alter those files"},
    {2, kFe2NoHoldDir, "No hold dir", "No hold dir",
     "Disable the holding directory for this fileecho"},
};

// The switches a pass-through fileecho has no use for: they concern its local copy.
bool LocalOnly(std::uint16_t mask, int word) {
  return word == 1 && (mask == kFeAllowReplace || mask == kFeNoTouch || mask == kFeSendOriginal ||
                       mask == kFeAddPicSpecs || mask == kFeUpdateMagic);
}

// The advanced page's place on the screen (the origin of its fields).
constexpr int kAdvLeft = 29, kAdvTop = 2, kAdvRight = 52, kAdvBottom = 24;
constexpr int kAdvValueCol = 16;

std::string Real2(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

const std::vector<std::string>& UnitSizeNames() {
  static const std::vector<std::string> names = {"100 kb", "1024 kb", "file"};
  return names;
}

template <class T>
bool ChangedFixed(const std::uint8_t* rec, const T& before) {
  return std::memcmp(rec, &before, kFileechoFixedSize) != 0;
}

}  // namespace

const char* const kConvertHelp = "The archive format to convert incoming files to";
const char* const kAddFileIdHelp = "Add a FILE_ID.DIZ file to archive, if it does not exist";

const char* const kAdvancedOrder[19] = {
    "Convert",       "Convert all",  "Convert inc", "Comp unknown", "Pass through",
    "Allow replace", "Announce",     "Add FILE_ID", "Virus scan",   "Dupe check",
    "Visible",       "Tiny SB",      "No Touch",    "Security",     "Send original",
    "Add pic specs", "Update magic", "Touch AV",    "No hold dir"};

bool UsesFileId(std::uint8_t long_desc) {
  return long_desc == ldFileIdNormal || long_desc == ldFileIdLdesc || long_desc == ldLdescFileId;
}

AddFileId GetAddFileId(const FixedRec& r) {
  if (!r.Has(kFeAddFileId)) return afNo;
  return r.Has2(kFe2AddFileIdAlways) ? afAlways : afYes;
}

void SetAddFileId(FixedRec& r, AddFileId v) {
  if (v == afNo)
    r.options &= static_cast<std::uint16_t>(~kFeAddFileId);
  else
    r.options |= kFeAddFileId;
  if (v == afAlways)
    r.options2 |= kFe2AddFileIdAlways;
  else
    r.options2 &= static_cast<std::uint16_t>(~kFe2AddFileIdAlways);
}

const std::vector<std::string>& AddFileIdNames() {
  static const std::vector<std::string> names = {"No", "Yes", "Always"};
  return names;
}

const Switch* FindSwitch(std::string_view prompt) {
  for (const auto& s : kSwitches)
    if (prompt == s.prompt) return &s;
  return nullptr;
}

std::vector<std::string> ConvertChoices(const ListContext& ctx) {
  std::vector<std::string> choices = {"None"};
  choices.insert(choices.end(), ctx.archivers.begin(), ctx.archivers.end());
  return choices;
}

bool RunAdvancedPage(std::uint8_t* rec, const ListContext& ctx) {
  const FixedRec before = Fixed(rec);
  const bool bbs_database = ctx.bbs_file_database;
  std::vector<FieldDef> fields;
  int row = 2;
  for (const char* prompt : kAdvancedOrder) {
    FieldDef f{.col = kAdvValueCol, .row = row++, .prompt = prompt};
    if (std::string_view(prompt) == "Convert") {
      f.type = Chrs;
      f.offset = offsetof(FixedRec, convert);
      f.size = 1;
      f.help = kConvertHelp;
      f.choices = ConvertChoices(ctx);
    } else if (std::string_view(prompt) == "Add FILE_ID") {
      f.help = kAddFileIdHelp;
      f.width = 6;
      f.show = [](const std::uint8_t* r) { return AddFileIdNames()[GetAddFileId(Fixed(r))]; };
      // Each press steps on to the next of the three values.
      f.select = [](std::uint8_t* r) {
        FixedRec fixed = Fixed(r);
        SetAddFileId(fixed, static_cast<AddFileId>((GetAddFileId(fixed) + 1) % 3));
        PutFixed(r, fixed);
        return true;
      };
      f.applies = [](const std::uint8_t* r) { return UsesFileId(Fixed(r).longDesc); };
    } else {
      const Switch* s = FindSwitch(prompt);
      f.type = Bol;
      f.offset = s->word == 1 ? kOptionsOffset : kOptions2Offset;
      f.size = 2;
      f.mask = s->mask;
      f.help = s->help;
      const bool local_only = LocalOnly(s->mask, s->word);
      const bool no_touch = s->word == 1 && s->mask == kFeNoTouch;
      if (local_only || (no_touch && bbs_database))
        f.applies = [local_only, no_touch, bbs_database](const std::uint8_t* r) {
          if (no_touch && bbs_database) return false;
          return !(local_only && PassThrough(r));
        };
    }
    fields.push_back(std::move(f));
  }
  BoxOBJ box(kAdvLeft, kAdvTop, kAdvRight, kAdvBottom, "Advanced");
  box.Draw();
  EditPage page(std::move(fields));
  page.topic = kTopic;
  page.Run(rec, kAdvLeft, kAdvTop);
  box.Hide();
  return ChangedFixed(rec, before);
}

bool RunCostPage(std::uint8_t* rec) {
  const FixedRec before = Fixed(rec);
  constexpr int c = 12;
  RunSubPage(
      {
          {.type = Bol,
           .col = c,
           .row = 1,
           .offset = offsetof(FixedRec, incCost),
           .size = 1,
           .prompt = "Inc cost",
           .help = "Include our received cost as specified in .TIC file via the Cost verb"},
          {.type = Rel,
           .col = c,
           .row = 2,
           .offset = offsetof(FixedRec, unitCost),
           .picture = "####.##",
           .prompt = "Unit cost",
           .help = "Cost per unit data in 100 cent units (ie. HFL/DM/USD)"},
          {.type = Chrs,
           .col = c,
           .row = 3,
           .offset = offsetof(FixedRec, unitSize),
           .size = 1,
           .prompt = "Unit size",
           .help = "Size of one unit",
           .choices = UnitSizeNames()},
          {.type = Chrs,
           .col = c,
           .row = 4,
           .offset = offsetof(FixedRec, divCosts),
           .size = 1,
           .prompt = "Div costs",
           .help = "How to divide the costs",
           .choices = {"C/S nodes", "All nodes", "No"}},
          {.type = Rel,
           .col = c,
           .row = 5,
           .offset = offsetof(FixedRec, addPercent),
           .picture = "###.##",
           .prompt = "Add %",
           .help = "Percentage to add to unit cost for files forwarded in this fileecho"},
      },
      rec, "Cost sharing", 24, 5, kTopic);
  return ChangedFixed(rec, before);
}

bool RunRaidPage(std::uint8_t* rec) {
  const FixedRec before = Fixed(rec);
  constexpr int c = 17;
  RunSubPage(
      {
          {.type = Wrd,
           .col = c,
           .row = 1,
           .offset = offsetof(FixedRec, raidLevel),
           .size = 2,
           .low = 0,
           .high = 4096,
           .prompt = "Level",
           .help = "Security level (0-4096)"},
          {.type = Chrs,
           .col = c,
           .row = 2,
           .offset = offsetof(FixedRec, raidDistribution),
           .size = 1,
           .prompt = "Distribution",
           .help = "How is this fileecho distributed",
           .choices = {"FILEBONE", "Open distribution"}},
          {.type = Chrs,
           .col = c,
           .row = 3,
           .offset = offsetof(FixedRec, raidHatching),
           .size = 1,
           .prompt = "Hatching",
           .help = "Hatching policy",
           .choices = {"No hatching", "Anyone may hatch"}},
          {.type = Bol,
           .col = c,
           .row = 4,
           .offset = offsetof(FixedRec, raidReturnChannel),
           .size = 1,
           .prompt = "Return channel",
           .help = "Return channel (i.e. not available for downlinks)"},
      },
      rec, "RAID flags", 35, 4, kTopic);
  return ChangedFixed(rec, before);
}

std::string AdvancedText(const std::uint8_t* rec, const ListContext& ctx) {
  const FixedRec r = Fixed(rec);
  if (r.Has(kFePassThrough)) return "Pass through";
  const auto choices = ConvertChoices(ctx);
  if (r.convert != 0 && r.convert < choices.size()) return "Convert to " + choices[r.convert];
  return "Standard";
}

std::string CostText(const std::uint8_t* rec) {
  const FixedRec r = Fixed(rec);
  if (r.unitCost == 0 && r.addPercent == 0 && !r.incCost) return "None";
  const std::string unit = r.unitSize < UnitSizeNames().size() ? UnitSizeNames()[r.unitSize] : "?";
  return Real2(r.unitCost) + " per " + unit;
}

std::string RaidText(const std::uint8_t* rec) {
  const FixedRec r = Fixed(rec);
  return "Level " + std::to_string(r.raidLevel + 0) + ", " +
         (r.raidDistribution == rdOpen ? "Open distribution" : "FILEBONE");
}

}  // namespace ks::fileecho
