#include "dbase/database.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "common/fileutil.h"
#include "dbase/maintain.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {

ksDataBase::ksDataBase(std::string base, std::size_t record_size, KeySet keys)
    : base_(std::move(base)),
      record_size_(record_size),
      keys_(keys),
      entry_size_(keys.entry_size()) {
  if (record_size_ == 0 || record_size_ > kMaxRecordSize)
    throw std::logic_error("Record size larger than maximum!");
}

ksDataBase::OpenResult ksDataBase::Open(const std::string& dir) {
  // A rebuild or a pack closes the pair and opens it again; each happens at most once.
  bool rebuilt = false, packed = false, again = true;
  OpenResult r = OpenResult::kFailed;
  for (int attempt = 0; again && attempt < 4; ++attempt) {
    again = false;
    r = OpenOnce(dir, &rebuilt, &packed, &again);
  }
  return again ? OpenResult::kFailed : r;
}

ksDataBase::OpenResult ksDataBase::OpenOnce(const std::string& dir, bool* rebuilt, bool* packed,
                                            bool* again) {
  Close();
  const std::string data_name = DataFileName(dir, base_);
  const std::string index_name = IndexFileName(dir, base_);
  if (!data_.Open(data_name, RawFile::Mode::kReadWrite)) {
    if (FileExists(data_name)) return OpenResult::kFailed;
    // A new list: both files empty.
    if (!data_.Open(data_name, RawFile::Mode::kCreate) ||
        !index_file_.Open(index_name, RawFile::Mode::kCreate)) {
      Close();
      return OpenResult::kFailed;
    }
    return OpenResult::kOk;
  }
  const std::uint64_t data_size = data_.Size().value_or(0);
  if (data_size % record_size_ != 0) {
    Close();
    if (ui().screen)
      MessageBox("The datafile is corrupt/Have you run the update utility?", {"Continue"});
    return OpenResult::kCorrupt;
  }
  const auto index_size = FileSize(index_name);
  const bool damaged =
      !index_size || *index_size % entry_size_ != 0 || *index_size / entry_size_ > kMaxRecords;
  // An index whose entries do not fit the data (left from before a pack that was cut short,
  // say) is rebuilt like a damaged one: the data file holds the keys.
  const auto stale = [&] {
    auto text = ReadWholeFile(index_name);
    MappedFile data;
    if (!text || (data_size > 0 && !data.Map(data_name))) return true;
    index_.assign(text->begin(), text->end());
    return !IndexFitsData(index_.data(), index_.size() / entry_size_, data, record_size_, keys_);
  };
  if (damaged || stale()) {
    Close();
    if (*rebuilt) return OpenResult::kFailed;
    *rebuilt = true;
    BuildIndex(dir, base_, record_size_, keys_);
    *again = true;
    return OpenResult::kFailed;
  }
  const std::uint64_t entries = *index_size / entry_size_;
  if (entries + 10 < data_size / record_size_ && !*packed) {
    Close();
    *packed = true;
    if (PackDataFile(dir, base_, record_size_, keys_, pack))
      BuildIndex(dir, base_, record_size_, keys_);
    *again = true;
    return OpenResult::kFailed;
  }
  if (!index_file_.Open(index_name, RawFile::Mode::kReadWrite) ||
      index_.size() != entries * entry_size_) {
    Close();
    return OpenResult::kFailed;
  }
  current_ = count() > 0 ? 0 : -1;
  sorted_ = CheckSorted();
  return OpenResult::kOk;
}

void ksDataBase::Close() {
  data_.Close();
  index_file_.Close();
  index_.clear();
  current_ = -1;
}

int ksDataBase::data_records() const {
  return static_cast<int>(
      std::min<std::uint64_t>(data_.Size().value_or(0) / record_size_, kMaxRecords));
}

void ksDataBase::set_current(int pos) {
  current_ = count() == 0 ? -1 : std::clamp(pos, 0, count() - 1);
}

const std::uint8_t* ksDataBase::Key(int pos) const {
  if (pos < 0 || pos >= count()) return nullptr;
  return &index_[static_cast<std::size_t>(pos) * entry_size_];
}

std::uint16_t ksDataBase::RecNo(int pos) const {
  const std::uint8_t* e = Key(pos);
  return e ? EntryRecNo(e, keys_.length()) : 0;
}

