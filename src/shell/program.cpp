#include "shell/program.h"

#include "common/fileutil.h"

namespace ks {

namespace {
Program g_prog;
}

Program& prog() {
  return g_prog;
}
void ResetProgram() {
  g_prog = Program();
}

std::string Program::DataDir() const {
  if (cfg && !cfg->dataPath.empty()) return AddSlash(cfg->dataPath.str());
  return exe_path;
}

}  // namespace ks
