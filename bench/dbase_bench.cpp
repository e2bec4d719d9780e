// Record database benchmark: the Index and Pack commands on a large configuration, each against
// the plain file operation on the same data files (a sequential read, a copy), and the cost of
// single inserts, opens and lookups on a fileecho list of 20,000 entries.
//
//   bench_dbase [runs]
//
// Everything happens in a fresh directory under $TMPDIR (or /tmp) that is removed at the end.
// A warm-up pass of every measurement comes first, so all figures are warm-cache figures; each
// measurement is repeated `runs` times (5 unless given) and the median is reported. The files
// each command leaves behind are checked against what it must produce; a wrong result ends the
// benchmark with status 1.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "bench_util.h"
#include "common/halt.h"
#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "dbase/maintain.h"
#include "dbase/node_rec.h"
#include "dbase/recfiles.h"
#include "dbase/recordfile.h"
#include "shell/maintenance.h"

namespace {

using namespace ks;

constexpr std::size_t kSystems = kDefaultSystemsPerArea;  // "Number of systems"
constexpr int kFileechos = 20000;
constexpr int kEchoAreas = 1000;
constexpr int kGroups = 50;
constexpr int kMagicNames = 5000;
constexpr int kHatchEntries = 5000;
constexpr int kNodes = 2000;
constexpr int kInserts = 1000;
constexpr int kLookups = 1000;
constexpr std::size_t kChunk = 1 << 20;

using namespace bench;

// Records of one file filled in memory, written to its data file in one write.
class DataImage {
 public:
  DataImage(RecordFileId id, std::size_t count)
      : def_(FileDef(id)), size_(def_.RecordSize(kSystems)) {
    bytes_.reserve(count * size_);
  }
  template <class Rec>
  void Add(const Rec& rec) {
    static_assert(sizeof(Rec) <= kMaxRecordSize);
    const auto* p = reinterpret_cast<const std::uint8_t*>(&rec);
    bytes_.insert(bytes_.end(), p, p + std::min(size_, sizeof(Rec)));
    bytes_.resize(bytes_.size() + (size_ > sizeof(Rec) ? size_ - sizeof(Rec) : 0));
  }
  void Store(const std::string& dir) const {
    WriteWhole(DataFileName(dir, def_.base), bytes_);
    if (!BuildIndex(dir, def_.base, size_, def_.keys))
      Die(std::string("cannot index ") + def_.base);
  }

