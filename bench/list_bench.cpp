// Entry list editor benchmark: the echomail manager on a list of 60,000 areas, driven through
// the virtual terminal the way a user presses keys. It times opening the list, paging through
// the browse list, and one insert (a copy with a new tag), one edit (a changed tag, which moves
// the entry) and one delete, and counts the bytes read while browsing: paging must never read
// the whole data file (the bytes the open itself reads, the index, are counted apart).
//
//   bench_list [runs]
//
// Each measurement runs `runs` times (5 unless given) after a warm-up; medians are reported.
// The open time is subtracted from the browse, insert, edit and delete figures.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "bench_util.h"
#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/fileecho_rec.h"
#include "dbase/maintain.h"
#include "dbase/recfiles.h"
#include "editors/lists.h"
#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

using namespace bench;
using namespace ks;

namespace {

constexpr int kAreas = 60000;
constexpr std::size_t kSystems = kDefaultSystemsPerArea;
constexpr int kPages = 50;

std::string Tag(int i) {
  char tag[24];
  std::snprintf(tag, sizeof tag, "AREA.%05d", i);
  return tag;
}

// 60,000 echomail areas written in one go, then indexed the way the Index command does it.
void MakeList(const std::string& dir) {
  const std::size_t size = EchoRecordSize(kSystems);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kAreas * size);
  EchoMGRrec r{};
  r.area.type = mbJam;
  for (int i = 0; i < kAreas; ++i) {
    r.tag = Tag(i);
    r.description = "Benchmark area " + std::to_string(i);
    r.group = static_cast<std::uint8_t>(1 + i % 20);
    r.area.path = "/var/spool/msgbase/" + Tag(i);
    const auto* p = reinterpret_cast<const std::uint8_t*>(&r);
    bytes.insert(bytes.end(), p, p + size);
  }
  WriteWhole(DataFileName(dir, "MAREAS"), bytes);
  BuildIndex(dir, "MAREAS", size, FileDef(RecordFileId::kMAreas).keys);
}

// Bytes this process has read through read(2)/pread(2) so far.
std::uint64_t BytesRead() {
  std::ifstream io("/proc/self/io");
  std::string name;
  std::uint64_t value = 0;
  while (io >> name >> value)
    if (name == "rchar:") return value;
  return 0;
}

}  // namespace

int main(int argc, char** argv) try {
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  record_extensions() = {"KSX", "IDX"};
  TempDir tmp;
  const std::string dir = tmp.path().string() + "/";
  VirtualTerminal vt(80, 25);
  Screen screen(vt);
  UiScope scope(screen);
  MakeList(dir);
  ListContext ctx;
  ctx.data_dir = ctx.work_dir = dir;
  ctx.addresses = {NetAddr{2, 280, 5555, 0}};
  ctx.systems_per_area = kSystems;

  const auto run = [&](const std::string& keys) {
    vt.Keys(keys);
    RunEchomailManager(ctx);
  };
  std::string pages = "<F5>";
  for (int i = 0; i < kPages; ++i) pages += "<PgDn>";
  pages += "<Esc><Esc>";

  std::vector<double> open_ms, browse_ms, insert_ms, edit_ms, delete_ms;
  std::uint64_t open_bytes = 0, browse_bytes = 0;
  for (int i = 0; i <= runs; ++i) {
    const bool warm_up = i == 0;
    std::uint64_t before = BytesRead();
    const double open = TimeMs([&] { run("<Esc>"); });
    open_bytes = BytesRead() - before;
    before = BytesRead();
    const double browse = TimeMs([&] { run(pages); }) - open;
    browse_bytes = BytesRead() - before - open_bytes;
    // F6 copies the first area; typing replaces its tag. The new tag sorts last.
    const double insert =
        TimeMs([&] { run("<F6>ZZ.NEW." + std::to_string(i) + "<Esc><Enter><Esc>"); });
    // Enter edits the first area; its tag changes so that the entry moves to the end.
    const double edit =
        TimeMs([&] { run("<Enter>ZZ.MOVED." + std::to_string(i) + "<Esc><Enter><Esc>"); });
    const double del = TimeMs([&] { run("<Del><Tab><Enter><Esc>"); });
    if (warm_up) continue;
    open_ms.push_back(open);
    browse_ms.push_back(browse);
    insert_ms.push_back(insert - open);
    edit_ms.push_back(edit - open);
    delete_ms.push_back(del - open);
  }
  ksDataBase db("MAREAS", EchoRecordSize(kSystems), FileDef(RecordFileId::kMAreas).keys);
  if (db.Open(dir) != ksDataBase::OpenResult::kOk) Die("MAREAS does not open after the runs");
  // Every run added one area and deleted one.
  if (db.count() != kAreas) Die("wrong number of entries after the runs");
  const double data_mb = static_cast<double>(kAreas) * EchoRecordSize(kSystems) / 1e6;
  std::printf("Echomail manager, %d areas of %zu bytes (%.0f MB data file), median of %d\n", kAreas,
              EchoRecordSize(kSystems), data_mb, runs);
  std::printf("  open the list and leave            %8.2f ms\n", Median(open_ms));
  std::printf("  browse: F5 and %d pages down       %8.2f ms\n", kPages, Median(browse_ms));
  std::printf("  bytes read by the open (the index)  %8.1f kB\n",
              static_cast<double>(open_bytes) / 1e3);
  std::printf("  bytes read while browsing          %8.1f kB (%.3f%% of the data file)\n",
              static_cast<double>(browse_bytes) / 1e3,
              100.0 * static_cast<double>(browse_bytes) / (data_mb * 1e6));
  std::printf("  insert (F6 copy, new tag)          %8.2f ms\n", Median(insert_ms));
  std::printf("  edit (tag changed, entry moves)    %8.2f ms\n", Median(edit_ms));
  std::printf("  delete                             %8.2f ms\n", Median(delete_ms));
  return 0;
} catch (const ProgramHalt& h) {
  return h.status;
}
