// The Index and Pack commands: rebuild the index files or pack the data files of the ten
// record files, in a fixed order, without the menus.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "dbase/maintenance_order.h"

namespace ks {

// Visits the ten files in `dir`: each that opens (both files present) has its index rebuilt
// (index true) or its data packed and its index rebuilt; the others are skipped silently.
// FAREAS and MAREAS records hold `systems` connected systems; `echomail_option` is handed to
// the echomail area file before it is packed. Returns how many files were processed.
int RunMaintenance(const std::string& dir, bool index, std::size_t systems,
                   std::uint8_t echomail_option);

}  // namespace ks
