// Utilities > "Export data": the "Export" window, whose five entries each ask for a file name
// and write one text list of the fileechos or nodes to it.
#pragma once

#include "transfer/transfer.h"
#include "tui/menu.h"

namespace ks {

const MenuDef& ExportMenuDef();

// Runs the window until Esc. Relative file names are taken from the current directory.
void RunExportMenu(const TransferContext& ctx);

}  // namespace ks
