// The step every importer ends with: the areas read from a foreign file become fileecho
// records (FAREAS) or echomail records (MAREAS), the systems connected to them node records
// (NODEFILE). An area whose tag is already there, and a system whose address is, is left out,
// so that importing a file twice adds nothing the second time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "dbase/fileecho_rec.h"
#include "dbase/node_rec.h"
#include "transfer/import_parse.h"

namespace ks {

struct ImportTarget {
  std::string data_dir;
  std::size_t systems = kDefaultSystemsPerArea;  // connected-system slots of a record
  NodeDefaults node_defaults;
};

struct ImportResult {
  std::uint16_t areas = 0;       // areas added
  std::uint16_t systems = 0;     // node records added
  std::size_t slots = 0;         // systems an area could take
  std::vector<std::string> cut;  // areas that listed more systems than that
  std::string error;             // a data file that could not be opened or written
};

// Adds the areas of `list` and their systems; `progress` is told each area's tag as it is
// added. Nothing is written when a data file cannot be opened or would overflow.
ImportResult AddImported(const ImportList& list, const ImportTarget& target,
                         const std::function<void(const std::string& tag)>& progress = {});

// The lines of the box that ends an import.
std::vector<std::string> SummaryLines(const ImportResult& r);

}  // namespace ks
