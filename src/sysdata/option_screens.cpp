// The option screens: Global options and Miscellaneous of "System data", the fileecho,
// LongDesc, uplink and echomail options.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

#include "common/wordwrap.h"
#include "sysdata/sysdata.h"
#include "tui/colours.h"
#include "tui/menu.h"
#include "tui/msgbox.h"

namespace ks {

namespace {

// A single character kept as a byte (0 = none); `valid` says whether a typed one may be kept.
FieldDef CharField(std::uint16_t offset, std::string prompt, std::string help, bool letter) {
  return {.type = Str,
          .offset = offset,
          .size = 1,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .upper = letter,
          .get_text =
              [offset](const std::uint8_t* rec) {
                return rec[offset] ? std::string(1, static_cast<char>(rec[offset])) : std::string();
              },
          .set_text =
              [offset, letter](std::uint8_t* rec, const std::string& text) {
                const char c = text.empty() ? '\0' : text[0];
                if (letter && c && !std::isalpha(static_cast<unsigned char>(c)))
                  return std::string("Enter a drive letter");
                rec[offset] = static_cast<std::uint8_t>(c);
                return std::string();
              }};
}

FieldDef Number(std::uint16_t offset, std::uint8_t bytes, std::string prompt, std::string help,
                std::int64_t low = 0, std::int64_t high = 0) {
  return {.type = low < 0 ? Int : Wrd,
          .offset = offset,
          .size = bytes,
          .low = low,
          .high = high,
          .prompt = std::move(prompt),
          .help = std::move(help)};
}

FieldDef Choice(std::uint16_t offset, std::string prompt, std::string help,
                std::vector<std::string> choices) {
  return {.type = Chrs,
          .offset = offset,
          .prompt = std::move(prompt),
          .help = std::move(help),
          .choices = std::move(choices)};
}

// "Max TIC archive size": 0 (no limit) or at least 100 kilobytes.
FieldDef TicArchiveSize() {
  constexpr auto kAt = CFG(maxTicArchiveSize);
  FieldDef f = Number(kAt, 2, "Max TIC archive size",
                      "Maximum size of the TIC archive in kb (0=\xEC, min size=100kb)");
  f.get_text = [](const std::uint8_t* rec) {
    return std::to_string(reinterpret_cast<const KESTRAcfg*>(rec)->maxTicArchiveSize);
  };
  f.set_text = [](std::uint8_t* rec, const std::string& text) {
    char* end = nullptr;
    const long v = text.empty() ? 0 : std::strtol(text.c_str(), &end, 10);
    if ((end && *end) || v < 0 || v > 65535 || (v > 0 && v < kMinTicArchiveSize))
      return std::string("Value must be 0 or between 100 and 65535");
    reinterpret_cast<KESTRAcfg*>(rec)->maxTicArchiveSize = static_cast<std::uint16_t>(v);
    return std::string();
  };
  return f;
}

// The preset a colour set came from, by its scheme number ("Quenmark" when none is set).
std::string SchemeName(const PStr<40>& set) {
  static const char* const kSchemes[] = {"Customized", "Quenmark",    "Norton",
                                         "Novell",     "TurboVision", "Monochrome"};
  const int scheme = set.len >= kSchemeNumber ? set.text[kSchemeNumber - 1] : kSchemeFirstPreset;
  if (scheme < kSchemeCustomized || scheme > kSchemeLastPreset) return "Customized";
  return kSchemes[scheme - kSchemeCustomized];
}

const char* const kLogStyles[] = {"FrontDoor",   "D'Bridge",        "RemoteAccess", "SuperBBS",
                                  "BinkleyTerm", "Portal of Power", "WildCat"};

constexpr const char* kExampleFile = "EXAMPLE.ZIP ";
constexpr const char* kExampleText =
    "This is an example of a long description, written to the file database the way KESTRA "
    "writes one with the settings on this screen.";
constexpr int kDefaultLongDescWidth = 45;
constexpr std::size_t kExampleWidth = 70;  // what a message box shows of a line

}  // namespace

std::vector<std::string> LongDescExample(const KESTRAcfg& cfg) {
  const std::size_t width = cfg.longDescWidth ? cfg.longDescWidth : kDefaultLongDescWidth;
  std::vector<std::string> desc = cfg.oneLineLongDesc
                                      ? std::vector<std::string>{kExampleText}
                                      : WrapWords(kExampleText, static_cast<int>(width));
  if (cfg.maxLongDescLines && desc.size() > cfg.maxLongDescLines) desc.resize(cfg.maxLongDescLines);
  std::string lead(cfg.longDescSpacesBefore, ' ');
  if (cfg.longDescChar) lead += static_cast<char>(cfg.longDescChar);
  lead += std::string(cfg.longDescSpacesAfter, ' ');
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < desc.size(); ++i) {
    std::string line = (i == 0 ? std::string(kExampleFile) : lead) + desc[i];
    if (line.size() > kExampleWidth) line.resize(kExampleWidth);
    lines.push_back(line);
  }
  return lines;
}

