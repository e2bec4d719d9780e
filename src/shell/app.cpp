#include "shell/app.h"

#include <cxxabi.h>

#include <cstdlib>
#include <optional>
#include <ostream>
#include <typeinfo>
#include <vector>

#include "common/fileutil.h"
#include "common/halt.h"
#include "common/recordext.h"
#include "dbase/systems_resize.h"
#include "docs/helpsys.h"
#include "shell/cmdline.h"
#include "shell/instance.h"
#include "shell/mainmenu.h"
#include "shell/maintenance.h"
#include "shell/program.h"
#include "shell/screens.h"
#include "shell/setupfile.h"
#include "tui/charchart.h"
#include "tui/picklist.h"
#include "tui/screen.h"
#include "tui/ui.h"

namespace ks {

namespace {

// Full-screen mode, entered the first time something must be drawn, so that the banner, the
// busy message and the usage text never touch the screen.
class ScreenSession {
 public:
  explicit ScreenSession(const AppEnv& env) : env_(env) {}
  // Reached early only when an exception unwinds: give the terminal back as it is.
  ~ScreenSession() {
    if (term_) term_->Close(0);
  }

  void Ensure() {
    if (screen_) return;
    term_ = env_.open_terminal();
    screen_ = std::make_unique<Screen>(*term_);
    scope_.emplace(*screen_);
    ui().popup_enabled = true;
    ui().popup = ShowCharacterChart;
    ui().header_line2 = std::string(kProductName) + " " + VersionString() + "  Setup program";
    ui().header_line3 = "FidoNet fileecho processor configuration";
  }
  bool open() const { return screen_ != nullptr; }

  // Shows the cursor and leaves the header rows standing above a cleared terminal.
  void Close(int keep_rows) {
    if (!screen_) return;
    // The text window below the header is cleared in light grey, the cursor at its top left.
    screen_->FillRect(1, keep_rows + 1, screen_->Width(), screen_->Height(), ' ', 0x07);
    screen_->SetCursorShape(CursorShape::kUnderline);
    screen_->GotoXY(1, keep_rows + 1);
    screen_->Flush();
    term_->Close(keep_rows);
    scope_.reset();
    screen_.reset();  // before the terminal, which it follows until then
    term_.reset();
  }

