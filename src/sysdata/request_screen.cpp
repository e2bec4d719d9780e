// "Request processor": how KESTRA answers file requests, with the limits of internet sessions
// and of unlisted, unsecure and secure systems.
#include <string>

#include "sysdata/sysdata.h"

namespace ks {

namespace {

constexpr std::size_t kRp = offsetof(KESTRAcfg, requestProcessor);

std::uint16_t At(std::size_t member) {
  return static_cast<std::uint16_t>(kRp + member);
}

// The six fields of one session class; `who` is how its sessions are called in the help.
void AddSession(std::vector<FieldDef>& fields, const char* caption, std::size_t member,
                const std::string& who) {
  using L = RpSessionLimits;
  const auto at = [member](std::size_t m) { return At(member + m); };
  fields.push_back(Label(caption));
  const std::vector<FieldDef> six = {
      {.type = Str,
       .offset = at(offsetof(L, aliasFile)),
       .size = 60,
       .prompt = "Alias",
       .help = "Alias file for " + who + " sessions",
       .width = 56},
      {.type = GrpArray,
       .offset = at(offsetof(L, groups)),
       .prompt = "Groups",
       .help = "Groups whose areas may be requested in " + who + " sessions"},
      {.type = Str,
       .offset = at(offsetof(L, listFile)),
       .size = 60,
       .prompt = "List",
       .help = "File with the list of directories that may be requested in " + who + " sessions",
       .width = 56},
      {.type = Wrd,
       .offset = at(offsetof(L, maxFiles)),
       .size = 2,
       .prompt = "Max files",
       .help = "Maximum number of files in one " + who + " session (0=no limit)"},
      {.type = Long,
       .offset = at(offsetof(L, maxSizeKb)),
       .prompt = "Max size",
       .help = "Maximum number of kilobytes in one " + who + " session (0=no limit)"},
      {.type = Wrd,
       .offset = at(offsetof(L, maxTimeMin)),
       .size = 2,
       .prompt = "Max time",
       .help = "Maximum online time, in minutes, per file request session (0=no limit)"},
  };
  for (FieldDef f : six) {
    f.prompt_col = 4;
    fields.push_back(std::move(f));
  }
}

}  // namespace

SettingsScreen RequestProcessorScreen() {
  using R = RequestProcessor;
  std::vector<FieldDef> fields = {
      YesNo(At(offsetof(R, active)), "Active", "Should the request processor in KESTRA be active?"),
      {.type = Str,
       .offset = At(offsetof(R, reportTemplate)),
       .size = 12,
       .prompt = "Report",
       .help = "File request report template file",
       .upper = true},
      {.type = Chrs,
       .offset = At(offsetof(R, flagMode)),
       .prompt = "Flag mode",
       .help = "Type of flags to use in response file (Default/Cantaloup/InterMail)",
       .choices = {"Default", "Cantaloup", "InterMail", "BBBS"}},
      {.type = Chrs,
       .offset = At(offsetof(R, ccSysop)),
       .prompt = "CC sysop",
       .help = "Send a CC of the file request report to the SysOp?",
       .choices = {"No", "Always", "On error"}},
      Label("Internet:"),
      {.type = Wrd,
       .offset = At(offsetof(R, inetMaxFiles)),
       .size = 2,
       .prompt = "Max files",
       .help = "Maximum number of files in one internet session",
       .prompt_col = 4},
      {.type = Long,
       .offset = At(offsetof(R, inetMaxSizeKb)),
       .prompt = "Max size",
       .help = "Maximum number of kilobytes in one internet session",
       .prompt_col = 4},
      {.type = Str,
       .offset = At(offsetof(R, inetReportTemplate)),
       .size = 12,
       .prompt = "Report",
       .help = "Internet file request report template file",
       .prompt_col = 4,
       .upper = true},
  };
  AddSession(fields, "Unlisted:", offsetof(R, unlisted), "UNLISTED");
  AddSession(fields, "Unsecure:", offsetof(R, unsecure), "UNSECURE");
  AddSession(fields, "Secure:", offsetof(R, secure), "SECURE");
  return StackedScreen("Request processor", "Request processor", std::move(fields), kRequestTopic,
                       16, 74);
}

}  // namespace ks