SettingsScreen GlobalOptionsScreen(const SysdataContext& ctx) {
  FieldDef systems =
      Number(CFG(numberOfSystems), 1, "Number of systems",
             "The maximum number of systems in the fileecho and echomail manager (0-255)", 0, 255);
  if (ctx.change_systems)
    systems.confirm = [change = ctx.change_systems](std::int64_t old, std::uint8_t* rec) {
      return change(static_cast<std::uint8_t>(old),
                    reinterpret_cast<KESTRAcfg*>(rec)->numberOfSystems);
    };
  return StackedScreen(
      "Global options", "Global options",
      {
          Choice(CFG(logStyle), "Log style", "Which log file format should be used",
                 {std::begin(kLogStyles), std::end(kLogStyles)}),
          Choice(CFG(mailerMode), "Mailer mode", "The type of mailer program used",
                 {"FrontDoor", "BinkleyTerm", "D'Bridge", "Portal of Power", "McMail", "T-Mail",
                  "MainDoor", "FrontDoor STQ"}),
          Choice(CFG(dateFormat), "Date format",
                 "Date: dd-mm-yy (European), mm-dd-yy (American), or yy-mm-dd (Military)",
                 {"dd-mm-yy", "mm-dd-yy", "yy-mm-dd"}),
          YesNo(CFG(processLocalRequests), "Process local requests",
                "Reply to local FileFind messages"),
          YesNo(CFG(replaceExtension), "Replace extension",
                "Should KESTRA replace the extension with .* when processing FileFind reqs?"),
          Number(CFG(maxRequestAge), 2, "Max age of requests",
                 "The maximum age of FileFind requests, in days. (0=\xEC)"),
          Number(CFG(kestraPriority), 1, "KESTRA priority",
                 "Set the priority at which KESTRA runs (-31 to +31) (OS/2 only)", kPriorityMin,
                 kPriorityMax),
          Number(CFG(rpPriority), 1, "RP priority",
                 "Set the priority at which the request processor runs (-31 to +31) (OS/2 only)",
                 kPriorityMin, kPriorityMax),
          systems,
          Choice(CFG(msgCompatibility), "MSG compatibility",
                 "Use Fido (zone/point info), Opus (binary datestamps), or None style .MSG "
                 "headers",
                 {"Fido", "Opus", "None"}),
          YesNo(CFG(keepExportedMsgs), "Keep exported messages",
                "Keep exported .MSG netmail messages after they have been sent"),
          Number(CFG(maxMsgSize), 2, "Max Msg size",
                 "Maximum size of messages in number of kilobytes (0=\xEC)"),
          CharField(CFG(lastHardDrive), "Last hard drive",
                    "The drive letter of the last harddrive in the system", true),
          Number(CFG(daysOnHold), 2, "Days to keep on hold",
                 "Days to keep files on hold, (0=disabled)"),
          Number(CFG(statFileSize), 2, "Size of stat file",
                 "Maximum size of statistics file in KB, (0=disabled)"),
          Number(CFG(utcOffset), 1, "UTC offset",
                 "Number of hours before or behind UTC (-12 to +12)", kUtcOffsetMin, kUtcOffsetMax),
          {.type = Long,
           .offset = CFG(nextInvoice),
           .low = 1,
           .high = 4294967295,
           .prompt = "Next invoice number",
           .help = "The invoice number to use for the next bill (automatically incremented)"},
          YesNo(CFG(speechFriendly), "Speech friendly", "Use Speech Friendly Interface"),
          YesNo(CFG(autoCleanUp), "Auto clean up",
                "Enable automatic clean up netmails for which file attach is missing"),
          YesNo(CFG(addTearOrigin), "Add tear and origin",
                "Should KESTRA add an tear and origin lines to echomail (WildCat only)"),
          YesNo(CFG(sortByGroups), "Sort by groups", "Sort fileechos and echomail areas by group"),
          YesNo(CFG(addNpdKludge), "Add NPD kludge", "Add NPD kludge to generated messages"),
          YesNo(CFG(addPgmKludge), "Add PGM kludge", "Add PGM kludge to generated messages"),
      },
      kGlobalTopic, 26, 56);
}

