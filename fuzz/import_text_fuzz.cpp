// Fuzz target of the readers of TIC.CFG, FILEBONE.NA/NO, SQUISH.CFG and AREAS.BBS: the input is
// the file, given to each of them. Every reading ends with a list or a message naming a line of
// the file, and every address it gives has a zone.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "transfer/import_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const ks::NetAddr main{2, 280, 5555, 0};
  for (const auto& l : {ks::ParseTickCfg(text, main), ks::ParseFilebone(text),
                        ks::ParseSquishCfg(text, main), ks::ParseAreasBbs(text, main)}) {
    if (!l.ok() && (!l.areas.empty() || l.error.rfind("line ", 0) != 0)) std::abort();
    for (const auto& a : l.areas) {
      if (a.tag.empty()) std::abort();
      for (const auto& link : a.links)
        if (!link.address.IsSet()) std::abort();
    }
  }
  return 0;
}
