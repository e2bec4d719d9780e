// Fileecho and echomail area files of a given number of systems, for the tests of a change of
// "Number of systems".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dbase/recfiles.h"

namespace ks::test {

// Record i: tag "AREA<i>", group 1, the rest of the fixed part a pattern of i, and `used[i]`
// systems 2:i/slot in the first slots. A negative count makes a deleted record (keys zeroed)
// that still holds -used[i] systems.
inline std::string AreaImage(const RecordFileDef& def, std::size_t systems,
                             const std::vector<int>& used) {
  const std::size_t size = def.RecordSize(systems);
  std::string out;
  for (std::size_t i = 0; i < used.size(); ++i) {
    std::string rec(size, '\0');
    for (std::size_t b = 41; b < def.fixed_size; ++b) rec[b] = static_cast<char>(i * 7 + b);
    rec[110] = 0;
    if (used[i] >= 0) {
      const std::string tag = "AREA" + std::to_string(i);
      rec[0] = static_cast<char>(tag.size());
      rec.replace(1, tag.size(), tag);
      rec[110] = 1;
    }
    const int n = used[i] < 0 ? -used[i] : used[i];
    for (int s = 0; s < n && static_cast<std::size_t>(s) < systems; ++s) {
      char* slot = &rec[def.fixed_size + static_cast<std::size_t>(s) * 9];
      slot[0] = 2;                        // zone
      slot[2] = static_cast<char>(i);     // net
      slot[4] = static_cast<char>(s);     // node
      slot[8] = static_cast<char>(0x05);  // flags
    }
    out += rec;
  }
  return out;
}

}  // namespace ks::test
