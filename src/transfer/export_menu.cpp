#include "transfer/export_menu.h"

#include <unistd.h>

#include <optional>
#include <string>

#include "common/fileutil.h"
#include "common/groupset.h"
#include "transfer/export_lists.h"
#include "tui/dialog.h"
#include "tui/inputline.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr std::uint8_t kExportTopic = 20;
constexpr int kFileNameLength = 79;

enum ExportChoice { kEchoList = 1, kTagList, kCrossCheck, kNodeEchos, kDestDirs };

struct ExportEntry {
  const char* title;
  const char* file;  // offered in the file name prompt
};

// The titles double as the prompts' titles; the double arrow is code page 437.
constexpr ExportEntry kEntries[] = {
    {"", ""},
    {"Create fileecho list", "ECHOLIST.TXT"},
    {"Create tag list", "TAGLIST.TXT"},
    {"Cross check FILEBONE.xx", "CROSCHCK.TXT"},
    {"Nodes\xCD\x10"
     "Echos breakdown",
     "NODEECHO.TXT"},
    {"Export fileecho dest dirs", "DESTDIRS.TXT"},
};

// The name of the file to write, the entry's own file offered; nothing on Esc or an empty
// name.
std::optional<std::string> AskOutputName(const TransferContext& ctx, int choice) {
  const ExportEntry& e = kEntries[choice];
  auto name = AskText(e.title, "File name: ", kFileNameLength, e.file);
  if (!name) return std::nullopt;
  const auto first = name->find_first_not_of(' ');
  if (first == std::string::npos) return std::nullopt;
  const auto last = name->find_last_not_of(' ');
  return AbsoluteName(ctx, name->substr(first, last - first + 1));
}

// Writes the list; a data file that could not be read leaves the file empty, as it was made.
void Write(const std::string& path, const std::optional<std::string>& text) {
  std::string error;
  if (!WriteFileAtomic(path, text ? *text : std::string(), &error))
    MessageBoxLines({"Unable to create", path, error}, {"Ok"}, kExportTopic);
}

void ExportFileechos(const TransferContext& ctx, int choice) {
  const auto path = AskOutputName(ctx, choice);
  if (!path) return;
  GroupSet groups;
  PickGroups(groups);
  if (groups.Empty()) {
    ::unlink(path->c_str());  // no list is left behind, not even an older one
    return;
  }
  std::optional<std::string> text;
  {
    const Dialog wait = Dialog::Centred(28, 4, "");
    const auto attr = ui().colours[kWindowText];
    scr().WriteStr(wait.left() + 2, wait.top() + 1, attr, "Creating fileecho list");
    scr().WriteStr(wait.left() + 2, wait.top() + 2, attr, "      Please wait");
    scr().Flush();
    text = FileechoListText(ctx, groups, choice == kEchoList);
  }
  Write(*path, text);
}

void ExportReport(const TransferContext& ctx, int choice) {
  const auto path = AskOutputName(ctx, choice);
  if (!path) return;
  if (choice == kCrossCheck) return Write(*path, CrossCheckText(ctx));
  ShowStatus("~Working...~");
  scr().Flush();
  Write(*path, choice == kNodeEchos ? NodeBreakdownText(ctx) : DestDirsText(ctx));
}

}  // namespace

const MenuDef& ExportMenuDef() {
  static const MenuDef def = {
      "Export",
      33,
      12,
      61,
      20,
      false,
      kExportTopic,
      {
          {"", kEntries[kEchoList].title, "Create a list of the fileechos", 0},
          {"", kEntries[kTagList].title, "Create a list of the fileechos tags", 0},
          {"", kEntries[kCrossCheck].title, "Create list of fileechos not in FILEBONE.xx files", 0},
          {"", kEntries[kNodeEchos].title, "Nodes to fileecho break down", 0},
          {"", kEntries[kDestDirs].title, "Export the KESTRA fileecho area destination directories",
           0},
      },
  };
  return def;
}

void RunExportMenu(const TransferContext& ctx) {
  RunMenu(ExportMenuDef(), [&ctx](int choice) {
    if (choice == kEchoList || choice == kTagList)
      ExportFileechos(ctx, choice);
    else if (choice >= kCrossCheck && choice <= kDestDirs)
      ExportReport(ctx, choice);
  });
}

}  // namespace ks
