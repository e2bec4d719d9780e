// The checks the simple lists make before an entry is saved, apart from the screen: each
// gives the field at fault (its index on the list's page) and the message shown for it, or
// nothing when the entry may be saved. A refusal is final only where saving would lose or
// spoil the entry: an empty key field (the entry would count as deleted) or a value the
// processor cannot read. Whatever else a list asks for (file areas that a fresh setup may not
// have yet, a hatch entry without days) is a warning that the operator may accept.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "dbase/route_rec.h"

namespace ks {

struct Refusal {
  int field = 0;
  std::string message;
  bool warning = false;  // the operator may save the entry all the same
};

// The fields of each page, in page order: the indices the checks return.
namespace filefind_page {
enum Field { kComment, kScan, kReply, kFileAreas, kOrigin, kUseAka, kTemplate, kFiles, kInactive };
}
namespace report_page {
enum Field {
  kGroups,
  kInactive,
  kFrom,
  kTo,
  kSubject,
  kArea,
  kUseAka,
  kOrigin,
  kTemplate,
  kExport
};
}
namespace bbsareas_page {
enum Field { kDescription, kGroup, kFileAreas };
}
namespace allfiles_page {
enum Field { kTag, kAge, kListing, kTemplate, kFileAreas };
}
namespace hatch_page {
enum Field { kArea, kFile, kReplaces, kMagic, kDescription, kDays, kAlways, kCopy, kInactive };
}
namespace echomail_page {
enum Field {
  kTag,
  kDescription,
  kGroup,
  kArea,
  kOrigin,
  kUseAka,
  kDaysToKeep,
  kMaxMsgs,
  kUplink,
  kInactive,
  kPassThrough,
  kVisible,
  kSecurity,
  kMandatory,
  kAutoAdded,
};
}
namespace route_page {
enum Field { kVia, kComment, kNodes, kFlavour, kPackAs, kArchiver, kPassword, kUseAka, kInactive };
}

std::optional<Refusal> CheckFileFindArea(const AreaMGRRec& r);
std::optional<Refusal> CheckNewFileReport(const NewFileMgrRec& r);
std::optional<Refusal> CheckBbsFileAreas(const BbsAreaMgrRec& r);
std::optional<Refusal> CheckAllfilesList(const AllfilesMgrRec& r);
std::optional<Refusal> CheckHatchEntry(const HatchMGRrec& r);
// Only the fixed part of the record is looked at.
std::optional<Refusal> CheckEchomailArea(const EchoMGRrec& r);
std::optional<Refusal> CheckRoute(const RouteMgrRec& r);

// One node mask of a route: "2:*", "2:280/*", "2:280/5555", "2:280/5555.*", "*" (every
// part a number or "*", the parts after the first optional).
bool ValidNodeMask(std::string_view mask);
// The first node mask of a space-separated list that is not valid, or "" when all are.
std::string BadNodeMask(std::string_view masks);

}  // namespace ks
