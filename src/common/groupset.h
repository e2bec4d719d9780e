// A set of group numbers 0-255 as stored in records: 32 bytes, bit n of byte n/8 is group n.
#pragma once

#include <cstdint>

#include "common/le.h"

namespace ks {

#pragma pack(push, 1)
struct GroupSet {
  std::uint8_t bits[32] = {};

  bool Has(std::uint8_t g) const { return bits[g >> 3] & (1u << (g & 7)); }
  void Add(std::uint8_t g) { bits[g >> 3] |= static_cast<std::uint8_t>(1u << (g & 7)); }
  void Remove(std::uint8_t g) { bits[g >> 3] &= static_cast<std::uint8_t>(~(1u << (g & 7))); }
  // Moves group `from` to `to` when the set holds `from`; true when it did.
  bool Renumber(std::uint8_t from, std::uint8_t to) {
    if (!Has(from)) return false;
    Remove(from);
    Add(to);
    return true;
  }
  bool Empty() const {
    for (auto b : bits)
      if (b) return false;
    return true;
  }
};
#pragma pack(pop)
static_assert(sizeof(GroupSet) == 32);

}  // namespace ks
