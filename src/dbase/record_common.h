// Field types shared by several record layouts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "common/fileareaset.h"
#include "common/le.h"
#include "common/pstr.h"

namespace ks {

// Amounts and percentages: an IEEE 754 double, 8 bytes little-endian.
using Real = double;
static_assert(sizeof(Real) == 8 && std::numeric_limits<Real>::is_iec559);

// Message base formats the processor writes to.
enum MsgBaseType : std::uint8_t {
  mbNone,      // no message base (pass-through)
  mbHudson,    // board number
  mbSquish,    // path
  mbJam,       // path
  mbMsg,       // *.MSG directory
  mbPcBoard,   // path
  mbEzyCom,    // board number
  mbGoldBase,  // board number
};

#pragma pack(push, 1)
// A message area: its format, the board number (Hudson, EzyCom, GoldBase) or the path.
struct MsgArea {
  std::uint8_t type = 0;  // MsgBaseType
  std::uint16_t board = 0;
  PStr<79> path;
};

#pragma pack(pop)
static_assert(sizeof(MsgArea) == 83);

// Days of the week as one byte: bit 0 Sunday .. bit 6 Saturday.
inline constexpr std::uint8_t kDaySunday = 0x01;
inline constexpr std::uint8_t kAllDays = 0x7F;

}  // namespace ks
