#include "dbase/maintenance_order.h"

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

const MaintenanceStatus& MaintenanceStep(RecordFileId file) {
  for (const auto& step : MaintenanceOrder())
    if (step.file == file) return step;
  return MaintenanceOrder().front();
}

}  // namespace ks
