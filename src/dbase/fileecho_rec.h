// Fileecho, group and echomail records (FAREAS, GRPFILE, MAREAS) and their index entries.
//
// A fileecho record is a fixed part of 739 bytes followed by the connected systems, 9 bytes
// each. How many systems a record holds is the configuration's "Number of systems" (0-255),
// so the record size on disk is 739 + 9 x n: 2539 bytes at the default of 200. In memory a
// record always has room for 255 systems; only the first RecordSize(n) bytes go to disk.
// A group record is a fileecho record of exactly 200 systems (the defaults for new fileechos
// of the group) followed by the group name. Echomail records have a fixed part of 967 bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/groupset.h"
#include "common/le.h"
#include "common/netaddr.h"
#include "common/pstr.h"
#include "dbase/record_common.h"

namespace ks {

inline constexpr std::size_t kMaxSystems = 255;  // "Number of systems" is one byte
inline constexpr std::size_t kDefaultSystemsPerArea = 200;

// Connected-system flag byte.
inline constexpr std::uint8_t kSysSendFiles = 0x01;     // "Send files"
inline constexpr std::uint8_t kSysPause = 0x02;         // "Pause"
inline constexpr std::uint8_t kSysReceiveFiles = 0x04;  // "Receive files"
inline constexpr std::uint8_t kSysPrerelease = 0x08;    // "Prerelease"
inline constexpr std::uint8_t kSysStatusMask = 0x70;    // "Msg status": SystemMsgStatus << 4
inline constexpr int kSysStatusShift = 4;
inline constexpr std::uint8_t kSysMandatory = 0x80;  // "Mandatory"

// "Msg status" of a connected system's file attach message.
enum SystemMsgStatus : std::uint8_t { msSetup, msNone, msHold, msCrash };

#pragma pack(push, 1)
// One connected system; a slot whose zone is 0 is free. Slots in use come first.
struct ConnectedSystem {
  NetAddr address;
  std::uint8_t flags = 0;

