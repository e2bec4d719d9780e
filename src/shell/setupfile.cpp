#include "shell/setupfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "common/fileutil.h"
#include "shell/cfgdefaults.h"
#include "shell/cfgupgrade.h"
#include "tui/colours.h"
#include "tui/msgbox.h"

namespace ks {

TSetupLoadResult TSetupFile::Load(const std::string& name) {
  rec_ = KESTRAcfg{};
  loaded_ = false;
  name_ = name;
  struct stat st;
  if (::stat(name.c_str(), &st) != 0) return errno == ENOENT ? slFileNotFound : slFileError;
  int fd = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return slFileError;
  // Nobody may write the file while it is read.
  if (::flock(fd, LOCK_SH | LOCK_NB) != 0 || ::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd);
    return slFileError;
  }
  if (st.st_size != static_cast<off_t>(kSetupSize)) {
    ::close(fd);
    return slCorrupt;
  }
  auto* p = reinterpret_cast<char*>(&rec_);
  std::size_t got = 0;
  while (got < kSetupSize) {
    ssize_t n = ::read(fd, p + got, kSetupSize - got);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    got += static_cast<std::size_t>(n);
  }
  ::close(fd);
  if (got != kSetupSize) {
    rec_ = KESTRAcfg{};
    return slCorrupt;
  }
  if (rec_.revision > kCurrentRevision) return slVersionTooNew;
  loaded_ = true;
  return slOK;
}

bool TSetupFile::NeedsUpgrade() const {
  return loaded_ && rec_.revision < kCurrentRevision;
}

void TSetupFile::Upgrade() {
  if (!loaded_) return;
  ApplyRevisionSteps(rec_);
  rec_.revision = kCurrentRevision;
  StampVersion(rec_);
}

void TSetupFile::CreateDefaults() {
  FillNewDefaults(rec_);
}

bool VersionBytesDiffer(const KESTRAcfg& rec) {
  return rec.versionMajor != kProgramVersion.major || rec.versionMinor != kProgramVersion.minor ||
         rec.versionBuild != kProgramVersion.build;
}

void StampVersion(KESTRAcfg& rec) {
  rec.versionMajor = kProgramVersion.major;
  rec.versionMinor = kProgramVersion.minor;
  rec.versionBuild = kProgramVersion.build;
}

KESTRAcfg NewSetupRecord() {
  TSetupFile file;
  file.CreateDefaults();
  KESTRAcfg cfg = file.record();
  const ColourSet& set = NewFileColourSet();
  cfg.colourSet.set(std::string_view(reinterpret_cast<const char*>(set.data()), set.size()));
  cfg.confirmDelete = cfg.beepOnError = cfg.createMissingDirs = 1;
  FillDependentDefaults(cfg);
  return cfg;
}

bool SaveSetupFile(const KESTRAcfg& rec, const std::string& path, std::string* error) {
  return WriteFileAtomic(path, std::string_view(reinterpret_cast<const char*>(&rec), sizeof rec),
                         error);
}

bool SaveSetup(const std::string& path, const KESTRAcfg& cfg) {
  std::string error;
  if (SaveSetupFile(cfg, path, &error)) return true;
  MessageBoxLines({"Unable to save", path, "", error}, {"Ok"});
  return false;
}

namespace {

void Tell(const SetupLoadContext& ctx, const KESTRAcfg* rec, std::vector<std::string> lines) {
  if (!ctx.interactive) return;
  if (ctx.prepare) ctx.prepare(rec);
  MessageBoxLines(std::move(lines), {"Ok"}, 4);
}

bool CreateSetup(const SetupLoadContext& ctx, const std::string& path, KESTRAcfg& cfg) {
  if (!ctx.interactive) return false;
  if (ctx.prepare) ctx.prepare(nullptr);
  MessageBoxSpec q;
  q.lines = {path, "", "File not found, create a new one?"};
  q.buttons = {"Yes", "No "};
  q.end_keys = EndKeys();
  q.topic = 4;
  if (RunMessageBox(q) != 'Y') return false;
  cfg = NewSetupRecord();
  return SaveSetup(path, cfg);
}

}  // namespace

bool LoadSetup(const SetupLoadContext& ctx, KESTRAcfg& cfg) {
  const std::string path = ctx.dir + ctx.setup_name;
  TSetupFile file;
  switch (file.Load(path)) {
    case slOK:
      cfg = file.record();
      if (file.NeedsUpgrade()) {
        file.Upgrade();
        cfg = file.record();
        Tell(ctx, &cfg, {"setup.ksx file updated to new version level"});
        if (ctx.interactive)
          SaveSetup(path, cfg);
        else
          SaveSetupFile(cfg, path);
      } else if (VersionBytesDiffer(cfg)) {
        StampVersion(cfg);
        SaveSetupFile(cfg, path);
      }
      if (cfg.nextInvoice == 0) FillDependentDefaults(cfg);
      break;
    case slFileNotFound:
      if (!CreateSetup(ctx, path, cfg)) return false;
      break;
    case slFileError:
    case slCorrupt:
      Tell(ctx, nullptr,
           {path, "file corrupt or incorrect format.", "",
            "Please use the accompanying UPDATE utility", "when upgrading to a newer version"});
      return false;
    case slVersionTooNew:
      Tell(ctx, nullptr,
           {"These configuration files were made with a newer version of KESTRA",
            "which is not compatible with this version of KESTRA.",
            "Please update your copy of KESTRA."});
      return false;
  }
  if (cfg.logMask == 0) cfg.logMask = 255;
  return true;
}

}  // namespace ks
