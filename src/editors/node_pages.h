// The node manager's screens, apart from the list itself: the edit page of one system with
// its three sub-pages, the defaults page of new systems, the checks made before a system is
// saved and the global edit of many systems at once.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/groupset.h"
#include "dbase/manager.h"
#include "dbase/node_rec.h"
#include "editors/context.h"
#include "editors/list_checks.h"
#include "tui/fields.h"

namespace ks {

inline constexpr int kNodeTopic = 19;

// The fields of the edit page, in page order: the indices the check returns.
namespace node_page {
enum Field {
  kSystem,
  kSysop,
  kHoldDir,
  kRouteVia,
  kGroups,
  kTicPassword,
  kAreaMgrPassword,
  kPktPassword,
  kUseAka,
  kFileAttach,
  kOtherMail,
  kTicMode,
  kPackMode,
  kCompression,
  kCompressArcmail,
  kInternet,
  kAdvanced,
  kCostSharing,
};
// The fields of the cost-sharing sub-page, in page order.
enum CostField {
  kBilling,
  kBillGroups,
  kCredit,
  kWarnLevel,
  kStopLevel,
  kSendBill,
  kSendOn,
  kAddPercent,
  kMembership,
  kMembershipFee,
};
}  // namespace node_page

// The value lists of the node fields, in the order of their values.
const std::vector<std::string>& FlowStatusNames();
const std::vector<std::string>& TicModeNames();
const std::vector<std::string>& PackingModeNames();
// "None" followed by the archivers of the configuration: the "Compression type" values.
std::vector<std::string> CompressionNames(const ListContext& ctx);

// The edit page of one system (prompts at column 2, values at column 24).
std::vector<FieldDef> NodePageFields(const ListContext& ctx);

// The cost-sharing sub-page on `rec` (a whole NodeMGRrec), its cursor starting on field
// `first`; true when it changed the record.
bool EditCostSharing(std::uint8_t* rec, int first = node_page::kBilling);

// The "Edit defaults" page on the values new systems start with; true when it changed them.
bool EditNodeDefaults(NodeDefaults& defaults, const ListContext& ctx);
// A new system: the defaults copied into an empty record.
void ApplyNodeDefaults(const NodeDefaults& defaults, NodeMGRrec& rec);

// Why a system cannot be saved, in the order the checks are made, or nothing. A billing
// refusal names the cost-sharing field of the edit page; the field on the sub-page that is
// at fault is node_page::kSendOn.
std::optional<Refusal> CheckNode(const NodeMGRrec& r);

// --- Global edit ---------------------------------------------------------------------------

// One field the global edit can set, as its menu offers it.
struct NodeGlobalField {
  const char* prompt;  // the menu item
  const char* help;    // its status line
  const char* report;  // the result text, followed by " " n " records"
  std::uint16_t mask;  // a switch of `options`, or 0 for a list field
  std::uint16_t offset;
};
// The menu in its order: the four status and mode lists, the nine switches, compression.
const std::vector<NodeGlobalField>& NodeGlobalFields();

// What a global edit does: field `item` of the menu gets `value` (a switch: 1 on, 0 off); when
// `limited`, only on systems authorized for at least one of `groups`.
struct NodeGlobalChange {
  int item = 0;
  std::uint8_t value = 0;
  bool limited = false;
  GroupSet groups;
};
// Applies the change to one system; true when the system changed.
bool ApplyNodeChange(const NodeGlobalChange& change, NodeMGRrec& rec);
// "Toggled the Inactive field for 3 records", and the like.
std::string NodeChangeReport(int item, int records);
// Installs the global edit (F2) on the node manager.
void AddNodeGlobalEdit(ManagerOBJ& mgr, const ListContext& ctx);

}  // namespace ks
