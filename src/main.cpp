// KSETUP: the configuration program of the KESTRA fileecho processor.
#include <iostream>

#include "shell/app.h"
#include "tui/curses_terminal.h"

#ifndef KS_DATADIR
#define KS_DATADIR ""
#endif

int main(int argc, char** argv) {
  ks::AppEnv env;
  env.argv0 = argc > 0 ? argv[0] : "ksetup";
  env.args.assign(argv + (argc > 0 ? 1 : 0), argv + argc);
  env.getenv = [](const char* name) -> const char* { return std::getenv(name); };
  env.self_exe = ks::SelfExecutable();
  env.installed_data_dir = KS_DATADIR;
  env.out = &std::cout;
  env.console = ks::DetectConsoleOptions();
  env.open_terminal = [] { return ks::OpenCursesTerminal(); };
  try {
    const int status = ks::RunKsetup(env);
    std::cout.flush();
    return status;
  } catch (const std::exception& e) {
    ks::CursesTerminal::EmergencyRestore();
    std::cout.flush();
    for (const auto& line : ks::FatalReport(e)) std::cout << line << '\n';
    std::cout.flush();
    return 1;
  }
}
