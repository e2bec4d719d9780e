// Kills the real ksetup at the moments it changes a file and checks that no fileecho is lost.
//
//   kill_test <ksetup> <mkdemo> <fileechos> <kills> [seed]
//
// A program directory gets FAREAS.KSX with <fileechos> records (every tenth one deleted) and
// its index. For each kill a fresh copy of it is worked on by `ksetup Index`, `ksetup Pack` or a
// list edit in tmux (the tag of the first fileecho changed so that its entry moves to the end,
// or the first fileecho deleted) under strace, which kills the program with SIGKILL at one
// call of pwrite64, ftruncate, fsync, rename or unlink among the calls that an uninterrupted
// run makes (each call once, in random order). Index and Pack make few calls, each writing a
// whole file, so the kills beyond those fall at random moments of the run (timeout -s KILL).
// Afterwards every fileecho must be in FAREAS.KSX exactly once and whole (the one being
// edited in its old or its new state), the index must still refer to each of them, and
// `Pack` (straight after a killed Index, after an Index otherwise) must keep them all.
//
// A change of "Number of systems" (200 to 100, then 200 to 255) on FAREAS and MAREAS is killed
// the same way at each of its calls (write too, for setup.ksx); the change runs the dialogue of
// the program on a virtual terminal in a child of this test (`kill_test --change-systems`), and
// after each kill the real ksetup starts on the directory (`Index`), finishing or undoing the
// change. setup.ksx must then hold the old or the new number, and both files exactly the
// records of that number: every area once, its fixed part unchanged, its systems kept or cut.
//
// Exit status 0 when every kill passed, 1 on the first failure, 77 when strace or script is
// missing.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "common/recordext.h"
#include "dbase/list_recs.h"
#include "dbase/maintain.h"
#include "dbase/node_rec.h"
#include "dbase/recfiles.h"
#include "editors/lists.h"
#include "shell/instance.h"
#include "shell/program.h"
#include "shell/systems_change.h"
#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

namespace fs = std::filesystem;
using Bytes = std::string;

