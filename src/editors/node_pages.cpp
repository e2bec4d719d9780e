// The pages of one system in the node manager: the edit page, its internet, advanced and
// cost-sharing sub-pages, and the defaults page of new systems (F3 in the list).
#include "editors/node_pages.h"

#include <cstddef>
#include <cstring>
#include <functional>
#include <utility>

#include "editors/common_fields.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kNodeValueCol = 24;
// The list window is 61 columns wide: a value at column 24 may take 35 cells.
constexpr int kMainWidth = 35;

// The tree marks in front of a prompt: a branch and the last branch.
constexpr const char* kBranch = " \xC3\xC4";
constexpr const char* kLastBranch = " \xC0\xC4";

NodeMGRrec Node(const std::uint8_t* rec) {
  NodeMGRrec r;
  std::memcpy(static_cast<void*>(&r), rec, sizeof r);
  return r;
}

const std::vector<std::string>& InternetSendNames() {
  static const std::vector<std::string> names = {"Nothing", "Mail", "Files", "Mail and files",
                                                 "Everything on hold"};
  return names;
}

const std::vector<std::string>& GatewayNames() {
  static const std::vector<std::string> names = {"No", "Local mail only", "Re-routed mail only",
                                                 "Local and re-routed mail"};
  return names;
}

const std::vector<std::string>& BillPeriodNames() {
  static const std::vector<std::string> names = {"Monthly", "Weekly", "Direct", "Yearly"};
  return names;
}

std::string NameOf(const std::vector<std::string>& names, std::uint8_t value) {
  return value < names.size() ? names[value] : std::to_string(value);
}

// A page of `fields` on `rec` in a framed box of `width` x `height` inner cells, centred on the
// desktop, with the cursor starting on field `first`; true when the page changed the record.
bool RunNodePage(std::vector<FieldDef> fields, std::uint8_t* rec, std::size_t size,
                 const std::string& title, int width, int height, int first = 0) {
  const std::vector<std::uint8_t> before(rec, rec + size);
  RunSubPage(std::move(fields), rec, title, width, height, kNodeTopic, first);
  return std::memcmp(before.data(), rec, size) != 0;
}

// A Yes/No switch of the option word at `offset` (a node's or the defaults').
FieldDef Switch(int col, int row, std::uint16_t offset, std::uint16_t mask, std::string prompt,
                std::string help) {
  return {.type = Bol,
          .col = col,
          .row = row,
          .offset = offset,
          .size = 2,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .mask = mask};
}

FieldDef Choice(int col, int row, std::uint16_t offset, std::vector<std::string> choices,
                std::string prompt, std::string help) {
  return {.type = Chrs,
          .col = col,
          .row = row,
          .offset = offset,
          .size = 1,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .choices = std::move(choices)};
}

// A field of the edit page that opens a sub-page: the page's help is put back on the status
// line when the sub-page closes.
FieldDef SubPageField(int row, std::string prompt, std::string help,
                      std::function<bool(std::uint8_t*)> open,
                      std::function<std::string(const std::uint8_t*)> show) {
  FieldDef f{.col = kNodeValueCol,
             .row = row,
             .prompt = std::move(prompt),
             .help = std::move(help),
             .width = kMainWidth};
  f.select = [open = std::move(open), status = f.help](std::uint8_t* rec) {
    const bool changed = open(rec);
    ShowStatus(status);
    return changed;
  };
  f.show = std::move(show);
  return f;
}

