// One run of KSETUP from start to end: program directory, busy test, command line, setup file,
// colours, then the Index or Pack command or the main menu, and the tidying up.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "shell/kestracfg.h"
#include "shell/progdir.h"
#include "tui/colours.h"
#include "tui/console.h"
#include "tui/terminal.h"

namespace ks {

struct AppEnv {
  std::string argv0;
  std::vector<std::string> args;
  GetEnvFn getenv;
  std::string self_exe;            // the program file, links resolved
  std::string installed_data_dir;  // where an installed copy keeps its help files
  std::ostream* out = nullptr;     // the plain console
  ConsoleOptions console;
  // Enters full-screen mode; called the first time something is drawn.
  std::function<std::unique_ptr<Terminal>()> open_terminal;
};

// The colour set of the configuration (the start-up default where it has none or a short one),
// and its installation, or that of the monochrome attributes when `colour` is false.
ColourSet ColourSetOf(const KESTRAcfg* cfg);
void InstallColours(bool colour, const KESTRAcfg* cfg);

// Runs the program and returns its exit status. Exceptions escape to the caller.
int RunKsetup(const AppEnv& env);

// The lines of the fatal-error report for an exception that escaped RunKsetup.
std::vector<std::string> FatalReport(const std::exception& e);

inline constexpr const char* kBusyMarker = "kestra.bsy";

}  // namespace ks
