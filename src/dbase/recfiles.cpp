#include "dbase/recfiles.h"

#include "dbase/list_recs.h"
#include "dbase/node_rec.h"

namespace ks {
namespace {

struct KeySpec {
  const char* name;
  SortType type;
  std::uint16_t offset;
  std::uint8_t length;
};

RecordFileDef Def(RecordFileId id, const char* base, std::size_t size, bool per_system,
                  std::initializer_list<KeySpec> keys) {
  RecordFileDef d{id, base, size, per_system, {}};
  for (const auto& k : keys) d.keys.Declare(k.name, k.type, k.offset, k.length);
  return d;
}

}  // namespace

const std::array<RecordFileDef, kRecordFileCount>& RecordFileDefs() {
  using enum RecordFileId;
  static const std::array<RecordFileDef, kRecordFileCount> defs = {
      Def(kAreas, "AREAS", sizeof(AreaMGRRec), false, {{"comment", Str, 0, 56}}),
      Def(kReports, "REPORTS", sizeof(NewFileMgrRec), false,
          {{"report", GrpArray, 0, 32}, {"inactive", Bol, 33, 1}}),
      Def(kFAreas, "FAREAS", kFileechoFixedSize, true,
          {{"tag", Str, 0, 41}, {"group", Int, 110, 1}}),
      Def(kMAreas, "MAREAS", kEchoFixedSize, true, {{"tag", Str, 0, 41}, {"group", Int, 110, 1}}),
      Def(kGroups, "GRPFILE", sizeof(GrpFileMgrRec), false,
          {{"group", Int, 110, 1},
           {"mask", Str, 0, 41},
           {"name", Str, 2539, 26},
           {"uplink", Int, 115, 1}}),
      Def(kMagic, "MGICFILE", sizeof(MagicFileMgrRec), false,
          {{"File mask", Str, 1, 13}, {"Type", Int, 0, 1}}),
      Def(kBbsAreas, "BBSAREAS", sizeof(BbsAreaMgrRec), false,
          {{"group", Int, 56, 1}, {"comment", Str, 0, 56}}),
      Def(kHatch, "HATCH", sizeof(HatchMGRrec), false, {{"name", Str, 0, 41}}),
      Def(kNodes, "NODEFILE", sizeof(NodeMGRrec), false, {{"address", Aka, 0, 8}}),
      Def(kAllfiles, "ALLFILES", sizeof(AllfilesMgrRec), false, {{"tag", Str, 0, 41}}),
  };
  return defs;
}

const RecordFileDef& FileDef(RecordFileId id) {
  return RecordFileDefs()[static_cast<std::size_t>(id)];
}

}  // namespace ks
