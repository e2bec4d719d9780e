// A change of "Number of systems" in the Global options: the warning, the rewrite of the
// fileecho and echomail area files with their new record size, and the new number stored in
// setup.ksx as the point from which the rewritten files count (see dbase/systems_resize.h).
#pragma once

#include <cstdint>
#include <string>

#include "shell/kestracfg.h"

namespace ks {

// Stores `systems` as "Number of systems" in the setup file at `path`, replacing the file
// atomically. Only that byte of the file on disk changes, so other changes the operator has
// not saved yet stay unsaved; a file that is missing, of another size or of another revision
// than `cfg` is replaced by the whole of `cfg` with the new number. False when the file cannot
// be written; `error` says why.
bool StoreNumberOfSystems(const std::string& path, const KESTRAcfg& cfg, std::uint8_t systems,
                          std::string* error);

// Asks the operator and, on "Yes", rewrites FAREAS and MAREAS in the data directory of `cfg`
// and stores the new number in setup.ksx. True when the new number is accepted
// (cfg.numberOfSystems then holds `new_systems`); false keeps `old_systems`, with every file as
// it was.
bool ChangeNumberOfSystems(KESTRAcfg& cfg, std::uint8_t old_systems, std::uint8_t new_systems);

}  // namespace ks
