#include "shell/mainmenu.h"

#include <cstring>
#include <string>

#include "common/netaddr.h"
#include "docs/helpsys.h"
#include "shell/cmdline.h"
#include "shell/infoscreen.h"
#include "shell/program.h"
#include "shell/setupfile.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr std::uint8_t kMainTopic = 1;
constexpr std::uint8_t kEchomailTopic = 2;
constexpr std::uint8_t kFileechoTopic = 38;
constexpr std::uint8_t kUtilitiesTopic = 40;
constexpr std::uint8_t kExitTopic = 33;

constexpr const char* kF1Help = "F1=Help";

}  // namespace

const MenuDef& MainMenuDef() {
  static const MenuDef def = {
      "Main",
      31,
      6,
      50,
      21,
      true,
      kMainTopic,
      {
          {"", "System data", "Miscellaneous system parameters", 30},
          {"", "FileFind areas", "FileFind message area configuration", 12},
          {"", "Echomail system", "Echomail configuration", 0},
          {"", "Fileecho system", "Fileecho configuration", 38},
          {"", "New file reports", "Define new file reports", 14},
          {"", "BBS fileareas", "Define which BBS file areas should be scanned for new files", 18},
          {"", "ALLFILES lists", "ALLFILES configuration", 21},
          {"", "Request processor", "Request processor configuration", 23},
          {"", "Node manager", "Connected systems configuration", 19},
          {"", "Utilities", "Utilities", 40},
          {"", "Information", "Information about KESTRA", 32},
          {"", "Exit program", "Exit program", 33},
      },
  };
  return def;
}

const MenuDef& FileechoMenuDef() {
  static const MenuDef def = {
      "Fileecho system",
      33,
      9,
      57,
      20,
      true,
      kFileechoTopic,
      {
          {"", "Fileecho manager   ", "Fileecho maintenance", 15},
          {kTee, "Options", "Fileecho options", 44},
          {kCorner, "LongDesc options", "LongDesc options", 52},
          {"", "Hatch manager", "Internal hatch manager", 16},
          {"", "Magic file names", "Magic file name maintenance", 17},
          {"", "Group manager", "Group manager maintenance", 39},
          // Both uplink items hang under "Group manager"; that is the intended look.
          {kTee, "Uplink systems", "Uplink manager", 27},
          {kCorner, "Uplink options", "Uplink options", 47},
      },
  };
  return def;
}

const MenuDef& EchomailMenuDef() {
  static const MenuDef def = {
      "Echomail system",
      33,
      9,
      52,
      15,
      true,
      kEchomailTopic,
      {
          {"", "Echomail manager", "Echomail configuration", 0},
          // The tee stays although no sibling follows; one help topic serves both options items.
          {kTee, "Options", "Echomail options", 44},
          {"", "Pack manager", "Pack (netmail routing) configuration manager", 0},
      },
  };
  return def;
}

const MenuDef& UtilitiesMenuDef() {
  static const MenuDef def = {
      "Utilities",
      31,
      10,
      49,
      17,
      false,
      kUtilitiesTopic,
      {
          {"", "Template editor", "Template file editor", 41},
          {"", "Export data", "Export configuration to text files", 20},
          {"", "Import data", "Import FileMgr, James, or TICK fileecho and node configuration", 31},
          {"", "Uplink requests", "View and delete uplink requests", 51},
      },
  };
  return def;
}

MenuActions& menu_actions() {
  static MenuActions actions;
  return actions;
}

bool ConfigChanged(const KESTRAcfg& cfg, const std::vector<std::uint8_t>& snapshot) {
  const auto* now = reinterpret_cast<const std::uint8_t*>(&cfg);
  for (std::size_t i = 0; i < snapshot.size(); ++i)
    if (now[i] != snapshot[i]) return i < snapshot.size() - 1;
  return false;
}

void WriteHeaderAddress(const KESTRAcfg& cfg) {
  ui().header_right2 = cfg.addresses[0].zone ? FormatAddr(cfg.addresses[0]) : "";
  DrawHeader();
}

namespace {

bool HasMainAddress() {
  return prog().cfg->addresses[0].zone != 0;
}

void Act(const std::function<void()>& action) {
  if (action) action();
}

// The loop of a submenu; F9 and F10 close a top one.
void RunSubmenu(const MenuDef& def, const std::function<void()>* actions) {
  RunMenu(def, [actions](int choice) { Act(actions[choice]); });
}

void ActOnMain(int choice) {
  auto& acts = menu_actions();
  if (choice >= kFileFindAreas && choice <= kNodeManager && !HasMainAddress()) {
    MessageBox("Main address missing or invalid", {"Ok"}, kMainTopic);
    return;
  }
  switch (choice) {
    case kSystemData:
      Act(acts.main[choice]);
      WriteHeaderAddress(*prog().cfg);
      return;
    case kEchomailSystem:
      RunSubmenu(EchomailMenuDef(), acts.echomail);
      return;
    case kFileechoSystem:
      RunSubmenu(FileechoMenuDef(), acts.fileecho);
      return;
    case kUtilities:
      RunSubmenu(UtilitiesMenuDef(), acts.utilities);
      return;
    case kInformation:
      ShowInformation();
      return;
    default:
      Act(acts.main[choice]);
      return;
  }
}

// Asks whether to save; returns true when the program may end.
bool AskSave() {
  MessageBoxSpec q;
  q.lines = {"Changes have been made.", "Should those changes be saved?"};
  q.buttons = {"Yes", "No", "Cancel"};
  q.end_keys = EndKeys("CNY");
  q.topic = kExitTopic;
  switch (RunMessageBox(q)) {
    case 'Y':
      return SaveSetup(prog().SetupPath(), *prog().cfg);
    case 'N':
      return true;
    default:
      return false;
  }
}

}  // namespace

void RunMainMenu() {
  Program& p = prog();
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(p.cfg.get());
  const std::vector<std::uint8_t> snapshot(bytes, bytes + sizeof(KESTRAcfg));

  HelpSystem help;
  help.Open(p.help_dir + kHelpIndexName, p.help_dir + kHelpDocName);
  ui().show_help = [&help](int topic) { help.Show(topic); };

  ui().header_right3 = kF1Help;
  WriteHeaderAddress(*p.cfg);

  auto box = MakeMenu(MainMenuDef());
  box->Draw();
  for (bool done = false; !done;) {
    const int choice = box->Run();
    if (choice >= kSystemData && choice <= kInformation) {
      box->Hide();
      ActOnMain(choice);
      box->Show();
    } else if (choice == kExitProgram || choice == kChoiceEsc) {
      if (ConfigChanged(*p.cfg, snapshot)) {
        box->Hide();
        done = AskSave();
        if (!done) box->Show();
      } else {
        done = true;
      }
    } else if (choice == kChoiceF10) {
      done = SaveSetup(p.SetupPath(), *p.cfg);
    } else if (choice == kChoiceF9) {
      done = true;
    }
  }
  box->Hide();
  ui().show_help = nullptr;
  help.Close();
  ui().header_right3.clear();
  DrawHeader();
}

}  // namespace ks
