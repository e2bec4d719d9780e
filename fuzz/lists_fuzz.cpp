// Fuzz target for the group and magic file name lists: GRPFILE or MGICFILE made of the input's
// bytes (any type byte, strings without terminator or longer than their field, group numbers
// no group has), run through the group manager or the magic file names on a virtual terminal
// with a key script from the input, and the group renumbering and deletion run over the same
// files. Nothing may crash or hang, and afterwards every data file still holds whole records.
//
// Input layout:
//   byte 0    flags: bit 0 the magic file names (else the group manager); bit 1 no index
//             file (else one built from the data); bit 2 the group operations first
//   byte 1    the group the operations work on
//   byte 2    length of the key script, taken from the end of the input
//   the rest  the list's data file (whole records only)
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "common/fileutil.h"
#include "common/halt.h"
#include "common/recordext.h"
#include "dbase/group_ops.h"
#include "dbase/list_recs.h"
#include "dbase/maintain.h"
#include "dbase/recfiles.h"
#include "editors/lists.h"
#include "fuzz_dir.h"
#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

namespace {

using Bytes = std::string;

[[noreturn]] void Fail(const char* what, int line) {
  std::fprintf(stderr, "lists_fuzz: check failed (line %d): %s\n", line, what);
  std::abort();
}
#define CHECK(cond)                     \
  do {                                  \
    if (!(cond)) Fail(#cond, __LINE__); \
  } while (0)

constexpr std::size_t kSystems = 5;
constexpr std::size_t kMaxRecords = 6;

const std::string& Dir() {
  return fuzz::PrivateDir("ks-lists-fuzz");
}

// The keys a script byte stands for: the keys of the lists, their pages and pick lists.
constexpr const char* kKeys[] = {"<Enter>", "<Esc>",   "<Tab>",   "<S-Tab>", "<Up>",   "<Down>",
                                 "<Left>",  "<Right>", "<Home>",  "<End>",   "<PgUp>", "<PgDn>",
                                 "<Ins>",   "<Del>",   "<F2>",    "<F3>",    "<F4>",   "<F5>",
                                 "<F6>",    "<F10>",   "<Space>", "<BS>",    "Y",      "N",
                                 "7",       "0",       "A",       "*",       "<F9>"};

std::string Script(const std::uint8_t* p, std::size_t n) {
  std::string keys;
  for (std::size_t i = 0; i < n; ++i) keys += kKeys[p[i] % (sizeof kKeys / sizeof kKeys[0])];
  return keys;
}

void Put(ks::RecordFileId id, const Bytes& data) {
  const auto& def = ks::FileDef(id);
  CHECK(ks::WriteFileAtomic(ks::DataFileName(Dir(), def.base), data));
  CHECK(ks::BuildIndex(Dir(), def.base, def.RecordSize(kSystems), def.keys));
}

// A small FAREAS and HATCH whose tags the fuzzed records may name.
void Neighbours() {
  Bytes fa;
  for (int n = 0; n < 3; ++n) {
    ks::FileechoRecord<kSystems> r{};
    r.tag = std::string(1, static_cast<char>('A' + n));
    r.group = static_cast<std::uint8_t>(n);
    fa.append(reinterpret_cast<const char*>(&r), sizeof r);
  }
  Put(ks::RecordFileId::kFAreas, fa);
  ks::HatchMGRrec h;
  h.area = "b";
  Put(ks::RecordFileId::kHatch, Bytes(reinterpret_cast<const char*>(&h), sizeof h));
}

void WholeRecords() {
  for (const auto& def : ks::RecordFileDefs()) {
    const auto size = ks::FileSize(ks::DataFileName(Dir(), def.base));
    if (size) CHECK(*size % def.RecordSize(kSystems) == 0);
  }
}

void GroupOps(std::uint8_t group) {
  ks::RenumberGroupInFiles(Dir(), kSystems, group, static_cast<std::uint8_t>(group + 1));
  ks::DeleteGroupFromFiles(Dir(), kSystems, group);
  WholeRecords();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  std::uint8_t head[3] = {};
  std::memcpy(head, input, std::min(size, sizeof head));
  const std::uint8_t* body = input + std::min(size, sizeof head);
  std::size_t body_size = size - std::min(size, sizeof head);
  const std::size_t script_size = std::min<std::size_t>(head[2], body_size);
  body_size -= script_size;
  const bool magic = head[0] & 1;

  ks::record_extensions() = {"KSX", "IDX"};
  for (const std::string& name : ks::ListFiles(Dir())) std::remove((Dir() + name).c_str());
  Neighbours();
  const auto id = magic ? ks::RecordFileId::kMagic : ks::RecordFileId::kGroups;
  const auto& def = ks::FileDef(id);
  const std::size_t rs = def.RecordSize(kSystems);
  const Bytes data(reinterpret_cast<const char*>(body), std::min(body_size / rs, kMaxRecords) * rs);
  if (head[0] & 2)
    CHECK(ks::WriteFileAtomic(ks::DataFileName(Dir(), def.base), data));
  else
    Put(id, data);
  if (head[0] & 4) GroupOps(head[1]);

  ks::ListContext ctx;
  ctx.data_dir = ctx.work_dir = Dir();
  ctx.systems_per_area = kSystems;
  ks::VirtualTerminal vt(80, 25);
  ks::Screen screen(vt);
  ks::UiScope scope(screen);
  vt.Keys(Script(body + body_size, script_size));
  try {
    (magic ? ks::RunMagicFileNames : ks::RunGroupManager)(ctx);
  } catch (const ks::KeysExhausted&) {
  } catch (const ks::ProgramHalt&) {
  }
  WholeRecords();
  if (!(head[0] & 4)) GroupOps(head[1]);
  return 0;
}
