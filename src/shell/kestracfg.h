// The system configuration record KESTRAcfg, the single record of "setup.ksx".
//
// The record is read and written in place as raw bytes, so every member sits at a fixed byte
// offset: the offsets the shell, the processor and older files rely on are asserted at the end
// of this file, and doc/FORMATS.md carries the complete byte map. Numbers are little-endian,
// strings are length-prefixed (PStr), addresses are NetAddr and group sets GroupSet. Choice
// fields are single bytes holding the value of the enumeration named in their comment; the
// screens store them as plain bytes so that a damaged value never becomes undefined behaviour.
// Comments give the screen prompt in quotes, then the meaning.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "common/groupset.h"
#include "common/le.h"
#include "common/netaddr.h"
#include "common/pstr.h"
#include "dbase/node_rec.h"

namespace ks {

inline constexpr std::size_t kSetupRecordSize = 17884;
inline constexpr std::uint8_t kCurrentRevision = 18;

inline constexpr std::size_t kArchiverCount = 10;    // per operating system
inline constexpr std::size_t kSignatureBytes = 10;   // "HH HH HH HH HH HH HH HH HH HH"
inline constexpr std::size_t kDomainCount = 40;      // rows of "Domain names"
inline constexpr std::size_t kAkaMatchCount = 20;    // rows of "Aka matching"
inline constexpr std::size_t kUplinkCount = 20;      // AreaMgr uplink slots
inline constexpr std::size_t kOriginLineCount = 20;  // "Origin lines"
inline constexpr std::size_t kAddressCount = 64;     // main address + 63 akas
inline constexpr std::size_t kColourSetLength = 38;  // bytes of a colour set when it is set
inline constexpr std::size_t kConfigGroupSetCount = 1 + kUplinkCount + 3;

// Value ranges the screens enforce.
inline constexpr int kPriorityMin = -31, kPriorityMax = 31;    // "KESTRA priority", "RP priority"
inline constexpr int kUtcOffsetMin = -12, kUtcOffsetMax = 12;  // "UTC offset"
inline constexpr int kMinHdSpaceMin = 100;                     // "Min HD space to import"
inline constexpr int kMinTicArchiveSize = 100;                 // "Max TIC archive size" when not 0

// "Log style"
enum LogStyleType : std::uint8_t {
  lsFrontDoor,
  lsDBridge,
  lsRemoteAccess,
  lsSuperBBS,
  lsBinkleyTerm,
  lsPortalOfPower,
  lsWildCat,
};

// "Mailer mode"
enum MailerModeType : std::uint8_t {
  FrontDoorMode,
  BinkleyMode,
  DBridgeMode,
  PortalOfPower,
  McMailMode,
  TMailMode,
  MainDoorMode,
  FrontDoorSTQ,
};

// "Date format": dd-mm-yy, mm-dd-yy, yy-mm-dd
enum DateFormatType : std::uint8_t { dfEuropean, dfAmerican, dfMilitary };

// "MSG compatibility": Fido (zone/point info), Opus (binary datestamps), None
enum MsgCompatType : std::uint8_t { mcFido, mcOpus, mcNone };

// "Swapping method", in order of priority
enum SwapMethodType : std::uint8_t { smNone, smDisk, smXmsEms, smXmsEmsDisk };

// "Files to scan": EXE/COM/OVR/DLL or *.*
enum ScanFilesType : std::uint8_t { sfExecutables, sfAll };

// "Dupe checking": what makes two files duplicates ("name" = file name without extension)
enum DupeCheckType : std::uint8_t {
  dcNameExt,
  dcNameExtEcho,
  dcCrc,
  dcCrcEcho,
  dcCrcNameExt,
  dcCrcEchoNameExt,
  dcName,
  dcNameEcho,
  dcCrcName,
  dcCrcEchoName,
};

// "Filter LongDesc"
enum FilterLongDescType : std::uint8_t { flNone, flHighAscii, flCarriageReturns, flBoth };

// "Set uploader to"
enum UploaderType : std::uint8_t { upKestra, upSysOp, upFileecho };

// "Add tag to desc"
enum AddTagType : std::uint8_t { atNo, atBefore, atAfter, atBeforeCr, atCrAfter };

// Uplink "Type": fileechos from another KESTRA, or echomail conferences through an AreaMgr
enum UplinkType : std::uint8_t { utFileechos, utConferences };

// Uplink "File format" of the areas file
enum AreasFileFormat : std::uint8_t { afTagFile, afFilebone };

// Request processor "Flag mode" of the response file
enum RpFlagModeType : std::uint8_t { fmDefault, fmCantaloup, fmInterMail, fmBBBS };

// Request processor "CC sysop"
enum CcSysopType : std::uint8_t { ccNo, ccAlways, ccOnError };

// Internet "Email client"
enum EmailClientType : std::uint8_t {
  ecStandard,
  ecPostRoad,
  ecNetTamer,
  ecPMMail,
  ecUucp,
  ecSoupYarn,
  ecEudora,
  ecKA9Q,
  ecMR2ICE,
  ecPegasus,
  ecOutlookExpress,
};

#pragma pack(push, 1)

// One archiver row of "External programs": how to pack, how to unpack, and how to recognise
// an archive of this kind (its bytes at signatureOffset compared with the signature).
struct ArchiverDef {
  PStr<60> packProgram = {};     // "Program file": compression program, may include a path
  PStr<40> packSwitches = {};    // "Switches": compression switches
  PStr<40> bannerSwitches = {};  // "Banner": @1 = path\filename, @2 = path\banner
  PStr<60> unpackProgram = {};   // "Program file": uncompression program
  PStr<40> unpackSwitches = {};  // "Switches": uncompression switches
  PStr<40> noDirsSwitches = {};  // "No dirs": unpack without creating archived directories
  std::uint8_t signature[kSignatureBytes] = {};  // "Signature": up to ten bytes
  std::uint16_t signatureMask = 0;    // bit i set: signature[i] was entered and must match;
                                      // clear: a blank pair that matches any byte
  std::uint32_t signatureOffset = 0;  // "Offset": where the signature lies in the archive
  PStr<3> extension = {};             // "Extension": archive extension, e.g. ZIP
};

// A helper program row (SCAN, EAC, GUS, ED).
struct ToolProgram {
  PStr<60> program = {};   // "Program file": may include a path
  PStr<40> switches = {};  // "Switches"
};

// One "External programs" screen: the programs for one operating system.
struct ExternalPrograms {
  ArchiverDef archivers[kArchiverCount] = {};  // ARC ARJ LZH PAK ZIP SQZ 7 8 9 10
  ToolProgram scan = {};                       // "SCAN": virus scanner, @1 = path
  ToolProgram eac = {};     // "EAC": external archive conversion, @1 = filename, @2 = path
  ToolProgram gus = {};     // "GUS": general unpack shell, @1 = filename, @2 = files to unpack
  ToolProgram editor = {};  // "ED": external editor used instead of the internal one
};

// One row of "Domain names".
struct DomainName {
  std::uint16_t zone = 0;  // "Zone"; 0 = empty row
  PStr<20> domain = {};    // "Domain name"
};

// One row of "Aka matching": mail to zone:net goes out with this aka (net 0 = whole zone).
struct AkaMatchRow {
  std::uint16_t zone = 0;  // "Zone:Net" pattern, zone part; 0 = empty row
  std::uint16_t net = 0;   // "Zone:Net" pattern, net part
  NetAddr aka = {};        // "AKA": one of the system's addresses
};

// One slot of the "AreaMgr uplink manager".
struct AreaMgrUplink {
  std::uint8_t type = 0;           // "Type": UplinkType
  NetAddr address = {};            // "Uplink system"; zone 0 = slot unused
  PStr<15> program = {};           // "AreaMgr program": name the request is sent to
  PStr<10> password = {};          // "Password": put on the subject line
  std::uint8_t plusPrefix = 0;     // "Add '+' prefix": the AreaMgr needs '+' to connect
  GroupSet groups = {};            // "Authorized groups": the requesting node needs one of these
  std::uint8_t unconditional = 0;  // "Unconditional": forward every request of such a node
  PStr<60> areasFile = {};         // "Areas filename": areas available from this uplink
  std::uint8_t fileFormat = 0;     // "File format": AreasFileFormat
  NetAddr originAka = {};          // "Origin address": aka for the request messages
  std::uint8_t direct = 0;         // "Direct": send the request messages with the Direct flag
};

// The limits of one session class of the request processor (UNLISTED, UNSECURE, SECURE).
struct RpSessionLimits {
  PStr<60> aliasFile = {};       // "Alias": alias file for this class
  GroupSet groups = {};          // "Groups": groups whose areas may be requested
  PStr<60> listFile = {};        // "List": list of requestable directories
  std::uint16_t maxFiles = 0;    // "Max files": per session, 0 = no limit
  std::uint32_t maxSizeKb = 0;   // "Max size": kilobytes per session, 0 = no limit
  std::uint16_t maxTimeMin = 0;  // "Max time": minutes per session, 0 = no limit
};

// "Request processor" screen.
struct RequestProcessor {
  std::uint8_t active = 0;           // "Active"
  PStr<12> reportTemplate = {};      // "Report": file request report template
  std::uint8_t flagMode = 0;         // "Flag mode": RpFlagModeType
  std::uint8_t ccSysop = 0;          // "CC sysop": CcSysopType
  std::uint16_t inetMaxFiles = 0;    // Internet "Max files" per session
  std::uint32_t inetMaxSizeKb = 0;   // Internet "Max size" per session, kilobytes
  PStr<12> inetReportTemplate = {};  // Internet "Report": template for internet requests
  RpSessionLimits unlisted = {};     // "Unlisted"
  RpSessionLimits unsecure = {};     // "Unsecure"
  RpSessionLimits secure = {};       // "Secure"
};

// "Internet settings" screen.
struct InternetSettings {
  PStr<60> address = {};            // "Address": the system's internet address
  std::uint8_t emailClient = 0;     // "Email client": EmailClientType
  PStr<60> inQueue = {};            // "In queue": incoming e-mails
  PStr<60> outQueue = {};           // "Out queue": outgoing e-mails
  PStr<60> sentQueue = {};          // "Sent queue": sent e-mails (must differ from Out queue)
  PStr<3> inSmtpExt = {};           // "In SMTP ext"
  PStr<3> outSmtpExt = {};          // "Out SMTP ext"
  std::uint8_t resendRetry = 0;     // "Resend retry": times to resend a message
  std::uint8_t resendDelay = 0;     // "Resend delay": days before resending
  std::uint16_t messageSizeKb = 0;  // "Message size": largest message, kilobytes
  PStr<30> uucpSiteName = {};       // "Site name" (UUCP)
  PStr<30> uucpHostName = {};       // "Host name" (UUCP)
  std::uint16_t spoolAgeDays = 0;   // "Age of Spool": days parts stay in the spool
  std::uint8_t scanNetmail = 0;     // "Scan netmail": re-route netmail to internet addresses
  PStr<40> outlookAccount = {};     // "Mail account" (Outlook settings)
};

struct KESTRAcfg {
  std::uint8_t revision = 0;  // record revision, kCurrentRevision when current