bool ksDataBase::ReadRecord(int pos, std::uint8_t* record) const {
  if (!Key(pos)) return false;
  return data_.ReadAt(std::uint64_t{RecNo(pos)} * record_size_, record, record_size_) ==
         record_size_;
}

int ksDataBase::InsertPos(const std::uint8_t* key, int skip) const {
  const int n = count() - (skip >= 0 ? 1 : 0);
  const auto at = [&](int i) { return Key(skip >= 0 && i >= skip ? i + 1 : i); };
  const auto less = [&](int i) { return keys_.Compare(at(i), key, active_key_) < 0; };
  if (sorted_) {
    // In a sorted index the entries that are less all come first.
    int lo = 0, hi = n;
    while (lo < hi) {
      const int mid = lo + (hi - lo) / 2;
      if (less(mid))
        lo = mid + 1;
      else
        hi = mid;
    }
    return lo;
  }
  for (int i = 0; i < n; ++i)
    if (!less(i)) return i;
  return n;
}

bool ksDataBase::CheckSorted() const {
  for (int i = 1; i < count(); ++i)
    if (keys_.Compare(Key(i - 1), Key(i), active_key_) > 0) return false;
  return true;
}

bool ksDataBase::WriteEntries(int first, int last, Direction direction) {
  if (first > last) return true;
  // The entries go out in pieces that never cross a page of the file (an entry that does is
  // a piece of its own): a kill can stop a write between two pages, never inside one. Moving
  // entries towards the end is written from the back and towards the start from the front,
  // so each entry is on disk at its new place before its old place is overwritten: an
  // interrupted move leaves one entry twice, never one missing.
  constexpr std::uint64_t kPage = 4096;
  const auto page = [&](int i, std::size_t byte) {
    return (std::uint64_t(i) * entry_size_ + byte) / kPage;
  };
  const auto write = [&](int a, int b) {  // entries a..b inclusive
    const std::size_t at = static_cast<std::size_t>(a) * entry_size_;
    return index_file_.WriteAt(at, &index_[at], static_cast<std::size_t>(b - a + 1) * entry_size_);
  };
  const auto alone = [&](int i) { return page(i, 0) != page(i, entry_size_ - 1); };
  if (direction == Direction::kBackward) {
    for (int b = last; b >= first;) {
      int a = b;
      if (!alone(b))
        while (a > first && !alone(a - 1) && page(a - 1, 0) == page(b, 0)) --a;
      if (!write(a, b)) return false;
      b = a - 1;
    }
  } else {
    for (int a = first; a <= last;) {
      int b = a;
      if (!alone(a))
        while (b < last && !alone(b + 1) && page(b + 1, 0) == page(a, 0)) ++b;
      if (!write(a, b)) return false;
      a = b + 1;
    }
  }
  return true;
}

bool ksDataBase::GrowBy(const std::uint8_t* entry) {
  // The file grows first, so a full disk fails before any entry has moved.
  const std::uint64_t n = std::uint64_t(count()) * entry_size_;
  if (index_file_.WriteAt(n, entry, entry_size_)) return true;
  index_file_.Truncate(n);
  return false;
}

bool ksDataBase::InsertEntry(const std::uint8_t* entry) {
  const int n = count();
  const int pos = InsertPos(entry);
  // The last entry (or the new one, when it goes last) is copied one place further first.
  if (!GrowBy(pos == n ? entry : Key(n - 1))) return false;
  index_.insert(index_.begin() + static_cast<std::ptrdiff_t>(pos) * entry_size_, entry,
                entry + entry_size_);
  current_ = pos;
  if (pos == n) return true;
  // The entries after the new one move towards the end; the new one is written last.
  return WriteEntries(pos + 1, n - 1, Direction::kBackward) &&
         WriteEntries(pos, pos, Direction::kForward);
}

bool ksDataBase::RemoveEntry(int pos) {
  const int n = count();
  index_.erase(index_.begin() + static_cast<std::ptrdiff_t>(pos) * entry_size_,
               index_.begin() + static_cast<std::ptrdiff_t>(pos + 1) * entry_size_);
  const bool ok = WriteEntries(pos, n - 2, Direction::kForward) &&
                  index_file_.Truncate(std::uint64_t(n - 1) * entry_size_);
  set_current(current_);
  return ok;
}

