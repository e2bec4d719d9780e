// Keyed access to one record file for code outside the list editor (cross-file changes,
// import, export, templates). The whole index is held in memory, ordered by the first key
// with letters compared without regard to case, and written back after every change. Every
// operation reports file errors as false (or -1, or a zeroed entry) and never throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "common/groupset.h"
#include "common/netaddr.h"
#include "dbase/fileecho_rec.h"
#include "dbase/keydef.h"
#include "dbase/list_recs.h"
#include "dbase/maintain.h"
#include "dbase/node_rec.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"

namespace ks {

class TRecordFile {
 public:
  TRecordFile(std::string base, std::size_t record_size, KeySet keys);
  virtual ~TRecordFile() = default;
  TRecordFile(const TRecordFile&) = delete;
  TRecordFile& operator=(const TRecordFile&) = delete;

  // Closes any open pair, then opens base in `dir`; both files must exist.
  bool Open(const std::string& dir);
  void Close();
  bool IsOpen() const { return open_; }
  std::uint16_t Count() const { return count_; }

  const std::string& base() const { return base_; }
  std::size_t record_size() const { return record_size_; }
  std::size_t entry_size() const { return entry_size_; }
  const std::string& data_file_name() const { return data_name_; }
  const std::string& index_file_name() const { return index_name_; }

  // Entry i's record (record_size() bytes); true only when a whole record was read.
  bool ReadRecordBytes(int i, void* record) const;
  // A copy of entry i (entry_size() bytes), zeroed when closed or out of range.
  void GetIndexBytes(int i, void* entry) const;
  // Binary search for the first key's field bytes (a string with its length byte); strings
  // compare with "a".."z" folded to capitals. -1 when closed, empty or not found.
  int FindBytes(const std::uint8_t* key_field) const;
  bool AddBytes(const void* record);
  // Appends `n` records lying one after another (record_size() bytes each) and writes the
  // index once: the data first, then the index in one replacement, as AddBytes does.
  bool AddManyBytes(const void* records, std::size_t n);
  bool UpdateBytes(int i, const void* record);
  bool Delete(int i);
  // The index afresh from the data file: every record whose first key is set.
  void Rebuild();
  // The data file rewritten with only the records the index refers to, in index order.
  void Pack();

 protected:
  // Passed every record a pack keeps; set by the echomail area file.
  PackProc pack_proc_;

 private:
  int CompareFirstKey(const std::uint8_t* a, const std::uint8_t* b) const;
  std::uint8_t* Entry(int i) { return &index_[static_cast<std::size_t>(i) * entry_size_]; }
  const std::uint8_t* Entry(int i) const {
    return &index_[static_cast<std::size_t>(i) * entry_size_];
  }
  void SortIndex();
  bool SaveIndex();

  std::string base_;
  std::size_t record_size_;
  KeySet keys_;
  std::size_t entry_size_;
  RawFile data_;
  std::vector<std::uint8_t> index_;
  std::uint16_t count_ = 0;
  bool open_ = false;
  std::string dir_, data_name_, index_name_;
};

// The key types a record file is looked up by, as the bytes of its first key field.
inline void FirstKeyBytes(std::string_view s, std::uint8_t* out, std::size_t length) {
  std::memset(out, 0, length);
  const std::size_t n = std::min(s.size(), length - 1);
  out[0] = static_cast<std::uint8_t>(n);
  std::memcpy(out + 1, s.data(), n);
}
inline void FirstKeyBytes(const NetAddr& a, std::uint8_t* out, std::size_t) {
  std::memcpy(out, &a, sizeof a);
}
inline void FirstKeyBytes(std::uint8_t group, std::uint8_t* out, std::size_t) {
  out[0] = group;
}
inline void FirstKeyBytes(const GroupSet& g, std::uint8_t* out, std::size_t) {
  std::memcpy(out, &g, sizeof g);
}

// One record file with its record type `Rec`, index entry `Idx` and lookup key `Key`.
template <RecordFileId Id, class Rec, class Idx, class Key>
class TKeyedFile : public TRecordFile {
 public:
  explicit TKeyedFile(std::size_t systems = kDefaultSystemsPerArea)
      : TRecordFile(FileDef(Id).base, FileDef(Id).RecordSize(systems), FileDef(Id).keys) {}

  bool ReadRecord(int i, Rec& rec) const {
    rec = Rec{};
    return ReadRecordBytes(i, &rec);
  }
  Idx GetIndex(int i) const {
    Idx idx;
    GetIndexBytes(i, &idx);
    return idx;
  }
  int Find(const Key& key) const {
    std::uint8_t field[256];
    const std::size_t length = FileDef(Id).keys[0].length;
    FirstKeyBytes(key, field, length);
    return FindBytes(field);
  }
  bool Add(const Rec& rec) { return AddBytes(&rec); }
  bool Update(int i, const Rec& rec) { return UpdateBytes(i, &rec); }
};

using TFAreasFile = TKeyedFile<RecordFileId::kFAreas, FileMGRrec, FileMGRidx, std::string_view>;
using TNodeFile = TKeyedFile<RecordFileId::kNodes, NodeMGRrec, NodeMGRidx, NetAddr>;
using TGroupFile = TKeyedFile<RecordFileId::kGroups, GrpFileMgrRec, GrpFileMgrIdx, std::uint8_t>;
using TMagicFile = TKeyedFile<RecordFileId::kMagic, MagicFileMgrRec, MagicMGRidx, std::string_view>;
using THatchFile = TKeyedFile<RecordFileId::kHatch, HatchMGRrec, HatchMgrIdx, std::string_view>;
using TReportFile = TKeyedFile<RecordFileId::kReports, NewFileMgrRec, NewFileMgrIdx, GroupSet>;
using TBBSAreasFile =
    TKeyedFile<RecordFileId::kBbsAreas, BbsAreaMgrRec, BbsAreaMgrIdx, std::uint8_t>;

// The echomail area file takes the configuration's echomail option before it is packed.
class TMAreasFile
    : public TKeyedFile<RecordFileId::kMAreas, EchoMGRrec, EchoMgrIdx, std::string_view> {
 public:
  explicit TMAreasFile(std::size_t systems = kDefaultSystemsPerArea);
  void SetEchomailOption(std::uint8_t option);

 private:
  std::size_t systems_;
};

// The conversion an echomail option asks of a pack of MAREAS, or none.
PackProc EchomailPackProc(std::uint8_t option, std::size_t systems);

}  // namespace ks
