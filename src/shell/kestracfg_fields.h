// Byte maps of KESTRAcfg and its parts, built from the struct itself with offsetof/sizeof so
// that they cannot drift from the layout. The layout test and the documentation of the file
// format are built on these tables.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "common/layout.h"

namespace ks {

using CfgField = LayoutField;
using CfgLayout = Layout;

// Every top-level member of KESTRAcfg, in declaration (= offset) order.
std::span<const CfgField> KestraCfgFields();

// The structs used inside KESTRAcfg (archiver rows, uplinks, request processor, ...).
std::span<const CfgLayout> KestraCfgSubLayouts();

// The top-level member called `name`, or nullptr.
const CfgField* FindCfgField(std::string_view name);

}  // namespace ks
