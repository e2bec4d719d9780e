#include "shell/progdir.h"

#include <unistd.h>

#include <cctype>
#include <climits>
#include <cstdlib>
#include <filesystem>

#include "common/fileutil.h"

namespace ks {

namespace {

constexpr const char* kSetupNames[] = {"setup.ksx", "SETUP.KSX"};

// The directory in which the program was found as invoked.
std::string InvokedDir(const std::string& argv0) {
  if (argv0.find('/') != std::string::npos) return DirOf(argv0);
  if (auto found = FindInPath(argv0)) return DirOf(*found);
  return "./";
}

bool FindSetupIn(const std::string& dir, ProgramDir& out) {
  for (const char* name : kSetupNames) {
    if (FileExists(dir + name)) {
      out = {dir, name};
      return true;
    }
  }
  return false;
}

// `dir` as an absolute path with a trailing "/": a relative one is taken from the current
// directory, and "." and ".." steps are resolved without following links.
std::string Absolute(const std::string& dir) {
  std::error_code ec;
  std::filesystem::path p = std::filesystem::absolute(dir.empty() ? "." : dir, ec);
  if (ec) return AddSlash(dir);
  std::string s = p.lexically_normal().string();
  return AddSlash(s);
}

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

}  // namespace

std::string SelfExecutable() {
  char buf[PATH_MAX];
  ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
  if (n <= 0) return {};
  return std::string(buf, static_cast<std::size_t>(n));
}

ProgramDir FindProgramDir(const std::string& argv0, const std::string& self_exe,
                          const GetEnvFn& getenv) {
  ProgramDir pd;
  const std::string invoked = Absolute(InvokedDir(argv0));
  if (FindSetupIn(invoked, pd)) return pd;
  std::string real_dir;
  if (!self_exe.empty()) {
    if (char* real = ::realpath(self_exe.c_str(), nullptr)) {
      real_dir = Absolute(DirOf(real));
      std::free(real);
      if (FindSetupIn(real_dir, pd)) return pd;
    }
  }
  if (const char* env = getenv("KESTRA"); env && *env) {
    const std::string dir = Absolute(env);
    if (!FindSetupIn(dir, pd)) pd = {dir, kSetupNames[0]};
    return pd;
  }
  return {real_dir.empty() ? invoked : real_dir, kSetupNames[0]};
}

int RemoveTempFiles(const std::string& dir) {
  int removed = 0;
  for (const std::string& name : ListFiles(dir)) {
    if (name.size() != 12) continue;
    std::string ext = name.substr(8);
    for (auto& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext != ".tmp" || !IsHexDigit(name[0]) || !IsHexDigit(name[7])) continue;
    if (::unlink((AddSlash(dir) + name).c_str()) == 0) ++removed;
  }
  return removed;
}

}  // namespace ks
