// Keys of a record file: up to five key fields copied from the record into each index entry,
// and the generic comparison that orders the entries.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/sorttype.h"

namespace ks {

inline constexpr int kMaxKeys = 5;
inline constexpr std::size_t kMaxRecordSize = 10240;  // the record buffer of the engine

struct KeyDef {
  char name[21] = {};  // column caption, e.g. "tag"
  SortType type = Str;
  std::uint16_t rec_offset = 0;  // where the field lies in the record
  std::uint8_t length = 0;       // bytes copied (a string counts its length byte)
  std::uint8_t key_offset = 0;   // where it lies in the index key
  std::uint8_t number = 0;       // 1-based position of the definition
  bool first = false;            // key number 1
};

// The key definitions of one file, in declaration order.
class KeySet {
 public:
  // Adds a key; a sixth one is ignored. Keys are declared in order, so key numbers are 1..n.
  void Declare(std::string_view name, SortType type, std::uint16_t rec_offset, std::uint8_t length);

  int count() const { return count_; }
  // K: the key bytes of an index entry (the entry is K + 2 bytes).
  std::size_t length() const { return length_; }
  std::size_t entry_size() const { return length_ + 2; }
  const KeyDef& operator[](int i) const { return defs_[static_cast<std::size_t>(i)]; }
  // The definition with key number k (1-based), or nullptr.
  const KeyDef* Find(int k) const { return k >= 1 && k <= count_ ? &defs_[k - 1] : nullptr; }
  // The last byte any key reads from a record, plus one.
  std::size_t record_extent() const;

  // Copies the key fields of `record` into `key` (length() bytes).
  void MakeKey(const std::uint8_t* record, std::uint8_t* key) const;
  // True when every key byte is zero: the record counts as deleted.
  bool KeyEmpty(const std::uint8_t* key) const;

  // The generic comparison of two index keys from key number `k` on: negative, zero or
  // positive. Strings compare after their length byte with the bytes behind the length taken
  // as zero; Aka, Wrd and Long as little-endian 16-bit words; everything else by unsigned
  // bytes. No case folding. A key number that is not declared gives "less".
  int Compare(const std::uint8_t* a, const std::uint8_t* b, int k = 1) const;

 private:
  std::array<KeyDef, kMaxKeys> defs_{};
  int count_ = 0;
  std::size_t length_ = 0;
};

}  // namespace ks
