#include "dbase/grouptable.h"

#include <algorithm>

#include "common/fileutil.h"
#include "dbase/fileecho_rec.h"
#include "dbase/maintain.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"

namespace ks {

std::vector<GroupTableEntry> LoadGroupTable(const std::string& dir) {
  const RecordFileDef& def = FileDef(RecordFileId::kGroups);
  const auto data = ReadWholeFile(DataFileName(dir, def.base));
  const std::size_t size = def.RecordSize();
  std::vector<GroupTableEntry> table;
  if (!data || data->size() % size != 0) return table;
  const std::size_t records = std::min(data->size() / size, kMaxRecords);
  table.reserve(records);
  std::vector<std::uint8_t> key(def.keys.length());
  for (std::size_t i = 0; i < records; ++i) {
    const auto* rec = reinterpret_cast<const std::uint8_t*>(data->data() + i * size);
    GroupTableEntry e;
    e.group = rec[offsetof(GrpFileMgrRec, fileecho) + offsetof(GroupFileechoDefaults, group)];
    e.name = ReadPStr(rec + offsetof(GrpFileMgrRec, name), sizeof(GrpFileMgrRec::name) - 1);
    def.keys.MakeKey(rec, key.data());
    e.deleted = def.keys.KeyEmpty(key.data());
    table.push_back(std::move(e));
  }
  return table;
}

}  // namespace ks