bool EditInternet(std::uint8_t* rec) {
  constexpr int c = 20;
  return RunNodePage(
      {
          {.type = Str,
           .col = c,
           .row = 1,
           .offset = offsetof(NodeMGRrec, internetAddress),
           .size = 60,
           .prompt = "Internet address",
           .help = "Internet address for this system",
           .width = 50},
          Choice(c, 2, offsetof(NodeMGRrec, internetSend), InternetSendNames(), "Send",
                 "What to send files via internet"),
          {.type = Bol,
           .col = c,
           .row = 3,
           .offset = offsetof(NodeMGRrec, rerouteCrash),
           .size = 1,
           .prompt = "Crash mail",
           .help = "Re-route crash mail",
           .mark = kBranch},
          {.type = Bol,
           .col = c,
           .row = 4,
           .offset = offsetof(NodeMGRrec, rerouteHold),
           .size = 1,
           .prompt = "Hold mail",
           .help = "Re-route hold mail",
           .mark = kLastBranch},
          Choice(c, 5, offsetof(NodeMGRrec, gateway), GatewayNames(), "Act as Gateway",
                 "Act as a gateway for local or re-routed mail sent via internet"),
          {.type = Bol,
           .col = c,
           .row = 6,
           .offset = offsetof(NodeMGRrec, encodeFreqs),
           .size = 1,
           .prompt = "Encode FREQs",
           .help = "Encode file requested files"},
      },
      rec, sizeof(NodeMGRrec), "Internet options", 72, 6);
}

bool EditAdvanced(std::uint8_t* rec) {
  constexpr int c = 25;
  constexpr std::uint16_t o = offsetof(NodeMGRrec, options);
  return RunNodePage(
      {
          Switch(c, 1, o, kNodeInactive, "Inactive", "If this system is temporarily inactive"),
          Switch(c, 2, o, kNodeCopyOtherFiles, "Copy other files",
                 "Copy other files on hold for this system to holding directory"),
          Switch(c, 3, o, kNodeIncludeTemplate, "Include template file",
                 "Include template file when forwarding files to this system"),
          Switch(c, 4, o, kNodeSendNotifyList, "Send notify list",
                 "Include this system when sending notify lists"),
          Switch(c, 5, o, kNodeNotifyNewEchos, "Notify new fileechos",
                 "Notify node of new fileechos"),
          Switch(c, 6, o, kNodeForwardRequests, "Forward requests",
                 "If requests for new areas from this system should be forwarded to an uplink"),
          Switch(c, 7, o, kNodeAllowAutoAdd, "Allow Auto-add",
                 "Auto-add new areas received from this system"),
          Switch(c, 8, o, kNodeRemoteMaint, "Remote maintenance",
                 "If this node is allowed to do remote maintenance for other nodes (%FROM)"),
          Switch(c, 9, o, kNodeTicWithFreq, "Send .TIC with FREQ",
                 "If a .TIC file should be sent with all file requested files"),
      },
      rec, sizeof(NodeMGRrec), "Advanced options", 30, 9);
}

// The switches on, as the edit page shows them.
std::string AdvancedText(const std::uint8_t* rec) {
  const NodeMGRrec r = Node(rec);
  int on = 0;
  for (std::uint16_t bit = 1; bit <= kNodeTicWithFreq; bit <<= 1) on += r.Has(bit) ? 1 : 0;
  return std::string(r.Has(kNodeInactive) ? "Inactive" : "Active") + ", " + std::to_string(on) +
         " of 9 switches on";
}

std::string CostSharingText(const std::uint8_t* rec) {
  const NodeMGRrec r = Node(rec);
  if (!r.billing) return "No billing";
  return "Billing, " + NameOf(BillPeriodNames(), r.sendBill);
}

}  // namespace

const std::vector<std::string>& FlowStatusNames() {
  static const std::vector<std::string> names = {"None",   "Hold",        "Crash",
                                                 "Direct", "Hold Direct", "Crash Direct"};
  return names;
}

const std::vector<std::string>& TicModeNames() {
  static const std::vector<std::string> names = {"None", "Normal TIC file", "Advanced TIC file"};
  return names;
}

const std::vector<std::string>& PackingModeNames() {
  static const std::vector<std::string> names = {"No packing", "Pack TIC files", "Pack ALL files",
                                                 "TIC + file"};
  return names;
}

