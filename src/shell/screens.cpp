#include "shell/screens.h"

#include <algorithm>
#include <filesystem>

#include "common/fileutil.h"
#include "dbase/bbsfileareas.h"
#include "editors/lists.h"
#include "shell/app.h"
#include "shell/cmdline.h"
#include "shell/edit_file.h"
#include "shell/mainmenu.h"
#include "shell/program.h"
#include "shell/systems_change.h"
#include "sysdata/sysdata.h"
#include "templateview/template_viewer.h"
#include "transfer/export_menu.h"
#include "transfer/import_menu.h"
#include "transfer/transfer.h"
#include "tui/colourmenu.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

ListContext MakeListContext() {
  const Program& p = prog();
  ListContext ctx;
  ctx.data_dir = AddSlash(p.DataDir());
  ctx.work_dir = AddSlash(p.work_dir.empty() ? p.exe_path : p.work_dir);
  ctx.addresses.assign(std::begin(p.cfg->addresses), std::end(p.cfg->addresses));
  ctx.systems_per_area = p.cfg->numberOfSystems;
  static const char* const kArchiverNames[kArchiverCount] = {"ARC", "ARJ", "LZH", "PAK", "ZIP",
                                                             "SQZ", "7",   "8",   "9",   "10"};
  for (std::size_t i = 0; i < kArchiverCount; ++i) {
    const std::string ext = p.cfg->os2Programs.archivers[i].extension.str();
    ctx.archivers.push_back(ext.empty() ? kArchiverNames[i] : ext);
  }
  ctx.bbs_file_database = p.cfg->logStyle == lsWildCat;
  ctx.node_defaults = &p.cfg->nodeDefaults;
  const auto sets = ConfigGroupSets(*p.cfg);
  ctx.config_group_sets.assign(sets.begin(), sets.end());
  return ctx;
}

namespace {

// A list editor opened with the context of the moment (the configuration may have changed).
std::function<void()> List(void (*run)(const ListContext&)) {
  return [run] { run(MakeListContext()); };
}

void Fill(std::function<void()>& slot, std::function<void()> action) {
  if (!slot) slot = std::move(action);
}

std::vector<GroupName> Groups() {
  std::vector<GroupName> out;
  for (const auto& g : prog().group_table)
    if (!g.deleted) out.push_back({g.group, g.name});
  std::sort(out.begin(), out.end(),
            [](const GroupName& a, const GroupName& b) { return a.number < b.number; });
  return out;
}

// The "Colors" menu of Miscellaneous: a set chosen is installed at once and kept in the
// configuration, which is saved with the rest of it.
bool ChangeColours() {
  Program& p = prog();
  ColourSet set = ColourSetOf(p.cfg.get());
  if (!RunColorsMenu(set)) return false;
  p.cfg->colourSet.set(std::string_view(reinterpret_cast<const char*>(set.data()), set.size()));
  InstallColours(p.colour, p.cfg.get());
  DrawDesktop();
  return true;
}

SysdataContext MakeSysdataContext() {
  SysdataContext ctx;
  ctx.cfg = prog().cfg.get();
  ctx.colours = ChangeColours;
  ctx.change_systems = [](std::uint8_t old_systems, std::uint8_t new_systems) {
    return ChangeNumberOfSystems(*prog().cfg, old_systems, new_systems);
  };
  ctx.edit_file = FileEditor(ctx.cfg, prog().getenv);
  ctx.program_dir = prog().exe_path;
  return ctx;
}

TemplateContext MakeTemplateContext() {
  const Program& p = prog();
  TemplateContext ctx;
  ctx.cfg = p.cfg.get();
  ctx.program_dir = p.exe_path;
  ctx.data_dir = AddSlash(p.DataDir());
  ctx.version = VersionString();
  ctx.archivers = MakeListContext().archivers;
  ctx.edit_file = FileEditor(ctx.cfg, p.getenv);
  return ctx;
}

TransferContext MakeTransferContext() {
  TransferContext ctx;
  ctx.cfg = prog().cfg.get();
  ctx.data_dir = AddSlash(prog().DataDir());
  std::error_code ec;
  ctx.current_dir = AddSlash(std::filesystem::current_path(ec).string());
  ctx.program_dir = prog().exe_path;
  ctx.version = VersionString();
  return ctx;
}

// The choices of "Miscellaneous" that KSETUP itself follows.
void ApplyUiOptions(const KESTRAcfg& cfg) {
  ui().confirm_delete = cfg.confirmDelete != 0;
  ui().offer_create_dirs = cfg.createMissingDirs != 0;
  ui().beep_on_error = cfg.beepOnError != 0;
}

// A settings screen opened with the context of the moment; its choices apply at once.
std::function<void()> Settings(void (*run)(const SysdataContext&)) {
  return [run] {
    run(MakeSysdataContext());
    ApplyUiOptions(*prog().cfg);
  };
}

}  // namespace

void RegisterScreens() {
  MenuActions& acts = menu_actions();
  Fill(acts.main[kFileFindAreas], List(RunFileFindAreas));
  Fill(acts.main[kNewFileReports], List(RunNewFileReports));
  Fill(acts.main[kBbsFileareas], List(RunBbsFileAreas));
  Fill(acts.main[kAllfilesLists], List(RunAllfilesLists));
  Fill(acts.main[kNodeManager], List(RunNodeManager));
  Fill(acts.fileecho[1], List(RunFileechoManager));
  Fill(acts.fileecho[4], List(RunHatchManager));
  Fill(acts.fileecho[5], List(RunMagicFileNames));
  Fill(acts.fileecho[6], [] {
    RunGroupManager(MakeListContext());
    prog().group_table = LoadGroupTable(prog().DataDir());  // names and numbers may have changed
  });
  Fill(acts.echomail[1], List(RunEchomailManager));
  Fill(acts.echomail[3], List(RunPackManager));
  Fill(acts.utilities[1], [] { RunTemplateList(MakeTemplateContext()); });
  Fill(acts.utilities[2], [] { RunExportMenu(MakeTransferContext()); });
  Fill(acts.utilities[3], [] { RunImportMenu(MakeTransferContext()); });
  Fill(acts.utilities[4], List(RunUplinkRequests));
  Fill(acts.main[kSystemData], Settings(RunSystemDataMenu));
  Fill(acts.main[kRequestProcessor], Settings(RunRequestProcessor));
  Fill(acts.fileecho[2], Settings(RunFileechoOptions));
  Fill(acts.fileecho[3], Settings(RunLongDescOptions));
  Fill(acts.fileecho[7], Settings(RunUplinkManager));
  Fill(acts.fileecho[8], Settings(RunUplinkOptions));
  Fill(acts.echomail[2], Settings(RunEchomailOptions));
  ui().find_setting = [] {
    RunFindSetting(MakeSysdataContext());
    ApplyUiOptions(*prog().cfg);
    WriteHeaderAddress(*prog().cfg);
  };
  group_source() = Groups;
  ApplyUiOptions(*prog().cfg);
  file_area_source() = [] { return LoadBbsFileAreas(prog().DataDir()); };
}

}  // namespace ks