SettingsScreen MiscellaneousScreen(const SysdataContext& ctx) {
  FieldDef colours = {.prompt = "Colors",
                      .help = "Choose the colours of KSETUP's screens",
                      .width = 20,
                      .select =
                          [change = ctx.colours](std::uint8_t*) {
                            if (change && change()) RedrawSettingsWindow();
                            return true;
                          },
                      .show =
                          [](const std::uint8_t* rec) {
                            return SchemeName(reinterpret_cast<const KESTRAcfg*>(rec)->colourSet);
                          }};
  return StackedScreen(
      "Miscellaneous", "Miscellaneous options",
      {
          colours,
          YesNo(CFG(confirmDelete), "Confirm deletions",
                "Ask before a record is deleted from a list"),
          YesNo(CFG(beepOnError), "Beep on errors", "Sound the bell when an error is shown"),
          YesNo(CFG(createMissingDirs), "Create missing dirs",
                "Offer to create a directory that does not exist when a path is entered"),
          Number(CFG(logMask), 1, "Log detail",
                 "Kinds of lines KESTRA writes to its log, one bit each (1-255, 255=all)", 1, 255),
          {.type = Path,
           .offset = CFG(dataPath),
           .size = 60,
           .prompt = "Data path",
           .help = "Where the record files (*.KSX, *.IDX) are kept (empty=KESTRA directory)"},
          {.type = GrpArray,
           .offset = CFG(fileechoListGroups),
           .prompt = "List groups",
           .help = "Groups whose fileechos the fileecho list shows (none=all)  ~Space~=Select"},
      },
      kMiscTopic, 23, 76);
}

SettingsScreen FileechoOptionsScreen() {
  return StackedScreen(
      "Fileecho options", "Fileecho options",
      {
          YesNo(CFG(keepFileDate), "Keep original file date",
                "Keep original file dates when importing files"),
          {.type = Str,
           .offset = CFG(downloadCounters),
           .size = 29,
           .prompt = "Download counters",
           .help = "Download counters to place in FILES.BBS (empty=disable) (not in WildCat)"},
          YesNo(CFG(updateDescriptIon), "Update DESCRIPT.ION",
                "Should KESTRA update the 4DOS DESCRIPT.ION file ?"),
          {.type = Str,
           .offset = CFG(invalidFlowExt),
           .size = 3,
           .prompt = "Inv. .?LO file ext.",
           .help = "Invalidated flow file extension mask (ex. N?O)",
           .upper = true},
          Choice(CFG(dupeCheck), "Dupe checking",
                 "Things to check when checking for duplicate files",
                 {"filename.ext", "filename.ext + fileecho", "filecrc", "filecrc + fileecho",
                  "filecrc + filename.ext", "filecrc + fileecho + filename.ext", "filename",
                  "filename + fileecho", "filecrc + filename", "filecrc + fileecho + filename"}),
          YesNo(CFG(delEmptyLines), "Del empty lines", "Remove empty lines from LongDesc"),
          YesNo(CFG(filterAnsi), "Filter ANSI", "Filter ANSI codes from LongDesc"),
          Choice(CFG(filterLongDesc), "Filter LongDesc",
                 "Filter high ASCII characters or carriage returns from the long descriptions",
                 {"No", "High ASCII characters", "Carriage returns",
                  "High ASCII and Carriage returns"}),
          {.type = Str,
           .offset = CFG(filterString),
           .size = 40,
           .prompt = "Filter string",
           .help = "String to filter from LongDesc"},
          Number(CFG(minHdSpace), 2, "Min HD space to import",
                 "Minimum space (kb) on dest drive to import file (filesize+minspace) "
                 "(100-65535)",
                 kMinHdSpaceMin, 65535),
          TicArchiveSize(),
          Number(CFG(maxSizeToPack), 2, "Max size to pack",
                 "Do not pack files larger than this, in the TIC archive (0=disable)"),
          {.type = Str,
           .offset = CFG(ticArchiveMasks),
           .size = 60,
           .prompt = "Tic archive specs",
           .help = "List of Tic archive filespecs seperated with commas",
           .width = 48},
          Choice(CFG(setUploader), "Set uploader to",
                 "The text to set uploader in file database (if applicable) to",
                 {"KESTRA", "SysOp", "Fileecho"}),
          Choice(CFG(addTagToDesc), "Add tag to desc", "Add the fileecho tag to the description",
                 {"No", "Before", "After", "Before+CR", "CR+After"}),
      },
      kOptionsTopic, 26, 76);
}

