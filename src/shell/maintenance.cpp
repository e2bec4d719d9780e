#include "shell/maintenance.h"

#include "common/fileutil.h"
#include "dbase/maintain.h"
#include "dbase/rawfile.h"
#include "dbase/recordfile.h"
#include "tui/ui.h"

namespace ks {

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
