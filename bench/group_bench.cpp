// A group renumbered and a group deleted across a large setup, each against the plain file
// operation on the files it touches (each file read with 1 MiB read() calls, written whole to
// a new file and flushed).
//
//   bench_groups [runs]
//
// The setup: 20,000 fileechos of 200 systems in four groups (5,000 each), 5,000 nodes and 500
// reports that all hold group 1 among others, 1,000 hatch entries and 1,000 magic file names
// (half of each naming a fileecho of group 1). Renumbering moves group 1 to 60 and back, as
// the group manager does it: the files patched, then the indexes of FAREAS and REPORTS
// rebuilt. Deleting removes group 1's fileechos with their hatch and magic entries and
// rebuilds the three indexes; the files are put back between runs (not timed). The first
// round is a warm-up; each measurement is repeated `runs` times (5 unless given), the median
// is reported.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench_util.h"
#include "common/recordext.h"
#include "dbase/group_ops.h"
#include "dbase/list_recs.h"
#include "dbase/maintain.h"
#include "dbase/node_rec.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"

namespace {

using namespace ks;
using namespace bench;

constexpr int kFileechoCount = 20000, kNodeCount = 5000, kReportCount = 500, kEntryCount = 1000;
constexpr std::size_t kSystems = kDefaultSystemsPerArea;

template <class Rec>
void Append(std::vector<std::uint8_t>& bytes, const Rec& rec, std::size_t size = sizeof(Rec)) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  bytes.insert(bytes.end(), p, p + size);
}

std::string Tag(int n) {
  return "FE" + std::to_string(n);
}

// The data files of the setup, by record file.
std::vector<std::pair<RecordFileId, std::vector<std::uint8_t>>> Setup() {
  std::vector<std::uint8_t> fareas, nodes, reports, hatch, magic;
  for (int n = 0; n < kFileechoCount; ++n) {
    FileMGRrec rec;
    rec.tag = Tag(n);
    rec.description = "Fileecho number " + std::to_string(n);
    rec.group = static_cast<std::uint8_t>(1 + n % 4);
    for (int s = 0; s < 20; ++s)
      rec.systems[s].address = {2, static_cast<std::uint16_t>(n), static_cast<std::uint16_t>(s), 0};
    Append(fareas, rec, FileechoRecordSize(kSystems));
  }
  for (int n = 0; n < kNodeCount; ++n) {
    NodeMGRrec rec;
    rec.address = {2, static_cast<std::uint16_t>(n / 100), static_cast<std::uint16_t>(n % 100), 0};
    rec.groups.Add(1);
    rec.groups.Add(static_cast<std::uint8_t>(2 + n % 3));
    Append(nodes, rec);
  }
  for (int n = 0; n < kReportCount; ++n) {
    NewFileMgrRec rec;
    rec.groups.Add(1);
    rec.groups.Add(static_cast<std::uint8_t>(n % 200));
    Append(reports, rec);
  }
  for (int n = 0; n < kEntryCount; ++n) {
    HatchMGRrec h;
    h.area = Tag(n * 2);  // even numbers: half of them in group 1
    h.fileSpec = "file" + std::to_string(n);
    Append(hatch, h);
    MagicFileMgrRec m;
    m.type = mtAdoptFile;
    m.mask = "M" + std::to_string(n);
    m.fromArea = Tag(n * 2 + 1);
    m.toArea = Tag(n * 2);
    Append(magic, m);
  }
  using enum RecordFileId;
  return {
      {kFAreas, fareas}, {kNodes, nodes}, {kReports, reports}, {kHatch, hatch}, {kMagic, magic}};
}

void Rebuild(const std::string& dir, std::initializer_list<RecordFileId> files) {
  for (const RecordFileId id : files) {
    const RecordFileDef& def = FileDef(id);
    if (!BuildIndex(dir, def.base, def.RecordSize(kSystems), def.keys))
      Die(std::string("cannot index ") + def.base);
  }
}

