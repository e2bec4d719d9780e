// Finding the program directory, where "setup.ksx", the busy marker and the help files are.
#pragma once

#include <functional>
#include <string>

namespace ks {

struct ProgramDir {
  std::string path;                      // with a trailing "/"
  std::string setup_name = "setup.ksx";  // the spelling found on disk
};

using GetEnvFn = std::function<const char*(const char*)>;

// Looks for "setup.ksx" (then "SETUP.KSX") in the directory of the program as invoked
// (`argv0`, searched along PATH when it has no "/"), then in the directory of the program
// file itself (`self_exe`, links resolved); if none has it and KESTRA is set, KESTRA names
// the directory. Otherwise the program file's own directory is taken (the directory as
// invoked when that is unknown). The path is always absolute: a relative one is taken from
// the current directory.
ProgramDir FindProgramDir(const std::string& argv0, const std::string& self_exe,
                          const GetEnvFn& getenv);

// The program file itself, links resolved ("" when unknown).
std::string SelfExecutable();

// Deletes KSETUP's own temporary files in `dir`: names of exactly 12 characters ending in
// ".tmp" whose first and eighth characters are hexadecimal digits (0-9, A-F). Returns how
// many were deleted.
int RemoveTempFiles(const std::string& dir);

}  // namespace ks
