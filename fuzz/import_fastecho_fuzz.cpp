// Fuzz target of the FASTECHO.CFG reader: the input is the file. The reading ends with a list
// or a message; no area lists more systems than the file has nodes.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "transfer/import_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const auto l = ks::ParseFastEcho146(std::string_view(reinterpret_cast<const char*>(bytes), size));
  if (!l.ok() && !l.areas.empty()) std::abort();
  for (const auto& a : l.areas)
    if (a.links.size() > l.nodes.size()) std::abort();
  return 0;
}
