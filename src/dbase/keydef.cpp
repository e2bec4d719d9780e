#include "dbase/keydef.h"

#include <algorithm>
#include <cstring>

namespace ks {

void KeySet::Declare(std::string_view name, SortType type, std::uint16_t rec_offset,
                     std::uint8_t length) {
  if (count_ >= kMaxKeys) return;
  KeyDef& d = defs_[static_cast<std::size_t>(count_)];
  d = KeyDef{};
  const std::size_t n = std::min(name.size(), sizeof(d.name) - 1);
  std::memcpy(d.name, name.data(), n);
  d.type = type;
  d.rec_offset = rec_offset;
  d.length = length;
  d.key_offset = static_cast<std::uint8_t>(length_);
  d.number = static_cast<std::uint8_t>(count_ + 1);
  d.first = count_ == 0;
  length_ += length;
  ++count_;
}

std::size_t KeySet::record_extent() const {
  std::size_t end = 0;
  for (int i = 0; i < count_; ++i)
    end = std::max<std::size_t>(end, defs_[i].rec_offset + defs_[i].length);
  return end;
}

void KeySet::MakeKey(const std::uint8_t* record, std::uint8_t* key) const {
  for (int i = 0; i < count_; ++i)
    std::memcpy(key + defs_[i].key_offset, record + defs_[i].rec_offset, defs_[i].length);
}

bool KeySet::KeyEmpty(const std::uint8_t* key) const {
  return std::all_of(key, key + length_, [](std::uint8_t b) { return b == 0; });
}

namespace {

// Byte `i` of a string field as the comparison sees it: zero behind the current length.
std::uint8_t StrByte(const std::uint8_t* field, std::size_t i) {
  return i <= field[0] ? field[i] : 0;
}

int CompareField(const KeyDef& d, const std::uint8_t* a, const std::uint8_t* b) {
  const std::uint8_t* fa = a + d.key_offset;
  const std::uint8_t* fb = b + d.key_offset;
  if (d.type == Str) {
    for (std::size_t i = 1; i < d.length; ++i) {
      const std::uint8_t x = StrByte(fa, i), y = StrByte(fb, i);
      if (x != y) return x < y ? -1 : 1;
    }
    return 0;
  }
  const bool words = d.type == Aka || d.type == Wrd || d.type == Long;
  for (std::size_t i = 0; i < d.length; ++i) {
    if (fa[i] == fb[i]) continue;
    // A difference in a word's low byte (an even position of the entry) is decided by the
    // word's high byte first.
    const bool low_byte = (d.key_offset + i) % 2 == 0;
    if (words && low_byte && i + 1 < d.length && fa[i + 1] != fb[i + 1])
      return fa[i + 1] < fb[i + 1] ? -1 : 1;
    return fa[i] < fb[i] ? -1 : 1;
  }
  return 0;
}

}  // namespace

int KeySet::Compare(const std::uint8_t* a, const std::uint8_t* b, int k) const {
  for (;; ++k) {
    const KeyDef* d = Find(k);
    if (!d) return -1;
    if (const int r = CompareField(*d, a, b)) return r;
    if (k >= count_) return 0;
  }
}

}  // namespace ks