std::vector<std::string> CompressionNames(const ListContext& ctx) {
  static const char* const kArchivers[] = {"ARC", "ARJ", "LZH", "PAK", "ZIP",
                                           "SQZ", "7",   "8",   "9",   "10"};
  std::vector<std::string> names = {"None"};
  for (std::size_t i = 0; i < std::size(kArchivers); ++i)
    names.push_back(i < ctx.archivers.size() && !ctx.archivers[i].empty() ? ctx.archivers[i]
                                                                          : kArchivers[i]);
  return names;
}

bool EditCostSharing(std::uint8_t* rec, int first) {
  constexpr int c = 18;
  const auto billing = [](const std::uint8_t* r) { return Node(r).billing != 0; };
  const auto money = [&](int row, std::uint16_t offset, std::string prompt, std::string help) {
    return FieldDef{.type = Rel,
                    .col = c,
                    .row = row,
                    .offset = offset,
                    .size = 8,
                    .low = -99999,
                    .high = 99999,
                    .picture = "######.##",
                    .prompt = std::move(prompt),
                    .help = std::move(help),
                    .applies = billing};
  };
  return RunNodePage(
      {
          {.type = Bol,
           .col = c,
           .row = 1,
           .offset = offsetof(NodeMGRrec, billing),
           .size = 1,
           .prompt = "Billing",
           .help = "Should this system participate in cost sharing ?"},
          {.type = GrpArray,
           .col = c,
           .row = 2,
           .offset = offsetof(NodeMGRrec, billGroups),
           .size = 32,
           .prompt = "Bill groups",
           .help = "Groups that should be billed",
           .applies = billing},
          money(3, offsetof(NodeMGRrec, credit), "Credit",
                "Credit in 100 cent units (ie. HFL/DM/USD etc.)"),
          money(4, offsetof(NodeMGRrec, warnLevel), "Warn level",
                "Credit low warning level in 100 cent units (ie. Guilders/Mark/USD etc.)"),
          money(5, offsetof(NodeMGRrec, stopLevel), "Stop level",
                "Level to stop sending files in 100 cent units (ie. Guilders/Mark/USD etc.)"),
          {.type = Chrs,
           .col = c,
           .row = 6,
           .offset = offsetof(NodeMGRrec, sendBill),
           .size = 1,
           .prompt = "Send bill",
           .help = "When to send bill",
           .choices = BillPeriodNames(),
           .applies = billing},
          {.type = Int,
           .col = c,
           .row = 7,
           .offset = offsetof(NodeMGRrec, sendOn),
           .size = 1,
           .low = 0,
           .high = 28,
           .prompt = "Send on",
           .help = "Day of week/month or month of year to send bill, (1 = Sun/1st of month/Jan)",
           // A bill sent directly has no day.
           .applies =
               [](const std::uint8_t* r) {
                 const NodeMGRrec n = Node(r);
                 return n.billing && n.sendBill != bpDirect;
               }},
          {.type = Rel,
           .col = c,
           .row = 8,
           .offset = offsetof(NodeMGRrec, addPercent),
           .size = 8,
           .low = 0,
           .high = 100,
           .picture = "###.##",
           .prompt = "Add %",
           .help = "Percentage to add to total bill (example: 17.5 % VAT)",
           .applies = billing},
          {.type = Bol,
           .col = c,
           .row = 9,
           .offset = offsetof(NodeMGRrec, membership),
           .size = 1,
           .prompt = "Membership",
           .help = "Should this system pay a membership fee instead of its share of the costs",
           .applies = billing},
          {.type = Rel,
           .col = c,
           .row = 10,
           .offset = offsetof(NodeMGRrec, membershipFee),
           .size = 8,
           .picture = "#####.##",
           .prompt = "Membership fee",
           .help = "Fee for membership style billing",
           .applies =
               [](const std::uint8_t* r) {
                 const NodeMGRrec n = Node(r);
                 return n.billing && n.membership;
               }},
      },
      rec, sizeof(NodeMGRrec), "Cost sharing options", 50, 10, first);
}

