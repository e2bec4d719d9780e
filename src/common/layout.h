// Byte maps of the packed structs that lie on disk, built from the structs themselves with
// offsetof/sizeof so that they cannot drift from the layout. The layout tests and the file
// format documentation are built on these tables.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace ks {

struct LayoutField {
  std::string_view name;  // member name
  std::size_t offset;     // byte offset within its struct
  std::size_t size;       // bytes
  bool reserved;          // a free area kept for later use, always written as found
};

// A struct with its own members.
struct Layout {
  std::string_view name;
  std::size_t size;
  std::span<const LayoutField> fields;
};

}  // namespace ks

// One table row for member `member` of `type`; KS_RESERVED marks a free area.
#define KS_FIELD(type, member)                                   \
  ::ks::LayoutField {                                            \
#member, offsetof(type, member), sizeof(type::member), false \
  }
#define KS_RESERVED(type, member)                               \
  ::ks::LayoutField {                                           \
#member, offsetof(type, member), sizeof(type::member), true \
  }