namespace {

const ks::RecordFileDef& kFA = ks::FileDef(ks::RecordFileId::kFAreas);
const std::size_t kSize = kFA.RecordSize();
const std::string kMoved = "ZZZ-MOVED";  // the new tag of the edited fileecho
std::string g_ksetup, g_work, g_tmux;

Bytes ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string Tag(const Bytes& rec) {
  const auto& k = kFA.keys[0];
  return rec.substr(k.rec_offset + 1, static_cast<unsigned char>(rec[k.rec_offset]));
}

bool Live(const Bytes& rec) {
  std::vector<std::uint8_t> key(kFA.keys.length());
  kFA.keys.MakeKey(reinterpret_cast<const std::uint8_t*>(rec.data()), key.data());
  return !kFA.keys.KeyEmpty(key.data());
}

int Run(const std::string& cmd) {
  const int r = std::system(cmd.c_str());
  return WIFEXITED(r) ? WEXITSTATUS(r) : -1;
}

std::string Quote(const std::string& s) {
  return "'" + s + "'";
}

// A program directory: the demo's files, FAREAS with `n` fileechos made from the demo's first
// one, every tenth deleted (its keys zeroed). Returns the live fileechos by tag.
std::map<std::string, Bytes> MakeBase(const std::string& mkdemo, const std::string& dir, int n) {
  Run(Quote(mkdemo) + " " + Quote(dir) + " >/dev/null");
  const Bytes model = ReadFile(dir + "FAREAS.KSX").substr(0, kSize);
  std::map<std::string, Bytes> live;
  Bytes data;
  for (int i = 0; i < n; ++i) {
    Bytes rec = model;
    char tag[16];
    std::snprintf(tag, sizeof tag, "AREA%06d", (i * 7919) % n);
    const auto& k = kFA.keys[0];
    rec[k.rec_offset] = static_cast<char>(std::string(tag).size());
    rec.replace(k.rec_offset + 1, std::string(tag).size(), tag);
    if (i % 10 == 9)
      for (int j = 0; j < kFA.keys.count(); ++j)
        rec.replace(kFA.keys[j].rec_offset, kFA.keys[j].length, kFA.keys[j].length, '\0');
    else
      live[tag] = rec;
    data += rec;
  }
  std::ofstream(dir + "FAREAS.KSX", std::ios::binary) << data;
  ks::BuildIndex(dir, "FAREAS", kSize, kFA.keys);
  return live;
}

// What a list edit does to the fileecho it works on.
enum class Op { kIndex, kPack, kMove, kDelete };

// The keys of a list edit, each step waiting for a text on the screen first.
struct Step {
  const char* wait;
  const char* keys;
};
std::vector<Step> EditSteps(Op op) {
  std::vector<Step> s = {{"Miscellaneous system parameters", "Down Down Down Enter"},
                         {"Fileecho maintenance", "Enter"},
                         {"F2-global F3-advanced", ""}};
  if (op == Op::kMove) {
    s.back().keys = "Enter";
    s.push_back({"Editing entry", "C-y ZZZ-MOVED Escape"});
    s.push_back({"Save changes?", "Enter"});
    s.push_back({"used in at least one other fileecho", "Enter"});
  } else {
    s.back().keys = "Delete";
    s.push_back({"Delete this entry?", "Right Enter"});
    s.push_back({"Delete hatch and magic filename entries", "Enter"});
    s.push_back({"hatch and magicfile name entries", "Enter"});
  }
  s.push_back({"F2-global F3-advanced", "F10"});
  s.push_back({"Fileecho maintenance", "F9"});
  s.push_back({"Fileecho configuration", "F9"});
  return s;
}

std::string Tmux(const std::string& args) {
  std::string out;
  if (FILE* p = ::popen((g_tmux + " " + args + " 2>/dev/null").c_str(), "r")) {
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    ::pclose(p);
  }
  return out;
}

// Runs ksetup on `dir` to its end or its kill. `kill` is "" (no kill), strace options ("-e
// inject=..."), or "@" and a time in seconds after which it is killed. True when it ended by
// itself.
bool RunKsetup(Op op, const std::string& dir, const std::string& kill) {
  // The paths come from mkdtemp and the command line: no quotes are needed inside the command.
  const std::string env = "env KESTRA=" + dir + " TERM=xterm LC_ALL=C.UTF-8 ";
  const std::string traced =
      kill.empty() ? env + g_ksetup
      : kill.starts_with("@")
          ? "timeout --foreground -s KILL " + kill.substr(1) + " " + env + g_ksetup
          : "strace -f -o /dev/null " + kill + " " + env + g_ksetup;
  if (op == Op::kIndex || op == Op::kPack)
    return Run("script -qec " +
               Quote("stty rows 25 cols 80; exec timeout --foreground -s KILL 60 " + traced +
                     (op == Op::kIndex ? " Index" : " Pack")) +
               " /dev/null </dev/null >/dev/null 2>&1") == 0;
  const std::string status = dir + "status";
  fs::remove(status);
  Tmux("new-session -d -s edit -x 80 -y 25 " + Quote(traced + "; echo $? > " + status));
  for (const Step& step : EditSteps(op)) {
    bool seen = false;
    for (int t = 0; t < 3000 && !seen && !fs::exists(status); ++t) {
      seen = Tmux("capture-pane -p -t edit").find(step.wait) != std::string::npos;
      if (!seen) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (!seen) {
      if (std::getenv("KILL_TEST_VERBOSE"))
        std::fprintf(stderr, "no \"%s\" on the screen:\n%s\n", step.wait,
                     Tmux("capture-pane -p -t edit").c_str());
      break;
    }
    if (*step.keys) Tmux("send-keys -t edit " + std::string(step.keys));
  }
  for (int t = 0; t < 3000 && !fs::exists(status); ++t)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  Tmux("kill-session -t edit");
  return ReadFile(status) == "0\n";
}

// A fresh copy of the base directory.
std::string Fresh(const std::string& base, const std::string& name) {
  const std::string dir = g_work + name + "/";
  fs::remove_all(dir);
  fs::copy(base, dir);
  return dir;
}

// Each call of an strace log as the strace option that kills the program at that call.
std::vector<std::string> PointsOfTrace(const std::string& trace) {
  std::map<std::string, int> seen;
  std::vector<std::string> points;
  std::istringstream in(ReadFile(trace));
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string pid, call;
    words >> pid >> call;
    const std::string name = call.substr(0, call.find('('));
    if (call.find('(') != std::string::npos)
      points.push_back("-e inject=" + name + ":signal=KILL:when=" + std::to_string(++seen[name]));
  }
  return points;
}

// The calls an uninterrupted run makes, as strace options that kill the program at one of
// them, each call once (shuffled); then, up to `runs`, kills at random times of the run.
std::vector<std::string> KillPoints(Op op, const std::string& base, std::size_t runs,
                                    std::mt19937& random) {
  const std::string dir = Fresh(base, "record");
  const std::string trace = g_work + "trace";
  RunKsetup(op, dir, "-o " + trace + " -e trace=pwrite64,ftruncate,fsync,rename,unlink");
  std::vector<std::string> points = PointsOfTrace(trace);
  std::shuffle(points.begin(), points.end(), random);
  if (points.size() >= runs || (op != Op::kIndex && op != Op::kPack)) {
    points.resize(std::min(points.size(), runs));
    return points;
  }
  // The batch commands make few calls, each writing a whole file: the other kills fall at
  // random moments of an untraced run, inside those writes too.
  const std::string timed = Fresh(base, "record");
  const auto start = std::chrono::steady_clock::now();
  RunKsetup(op, timed, "");
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  std::uniform_real_distribution<double> at(0.0, took.count() * 1.2);
  while (points.size() < runs) points.push_back("@" + std::to_string(at(random)));
  return points;
}

std::string g_why;
bool Fail(const std::string& why) {
  g_why = why;
  return false;
}

// Every fileecho of `expected` is in the data file exactly once and whole; `edited` may be in
// its old state, moved (tag changed) or, for a delete, gone. With `exact_index` the index
// has one entry per live record, otherwise at least one per fileecho and at most one twice.
bool Check(const std::string& dir, const std::map<std::string, Bytes>& expected,
           const std::string& edited, Op op, bool exact_index) {
  const Bytes data = ReadFile(dir + "FAREAS.KSX");
  if (data.empty() || data.size() % kSize) return Fail("FAREAS.KSX missing or torn");
  std::map<std::string, int> found;
  std::map<std::string, std::size_t> recno;
  for (std::size_t r = 0; r < data.size() / kSize; ++r) {
    const Bytes rec = data.substr(r * kSize, kSize);
    if (!Live(rec)) continue;
    std::string tag = Tag(rec);
    if (tag == kMoved && op == Op::kMove) tag = edited;
    const auto it = expected.find(tag);
    if (it == expected.end()) return Fail("unknown fileecho " + tag);
    if (tag != edited && rec != it->second) return Fail("fileecho " + tag + " torn");
    ++found[tag];
    recno[tag] = r;
  }
  for (const auto& [tag, rec] : expected) {
    const int n = found.count(tag) ? found[tag] : 0;
    if (n > 1 || (n == 0 && !(tag == edited && op == Op::kDelete)))
      return Fail("fileecho " + tag + " found " + std::to_string(n) + " times");
  }
  // An index from before a pack that was cut short does not fit the new data file; the
  // program rebuilds such an index before it uses it, and Index does too.
  const Bytes index = ReadFile(dir + "FAREAS.IDX");
  const std::size_t e = kFA.keys.entry_size(), k = kFA.keys.length();
  const auto* entries = reinterpret_cast<const std::uint8_t*>(index.data());
  ks::MappedFile mapped;
  if (!mapped.Map(dir + "FAREAS.KSX") ||
      !ks::IndexFitsData(entries, index.size() / e, mapped, kSize, kFA.keys))
    return !exact_index || Fail("index does not fit the data");
  std::map<std::size_t, int> refs;
  for (std::size_t i = 0; i + e <= index.size(); i += e) ++refs[ks::EntryRecNo(entries + i, k)];
  int twice = 0;
  for (const auto& [r, n] : refs) twice += n - 1;
  if (twice > (exact_index ? 0 : 1)) return Fail(std::to_string(twice) + " entries twice");
  for (const auto& [tag, r] : recno)
    if (!refs.count(r) && (tag != edited || exact_index))
      return Fail("fileecho " + tag + " not in the index");
  if (exact_index && refs.size() != recno.size()) return Fail("index has entries of no fileecho");
  return true;
}

// The change of "Number of systems".
constexpr int kChangeFileechos = 800, kChangeEchoAreas = 100;
constexpr std::size_t kFrom = 200;
std::string g_self;

// An area file made from the fixed part of `model`: `count` areas "AREA<n>" with
// min((n * 37) % 201, cap) systems 2:n/s, at `systems` slots per record.
Bytes AreaFile(const ks::RecordFileDef& def, const Bytes& model, int count, std::size_t systems,
               std::size_t cap) {
  Bytes out;
  for (int n = 0; n < count; ++n) {
    Bytes rec = model.substr(0, def.fixed_size);
    rec.resize(def.RecordSize(systems), '\0');
    char tag[16];
    const int len = std::snprintf(tag, sizeof tag, "AREA%06d", n);
    rec[0] = static_cast<char>(len);
    rec.replace(1, static_cast<std::size_t>(len), tag);
    const std::size_t used = std::min<std::size_t>((n * 37) % 201, std::min(cap, systems));
    for (std::size_t s = 0; s < used; ++s) {
      char* slot = &rec[def.fixed_size + s * 9];
      slot[0] = 2;
      slot[2] = static_cast<char>(n & 0xFF);
      slot[3] = static_cast<char>(n >> 8);
      slot[4] = static_cast<char>(s + 1);
      slot[8] = 0x05;
    }
    out += rec;
  }
  return out;
}

const ks::RecordFileDef& kMA = ks::FileDef(ks::RecordFileId::kMAreas);

// What FAREAS and MAREAS hold at `systems` slots when the change started from kFrom.
std::pair<Bytes, Bytes> AreaFiles(const std::string& models, std::size_t systems) {
  return {AreaFile(kFA, ReadFile(models + "FAREAS.KSX"), kChangeFileechos, systems, kFrom),
          AreaFile(kMA, ReadFile(models + "MAREAS.KSX"), kChangeEchoAreas, systems, kFrom)};
}

// A program directory of the demo with both area files at kFrom systems.
void MakeChangeBase(const std::string& mkdemo, const std::string& dir) {
  Run(Quote(mkdemo) + " " + Quote(dir) + " >/dev/null");
  const auto [fa, ma] = AreaFiles(dir, kFrom);
  std::ofstream(dir + "FAREAS.KSX", std::ios::binary) << fa;
  std::ofstream(dir + "MAREAS.KSX", std::ios::binary) << ma;
  ks::BuildIndex(dir, "FAREAS", kFA.RecordSize(kFrom), kFA.keys);
  ks::BuildIndex(dir, "MAREAS", kMA.RecordSize(kFrom), kMA.keys);
}

// The child: the program's own dialogue on a virtual terminal, answered "Yes".
int ChangeSystemsChild(const std::string& dir, int to) {
  ks::record_extensions() = {"KSX", "IDX"};
  ks::ResetProgram();
  ks::Program& p = ks::prog();
  p.exe_path = dir;
  p.cfg = std::make_unique<ks::KESTRAcfg>();
  const Bytes setup = ReadFile(dir + "setup.ksx");
  std::memcpy(static_cast<void*>(p.cfg.get()), setup.data(),
              std::min(setup.size(), sizeof(ks::KESTRAcfg)));
  ks::InstanceLock lock(dir);
  p.instance = &lock;
  ks::VirtualTerminal vt(80, 25);
  ks::Screen screen(vt);
  ks::UiScope scope(screen);
  vt.Keys("y");
  const bool changed = ks::ChangeNumberOfSystems(*p.cfg, kFrom, static_cast<std::uint8_t>(to));
  p.instance = nullptr;
  return changed ? 0 : 1;
}

// Runs the change to `to` on `dir`, under strace when `kill` names strace options.
void RunChange(const std::string& dir, int to, const std::string& kill) {
  const std::string child =
      g_self + " --change-systems " + dir + " " + std::to_string(to) + " >/dev/null 2>&1";
  Run(kill.empty() ? child : "strace -f -o /dev/null " + kill + " " + child);
}

// After the program has started on `dir` again: the number in setup.ksx and both files agree,
// with exactly the areas of the base. Sets `changed` when the new number holds.
bool CheckChange(const std::string& dir, const std::string& base, int to, bool& changed) {
  const Bytes setup = ReadFile(dir + "setup.ksx");
  if (setup.size() != sizeof(ks::KESTRAcfg)) return Fail("setup.ksx missing or torn");
  const auto systems = static_cast<std::uint8_t>(setup[offsetof(ks::KESTRAcfg, numberOfSystems)]);
  if (systems != kFrom && systems != to)
    return Fail("setup.ksx holds " + std::to_string(systems) + " systems");
  changed = systems == to;
  const auto [fa, ma] = AreaFiles(base, systems);
  if (ReadFile(dir + "FAREAS.KSX") != fa)
    return Fail("FAREAS.KSX does not hold the fileechos at " + std::to_string(systems));
  if (ReadFile(dir + "MAREAS.KSX") != ma)
    return Fail("MAREAS.KSX does not hold the echomail areas at " + std::to_string(systems));
  for (const auto& e : fs::directory_iterator(dir))
    if (e.path().filename().string().find(".resize") != std::string::npos)
      return Fail(e.path().filename().string() + " left behind");
  return true;
}

// Kills the change at each of its calls; returns the failures.
int KillChange(const std::string& mkdemo, int to) {
  const std::string base = g_work + "systems-base/";
  fs::create_directories(base);
  MakeChangeBase(mkdemo, base);
  const std::string record = Fresh(base, "record");
  const std::string trace = g_work + "trace";
  RunChange(record, to, "-o " + trace + " -e trace=pwrite64,ftruncate,fsync,rename,unlink,write");
  bool changed = false;
  if (!CheckChange(record, base, to, changed) || !changed) {
    std::printf("FAIL change to %d without a kill: %s\n", to, changed ? g_why.c_str() : "not done");
    return 1;
  }
  const std::vector<std::string> points = PointsOfTrace(trace);
  int done = 0;
  for (const std::string& point : points) {
    const std::string dir = Fresh(base, "run");
    RunChange(dir, to, point);
    bool ok = RunKsetup(Op::kIndex, dir, "") || Fail("ksetup failed");
    ok = ok && CheckChange(dir, base, to, changed);
    if (!ok) {
      std::printf("FAIL change to %d killed at %s: %s (files kept in %s)\n", to, point.c_str(),
                  g_why.c_str(), dir.c_str());
      return 1;
    }
    done += changed;
  }
  std::printf("Number of systems 200 to %d: %zu kills, the change stood after %d of them\n", to,
              points.size(), done);
  return 0;
}

// A group renumbered or deleted. The group manager runs in a child on a virtual terminal
// (`kill_test --group renumber|delete <dir>`) on group 1, the first of the demo's groups: its
// number becomes 9 and the rest of the setup follows, or it is deleted with its fileechos and
// their hatch and magic entries. After each kill the real ksetup runs `Index`; every record of
// the files must then be as it was or as the operation makes it, and every index must fit.
constexpr int kGroupFileechos = 60, kGroupEntries = 6;
constexpr std::uint8_t kOldGroup = 1, kNewGroup = 9;

template <class Rec>
Bytes Image(const Rec& r) {
  return Bytes(reinterpret_cast<const char*>(&r), sizeof r);
}

// The demo with 60 fileechos in groups 1-3, and reports, nodes, hatch and magic entries that
// hold or name group 1 among others.
void MakeGroupBase(const std::string& mkdemo, const std::string& dir) {
  Run(Quote(mkdemo) + " " + Quote(dir) + " >/dev/null");
  const Bytes model = ReadFile(dir + "FAREAS.KSX").substr(0, kSize);
  const auto tag = [](int n) { return "G" + std::to_string(100 + n); };
  Bytes fa, reports, nodes, hatch, magic;
  for (int n = 0; n < kGroupFileechos; ++n) {
    Bytes rec = model;
    rec[0] = static_cast<char>(tag(n).size());
    rec.replace(1, tag(n).size(), tag(n));
    rec[offsetof(ks::FileMGRrec, group)] = static_cast<char>(1 + n % 3);
    fa += rec;
  }
  for (int n = 0; n < kGroupEntries; ++n) {
    ks::NewFileMgrRec r;
    r.groups.Add(kOldGroup);
    r.groups.Add(static_cast<std::uint8_t>(10 + n));
    reports += Image(r);
    ks::NodeMGRrec node;
    node.address = {2, 280, static_cast<std::uint16_t>(n + 1), 0};
    node.groups.Add(static_cast<std::uint8_t>(1 + n % 3));
    node.billGroups.Add(kOldGroup);
    nodes += Image(node);
    ks::HatchMGRrec h;
    h.area = tag(n);  // n % 3 == 0: a fileecho of group 1
    h.fileSpec = "f" + std::to_string(n);
    hatch += Image(h);
    ks::MagicFileMgrRec m;
    m.type = ks::mtAdoptFile;
    m.mask = "M" + std::to_string(n);
    m.fromArea = tag(n + 1);
    m.toArea = tag(n + 2);
    magic += Image(m);
  }
  const std::pair<ks::RecordFileId, const Bytes*> files[] = {{ks::RecordFileId::kFAreas, &fa},
                                                             {ks::RecordFileId::kReports, &reports},
                                                             {ks::RecordFileId::kNodes, &nodes},
                                                             {ks::RecordFileId::kHatch, &hatch},
                                                             {ks::RecordFileId::kMagic, &magic}};
  for (const auto& [id, bytes] : files) {
    const ks::RecordFileDef& def = ks::FileDef(id);
    std::ofstream(dir + def.base + ".KSX", std::ios::binary) << *bytes;
    ks::BuildIndex(dir, def.base, def.RecordSize(kFrom), def.keys);
  }
}

int GroupChild(const std::string& what, const std::string& dir) {
  ks::record_extensions() = {"KSX", "IDX"};
  ks::ListContext ctx;
  ctx.data_dir = ctx.work_dir = dir;
  ctx.systems_per_area = kFrom;
  ks::VirtualTerminal vt(80, 25);
  ks::Screen screen(vt);
  ks::UiScope scope(screen);
  vt.Keys(what == "renumber" ? "<Enter>9<Esc><Enter><Enter><Enter><Esc>"
                             : "<Del><Tab><Enter><Enter><Enter><Esc>");
  ks::RunGroupManager(ctx);
  return 0;
}

// What the operation makes of one record of a file.
using Change = std::function<Bytes(Bytes)>;

Bytes RenumberSetsAt(Bytes rec, std::initializer_list<std::size_t> offsets) {
  for (const std::size_t at : offsets) {
    ks::GroupSet set;
    std::memcpy(&set, rec.data() + at, sizeof set);
    set.Renumber(kOldGroup, kNewGroup);
    rec.replace(at, sizeof set, reinterpret_cast<const char*>(&set), sizeof set);
  }
  return rec;
}

// The changes of every file, for the operation `what` on the base in `base`.
std::map<ks::RecordFileId, Change> GroupChanges(const std::string& what, const std::string& base) {
  using enum ks::RecordFileId;
  constexpr std::size_t kGroup = offsetof(ks::FileMGRrec, group);
  const auto group_key = [](const Bytes& rec, std::uint8_t to) {
    Bytes r = rec;
    if (static_cast<std::uint8_t>(r[kGroup]) == kOldGroup) r[kGroup] = static_cast<char>(to);
    return r;
  };
  if (what == "renumber")
    return {{kFAreas, [=](Bytes r) { return group_key(r, kNewGroup); }},
            {kReports, [](Bytes r) { return RenumberSetsAt(r, {0}); }},
            {kNodes,
             [](Bytes r) {
               return RenumberSetsAt(
                   r, {offsetof(ks::NodeMGRrec, groups), offsetof(ks::NodeMGRrec, billGroups)});
             }},
            {kGroups, [=](Bytes r) { return group_key(r, kNewGroup); }}};
  // The tags of group 1, upper-cased, and the key bytes cleared by a deletion.
  std::set<std::string> tags;
  const Bytes fa = ReadFile(base + "FAREAS.KSX");
  for (std::size_t at = 0; at + kSize <= fa.size(); at += kSize)
    if (static_cast<std::uint8_t>(fa[at + kGroup]) == kOldGroup) tags.insert(Tag(fa.substr(at)));
  const auto names = [tags](const Bytes& r, std::size_t at) {
    return tags.count(r.substr(at + 1, static_cast<unsigned char>(r[at]))) > 0;
  };
  const auto clear = [](Bytes r, std::size_t at, std::size_t n) {
    return r.replace(at, n, n, '\0');
  };
  return {{kFAreas,
           [=](Bytes r) {
             if (static_cast<std::uint8_t>(r[kGroup]) != kOldGroup) return r;
             r[kGroup] = 0;
             return clear(r, 0, 41);
           }},
          {kHatch, [=](Bytes r) { return names(r, 0) ? clear(r, 0, 41) : r; }},
          {kMagic,
           [=](Bytes r) {
             return names(r, offsetof(ks::MagicFileMgrRec, fromArea)) ||
                            names(r, offsetof(ks::MagicFileMgrRec, toArea))
                        ? clear(r, 0, 14)
                        : r;
           }},
          {kGroups, [=](Bytes r) {
             const auto& keys = ks::FileDef(kGroups).keys;
             if (static_cast<std::uint8_t>(r[kGroup]) != kOldGroup) return r;
             for (int j = 0; j < keys.count(); ++j)
               r = clear(r, keys[j].rec_offset, keys[j].length);
             return r;
           }}};
}

// Every record of every file is as in the base or as `changes` make it, and every index fits.
// Sets `done` when every record is in its new state.
bool CheckGroup(const std::string& dir, const std::string& base,
                const std::map<ks::RecordFileId, Change>& changes, bool& done) {
  done = true;
  for (const auto id :
       {ks::RecordFileId::kFAreas, ks::RecordFileId::kReports, ks::RecordFileId::kNodes,
        ks::RecordFileId::kHatch, ks::RecordFileId::kMagic, ks::RecordFileId::kGroups}) {
    const ks::RecordFileDef& def = ks::FileDef(id);
    const std::size_t size = def.RecordSize(kFrom);
    const std::string name = dir + def.base + ".KSX";
    const Bytes before = ReadFile(base + def.base + ".KSX"), after = ReadFile(name);
    if (after.size() != before.size()) return Fail(std::string(def.base) + " changed its size");
    const auto it = changes.find(id);
    for (std::size_t at = 0; at + size <= after.size(); at += size) {
      const Bytes old = before.substr(at, size), now = after.substr(at, size);
      const Bytes made = it == changes.end() ? old : it->second(old);
      if (now != old && now != made)
        return Fail(std::string(def.base) + " record " + std::to_string(at / size) + " torn");
      done = done && now == made;
    }
    const Bytes index = ReadFile(dir + def.base + ".IDX");
    ks::MappedFile mapped;
    if (!mapped.Map(name) ||
        !ks::IndexFitsData(reinterpret_cast<const std::uint8_t*>(index.data()),
                           index.size() / def.keys.entry_size(), mapped, size, def.keys))
      return Fail(std::string(def.base) + ".IDX does not fit its data");
  }
  return true;
}

void RunGroupChild(const std::string& what, const std::string& dir, const std::string& kill) {
  const std::string child = g_self + " --group " + what + " " + dir + " >/dev/null 2>&1";
  Run(kill.empty() ? child : "strace -f -o /dev/null " + kill + " " + child);
}

// Kills the operation at each of its calls; returns the failures.
int KillGroup(const std::string& mkdemo, const std::string& what) {
  const std::string base = g_work + "group-base/";
  fs::remove_all(base);
  fs::create_directories(base);
  MakeGroupBase(mkdemo, base);
  const auto changes = GroupChanges(what, base);
  const std::string record = Fresh(base, "record");
  const std::string trace = g_work + "trace";
  RunGroupChild(what, record,
                "-o " + trace + " -e trace=pwrite64,ftruncate,fsync,rename,unlink,write");
  bool done = false;
  if (!CheckGroup(record, base, changes, done) || !done) {
    std::printf("FAIL group %s without a kill: %s\n", what.c_str(),
                done ? g_why.c_str() : "not done");
    return 1;
  }
  const std::vector<std::string> points = PointsOfTrace(trace);
  int stood = 0;
  for (const std::string& point : points) {
    const std::string dir = Fresh(base, "run");
    RunGroupChild(what, dir, point);
    bool ok = RunKsetup(Op::kIndex, dir, "") || Fail("ksetup failed");
    ok = ok && CheckGroup(dir, base, changes, done);
    if (!ok) {
      std::printf("FAIL group %s killed at %s: %s (files kept in %s)\n", what.c_str(),
                  point.c_str(), g_why.c_str(), dir.c_str());
      return 1;
    }
    stood += done;
  }
  std::printf("Group %s: %zu kills, complete after %d of them\n", what.c_str(), points.size(),
              stood);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "--change-systems")
    return ChangeSystemsChild(argv[2], std::atoi(argv[3]));
  if (argc == 4 && std::string(argv[1]) == "--group") return GroupChild(argv[2], argv[3]);
  if (argc < 5) {
    std::fprintf(stderr, "usage: kill_test <ksetup> <mkdemo> <fileechos> <kills> [seed]\n");
    return 2;
  }
  if (Run("command -v strace >/dev/null && command -v script >/dev/null") != 0) {
    std::puts("strace or script is missing: kill test skipped");
    return 77;
  }
  const bool tmux = Run("command -v tmux >/dev/null") == 0;
  ks::record_extensions() = {"KSX", "IDX"};
  g_ksetup = fs::absolute(argv[1]);
  char tmpl[] = "/tmp/ks-kill.XXXXXX";
  g_work = std::string(::mkdtemp(tmpl)) + "/";
  g_tmux = "tmux -L ks-kill-" + std::to_string(::getpid()) + " -f /dev/null";
  const int kills = std::atoi(argv[4]);
  std::mt19937 random(argc > 5 ? static_cast<unsigned>(std::atoi(argv[5])) : 1u);
  const std::string base = g_work + "base/";
  fs::create_directories(base);
  const auto live = MakeBase(argv[2], base, std::atoi(argv[3]));
  const std::string first = live.begin()->first;

