#include "shell/maintenance.h"

#include "common/fileutil.h"
#include "dbase/maintain.h"
#include "dbase/rawfile.h"
#include "dbase/recordfile.h"
#include "tui/ui.h"

namespace ks {

const std::array<MaintenanceStatus, kRecordFileCount>& MaintenanceOrder() {
  using enum RecordFileId;
  static const std::array<MaintenanceStatus, kRecordFileCount> files = {{
      {kAreas, "Processing message area manager index files",
       "Processing message area manager data files"},
      {kReports, "Processing new file reports manager index files",
       "Processing new file reports manager data files"},
      {kFAreas, "Processing fileecho area manager index files",
       "Processing fileecho area manager data files"},
      {kMAreas, "Processing echomail area manager index files",
       "Processing echomail area manager data files"},
      {kGroups, "Processing group manager index files", "Processing group manager data files"},
      {kMagic, "Processing magic file name manager index files",
       "Processing magic file name manager data files"},
      {kBbsAreas, "Processing bbs new file directories manager index files",
       "Processing bbs new file directories manager data files"},
      {kHatch, "Processing hatch area manager index files",
       "Processing hatch area manager data files"},
      {kNodes, "Processing node manager index files", "Processing node manager data files"},
      {kAllfiles, "Processing allfiles manager index files",
       "Processing allfiles manager data files"},
  }};
  return files;
}

int RunMaintenance(const std::string& dir, bool index, std::size_t systems,
                   std::uint8_t echomail_option) {
  int processed = 0;
  for (const auto& step : MaintenanceOrder()) {
    if (ui().screen) {
      ShowStatus(index ? step.index_status : step.pack_status);
      scr().Flush();
    }
    const RecordFileDef& def = FileDef(step.file);
    const std::size_t size = def.RecordSize(systems);
    // A pair opens when both files are there and the data file can be opened for writing.
    RawFile data;
    if (!FileExists(IndexFileName(dir, def.base)) ||
        !data.Open(DataFileName(dir, def.base), RawFile::Mode::kReadWrite))
      continue;
    data.Close();
    if (!index) {
      const PackProc proc = step.file == RecordFileId::kMAreas
                                ? EchomailPackProc(echomail_option, systems)
                                : PackProc{};
      // A failed pack has put the old data file back; its index still fits it.
      if (!PackDataFile(dir, def.base, size, def.keys, proc)) continue;
    }
    BuildIndex(dir, def.base, size, def.keys);
    ++processed;
  }
  return processed;
}

}  // namespace ks
