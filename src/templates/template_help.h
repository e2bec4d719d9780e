// The help list of the template macros: what the template editor's pick list offers. Each
// entry is the macro as it is inserted, the kinds of template in which it has a value, and its
// help text; functions put the cursor between their parentheses.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/pstr.h"

namespace ks::tpl {

#pragma pack(push, 1)
// One help record: the name as inserted ("@just()"), the help text, and for functions the
// column (from 0) where the cursor goes after the name is inserted (0 = after the name).
struct HelpEntry {
  PStr<15> name;
  PStr<60> help;
  std::uint8_t cursor = 0;
};
#pragma pack(pop)
static_assert(sizeof(HelpEntry) == 16 + 61 + 1);

struct HelpItem {
  HelpEntry entry;
  std::string kinds;  // "1,2,3", "<all>" or "<fun>"
};

// Every macro, value macros first in the order of the help list, then blocks, control macros
// and functions.
const std::vector<HelpItem>& HelpList();

}  // namespace ks::tpl
