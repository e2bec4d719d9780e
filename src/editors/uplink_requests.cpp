// "Uplink requests": the areas the processor asked uplinks for on behalf of its nodes
// (UPLREQ). KESTRA writes the list; here it can be looked through and entries deleted.
#include <cstring>
#include <ctime>

#include "dbase/route_rec.h"
#include "editors/common_fields.h"
#include "editors/lists.h"

namespace ks {

namespace {

constexpr int kTopic = 51;

// A request date as local time, "2024-03-01 14:05"; 0 is a date never set.
FieldDef DateField(int col, int row, std::uint16_t offset, std::string prompt, std::string help) {
  return {.col = col,
          .row = row,
          .offset = offset,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .width = 16,
          .show = [offset](const std::uint8_t* rec) {
            std::uint32_t seconds;
            std::memcpy(&seconds, rec + offset, sizeof seconds);
            if (seconds == 0) return std::string("Never");
            const std::time_t t = seconds;
            std::tm tm{};
            localtime_r(&t, &tm);
            char text[32];
            std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &tm);
            return std::string(text);
          }};
}

}  // namespace

void RunUplinkRequests(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, kUplinkReqBase, sizeof(UplinkReqRec), 3, 5, 77, 13,
                 "Uplink requests");
  DeclareKeys(mgr, UplinkReqKeys());
  const int row_width =
      AddColumns(mgr, {{.type = Str, .offset = 0, .length = 41, .width = 36, .caption = "Tag"},
                       {.type = Aka,
                        .offset = offsetof(UplinkReqRec, uplink),
                        .length = 8,
                        .width = 23,
                        .caption = "Uplink"},
                       {.type = Wrd,
                        .offset = offsetof(UplinkReqRec, times),
                        .length = 2,
                        .width = 5,
                        .caption = "Times"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = Str,
       .col = c,
       .row = 1,
       .offset = offsetof(UplinkReqRec, tag),
       .size = 40,
       .prompt = "Tag",
       .help = "Tag of the area requested"},
      {.type = Chrs,
       .col = c,
       .row = 2,
       .offset = offsetof(UplinkReqRec, kind),
       .size = 1,
       .prompt = "Kind",
       .help = "What was requested",
       .choices = {"Fileecho", "Echomail"}},
      {.type = Aka,
       .col = c,
       .row = 3,
       .offset = offsetof(UplinkReqRec, uplink),
       .size = 8,
       .prompt = "Uplink",
       .help = "The uplink the request was sent to"},
      {.type = Aka,
       .col = c,
       .row = 4,
       .offset = offsetof(UplinkReqRec, node),
       .size = 8,
       .prompt = "Node",
       .help = "The node that asked for the area",
       .na_when_empty = true},
      DateField(c, 5, offsetof(UplinkReqRec, firstSent), "Requested",
                "When the area was first requested"),
      DateField(c, 6, offsetof(UplinkReqRec, lastSent), "Last sent",
                "When the latest request was sent"),
      {.type = Wrd,
       .col = c,
       .row = 7,
       .offset = offsetof(UplinkReqRec, times),
       .size = 2,
       .low = 0,
       .high = 65535,
       .prompt = "Times",
       .help = "Number of requests sent so far"},
  });
  mgr.view_only = true;
  mgr.topic = kTopic;
  mgr.max_entries = 65000;
  RunWithCompanion(mgr, ctx, kUplinkReqBase, row_width);
}

}  // namespace ks
