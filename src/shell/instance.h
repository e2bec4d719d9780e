// Several copies of KSETUP may run on one program directory. Each holds a shared lock on the
// directory for its whole run, so that one of them can tell whether it is alone there: only
// then are the files that an earlier, killed run left behind removed.
#pragma once

#include <functional>
#include <string>

namespace ks {

class InstanceLock {
 public:
  // Takes a shared lock on `dir`. Without one (a file system that has no locks) the run
  // carries on and never counts as alone.
  explicit InstanceLock(const std::string& dir);
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  // Runs `fn` with the lock made exclusive when no other KSETUP holds the directory, then
  // shares it again. False (and `fn` not run) when another one is running.
  bool RunAlone(const std::function<void()>& fn);
  // False when the directory could not be locked at all.
  bool held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// Removes what an interrupted save leaves in `dir`: the temporary files of a whole-file
// replacement ("setup.ksx.a1B2c3", "FAREAS.IDX.Zz09xy": a .KSX or .IDX name and six letters
// or digits) and unfinished packs ("*.$$$"). Returns how many files were removed.
int RemoveStaleSaves(const std::string& dir);

}  // namespace ks