  // Eighteen 61-byte strings at 1 + 61k (Pathnames, Filenames and the data directory).
  PStr<60> dataPath = {};          // "Data path": where the record files are kept (empty = the
                                   // program directory)
  PStr<60> netmailPath = {};       // "Netmail": incoming netmail
  PStr<60> msgPath = {};           // "MSG path": the message base
  PStr<60> inboundPath = {};       // "Inbound": inbound files
  PStr<60> logFile = {};           // "Log file": KESTRA's log file
  PStr<60> msgLog = {};            // "Msg log": log file of the message utility
  PStr<60> outboundMailPath = {};  // "Outbound mail": compressed mail (ArcMail)
  PStr<60> queuePath = {};         // "Queue path": pass-through files
  PStr<60> ticPath = {};           // "Tic path": outgoing TIC files
  PStr<60> aliasFile = {};         // "Alias": alias names for file requests
  PStr<60> echoSemaphore = {};     // "Echo" (semaphore): touched after outbound echomail
  PStr<60> rcvdPath = {};          // "Rcvd path": received and orphan files (empty = disabled)
  PStr<60> ksxLog = {};            // "Ksx log": log file of KSXUTIL
  PStr<60> badTicsPath = {};       // "Bad tics": bad TIC files and their files
  PStr<60> mgrLog = {};            // "Mgr log": AreaMgr log (empty = KESTRA's log)
  PStr<60> outboundPath = {};      // "Outbound": default BinkleyTerm style outbound
  PStr<60> netmailOutPath = {};    // "Netmail out": outgoing netmail when not "Netmail"
  PStr<60> secInboundPath = {};    // "Sec inbound": inbound files of secure sessions

