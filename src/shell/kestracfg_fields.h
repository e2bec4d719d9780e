// Byte maps of KESTRAcfg and its parts, built from the struct itself with offsetof/sizeof so
// that they cannot drift from the layout. The layout test and the documentation of the file
// format are built on these tables.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace ks {

struct CfgField {
  std::string_view name;  // member name
  std::size_t offset;     // byte offset within its struct
  std::size_t size;       // bytes
  bool reserved;          // a free area kept for later use, always written as found
};

// Every top-level member of KESTRAcfg, in declaration (= offset) order.
std::span<const CfgField> KestraCfgFields();

// A struct used inside KESTRAcfg, with its own members.
struct CfgLayout {
  std::string_view name;
  std::size_t size;
  std::span<const CfgField> fields;
};

// The structs used inside KESTRAcfg (archiver rows, uplinks, request processor, ...).
std::span<const CfgLayout> KestraCfgSubLayouts();

// The top-level member called `name`, or nullptr.
const CfgField* FindCfgField(std::string_view name);

}  // namespace ks
