// The program-wide file extensions of record files: data files and index files. They start as
// "DAT" and "IDX"; the program sets "KSX" and "IDX" at start-up before any file is opened.
#pragma once

#include <string>

namespace ks {

struct RecordExtensions {
  std::string data = "DAT";
  std::string index = "IDX";
};

RecordExtensions& record_extensions();

}  // namespace ks
