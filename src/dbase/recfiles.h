// The ten record files of the configuration: base name, record size and keys of each, in the
// order the Index and Pack commands visit them.
#pragma once

#include <array>
#include <cstddef>

#include "dbase/fileecho_rec.h"
#include "dbase/keydef.h"

namespace ks {

enum class RecordFileId {
  kAreas,     // FileFind message areas
  kReports,   // new file reports
  kFAreas,    // fileechos
  kMAreas,    // echomail areas
  kGroups,    // groups
  kMagic,     // magic file names
  kBbsAreas,  // BBS file areas
  kHatch,     // hatch entries
  kNodes,     // nodes
  kAllfiles,  // ALLFILES listings
};
inline constexpr std::size_t kRecordFileCount = 10;

struct RecordFileDef {
  RecordFileId id;
  const char* base;
  std::size_t fixed_size;  // the record size, or its fixed part when per_system is set
  bool per_system;         // FAREAS, MAREAS: 9 bytes more per "Number of systems"
  KeySet keys;

  std::size_t RecordSize(std::size_t systems = kDefaultSystemsPerArea) const {
    return fixed_size + (per_system ? systems * sizeof(ConnectedSystem) : 0);
  }
};

// In the order AREAS, REPORTS, FAREAS, MAREAS, GRPFILE, MGICFILE, BBSAREAS, HATCH, NODEFILE,
// ALLFILES.
const std::array<RecordFileDef, kRecordFileCount>& RecordFileDefs();
const RecordFileDef& FileDef(RecordFileId id);

}  // namespace ks
