// A group renumbered or deleted across the record files. Each record is read, changed in
// memory and the bytes that changed are written back at their place with one write, so a kill
// at any moment leaves every record either as it was or as it is meant to be. The indexes of
// the files whose keys changed are rebuilt by the caller; until then an index that no longer
// fits its data is found and rebuilt when the file is next opened (and by `Index`).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ks {

// The places a renumbering changed, file by file.
struct RenumberCount {
  int fileechos = 0;  // FAREAS records whose group was `from`
  int reports = 0;    // REPORTS group sets
  int nodes = 0;      // NODEFILE group sets (authorized and billing groups)
  int total() const { return fileechos + reports + nodes; }
};

// Replaces group `from` by `to` in FAREAS (records of `systems` connected systems), then in
// the group sets of REPORTS, then of NODEFILE, all in `dir`. Missing files are skipped.
RenumberCount RenumberGroupInFiles(const std::string& dir, std::size_t systems, std::uint8_t from,
                                   std::uint8_t to);

// What a deletion removed.
struct GroupRemoval {
  int fileechos = 0;
  int hatch = 0;
  int magic = 0;
  int total() const { return fileechos + hatch + magic; }
};

// Deletes every fileecho of `group` from FAREAS (its tag cleared and its group set to 0), and
// the HATCH entries for those tags and the MGICFILE entries from or to them (tags compared
// without regard to case; an entry's key bytes cleared).
GroupRemoval DeleteGroupFromFiles(const std::string& dir, std::size_t systems, std::uint8_t group);

}  // namespace ks