  // Site information.
  PStr<35> sysopName = {};  // "SysOp"
  std::uint8_t reserved1135[20] = {};
  PStr<60> listPath = {};       // "List path": list files for CD-ROM directories
  PStr<30> bbsName = {};        // "BBS name"
  PStr<5> maxBaud = {};         // "Max baud"
  PStr<30> nodelistFlags = {};  // "Flags": nodelist flags of the BBS
  PStr<40> location = {};       // "Location"
  std::uint8_t reserved1325[51] = {};
  PStr<30> phone[3] = {};  // "Phone 1", "Phone 2", "Phone 3"

  ExternalPrograms dosPrograms = {};      // "External programs (DOS)"
  ExternalPrograms os2Programs = {};      // "External programs (OS2)"
  DomainName domains[kDomainCount] = {};  // "Domain names"

  // Global options.
  std::uint8_t logStyle = 0;              // "Log style": LogStyleType
  std::uint8_t mailerMode = 0;            // "Mailer mode": MailerModeType
  std::uint8_t dateFormat = 0;            // "Date format": DateFormatType
  std::uint8_t processLocalRequests = 0;  // "Process local requests": answer local FileFind
  std::uint8_t replaceExtension = 0;      // "Replace extension": search FileFind names as .*
  std::uint16_t maxRequestAge = 0;        // "Max age of requests": days, 0 = no limit
  std::int8_t kestraPriority = 0;         // "KESTRA priority": -31..31 (OS/2)
  std::int8_t rpPriority = 0;             // "RP priority": -31..31 (OS/2)
  std::uint8_t numberOfSystems = 0;       // "Number of systems": connected-system entries of
                                          // every fileecho and echomail record
  std::uint8_t msgCompatibility = 0;      // "MSG compatibility": MsgCompatType
  std::uint8_t keepExportedMsgs = 0;      // "Keep exported messages"
  std::uint16_t maxMsgSize = 0;           // "Max Msg size": kilobytes, 0 = no limit
  std::uint8_t lastHardDrive = 0;         // "Last hard drive": drive letter
  std::uint16_t daysOnHold = 0;           // "Days to keep on hold": 0 = disabled
  std::uint16_t statFileSize = 0;         // "Size of stat file": kilobytes, 0 = disabled
  std::int8_t utcOffset = 0;              // "UTC offset": hours, -12..12
  std::uint8_t sortByGroups = 0;          // "Sort by groups"

