#include "dbase/record_fields.h"

#include <array>
#include <cstddef>

#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "dbase/node_rec.h"

namespace ks {
namespace {

// The fileecho and echomail records as they lie on disk at the default number of systems. A
// group record holds exactly such a fileecho record, so the two tables are one.
using FileechoDisk = FileechoRecord<kDefaultSystemsPerArea>;
using EchoDisk = EchoRecord<kDefaultSystemsPerArea>;
static_assert(sizeof(FileechoDisk) == kFileRecSizeDefault);
static_assert(sizeof(EchoDisk) == EchoRecordSize(kDefaultSystemsPerArea));

#define F(m) KS_FIELD(FileechoDisk, m)
#define R(m) KS_RESERVED(FileechoDisk, m)
constexpr std::array kFileecho = {
    F(tag),
    F(templateFile),
    F(description),
    F(group),
    F(groupUnique),
    F(groupAddBbs),
    F(keep),
    F(groupUplink),
    F(destination),
    F(maxSize),
    F(maxFiles),
    F(maxDays),
    F(banner),
    F(useAka),
    F(longDesc),
    F(options),
    F(options2),
    F(convert),
    F(incCost),
    F(unitCost),
    F(unitSize),
    F(divCosts),
    F(addPercent),
    F(raidLevel),
    F(raidDistribution),
    F(raidHatching),
    F(raidReturnChannel),
    R(reserved315),
    F(systems),
};
#undef F
#undef R

constexpr std::array kConnectedSystem = {
    KS_FIELD(ConnectedSystem, address),
    KS_FIELD(ConnectedSystem, flags),
};

constexpr std::array kMsgArea = {
    KS_FIELD(MsgArea, type),
    KS_FIELD(MsgArea, board),
    KS_FIELD(MsgArea, path),
};

constexpr std::array kFileechoIdx = {
    KS_FIELD(FileMGRidx, tag),
    KS_FIELD(FileMGRidx, group),
    KS_FIELD(FileMGRidx, recno),
};

constexpr std::array kGroup = {
    KS_FIELD(GrpFileMgrRec, fileecho),
    KS_FIELD(GrpFileMgrRec, name),
};

constexpr std::array kGroupIdx = {
    KS_FIELD(GrpFileMgrIdx, group),  KS_FIELD(GrpFileMgrIdx, mask),  KS_FIELD(GrpFileMgrIdx, name),
    KS_FIELD(GrpFileMgrIdx, uplink), KS_FIELD(GrpFileMgrIdx, recno),
};

#define F(m) KS_FIELD(EchoDisk, m)
#define R(m) KS_RESERVED(EchoDisk, m)
constexpr std::array kEcho = {
    F(tag),     R(reserved41), F(description), F(group),  F(area),        F(origin),  F(useAka),
    F(options), F(daysToKeep), F(maxMsgs),     F(uplink), R(reserved263), F(systems),
};
#undef F
#undef R

constexpr std::array kEchoIdx = {
    KS_FIELD(EchoMgrIdx, tag),
    KS_FIELD(EchoMgrIdx, group),
    KS_FIELD(EchoMgrIdx, recno),
};

#define F(m) KS_FIELD(NodeMGRrec, m)
#define R(m) KS_RESERVED(NodeMGRrec, m)
constexpr std::array kNode = {
    F(address),          F(sysop),           F(ticPassword),     F(groups),      F(useAka),
    F(fileAttachStatus), F(otherMailStatus), F(ticMode),         F(packMode),    F(compression),
    F(options),          F(internetSend),    F(rerouteCrash),    F(rerouteHold), F(gateway),
    F(encodeFreqs),      F(billing),         F(areaMgrPassword), F(sendBill),    F(sendOn),
    F(routeVia),         F(internetAddress), F(credit),          F(holdDir),     F(warnLevel),
    F(pktPassword),      F(billGroups),      F(stopLevel),       F(addPercent),  F(membership),
    R(reserved338),      F(compressArcmail), F(membershipFee),   R(reserved353),
};
#undef F
#undef R

constexpr std::array kNodeIdx = {
    KS_FIELD(NodeMGRidx, address),
    KS_FIELD(NodeMGRidx, recno),
};

#define F(m) KS_FIELD(MagicFileMgrRec, m)
constexpr std::array kMagic = {
    F(type),         F(mask),
    F(fromArea),     F(toArea),
    F(directory),    F(command),
    F(keep),         F(hatchDays),
    F(alias),        F(password),
    F(templateFile), F(fileSpec),
    F(exports),      KS_RESERVED(MagicFileMgrRec, reserved2482),
};
#undef F

constexpr std::array kMagicIdx = {
    KS_FIELD(MagicMGRidx, mask),
    KS_FIELD(MagicMGRidx, type),
    KS_FIELD(MagicMGRidx, recno),
};

#define F(m) KS_FIELD(HatchMGRrec, m)
constexpr std::array kHatch = {
    F(area), F(fileSpec), F(replaces), F(magic),    F(description),
    F(days), F(always),   F(copy),     F(inactive), KS_RESERVED(HatchMGRrec, reserved240),
};
#undef F

constexpr std::array kHatchIdx = {
    KS_FIELD(HatchMgrIdx, area),
    KS_FIELD(HatchMgrIdx, recno),
};

#define F(m) KS_FIELD(NewFileMgrRec, m)
#define R(m) KS_RESERVED(NewFileMgrRec, m)
constexpr std::array kReport = {
    F(groups),  R(reserved32), F(inactive), F(useAka),       R(reserved35), F(from),         F(to),
    F(subject), F(area),       F(origin),   F(templateFile), F(exports),    R(reserved2390),
};
#undef F
#undef R

constexpr std::array kReportIdx = {
    KS_FIELD(NewFileMgrIdx, groups),
    KS_FIELD(NewFileMgrIdx, inactive),
    KS_FIELD(NewFileMgrIdx, recno),
};

#define F(m) KS_FIELD(AreaMGRRec, m)
#define R(m) KS_RESERVED(AreaMGRRec, m)
constexpr std::array kArea = {
    F(comment),  F(scan),     F(reply),        F(origin),    F(useAka),       R(reserved284),
    F(inactive), F(maxFiles), F(templateFile), F(fileAreas), R(reserved8311),
};
#undef F
#undef R

constexpr std::array kAreaIdx = {
    KS_FIELD(AreaMgrIdx, comment),
    KS_FIELD(AreaMgrIdx, recno),
};

constexpr std::array kBbsArea = {
    KS_FIELD(BbsAreaMgrRec, comment),
    KS_FIELD(BbsAreaMgrRec, group),
    KS_FIELD(BbsAreaMgrRec, areas),
};

constexpr std::array kBbsAreaIdx = {
    KS_FIELD(BbsAreaMgrIdx, group),
    KS_FIELD(BbsAreaMgrIdx, comment),
    KS_FIELD(BbsAreaMgrIdx, recno),
};

#define F(m) KS_FIELD(AllfilesMgrRec, m)
constexpr std::array kAllfiles = {
    F(tag),      F(templateFile), F(age),
    F(listPath), F(fileAreas),    KS_RESERVED(AllfilesMgrRec, reserved8113),
};
#undef F

constexpr std::array kAllfilesIdx = {
    KS_FIELD(AllfilesMgrIdx, tag),
    KS_FIELD(AllfilesMgrIdx, recno),
};

// The fileecho and echomail tables keep the names of the in-memory structs; their size is
// the default disk size, not the in-memory room for the most systems.
const std::array kLayouts = {
    Layout{"FileMGRrec", sizeof(FileechoDisk), kFileecho},
    Layout{"ConnectedSystem", sizeof(ConnectedSystem), kConnectedSystem},
    Layout{"MsgArea", sizeof(MsgArea), kMsgArea},
    Layout{"GrpFileMgrRec", sizeof(GrpFileMgrRec), kGroup},
    Layout{"EchoMGRrec", sizeof(EchoDisk), kEcho},
    Layout{"NodeMGRrec", sizeof(NodeMGRrec), kNode},
    Layout{"MagicFileMgrRec", sizeof(MagicFileMgrRec), kMagic},
    Layout{"HatchMGRrec", sizeof(HatchMGRrec), kHatch},
    Layout{"NewFileMgrRec", sizeof(NewFileMgrRec), kReport},
    Layout{"AreaMGRRec", sizeof(AreaMGRRec), kArea},
    Layout{"BbsAreaMgrRec", sizeof(BbsAreaMgrRec), kBbsArea},
    Layout{"AllfilesMgrRec", sizeof(AllfilesMgrRec), kAllfiles},
    Layout{"FileMGRidx", sizeof(FileMGRidx), kFileechoIdx},
    Layout{"GrpFileMgrIdx", sizeof(GrpFileMgrIdx), kGroupIdx},
    Layout{"EchoMgrIdx", sizeof(EchoMgrIdx), kEchoIdx},
    Layout{"NodeMGRidx", sizeof(NodeMGRidx), kNodeIdx},
    Layout{"MagicMGRidx", sizeof(MagicMGRidx), kMagicIdx},
    Layout{"HatchMgrIdx", sizeof(HatchMgrIdx), kHatchIdx},
    Layout{"NewFileMgrIdx", sizeof(NewFileMgrIdx), kReportIdx},
    Layout{"AreaMgrIdx", sizeof(AreaMgrIdx), kAreaIdx},
    Layout{"BbsAreaMgrIdx", sizeof(BbsAreaMgrIdx), kBbsAreaIdx},
    Layout{"AllfilesMgrIdx", sizeof(AllfilesMgrIdx), kAllfilesIdx},
};

}  // namespace

std::span<const Layout> RecordLayouts() {
  return kLayouts;
}

const Layout* FindRecordLayout(std::string_view name) {
  for (const auto& l : kLayouts)
    if (l.name == name) return &l;
  return nullptr;
}

}  // namespace ks
