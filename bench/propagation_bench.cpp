// Node propagation and global edit benchmark on a setup of 20,000 fileechos (200 systems
// each, a few connected, the node in every other one) and small magic, report, group and
// echomail files. Times ReplaceNode (the node to a new address) and RemoveNode (the new
// address taken out again) on fresh copies of the files, and checks the number of places each
// reports. Then times the fileecho manager's global edit of one switch ("Announce", asked
// through its real menu) applied to all 20,000 fileechos the way the list editor applies it:
// read, change, write back and keep the index entry in order, record by record.
//
//   bench_propagation [runs]
//
// Each measurement runs `runs` times (5 unless given) after a warm-up; medians are reported.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench_util.h"
#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "dbase/maintain.h"
#include "dbase/manager.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"
#include "editors/fileecho_parts.h"
#include "editors/node_propagation.h"
#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

using namespace bench;
using namespace ks;

namespace {

constexpr int kFileechos = 20000;
constexpr int kSystems = static_cast<int>(kDefaultSystemsPerArea);
constexpr int kSmall = 100;  // records of each of the other four files
constexpr NetAddr kNode{2, 280, 10, 0};
constexpr NetAddr kNew{2, 280, 99, 0};

NetAddr Other(int i) {
  return {2, 281, static_cast<std::uint16_t>(1 + i % 500), 0};
}

template <class T>
void Append(std::vector<std::uint8_t>& bytes, const T& rec, std::size_t size = sizeof(T)) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
  bytes.insert(bytes.end(), p, p + size);
}

// The files as they are before every run, keyed by file name. The node is in every other
// record of every file: the places a run must report are half the records of each.
struct Originals {
  std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files;
  int places = 0;
};

Originals MakeOriginals(const std::string& dir) {
  Originals o;
  std::vector<std::uint8_t> fareas, magic, reports, groups, mareas;
  {
    FileMGRrec r{};
    for (int i = 0; i < kFileechos; ++i) {
      char tag[24];
      std::snprintf(tag, sizeof tag, "FILE.%05d", i);
      r.tag = tag;
      r.group = static_cast<std::uint8_t>(1 + i % 20);
      for (auto& s : r.systems) s = {};
      const bool has = i % 2 == 0;
      // Four systems; the node, when listed, second.
      r.systems[0] = {Other(i), kSysSendFiles};
      r.systems[1] = {has ? kNode : Other(i + 1), kSysSendFiles | kSysReceiveFiles};
      r.systems[2] = {Other(i + 2), 0};
      r.systems[3] = {Other(i + 3), kSysPause};
      Append(fareas, r, FileDef(RecordFileId::kFAreas).RecordSize(kSystems));
      o.places += has ? 1 : 0;
    }
  }
  for (int i = 0; i < kSmall; ++i) {
    const bool has = i % 2 == 0;
    MagicFileMgrRec m{};
    m.mask = "*.Z" + std::to_string(i);
    m.exports[0] = Other(i);
    if (has) m.exports[1] = kNode;
    Append(magic, m);
    NewFileMgrRec n{};
    n.groups.Add(static_cast<std::uint8_t>(i));
    if (has) n.exports[0] = kNode;
    Append(reports, n);
    GrpFileMgrRec g{};
    g.fileecho.group = static_cast<std::uint8_t>(i);
    g.name = "Group " + std::to_string(i);
    if (has) g.fileecho.systems[0] = {kNode, kSysSendFiles};
    Append(groups, g);
    EchoMGRrec e{};
    e.tag = "ECHO." + std::to_string(i);
    e.systems[0] = {Other(i), 0};
    if (has) e.systems[1] = {kNode, 0};
    Append(mareas, e, FileDef(RecordFileId::kMAreas).RecordSize(kSystems));
    o.places += has ? 4 : 0;
  }
  o.files = {{DataFileName(dir, "FAREAS"), std::move(fareas)},
             {DataFileName(dir, "MGICFILE"), std::move(magic)},
             {DataFileName(dir, "REPORTS"), std::move(reports)},
             {DataFileName(dir, "GRPFILE"), std::move(groups)},
             {DataFileName(dir, "MAREAS"), std::move(mareas)}};
  return o;
}

