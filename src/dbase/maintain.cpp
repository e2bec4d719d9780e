#include "dbase/maintain.h"

#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <stdexcept>

#include "common/fileutil.h"
#include "common/halt.h"
#include "dbase/workbox.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {
namespace {

constexpr std::size_t kChunk = 1 << 20;  // bytes per read or write of a whole-file pass

void CheckRecordSize(std::size_t record_size) {
  if (record_size == 0 || record_size > kMaxRecordSize)
    throw std::logic_error("Record size larger than maximum!");
}

// One entry as the quicksort moves it: the first eight bytes of its byte-order key (see
// ByteOrderKey) as a number, and its position in the unsorted entries.
struct SortItem {
  std::uint64_t head = 0;
  std::uint32_t row = 0;
};

// The middle-pivot quicksort over the items, ordered by `less`. It recurses into the smaller
// part and loops over the larger, so its depth stays logarithmic; sorting the two parts in
// either order gives the same result. It gives up (false) when the comparisons run far past
// n log n, which only a crafted file can cause.
template <class LessFn>
class EntrySorter {
 public:
  EntrySorter(std::vector<SortItem>& items, LessFn less) : items_(items), less_(less) {
    std::size_t log2 = 1;
    while ((std::size_t{1} << log2) < items.size()) ++log2;
    budget_ = 64 * (items.size() + 1) * log2;
  }

  bool Sort(std::ptrdiff_t l, std::ptrdiff_t r) {
    while (l < r) {
      std::ptrdiff_t i = l, j = r;
      const SortItem pivot = At((l + r) / 2);
      do {
        while (Less(At(i), pivot)) ++i;
        while (Less(pivot, At(j))) --j;
        if (i <= j) {
          if (i != j) std::swap(At(i), At(j));
          ++i;
          --j;
        }
        if (spent_ > budget_) return false;
      } while (i <= j);
      if (j - l < r - i) {
        if (l < j && !Sort(l, j)) return false;
        l = i;
      } else {
        if (i < r && !Sort(i, r)) return false;
        r = j;
      }
    }
    return true;
  }

 private:
  SortItem& At(std::ptrdiff_t i) { return items_[static_cast<std::size_t>(i)]; }
  bool Less(const SortItem& a, const SortItem& b) {
    ++spent_;
    return less_(a, b);
  }

  std::vector<SortItem>& items_;
  LessFn less_;
  std::size_t spent_ = 0, budget_ = 0;
};

// Eight bytes as a number that orders like the bytes themselves.
std::uint64_t BigEndian64(const std::uint8_t* p) {
  std::uint64_t v;
  std::memcpy(&v, p, sizeof v);
  if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap64(v);
  return v;
}

// The key fields from key `first_key` on, rewritten so that plain byte order (memcmp) is the
// order of KeySet::Compare: a string loses its length byte and reads as zero behind its length,
// and each word of an Aka, Wrd or Long field (a pair starting at an even position of the entry)
// has its high byte first. Every comparison then has the same outcome as KeySet::Compare, so
// the quicksort makes the same moves on these as on the entries, at a fraction of the cost.
class ByteOrderKey {
 public:
  ByteOrderKey(const KeySet& keys, int first_key) : keys_(keys), first_(first_key) {
    for (int k = first_key; keys.Find(k); ++k) {
      const KeyDef& d = *keys.Find(k);
      width_ += d.type == Str ? (d.length > 0 ? d.length - 1u : 0u) : d.length;
    }
  }
  std::size_t width() const { return width_; }

  void Make(const std::uint8_t* entry, std::uint8_t* out) const {
    for (int k = first_; keys_.Find(k); ++k) {
      const KeyDef& d = *keys_.Find(k);
      const std::uint8_t* f = entry + d.key_offset;
      const std::size_t length = d.length;
      if (d.type == Str) {
        if (length == 0) continue;
        const std::size_t n = std::min<std::size_t>(f[0], length - 1);
        std::memcpy(out, f + 1, n);
        std::memset(out + n, 0, length - 1 - n);
        out += length - 1;
      } else if (d.type == Aka || d.type == Wrd || d.type == Long) {
        for (std::size_t i = 0; i < length;) {
          if ((d.key_offset + i) % 2 == 0 && i + 1 < length) {
            out[i] = f[i + 1];
            out[i + 1] = f[i];
            i += 2;
          } else {
            out[i] = f[i];
            ++i;
          }
        }
        out += length;
      } else {
        std::memcpy(out, f, length);
        out += length;
      }
    }
  }

