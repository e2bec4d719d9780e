// FidoNet network addresses: zone:net/node.point, four unsigned 16-bit numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/le.h"

namespace ks {

#pragma pack(push, 1)
struct NetAddr {
  std::uint16_t zone = 0;
  std::uint16_t net = 0;
  std::uint16_t node = 0;
  std::uint16_t point = 0;

  bool IsSet() const { return zone != 0; }
  bool operator==(const NetAddr&) const = default;
};
#pragma pack(pop)
static_assert(sizeof(NetAddr) == 8);

// "2:280/5555" or "2:280/5555.1"; the point is left out when it is 0.
std::string FormatAddr(const NetAddr& a);

// Parses zone:net/node[.point]; every part must be a decimal number of at most 65535.
std::optional<NetAddr> ParseAddr(std::string_view text);

}  // namespace ks
