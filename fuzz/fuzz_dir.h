// The private directory of a fuzz target: created once per process (on tmpfs when there is
// one, since the record files are flushed), removed with everything in it at exit.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace fuzz {

inline const std::string& PrivateDir(const char* name) {
  static std::string dir;
  if (dir.empty()) {
    const std::string parent = ::access("/dev/shm", W_OK | X_OK) == 0
                                   ? "/dev/shm"
                                   : std::filesystem::temp_directory_path().string();
    std::string tmpl = parent + "/" + name + "-XXXXXX";
    if (!::mkdtemp(tmpl.data())) std::abort();
    dir = tmpl + "/";
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(dir, ec);
    });
  }
  return dir;
}

}  // namespace fuzz
