#include "shell/systems_change.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "common/fileutil.h"
#include "dbase/systems_resize.h"
#include "dbase/workbox.h"
#include "shell/instance.h"
#include "shell/program.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {
namespace {

constexpr const char* kCaption = "Processing fileecho area manager data files";

std::string Count(std::size_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

// The warning; true for "Yes". `fileechos` and `echo_areas` are the areas that lose systems.
bool ConfirmChange(std::uint8_t old_systems, std::uint8_t new_systems, std::size_t fileechos,
                   std::size_t echo_areas) {
  MessageBoxSpec box;
  box.title = "!! Warning !!";
  box.lines = {"You are changing the maximum number of systems from " +
                   std::to_string(old_systems) + " to " + std::to_string(new_systems),
               "systems. Please write this value down. If you loose your SETUP.KSX",
               "size then you need to enter this value in this, otherwise, you will",
               "not be able to access your fileecho configuration."};
  if (fileechos + echo_areas > 0) {
    std::string who;
    if (fileechos) who = Count(fileechos, "fileecho", "fileechos");
    if (echo_areas)
      who += (who.empty() ? "" : " and ") + Count(echo_areas, "echomail area", "echomail areas");
    box.lines.push_back(who + (fileechos + echo_areas == 1 ? " holds" : " hold") +
                        " more systems than that;");
    box.lines.push_back("those systems will be removed.");
  }
  box.lines.push_back("");
  box.lines.push_back("Do you wish to continue?");
  box.buttons = {"No", "Yes"};
  box.end_keys = EndKeys("NY");
  return RunMessageBox(box) == 'Y';
}

// Runs `fn` while no other copy of KSETUP works on the program directory; false (and `fn` not
// run) when one does. Without a directory lock (tests, a file system without locks) it just runs.
bool RunWithoutOtherCopies(const std::function<void()>& fn) {
  InstanceLock* lock = prog().instance;
  if (lock && lock->held()) return lock->RunAlone(fn);
  fn();
  return true;
}

void TellOtherCopyRuns() {
  MessageBoxLines({"Another copy of KSETUP is running on this directory.",
                   "The number of systems can only be changed while it runs alone."},
                  {"Ok"});
}

}  // namespace

bool StoreNumberOfSystems(const std::string& path, const KESTRAcfg& cfg, std::uint8_t systems,
                          std::string* error) {
  std::optional<std::string> bytes = ReadWholeFile(path);
  if (bytes && bytes->size() == sizeof(KESTRAcfg) &&
      static_cast<std::uint8_t>((*bytes)[offsetof(KESTRAcfg, revision)]) == cfg.revision) {
    (*bytes)[offsetof(KESTRAcfg, numberOfSystems)] = static_cast<char>(systems);
  } else {
    KESTRAcfg whole = cfg;
    whole.numberOfSystems = systems;
    bytes.emplace(reinterpret_cast<const char*>(&whole), sizeof whole);
  }
  return WriteFileAtomic(path, *bytes, error);
}

bool ChangeNumberOfSystems(KESTRAcfg& cfg, std::uint8_t old_systems, std::uint8_t new_systems) {
  auto keep_old = [&] {
    cfg.numberOfSystems = old_systems;
    return false;
  };
  if (old_systems == new_systems) {
    cfg.numberOfSystems = new_systems;
    return true;
  }
  if (!RunWithoutOtherCopies([] {})) {
    TellOtherCopyRuns();
    return keep_old();
  }
  const Program& p = prog();
  // The record files this configuration's editors work on.
  const std::string dir = cfg.dataPath.empty() ? p.exe_path : AddSlash(cfg.dataPath.str());
  const std::vector<AreaFileSurvey> files = SurveyAreaFiles(dir, old_systems, new_systems);
  for (const AreaFileSurvey& f : files) {
    if (f.action != ResizeAction::kError) continue;
    MessageBoxLines({f.error, "", "The number of systems stays " + std::to_string(old_systems)},
                    {"Ok"});
    return keep_old();
  }
  if (!ConfirmChange(old_systems, new_systems, files[0].losing, files[1].losing)) return keep_old();

  // The new files are written beside the old ones; nothing counts until setup.ksx says so.
  std::string error;
  for (const AreaFileSurvey& f : files) {
    if (f.action == ResizeAction::kUnchanged)
      MessageBoxLines({f.name(), "", "No changes necessary to data file"}, {"Ok"});
    if (f.action != ResizeAction::kRewrite) continue;
    bool written = false;
    {
      WorkBox box("Resizing data files", "   Please wait    ");
      if (ui().screen) ShowStatus(kCaption);
      written = WriteResizedFile(
          f, [&](std::uint64_t done, std::uint64_t total) { box.Progress(done, total); }, &error);
    }
    if (!written) {
      DiscardResizedFiles(files);
      MessageBoxLines({"Unable to write", dir, "", error}, {"Ok"});
      return keep_old();
    }
  }
  // Stored and renamed while no other copy can start on the old number or open the files.
  bool stored = false, installed = false;
  const bool alone = RunWithoutOtherCopies([&] {
    stored = StoreNumberOfSystems(p.SetupPath(), cfg, new_systems, &error);
    if (stored) installed = InstallResizedFiles(files, &error);
  });
  if (!alone || !stored) {
    DiscardResizedFiles(files);
    if (!alone)
      TellOtherCopyRuns();
    else
      MessageBoxLines({"Unable to save", p.SetupPath(), "", error}, {"Ok"});
    return keep_old();
  }
  if (!installed)
    MessageBoxLines({"Unable to replace a data file:", error, "",
                     "KSETUP completes the change the next time it starts."},
                    {"Ok"});
  cfg.numberOfSystems = new_systems;
  return true;
}

}  // namespace ks
