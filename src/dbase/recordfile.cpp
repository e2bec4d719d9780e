#include "dbase/recordfile.h"

#include <algorithm>
#include <cstdio>

#include "common/fileutil.h"

namespace ks {
namespace {

constexpr std::size_t kChunk = 1 << 20;

std::uint8_t Fold(std::uint8_t c) {
  return c >= 'a' && c <= 'z' ? static_cast<std::uint8_t>(c - 'a' + 'A') : c;
}

}  // namespace

TRecordFile::TRecordFile(std::string base, std::size_t record_size, KeySet keys)
    : base_(std::move(base)),
      record_size_(record_size),
      keys_(keys),
      entry_size_(keys.entry_size()) {}

bool TRecordFile::Open(const std::string& dir) {
  Close();
  dir_ = AddSlash(dir);
  data_name_ = DataFileName(dir, base_);
  index_name_ = IndexFileName(dir, base_);
  if (!FileExists(data_name_) || !FileExists(index_name_)) return false;
  if (!data_.Open(data_name_, RawFile::Mode::kReadWrite)) return false;
  auto text = ReadWholeFile(index_name_);
  if (!text) {
    data_.Close();
    return false;
  }
  const std::size_t n = std::min<std::size_t>(text->size() / entry_size_, 0xFFFF);
  index_.assign(text->begin(), text->begin() + static_cast<std::ptrdiff_t>(n * entry_size_));
  count_ = static_cast<std::uint16_t>(n);
  open_ = true;
  // An index that does not fit the data (one left from before a pack that was cut short)
  // would send reads and writes to the wrong records: it is rebuilt from the data first.
  MappedFile data;
  if (data.Map(data_name_) && !IndexFitsData(index_.data(), count_, data, record_size_, keys_))
    Rebuild();
  return true;
}

void TRecordFile::Close() {
  data_.Close();
  index_.clear();
  count_ = 0;
  open_ = false;
}

bool TRecordFile::ReadRecordBytes(int i, void* record) const {
  if (!open_ || i < 0 || i >= count_) return false;
  const std::uint64_t at = std::uint64_t{EntryRecNo(Entry(i), keys_.length())} * record_size_;
  return data_.ReadAt(at, record, record_size_) == record_size_;
}

void TRecordFile::GetIndexBytes(int i, void* entry) const {
  if (!open_ || i < 0 || i >= count_) {
    std::memset(entry, 0, entry_size_);
    return;
  }
  std::memcpy(entry, Entry(i), entry_size_);
}

int TRecordFile::CompareFirstKey(const std::uint8_t* a, const std::uint8_t* b) const {
  const KeyDef& d = keys_[0];
  a += d.key_offset;
  b += d.key_offset;
  if (d.type == Str) {
    const std::size_t la = std::min<std::size_t>(a[0], d.length - 1u);
    const std::size_t lb = std::min<std::size_t>(b[0], d.length - 1u);
    for (std::size_t i = 1; i <= std::min(la, lb); ++i) {
      const std::uint8_t x = Fold(a[i]), y = Fold(b[i]);
      if (x != y) return x < y ? -1 : 1;
    }
    return la == lb ? 0 : (la < lb ? -1 : 1);
  }
  // Other first keys (address, group, group set) keep the order of the generic comparison.
  KeySet first;
  first.Declare(d.name, d.type, d.rec_offset, d.length);
  return first.Compare(a, b);
}

int TRecordFile::FindBytes(const std::uint8_t* key_field) const {
  if (!open_ || count_ == 0) return -1;
  // The probe is laid out like an entry so that both sides compare alike.
  std::vector<std::uint8_t> probe(entry_size_);
  std::memcpy(&probe[keys_[0].key_offset], key_field, keys_[0].length);
  int low = 0, high = count_ - 1;
  while (low <= high) {
    const int middle = (low + high) / 2;
    const int r = CompareFirstKey(Entry(middle), probe.data());
    if (r == 0) return middle;
    if (r < 0)
      low = middle + 1;
    else
      high = middle - 1;
  }
  return -1;
}

void TRecordFile::SortIndex() {
  // A stable sort: entries with equal keys keep their order, as with an insertion sort.
  const std::size_t e = entry_size_;
  std::vector<std::uint32_t> order(count_);
  for (std::uint32_t i = 0; i < count_; ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return CompareFirstKey(&index_[a * e], &index_[b * e]) < 0;
  });
  if (std::is_sorted(order.begin(), order.end())) return;
  std::vector<std::uint8_t> sorted(index_.size());
  for (std::size_t i = 0; i < order.size(); ++i)
    std::memcpy(&sorted[i * e], &index_[order[i] * e], e);
  index_.swap(sorted);
}