  SystemMsgStatus status() const {
    return static_cast<SystemMsgStatus>((flags & kSysStatusMask) >> kSysStatusShift);
  }
  void set_status(SystemMsgStatus s) {
    flags = static_cast<std::uint8_t>((flags & ~kSysStatusMask) | (s << kSysStatusShift));
  }
};
#pragma pack(pop)
static_assert(sizeof(ConnectedSystem) == 9);

// First option word of a fileecho ("options"). A switch is on when all its bits are set.
inline constexpr std::uint16_t kFeAnnounce = 1;
inline constexpr std::uint16_t kFeAllowReplace = 2;
inline constexpr std::uint16_t kFeConvertAll = 4;
inline constexpr std::uint16_t kFePassThrough = 8;
inline constexpr std::uint16_t kFeDupeCheck = 16;
inline constexpr std::uint16_t kFeAddFileId = 32;
inline constexpr std::uint16_t kFeVisible = 64;
inline constexpr std::uint16_t kFeTinySeenBy = 128;
inline constexpr std::uint16_t kFeSecurity = 256;
inline constexpr std::uint16_t kFeNoTouch = 512;
inline constexpr std::uint16_t kFeSendOriginal = 1024;
inline constexpr std::uint16_t kFeAddPicSpecs = 2048;
inline constexpr std::uint16_t kFeVirusScan = 4096;
inline constexpr std::uint16_t kFeUpdateMagic = 8192;
inline constexpr std::uint16_t kFeUseFdb = 16384;
inline constexpr std::uint16_t kFeTouchAv = 32768;
// Second option word ("options2").
inline constexpr std::uint16_t kFe2AutoAdded = 2;
inline constexpr std::uint16_t kFe2ConvertIncluded = 4;
inline constexpr std::uint16_t kFe2CompressUnknown = 8;
inline constexpr std::uint16_t kFe2AddFileIdAlways = 32;  // with kFeAddFileId: "Always"
inline constexpr std::uint16_t kFe2UseFbbs = 64;
inline constexpr std::uint16_t kFe2NoHoldDir = 128;

// "LongDesc": which long description is used and which takes priority.
enum LongDescMode : std::uint8_t {
  ldNormal,        // "Normal"
  ldFileIdNormal,  // "FILE_ID.DIZ/Normal"
  ldLdescNormal,   // "LDESC/Normal"
  ldFileIdLdesc,   // "FILE_ID.DIZ/LDESC"
  ldLdescFileId,   // "LDESC/FILE_ID.DIZ"
};
enum CostUnitSize : std::uint8_t { cu100kb, cu1024kb, cuFile };    // "Unit size"
enum CostDivision : std::uint8_t { cdCsNodes, cdAllNodes, cdNo };  // "Div costs"
enum RaidDistribution : std::uint8_t { rdFilebone, rdOpen };       // "Distribution"
enum RaidHatching : std::uint8_t { rhNoHatching, rhAnyone };       // "Hatching"

#pragma pack(push, 1)
template <std::size_t Systems>
struct FileechoRecord {
  PStr<40> tag;                        // 0 "Fileecho tag" (group record: "Fileecho mask"); key
  PStr<12> templateFile;               // 41 "Template": netmail announcement template
  PStr<55> description;                // 54 "Fileecho description"
  std::uint8_t group = 0;              // 110 "Group"; key
  std::uint8_t groupUnique = 0;        // 111 group records: "Unique" directory per fileecho
  std::uint8_t groupAddBbs = 0;        // 112 group records: "Add BBS"
  std::int16_t keep = 0;               // 113 "Keep #": -1 = all and no sort, 0 = all, 1..99
  std::uint8_t groupUplink = 0;        // 115 group records: "Uplink" number; key of GRPFILE
  PStr<100> destination;               // 116 "Dest": destination directory
  std::uint16_t maxSize = 0;           // 217 "Max size": kilobytes, 0 = no limit
  std::uint16_t maxFiles = 0;          // 219 "Max file" (group records: also "BBS Mask")
  std::uint16_t maxDays = 0;           // 221 "Max days", 0 = no limit
  PStr<60> banner;                     // 223 "Banner" added to archives
  std::uint8_t useAka = 0;             // 284 "Use aka": index into the system addresses
  std::uint8_t longDesc = 0;           // 285 "LongDesc": LongDescMode
  std::uint16_t options = 0;           // 286 first option word (kFe...)
  std::uint16_t options2 = 0;          // 288 second option word (kFe2...)
  std::uint8_t convert = 0;            // 290 "Convert": 0 = none, 1..10 = archiver row
  std::uint8_t incCost = 0;            // 291 "Inc cost"
  Real unitCost = 0;                   // 292 "Unit cost", in 100-cent units
  std::uint8_t unitSize = 0;           // 300 "Unit size": CostUnitSize
  std::uint8_t divCosts = 0;           // 301 "Div costs": CostDivision
  Real addPercent = 0;                 // 302 "Add %"
  std::uint16_t raidLevel = 0;         // 310 "Level" 0..4096
  std::uint8_t raidDistribution = 0;   // 312 "Distribution": RaidDistribution
  std::uint8_t raidHatching = 0;       // 313 "Hatching": RaidHatching
  std::uint8_t raidReturnChannel = 0;  // 314 "Return channel"
  std::uint8_t reserved315[424] = {};
  ConnectedSystem systems[Systems];  // 739 "Systems"

