// Length-prefixed strings as they lie in records on disk: one length byte followed by a fixed
// capacity of characters. The bytes after the length are never read.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "common/le.h"

namespace ks {

#pragma pack(push, 1)
template <std::size_t N>
struct PStr {
  static_assert(N >= 1 && N <= 255, "a length byte holds at most 255");
  std::uint8_t len = 0;
  char text[N] = {};

  static constexpr std::size_t kCapacity = N;

  // The stored characters; a length byte beyond the capacity (a damaged record) is clamped.
  std::string str() const { return std::string(text, std::min<std::size_t>(len, N)); }
  std::size_t size() const { return std::min<std::size_t>(len, N); }
  bool empty() const { return len == 0; }

  // Stores at most N characters; the bytes after the new length are zeroed so that records
  // compare and pack predictably.
  void set(std::string_view s) {
    const std::size_t n = std::min(s.size(), N);
    std::memcpy(text, s.data(), n);
    std::memset(text + n, 0, N - n);
    len = static_cast<std::uint8_t>(n);
  }
  void clear() { set({}); }
  PStr& operator=(std::string_view s) {
    set(s);
    return *this;
  }
};
#pragma pack(pop)

static_assert(sizeof(PStr<60>) == 61);
static_assert(sizeof(PStr<1>) == 2);

// Reads a length-prefixed string from raw record bytes at `p` with capacity `cap`.
inline std::string ReadPStr(const std::uint8_t* p, std::size_t cap) {
  const std::size_t n = std::min<std::size_t>(p[0], cap);
  return std::string(reinterpret_cast<const char*>(p + 1), n);
}

}  // namespace ks
