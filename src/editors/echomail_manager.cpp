// "Echomail manager": the echomail conferences KESTRA tosses (MAREAS). Each record ends in the
// connected systems, as many as the configuration's "Number of systems"; this page edits the
// fixed part before them.
#include <cstring>

#include "editors/common_fields.h"
#include "editors/echomail_global.h"
#include "editors/list_checks.h"
#include "editors/lists.h"

namespace ks {

namespace {

constexpr int kTopic = 53;
constexpr std::uint16_t kOptions = offsetof(EchoMGRrec, options);

EchoMGRrec ReadFixedPart(const std::uint8_t* rec) {
  EchoMGRrec r;
  std::memcpy(static_cast<void*>(&r), rec, kEchoFixedSize);
  return r;
}

FieldDef Option(int col, int row, std::uint16_t mask, std::string prompt, std::string help) {
  return {.type = Bol,
          .col = col,
          .row = row,
          .offset = kOptions,
          .size = 2,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .prompt_col = col == kValueCol ? 2 : col - 13,
          .mask = mask};
}

// True when another entry than `self` (-1 for none) has the tag of `rec`: the index orders by
// tag and then group, so the file's own duplicate check lets one tag into several groups.
bool TagTaken(ksDataBase& db, const std::uint8_t* rec, int self) {
  const std::string tag = ReadPStr(rec, 40);
  for (int i = 0; i < db.count(); ++i)
    if (i != self && ReadPStr(db.Key(i), 40) == tag) return true;
  return false;
}

}  // namespace

std::optional<Refusal> CheckEchomailArea(const EchoMGRrec& r) {
  using namespace echomail_page;
  const std::string tag = r.tag.str();
  if (tag.empty()) return Refusal{kTag, "Enter the tag of this echomail area"};
  if (tag.find(' ') != std::string::npos)
    return Refusal{kTag, "An area tag may not contain spaces"};
  if (!r.Has(kEmPassThrough)) {
    if (auto p = MsgAreaProblem(r.area, "Msg"); !p.empty()) return Refusal{kArea, p};
    if (r.area.type == mbNone)
      return Refusal{kArea, "Choose the message base of this area, or make it pass through", true};
  }
  return std::nullopt;
}

void RunEchomailManager(const ListContext& ctx) {
  const auto systems = static_cast<std::size_t>(ctx.systems_per_area);
  ManagerOBJ mgr(ctx.data_dir, "MAREAS", EchoRecordSize(systems), 3, 5, 77, 18, "Echomail manager");
  DeclareKeys(mgr, RecordFileId::kMAreas);
  const int row_width =
      AddColumns(mgr, {{.type = Str, .offset = 0, .length = 41, .width = 30, .caption = "Tag"},
                       {.type = Int,
                        .offset = offsetof(EchoMGRrec, group),
                        .length = 1,
                        .width = 5,
                        .caption = "Group"},
                       {.type = Str,
                        .offset = offsetof(EchoMGRrec, description),
                        .length = 56,
                        .width = 36,
                        .caption = "Description"}});
  constexpr int c = kValueCol;
  constexpr int c2 = 52;  // the second column of switches
  mgr.AddFields({
      {.type = Str,
       .col = c,
       .row = 1,
       .offset = offsetof(EchoMGRrec, tag),
       .size = 40,
       .prompt = "Tag",
       .help = "Tag of the echomail area",
       .upper = true},
      {.type = Str,
       .col = c,
       .row = 2,
       .offset = offsetof(EchoMGRrec, description),
       .size = 55,
       .prompt = "Description",
       .help = "Description of the echomail area"},
      {.type = Int,
       .col = c,
       .row = 3,
       .offset = offsetof(EchoMGRrec, group),
       .size = 1,
       .low = 0,
       .high = 255,
       .prompt = "Group",
       .help = "Group the area belongs to",
       .group = true},
      MsgAreaField(
          {.col = c,
           .row = 4,
           .offset = offsetof(EchoMGRrec, area),
           .prompt = "Msg area",
           .help = "Message base the area is kept in",
           .applies =
               [](const std::uint8_t* rec) { return !ReadFixedPart(rec).Has(kEmPassThrough); }},
          kTopic),
      OriginField(c, 5, offsetof(EchoMGRrec, origin)),
      UseAkaField({.col = c,
                   .row = 6,
                   .offset = offsetof(EchoMGRrec, useAka),
                   .prompt = "Use aka",
                   .help = "Which address to use for this area"},
                  ctx.addresses),
      {.type = Wrd,
       .col = c,
       .row = 7,
       .offset = offsetof(EchoMGRrec, daysToKeep),
       .size = 2,
       .low = 0,
       .high = 65535,
       .prompt = "Days to keep",
       .help = "Purge messages older than this number of days (~0~=never)"},
      {.type = Wrd,
       .col = c,
       .row = 8,
       .offset = offsetof(EchoMGRrec, maxMsgs),
       .size = 2,
       .low = 0,
       .high = 65535,
       .prompt = "Max msgs",
       .help = "Purge the oldest messages above this number of messages (~0~=never)"},
      {.type = Int,
       .col = c,
       .row = 9,
       .offset = offsetof(EchoMGRrec, uplink),
       .size = 1,
       .low = 0,
       .high = 20,
       .prompt = "Uplink",
       .help = "AreaMgr uplink the area was requested from (~0~=none)"},
      Option(c, 10, kEmInactive, "InActive", "Should this area be temporarily disabled"),
      Option(c, 11, kEmPassThrough, "Pass through",
             "Pass the messages on without keeping them in a local message base"),
      Option(c, 12, kEmVisible, "Visible", "Show this area in lists of available areas"),
      Option(c2, 10, kEmSecurity, "Security", "Only accept messages from connected systems"),
      Option(c2, 11, kEmMandatory, "Mandatory", "Downlinks may not disconnect from this area"),
      Option(c2, 12, kEmAutoAdded, "Auto added", "Was this area added by KESTRA on its own"),
  });
  mgr.init = [](std::uint8_t* rec) {
    const std::uint16_t options = kEmVisible;
    std::memcpy(rec + kOptions, &options, sizeof options);
  };
  mgr.check = [&mgr](std::uint8_t* rec, bool adding) {
    auto refusal = CheckEchomailArea(ReadFixedPart(rec));
    // The tag is the first field: a tag in use is reported before the fields below it.
    if (!(refusal && refusal->field == echomail_page::kTag) &&
        TagTaken(mgr.db(), rec, adding ? -1 : mgr.db().current()))
      refusal = Refusal{echomail_page::kTag, "There is already an echomail area with this tag"};
    return Refuse(refusal);
  };
  mgr.topic = kTopic;
  mgr.max_entries = 65000;
  AddEchomailGlobalChange(mgr, kTopic);
  mgr.key_line = "~F2~-global";
  RunWithCompanion(mgr, ctx, "MAREAS", row_width);
}

}  // namespace ks
