// A set of BBS file area numbers as stored in records.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ks {

#pragma pack(push, 1)
// Areas 0..63999: bit n of byte n/8 is area n.
struct FileAreaSet {
  static constexpr std::size_t kAreas = 64000;
  std::uint8_t bits[kAreas / 8] = {};
  bool Has(std::size_t n) const { return n < kAreas && (bits[n >> 3] & (1u << (n & 7))); }
  void Set(std::size_t n, bool on) {
    if (n >= kAreas) return;
    const auto bit = static_cast<std::uint8_t>(1u << (n & 7));
    bits[n >> 3] = static_cast<std::uint8_t>(on ? bits[n >> 3] | bit : bits[n >> 3] & ~bit);
  }
};
#pragma pack(pop)
static_assert(sizeof(FileAreaSet) == 8000);

}  // namespace ks
