#include "common/fileutil.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace ks {

bool FileExists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool DirExists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool MakeDirs(const std::string& path) {
  std::error_code ec;
  std::filesystem::create_directories(path, ec);
  return DirExists(path);
}

std::optional<std::uint64_t> FileSize(const std::string& path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(st.st_size);
}

std::string AddSlash(std::string dir) {
  if (!dir.empty() && dir.back() != '/') dir += '/';
  return dir;
}

std::string DirOf(const std::string& path) {
  auto slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::optional<std::string> ReadWholeFile(const std::string& path) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  std::string data;
  char buf[65536];
  for (;;) {
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      ::close(fd);
      return std::nullopt;
    }
    if (n == 0) break;
    data.append(buf, static_cast<std::size_t>(n));
  }
  ::close(fd);
  return data;
}

namespace {

bool WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    ssize_t n = ::write(fd, data.data(), data.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    data.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

}  // namespace

bool WriteFileAtomic(const std::string& path, std::string_view data, std::string* error) {
  std::string tmpl = path + ".XXXXXX";
  int fd = ::mkostemp(tmpl.data(), O_CLOEXEC);
  if (fd < 0) {
    if (error) *error = std::strerror(errno);
    return false;
  }
  // Keep the permissions of the file being replaced; a new file gets the usual 0644 less umask.
  struct stat st;
  mode_t mode = 0644;
  if (::stat(path.c_str(), &st) == 0) {
    mode = st.st_mode & 07777;
  } else {
    mode_t mask = ::umask(0);
    ::umask(mask);
    mode &= ~mask;
  }
  ::fchmod(fd, mode);
  bool ok = WriteAll(fd, data) && ::fsync(fd) == 0;
  int saved = errno;
  ok = (::close(fd) == 0) && ok;
  if (ok && ::rename(tmpl.c_str(), path.c_str()) != 0) {
    saved = errno;
    ok = false;
  }
  if (!ok) {
    ::unlink(tmpl.c_str());
    if (error) *error = std::strerror(saved ? saved : EIO);
    return false;
  }
  SyncDir(DirOf(path));
  return true;
}

void SyncDir(const std::string& dir) {
  int dfd = ::open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
}

bool RenameDurable(const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) return false;
  SyncDir(DirOf(to));
  return true;
}

bool IsAtomicWriteLeftover(const std::string& name, std::string_view target_suffix) {
  constexpr std::size_t kRandom = 6;  // the XXXXXX of mkostemp
  const std::size_t n = target_suffix.size();
  if (name.size() <= n + 1 + kRandom) return false;
  const std::size_t dot = name.size() - kRandom - 1;
  if (name[dot] != '.') return false;
  for (std::size_t i = dot + 1; i < name.size(); ++i)
    if (!std::isalnum(static_cast<unsigned char>(name[i]))) return false;
  for (std::size_t i = 0; i < n; ++i)
    if (std::tolower(static_cast<unsigned char>(name[dot - n + i])) !=
        std::tolower(static_cast<unsigned char>(target_suffix[i])))
      return false;
  return true;
}

std::vector<std::string> ListFiles(const std::string& dir) {
  std::vector<std::string> names;
  DIR* d = ::opendir(dir.empty() ? "." : dir.c_str());
  if (!d) return names;
  while (dirent* e = ::readdir(d)) {
    std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    if (FileExists(AddSlash(dir.empty() ? "." : dir) + name)) names.push_back(name);
  }
  ::closedir(d);
  return names;
}

std::optional<std::string> FindInPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  if (!path) return std::nullopt;
  std::string p = path;
  std::size_t start = 0;
  while (start <= p.size()) {
    std::size_t end = p.find(':', start);
    if (end == std::string::npos) end = p.size();
    std::string dir = p.substr(start, end - start);
    if (dir.empty()) dir = ".";
    std::string full = AddSlash(dir) + name;
    if (FileExists(full) && ::access(full.c_str(), X_OK) == 0) return full;
    start = end + 1;
  }
  return std::nullopt;
}

}  // namespace ks
