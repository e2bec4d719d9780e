// The maintenance operations on a file pair: building an index from the data file, sorting
// an index, and packing a data file down to the records its index refers to. They run at
// full file speed (whole-file reads, one write per file) and show a "Please wait" box with
// the progress when a screen is open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "dbase/keydef.h"
#include "dbase/rawfile.h"

namespace ks {

// Called for every record a pack keeps, with the record and the length to write (the record
// size). It may convert the record in place (the buffer holds kMaxRecordSize bytes) and change
// the length; a length of 0 drops the record.
using PackProc = std::function<void(std::uint8_t* record, std::size_t& length)>;

// Builds the index of base in `dir` afresh from its data file: one entry per record whose key
// bytes are not all zero, sorted. A missing data file is created; an empty data file is
// deleted together with its index. The new index replaces the old one through a temporary
// file and a rename, so an interruption leaves the old index or the new one. False when a
// file cannot be created or written (the old index then stays).
// A record size above kMaxRecordSize is a programming error and throws std::logic_error.
bool BuildIndex(const std::string& dir, const std::string& base, std::size_t record_size,
                const KeySet& keys);

// Sorts index entries (each keys.entry_size() bytes) by the generic comparison from key
// `first_key` on, with the middle-pivot quicksort whose order of equal keys the files have
// always had. A crafted input that would make it quadratic is finished with a stable sort.
void SortIndexEntries(std::vector<std::uint8_t>& entries, const KeySet& keys, int first_key = 1);

// Sorts an index file ("Sorting index files"); the sorted index replaces the old one through a
// temporary file and a rename.
bool SortIndex(const std::string& index_name, const KeySet& keys, int first_key = 1);

// Packs the data file of base in `dir`: the records the index refers to, in index order, each
// passed through `proc` when given; a record that two entries refer to is written once. The
// new data file is written as base.$$$, flushed to disk
// and renamed over the old one; on any failure the old data file stays as it was and false is
// returned. An index entry pointing past the data shows "Error found in data file..." and ends
// the program (ProgramHalt) with the data file untouched. The caller builds the index
// afterwards, since the record numbers have changed.
bool PackDataFile(const std::string& dir, const std::string& base, std::size_t record_size,
                  const KeySet& keys, const PackProc& proc = {});

// True when each of the `count` entries refers to a whole record of `data` whose key fields
// equal the entry's keys. An index that an interruption left from before a pack, or behind a
// record written without its entry, fails this test and has to be rebuilt from the data.
bool IndexFitsData(const std::uint8_t* entries, std::size_t count, const MappedFile& data,
                   std::size_t record_size, const KeySet& keys);

// The record number stored in the last two bytes of an index entry.
inline std::uint16_t EntryRecNo(const std::uint8_t* entry, std::size_t key_length) {
  return static_cast<std::uint16_t>(entry[key_length] | (entry[key_length + 1] << 8));
}
inline void SetEntryRecNo(std::uint8_t* entry, std::size_t key_length, std::uint16_t recno) {
  entry[key_length] = static_cast<std::uint8_t>(recno & 0xFF);
  entry[key_length + 1] = static_cast<std::uint8_t>(recno >> 8);
}

// Record numbers are 16-bit: a data file holds at most this many records.
inline constexpr std::size_t kMaxRecords = 65536;

}  // namespace ks
