// The system configuration file "setup.ksx": exactly one KESTRAcfg record, read, checked,
// brought up to the current revision, created when missing, and saved.
#pragma once

#include <functional>
#include <string>

#include "shell/kestracfg.h"

namespace ks {

enum TSetupLoadResult { slOK, slFileNotFound, slFileError, slCorrupt, slVersionTooNew };

inline constexpr std::size_t kSetupSize = sizeof(KESTRAcfg);
static_assert(kSetupSize == 17884);

class TSetupFile {
 public:
  // Reads `name` into the record buffer. Only a file of exactly kSetupSize bytes whose
  // revision is not above the current one loads.
  TSetupLoadResult Load(const std::string& name);

  // True when loaded and older than the current revision.
  bool NeedsUpgrade() const;

  // Applies the revision steps from the stored revision up and stamps the record with the
  // current revision and this program's version and build.
  void Upgrade();

  // A new default record in the buffer.
  void CreateDefaults();

  bool loaded() const { return loaded_; }
  const std::string& file_name() const { return name_; }
  KESTRAcfg& record() { return rec_; }
  const KESTRAcfg& record() const { return rec_; }

 private:
  bool loaded_ = false;
  std::string name_;
  KESTRAcfg rec_{};
};

// The record a newly created setup.ksx starts with: the defaults, the new-file colour set, the
// three options a new file switches on, and the dependent defaults.
KESTRAcfg NewSetupRecord();

// Writes the whole record to `path`, replacing the file atomically. On failure `error` says why.
bool SaveSetupFile(const KESTRAcfg& rec, const std::string& path, std::string* error = nullptr);

// True when the record's version bytes are not this program's (or the build is not ours).
bool VersionBytesDiffer(const KESTRAcfg& rec);
void StampVersion(KESTRAcfg& rec);

// The interactive loading done once at start-up, with every message and question. `prepare`
// is called before the first message box (it opens the screen, installs colours, draws the
// desktop); it gets the record when one was read, or nullptr.
struct SetupLoadContext {
  std::string dir;  // the program directory, with a trailing "/"
  std::string setup_name = "setup.ksx";
  bool interactive = true;
  std::function<void(const KESTRAcfg*)> prepare;
};

// On success `cfg` holds the configuration and true is returned; on failure the user has
// already been told why.
bool LoadSetup(const SetupLoadContext& ctx, KESTRAcfg& cfg);

// Saves `cfg` to the program directory and tells the user when that fails.
bool SaveSetup(const std::string& path, const KESTRAcfg& cfg);

}  // namespace ks