std::vector<FieldDef> NodePageFields(const ListContext& ctx) {
  constexpr int c = kNodeValueCol;
  return {
      {.type = Aka,
       .col = c,
       .row = 2,
       .offset = offsetof(NodeMGRrec, address),
       .size = 8,
       .prompt = "System",
       .help = "System address",
       .na_when_empty = true},
      {.type = Str,
       .col = c,
       .row = 3,
       .offset = offsetof(NodeMGRrec, sysop),
       .size = 35,
       .prompt = "Sysop",
       .help = "System Operator"},
      {.type = Path,
       .col = c,
       .row = 4,
       .offset = offsetof(NodeMGRrec, holdDir),
       .size = 60,
       .prompt = "Holding directory",
       .help = "Directory to place files for this system (will not make file attach msgs!)",
       .width = kMainWidth},
      {.type = Aka,
       .col = c,
       .row = 5,
       .offset = offsetof(NodeMGRrec, routeVia),
       .size = 8,
       .prompt = "Route via",
       .help = "System to which all files for this node should be routed",
       .na_when_empty = true},
      {.type = GrpArray,
       .col = c,
       .row = 6,
       .offset = offsetof(NodeMGRrec, groups),
       .size = 32,
       .prompt = "Authorized groups",
       .help = "Groups of fileechos available to this node",
       .width = kMainWidth},
      {.type = Str,
       .col = c,
       .row = 7,
       .offset = offsetof(NodeMGRrec, ticPassword),
       .size = 20,
       .prompt = "Fileecho password",
       .help = "Password used for fileecho security"},
      {.type = Str,
       .col = c,
       .row = 8,
       .offset = offsetof(NodeMGRrec, areaMgrPassword),
       .size = 20,
       .prompt = "AreaMgr password",
       .help = "Password used for AreaMgr security"},
      {.type = Str,
       .col = c,
       .row = 9,
       .offset = offsetof(NodeMGRrec, pktPassword),
       .size = 8,
       .prompt = "PKT password",
       .help = "Password used in .PKT files"},
      UseAkaField({.col = c,
                   .row = 10,
                   .offset = offsetof(NodeMGRrec, useAka),
                   .prompt = "Use aka",
                   .help = "Aka to use for this system"},
                  ctx.addresses),
      Choice(c, 11, offsetof(NodeMGRrec, fileAttachStatus), FlowStatusNames(), "File attach status",
             "Status of file attach messages for this node"),
      Choice(c, 12, offsetof(NodeMGRrec, otherMailStatus), FlowStatusNames(), "Other mail status",
             "Status of all other messages for this node"),
      Choice(c, 13, offsetof(NodeMGRrec, ticMode), TicModeNames(), "TIC file mode",
             "What type of TIC files to send"),
      Choice(c, 14, offsetof(NodeMGRrec, packMode), PackingModeNames(), "Packing mode",
             "How to pack the files"),
      Choice(c, 15, offsetof(NodeMGRrec, compression), CompressionNames(ctx), "Compression type",
             "Compression type, for TIC pack options"),
      {.type = Bol,
       .col = c,
       .row = 16,
       .offset = offsetof(NodeMGRrec, compressArcmail),
       .size = 1,
       .prompt = "Compress ArcMail",
       .help = "Should ArcMail be compressed or sent as .PKT files",
       .mark = kLastBranch},
      SubPageField(18, "Internet options", "Internet options for this system", EditInternet,
                   [](const std::uint8_t* rec) {
                     return NameOf(InternetSendNames(), Node(rec).internetSend);
                   }),
      SubPageField(19, "Advanced options", "Edit Advanced options", EditAdvanced, AdvancedText),
      SubPageField(
          20, "Cost sharing options", "Edit cost sharing options",
          [](std::uint8_t* rec) { return EditCostSharing(rec); }, CostSharingText),
  };
}

