// The order in which the Index and Pack commands visit the ten record files, with the status
// line each shows; every rebuild of an index elsewhere shows the same line.
#pragma once

#include <array>

#include "dbase/recfiles.h"

namespace ks {

struct MaintenanceStatus {
  RecordFileId file;
  const char* index_status;  // status line while its index is rebuilt
  const char* pack_status;   // status line while its data file is packed
};

// The ten files in the order the commands visit them, with their status lines.
const std::array<MaintenanceStatus, kRecordFileCount>& MaintenanceOrder();

// The step of one file.
const MaintenanceStatus& MaintenanceStep(RecordFileId file);

}  // namespace ks
