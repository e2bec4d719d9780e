// Changing "Number of systems": every record of the fileecho and echomail area files (FAREAS,
// MAREAS) carries that many connected-system slots, so both files are rewritten with the new
// record size.
//
// The change survives a crash at any moment because setup.ksx is its commit point:
//  1. both files are surveyed; a size that fits neither record size stops everything before
//     any file changes;
//  2. each file that needs it is rewritten completely into "<FILE>.resize<N>" beside it
//     (N = the new number of systems) and flushed to disk;
//  3. the caller stores the new number in setup.ksx (an atomic replace): from then on the new
//     files are the valid ones;
//  4. the new files are renamed over the old ones (InstallResizedFiles).
// At start-up, before any record file is opened, RecoverSystemsResize finishes or undoes an
// interrupted change: a "<FILE>.resize<N>" whose N is the configured number is renamed over its
// file, any other is deleted. Records keep their order and number, so the index files (keys
// and record numbers) stay valid throughout.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "dbase/recfiles.h"

namespace ks {

enum class ResizeAction {
  kNothing,    // the file does not exist
  kUnchanged,  // its records already have the new size, or it is empty
  kRewrite,    // its records have the old size
  kError,      // its size fits neither record size; `error` says so
};

struct AreaFileSurvey {
  std::string path;
  const RecordFileDef* def = nullptr;
  std::uint8_t old_systems = 0, new_systems = 0;
  ResizeAction action = ResizeAction::kNothing;
  std::uint64_t size = 0;
  bool fits_old = false;  // a whole number of old-size records
  bool fits_new = false;  // a whole number of new-size records
  // Areas (records not deleted) with a system in a slot at or beyond new_systems: those
  // systems are lost by a rewrite.
  std::size_t losing = 0;
  std::string error;

  std::string name() const;  // the file name without its directory
};

// Surveys the area file `path` of `def` (FAREAS or MAREAS) for a change from `old_systems` to
// `new_systems`: size a whole number of old-size records and old != new: rewrite; else a whole
// number of new-size records (or empty): unchanged; else an error.
AreaFileSurvey SurveyAreaFile(const std::string& path, const RecordFileDef& def,
                              std::uint8_t old_systems, std::uint8_t new_systems);

// FAREAS, then MAREAS, in the data directory `dir`.
std::vector<AreaFileSurvey> SurveyAreaFiles(const std::string& dir, std::uint8_t old_systems,
                                            std::uint8_t new_systems);

// "<path>.resize<systems>".
std::string ResizeTempName(const std::string& path, std::uint8_t systems);

using ResizeProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

// Writes the file of a kRewrite survey with the new record size to its temporary file and
// flushes it to disk: each record's fixed part, its first min(old, new) slots, free slots after
// them. False (and no temporary file) when it cannot be written; `error` says why.
bool WriteResizedFile(const AreaFileSurvey& survey, const ResizeProgress& progress,
                      std::string* error);

// Renames the temporary file of each kRewrite survey over its file, then syncs the directory.
bool InstallResizedFiles(const std::vector<AreaFileSurvey>& surveys, std::string* error);

// Deletes the temporary files of the surveys (a change that is given up).
void DiscardResizedFiles(const std::vector<AreaFileSurvey>& surveys);

struct ResizeRecovery {
  int completed = 0;  // temporary files renamed over their area file
  int removed = 0;    // temporary files deleted
};

// Finishes or undoes an interrupted change in `dir`, where setup.ksx says `systems`.
// A complete temporary file of that number replaces its area file; every other one is deleted.
ResizeRecovery RecoverSystemsResize(const std::string& dir, std::uint8_t systems);

}  // namespace ks