  // External program options.
  std::uint8_t swapMethod = 0;          // "Swapping method": SwapMethodType
  std::uint8_t redirectOutput = 0;      // "Redirect output": send tool output to NUL
  std::uint8_t noVirusErrorlevel = 0;   // "No virus errorlevel": highest "clean" errorlevel
  std::uint8_t filesToScan = 0;         // "Files to scan": ScanFilesType
  std::uint8_t eacVirusErrorlevel = 0;  // "(EAC) virus errorlevel": lowest "virus found"
  std::uint8_t eacErrorErrorlevel = 0;  // "(EAC) error errorlevel": lowest "conversion failed"

  // LongDesc options.
  std::uint8_t longDescChar = 0;          // "LongDesc character"
  std::uint8_t longDescSpacesBefore = 0;  // "Spaces before" the character
  std::uint8_t longDescSpacesAfter = 0;   // "Spaces after" the character
  std::uint8_t longDescWidth = 0;         // "LongDesc width": 0 = the file database's own
  std::uint8_t oneLineLongDesc = 0;       // "One line LongDesc"
  std::uint8_t maxLongDescLines = 0;      // "Max length of LongDesc": lines, 0 = no limit

  // Uplink options.
  std::uint16_t reRequestRate = 0;      // "Re-request rate": days before asking again
  std::uint8_t reRequestTimes = 0;      // "Re-request times": 0 = without end
  std::uint8_t autoRemovePassthru = 0;  // "Auto remove passthru echos"
  std::uint16_t autoAddDelay = 0;       // "Auto-add delay": days before re-adding