 private:
  const KeySet& keys_;
  int first_;
  std::size_t width_ = 0;
};

void StableSortEntries(std::vector<std::uint8_t>& entries, const KeySet& keys, int first_key) {
  const std::size_t e = keys.entry_size();
  const std::size_t n = entries.size() / e;
  std::vector<std::uint32_t> order(n);
  for (std::size_t i = 0; i < n; ++i) order[i] = static_cast<std::uint32_t>(i);
  std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return keys.Compare(&entries[a * e], &entries[b * e], first_key) < 0;
  });
  std::vector<std::uint8_t> sorted(entries.size());
  for (std::size_t i = 0; i < n; ++i) std::memcpy(&sorted[i * e], &entries[order[i] * e], e);
  entries.swap(sorted);
}

// Replaces the index file by `entries` through a temporary file and a rename, so that an
// interruption at any moment leaves either the old index or the new one, never a short or
// empty index that a later pack would take for a list of deleted records.
bool WriteIndexFile(const std::string& path, const std::vector<std::uint8_t>& entries) {
  return WriteFileAtomic(
      path, std::string_view(reinterpret_cast<const char*>(entries.data()), entries.size()));
}

// Appends to a file through a large buffer.
class BufferedAppender {
 public:
  explicit BufferedAppender(RawFile& file) : file_(file) { buf_.reserve(kChunk); }
  bool Append(const std::uint8_t* p, std::size_t n) {
    buf_.insert(buf_.end(), p, p + n);
    return buf_.size() < kChunk || Flush();
  }
  bool Flush() {
    if (buf_.empty()) return true;
    const bool ok = file_.WriteAt(written_, buf_.data(), buf_.size());
    written_ += buf_.size();
    buf_.clear();
    return ok;
  }
  std::uint64_t total() const { return written_ + buf_.size(); }

 private:
  RawFile& file_;
  std::vector<std::uint8_t> buf_;
  std::uint64_t written_ = 0;
};

}  // namespace

void SortIndexEntries(std::vector<std::uint8_t>& entries, const KeySet& keys, int first_key) {
  const std::size_t e = keys.entry_size();
  const std::size_t n = entries.size() / e;
  // An undeclared key number compares every pair as "less", which no sort can order.
  if (n <= 1 || !keys.Find(first_key)) return;
  std::vector<SortItem> items(n);
  for (std::size_t i = 0; i < n; ++i) items[i].row = static_cast<std::uint32_t>(i);
  // The byte-order keys of all entries side by side; most comparisons are decided by the
  // heads and never look at them.
  const ByteOrderKey order(keys, first_key);
  const std::size_t w = order.width();
  std::vector<std::uint8_t> ordered(n * w + 8);  // never empty, even for keys of no bytes
  for (std::size_t i = 0; i < n; ++i) {
    order.Make(&entries[i * e], &ordered[i * w]);
    std::uint8_t head[8] = {};
    std::memcpy(head, &ordered[i * w], std::min<std::size_t>(w, 8));
    items[i].head = BigEndian64(head);
  }
  auto less = [&ordered, w](const SortItem& a, const SortItem& b) {
    if (a.head != b.head) return a.head < b.head;
    return w > 8 && std::memcmp(&ordered[a.row * w + 8], &ordered[b.row * w + 8], w - 8) < 0;
  };
  const bool sorted = EntrySorter(items, less).Sort(0, static_cast<std::ptrdiff_t>(n) - 1);
  if (!sorted) {
    StableSortEntries(entries, keys, first_key);
    return;
  }
  std::vector<std::uint8_t> result(entries.size());
  for (std::size_t i = 0; i < n; ++i) std::memcpy(&result[i * e], &entries[items[i].row * e], e);
  // A partial entry at the end stays where it was.
  std::copy(entries.begin() + static_cast<std::ptrdiff_t>(n * e), entries.end(),
            result.begin() + static_cast<std::ptrdiff_t>(n * e));
  entries.swap(result);
}

bool SortIndex(const std::string& index_name, const KeySet& keys, int first_key) {
  WorkBox box("Sorting index files", "    Please wait    ");
  auto text = ReadWholeFile(index_name);
  if (!text) return false;
  const std::size_t e = keys.entry_size();
  std::vector<std::uint8_t> entries(
      text->begin(), text->begin() + static_cast<std::ptrdiff_t>(text->size() / e * e));
  SortIndexEntries(entries, keys, first_key);
  box.Progress(1, 1);
  return WriteIndexFile(index_name, entries);
}