void Restore(const Originals& o) {
  for (const auto& [path, bytes] : o.files) WriteWhole(path, bytes);
}

void Check(const char* what, int got, int want) {
  if (got != want)
    Die(std::string(what) + ": " + std::to_string(got) + " places, expected " +
        std::to_string(want));
}

// The global edit of "Announce" to `on` over every fileecho; returns the records changed.
int GlobalAnnounce(const std::string& dir, VirtualTerminal& vt, bool on, Samples& samples) {
  ListContext ctx;
  ctx.data_dir = ctx.work_dir = dir;
  ctx.systems_per_area = kSystems;
  const std::size_t size = FileDef(RecordFileId::kFAreas).RecordSize(kSystems);
  ManagerOBJ mgr(dir, "FAREAS", size, 4, 4, 77, 21, "Fileecho manager");
  fileecho::AddFileechoGlobalEdit(mgr, ctx);
  // "Announce" is the seventh item of the menu; "Toggle option to" offers Yes first.
  vt.Keys(std::string("<Down><Down><Down><Down><Down><Down><Enter>") +
          (on ? "<Enter>" : "<Tab><Enter>"));
  if (!mgr.global_ok()) Die("the global edit menu was not answered");
  ksDataBase db("FAREAS", size, FileDef(RecordFileId::kFAreas).keys);
  if (db.Open(dir) != ksDataBase::OpenResult::kOk) Die("FAREAS does not open");
  int changed = 0;
  std::vector<std::uint8_t> rec(size);
  samples.Measure([&] {
    for (int pos = 0; pos < db.count(); ++pos) {
      if (!db.ReadRecord(pos, rec.data()) || !mgr.global_edit(rec.data())) continue;
      if (db.Rewrite(pos, rec.data())) ++changed;
    }
  });
  return changed;
}

}  // namespace

int main(int argc, char** argv) try {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  record_extensions() = {"KSX", "IDX"};
  TempDir tmp;
  const std::string dir = tmp.path().string() + "/";
  const Originals originals = MakeOriginals(dir);
  const std::size_t fareas_bytes = originals.files[0].second.size();

  Samples replace, remove, warm;
  for (int run = 0; run <= runs; ++run) {  // run 0 warms the page cache and is not counted
    Restore(originals);
    Samples& r = run == 0 ? warm : replace;
    Samples& d = run == 0 ? warm : remove;
    int replaced = 0, removed = 0;
    r.Measure([&] { replaced = ReplaceNode(dir, kSystems, kNode, kNew); });
    d.Measure([&] { removed = RemoveNode(dir, kSystems, kNew); });
    Check("ReplaceNode", replaced, originals.places);
    Check("RemoveNode", removed, originals.places);
  }
  std::printf("FAREAS: %d fileechos x %d systems (%.1f MB); 4 files of %d records; %d places\n",
              kFileechos, kSystems, static_cast<double>(fareas_bytes) / 1e6, kSmall,
              originals.places);
  std::printf("%-12s %10s %10s   (median of %d, ms)\n", "", "wall", "cpu", runs);
  std::printf("%-12s %10.1f %10.1f\n", "ReplaceNode", Median(replace.wall), Median(replace.cpu));
  std::printf("%-12s %10.1f %10.1f\n", "RemoveNode", Median(remove.wall), Median(remove.cpu));

  // The global edit: the original files, indexed, then "Announce" on and off in turn.
  VirtualTerminal vt(80, 25);
  Screen screen(vt);
  UiScope scope(screen);
  Restore(originals);
  BuildIndex(dir, "FAREAS", FileDef(RecordFileId::kFAreas).RecordSize(kSystems),
             FileDef(RecordFileId::kFAreas).keys);
  Samples global, warm_global;
  for (int run = 0; run <= runs; ++run) {
    const int changed = GlobalAnnounce(dir, vt, run % 2 == 0, run == 0 ? warm_global : global);
    if (changed != kFileechos)
      Die("global edit changed " + std::to_string(changed) + " fileechos, expected all");
  }
  std::printf("%-12s %10.1f %10.1f   (\"Announce\" on all %d fileechos)\n", "Global edit",
              Median(global.wall), Median(global.cpu), kFileechos);
  return 0;
} catch (const ProgramHalt& h) {
  return h.status;
}
