// The BBS file area list: the names of the BBS's file areas, which the processor's companion
// tool compiles into FILEAREA.LST in the data directory, read for the file area pick lists.
//
// The file is text, one area per line, the fields separated by blanks or tabs:
//
//   <number> <path> <name>
//
// <number> is the area number, 0 to 63999, in decimal digits only. <path> is the area's file
// directory and holds no blanks. The rest of the line, without the blanks around it, is the
// area's name and may be empty. Lines end in LF or CR LF. Empty lines, lines of blanks and
// lines whose first non-blank character is ";" are comments. A line whose number is missing,
// not a number or out of range, or that has no path, is skipped. When a number occurs more
// than once its first line counts.
#pragma once

#include <string>
#include <vector>

#include "tui/picklist.h"

namespace ks {

// FILEAREA.LST in `dir` (with or without a trailing "/").
std::string BbsFileAreasFileName(const std::string& dir);

// The areas of the list in `dir`, ordered by number; none when the file is missing or
// unreadable.
std::vector<FileAreaName> LoadBbsFileAreas(const std::string& dir);

}  // namespace ks
