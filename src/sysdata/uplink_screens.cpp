// The "AreaMgr uplink manager": twenty uplink slots, each with a page of its own.
#include <string>

#include "common/netaddr.h"
#include "sysdata/sysdata.h"
#include "tui/menu.h"

namespace ks {

namespace {

constexpr int kSlotsPerColumn = 10;
constexpr int kColumnWidth = 34;

std::size_t SlotAt(int slot) {
  return CFG(uplinks) + static_cast<std::size_t>(slot) * sizeof(AreaMgrUplink);
}

std::uint16_t Member(int slot, std::size_t member) {
  return static_cast<std::uint16_t>(SlotAt(slot) + member);
}

// A slot as the list shows it: its address and what it serves, or nothing when unused.
std::string SlotText(const AreaMgrUplink& u) {
  if (u.address.zone == 0) return {};
  return FormatAddr(u.address) + (u.type == utConferences ? " (Conf)" : " (File)");
}

}  // namespace

SettingsScreen UplinkScreen(const SysdataContext& ctx, int slot) {
  using U = AreaMgrUplink;
  std::vector<FieldDef> fields = {
      {.type = Chrs,
       .offset = Member(slot, offsetof(U, type)),
       .prompt = "Type",
       .help = "Type of uplink: Conferences (AreaMgr) or Fileechos (KESTRA)",
       .choices = {"Fileechos (KESTRA)", "Echomail conferences (AreaMgr)"}},
      {.type = Aka,
       .offset = Member(slot, offsetof(U, address)),
       .prompt = "Uplink system",
       .help = "Network zone:net/node[.point] address of the uplink"},
      {.type = Str,
       .offset = Member(slot, offsetof(U, program)),
       .size = 15,
       .prompt = "AreaMgr program",
       .help = "Name of the program the request should be sent to"},
      {.type = Str,
       .offset = Member(slot, offsetof(U, password)),
       .size = 10,
       .prompt = "Password",
       .help = "Password to put on the subject line",
       .mark = kTee},
      {.type = Bol,
       .offset = Member(slot, offsetof(U, plusPrefix)),
       .prompt = "Add '+' prefix",
       .help = "If the AreaMgr program requires a '+' to connect an area",
       .mark = kCorner},
      {.type = GrpArray,
       .offset = Member(slot, offsetof(U, groups)),
       .prompt = "Authorized groups",
       .help = "The requesting node must have access to at least one of these groups"},
      {.type = Bol,
       .offset = Member(slot, offsetof(U, unconditional)),
       .prompt = "Unconditional",
       .help = "Forward all requests to this uplink if the node has access to a group"},
      {.type = Str,
       .offset = Member(slot, offsetof(U, areasFile)),
       .size = 60,
       .prompt = "Areas filename",
       .help = "File with list of areas available from this uplink",
       .width = 54},
      {.type = Chrs,
       .offset = Member(slot, offsetof(U, fileFormat)),
       .prompt = "File format",
       .help = "Type of areas file",
       .choices = {"Tag file: <Area> <Description>", "FILEBONE.NA format"}},
      AddressPickField(
          {.type = Aka,
           .offset = Member(slot, offsetof(U, originAka)),
           .prompt = "Origin address",
           .help = "Which AKA should be used as origin address for the uplink request messages"},
          ctx),
      {.type = Bol,
       .offset = Member(slot, offsetof(U, direct)),
       .prompt = "Direct",
       .help = "If the Direct flag should be used for the uplink request messages"},
  };
  return StackedScreen("AreaMgr uplink manager", "Uplink " + std::to_string(slot + 1),
                       std::move(fields), kUplinksTopic, 21, 76);
}

SettingsScreen UplinkListScreen(const SysdataContext& ctx) {
  std::vector<FieldDef> fields;
  for (int slot = 0; slot < static_cast<int>(kUplinkCount); ++slot) {
    const int column = slot / kSlotsPerColumn;
    const int row = slot % kSlotsPerColumn + 1;
    KESTRAcfg* cfg = ctx.cfg;
    fields.push_back({.col = column * kColumnWidth + 6,
                      .row = row,
                      .prompt = std::to_string(slot + 1),
                      .help = "AreaMgr uplink manager",
                      .prompt_col = column * kColumnWidth + 2,
                      .width = kColumnWidth - 8,
                      .select =
                          [ctx, slot, cfg](std::uint8_t*) {
                            RunSettings(UplinkScreen(ctx, slot), *cfg);
                            return true;
                          },
                      .show =
                          [slot](const std::uint8_t* rec) {
                            return SlotText(reinterpret_cast<const KESTRAcfg*>(rec)->uplinks[slot]);
                          }});
  }
  return {"AreaMgr uplink manager",
          "AreaMgr uplink manager",
          2 * kColumnWidth,
          kSlotsPerColumn,
          kUplinksTopic,
          std::move(fields),
          {}};
}

}  // namespace ks
