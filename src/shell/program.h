// The state of one run of the program, set up at start-up and read by the screens.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dbase/grouptable.h"
#include "shell/kestracfg.h"
#include "shell/progdir.h"

namespace ks {

class InstanceLock;

struct Program {
  std::string exe_path;                  // program directory, with a trailing "/"
  std::string setup_name = "setup.ksx";  // as spelt on disk
  bool colour = true;                    // colour, or monochrome
  bool sfi = false;                      // speech-friendly interface active
  bool sfi_forced = false;               // ... because the command line asked for it
  bool do_index = false;
  bool do_pack = false;
  std::unique_ptr<KESTRAcfg> cfg;  // the configuration, edited in place by every screen
  std::string work_dir;            // where temporary files go
  std::string help_dir;            // where KESTRA.DOC and KS_DOC.IDX were found
  GetEnvFn getenv;                 // the environment the program was started with
  // The groups, one entry per GRPFILE record, loaded while the main menu runs.
  std::vector<GroupTableEntry> group_table;
  // The lock RunKsetup holds on the program directory while it runs; none outside it.
  InstanceLock* instance = nullptr;

  std::string SetupPath() const { return exe_path + setup_name; }
  // The directory of the record files: the configured data path, or the program directory.
  std::string DataDir() const;
};

// The one run of this process (the fatal-error path reads it too).
Program& prog();
void ResetProgram();

}  // namespace ks
