// Node record (NODEFILE) and its index entry: one connected system, 398 bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/groupset.h"
#include "common/netaddr.h"
#include "common/pstr.h"
#include "dbase/record_common.h"

namespace ks {

// "File attach status" and "Other mail status".
enum FlowStatus : std::uint8_t { fsNone, fsHold, fsCrash, fsDirect, fsHoldDirect, fsCrashDirect };
enum TicFileMode : std::uint8_t { tmNone, tmNormal, tmAdvanced };  // "TIC file mode"
enum PackingMode : std::uint8_t { pmNoPacking, pmTicFiles, pmAllFiles, pmTicPlusFile };
enum InternetSend : std::uint8_t { isNothing, isMail, isFiles, isMailAndFiles, isOnHold };
enum GatewayMode : std::uint8_t { gwNo, gwLocal, gwRerouted, gwLocalAndRerouted };
enum BillPeriod : std::uint8_t { bpMonthly, bpWeekly, bpDirect, bpYearly };  // "Send bill"

// Advanced switches of a node ("options").
inline constexpr std::uint16_t kNodeInactive = 0x001;
inline constexpr std::uint16_t kNodeCopyOtherFiles = 0x002;
inline constexpr std::uint16_t kNodeIncludeTemplate = 0x004;
inline constexpr std::uint16_t kNodeSendNotifyList = 0x008;
inline constexpr std::uint16_t kNodeNotifyNewEchos = 0x010;
inline constexpr std::uint16_t kNodeForwardRequests = 0x020;
inline constexpr std::uint16_t kNodeAllowAutoAdd = 0x040;
inline constexpr std::uint16_t kNodeRemoteMaint = 0x080;
inline constexpr std::uint16_t kNodeTicWithFreq = 0x100;

#pragma pack(push, 1)
struct NodeMGRrec {
  NetAddr address;                    // 0 "System address"; key
  PStr<35> sysop;                     // 8 "System Operator"
  PStr<20> ticPassword;               // 44 "Fileecho password"
  GroupSet groups;                    // 65 "Authorized groups"
  std::uint8_t useAka = 0;            // 97 "Use aka": index into the system addresses
  std::uint8_t fileAttachStatus = 0;  // 98 FlowStatus
  std::uint8_t otherMailStatus = 0;   // 99 FlowStatus
  std::uint8_t ticMode = 0;           // 100 TicFileMode
  std::uint8_t packMode = 0;          // 101 PackingMode
  std::uint8_t compression = 0;       // 102 "Compression type": 0 = none, 1..10 = archiver row
  std::uint16_t options = 0;          // 103 advanced switches (kNode...)
  std::uint8_t internetSend = 0;      // 105 "Send": InternetSend
  std::uint8_t rerouteCrash = 0;      // 106 "Crash mail"
  std::uint8_t rerouteHold = 0;       // 107 "Hold mail"
  std::uint8_t gateway = 0;           // 108 "Act as Gateway": GatewayMode
  std::uint8_t encodeFreqs = 0;       // 109 "Encode FREQs"
  std::uint8_t billing = 0;           // 110 "Billing"
  PStr<20> areaMgrPassword;           // 111 "AreaMgr password"
  std::uint8_t sendBill = 0;          // 132 "Send bill": BillPeriod
  std::uint8_t sendOn = 0;            // 133 "Send on": day of week/month or month
  NetAddr routeVia;                   // 134 "Route via"
  PStr<60> internetAddress;           // 142 "Internet address"
  Real credit = 0;                    // 203 "Credit"
  PStr<60> holdDir;                   // 211 "Holding directory"
  Real warnLevel = 0;                 // 272 "Warn level"
  PStr<8> pktPassword;                // 280 "PKT password"
  GroupSet billGroups;                // 289 "Bill groups"
  Real stopLevel = 0;                 // 321 "Stop level"
  Real addPercent = 0;                // 329 "Add %"
  std::uint8_t membership = 0;        // 337 "Membership"
  std::uint8_t reserved338[6] = {};
  std::uint8_t compressArcmail = 0;  // 344 "Compress ArcMail"
  Real membershipFee = 0;            // 345 "Membership fee"
  std::uint8_t reserved353[45] = {};

  bool Has(std::uint16_t mask) const { return (options & mask) == mask; }
};

struct NodeMGRidx {
  NetAddr address;
  std::uint16_t recno = 0;
};
// The values a new system starts with (the node manager's defaults page, F3). Kept in the
// system configuration.
struct NodeDefaults {
  GroupSet groups;                    // 0 "Authorized groups"
  std::uint8_t fileAttachStatus = 0;  // 32 FlowStatus
  std::uint8_t otherMailStatus = 0;   // 33 FlowStatus
  std::uint8_t ticMode = 0;           // 34 TicFileMode
  std::uint8_t packMode = 0;          // 35 PackingMode
  std::uint8_t compression = 0;       // 36 0 = none, 1..10 = archiver row
  std::uint16_t options = 0;          // 37 kNodeIncludeTemplate, kNodeSendNotifyList,
                                      //    kNodeForwardRequests, kNodeAllowAutoAdd,
                                      //    kNodeRemoteMaint
  std::uint8_t reserved39[9] = {};
};
#pragma pack(pop)
static_assert(sizeof(NodeMGRrec) == 398);
static_assert(offsetof(NodeMGRrec, sysop) == 8 && offsetof(NodeMGRrec, ticPassword) == 44);
static_assert(offsetof(NodeMGRrec, areaMgrPassword) == 111);
static_assert(offsetof(NodeMGRrec, routeVia) == 134 && offsetof(NodeMGRrec, holdDir) == 211);
static_assert(offsetof(NodeMGRrec, pktPassword) == 280);
static_assert(offsetof(NodeMGRrec, compressArcmail) == 344);
static_assert(offsetof(NodeMGRrec, groups) == 65 && offsetof(NodeMGRrec, options) == 103);
static_assert(offsetof(NodeMGRrec, credit) == 203 && offsetof(NodeMGRrec, billGroups) == 289);
static_assert(offsetof(NodeMGRrec, membershipFee) == 345);
static_assert(sizeof(NodeMGRidx) == 10);

static_assert(sizeof(NodeDefaults) == 48 && offsetof(NodeDefaults, options) == 37);

}  // namespace ks
