// The companion file of an entry list editor: one fixed-size row per index entry, in index
// order, kept in step by the editor. The editors use it as the row cache of the browse list:
// byte 0 of a row is 1 once the row's text (the rest) has been built from its record, so a
// list is only ever read for the rows that are shown, and each row only once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "dbase/rawfile.h"

namespace ks {

class CompanionFile {
 public:
  CompanionFile() = default;
  ~CompanionFile() { Close(); }
  CompanionFile(const CompanionFile&) = delete;
  CompanionFile& operator=(const CompanionFile&) = delete;

  // Creates `path` with `count` empty rows of `row_size` bytes (a temporary file, removed
  // again by Close).
  bool Open(const std::string& path, std::size_t row_size, int count);
  void Close();
  // Empties every row and sets the number of rows (the editor does this when it opens its
  // file pair, so the rows match the index).
  bool Reset(int count);
  bool is_open() const { return file_.is_open(); }
  std::size_t row_size() const { return row_size_; }
  int count() const { return count_; }

  bool Read(int pos, std::uint8_t* row) const;
  bool Write(int pos, const std::uint8_t* row);
  // Inserts a row at `pos`; the rows from `pos` on move up one place.
  bool Insert(int pos, const std::uint8_t* row);
  // Removes row `pos`; every following row moves down one place and the file is shortened by
  // one row.
  bool Remove(int pos);

 private:
  bool MoveTail(int from, int to);  // rows from..count-1 to start at `to`

  RawFile file_;
  std::string path_;
  std::size_t row_size_ = 0;
  int count_ = 0;
};

}  // namespace ks
