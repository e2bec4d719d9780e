// What the list editors need to know of the program: where the files are and the parts of
// the configuration their pages offer as choices.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/netaddr.h"

namespace ks {

struct ListContext {
  std::string data_dir;            // the record files, with a trailing "/"
  std::string work_dir;            // temporary files, with a trailing "/"
  std::vector<NetAddr> addresses;  // the system's addresses: main, then aka 1.. (zone 0 = unused)
  int systems_per_area = 200;      // connected systems a FAREAS/MAREAS record holds
};

// The companion file of the list kept in `base`: a temporary file in the work directory,
// named so that the clean-up at exit finds it if the program ever ends without removing it
// ("C" + the base name's first six characters, padded with "_", + "0" + ".tmp").
std::string CompanionName(const ListContext& ctx, const std::string& base);

}  // namespace ks
