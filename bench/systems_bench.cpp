// A change of "Number of systems" on a large fileecho file: 20,000 fileechos of 255 systems
// rewritten to 100 systems and back, each against the plain file operation on the same bytes
// (the old file read with 1 MiB read() calls, as many bytes as the new file written to a new
// file and flushed with fsync).
//
//   bench_systems [runs]
//
// Everything happens in a fresh directory under $TMPDIR (or /tmp) that is removed at the end.
// The first round is a warm-up; each measurement is repeated `runs` times (5 unless given) and
// the median is reported. Every round trip must give back the file it started from.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_util.h"
#include "common/recordext.h"
#include "dbase/fileecho_rec.h"
#include "dbase/rawfile.h"
#include "dbase/systems_resize.h"

namespace {

using namespace ks;
using namespace bench;

constexpr int kFileechos = 20000;
constexpr std::uint8_t kWide = 255, kNarrow = 100;

// FAREAS at 255 systems; fileecho n has 1-100 systems, so nothing is lost on the way to 100.
std::vector<std::uint8_t> WideFile() {
  const RecordFileDef& def = FileDef(RecordFileId::kFAreas);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kFileechos * def.RecordSize(kWide));
  for (int n = 0; n < kFileechos; ++n) {
    FileMGRrec rec;
    rec.tag = "FE" + std::to_string(n);
    rec.description = "Fileecho number " + std::to_string(n);
    rec.group = static_cast<std::uint8_t>(1 + n % 50);
    rec.destination = "/srv/files/fe" + std::to_string(n);
    for (int s = 0; s <= n % 100; ++s)
      rec.systems[s].address = {2, static_cast<std::uint16_t>(n), static_cast<std::uint16_t>(s), 0};
    const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
    bytes.insert(bytes.end(), p, p + def.RecordSize(kWide));
  }
  return bytes;
}

// The change of the file in `path` from `from` to `to` systems, as the program makes it.
void Change(const std::string& path, std::uint8_t from, std::uint8_t to) {
  const std::vector<AreaFileSurvey> files = {
      SurveyAreaFile(path, FileDef(RecordFileId::kFAreas), from, to)};
  if (files[0].action != ResizeAction::kRewrite) Die("the survey asks for no rewrite");
  std::string error;
  if (!WriteResizedFile(files[0], {}, &error) || !InstallResizedFiles(files, &error)) Die(error);
}

int Run(int runs) {
  record_extensions() = {"KSX", "IDX"};
  TempDir temp;
  const std::string path = (temp.path() / "FAREAS.KSX").string();
  const std::vector<std::uint8_t> wide = WideFile();
  WriteWhole(path, wide);
  const RecordFileDef& def = FileDef(RecordFileId::kFAreas);
  const std::uint64_t narrow_bytes = std::uint64_t{kFileechos} * def.RecordSize(kNarrow);
  std::printf("Number of systems benchmark, in %s\n", temp.path().c_str());
  std::printf("FAREAS.KSX: %d fileechos, %.1f MB at %d systems, %.1f MB at %d.\n", kFileechos,
              wide.size() / 1e6, kWide, narrow_bytes / 1e6, kNarrow);
  std::printf("Warm cache (one warm-up round first), median of %d runs.\n\n", runs);

  Samples down, up, plain_down, plain_up, warm_up;
  for (int i = 0; i <= runs; ++i) {  // run 0 is the warm-up
    ::sync();
    (i == 0 ? warm_up : plain_down).Measure([&] { PlainCopy(path, narrow_bytes); });
    ::sync();
    (i == 0 ? warm_up : down).Measure([&] { Change(path, kWide, kNarrow); });
    ::sync();
    (i == 0 ? warm_up : plain_up).Measure([&] { PlainCopy(path, wide.size()); });
    ::sync();
    (i == 0 ? warm_up : up).Measure([&] { Change(path, kNarrow, kWide); });
    if (ReadWhole(path) != wide) Die("the round trip changed the file");
  }

  const struct {
    const char* what;
    const Samples& change;
    const Samples& plain;
  } rows[] = {{"255 -> 100 systems", down, plain_down}, {"100 -> 255 systems", up, plain_up}};
  std::printf("  %-20s %12s %12s %8s %12s %12s %8s\n", "", "change ms", "plain ms", "ratio",
              "change CPU", "plain CPU", "ratio");
  for (const auto& r : rows) {
    const double cw = Median(r.change.wall), pw = Median(r.plain.wall);
    const double cc = Median(r.change.cpu), pc = Median(r.plain.cpu);
    std::printf("  %-20s %12.1f %12.1f %8.2f %12.1f %12.1f %8.2f\n", r.what, cw, pw, cw / pw, cc,
                pc, cc / pc);
  }
  std::printf(
      "\n(change: survey, new file written and flushed, renamed over the old one;\n"
      " plain: the old file read, as many bytes as the new one written and flushed;\n"
      " aim: change / plain <= 2)\n");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::BenchMain(argc, argv, "bench_systems", Run);
}