SettingsScreen LongDescScreen(const SysdataContext& ctx) {
  std::vector<FieldDef> fields = {
      CharField(CFG(longDescChar), "LongDesc character",
                "The character KESTRA should use for long descriptions (not in WildCat)", false),
      Number(CFG(longDescSpacesBefore), 1, "Spaces before", "Spaces before the LongDesc character",
             0, 80),
      Number(CFG(longDescSpacesAfter), 1, "Spaces after", "Spaces after the LongDesc character", 0,
             80),
      Number(CFG(longDescWidth), 1, "LongDesc width",
             "Width of the LongDesc in file database. (0 = default) (not in WildCat)"),
      YesNo(CFG(oneLineLongDesc), "One line LongDesc",
            "Put the long descriptions on one line, instead of on multiple lines"),
      Number(CFG(maxLongDescLines), 1, "Max length of LongDesc",
             "Maximum number of lines to import from the long description (0=\xEC)"),
      {.prompt = "Show example",
       .help = "Show example of format",
       .width = 1,
       .select =
           [cfg = ctx.cfg](std::uint8_t*) {
             MessageBoxLines(LongDescExample(*cfg), {"Ok"}, kLongDescTopic);
             return false;
           },
       .show = [](const std::uint8_t*) { return std::string(); }},
  };
  fields[1].mark = kTee;
  fields[2].mark = kCorner;
  return StackedScreen("LongDesc options", "LongDesc options", std::move(fields), kLongDescTopic,
                       26, 36);
}

SettingsScreen UplinkOptionsScreen() {
  return StackedScreen(
      "Uplink options", "Uplink options",
      {
          Number(CFG(reRequestRate), 2, "Re-request rate",
                 "The number of days to wait for a new fileecho before re-requesting it"),
          Number(CFG(reRequestTimes), 1, "Re-request times",
                 "The number of times to re-request a fileecho (0 = indefinately)"),
          YesNo(CFG(autoRemovePassthru), "Auto remove passthru echos",
                "Automatically remove passthru fileechos when last system disconnects?"),
          Number(CFG(autoAddDelay), 2, "Auto-add delay",
                 "The number of days to wait before auto removed fileechos may be auto-added "
                 "again"),
      },
      kUplinkOptionsTopic, 30, 40);
}

SettingsScreen EchomailOptionsScreen() {
  return StackedScreen(
      "Echomail options", "Echomail options",
      {
          {.type = Bol,
           .offset = CFG(echoMailOption),
           .prompt = "Drop unlinked areas",
           .help = "Remove echomail areas no system is connected to when MAREAS is packed",
           .mask = 1},
          YesNo(CFG(useAkaMatching), "Use aka matching",
                "Choose the origin address of outgoing mail by the Aka matching table"),
      },
      kOptionsTopic, 23, 40);
}

}  // namespace ks