bool TRecordFile::SaveIndex() {
  return WriteFileAtomic(index_name_,
                         std::string_view(reinterpret_cast<const char*>(index_.data()),
                                          static_cast<std::size_t>(count_) * entry_size_));
}

bool TRecordFile::AddBytes(const void* record) {
  if (!open_ || count_ == 0xFFFF) return false;
  const std::uint64_t size = data_.Size().value_or(0);
  const std::uint64_t recno = size / record_size_;
  if (recno >= kMaxRecords) return false;
  if (!data_.WriteAt(recno * record_size_, record, record_size_)) {
    data_.Truncate(size);
    return false;
  }
  std::vector<std::uint8_t> entry(entry_size_);
  keys_.MakeKey(static_cast<const std::uint8_t*>(record), entry.data());
  SetEntryRecNo(entry.data(), keys_.length(), static_cast<std::uint16_t>(recno));
  index_.insert(index_.end(), entry.begin(), entry.end());
  ++count_;
  SortIndex();
  return SaveIndex();
}

bool TRecordFile::AddManyBytes(const void* records, std::size_t n) {
  if (!open_ || count_ + n > 0xFFFF) return false;
  if (n == 0) return true;
  const std::uint64_t size = data_.Size().value_or(0);
  const std::uint64_t first = size / record_size_;
  if (first + n > kMaxRecords) return false;
  if (!data_.WriteAt(first * record_size_, records, n * record_size_)) {
    data_.Truncate(size);
    return false;
  }
  const auto* bytes = static_cast<const std::uint8_t*>(records);
  std::vector<std::uint8_t> entry(entry_size_);
  index_.reserve(index_.size() + n * entry_size_);
  for (std::size_t i = 0; i < n; ++i) {
    keys_.MakeKey(bytes + i * record_size_, entry.data());
    SetEntryRecNo(entry.data(), keys_.length(), static_cast<std::uint16_t>(first + i));
    index_.insert(index_.end(), entry.begin(), entry.end());
  }
  count_ = static_cast<std::uint16_t>(count_ + n);
  SortIndex();
  return SaveIndex();
}

bool TRecordFile::UpdateBytes(int i, const void* record) {
  if (!open_ || i < 0 || i >= count_) return false;
  const auto* rec = static_cast<const std::uint8_t*>(record);
  std::vector<std::uint8_t> key(entry_size_);
  keys_.MakeKey(rec, key.data());
  const bool key_changed = CompareFirstKey(Entry(i), key.data()) != 0;
  const std::uint64_t at = std::uint64_t{EntryRecNo(Entry(i), keys_.length())} * record_size_;
  // An entry of a damaged index may point past the data; nothing is written through it.
  if (at + record_size_ > data_.Size().value_or(0) || !data_.WriteAt(at, record, record_size_))
    return false;
  const std::vector<std::uint8_t> before(index_);
  // The first key is copied only when it changed (not for a change of letter case alone);
  // the other key fields, such as a fileecho's group, always.
  for (int k = 0; k < keys_.count(); ++k) {
    const KeyDef& d = keys_[k];
    if (k > 0 || key_changed) std::memcpy(Entry(i) + d.key_offset, &key[d.key_offset], d.length);
  }
  if (key_changed) SortIndex();
  // An unchanged index has nothing to write.
  return index_ == before || SaveIndex();
}

bool TRecordFile::Delete(int i) {
  if (!open_ || i < 0 || i >= count_) return false;
  index_.erase(index_.begin() + static_cast<std::ptrdiff_t>(i * entry_size_),
               index_.begin() + static_cast<std::ptrdiff_t>((i + 1) * entry_size_));
  --count_;
  return SaveIndex();
}

