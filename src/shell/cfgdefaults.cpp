#include "shell/cfgdefaults.h"

#include <cstring>
#include <initializer_list>

#include "shell/cfgupgrade.h"

namespace ks {
namespace {

// One archiver row as it is filled into a new record.
struct ArchiverPreset {
  const char* extension;
  const char* packProgram;
  const char* packSwitches;
  const char* unpackProgram;
  const char* unpackSwitches;
  const char* noDirsSwitches;
  std::initializer_list<std::uint8_t> signature;
  std::uint32_t offset;
};

// The rows ARC, ARJ, LZH, PAK, ZIP and SQZ of "External programs (DOS)". ARC and PAK share
// the header byte 1A; PAK unpacks both.
const ArchiverPreset kDosArchivers[] = {
    {"ARC", "ARC", "a", "ARC", "e", "e", {0x1A}, 0},
    {"ARJ", "ARJ", "a -e -y", "ARJ", "x -y", "e -y", {0x60, 0xEA}, 0},
    {"LZH", "LHA", "a /m", "LHA", "x /m", "e /m", {'-', 'l', 'h'}, 2},
    {"PAK", "PAK", "a", "PAK", "e", "e", {0x1A}, 0},
    {"ZIP", "PKZIP", "-a", "PKUNZIP", "-d -o", "-o", {'P', 'K', 0x03, 0x04}, 0},
    {"SQZ", "SQZ", "a", "SQZ", "x", "x", {'H', 'L', 'S', 'Q', 'Z'}, 0},
};

// The ZIP row of "External programs (OS2)": the native zip tools; the other rows run the
// same programs as under DOS.
const ArchiverPreset kOs2Zip = {
    "ZIP", "ZIP", "-j -q", "UNZIP", "-o", "-j -o", {'P', 'K', 0x03, 0x04}, 0};
constexpr std::size_t kZipRow = 4;

void SetArchiver(ArchiverDef& a, const ArchiverPreset& p) {
  a = ArchiverDef{};
  a.extension.set(p.extension);
  a.packProgram.set(p.packProgram);
  a.packSwitches.set(p.packSwitches);
  a.unpackProgram.set(p.unpackProgram);
  a.unpackSwitches.set(p.unpackSwitches);
  a.noDirsSwitches.set(p.noDirsSwitches);
  std::size_t i = 0;
  std::uint16_t mask = 0;
  for (std::uint8_t b : p.signature) {
    a.signature[i] = b;
    mask = static_cast<std::uint16_t>(mask | (1u << i));
    ++i;
  }
  a.signatureMask = mask;
  a.signatureOffset = p.offset;
}

}  // namespace

void FillNewDefaults(KESTRAcfg& rec, const ProgramVersion& version) {
  std::memset(reinterpret_cast<std::uint8_t*>(&rec), 0, sizeof rec);

  // Every setting that a revision introduced gets the default that its upgrade step gives
  // older files, so that new and upgraded records start alike.
  rec.revision = 0;
  ApplyRevisionSteps(rec);

  rec.revision = kCurrentRevision;
  rec.versionMajor = version.major;
  rec.versionMinor = version.minor;
  rec.versionBuild = version.build;

  rec.numberOfSystems = kDefaultNumberOfSystems;
  rec.logStyle = lsFrontDoor;
  rec.mailerMode = FrontDoorMode;
  rec.dateFormat = dfEuropean;
  rec.msgCompatibility = mcFido;
  rec.maxRequestAge = kDefaultMaxRequestAge;
  rec.lastHardDrive = kDefaultLastHardDrive;
  rec.keepFileDate = 1;
  rec.setUploader = upKestra;

  for (std::size_t i = 0; i < std::size(kDosArchivers); ++i) {
    SetArchiver(rec.dosPrograms.archivers[i], kDosArchivers[i]);
    SetArchiver(rec.os2Programs.archivers[i], kDosArchivers[i]);
  }
  SetArchiver(rec.os2Programs.archivers[kZipRow], kOs2Zip);

  // FidoNet itself: zones 1 to 6.
  for (std::uint16_t zone = 1; zone <= 6; ++zone) {
    rec.domains[zone - 1].zone = zone;
    rec.domains[zone - 1].domain.set("fidonet");
  }
}

void FillDependentDefaults(KESTRAcfg& rec) {
  if (rec.nextInvoice == 0) rec.nextInvoice = 1;

  // Below the minimum the processor would import onto a full disk.
  if (rec.minHdSpace == 0) rec.minHdSpace = kDefaultMinHdSpace;
  // A NUL character would end up in the file lists.
  if (rec.longDescChar == 0) rec.longDescChar = kDefaultLongDescChar;
  // 0 days would re-request a missing fileecho on every run.
  if (rec.reRequestRate == 0) rec.reRequestRate = kDefaultReRequestRate;
  // 0 days would resend unacknowledged mail at once; age 0 would drop parts straight away;
  // size 0 would make every message too big to send.
  if (rec.internet.resendDelay == 0) rec.internet.resendDelay = kDefaultResendDelay;
  if (rec.internet.spoolAgeDays == 0) rec.internet.spoolAgeDays = kDefaultSpoolAgeDays;
  if (rec.internet.messageSizeKb == 0) rec.internet.messageSizeKb = kDefaultMessageSizeKb;
  // Errorlevel 0 is success: as the lowest "virus" or "error" level it would turn every
  // successful conversion into a failure.
  if (rec.eacVirusErrorlevel == 0) rec.eacVirusErrorlevel = kDefaultEacVirusErrorlevel;
  if (rec.eacErrorErrorlevel == 0) rec.eacErrorErrorlevel = kDefaultEacErrorErrorlevel;
  // The processor needs a drive letter to tell hard drives from the others.
  if (rec.lastHardDrive == 0) rec.lastHardDrive = kDefaultLastHardDrive;
}

}  // namespace ks
