// Carrying a changed or deleted node address into the rest of the setup: the connected
// systems of the fileechos (FAREAS), the export lists of the magic file names (MGICFILE) and
// of the new file reports (REPORTS), the connected systems of the group defaults (GRPFILE)
// and of the echomail areas (MAREAS), in that order.
//
// The data files are changed in place: records are read in blocks and only the address
// lists of the records that change are written back. The address is never a key of these
// files, so their indexes stay valid. Deleted records (all key bytes zero) are left alone,
// and a file that does not exist is skipped.
#pragma once

#include <string>

#include "common/netaddr.h"

namespace ks {

// Removes `node` from every address list; the systems after it move up so that the used
// slots stay first. Returns the number of places changed: one per record whose list held
// the node.
int RemoveNode(const std::string& data_dir, int systems_per_area, const NetAddr& node);

// Puts `to` in the place of `from` in every address list, keeping the slot's switches. A list
// that already holds `to` only loses `from`, so that no system is listed twice. Returns the
// number of places changed, one per record.
int ReplaceNode(const std::string& data_dir, int systems_per_area, const NetAddr& from,
                const NetAddr& to);

}  // namespace ks