void TRecordFile::Rebuild() {
  if (!open_) return;
  const std::uint64_t records =
      std::min<std::uint64_t>(data_.Size().value_or(0) / record_size_, 0xFFFF);
  const KeyDef& first = keys_[0];
  index_.clear();
  std::vector<std::uint8_t> entry(entry_size_);
  const std::size_t per_chunk = std::max<std::size_t>(1, kChunk / record_size_);
  std::vector<std::uint8_t> chunk(per_chunk * record_size_);
  for (std::uint64_t start = 0; start < records; start += per_chunk) {
    const std::size_t want =
        static_cast<std::size_t>(std::min<std::uint64_t>(per_chunk, records - start));
    const std::size_t got =
        data_.ReadAt(start * record_size_, chunk.data(), want * record_size_) / record_size_;
    for (std::size_t r = 0; r < got; ++r) {
      const std::uint8_t* rec = &chunk[r * record_size_];
      keys_.MakeKey(rec, entry.data());
      // A string key counts by its length byte, any other key by its bytes.
      const std::uint8_t* f = entry.data() + first.key_offset;
      const bool live = first.type == Str ? f[0] != 0
                                          : std::any_of(f, f + first.length,
                                                        [](std::uint8_t b) { return b != 0; });
      if (!live) continue;
      SetEntryRecNo(entry.data(), keys_.length(), static_cast<std::uint16_t>(start + r));
      index_.insert(index_.end(), entry.begin(), entry.end());
    }
    if (got < want) break;
  }
  count_ = static_cast<std::uint16_t>(index_.size() / entry_size_);
  SortIndex();
  SaveIndex();
}

void TRecordFile::Pack() {
  if (!open_) return;
  const std::string scratch = ScratchFileName(dir_, base_);
  RawFile out;
  if (!out.Open(scratch, RawFile::Mode::kCreate)) return;
  std::vector<std::uint8_t> kept;
  std::vector<std::uint8_t> record(kMaxRecordSize);
  std::vector<std::uint8_t> buffer;
  std::uint64_t flushed = 0;
  std::uint16_t written = 0;
  bool ok = true;
  std::vector<bool> packed(kMaxRecords);  // a record two entries refer to is packed once
  for (int i = 0; i < count_ && ok; ++i) {
    const std::uint16_t recno = EntryRecNo(Entry(i), keys_.length());
    if (packed[recno]) continue;
    packed[recno] = true;
    std::fill(record.begin(), record.end(), 0);
    if (!ReadRecordBytes(i, record.data())) continue;  // an entry whose record is gone
    std::size_t length = record_size_;
    if (pack_proc_) pack_proc_(record.data(), length);
    if (length == 0) continue;  // dropped by the pack procedure
    buffer.insert(buffer.end(), record.begin(),
                  record.begin() + static_cast<std::ptrdiff_t>(record_size_));
    kept.insert(kept.end(), Entry(i), Entry(i) + entry_size_);
    SetEntryRecNo(&kept[kept.size() - entry_size_], keys_.length(), written++);
    if (buffer.size() >= kChunk || i + 1 == count_) {
      ok = out.WriteAt(flushed, buffer.data(), buffer.size());
      flushed += buffer.size();
      buffer.clear();
    }
  }
  if (ok && !buffer.empty()) ok = out.WriteAt(flushed, buffer.data(), buffer.size());
  ok = ok && out.Sync();
  out.Close();
  if (!ok) {
    std::remove(scratch.c_str());  // the data file was not touched
    return;
  }
  // The new data file replaces the old one in one rename.
  data_.Close();
  if (!RenameDurable(scratch, data_name_) || !data_.Open(data_name_, RawFile::Mode::kReadWrite)) {
    std::remove(scratch.c_str());
    Close();
    return;
  }
  index_.swap(kept);
  count_ = static_cast<std::uint16_t>(index_.size() / entry_size_);
  SaveIndex();
}

TMAreasFile::TMAreasFile(std::size_t systems) : TKeyedFile(systems), systems_(systems) {}

void TMAreasFile::SetEchomailOption(std::uint8_t option) {
  pack_proc_ = EchomailPackProc(option, systems_);
}

PackProc EchomailPackProc(std::uint8_t option, std::size_t systems) {
  if (!(option & kEchoPackDropUnlinked)) return {};
  return [systems](std::uint8_t* record, std::size_t& length) {
    // A slot is in use when its zone (the first two bytes) is not 0.
    for (std::size_t i = 0; i < systems; ++i) {
      const std::uint8_t* zone = record + kEchoFixedSize + i * sizeof(ConnectedSystem);
      if (zone[0] || zone[1]) return;
    }
    length = 0;
  };
}

}  // namespace ks
