#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "shell/cfgdefaults.h"
#include "shell/kestracfg.h"

namespace ks {
namespace {

// The preset signatures must recognise real archive headers, given how the processor reads
// them: the bytes at the offset, compared where the mask has a bit.
std::optional<std::string> Recognise(const ExternalPrograms& progs,
                                     const std::vector<std::uint8_t>& file) {
  for (const auto& a : progs.archivers) {
    if (a.signatureMask == 0) continue;
    bool match = true;
    for (std::size_t i = 0; i < kSignatureBytes && match; ++i) {
      if (!(a.signatureMask & (1u << i))) continue;
      const std::size_t at = a.signatureOffset + i;
      match = at < file.size() && file[at] == a.signature[i];
    }
    if (match) return a.extension.str();
  }
  return std::nullopt;
}

TEST(CfgDefaults, ArchiverSignaturesRecogniseRealHeaders) {
  KESTRAcfg rec;
  FillNewDefaults(rec);
  struct Sample {
    std::vector<std::uint8_t> head;
    const char* ext;
  };
  const Sample samples[] = {
      {{'P', 'K', 3, 4, 20, 0, 0, 0}, "ZIP"},         {{0x60, 0xEA, 0x2A, 0x00, 0x1E}, "ARJ"},
      {{0x24, 0x8C, '-', 'l', 'h', '5', '-'}, "LZH"}, {{0x1A, 0x08, 'F', 'I', 'L', 'E'}, "ARC"},
      {{'H', 'L', 'S', 'Q', 'Z', '1'}, "SQZ"},
  };
  for (const ExternalPrograms* progs : {&rec.dosPrograms, &rec.os2Programs})
    for (const auto& s : samples) EXPECT_EQ(Recognise(*progs, s.head), s.ext) << s.ext;
  EXPECT_EQ(Recognise(rec.dosPrograms, {'M', 'Z', 0x90, 0}), std::nullopt);
}

// A zero record gets its defaults, but the number of systems decides how the area files are
// read: never guessed.
TEST(CfgDefaults, DependentDefaultsFillAZeroRecordButNotTheNumberOfSystems) {
  KESTRAcfg rec{};
  FillDependentDefaults(rec);
  EXPECT_EQ(rec.nextInvoice, 1u);
  EXPECT_EQ(std::uint16_t{rec.minHdSpace}, 100);
  EXPECT_EQ(rec.numberOfSystems, 0);
}

TEST(CfgDefaults, DependentDefaultsKeepWhatTheSysopSet) {
  KESTRAcfg rec;  // no byte zero: every value is one the sysop set, but the invoice number
  auto* p = reinterpret_cast<std::uint8_t*>(&rec);
  std::memset(p, 0x5A, sizeof rec);
  rec.nextInvoice = 0;
  std::vector<std::uint8_t> before(p, p + sizeof rec);
  FillDependentDefaults(rec);
  for (std::size_t i = 0; i < sizeof rec; ++i) {
    if (i < 15456 || i > 15459) {
      EXPECT_EQ(p[i], before[i]) << "byte " << i;
    }
  }
  EXPECT_EQ(rec.nextInvoice, 1u);

  rec.nextInvoice = 4711;
  FillDependentDefaults(rec);
  EXPECT_EQ(rec.nextInvoice, 4711u);
}

TEST(CfgDefaults, NewRecordAlreadyHoldsEveryDependentDefault) {
  KESTRAcfg rec;
  FillNewDefaults(rec);
  KESTRAcfg filled = rec;
  FillDependentDefaults(filled);
  filled.nextInvoice = 0;
  EXPECT_EQ(0, std::memcmp(&rec, &filled, sizeof rec));
}

}  // namespace
}  // namespace ks
