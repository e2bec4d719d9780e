// The generic record database of the entry list editor: one file pair with the record size
// and keys its editor declares. The index file on disk is edited in place, entry by entry in
// the order the file format defines; a copy of it is kept in memory so that a search or an
// insert costs no reads, and every change goes to disk at once with as few writes as possible,
// ordered so that a kill at any moment leaves every entry in the index (at worst one twice).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "dbase/keydef.h"
#include "dbase/maintain.h"
#include "dbase/rawfile.h"

namespace ks {

class ksDataBase {
 public:
  enum class OpenResult {
    kOk,
    kCorrupt,  // data file size not a multiple of the record size; reported and left alone
    kFailed,   // a file could not be opened or created
  };

  ksDataBase(std::string base, std::size_t record_size, KeySet keys);
  ~ksDataBase() { Close(); }
  ksDataBase(const ksDataBase&) = delete;
  ksDataBase& operator=(const ksDataBase&) = delete;

  // Opens the pair in `dir`: a corrupt data file shows "The datafile is corrupt"; a missing
  // or damaged index is rebuilt; more than ten unreferenced records are packed away; missing
  // files are created. On success the first entry is the current one.
  OpenResult Open(const std::string& dir);
  void Close();
  bool is_open() const { return data_.is_open(); }

  const std::string& base() const { return base_; }
  std::size_t record_size() const { return record_size_; }
  const KeySet& keys() const { return keys_; }
  int count() const { return static_cast<int>(index_.size() / entry_size_); }
  int data_records() const;  // whole records in the data file

  // The list's current position (-1 when empty) and the key that orders inserts and the
  // duplicate check (key number, 1 unless the list changes it).
  int current() const { return current_; }
  void set_current(int pos);
  int active_key() const { return active_key_; }
  void set_active_key(int k) {
    active_key_ = keys_.Find(k) ? k : 1;
    sorted_ = CheckSorted();
  }
  bool unique = true;  // refuse records whose key equals another entry's
  PackProc pack;       // applied to every record the automatic pack keeps

  // Entry `pos`: its key bytes and record number. nullptr when out of range.
  const std::uint8_t* Key(int pos) const;
  std::uint16_t RecNo(int pos) const;
  // Reads entry `pos`'s record into `record` (record_size() bytes); false when out of range or
  // the data file has no whole record there.
  bool ReadRecord(int pos, std::uint8_t* record) const;
  // True when entry `pos` refers to a whole record of the data file.
  bool HasRecord(int pos) const;

  // Appends `record` to the data file and inserts its entry in front of the first entry that
  // is not less (active key); the new entry becomes current.
  bool Insert(const std::uint8_t* record);
  // Removes entry `pos`; its record's key bytes are then zeroed on disk, so no rebuilt index
  // brings it back (unless another entry still refers to the record). The current position is
  // clamped to the new last entry.
  bool Remove(int pos);
  // Writes an edited record back at its own record number and moves its entry to where the
  // key now belongs; the entry stays current.
  bool Rewrite(int pos, const std::uint8_t* record);
  // Writes a record back in place and leaves the index as it is (hot-key changes).
  bool WriteInPlace(int pos, const std::uint8_t* record);

  // True when another entry's key equals the record's from the active key on. `editing` is
  // the position of the entry being edited (excluded), or -1 for a new record.
  bool IsDuplicate(const std::uint8_t* record, int editing) const;

 private:
  OpenResult OpenOnce(const std::string& dir, bool* rebuilt, bool* packed, bool* again);
  // Where an entry with `key` goes: in front of the first entry that is not less, counting
  // the entries without the one at `skip` (-1 for none).
  int InsertPos(const std::uint8_t* key, int skip = -1) const;
  bool CheckSorted() const;
  // Entries first..last (inclusive) to disk, in the order that suits a move of entries
  // towards the end of the file (kBackward) or towards its start (kForward).
  enum class Direction { kForward, kBackward };
  bool WriteEntries(int first, int last, Direction direction);
  // Writes `entry` one place behind the last entry, growing the file.
  bool GrowBy(const std::uint8_t* entry);
  bool InsertEntry(const std::uint8_t* entry);
  bool RemoveEntry(int pos);

  std::string base_;
  std::size_t record_size_;
  KeySet keys_;
  std::size_t entry_size_;
  RawFile data_, index_file_;
  std::vector<std::uint8_t> index_;
  int current_ = -1;
  int active_key_ = 1;
  // The index is in order by the active key: the first entry that is not less can be found
  // by halving. An index sorted another way (the record-file classes fold case) is scanned.
  bool sorted_ = false;
};

}  // namespace ks
