// The records of the smaller lists: magic file names (MGICFILE), hatch entries (HATCH), new
// file reports (REPORTS), FileFind message areas (AREAS), BBS file areas (BBSAREAS) and
// ALLFILES listings (ALLFILES), with their index entries.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/groupset.h"
#include "common/netaddr.h"
#include "common/pstr.h"
#include "dbase/record_common.h"

namespace ks {

// Type of a magic file name rule; 0 and values above 16 are shown as "Unknown type".
enum MagicType : std::uint8_t {
  mtUnknown,
  mtAdoptFile,
  mtExecCommand,
  mtForwardTo,
  mtMoveToArea,
  mtNoForward,
  mtOtherPath,
  mtUpdateAlias,
  mtCopyFile,
  mtKeepNum,
  mtHatchNew,
  mtPickUpFile,
  mtUnpackFile,
  mtPassThruFile,
  mtDeleteFile,
  mtServiceReq,
  mtSendOnFreq,
};
inline constexpr std::size_t kExportSlots = 255;  // systems in an export list

#pragma pack(push, 1)
struct MagicFileMgrRec {
  std::uint8_t type = 0;          // 0 "Type": MagicType; key 2
  PStr<12> mask;                  // 1 "File mask"; key 1
  PStr<40> fromArea;              // 14 "From area": a fileecho tag or "*** ALL ***"
  PStr<40> toArea;                // 55 "To area"
  PStr<79> directory;             // 96 "Directory"
  PStr<127> command;              // 176 "Command": ";" separates several
  std::int16_t keep = 0;          // 304 "Keep #"
  std::uint8_t hatchDays = 0;     // 306 "Days": kDaySunday.. bits
  PStr<20> alias;                 // 307 "Alias"
  PStr<20> password;              // 328 "Password"
  PStr<12> templateFile;          // 349 "Template"
  PStr<79> fileSpec;              // 362 "File"
  NetAddr exports[kExportSlots];  // 442 "Export": zone 0 = free slot, used slots first
  std::uint8_t reserved2482[74] = {};
};

struct MagicMGRidx {
  PStr<12> mask;
  std::uint8_t type = 0;
  std::uint16_t recno = 0;
};

struct HatchMGRrec {
  PStr<40> area;              // 0 "Fileecho area"; key
  PStr<79> fileSpec;          // 41 "File specification to hatch"
  PStr<12> replaces;          // 121 "Which file specification to replace"
  PStr<20> magic;             // 134 magic name for the alias file
  PStr<80> description;       // 155 "Description of file"
  std::uint8_t days = 0;      // 236 hatch days: kDaySunday.. bits
  std::uint8_t always = 0;    // 237 hatch even when the file has not changed
  std::uint8_t copy = 0;      // 238 copy the file instead of moving it
  std::uint8_t inactive = 0;  // 239
  std::uint8_t reserved240[2] = {};
};

struct HatchMgrIdx {
  PStr<40> area;
  std::uint16_t recno = 0;
};

struct NewFileMgrRec {
  GroupSet groups;  // 0 "Groups to include in this report"; key 1
  std::uint8_t reserved32 = 0;
  std::uint8_t inactive = 0;  // 33 key 2
  std::uint8_t useAka = 0;    // 34 index into the system addresses
  std::uint8_t reserved35[13] = {};
  PStr<35> from;                  // 48 "Who the report is from"
  PStr<35> to;                    // 84 "Who the report is to"
  PStr<72> subject;               // 120 "The subject of the report"
  MsgArea area;                   // 193 message area the report is written to
  PStr<60> origin;                // 276 origin line
  PStr<12> templateFile;          // 337 report template
  NetAddr exports[kExportSlots];  // 350 netmail export list
  std::uint8_t reserved2390[247] = {};
};

struct NewFileMgrIdx {
  GroupSet groups;
  std::uint8_t inactive = 0;
  std::uint16_t recno = 0;
};

struct AreaMGRRec {
  PStr<55> comment;         // 0 "Comment"; key
  MsgArea scan;             // 56 "Scan"
  MsgArea reply;            // 139 "Reply": only when different from the scan area
  PStr<60> origin;          // 222 "Origin"
  std::uint8_t useAka = 0;  // 283 "Use aka"
  std::uint8_t reserved284[11] = {};
  std::uint8_t inactive = 0;  // 295 "InActive"
  std::int16_t maxFiles = 0;  // 296 "Files": up to 100, 0 = default
  PStr<12> templateFile;      // 298 "Template"
  FileAreaSet fileAreas;      // 311 "Fileareas"
  std::uint8_t reserved8311[89] = {};
};

struct AreaMgrIdx {
  PStr<55> comment;
  std::uint16_t recno = 0;
};

struct BbsAreaMgrRec {
  PStr<55> comment;        // 0 "Description of this entry"; key 2
  std::uint8_t group = 0;  // 56 "Group"; key 1
  FileAreaSet areas;       // 57 BBS file areas scanned for new files
};

struct BbsAreaMgrIdx {
  std::uint8_t group = 0;
  PStr<55> comment;
  std::uint16_t recno = 0;
};

struct AllfilesMgrRec {
  PStr<40> tag;           // 0 "Tag used to identify this ALLFILES listing"; key
  PStr<8> templateFile;   // 41 template name, without ".apl"
  std::uint16_t age = 0;  // 50 days, 0..365, 0 = all
  PStr<60> listPath;      // 52 "Name and path of the ALLFILES listing"
  FileAreaSet fileAreas;  // 113 file areas to include
  std::uint8_t reserved8113[79] = {};
};

struct AllfilesMgrIdx {
  PStr<40> tag;
  std::uint16_t recno = 0;
};
#pragma pack(pop)

static_assert(sizeof(MagicFileMgrRec) == 2556 && offsetof(MagicFileMgrRec, mask) == 1);
static_assert(offsetof(MagicFileMgrRec, keep) == 304 && offsetof(MagicFileMgrRec, exports) == 442);
static_assert(sizeof(MagicMGRidx) == 16);
static_assert(sizeof(HatchMGRrec) == 242 && offsetof(HatchMGRrec, fileSpec) == 41);
static_assert(offsetof(HatchMGRrec, replaces) == 121 && offsetof(HatchMGRrec, magic) == 134);
static_assert(offsetof(HatchMGRrec, description) == 155 && offsetof(HatchMGRrec, days) == 236);
static_assert(sizeof(HatchMgrIdx) == 43);
static_assert(sizeof(NewFileMgrRec) == 2637 && offsetof(NewFileMgrRec, inactive) == 33);
static_assert(offsetof(NewFileMgrRec, from) == 48 && offsetof(NewFileMgrRec, to) == 84);
static_assert(offsetof(NewFileMgrRec, subject) == 120 && offsetof(NewFileMgrRec, area) == 193);
static_assert(offsetof(NewFileMgrRec, exports) == 350);
static_assert(sizeof(NewFileMgrIdx) == 35);
static_assert(sizeof(AreaMGRRec) == 8400 && offsetof(AreaMGRRec, inactive) == 295);
static_assert(offsetof(AreaMGRRec, maxFiles) == 296 && offsetof(AreaMGRRec, fileAreas) == 311);
static_assert(sizeof(AreaMgrIdx) == 58);
static_assert(sizeof(BbsAreaMgrRec) == 8057 && offsetof(BbsAreaMgrRec, group) == 56);
static_assert(sizeof(BbsAreaMgrIdx) == 59);
static_assert(sizeof(AllfilesMgrRec) == 8192 && offsetof(AllfilesMgrRec, age) == 50);
static_assert(offsetof(AllfilesMgrRec, listPath) == 52 &&
              offsetof(AllfilesMgrRec, fileAreas) == 113);
static_assert(sizeof(AllfilesMgrIdx) == 43);

}  // namespace ks