  // Fileecho options.
  std::uint8_t keepFileDate = 0;       // "Keep original file date"
  std::uint8_t updateDescriptIon = 0;  // "Update DESCRIPT.ION"
  std::uint8_t dupeCheck = 0;          // "Dupe checking": DupeCheckType
  std::uint8_t delEmptyLines = 0;      // "Del empty lines" from LongDesc
  std::uint8_t filterAnsi = 0;         // "Filter ANSI" codes from LongDesc
  std::uint8_t filterLongDesc = 0;     // "Filter LongDesc": FilterLongDescType
  std::uint8_t setUploader = 0;        // "Set uploader to": UploaderType
  std::uint8_t addTagToDesc = 0;       // "Add tag to desc": AddTagType
  PStr<3> invalidFlowExt = {};         // "Inv. .?LO file ext.": mask such as N?O
  PStr<60> ticArchiveMasks = {};       // "Tic archive" file masks, separated by commas
  std::uint8_t reserved9437[4] = {};

  std::uint8_t versionMajor = 0;  // program version that last wrote the file
  std::uint8_t versionMinor = 0;
  std::uint8_t versionBuild = 0;  // build number of that program
  std::uint8_t reserved9444[33] = {};

  PStr<60> badLog = {};                         // "Bad log": log of bad .TIC files
  PStr<60> dupeLog = {};                        // "Dupe log": log of duplicate .TIC files
  InternetSettings internet = {};               // "Internet settings"
  RequestProcessor requestProcessor = {};       // "Request processor"
  PStr<60> originLines[kOriginLineCount] = {};  // "Origin lines"
  std::uint8_t reserved11703[121] = {};
  AkaMatchRow akaMatch[kAkaMatchCount] = {};  // "Aka matching"
  AreaMgrUplink uplinks[kUplinkCount] = {};   // "AreaMgr uplink manager"
  std::uint8_t reserved14884[3] = {};

  // Miscellaneous options; a newly created file switches all three on.
  std::uint8_t confirmDelete = 0;      // "Confirm deletions"
  std::uint8_t beepOnError = 0;        // "Beep on errors"
  std::uint8_t createMissingDirs = 0;  // "Create missing directories"