  std::vector<Op> ops = {Op::kIndex, Op::kPack};
  if (tmux) ops.insert(ops.end(), {Op::kMove, Op::kDelete});
  const char* names[] = {"Index", "Pack", "edit", "delete"};
  int failures = 0, ended = 0;
  for (Op op : ops) {
    // The batch commands take a fraction of a list edit's time in tmux: they get more kills.
    const bool batch = op == Op::kIndex || op == Op::kPack;
    const int runs = tmux ? kills * (batch ? 4 : 1) / 10 : kills / 2;
    const std::vector<std::string> points =
        KillPoints(op, base, static_cast<std::size_t>(runs), random);
    int timed = 0;
    for (const std::string& point : points) {
      if (failures) break;
      timed += point.starts_with("@");
      const std::string dir = Fresh(base, "run");
      ended += RunKsetup(op, dir, point);
      const std::string edited = op == Op::kMove || op == Op::kDelete ? first : "";
      // What the kill left, then a pack of it (straight after a killed Index, else after an Index).
      bool ok = Check(dir, live, edited, op, false);
      if (ok && op != Op::kIndex) ok = RunKsetup(Op::kIndex, dir, "") || Fail("Index failed");
      ok = ok && (RunKsetup(Op::kPack, dir, "") || Fail("Pack failed"));
      ok = ok && Check(dir, live, edited, op, true);
      if (!ok) {
        std::printf("FAIL %s killed at %s: %s (files kept in %s)\n", names[int(op)], point.c_str(),
                    g_why.c_str(), dir.c_str());
        ++failures;
      }
    }
    std::printf("%s: %zu kills, %zu at a system call, %d at a random moment\n", names[int(op)],
                points.size(), points.size() - timed, timed);
  }
  std::printf("%d of the runs ended before their kill point\n", ended);
  g_self = fs::absolute(argv[0]);
  for (int to : {100, 255})
    if (!failures) failures += KillChange(argv[2], to);
  for (const char* what : {"renumber", "delete"})
    if (!failures) failures += KillGroup(argv[2], what);
  if (!failures) fs::remove_all(g_work);
  return failures ? 1 : 0;
}
