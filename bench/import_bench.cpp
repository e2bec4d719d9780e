// Import of large foreign configurations into empty data files: a FASTECHO.CFG of 20,000
// conferences and 500 nodes (each conference linked to 5 of them), and a SQUISH.CFG of 20,000
// EchoArea lines with 3 shortened addresses each. Each figure is the whole import: the file
// read, every area checked against the tags already there, the records and their index
// written. Both must stay under 1 s.
//
//   bench_import [runs]
//
// Every run starts from empty data files in a fresh directory under $TMPDIR (or /tmp); the
// median of `runs` runs (5 unless given) is reported, and each run must add every area.
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "../tests/transfer/import_samples.h"
#include "bench_util.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"
#include "transfer/import_add.h"

namespace {

using namespace ks;
using namespace bench;

constexpr int kAreas = 20000, kNodes = 500;
const NetAddr kMain{2, 280, 5555, 0};

std::string FastEchoCfg() {
  std::vector<NetAddr> nodes;
  for (int n = 0; n < kNodes; ++n)
    nodes.push_back(
        {2, static_cast<std::uint16_t>(200 + n / 100), static_cast<std::uint16_t>(n % 100 + 1), 0});
  std::vector<test::SampleArea> areas;
  for (int i = 0; i < kAreas; ++i) {
    test::SampleArea a{"FE.AREA." + std::to_string(i),
                       "Conference " + std::to_string(i),
                       "/msg/a" + std::to_string(i),
                       2,
                       {}};
    for (int k = 0; k < 5; ++k) a.links.push_back(nodes[(i * 7 + k * 101) % kNodes]);
    areas.push_back(std::move(a));
  }
  return test::FastEchoFile(nodes, areas);
}

std::string SquishCfg() {
  std::string text = "Address 2:280/5555\n";
  for (int i = 0; i < kAreas; ++i)
    text += "EchoArea SQ.AREA." + std::to_string(i) + " /msg/sq" + std::to_string(i) + " -$ " +
            std::to_string(300 + i % 50) + "/" + std::to_string(i % 200 + 1) + " " +
            std::to_string(i % 200 + 2) + " .1\n";
  return text;
}

double Import(const std::string& file, ImportList (*parse)(std::string_view, const NetAddr&),
              int runs) {
  Samples samples;
  for (int r = 0; r < runs; ++r) {
    TempDir dir;
    for (auto id : {RecordFileId::kMAreas, RecordFileId::kNodes}) {
      std::ofstream(DataFileName(dir.path().string(), FileDef(id).base));
      std::ofstream(IndexFileName(dir.path().string(), FileDef(id).base));
    }
    ImportTarget target;
    target.data_dir = dir.path().string();
    ImportResult result;
    samples.Measure([&] { result = AddImported(parse(file, kMain), target); });
    if (!result.error.empty() || result.areas != kAreas) Die("the import added too little");
  }
  return Median(samples.wall);
}

ImportList FastEcho(std::string_view b, const NetAddr&) {
  return ParseFastEcho146(b);
}

int Run(int runs) {
  const std::string fastecho = FastEchoCfg(), squish = SquishCfg();
  std::printf("import FASTECHO.CFG, %d areas, %d nodes: %.1f ms\n", kAreas, kNodes,
              Import(fastecho, FastEcho, runs));
  std::printf("import SQUISH.CFG, %d EchoArea lines: %.1f ms\n", kAreas,
              Import(squish, ParseSquishCfg, runs));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  return BenchMain(argc, argv, "bench_import", Run);
}
