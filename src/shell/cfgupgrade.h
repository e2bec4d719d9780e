// Bringing a KESTRAcfg record of an older revision up to the current one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "common/netaddr.h"
#include "shell/kestracfg.h"

namespace ks {

// One upgrade step: applied to a record whose stored revision is below `below`.
struct RevisionStep {
  std::uint8_t below;
  void (*apply)(KESTRAcfg&);
};

// The steps in the order they are applied (ascending bounds).
std::span<const RevisionStep> RevisionSteps();

// Applies, in order, every step whose bound is above rec.revision. The revision byte and the
// version bytes are left alone: the setup-file loader sets them afterwards.
void ApplyRevisionSteps(KESTRAcfg& rec);

// Where revisions 1 to 6 kept the system's addresses and the aka-matching table. The
// revision-7 step moves the list to KESTRAcfg::addresses and turns each row's aka index
// (0 = the main address) into the address itself.
inline constexpr std::size_t kOldAddressOffset = 9477;
inline constexpr std::size_t kOldAddressCount = 32;
inline constexpr std::size_t kOldAkaMatchOffset = 11824;

#pragma pack(push, 1)
struct OldAkaMatchRow {
  std::uint16_t zone;  // 0 = empty row
  std::uint16_t net;
  std::uint8_t akaIndex;  // index into the old address list
};
#pragma pack(pop)
static_assert(sizeof(OldAkaMatchRow) == 5);

}  // namespace ks
