// Export data on a large setup. Each of the four lists over 60,000 fileechos (200 systems
// each, stored out of tag order) is timed as the program makes it, built from FAREAS through
// its index and written through a temporary file, against the plain file operation (FAREAS.KSX
// read with 1 MiB read() calls, as many bytes as the list written to a new file and flushed).
// The cross check also reads one uplink tag file of 30,000 tags. Then the nodes to fileechos
// break down over 5,000 nodes and 20,000 fileechos of 20 systems each is timed on its own.
//
//   bench_export [runs]
//
// Everything happens in a fresh directory under $TMPDIR (or /tmp) that is removed at the end.
// Each measurement runs `runs` times (5 unless given) after a warm-up; medians are reported.
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bench_util.h"
#include "common/fileutil.h"
#include "common/recordext.h"
#include "dbase/fileecho_rec.h"
#include "dbase/maintain.h"
#include "dbase/node_rec.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"
#include "transfer/export_lists.h"

using namespace bench;
using namespace ks;

namespace {

constexpr int kFileechos = 60000;
constexpr int kBreakdownFileechos = 20000;
constexpr int kNodes = 5000;
constexpr int kSystemsPerFileecho = 20;

template <class T>
void Append(std::vector<std::uint8_t>& bytes, const T& rec, std::size_t size) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  bytes.insert(bytes.end(), p, p + size);
}

NetAddr NodeAddr(int n) {
  return {2, static_cast<std::uint16_t>(200 + n / 1000), static_cast<std::uint16_t>(1 + n % 1000),
          0};
}

// FAREAS with its index in `dir`: fileecho n sits at record n but is named after a scrambled
// number, so the index visits the data file out of order. Fileecho n is connected to `systems`
// nodes from node n on.
void WriteFileechos(const std::string& dir, int count, int systems) {
  const RecordFileDef& def = FileDef(RecordFileId::kFAreas);
  const std::size_t size = def.RecordSize(kDefaultSystemsPerArea);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(count) * size);
  auto rec = std::make_unique<FileMGRrec>();
  for (int n = 0; n < count; ++n) {
    *rec = FileMGRrec{};
    char tag[16];
    std::snprintf(tag, sizeof tag, "FE%06d", static_cast<int>((n * 7919LL) % count));
    rec->tag = tag;
    rec->description = std::string("Fileecho ") + tag + " for benchmarking the lists";
    rec->group = static_cast<std::uint8_t>(1 + n % 50);
    rec->destination = std::string("/srv/files/") + tag;
    for (int s = 0; s < systems; ++s) rec->systems[s].address = NodeAddr((n + s * 250) % kNodes);
    Append(bytes, *rec, size);
  }
  WriteWhole(DataFileName(dir, def.base), bytes);
  if (!BuildIndex(dir, def.base, size, def.keys)) Die("cannot index FAREAS");
}

void WriteNodes(const std::string& dir) {
  const RecordFileDef& def = FileDef(RecordFileId::kNodes);
  std::vector<std::uint8_t> bytes;
  for (int n = 0; n < kNodes; ++n) {
    NodeMGRrec node{};
    node.address = NodeAddr(n);
    node.sysop = "Sysop " + std::to_string(n);
    Append(bytes, node, sizeof node);
  }
  WriteWhole(DataFileName(dir, def.base), bytes);
  if (!BuildIndex(dir, def.base, sizeof(NodeMGRrec), def.keys)) Die("cannot index NODEFILE");
}

// The export as the program makes it: the list built, then written through a temporary file.
std::uint64_t Export(const std::string& out, const std::optional<std::string>& text) {
  if (!text) Die("the data files did not open");
  std::string error;
  if (!WriteFileAtomic(out, *text, &error)) Die(error);
  return text->size();
}

int Run(int runs) {
  record_extensions() = {"KSX", "IDX"};
  TempDir temp;
  const std::string dir = temp.path().string() + "/";
  const std::string big = dir + "big/", breakdown = dir + "breakdown/";
  MakeDirs(big);
  MakeDirs(breakdown);
  WriteFileechos(big, kFileechos, 2);
  WriteNodes(big);
  WriteFileechos(breakdown, kBreakdownFileechos, kSystemsPerFileecho);
  WriteNodes(breakdown);
  std::string tags;  // half the fileechos, the other half goes to the cross check's list
  for (int n = 0; n < kFileechos; n += 2) {
    char line[48];
    std::snprintf(line, sizeof line, "FE%06d Some description\n", n);
    tags += line;
  }

  auto cfg = std::make_unique<KESTRAcfg>();
  cfg->numberOfSystems = kDefaultSystemsPerArea;
  cfg->uplinks[0].areasFile = dir + "UPLINK.TAG";
  WriteFileAtomic(dir + "UPLINK.TAG", tags);
  TransferContext ctx;
  ctx.cfg = cfg.get();
  ctx.data_dir = ctx.current_dir = ctx.program_dir = big;
  ctx.version = "bench";
  GroupSet all;
  for (int g = 0; g < 256; ++g) all.Add(static_cast<std::uint8_t>(g));

  const std::string fareas = DataFileName(big, "FAREAS");
  std::printf("Export benchmark, in %s\n", dir.c_str());
  std::printf("FAREAS.KSX: %d fileechos, %.1f MB. Warm cache, median of %d runs.\n\n", kFileechos,
              static_cast<double>(*FileSize(fareas)) / 1e6, runs);
  std::printf("%-26s %10s %10s %10s %8s\n", "list", "bytes", "export ms", "plain ms", "ratio");

  const struct {
    const char* name;
    std::function<std::optional<std::string>()> build;
  } lists[] = {
      {"fileecho list", [&] { return FileechoListText(ctx, all, true); }},
      {"tag list", [&] { return FileechoListText(ctx, all, false); }},
      {"cross check", [&] { return CrossCheckText(ctx); }},
      {"destination directories", [&] { return DestDirsText(ctx); }},
  };
  const std::string out = dir + "OUT.TXT";
  double worst = 0;
  for (const auto& list : lists) {
    Samples exported, plain;
    std::uint64_t bytes = Export(out, list.build());  // warm-up
    for (int i = 0; i < runs; ++i) {
      exported.Measure([&] { bytes = Export(out, list.build()); });
      plain.Measure([&] { PlainCopy(fareas, bytes); });
    }
    const double e = Median(exported.wall), p = Median(plain.wall);
    worst = std::max(worst, e / p);
    std::printf("%-26s %10llu %10.1f %10.1f %7.2fx\n", list.name,
                static_cast<unsigned long long>(bytes), e, p, e / p);
  }
  std::printf("Slowest export against its plain read and write: %.2fx (target: at most 2x)\n\n",
              worst);

  ctx.data_dir = breakdown;
  Samples split;
  std::uint64_t bytes = Export(out, NodeBreakdownText(ctx));  // warm-up
  for (int i = 0; i < runs; ++i)
    split.Measure([&] { bytes = Export(out, NodeBreakdownText(ctx)); });
  const double ms = Median(split.wall);
  std::printf("Nodes -> fileechos break down: %d nodes x %d fileechos (%d systems each),\n", kNodes,
              kBreakdownFileechos, kSystemsPerFileecho);
  std::printf("  %llu bytes in %.1f ms wall, %.1f ms CPU (target: under 2000 ms)\n",
              static_cast<unsigned long long>(bytes), ms, Median(split.cpu));
  return worst <= 2 && ms < 2000 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  return BenchMain(argc, argv, "bench_export", Run);
}
