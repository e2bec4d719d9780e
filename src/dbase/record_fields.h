// Byte maps of the records and index entries of the ten record files, built from the structs
// themselves with offsetof/sizeof so that they cannot drift from the layout. The layout test
// and the documentation of the record files are built on these tables.
#pragma once

#include <span>
#include <string_view>

#include "common/layout.h"

namespace ks {

// Every struct that lies on disk in a record file, each with all its members in declaration
// (= offset) order. FileMGRrec and EchoMGRrec are given in their default disk size (200
// connected systems: 2539 and 2767 bytes), the size a group record embeds.
std::span<const Layout> RecordLayouts();

// The layout called `name` (the struct's name, e.g. "NodeMGRrec"), or nullptr.
const Layout* FindRecordLayout(std::string_view name);

}  // namespace ks
