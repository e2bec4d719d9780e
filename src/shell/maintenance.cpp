#include "shell/maintenance.h"

#include "tui/ui.h"

namespace ks {

const std::array<RecordFileEntry, kRecordFileCount>& RecordFiles() {
  static const std::array<RecordFileEntry, kRecordFileCount> files = {{
      {"AREAS", "Processing message area manager index files",
       "Processing message area manager data files"},
      {"REPORTS", "Processing new file reports manager index files",
       "Processing new file reports manager data files"},
      {"FAREAS", "Processing fileecho area manager index files",
       "Processing fileecho area manager data files"},
      {"MAREAS", "Processing echomail area manager index files",
       "Processing echomail area manager data files"},
      {"GRPFILE", "Processing group manager index files", "Processing group manager data files"},
      {"MGICFILE", "Processing magic file name manager index files",
       "Processing magic file name manager data files"},
      {"BBSAREAS", "Processing bbs new file directories manager index files",
       "Processing bbs new file directories manager data files"},
      {"HATCH", "Processing hatch area manager index files",
       "Processing hatch area manager data files"},
      {"NODEFILE", "Processing node manager index files", "Processing node manager data files"},
      {"ALLFILES", "Processing allfiles manager index files",
       "Processing allfiles manager data files"},
  }};
  return files;
}

MaintainFn& record_file_maintainer() {
  static MaintainFn fn;
  return fn;
}

int RunMaintenance(const std::string& dir, bool index, std::uint8_t echomail_option) {
  int processed = 0;
  for (const auto& file : RecordFiles()) {
    ShowStatus(index ? file.index_status : file.pack_status);
    scr().Flush();
    const auto& maintain = record_file_maintainer();
    if (maintain && maintain(dir, file, index, echomail_option)) ++processed;
  }
  return processed;
}

}  // namespace ks
