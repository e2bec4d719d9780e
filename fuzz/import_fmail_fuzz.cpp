// Fuzz target of the FMAIL.AR reader: the input is the file. The reading ends with a list or a
// message, and a message comes with no areas.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "transfer/import_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const auto l = ks::ParseFmailAr(std::string_view(reinterpret_cast<const char*>(bytes), size));
  if (!l.ok() && !l.areas.empty()) std::abort();
  return 0;
}
