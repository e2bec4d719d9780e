#include "dbase/companion.h"

#include <unistd.h>

#include <vector>

namespace ks {

bool CompanionFile::Open(const std::string& path, std::size_t row_size, int count) {
  Close();
  if (row_size == 0 || !file_.Open(path, RawFile::Mode::kCreate)) return false;
  path_ = path;
  row_size_ = row_size;
  if (!Reset(count)) {
    Close();
    return false;
  }
  return true;
}

void CompanionFile::Close() {
  if (!file_.is_open()) return;
  file_.Close();
  ::unlink(path_.c_str());
  path_.clear();
  count_ = 0;
}

bool CompanionFile::Reset(int count) {
  if (!file_.is_open() || count < 0) return false;
  // Truncating to zero first empties every row; growing again leaves a sparse file of zeros.
  if (!file_.Truncate(0) || !file_.Truncate(static_cast<std::uint64_t>(count) * row_size_))
    return false;
  count_ = count;
  return true;
}

bool CompanionFile::Read(int pos, std::uint8_t* row) const {
  if (pos < 0 || pos >= count_) return false;
  return file_.ReadAt(static_cast<std::uint64_t>(pos) * row_size_, row, row_size_) == row_size_;
}

bool CompanionFile::Write(int pos, const std::uint8_t* row) {
  if (pos < 0 || pos >= count_) return false;
  return file_.WriteAt(static_cast<std::uint64_t>(pos) * row_size_, row, row_size_);
}

bool CompanionFile::MoveTail(int from, int to) {
  const std::size_t bytes = static_cast<std::size_t>(count_ - from) * row_size_;
  if (bytes == 0) return true;
  std::vector<std::uint8_t> tail(bytes);
  if (file_.ReadAt(static_cast<std::uint64_t>(from) * row_size_, tail.data(), bytes) != bytes)
    return false;
  return file_.WriteAt(static_cast<std::uint64_t>(to) * row_size_, tail.data(), bytes);
}

bool CompanionFile::Insert(int pos, const std::uint8_t* row) {
  if (!file_.is_open() || pos < 0 || pos > count_) return false;
  if (!MoveTail(pos, pos + 1)) return false;
  ++count_;
  return Write(pos, row);
}

bool CompanionFile::Remove(int pos) {
  if (pos < 0 || pos >= count_) return false;
  if (!MoveTail(pos + 1, pos)) return false;
  --count_;
  return file_.Truncate(static_cast<std::uint64_t>(count_) * row_size_);
}

}  // namespace ks
