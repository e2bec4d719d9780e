// The simple lists of the main menu tree, each an entry list editor with its own page.
#pragma once

#include "editors/context.h"

namespace ks {

void RunFileFindAreas(const ListContext& ctx);    // AREAS
void RunNewFileReports(const ListContext& ctx);   // REPORTS
void RunBbsFileAreas(const ListContext& ctx);     // BBSAREAS
void RunAllfilesLists(const ListContext& ctx);    // ALLFILES
void RunHatchManager(const ListContext& ctx);     // HATCH
void RunEchomailManager(const ListContext& ctx);  // MAREAS
void RunFileechoManager(const ListContext& ctx);  // FAREAS
void RunPackManager(const ListContext& ctx);      // netmail routing
void RunUplinkRequests(const ListContext& ctx);   // requests sent to uplinks
void RunNodeManager(const ListContext& ctx);      // NODEFILE
void RunMagicFileNames(const ListContext& ctx);   // MGICFILE
void RunGroupManager(const ListContext& ctx);     // GRPFILE

}  // namespace ks
