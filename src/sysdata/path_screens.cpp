// The screens of directories and file names: Pathnames (part 1) and (part 2), Filenames,
// Internet settings and Origin lines.
#include <array>
#include <string>

#include "sysdata/sysdata.h"
#include "tui/keys.h"
#include "tui/menu.h"

namespace ks {

namespace {

constexpr int kWidth = 76;
constexpr int kValueCol = 16;
constexpr int kPathLength = 60;

FieldDef PathField(std::uint16_t offset, std::string prompt, std::string help) {
  return {.type = Path,
          .offset = offset,
          .size = kPathLength,
          .prompt = std::move(prompt),
          .help = std::move(help)};
}

FieldDef FileField(std::uint16_t offset, std::string prompt, std::string help) {
  return {.type = Str,
          .offset = offset,
          .size = kPathLength,
          .prompt = std::move(prompt),
          .help = std::move(help)};
}

// F3 on the file-name field at `offset`: the file it names in the operator's editor, a name
// without a directory taken from the program directory. An empty field opens nothing.
FieldKey EditFileKey(std::uint16_t offset, const SysdataContext& ctx) {
  return {offset, key::kF3, [offset, edit = ctx.edit_file, dir = ctx.program_dir](KESTRAcfg& cfg) {
            const auto* rec = reinterpret_cast<const std::uint8_t*>(&cfg);
            const std::string name =
                reinterpret_cast<const PStr<kPathLength>*>(rec + offset)->str();
            if (name.empty() || !edit) return;
            edit(name.front() == '/' ? name : dir + name);
          }};
}

// Field order of Pathnames (part 1).
enum Part1 {
  kMsg,
  kNetmail,
  kNetmailOut,
  kInbound,
  kSecInbound,
  kOutbound,
  kOutMail,
  kTic,
  kQueue
};

// The first path of `order` that another non-empty path of the page repeats exactly.
std::optional<LeaveNote> UniquePaths(const KESTRAcfg& cfg) {
  const std::array<const PStr<60>*, 9> paths = {
      &cfg.msgPath,          &cfg.netmailPath,    &cfg.netmailOutPath,
      &cfg.inboundPath,      &cfg.secInboundPath, &cfg.outboundPath,
      &cfg.outboundMailPath, &cfg.ticPath,        &cfg.queuePath};
  struct Check {
    int field;
    const char* message;
  };
  static constexpr Check kChecks[] = {
      {kQueue, "The Queue path must be a unique directory./Otherwise, problems may occur."},
      {kInbound, "The Inbound path should be a unique directory./Otherwise, problems may occur."},
      {kSecInbound,
       "The Sec Inbound path should be a unique directory./Otherwise, problems may occur."},
  };
  for (const Check& c : kChecks) {
    const std::string mine = paths[static_cast<std::size_t>(c.field)]->str();
    if (mine.empty()) continue;
    for (std::size_t i = 0; i < paths.size(); ++i)
      if (static_cast<int>(i) != c.field && paths[i]->str() == mine)
        return LeaveNote{c.message, c.field, false};
  }
  return std::nullopt;
}

}  // namespace

SettingsScreen PathnamesScreen1() {
  SettingsScreen s = StackedScreen(
      "Pathnames (part 1)", "Pathnames",
      {
          PathField(CFG(msgPath), "MSG path", "Where the message base is located"),
          PathField(CFG(netmailPath), "Netmail", "Where incoming netmail is stored"),
          PathField(CFG(netmailOutPath), "Netmail out",
                    "Where outgoing netmail is stored. Use only if different than incoming"),
          PathField(CFG(inboundPath), "Inbound", "Where inbound files are stored"),
          PathField(CFG(secInboundPath), "Sec inbound",
                    "Where inbound files for secure mail sessions are stored"),
          PathField(CFG(outboundPath), "Outbound",
                    "The default outbound directory for BinkleyTerm style mailers"),
          PathField(CFG(outboundMailPath), "Outbound mail",
                    "Where outbound compressed mail files (ArcMail) are stored"),
          PathField(CFG(ticPath), "Tic path", "Path where outgoing TIC files are stored"),
          PathField(CFG(queuePath), "Queue path", "Path where pass through files are stored"),
      },
      kPathnamesTopic, kValueCol);
  s.on_leave = UniquePaths;
  return s;
}

SettingsScreen PathnamesScreen2() {
  return StackedScreen(
      "Pathnames (part 2)", "Pathnames",
      {
          PathField(CFG(listPath), "List path",
                    "Where list files are stored for CD-ROM directories"),
          PathField(CFG(rcvdPath), "Rcvd path",
                    "Path where received and orphan files should be moved to (empty=disabled)"),
          PathField(CFG(badTicsPath), "Bad tics",
                    "Path where bad TIC files and associated files are moved to"),
          PathField(
              CFG(dupePath), "Dupe path",
              "Path where duplicate files are moved to (will be moved to Bad tics dir if empty)"),
          PathField(CFG(tagPath), "Tag path",
                    "Path where uplink tag file is located (empty=KESTRA directory)"),
          PathField(CFG(tmpPath), "Tmp path",
                    "Temporary directory for KESTRA to use when converting files"),
          PathField(CFG(templatePath), "Template",
                    "Template directory where .APL files are stored"),
          PathField(CFG(billingPath), "Billing",
                    "Directory where billing files should be kept (.BIL)"),
          PathField(CFG(oldBillsPath), "Old bills",
                    "Directory where sent bills are kept in .TXT format"),
      },
      kPathnamesTopic, kValueCol);
}

SettingsScreen FilenamesScreen(const SysdataContext& ctx) {
  std::vector<FieldDef> fields = {
      FileField(CFG(aliasFile), "Alias",
                "File containing alias names for file requests                            "
                "~F3~-Edit"),
      FileField(CFG(logFile), "Log file", "Name and location of KESTRA's log file"),
      FileField(CFG(mgrLog), "Mgr log", "AreaMgr log file - KESTRA log will be used if left empty"),
      FileField(CFG(rpLog), "Rp log",
                "Request processor log file - KESTRA log will be used if left empty"),
      FileField(CFG(ksxLog), "Ksx log", "Name and location of KSXUTIL's log file"),
      FileField(CFG(msgLog), "Msg log", "Name and location of KSMUTIL's log file"),
      FileField(CFG(badLog), "Bad log",
                "Name and location of log file to use for listing bad .TIC files"),
      FileField(CFG(dupeLog), "Dupe log",
                "Name and location of log file to use for listing duplicate .TIC files"),
      FileField(CFG(echotossLog), "Echotoss",
                "Name and location of the ECHOTOSS.LOG for Squish or ECHOMAIL.JAM for JAM"),
      FileField(CFG(unwantedFile), "Unwanted",
                "File containing List of files to delete from archives                      "
                "~F3~-Edit"),
      FileField(CFG(wantedFile), "Wanted",
                "File containing list of files to add to archives                           "
                "~F3~-Edit"),
      Label("Semaphore:"),
      FileField(CFG(netmailSemaphore), "Netmail",
                "Name and location of semaphore file to touch after creating outbound netmail"),
      FileField(CFG(echoSemaphore), "Echo",
                "Name and location of semaphore file to touch after creating outbound echomail"),
  };
  fields[12].mark = kTee;
  fields[13].mark = kCorner;
  SettingsScreen screen =
      StackedScreen("Filenames", "Filenames", std::move(fields), kFilenamesTopic, kValueCol);
  for (auto offset : {CFG(aliasFile), CFG(unwantedFile), CFG(wantedFile)})
    screen.keys.push_back(EditFileKey(offset, ctx));
  return screen;
}

SettingsScreen InternetScreen() {
  constexpr auto kInet = CFG(internet);
  const auto at = [](std::size_t member) { return static_cast<std::uint16_t>(kInet + member); };
  using I = InternetSettings;
  std::vector<FieldDef> fields = {
      FileField(at(offsetof(I, address)), "Address", "Your internet address"),
      {.type = Chrs,
       .offset = at(offsetof(I, emailClient)),
       .prompt = "Email client",
       .help = "Type of email program you use",
       .choices = {"Standard (RFC 822)", "PostRoad Mailer", "Net-Tamer", "PMMail", "UUCP",
                   "Soup/Yarn", "Eudora", "KA9Q", "MR/2 ICE", "Pegasus Mail", "Outlook express"}},
      PathField(at(offsetof(I, inQueue)), "In queue",
                "The directory where incoming emails are received"),
      PathField(at(offsetof(I, outQueue)), "Out queue",
                "The directory where outgoing emails are stored"),
      PathField(at(offsetof(I, sentQueue)), "Sent queue",
                "The directory where KESTRA should store sent emails"),
      {.type = Ext,
       .offset = at(offsetof(I, inSmtpExt)),
       .size = 3,
       .prompt = "In SMTP ext",
       .help = "The extension to use for incoming SMTP files"},
      {.type = Ext,
       .offset = at(offsetof(I, outSmtpExt)),
       .size = 3,
       .prompt = "Out SMTP ext",
       .help = "The extension to use for outgoing SMTP files"},
      {.type = Wrd,
       .offset = at(offsetof(I, resendRetry)),
       .size = 1,
       .prompt = "Resend retry",
       .help = "The maximum number of times to resend a message"},
      {.type = Wrd,
       .offset = at(offsetof(I, resendDelay)),
       .size = 1,
       .prompt = "Resend delay",
       .help = "The number of days to wait before resending an unacknowledged message"},
      {.type = Wrd,
       .offset = at(offsetof(I, messageSizeKb)),
       .size = 2,
       .prompt = "Message size",
       .help = "The maximum size, in kilobytes, of a message"},
      Label("UUCP settings:"),
      {.type = Str,
       .offset = at(offsetof(I, uucpSiteName)),
       .size = 30,
       .prompt = "Site name",
       .help = "Your site name as your UUCP host knows it, should match name in UUCICO "
               "transfer program"},
      {.type = Str,
       .offset = at(offsetof(I, uucpHostName)),
       .size = 30,
       .prompt = "Host name",
       .help = "The name of your UUCP host, it should match setting in UUCICO transfer "
               "program"},
      {.type = Wrd,
       .offset = at(offsetof(I, spoolAgeDays)),
       .size = 2,
       .prompt = "Age of Spool",
       .help = "Maximum age of file and message parts in spool, default = 14 days"},
      YesNo(at(offsetof(I, scanNetmail)), "Scan netmail",
            "Scan and re-route netmail to internet addresses via the internet"),
      Label("Outlook settings:"),
      {.type = Str,
       .offset = at(offsetof(I, outlookAccount)),
       .size = 40,
       .prompt = "Mail account",
       .help = "Name of the mail account to use for outgoing mail"},
  };
  // The fields under a caption are indented below it.
  for (auto* f : {&fields[11], &fields[12], &fields[13], &fields[14], &fields[16]})
    f->prompt_col = 4;
  SettingsScreen s = StackedScreen("Internet settings", "Internet settings", std::move(fields),
                                   kInternetTopic, kValueCol + 3);
  constexpr int kSentQueue = 4;
  s.on_leave = [](const KESTRAcfg& cfg) -> std::optional<LeaveNote> {
    const std::string sent = cfg.internet.sentQueue.str();
    if (sent.empty() || sent != cfg.internet.outQueue.str()) return std::nullopt;
    return LeaveNote{"The Sent queue must be different from the Out queue", kSentQueue, true};
  };
  return s;
}

SettingsScreen OriginLinesScreen() {
  std::vector<FieldDef> fields;
  for (std::size_t i = 0; i < kOriginLineCount; ++i)
    fields.push_back({.type = Str,
                      .offset = static_cast<std::uint16_t>(CFG(originLines) + i * sizeof(PStr<60>)),
                      .size = 60,
                      .prompt = "Origin " + std::to_string(i + 1),
                      .help = "Origin line for the messages KESTRA writes"});
  return StackedScreen("Origin lines", "Origin lines", std::move(fields), kOriginTopic, kValueCol);
}

}  // namespace ks
