// "Pack manager": netmail routing. Each entry names a system netmail is packed for and the
// node masks whose mail goes that way (ROUTE).
#include <cstring>

#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"

namespace ks {

namespace {

constexpr int kTopic = 54;

// One part of a node mask: "*" or a number that fits a 16-bit word.
bool ValidPart(std::string_view part) {
  if (part == "*") return true;
  if (part.empty() || part.size() > 5) return false;
  unsigned value = 0;
  for (char ch : part) {
    if (ch < '0' || ch > '9') return false;
    value = value * 10 + static_cast<unsigned>(ch - '0');
  }
  return value <= 65535;
}

}  // namespace

bool ValidNodeMask(std::string_view mask) {
  // zone[:net[/node[.point]]]; nothing may follow a "*".
  static constexpr char kSeparators[] = {':', '/', '.'};
  std::size_t level = 0;
  for (;;) {
    const std::size_t end = level < 3 ? mask.find(kSeparators[level]) : std::string_view::npos;
    const std::string_view part = mask.substr(0, end);
    if (!ValidPart(part)) return false;
    if (end == std::string_view::npos) return true;
    if (part == "*") return false;
    mask.remove_prefix(end + 1);
    ++level;
  }
}

std::string BadNodeMask(std::string_view masks) {
  while (!masks.empty()) {
    const std::size_t start = masks.find_first_not_of(' ');
    if (start == std::string_view::npos) break;
    masks.remove_prefix(start);
    const std::string_view mask = masks.substr(0, masks.find(' '));
    if (!ValidNodeMask(mask)) return std::string(mask);
    masks.remove_prefix(mask.size());
  }
  return {};
}

std::optional<Refusal> CheckRoute(const RouteMgrRec& r) {
  using namespace route_page;
  if (!r.via.IsSet()) return Refusal{kVia, "Enter the address of the system to route via"};
  const std::string nodes = r.nodes.str();
  if (auto bad = BadNodeMask(nodes); !bad.empty())
    return Refusal{kNodes, "Invalid node mask: " + bad};
  if (nodes.find_first_not_of(' ') == std::string::npos)
    return Refusal{kNodes, "Enter the node masks to route via this system", true};
  return std::nullopt;
}

void RunPackManager(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, kRouteBase, sizeof(RouteMgrRec), 3, 5, 77, 15, "Pack manager");
  DeclareKeys(mgr, RouteKeys());
  const int row_width =
      AddColumns(mgr, {{.type = Aka, .offset = 0, .length = 8, .width = 23, .caption = "Route via"},
                       {.type = Str,
                        .offset = offsetof(RouteMgrRec, nodes),
                        .length = 201,
                        .width = 40,
                        .caption = "Nodes"},
                       {.type = Bol,
                        .offset = offsetof(RouteMgrRec, inactive),
                        .length = 1,
                        .width = 8,
                        .caption = "InActive"}});
  constexpr int c = kValueCol;
  mgr.AddFields({
      {.type = Aka,
       .col = c,
       .row = 1,
       .offset = offsetof(RouteMgrRec, via),
       .size = 8,
       .prompt = "Route via",
       .help = "Network address of the system the netmail is packed for",
       .na_when_empty = true},
      {.type = Str,
       .col = c,
       .row = 2,
       .offset = offsetof(RouteMgrRec, comment),
       .size = 55,
       .prompt = "Comment",
       .help = "Description of this route"},
      {.type = Str,
       .col = c,
       .row = 3,
       .offset = offsetof(RouteMgrRec, nodes),
       .size = 200,
       .prompt = "Nodes",
       .help = "Nodes routed via this system, separated by spaces (ex. 2:* 1:* 2:280/*)",
       .width = kLongWidth},
      {.type = Chrs,
       .col = c,
       .row = 4,
       .offset = offsetof(RouteMgrRec, flavour),
       .size = 1,
       .prompt = "Flavour",
       .help = "How the packed netmail is sent",
       .choices = {"Normal", "Crash", "Hold", "Direct"}},
      {.type = Chrs,
       .col = c,
       .row = 5,
       .offset = offsetof(RouteMgrRec, packAs),
       .size = 1,
       .prompt = "Pack as",
       .help = "Compress the packets into ARCmail archives or send them as plain packets",
       .choices = {"ARCmail", "Packet"}},
      {.type = Chrs,
       .col = c,
       .row = 6,
       .offset = offsetof(RouteMgrRec, archiver),
       .size = 1,
       .prompt = "Archiver",
       .help = "Archiver to compress the ARCmail with",
       .choices = {"ARC", "ARJ", "LZH", "PAK", "ZIP", "SQZ", "7", "8", "9", "10"},
       .applies =
           [](const std::uint8_t* rec) { return rec[offsetof(RouteMgrRec, packAs)] == rpArcmail; }},
      {.type = Str,
       .col = c,
       .row = 7,
       .offset = offsetof(RouteMgrRec, password),
       .size = 8,
       .prompt = "Password",
       .help = "Packet password (empty=none)",
       .upper = true},
      UseAkaField({.col = c,
                   .row = 8,
                   .offset = offsetof(RouteMgrRec, useAka),
                   .prompt = "Use aka",
                   .help = "Which address to pack the netmail from"},
                  ctx.addresses),
      {.type = Bol,
       .col = c,
       .row = 9,
       .offset = offsetof(RouteMgrRec, inactive),
       .size = 1,
       .prompt = "InActive",
       .help = "Should this route be temporarily disabled"},
  });
  mgr.init = [](std::uint8_t* rec) {
    rec[offsetof(RouteMgrRec, flavour)] = rfNormal;
    rec[offsetof(RouteMgrRec, packAs)] = rpArcmail;
    rec[offsetof(RouteMgrRec, archiver)] = 4;  // ZIP
  };
  mgr.check = [](std::uint8_t* rec, bool) {
    RouteMgrRec r;
    std::memcpy(&r, rec, sizeof r);
    auto refusal = CheckRoute(r);
    return Refuse(refusal);
  };
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  RunWithCompanion(mgr, ctx, kRouteBase, row_width);
}

}  // namespace ks