int Run(int runs) {
  record_extensions() = {"KSX", "IDX"};
  TempDir temp;
  const std::string dir = temp.path().string() + "/";
  const auto files = Setup();
  const auto install = [&] {
    for (const auto& [id, bytes] : files) {
      WriteWhole(DataFileName(dir, FileDef(id).base), bytes);
      Rebuild(dir, {id});
    }
  };
  install();
  const auto plain = [&](std::initializer_list<RecordFileId> ids) {
    for (const RecordFileId id : ids) {
      const std::string path = DataFileName(dir, FileDef(id).base);
      PlainCopy(path, ReadWhole(path).size());
    }
  };
  using enum RecordFileId;
  std::printf("Group benchmark, in %s\n", temp.path().c_str());
  std::printf("%d fileechos (%.1f MB), %d nodes, %d reports, %d hatch and %d magic entries.\n",
              kFileechoCount, files[0].second.size() / 1e6, kNodeCount, kReportCount, kEntryCount,
              kEntryCount);
  std::printf("Warm cache (one warm-up round first), median of %d runs.\n\n", runs);

  Samples renumber, plain_renumber, remove, plain_remove, warm_up;
  for (int i = 0; i <= runs; ++i) {  // run 0 is the warm-up
    Samples& r = i == 0 ? warm_up : renumber;
    ::sync();
    (i == 0 ? warm_up : plain_renumber).Measure([&] { plain({kFAreas, kNodes, kReports}); });
    ::sync();
    for (const auto& [from, to] : {std::pair{1, 60}, std::pair{60, 1}}) {
      r.Measure([&] {
        const RenumberCount n = RenumberGroupInFiles(dir, kSystems, static_cast<std::uint8_t>(from),
                                                     static_cast<std::uint8_t>(to));
        if (n.total() != kFileechoCount / 4 + kNodeCount + kReportCount)
          Die("renumbered the wrong places");
        Rebuild(dir, {kFAreas, kReports});
      });
      ::sync();
    }
    (i == 0 ? warm_up : plain_remove).Measure([&] { plain({kFAreas, kHatch, kMagic}); });
    ::sync();
    (i == 0 ? warm_up : remove).Measure([&] {
      const GroupRemoval n = DeleteGroupFromFiles(dir, kSystems, 1);
      if (n.fileechos != kFileechoCount / 4 || n.hatch != kEntryCount / 2 ||
          n.magic != kEntryCount / 2)
        Die("removed the wrong entries");
      Rebuild(dir, {kFAreas, kMagic, kHatch});
    });
    install();
  }

  const struct {
    const char* what;
    const Samples& op;
    const Samples& plain;
    const char* aim;
  } rows[] = {{"renumber a group", renumber, plain_renumber, "2"},
              {"delete a group", remove, plain_remove, "3"}};
  std::printf("  %-18s %10s %10s %7s %10s %10s %7s %5s\n", "", "op ms", "plain ms", "ratio",
              "op CPU", "plain CPU", "ratio", "aim");
  for (const auto& r : rows) {
    const double ow = Median(r.op.wall), pw = Median(r.plain.wall);
    const double oc = Median(r.op.cpu), pc = Median(r.plain.cpu);
    std::printf("  %-18s %10.1f %10.1f %7.2f %10.1f %10.1f %7.2f %5s\n", r.what, ow, pw, ow / pw,
                oc, pc, oc / pc, r.aim);
  }
  std::printf(
      "\n(renumber: FAREAS, REPORTS and NODEFILE patched, FAREAS and REPORTS indexes rebuilt;\n"
      " plain: those three data files read and written whole, flushed;\n"
      " delete: FAREAS, HATCH and MGICFILE patched and their indexes rebuilt;\n"
      " plain: those three data files read and written whole, flushed)\n");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::BenchMain(argc, argv, "bench_groups", Run);
}
