// The Index and Pack commands: rebuild the index files or pack the data files of the ten
// record files, in a fixed order, without the menus.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace ks {

struct RecordFileEntry {
  const char* base;          // base name of the file pair
  const char* index_status;  // status line while its index is rebuilt
  const char* pack_status;   // status line while its data file is packed
};

inline constexpr std::size_t kRecordFileCount = 10;
const std::array<RecordFileEntry, kRecordFileCount>& RecordFiles();

// Rebuilds (index true) or packs one file pair in `dir`; false when the pair cannot be opened,
// and then the file is skipped without a message. `echomail_option` is handed to the echomail
// area file before it is packed. The record database installs the real procedure; until it
// does, no file can be opened and every file is skipped.
using MaintainFn = std::function<bool(const std::string& dir, const RecordFileEntry& file,
                                      bool index, std::uint8_t echomail_option)>;
MaintainFn& record_file_maintainer();

// Visits the ten files in order with their status lines; returns how many were processed.
int RunMaintenance(const std::string& dir, bool index, std::uint8_t echomail_option);

}  // namespace ks
