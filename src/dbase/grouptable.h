// The group table the configuration screens consult while the main menu runs: one entry per
// record of GRPFILE, in record order (entry n is record n), with the group's number and name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ks {

struct GroupTableEntry {
  std::uint8_t group = 0;
  std::string name;
  bool deleted = false;  // the record's keys are all zero: it is no longer in the list
};

// Reads GRPFILE's data file in `dir`; empty when it is missing, unreadable or corrupt.
std::vector<GroupTableEntry> LoadGroupTable(const std::string& dir);

}  // namespace ks