 private:
  const RecordFileDef& def_;
  std::size_t size_;
  std::vector<std::uint8_t> bytes_;
};

NetAddr NodeAddr(int i) {
  return NetAddr{2, static_cast<std::uint16_t>(200 + i / 100),
                 static_cast<std::uint16_t>(1 + i % 100), 0};
}

// The fileecho list alone: tags FE<n> in a shuffled order, groups 1..kGroups, 1-6 systems each.
void WriteFileechos(const std::string& dir, std::mt19937& rng) {
  std::vector<int> order(kFileechos);
  for (int i = 0; i < kFileechos; ++i) order[static_cast<std::size_t>(i)] = i;
  std::shuffle(order.begin(), order.end(), rng);
  DataImage image(RecordFileId::kFAreas, kFileechos);
  for (int n : order) {
    FileMGRrec rec;
    rec.tag = "FE" + std::to_string(n);
    rec.description = "Fileecho number " + std::to_string(n);
    rec.group = static_cast<std::uint8_t>(1 + rng() % kGroups);
    rec.destination = "/srv/files/fe" + std::to_string(n);
    rec.options = kFeAnnounce | kFeDupeCheck | kFeVisible;
    const int linked = 1 + static_cast<int>(rng() % 6);
    for (int s = 0; s < linked; ++s) {
      rec.systems[s].address = NodeAddr(static_cast<int>(rng() % kNodes));
      rec.systems[s].flags = kSysSendFiles | kSysReceiveFiles;
    }
    image.Add(rec);
  }
  image.Store(dir);
}

void WriteConfiguration(const std::string& dir, std::mt19937& rng) {
  WriteFileechos(dir, rng);

  DataImage echo(RecordFileId::kMAreas, kEchoAreas);
  for (int i = 0; i < kEchoAreas; ++i) {
    EchoMGRrec rec;
    rec.tag = "ECHO." + std::to_string((i * 7919) % kEchoAreas);
    rec.description = "Echomail area " + std::to_string(i);
    rec.group = static_cast<std::uint8_t>(1 + rng() % kGroups);
    rec.area.type = mbJam;
    rec.area.path = "/srv/msg/echo" + std::to_string(i);
    for (int s = 0; s < 1 + i % 4; ++s)
      rec.systems[s].address = NodeAddr(static_cast<int>(rng() % kNodes));
    echo.Add(rec);
  }
  echo.Store(dir);

  DataImage groups(RecordFileId::kGroups, kGroups);
  for (int g = 1; g <= kGroups; ++g) {
    GrpFileMgrRec rec;
    rec.fileecho.group = static_cast<std::uint8_t>(g);
    rec.fileecho.tag = "G" + std::to_string(g) + "*";
    rec.name = "Group " + std::to_string(g);
    groups.Add(rec);
  }
  groups.Store(dir);

  DataImage magic(RecordFileId::kMagic, kMagicNames);
  for (int i = 0; i < kMagicNames; ++i) {
    MagicFileMgrRec rec;
    rec.type = static_cast<std::uint8_t>(1 + rng() % mtSendOnFreq);
    rec.mask = "M" + std::to_string((i * 3001) % kMagicNames) + ".*";
    rec.fromArea = "FE" + std::to_string(rng() % kFileechos);
    rec.directory = "/srv/magic";
    magic.Add(rec);
  }
  magic.Store(dir);

  DataImage hatch(RecordFileId::kHatch, kHatchEntries);
  for (int i = 0; i < kHatchEntries; ++i) {
    HatchMGRrec rec;
    rec.area = "FE" + std::to_string(rng() % kFileechos);
    rec.fileSpec = "/srv/out/h" + std::to_string(i) + ".zip";
    rec.description = "Hatched file " + std::to_string(i);
    rec.days = kAllDays;
    hatch.Add(rec);
  }
  hatch.Store(dir);

  std::vector<int> nodes(kNodes);
  for (int i = 0; i < kNodes; ++i) nodes[static_cast<std::size_t>(i)] = i;
  std::shuffle(nodes.begin(), nodes.end(), rng);
  DataImage node(RecordFileId::kNodes, kNodes);
  for (int i : nodes) {
    NodeMGRrec rec;
    rec.address = NodeAddr(i);
    rec.sysop = "Sysop " + std::to_string(i);
    rec.ticPassword = "PW" + std::to_string(i);
    for (int g = 1; g <= kGroups; g += 3) rec.groups.Add(static_cast<std::uint8_t>(g));
    node.Add(rec);
  }
  node.Store(dir);
}

// The pairs the configuration holds, by file.
std::vector<const RecordFileDef*> PresentFiles(const std::string& dir) {
  std::vector<const RecordFileDef*> present;
  for (const auto& def : RecordFileDefs())
    if (fs::exists(DataFileName(dir, def.base))) present.push_back(&def);
  return present;
}

std::uint64_t DataBytes(const std::string& dir) {
  std::uint64_t total = 0;
  for (const auto* def : PresentFiles(dir)) total += fs::file_size(DataFileName(dir, def->base));
  return total;
}

// The plain sequential read: every data file in 1 MiB read() calls, one word of every cache
// line added up.
std::uint64_t ReadAllData(const std::string& dir) {
  static std::vector<std::uint8_t> buf(kChunk);
  std::uint64_t sum = 0;
  for (const auto* def : PresentFiles(dir)) {
    const int fd = ::open(DataFileName(dir, def->base).c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) Die("cannot open a data file");
    ssize_t r;
    while ((r = ::read(fd, buf.data(), buf.size())) > 0) {
      for (ssize_t i = 0; i + 8 <= r; i += 64) {
        std::uint64_t w;
        std::memcpy(&w, &buf[static_cast<std::size_t>(i)], sizeof w);
        sum += w;
      }
    }
    ::close(fd);
  }
  return sum;
}

// The plain copy: every data file read in 1 MiB chunks, written to a new file and made durable
// with fsync, as the pack does with its new data file. The copies are removed afterwards.
void CopyAllData(const std::string& dir) {
  static std::vector<std::uint8_t> buf(kChunk);
  for (const auto* def : PresentFiles(dir)) {
    const std::string from = DataFileName(dir, def->base);
    const std::string to = from + ".copy";
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (in < 0 || out < 0) Die("cannot copy " + from);
    ssize_t r;
    while ((r = ::read(in, buf.data(), buf.size())) > 0)
      if (::write(out, buf.data(), static_cast<std::size_t>(r)) != r) Die("cannot write " + to);
    if (::fsync(out) != 0) Die("fsync failed on " + to);
    ::close(in);
    ::close(out);
  }
}

void RemoveCopies(const std::string& dir) {
  for (const auto* def : PresentFiles(dir))
    ::unlink((DataFileName(dir, def->base) + ".copy").c_str());
}

// Replaces the files of `to` by those of `from`, with everything on disk before the next
// measurement starts.
void Restore(const fs::path& from, const fs::path& to) {
  fs::remove_all(to);
  fs::create_directory(to);
  for (const auto& e : fs::directory_iterator(from))
    fs::copy_file(e.path(), to / e.path().filename());
  ::sync();
}

// Every index file of the directory, by base name.
std::vector<std::vector<std::uint8_t>> IndexFiles(const std::string& dir) {
  std::vector<std::vector<std::uint8_t>> all;
  for (const auto& def : RecordFileDefs()) all.push_back(ReadWhole(IndexFileName(dir, def.base)));
  return all;
}

// What a pack of `dir` must leave: each data file holding the records its index refers to, in
// index order.
std::vector<std::vector<std::uint8_t>> PackedImages(const std::string& dir) {
  std::vector<std::vector<std::uint8_t>> all;
  for (const auto& def : RecordFileDefs()) {
    const std::size_t size = def.RecordSize(kSystems), k = def.keys.length(),
                      e = def.keys.entry_size();
    const auto data = ReadWhole(DataFileName(dir, def.base));
    const auto index = ReadWhole(IndexFileName(dir, def.base));
    std::vector<std::uint8_t> packed;
    for (std::size_t at = 0; at + e <= index.size(); at += e) {
      const std::size_t rec = std::size_t{EntryRecNo(&index[at], k)} * size;
      packed.insert(packed.end(), data.begin() + static_cast<std::ptrdiff_t>(rec),
                    data.begin() + static_cast<std::ptrdiff_t>(rec + size));
    }
    all.push_back(std::move(packed));
  }
  return all;
}

std::vector<std::vector<std::uint8_t>> DataFiles(const std::string& dir) {
  std::vector<std::vector<std::uint8_t>> all;
  for (const auto& def : RecordFileDefs()) all.push_back(ReadWhole(DataFileName(dir, def.base)));
  return all;
}

void RunIndex(const std::string& dir) {
  if (RunMaintenance(dir, true, kSystems, 0) != 6) Die("the Index command skipped a file");
}

void RunPack(const std::string& dir) {
  if (RunMaintenance(dir, false, kSystems, 0) != 6) Die("the Pack command skipped a file");
}

// Removes about a tenth of the entries of every file through the list editor's database.
int RemoveTenth(const std::string& dir, std::mt19937& rng) {
  int removed = 0;
  for (const auto& def : RecordFileDefs()) {
    if (!fs::exists(DataFileName(dir, def.base))) continue;
    ksDataBase db(def.base, def.RecordSize(kSystems), def.keys);
    if (db.Open(dir) != ksDataBase::OpenResult::kOk) Die(std::string("cannot open ") + def.base);
    for (int n = db.count() / 10; n > 0; --n, ++removed)
      if (!db.Remove(static_cast<int>(rng() % static_cast<unsigned>(db.count()))))
        Die(std::string("cannot remove from ") + def.base);
  }
  return removed;
}

std::string RandomTag(std::mt19937& rng) {
  std::string tag = "R";
  for (int i = 0; i < 9; ++i) tag += static_cast<char>('A' + rng() % 26);
  return tag;
}

struct Row {
  std::string what;
  double value;
  const char* unit;
};

void PrintTable(const std::vector<Row>& rows) {
  std::size_t width = 0;
  for (const auto& r : rows) width = std::max(width, r.what.size());
  for (const auto& r : rows)
    std::printf("  %-*s %10.2f %s\n", static_cast<int>(width), r.what.c_str(), r.value, r.unit);
}

struct TimedRow {
  std::string what;
  const Samples* samples;
};

void PrintTimedTable(const std::vector<TimedRow>& rows) {
  std::size_t width = 0;
  for (const auto& r : rows) width = std::max(width, r.what.size());
  std::printf("  %-*s %10s %10s\n", static_cast<int>(width), "", "wall ms", "CPU ms");
  for (const auto& r : rows)
    std::printf("  %-*s %10.2f %10.2f\n", static_cast<int>(width), r.what.c_str(),
                Median(r.samples->wall), Median(r.samples->cpu));
}

volatile std::uint64_t read_sink;  // keeps the sums of the plain reads alive

int Run(int runs) {
  record_extensions() = {"KSX", "IDX"};
  TempDir temp;
  const fs::path work = temp.path() / "work", master = temp.path() / "master",
                 list = temp.path() / "list";
  for (const auto& d : {work, master, list}) fs::create_directory(d);
  const std::string dir = work.string();
  std::mt19937 rng(20240611);

  double setup_ms = TimeMs([&] { WriteConfiguration(dir, rng); });
  const std::uint64_t bytes = DataBytes(dir);
  const auto built_indexes = IndexFiles(dir);
  std::printf("Record database benchmark, in %s\n", temp.path().c_str());
  std::printf(
      "Configuration: %d fileechos, %d echomail areas, %d groups, %d magic names, %d hatch "
      "entries,\n"
      "%d nodes; %.1f MB of data files, written and indexed in %.0f ms.\n",
      kFileechos, kEchoAreas, kGroups, kMagicNames, kHatchEntries, kNodes, bytes / 1e6, setup_ms);
  std::printf("Warm cache (one warm-up pass first), median of %d runs.\n\n", runs);

  // The Index command against the sequential read of the same data files.
  read_sink = ReadAllData(dir);
  RunIndex(dir);
  Samples index, read;
  for (int i = 0; i < runs; ++i) {
    read.Measure([&] { read_sink = ReadAllData(dir); });
    index.Measure([&] { RunIndex(dir); });
  }
  if (IndexFiles(dir) != built_indexes) Die("the Index command changed an index");

  // The Pack command against a copy of the same data files. Every run starts from the same
  // files, a tenth of whose entries were removed.
  int removed = 0;
  const double remove_ms = TimeMs([&] { removed = RemoveTenth(dir, rng); });
  Restore(work, master);
  const auto packed = PackedImages(master.string());
  Samples pack, copy, warm_up;
  for (int i = 0; i <= runs; ++i) {  // run 0 is the warm-up
    Restore(master, work);
    (i == 0 ? warm_up : copy).Measure([&] { CopyAllData(dir); });
    RemoveCopies(dir);
    ::sync();
    (i == 0 ? warm_up : pack).Measure([&] { RunPack(dir); });
    if (DataFiles(dir) != packed) Die("the Pack command wrote the wrong data");
  }
  const auto packed_indexes = IndexFiles(dir);
  for (std::size_t f = 0; f < packed_indexes.size(); ++f) {
    const auto& def = RecordFileDefs()[f];
    if (packed_indexes[f].size() / def.keys.entry_size() !=
        packed[f].size() / def.RecordSize(kSystems))
      Die(std::string("the packed index of ") + def.base + " does not fit its data");
  }

  // Single operations on a fileecho list of 20,000 entries.
  const std::string list_dir = list.string();
  WriteFileechos(list_dir, rng);
  const RecordFileDef& fe = FileDef(RecordFileId::kFAreas);
  const std::size_t fe_size = fe.RecordSize(kSystems);
  std::vector<double> open_ms;
  {
    ksDataBase db(fe.base, fe_size, fe.keys);
    for (int i = 0; i <= runs; ++i) {
      db.Close();
      const double t = TimeMs([&] {
        if (db.Open(list_dir) != ksDataBase::OpenResult::kOk) Die("cannot open FAREAS");
      });
      if (i > 0) open_ms.push_back(t);
    }
    if (db.count() != kFileechos) Die("FAREAS opened with the wrong count");
  }
  std::vector<FileMGRrec> fresh(kInserts);
  for (auto& rec : fresh) {
    rec.tag = RandomTag(rng);
    rec.group = static_cast<std::uint8_t>(1 + rng() % kGroups);
    rec.systems[0].address = NodeAddr(static_cast<int>(rng() % kNodes));
  }
  double insert_ms = 0;
  {
    ksDataBase db(fe.base, fe_size, fe.keys);
    if (db.Open(list_dir) != ksDataBase::OpenResult::kOk) Die("cannot open FAREAS");
    insert_ms = TimeMs([&] {
      for (const auto& rec : fresh)
        if (!db.Insert(reinterpret_cast<const std::uint8_t*>(&rec))) Die("an insert failed");
    });
    if (db.count() != kFileechos + kInserts) Die("FAREAS has the wrong count after the inserts");
    for (int i = 1; i < db.count(); ++i)
      if (fe.keys.Compare(db.Key(i - 1), db.Key(i)) > 0)
        Die("the inserts left FAREAS out of order");
  }
  std::vector<std::string> wanted(kLookups);
  for (auto& tag : wanted) tag = "FE" + std::to_string(rng() % kFileechos);
  double find_ms = 0;
  {
    TFAreasFile file(kSystems);
    if (!file.Open(list_dir)) Die("cannot open FAREAS for lookups");
    std::vector<int> found(kLookups);
    find_ms = TimeMs([&] {
      for (int i = 0; i < kLookups; ++i)
        found[static_cast<std::size_t>(i)] = file.Find(wanted[static_cast<std::size_t>(i)]);
    });
    for (int i = 0; i < kLookups; ++i) {
      const int at = found[static_cast<std::size_t>(i)];
      if (at < 0 || file.GetIndex(at).tag.str() != wanted[static_cast<std::size_t>(i)])
        Die("a lookup failed");
    }
  }

  std::printf("Index and Pack commands (RunMaintenance on 6 file pairs)\n");
  PrintTimedTable({
      {"Index command", &index},
      {"Sequential read of the data files (1 MiB read())", &read},
      {"Pack command, index rebuild included", &pack},
      {"Copy of the data files (read, write, fsync)", &copy},
  });
  std::printf(
      "  (%d entries removed through ksDataBase::Remove before the packs, in %.0f ms;\n"
      "   the pack makes each new data file durable with fsync, so the copy does too)\n\n",
      removed, remove_ms);
  std::printf("FAREAS list of %d entries\n", kFileechos);
  PrintTable({
      {"ksDataBase::Open", Median(open_ms), "ms"},
      {"1000 ksDataBase::Insert, total", insert_ms, "ms"},
      {"ksDataBase::Insert, mean", insert_ms * 1000 / kInserts, "us"},
      {"1000 TFAreasFile::Find, total", find_ms, "ms"},
      {"TFAreasFile::Find, mean", find_ms * 1000 / kLookups, "us"},
  });
  const auto ratio = [](const Samples& a, const Samples& b, bool cpu) {
    return cpu ? Median(a.cpu) / Median(b.cpu) : Median(a.wall) / Median(b.wall);
  };
  std::printf("\nIndex / read = %.2f (aim <= 2)\n", ratio(index, read, false));
  std::printf("Pack / copy = %.2f (aim <= 2)\n", ratio(pack, copy, false));
  std::printf("(in CPU time: Index / read = %.2f, Pack / copy = %.2f)\n", ratio(index, read, true),
              ratio(pack, copy, true));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::BenchMain(argc, argv, "bench_dbase", Run);
}