  GroupSet fileechoListGroups = {};  // groups shown in the fileecho list (empty = all)
  PStr<40> filterString = {};        // "Filter string": text removed from LongDesc
  std::uint8_t reserved14963[155] = {};
  std::uint8_t logMask = 0;  // "Log detail": one bit per kind of log line; never 0 (0 reads
                             // as 255, everything)
  NodeDefaults nodeDefaults = {};  // the node manager's "Edit defaults" (F3)
  std::uint8_t reserved15167[191] = {};
  PStr<60> tagPath = {};            // "Tag path": uplink tag file (empty = program directory)
  std::uint8_t useAkaMatching = 0;  // "Use aka matching": apply the "Aka matching" table
  std::uint8_t echoMailOption = 0;  // "Echomail options": handed to the echomail area file
  PStr<29> downloadCounters = {};   // "Download counters" for FILES.BBS (empty = none)
  std::uint8_t reserved15451[5] = {};
  std::uint32_t nextInvoice = 0;   // "Next invoice number"; 0 = dependent defaults not yet
                                   // filled in
  PStr<60> echotossLog = {};       // "Echotoss": ECHOTOSS.LOG (Squish) or ECHOMAIL.JAM (JAM)
  std::uint8_t addTearOrigin = 0;  // "Add tear and origin" to echomail (WildCat)
  std::uint8_t addNpdKludge = 0;   // "Add NPD kludge"
  std::uint8_t addPgmKludge = 0;   // "Add PGM kludge"
  PStr<60> tmpPath = {};           // "Tmp path": work directory (empty = program directory)
  std::uint8_t reserved15585[143] = {};
  PStr<60> templatePath = {};  // "Template": directory of the .APL files
  std::uint8_t reserved15789[4] = {};
  std::uint16_t minHdSpace = 0;  // "Min HD space to import": kilobytes, 100..65535
  PStr<40> colourSet = {};       // the colour set: 38 attribute bytes, or length 0
  std::uint8_t reserved15836[122] = {};
  PStr<60> rpLog = {};  // "Rp log": request processor log (empty = KESTRA's log)
  std::uint8_t reserved16019[69] = {};
  std::uint16_t maxTicArchiveSize = 0;  // "Max TIC archive size": kilobytes, 0 = no limit
  std::uint16_t maxSizeToPack = 0;      // "Max size to pack": kilobytes, 0 = disabled
  std::uint8_t reserved16092[4] = {};
  PStr<60> billingPath = {};  // "Billing": billing files (.BIL)
  PStr<60> dupePath = {};     // "Dupe path": duplicate files (empty = "Bad tics")
  std::uint8_t reserved16218[492] = {};
  PStr<60> unwantedFile = {};    // "Unwanted": files to delete from archives
  std::uint8_t autoCleanUp = 0;  // "Auto clean up": drop netmails whose attach is gone
  PStr<60> oldBillsPath = {};    // "Old bills": sent bills in .TXT form
  std::uint8_t reserved16833[4] = {};
  PStr<60> wantedFile = {};        // "Wanted": files to add to archives
  PStr<60> netmailSemaphore = {};  // "Netmail" (semaphore): touched after outbound netmail
  std::uint8_t reserved16959[144] = {};
  std::uint8_t speechFriendly = 0;        // "Speech friendly": non-zero = on
  NetAddr addresses[kAddressCount] = {};  // "Main" then "Aka 1".."Aka 63"; zone 0 = unused
  std::uint16_t fakePoint = 0;            // "Fake pnt": point number for PKT files
  std::uint8_t reserved17618[265] = {};
  std::uint8_t reservedLast = 0;  // never used: the exit change test ignores this byte
};

#pragma pack(pop)

static_assert(sizeof(ArchiverDef) == 306);
static_assert(sizeof(ToolProgram) == 102);
static_assert(sizeof(ExternalPrograms) == 3468);
static_assert(sizeof(DomainName) == 23);
static_assert(sizeof(AkaMatchRow) == 12);
static_assert(sizeof(AreaMgrUplink) == 141);
static_assert(sizeof(RpSessionLimits) == 162);
static_assert(sizeof(RequestProcessor) == 521);
static_assert(sizeof(InternetSettings) == 363);

static_assert(sizeof(KESTRAcfg) == kSetupRecordSize);

// The offsets the shell, the screens and older files depend on.
static_assert(offsetof(KESTRAcfg, revision) == 0);
static_assert(offsetof(KESTRAcfg, dataPath) == 1);
static_assert(offsetof(KESTRAcfg, netmailPath) == 62);
static_assert(offsetof(KESTRAcfg, msgPath) == 123);
static_assert(offsetof(KESTRAcfg, inboundPath) == 184);
static_assert(offsetof(KESTRAcfg, logFile) == 245);
static_assert(offsetof(KESTRAcfg, msgLog) == 306);
static_assert(offsetof(KESTRAcfg, outboundMailPath) == 367);
static_assert(offsetof(KESTRAcfg, queuePath) == 428);
static_assert(offsetof(KESTRAcfg, ticPath) == 489);
static_assert(offsetof(KESTRAcfg, aliasFile) == 550);
static_assert(offsetof(KESTRAcfg, echoSemaphore) == 611);
static_assert(offsetof(KESTRAcfg, rcvdPath) == 672);
static_assert(offsetof(KESTRAcfg, ksxLog) == 733);
static_assert(offsetof(KESTRAcfg, badTicsPath) == 794);
static_assert(offsetof(KESTRAcfg, mgrLog) == 855);
static_assert(offsetof(KESTRAcfg, outboundPath) == 916);
static_assert(offsetof(KESTRAcfg, netmailOutPath) == 977);
static_assert(offsetof(KESTRAcfg, secInboundPath) == 1038);
static_assert(offsetof(KESTRAcfg, sysopName) == 1099);
static_assert(offsetof(KESTRAcfg, listPath) == 1155);
static_assert(offsetof(KESTRAcfg, bbsName) == 1216);
static_assert(offsetof(KESTRAcfg, maxBaud) == 1247);
static_assert(offsetof(KESTRAcfg, nodelistFlags) == 1253);
static_assert(offsetof(KESTRAcfg, location) == 1284);
static_assert(offsetof(KESTRAcfg, phone) == 1376);
static_assert(offsetof(KESTRAcfg, phone) + sizeof(PStr<30>) == 1407);
static_assert(offsetof(KESTRAcfg, phone) + 2 * sizeof(PStr<30>) == 1438);
static_assert(offsetof(KESTRAcfg, versionMajor) == 9441);
static_assert(offsetof(KESTRAcfg, versionMinor) == 9442);
static_assert(offsetof(KESTRAcfg, versionBuild) == 9443);
static_assert(offsetof(KESTRAcfg, badLog) == 9477);
static_assert(offsetof(KESTRAcfg, dupeLog) == 9538);
static_assert(offsetof(KESTRAcfg, akaMatch) == 11824);
static_assert(offsetof(KESTRAcfg, confirmDelete) == 14887);
static_assert(offsetof(KESTRAcfg, beepOnError) == 14888);
static_assert(offsetof(KESTRAcfg, createMissingDirs) == 14889);
static_assert(offsetof(KESTRAcfg, logMask) == 15118);
static_assert(offsetof(KESTRAcfg, nodeDefaults) == 15119);
static_assert(offsetof(KESTRAcfg, tagPath) == 15358);
static_assert(offsetof(KESTRAcfg, useAkaMatching) == 15419);
static_assert(offsetof(KESTRAcfg, echoMailOption) == 15420);
static_assert(offsetof(KESTRAcfg, downloadCounters) == 15421);
static_assert(offsetof(KESTRAcfg, nextInvoice) == 15456);
static_assert(offsetof(KESTRAcfg, echotossLog) == 15460);
static_assert(offsetof(KESTRAcfg, tmpPath) == 15524);
static_assert(offsetof(KESTRAcfg, templatePath) == 15728);
static_assert(offsetof(KESTRAcfg, minHdSpace) == 15793);
static_assert(offsetof(KESTRAcfg, colourSet) == 15795);
static_assert(sizeof(KESTRAcfg::colourSet) == 41);
static_assert(offsetof(KESTRAcfg, rpLog) == 15958);
static_assert(offsetof(KESTRAcfg, maxTicArchiveSize) == 16088);
static_assert(offsetof(KESTRAcfg, billingPath) == 16096);
static_assert(offsetof(KESTRAcfg, dupePath) == 16157);
static_assert(offsetof(KESTRAcfg, unwantedFile) == 16710);
static_assert(offsetof(KESTRAcfg, oldBillsPath) == 16772);
static_assert(offsetof(KESTRAcfg, wantedFile) == 16837);
static_assert(offsetof(KESTRAcfg, netmailSemaphore) == 16898);
static_assert(offsetof(KESTRAcfg, speechFriendly) == 17103);
static_assert(offsetof(KESTRAcfg, addresses) == 17104);
static_assert(offsetof(KESTRAcfg, reservedLast) == kSetupRecordSize - 1);

// The configuration's group sets in the order the group renumbering visits them: the fileecho
// list filter, the authorized groups of the 20 uplinks, then the request processor's
// Unlisted, Unsecure and Secure groups.
inline std::array<GroupSet*, kConfigGroupSetCount> ConfigGroupSets(KESTRAcfg& cfg) {
  std::array<GroupSet*, kConfigGroupSetCount> sets{};
  std::size_t n = 0;
  sets[n++] = &cfg.fileechoListGroups;
  for (auto& u : cfg.uplinks) sets[n++] = &u.groups;
  sets[n++] = &cfg.requestProcessor.unlisted.groups;
  sets[n++] = &cfg.requestProcessor.unsecure.groups;
  sets[n++] = &cfg.requestProcessor.secure.groups;
  return sets;
}

}  // namespace ks