bool EditNodeDefaults(NodeDefaults& defaults, const ListContext& ctx) {
  constexpr int c = 25;
  constexpr std::uint16_t o = offsetof(NodeDefaults, options);
  return RunNodePage(
      {
          {.type = GrpArray,
           .col = c,
           .row = 1,
           .offset = offsetof(NodeDefaults, groups),
           .size = 32,
           .prompt = "Authorized groups",
           .help = "Groups this system is authorized to receive"},
          Choice(c, 2, offsetof(NodeDefaults, fileAttachStatus), FlowStatusNames(),
                 "File attach status", "Status of file attach messages for this node"),
          Choice(c, 3, offsetof(NodeDefaults, otherMailStatus), FlowStatusNames(),
                 "Other mail status", "Status of all other messages for this node"),
          Choice(c, 4, offsetof(NodeDefaults, ticMode), TicModeNames(), "TIC file mode",
                 "What type of TIC files to send"),
          Choice(c, 5, offsetof(NodeDefaults, packMode), PackingModeNames(), "Packing mode",
                 "How pack to the files"),
          Switch(c, 6, o, kNodeIncludeTemplate, "Include template file",
                 "Include template file when forwarding files to this system"),
          Switch(c, 7, o, kNodeSendNotifyList, "Send notify list",
                 "If this node should receive a notify list (KESTRA Notify)"),
          Switch(c, 8, o, kNodeForwardRequests, "Forward requests",
                 "If requests for new areas from this system should be forwarded an uplink"),
          Switch(c, 9, o, kNodeAllowAutoAdd, "Allow Auto-add",
                 "Auto-add new areas received from this system"),
          Switch(c, 10, o, kNodeRemoteMaint, "Remote maintenance",
                 "If this node is allowed to do remote maintenance for other nodes (%FROM)"),
          Choice(c, 11, offsetof(NodeDefaults, compression), CompressionNames(ctx),
                 "Compression type",
                 "Type of compression to use for packing TIC files and arcmail"),
      },
      reinterpret_cast<std::uint8_t*>(&defaults), sizeof defaults, "Edit defaults", 57, 11);
}

void ApplyNodeDefaults(const NodeDefaults& defaults, NodeMGRrec& rec) {
  // Only the switches the defaults page offers are taken over.
  constexpr std::uint16_t kDefaultSwitches = kNodeIncludeTemplate | kNodeSendNotifyList |
                                             kNodeForwardRequests | kNodeAllowAutoAdd |
                                             kNodeRemoteMaint;
  rec.groups = defaults.groups;
  rec.fileAttachStatus = defaults.fileAttachStatus;
  rec.otherMailStatus = defaults.otherMailStatus;
  rec.ticMode = defaults.ticMode;
  rec.packMode = defaults.packMode;
  rec.compression = defaults.compression;
  rec.options = static_cast<std::uint16_t>(defaults.options & kDefaultSwitches);
}

std::optional<Refusal> CheckNode(const NodeMGRrec& r) {
  using namespace node_page;
  // An address without a zone is no address, whatever its net, node and point.
  if (r.address.zone == 0) return Refusal{kSystem, "A system address must be specified"};
  if (r.sysop.str().find_first_not_of(' ') == std::string::npos)
    return Refusal{kSysop, "A sysop name must be specified"};
  if (r.billing && r.sendBill == bpMonthly && (r.sendOn == 0 || r.sendOn > 28))
    return Refusal{kCostSharing,
                   "You must define the day that bills should/be sent. Accepted values are 1-28"};
  if (r.billing && r.sendBill == bpWeekly && (r.sendOn == 0 || r.sendOn > 7))
    return Refusal{kCostSharing,
                   "You must define the day that bills should/be sent. Accepted values are 1-7"};
  return std::nullopt;
}

}  // namespace ks
