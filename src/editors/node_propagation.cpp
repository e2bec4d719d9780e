#include "editors/node_propagation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"

namespace ks {

namespace {

// Where a record keeps its address list: `count` slots of `stride` bytes from `offset`, each
// beginning with an address; a slot whose zone is 0 is free.
struct SlotList {
  std::size_t offset = 0;
  std::size_t count = 0;
  std::size_t stride = 0;
};

// One file of the setup that names systems.
struct Target {
  RecordFileId id;
  std::size_t record_size;
  SlotList slots;
};

// The five files in the order they are changed.
std::vector<Target> Targets(int systems_per_area) {
  const auto systems = static_cast<std::size_t>(std::max(0, systems_per_area));
  using enum RecordFileId;
  return {
      {kFAreas,
       FileDef(kFAreas).RecordSize(systems),
       {kFileechoFixedSize, systems, sizeof(ConnectedSystem)}},
      {kMagic,
       sizeof(MagicFileMgrRec),
       {offsetof(MagicFileMgrRec, exports), kExportSlots, sizeof(NetAddr)}},
      {kReports,
       sizeof(NewFileMgrRec),
       {offsetof(NewFileMgrRec, exports), kExportSlots, sizeof(NetAddr)}},
      // A group record holds the defaults of its fileechos with a fixed 200 systems.
      {kGroups,
       sizeof(GrpFileMgrRec),
       {offsetof(GrpFileMgrRec, fileecho) + kFileechoFixedSize, kDefaultSystemsPerArea,
        sizeof(ConnectedSystem)}},
      {kMAreas,
       FileDef(kMAreas).RecordSize(systems),
       {kEchoFixedSize, systems, sizeof(ConnectedSystem)}},
  };
}

NetAddr SlotAddr(const std::uint8_t* slot) {
  NetAddr a;
  std::memcpy(&a, slot, sizeof a);
  return a;
}

// Takes `node` out of the list; the used slots close up in their order and the slots behind
// them are cleared. False (and nothing touched) when the node is not listed.
bool RemoveFrom(std::uint8_t* rec, const SlotList& list, const NetAddr& node) {
  std::uint8_t* const first = rec + list.offset;
  bool found = false;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < list.count; ++i) {
    std::uint8_t* slot = first + i * list.stride;
    const NetAddr a = SlotAddr(slot);
    if (!a.IsSet()) continue;
    if (a == node) {
      found = true;
      continue;
    }
    if (kept != i) std::memmove(first + kept * list.stride, slot, list.stride);
    ++kept;
  }
  if (!found) return false;
  std::memset(first + kept * list.stride, 0, (list.count - kept) * list.stride);
  return true;
}

bool Lists(const std::uint8_t* rec, const SlotList& list, const NetAddr& node) {
  for (std::size_t i = 0; i < list.count; ++i)
    if (SlotAddr(rec + list.offset + i * list.stride) == node) return true;
  return false;
}

bool ReplaceIn(std::uint8_t* rec, const SlotList& list, const NetAddr& from, const NetAddr& to) {
  if (!Lists(rec, list, from)) return false;
  if (!Lists(rec, list, to)) {
    // The first slot of `from` becomes `to`; a second one (a damaged list) goes below.
    for (std::size_t i = 0; i < list.count; ++i) {
      std::uint8_t* slot = rec + list.offset + i * list.stride;
      if (SlotAddr(slot) == from) {
        std::memcpy(slot, &to, sizeof to);
        break;
      }
    }
  }
  RemoveFrom(rec, list, from);
  return true;
}

// Runs `change` on every record of the target's data file that is not deleted, writing back
// the address list of each record it changed; returns how many changed.
int ChangeFile(const std::string& data_dir, const Target& t,
               const std::function<bool(std::uint8_t*)>& change) {
  if (t.slots.count == 0) return 0;
  RawFile file;
  if (!file.Open(DataFileName(data_dir, FileDef(t.id).base), RawFile::Mode::kReadWrite)) return 0;
  const auto size = file.Size();
  if (!size) return 0;
  const std::uint64_t records = *size / t.record_size;
  // Blocks of about a megabyte: a large FAREAS is read in a few dozen reads.
  const std::size_t block = std::max<std::size_t>(1, (std::size_t{1} << 20) / t.record_size);
  std::vector<std::uint8_t> buf(block * t.record_size);
  const KeySet& keys = FileDef(t.id).keys;
  std::vector<std::uint8_t> key(keys.length());
  const std::size_t list_bytes = t.slots.count * t.slots.stride;
  int changed = 0;
  for (std::uint64_t start = 0; start < records; start += block) {
    const std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(block, records - start));
    const std::size_t bytes = n * t.record_size;
    if (file.ReadAt(start * t.record_size, buf.data(), bytes) != bytes) break;
    for (std::size_t i = 0; i < n; ++i) {
      std::uint8_t* rec = buf.data() + i * t.record_size;
      keys.MakeKey(rec, key.data());
      if (keys.KeyEmpty(key.data()) || !change(rec)) continue;
      const std::uint64_t at = (start + i) * t.record_size + t.slots.offset;
      if (file.WriteAt(at, rec + t.slots.offset, list_bytes)) ++changed;
    }
  }
  return changed;
}

}  // namespace

int RemoveNode(const std::string& data_dir, int systems_per_area, const NetAddr& node) {
  if (!node.IsSet()) return 0;
  int places = 0;
  for (const Target& t : Targets(systems_per_area))
    places +=
        ChangeFile(data_dir, t, [&](std::uint8_t* rec) { return RemoveFrom(rec, t.slots, node); });
  return places;
}

int ReplaceNode(const std::string& data_dir, int systems_per_area, const NetAddr& from,
                const NetAddr& to) {
  if (!from.IsSet() || !to.IsSet() || from == to) return 0;
  int places = 0;
  for (const Target& t : Targets(systems_per_area))
    places += ChangeFile(data_dir, t,
                         [&](std::uint8_t* rec) { return ReplaceIn(rec, t.slots, from, to); });
  return places;
}

}  // namespace ks