  bool Has(std::uint16_t mask) const { return (options & mask) == mask; }
  bool Has2(std::uint16_t mask) const { return (options2 & mask) == mask; }
};
#pragma pack(pop)

inline constexpr std::size_t kFileechoFixedSize = 739;

// The bytes a fileecho record takes on disk with `systems` connected-system slots.
constexpr std::size_t FileechoRecordSize(std::size_t systems) {
  return kFileechoFixedSize + systems * sizeof(ConnectedSystem);
}

// A fileecho record as held in memory: room for the most systems any configuration allows.
using FileMGRrec = FileechoRecord<kMaxSystems>;
inline constexpr std::size_t kFileRecSizeDefault = FileechoRecordSize(kDefaultSystemsPerArea);
static_assert(kFileRecSizeDefault == 2539);

#define KS_FILEECHO_OFFSETS(T)                                                    \
  static_assert(offsetof(T, tag) == 0 && offsetof(T, templateFile) == 41);        \
  static_assert(offsetof(T, description) == 54 && offsetof(T, group) == 110);     \
  static_assert(offsetof(T, keep) == 113 && offsetof(T, groupUplink) == 115);     \
  static_assert(offsetof(T, destination) == 116 && offsetof(T, maxSize) == 217);  \
  static_assert(offsetof(T, maxFiles) == 219 && offsetof(T, maxDays) == 221);     \
  static_assert(offsetof(T, banner) == 223 && offsetof(T, options) == 286);       \
  static_assert(offsetof(T, options2) == 288 && offsetof(T, unitCost) == 292);    \
  static_assert(offsetof(T, addPercent) == 302 && offsetof(T, raidLevel) == 310); \
  static_assert(offsetof(T, reserved315) == 315 && offsetof(T, systems) == kFileechoFixedSize)
KS_FILEECHO_OFFSETS(FileMGRrec);
static_assert(sizeof(FileMGRrec) == FileechoRecordSize(kMaxSystems));

#pragma pack(push, 1)
// Index entry of FAREAS.IDX.
struct FileMGRidx {
  PStr<40> tag;
  std::uint8_t group = 0;
  std::uint16_t recno = 0;
};

// Group record of GRPFILE.KSX: the defaults for new fileechos of the group, then its name.
struct GrpFileMgrRec {
  FileechoRecord<kDefaultSystemsPerArea> fileecho;  // 0: tag = "Mask", group = "Group"
  PStr<25> name;                                    // 2539 "Group name"; key 3
};
using GroupFileechoDefaults = FileechoRecord<kDefaultSystemsPerArea>;
KS_FILEECHO_OFFSETS(GroupFileechoDefaults);

// Index entry of GRPFILE.IDX: group, mask, name, uplink.
struct GrpFileMgrIdx {
  std::uint8_t group = 0;
  PStr<40> mask;
  PStr<25> name;
  std::uint8_t uplink = 0;
  std::uint16_t recno = 0;
};
#pragma pack(pop)
static_assert(sizeof(FileMGRidx) == 44 && offsetof(FileMGRidx, recno) == 42);
static_assert(sizeof(GrpFileMgrRec) == 2565 && offsetof(GrpFileMgrRec, name) == 2539);
static_assert(sizeof(GrpFileMgrIdx) == 71 && offsetof(GrpFileMgrIdx, recno) == 69);

// Echomail area option word ("options").
inline constexpr std::uint16_t kEmInactive = 1;      // area temporarily disabled
inline constexpr std::uint16_t kEmAutoAdded = 2;     // added by KESTRA on its own
inline constexpr std::uint16_t kEmVisible = 4;       // shown in lists of available areas
inline constexpr std::uint16_t kEmSecurity = 8;      // only connected systems may send
inline constexpr std::uint16_t kEmMandatory = 16;    // downlinks may not disconnect
inline constexpr std::uint16_t kEmPassThrough = 32;  // not kept in a local message base

#pragma pack(push, 1)
template <std::size_t Systems>
struct EchoRecord {
  PStr<40> tag;  // 0 area tag; key
  std::uint8_t reserved41[13] = {};
  PStr<55> description;          // 54 area description
  std::uint8_t group = 0;        // 110 group; key
  MsgArea area;                  // 111 message base of the area
  PStr<60> origin;               // 194 origin line
  std::uint8_t useAka = 0;       // 255 index into the system addresses
  std::uint16_t options = 0;     // 256 kEm...
  std::uint16_t daysToKeep = 0;  // 258 purge messages older than this, 0 = never
  std::uint16_t maxMsgs = 0;     // 260 purge above this many messages, 0 = never
  std::uint8_t uplink = 0;       // 262 AreaMgr uplink the area came from, 0 = none
  std::uint8_t reserved263[704] = {};
  ConnectedSystem systems[Systems];  // 967

  bool Has(std::uint16_t mask) const { return (options & mask) == mask; }
};
#pragma pack(pop)

inline constexpr std::size_t kEchoFixedSize = 967;
constexpr std::size_t EchoRecordSize(std::size_t systems) {
  return kEchoFixedSize + systems * sizeof(ConnectedSystem);
}
using EchoMGRrec = EchoRecord<kMaxSystems>;
static_assert(EchoRecordSize(kDefaultSystemsPerArea) == 2767);
static_assert(offsetof(EchoMGRrec, description) == 54 && offsetof(EchoMGRrec, group) == 110);
static_assert(offsetof(EchoMGRrec, area) == 111 && offsetof(EchoMGRrec, origin) == 194);
static_assert(offsetof(EchoMGRrec, useAka) == 255 && offsetof(EchoMGRrec, uplink) == 262);
static_assert(offsetof(EchoMGRrec, systems) == kEchoFixedSize);

#pragma pack(push, 1)
// Index entry of MAREAS.IDX.
struct EchoMgrIdx {
  PStr<40> tag;
  std::uint8_t group = 0;
  std::uint16_t recno = 0;
};
#pragma pack(pop)
static_assert(sizeof(EchoMgrIdx) == 44);

// Echomail option of the configuration, handed to MAREAS when it is packed.
inline constexpr std::uint8_t kEchoPackDropUnlinked = 1;  // drop areas no system is connected to

}  // namespace ks
