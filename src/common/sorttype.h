// Field kinds shared by key definitions, list columns and edit fields.
#pragma once

#include <cstdint>

namespace ks {

// Str: length-prefixed string; Int: signed integer (one byte: unsigned, as group numbers are);
// Chrs: one of a list of choices; Aka: network address; Ext: file extension; Path: directory;
// Bol: Yes/No; Wrd: unsigned 16-bit; Rel: real; GrpArray: group set; Long: 32-bit integer.
enum SortType : std::uint8_t { Str, Int, Chrs, Aka, Ext, Path, Bol, Wrd, Rel, GrpArray, Long };

}  // namespace ks
