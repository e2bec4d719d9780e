// What the list editors need to know of the program: where the files are and the parts of
// the configuration their pages offer as choices.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/groupset.h"
#include "common/netaddr.h"
#include "dbase/node_rec.h"

namespace ks {

struct ListContext {
  std::string data_dir;            // the record files, with a trailing "/"
  std::string work_dir;            // temporary files, with a trailing "/"
  std::vector<NetAddr> addresses;  // the system's addresses: main, then aka 1.. (zone 0 = unused)
  int systems_per_area = 200;      // connected systems a FAREAS/MAREAS record holds
  // The archivers of "External programs", rows 1..10 (their extensions, or ARC, ARJ, LZH, PAK,
  // ZIP, SQZ, 7, 8, 9, 10 where none is set): what "Convert" and "Compression type" offer.
  std::vector<std::string> archivers;
  // The configured BBS keeps a file database of its own (log style WildCat): the fileecho page
  // has its "Use FDB"/"Use FBBS" row and "No Touch" does not apply.
  bool bbs_file_database = false;
  NodeDefaults* node_defaults = nullptr;  // in the configuration; edited by F3 of the nodes
  // The configuration's group sets, in the order a group renumbering visits them.
  std::vector<GroupSet*> config_group_sets;
};

// The companion file of the list kept in `base`: a temporary file in the work directory,
// named so that the clean-up at exit finds it if the program ever ends without removing it
// ("C" + the base name's first six characters, padded with "_", + "0" + ".tmp").
std::string CompanionName(const ListContext& ctx, const std::string& base);

}  // namespace ks