bool ksDataBase::Insert(const std::uint8_t* record) {
  if (!is_open()) return false;
  const std::uint64_t size = data_.Size().value_or(0);
  const std::uint64_t recno = size / record_size_;
  if (recno >= kMaxRecords || count() >= static_cast<int>(kMaxRecords)) return false;
  if (!data_.WriteAt(recno * record_size_, record, record_size_)) {
    data_.Truncate(size);  // a short write leaves the file as it was
    return false;
  }
  std::vector<std::uint8_t> entry(entry_size_);
  keys_.MakeKey(record, entry.data());
  SetEntryRecNo(entry.data(), keys_.length(), static_cast<std::uint16_t>(recno));
  return InsertEntry(entry.data());
}

bool ksDataBase::Remove(int pos) {
  if (!is_open() || !Key(pos)) return false;
  const std::uint16_t recno = RecNo(pos);
  // The entry goes first: an interruption before the record is marked leaves a record that
  // only a rebuilt index would bring back, never an entry whose record has lost its key.
  if (!RemoveEntry(pos)) return false;
  // An entry left twice by an interrupted update still refers to the record: it keeps its key.
  for (int i = 0; i < count(); ++i)
    if (RecNo(i) == recno) return true;
  // Zero the key fields of the record so that it stays out of every rebuilt index.
  std::vector<std::uint8_t> record(record_size_);
  const std::uint64_t at = std::uint64_t{recno} * record_size_;
  if (data_.ReadAt(at, record.data(), record_size_) == record_size_) {
    for (int k = 0; k < keys_.count(); ++k) {
      const KeyDef& d = keys_[k];
      if (d.rec_offset + d.length <= record_size_) std::memset(&record[d.rec_offset], 0, d.length);
    }
    if (!data_.WriteAt(at, record.data(), record_size_)) return false;
  }
  return true;
}

bool ksDataBase::HasRecord(int pos) const {
  return is_open() && Key(pos) &&
         (std::uint64_t{RecNo(pos)} + 1) * record_size_ <= data_.Size().value_or(0);
}

bool ksDataBase::Rewrite(int pos, const std::uint8_t* record) {
  // An entry of a damaged index may point past the data; nothing is written through it.
  if (!HasRecord(pos)) return false;
  const std::uint16_t recno = RecNo(pos);
  if (!data_.WriteAt(std::uint64_t{recno} * record_size_, record, record_size_)) return false;
  // Take the entry out and put it back where its key now belongs; only the entries between
  // the old and the new place change on disk.
  std::vector<std::uint8_t> entry(entry_size_);
  keys_.MakeKey(record, entry.data());
  SetEntryRecNo(entry.data(), keys_.length(), recno);
  const int to = InsertPos(entry.data(), pos);
  const auto slot = [&](int i) {
    return index_.begin() + static_cast<std::ptrdiff_t>(i) * entry_size_;
  };
  if (to == pos) {
    current_ = to;
    std::copy(entry.begin(), entry.end(), slot(to));
    return WriteEntries(to, to, Direction::kForward);
  }
  // While the entries between the two places move, a copy of the entry waits behind the
  // last one, so the record is in the index at every moment; it goes when all is written.
  const int n = count();
  if (!GrowBy(entry.data())) return false;
  current_ = to;
  bool ok;
  if (to < pos) {
    std::rotate(slot(to), slot(pos), slot(pos + 1));
    std::copy(entry.begin(), entry.end(), slot(to));
    ok = WriteEntries(to + 1, pos, Direction::kBackward);
  } else {
    std::rotate(slot(pos), slot(pos + 1), slot(to + 1));
    std::copy(entry.begin(), entry.end(), slot(to));
    ok = WriteEntries(pos, to - 1, Direction::kForward);
  }
  return ok && WriteEntries(to, to, Direction::kForward) &&
         index_file_.Truncate(std::uint64_t(n) * entry_size_);
}

bool ksDataBase::WriteInPlace(int pos, const std::uint8_t* record) {
  if (!HasRecord(pos)) return false;
  return data_.WriteAt(std::uint64_t{RecNo(pos)} * record_size_, record, record_size_);
}

bool ksDataBase::IsDuplicate(const std::uint8_t* record, int editing) const {
  if (!unique) return false;
  std::vector<std::uint8_t> key(entry_size_);
  keys_.MakeKey(record, key.data());
  for (int i = 0; i < count(); ++i)
    if (i != editing && keys_.Compare(key.data(), Key(i), active_key_) == 0) return true;
  return false;
}

}  // namespace ks
