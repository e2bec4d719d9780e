// Ending the program from deep inside an operation: thrown, and caught by the start-up code,
// which still restores the terminal and removes its temporary files before it ends.
#pragma once

namespace ks {

struct ProgramHalt {
  int status = 0;
};

}  // namespace ks
