// The Index and Pack commands: rebuild the index files or pack the data files of the ten
// record files, in a fixed order, without the menus.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "dbase/recfiles.h"

namespace ks {

struct MaintenanceStatus {
  RecordFileId file;
  const char* index_status;  // status line while its index is rebuilt
  const char* pack_status;   // status line while its data file is packed
};

// The ten files in the order the commands visit them, with their status lines.
const std::array<MaintenanceStatus, kRecordFileCount>& MaintenanceOrder();

// Visits the ten files in `dir`: each that opens (both files present) has its index rebuilt
// (index true) or its data packed and its index rebuilt; the others are skipped silently.
// FAREAS and MAREAS records hold `systems` connected systems; `echomail_option` is handed to
// the echomail area file before it is packed. Returns how many files were processed.
int RunMaintenance(const std::string& dir, bool index, std::size_t systems,
                   std::uint8_t echomail_option);

}  // namespace ks