bool BuildIndex(const std::string& dir, const std::string& base, std::size_t record_size,
                const KeySet& keys) {
  CheckRecordSize(record_size);
  WorkBox box("Building index files", "    Please wait     ");
  const std::string data_name = DataFileName(dir, base);
  const std::string index_name = IndexFileName(dir, base);
  if (!FileExists(data_name)) {
    RawFile created;
    if (!created.Open(data_name, RawFile::Mode::kCreate)) return false;
  }
  // The data file is mapped: only the bytes of the key fields are ever touched.
  MappedFile data;
  if (!data.Map(data_name)) return false;
  const std::uint64_t size = data.size();
  const std::uint64_t records = std::min<std::uint64_t>(size / record_size, kMaxRecords);

  const std::size_t k = keys.length(), e = keys.entry_size();
  std::vector<std::uint8_t> entries;
  entries.reserve(static_cast<std::size_t>(records) * e);
  std::vector<std::uint8_t> entry(e);
  for (std::uint64_t r = 0; r < records; ++r) {
    std::memset(entry.data(), 0, e);
    keys.MakeKey(data.data() + r * record_size, entry.data());
    if (!keys.KeyEmpty(entry.data())) {  // all-zero keys mark a deleted record
      SetEntryRecNo(entry.data(), k, static_cast<std::uint16_t>(r));
      entries.insert(entries.end(), entry.begin(), entry.end());
    }
    if (r % 1024 == 0) box.Progress(r, records);
  }
  box.Progress(records, records);
  {
    WorkBox sorting("Sorting index files", "    Please wait    ");
    SortIndexEntries(entries, keys);
    sorting.Progress(1, 1);
  }
  const bool ok = WriteIndexFile(index_name, entries);
  if (size == 0) {
    ::unlink(data_name.c_str());
    ::unlink(index_name.c_str());
  }
  return ok;
}

bool IndexFitsData(const std::uint8_t* entries, std::size_t count, const MappedFile& data,
                   std::size_t record_size, const KeySet& keys) {
  const std::size_t k = keys.length(), e = keys.entry_size();
  std::vector<std::uint8_t> key(k);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t* entry = entries + i * e;
    const std::uint64_t at = std::uint64_t{EntryRecNo(entry, k)} * record_size;
    if (at + record_size > data.size()) return false;
    keys.MakeKey(data.data() + at, key.data());
    if (keys.Compare(key.data(), entry) != 0) return false;
  }
  return true;
}

bool PackDataFile(const std::string& dir, const std::string& base, std::size_t record_size,
                  const KeySet& keys, const PackProc& proc) {
  CheckRecordSize(record_size);
  WorkBox box("Packing data files", "   Please wait    ");
  const std::string data_name = DataFileName(dir, base);
  const std::string index_name = IndexFileName(dir, base);
  const std::string scratch_name = ScratchFileName(dir, base);
  // The new data file is built as base.$$$ beside the old one and renamed over it once it is
  // complete and on disk, so an interruption at any point leaves the old data file whole. A
  // left-over base.$$$ is always an unfinished new file and is replaced.
  MappedFile old;
  if (!FileExists(data_name) || !old.Map(data_name)) return false;
  ::unlink(scratch_name.c_str());
  RawFile out;
  auto give_up = [&] {
    out.Close();
    ::unlink(scratch_name.c_str());
  };
  if (!out.Open(scratch_name, RawFile::Mode::kCreate)) return false;
  std::vector<std::uint8_t> entries;
  if (auto text = ReadWholeFile(index_name)) entries.assign(text->begin(), text->end());
  const std::size_t k = keys.length(), e = keys.entry_size();
  const std::size_t count = entries.size() / e;

  BufferedAppender writer(out);
  std::vector<std::uint8_t> record(kMaxRecordSize);
  // An update of the list editor that was interrupted can leave one entry twice; its record
  // is packed once.
  std::vector<bool> packed(kMaxRecords);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t recno = EntryRecNo(&entries[i * e], k);
    const std::uint64_t at = std::uint64_t{recno} * record_size;
    if (at >= old.size()) {
      give_up();
      if (ui().screen)
        MessageBox("Error found in data file. Rebuild index/files to repair the problem", {"Ok"});
      throw ProgramHalt{0};
    }
    if (packed[recno]) continue;
    packed[recno] = true;
    // A whole record that no procedure converts goes out straight from the old file.
    if (!proc && old.size() - at >= record_size) {
      if (!writer.Append(old.data() + at, record_size)) {
        give_up();
        return false;
      }
      if (i % 256 == 0) box.Progress(i, count);
      continue;
    }
    std::fill(record.begin(), record.end(), 0);
    std::memcpy(record.data(), old.data() + at,
                static_cast<std::size_t>(std::min<std::uint64_t>(record_size, old.size() - at)));
    std::size_t length = record_size;
    if (proc) proc(record.data(), length);
    length = std::min(length, kMaxRecordSize);
    if (length > 0 && !writer.Append(record.data(), length)) {
      give_up();
      return false;
    }
    if (i % 256 == 0) box.Progress(i, count);
  }
  if (!writer.Flush() || !out.Sync()) {
    give_up();
    return false;
  }
  box.Progress(count, count);
  out.Close();
  if (writer.total() == 0) {
    ::unlink(scratch_name.c_str());
    ::unlink(data_name.c_str());
    ::unlink(index_name.c_str());
    return true;
  }
  if (!RenameDurable(scratch_name, data_name)) {
    ::unlink(scratch_name.c_str());
    return false;
  }
  return true;
}

}  // namespace ks
