#include "shell/instance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "common/fileutil.h"

namespace ks {

InstanceLock::InstanceLock(const std::string& dir) {
  fd_ = ::open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  // A copy that is cleaning up holds the lock exclusively for a moment; it never waits for
  // the operator meanwhile, so waiting here is short.
  if (fd_ >= 0 && ::flock(fd_, LOCK_SH) != 0) {
    ::close(fd_);
    fd_ = -1;
  }
}

InstanceLock::~InstanceLock() {
  if (fd_ >= 0) ::close(fd_);
}

bool InstanceLock::RunAlone(const std::function<void()>& fn) {
  if (fd_ < 0 || ::flock(fd_, LOCK_EX | LOCK_NB) != 0) return false;
  fn();
  ::flock(fd_, LOCK_SH);
  return true;
}

int RemoveStaleSaves(const std::string& dir) {
  int removed = 0;
  for (const std::string& name : ListFiles(dir)) {
    const bool pack = name.size() > 4 && name.compare(name.size() - 4, 4, ".$$$") == 0;
    if (!pack && !IsAtomicWriteLeftover(name, ".ksx") && !IsAtomicWriteLeftover(name, ".idx"))
      continue;
    if (::unlink((AddSlash(dir.empty() ? "." : dir) + name).c_str()) == 0) ++removed;
  }
  return removed;
}

}  // namespace ks
