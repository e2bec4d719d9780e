#include "shell/cfgupgrade.h"

#include <array>
#include <cstring>

#include "shell/cfgdefaults.h"

namespace ks {
namespace {

std::uint8_t* Bytes(KESTRAcfg& rec) {
  return reinterpret_cast<std::uint8_t*>(&rec);
}

void ClearBytes(KESTRAcfg& rec, std::size_t first, std::size_t last) {
  std::memset(Bytes(rec) + first, 0, last - first + 1);
}

template <typename T>
void Clear(T& field) {
  std::memset(reinterpret_cast<std::uint8_t*>(&field), 0, sizeof field);
}

void SetLimits(RpSessionLimits& s, const RpLimitDefaults& d) {
  s.maxFiles = d.files;
  s.maxSizeKb = d.sizeKb;
  s.maxTimeMin = d.minutes;
}

// Revision 2 added the data directory and the download counters.
void Step2(KESTRAcfg& rec) {
  ClearBytes(rec, 1, 61);
  ClearBytes(rec, 15421, 15450);
}

// Revision 3 added the TIC archive limits and the free-space check before importing.
void Step3(KESTRAcfg& rec) {
  ClearBytes(rec, 16088, 16091);
  rec.minHdSpace = kDefaultMinHdSpace;
}

// Revision 7 moved the address list to the end of the record (making room for the bad and
// duplicate TIC logs) and made the aka-matching table hold the aka itself instead of its
// position in the list, so that reordering the akas no longer changes the matching.
void Step7(KESTRAcfg& rec) {
  rec.logMask = kDefaultLogMask;
  rec.useAkaMatching = 1;

  std::array<NetAddr, kOldAddressCount> oldList;
  std::memcpy(oldList.data(), Bytes(rec) + kOldAddressOffset, sizeof oldList);
  std::array<OldAkaMatchRow, kAkaMatchCount> oldRows;
  std::memcpy(oldRows.data(), Bytes(rec) + kOldAkaMatchOffset, sizeof oldRows);

  Clear(rec.addresses);
  std::memcpy(Bytes(rec) + offsetof(KESTRAcfg, addresses), oldList.data(), sizeof oldList);
  std::memset(Bytes(rec) + kOldAddressOffset, 0, sizeof oldList);

  Clear(rec.akaMatch);
  for (std::size_t i = 0; i < kAkaMatchCount; ++i) {
    const OldAkaMatchRow& old = oldRows[i];
    if (old.zone == 0) continue;
    AkaMatchRow row;
    row.zone = old.zone;
    row.net = old.net;
    if (old.akaIndex < kOldAddressCount) row.aka = oldList[old.akaIndex];
    rec.akaMatch[i] = row;
  }
}

// Revision 8 added the internet settings.
void Step8(KESTRAcfg& rec) {
  Clear(rec.internet);
  rec.internet.resendRetry = kDefaultResendRetry;
  rec.internet.resendDelay = kDefaultResendDelay;
  rec.internet.messageSizeKb = kDefaultMessageSizeKb;
  rec.internet.spoolAgeDays = kDefaultSpoolAgeDays;
}

// Revision 9 added the uplink options.
void Step9(KESTRAcfg& rec) {
  rec.reRequestRate = kDefaultReRequestRate;
  rec.reRequestTimes = kDefaultReRequestTimes;
  rec.autoRemovePassthru = 0;
  rec.autoAddDelay = kDefaultAutoAddDelay;
}

// Revision 10 added the request processor's session limits.
void Step10(KESTRAcfg& rec) {
  RequestProcessor& rp = rec.requestProcessor;
  rp.inetMaxFiles = kDefaultInetMaxFiles;
  rp.inetMaxSizeKb = kDefaultInetMaxSizeKb;
  SetLimits(rp.unlisted, kDefaultUnlistedLimits);
  SetLimits(rp.unsecure, kDefaultUnsecureLimits);
  SetLimits(rp.secure, kDefaultSecureLimits);
}

// Revision 11 added the layout of long descriptions.
void Step11(KESTRAcfg& rec) {
  rec.longDescChar = kDefaultLongDescChar;
  rec.longDescSpacesBefore = kDefaultLongDescSpacesBefore;
  rec.longDescSpacesAfter = kDefaultLongDescSpacesAfter;
  rec.longDescWidth = 0;
  rec.oneLineLongDesc = 0;
  rec.maxLongDescLines = 0;
}

// Revision 12 added the external program options.
void Step12(KESTRAcfg& rec) {
  rec.swapMethod = smXmsEmsDisk;
  rec.redirectOutput = 1;
  rec.noVirusErrorlevel = 0;
  rec.filesToScan = sfExecutables;
  rec.eacVirusErrorlevel = kDefaultEacVirusErrorlevel;
  rec.eacErrorErrorlevel = kDefaultEacErrorErrorlevel;
}

// Revision 13 added the long-description filters.
void Step13(KESTRAcfg& rec) {
  rec.delEmptyLines = 1;
  rec.filterAnsi = 1;
  rec.filterLongDesc = flNone;
  Clear(rec.filterString);
}

// Revision 14 added the kludges and lines of generated messages.
void Step14(KESTRAcfg& rec) {
  rec.addTearOrigin = 1;
  rec.addNpdKludge = 0;
  rec.addPgmKludge = 1;
}

// Revision 15 gave each uplink its own origin aka; until then requests went out from the main
// address, so an uplink in use keeps doing that.
void Step15(KESTRAcfg& rec) {
  for (auto& u : rec.uplinks) {
    if (u.address.IsSet())
      u.originAka = rec.addresses[0];
    else
      Clear(u.originAka);
    u.direct = 0;
  }
}

// Revision 16 added the choice of what makes a file a duplicate, and the dupe directory.
void Step16(KESTRAcfg& rec) {
  rec.dupeCheck = dcCrcNameExt;
  Clear(rec.dupePath);
}

// Revision 17 added the speech-friendly interface and the fileecho list filter.
void Step17(KESTRAcfg& rec) {
  rec.speechFriendly = 0;
  Clear(rec.fileechoListGroups);
}

// Revision 18 added the Outlook account, netmail re-routing and the invalidated flow-file
// extension.
void Step18(KESTRAcfg& rec) {
  Clear(rec.internet.outlookAccount);
  rec.internet.scanNetmail = 0;
  rec.invalidFlowExt.set(kDefaultInvalidFlowExt);
}

constexpr RevisionStep kSteps[] = {
    {2, Step2},   {3, Step3},   {7, Step7},   {8, Step8},   {9, Step9},
    {10, Step10}, {11, Step11}, {12, Step12}, {13, Step13}, {14, Step14},
    {15, Step15}, {16, Step16}, {17, Step17}, {18, Step18},
};

}  // namespace

std::span<const RevisionStep> RevisionSteps() {
  return kSteps;
}

void ApplyRevisionSteps(KESTRAcfg& rec) {
  const std::uint8_t stored = rec.revision;
  for (const auto& step : kSteps)
    if (step.below > stored) step.apply(rec);
}

}  // namespace ks
