// Import of other programs' configurations and export of text lists: what both need of the
// program, handed in by the shell.
#pragma once

#include <string>
#include <vector>

#include "shell/kestracfg.h"

namespace ks {

struct TransferContext {
  const KESTRAcfg* cfg = nullptr;
  std::string data_dir;     // with "/": the record files
  std::string current_dir;  // with "/": where relative file names are taken from
  std::string program_dir;  // with "/": where the uplinks' list files are found by default
  std::string version;      // the program version, for report titles
};

// The title line of a text report: "KESTRA " + version + `title` (which brings its own
// leading blanks: " List of unlisted fileechos").
std::string ReportTitle(const TransferContext& ctx, const std::string& title);

// `name` as an absolute path: a relative name is taken from the current directory.
std::string AbsoluteName(const TransferContext& ctx, const std::string& name);

}  // namespace ks
