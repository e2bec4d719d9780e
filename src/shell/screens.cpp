#include "shell/screens.h"

#include <algorithm>

#include "common/fileutil.h"
#include "dbase/bbsfileareas.h"
#include "editors/lists.h"
#include "shell/mainmenu.h"
#include "shell/program.h"
#include "tui/picklist.h"

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
    const std::string ext = p.cfg->dosPrograms.archivers[i].extension.str();
    ctx.archivers.push_back(ext.empty() ? kArchiverNames[i] : ext);
  }
  ctx.bbs_file_database = p.cfg->logStyle == lsWildCat;
  ctx.node_defaults = &p.cfg->nodeDefaults;
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
  Fill(acts.echomail[1], List(RunEchomailManager));
  Fill(acts.echomail[3], List(RunPackManager));
  Fill(acts.utilities[4], List(RunUplinkRequests));
  group_source() = Groups;
  file_area_source() = [] { return LoadBbsFileAreas(prog().DataDir()); };
}

}  // namespace ks