 private:
  const AppEnv& env_;
  std::unique_ptr<Terminal> term_;
  std::unique_ptr<Screen> screen_;
  std::optional<UiScope> scope_;
};

void PrintBanner(Console& con) {
  con.SetAttr(14);
  con.WriteLine(BannerLine());
  con.SetAttr(11);
  con.WriteLine(kRightsNotice);
  con.SetAttr(7);
  con.WriteLine();
}

std::string FindHelpDir(const AppEnv& env, const std::string& exe_path) {
  std::vector<std::string> dirs = {exe_path};
  if (!env.self_exe.empty()) dirs.push_back(DirOf(env.self_exe));
  if (!env.installed_data_dir.empty()) dirs.push_back(AddSlash(env.installed_data_dir));
  for (const auto& d : dirs)
    if (FileExists(d + kHelpDocName) && FileExists(d + kHelpIndexName)) return d;
  return exe_path;
}

// The main menu with the tables its screens consult loaded for its lifetime.
void RunMenuWithTables() {
  Program& p = prog();
  p.group_table = LoadGroupTable(p.DataDir());
  RegisterScreens();
  struct Release {
    ~Release() {
      prog().group_table.clear();
      group_source() = nullptr;
      file_area_source() = nullptr;
    }
  } release;
  RunMainMenu();
}

}  // namespace

ColourSet ColourSetOf(const KESTRAcfg* cfg) {
  ColourSet set = DefaultColourSet();
  if (cfg && cfg->colourSet.len > 0) {
    // A short set (a damaged file) keeps the defaults for the slots it lacks.
    const std::string bytes = cfg->colourSet.str();
    for (std::size_t i = 0; i < bytes.size() && i < set.size(); ++i)
      set[i] = static_cast<std::uint8_t>(bytes[i]);
  }
  return set;
}

void InstallColours(bool colour, const KESTRAcfg* cfg) {
  if (colour)
    ui().colours.Install(ColourSetOf(cfg));
  else
    ui().colours.InstallMono(ColourSetOf(cfg));
  scr().terminal().SetMonochrome(!colour);
}

int RunKsetup(const AppEnv& env) {
  ResetProgram();
  Program& p = prog();
  p.getenv = env.getenv;
  const ProgramDir pd = FindProgramDir(env.argv0, env.self_exe, env.getenv);
  p.exe_path = pd.path;
  p.setup_name = pd.setup_name;
  Console con(*env.out, env.console);

  if (FileExists(p.exe_path + kBusyMarker)) {
    PrintBanner(con);
    con.WriteLine("KESTRA/KSETUP is currently busy in another task");
    return 0;
  }
  const CommandLine cl = ParseCommandLine(env.args);
  if (!cl.ok) {
    PrintBanner(con);
    for (const auto& line : UsageLines()) con.WriteLine(line);
    return 0;
  }
  const char* no_color = env.getenv("NO_COLOR");
  p.colour = cl.colour.value_or(!(no_color && *no_color));
  p.sfi_forced = cl.sfi;
  p.do_index = cl.index;
  p.do_pack = cl.pack;
  record_extensions() = {"KSX", "IDX"};

  ScreenSession session(env);
  InstanceLock lock(p.exe_path);
  struct LockShown {
    explicit LockShown(InstanceLock* lock) { prog().instance = lock; }
    ~LockShown() { prog().instance = nullptr; }
  } lock_shown(&lock);
  p.cfg = std::make_unique<KESTRAcfg>();
  SetupLoadContext ctx;
  ctx.dir = p.exe_path;
  ctx.setup_name = p.setup_name;
  ctx.prepare = [&](const KESTRAcfg* rec) {
    session.Ensure();
    InstallColours(p.colour, rec);
    DrawDesktop();
  };
  int status = 0;
  if (LoadSetup(ctx, *p.cfg)) {
    KESTRAcfg& cfg = *p.cfg;
    session.Ensure();
    p.sfi = cl.sfi || cfg.speechFriendly != 0;
    ui().sfi = p.sfi;
    // A screen reader follows the hardware cursor, so it stays visible.
    if (p.sfi) scr().SetCursorShape(CursorShape::kUnderline);
    p.work_dir = cfg.tmpPath.empty() ? p.exe_path : AddSlash(cfg.tmpPath.str());
    p.help_dir = FindHelpDir(env, p.exe_path);
    // Files left by a run that was killed while saving, unless another copy is at work. A
    // change of "Number of systems" cut short is finished or undone first, before anything
    // opens the area files, by the number setup.ksx holds.
    lock.RunAlone([&] {
      std::vector<std::string> dirs = {p.exe_path};
      if (p.DataDir() != p.exe_path) dirs.push_back(p.DataDir());
      for (const std::string& dir : dirs) {
        RecoverSystemsResize(dir, cfg.numberOfSystems);
        RemoveStaleSaves(dir);
      }
    });
    if (p.colour && cfg.colourSet.len == 0) {
      const ColourSet& d = DefaultColourSet();
      cfg.colourSet.set(std::string_view(reinterpret_cast<const char*>(d.data()), d.size()));
    }
    InstallColours(p.colour, &cfg);
    DrawDesktop();
    try {
      if (p.do_index || p.do_pack)
        RunMaintenance(p.exe_path, p.do_index, cfg.numberOfSystems, cfg.echoMailOption);
      else
        RunMenuWithTables();
    } catch (const ProgramHalt& halt) {
      status = halt.status;
    }
  }
  p.cfg.reset();
  RemoveTempFiles(p.work_dir.empty() ? p.exe_path : p.work_dir);
  session.Close(kHeaderRows);
  return status;
}

std::vector<std::string> FatalReport(const std::exception& e) {
  const char* mangled = typeid(e).name();
  int status = 0;
  char* demangled = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
  std::string cls = status == 0 && demangled ? demangled : mangled;
  std::free(demangled);
  return {"FATAL Exception: " + cls + ": " + e.what(), "ExePath = " + prog().exe_path,
          "SetupFileName = setup.ksx"};
}

}  // namespace ks
