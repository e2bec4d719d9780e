// Fuzz target of the AREAFILE.GE reader: the input is the file, read as GEcho 1.00 and as 1.20.
// Either reading ends with a list or a message, and a message comes with no areas.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "transfer/import_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view file(reinterpret_cast<const char*>(bytes), size);
  for (const auto& l : {ks::ParseGecho100(file), ks::ParseGecho120(file)})
    if (!l.ok() && !l.areas.empty()) std::abort();
  return 0;
}
