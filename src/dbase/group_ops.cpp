#include "dbase/group_ops.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

#include "common/cp437.h"
#include "common/fileutil.h"
#include "common/groupset.h"
#include "common/pstr.h"
#include "dbase/list_recs.h"
#include "dbase/node_rec.h"
#include "dbase/rawfile.h"
#include "dbase/recfiles.h"

namespace ks {

namespace {

// The bytes [first, last) of a record that a patch changed; empty when it changed none.
struct Range {
  std::size_t first = 0, last = 0;
};

// Visits every whole record of `base`'s data file in `dir`. `patch` gets the record as it is
// on disk and a buffer of the record's size; it writes the bytes it changes into the buffer,
// at their offsets, and returns their range, which is then written back with one write.
// Returns how many records changed; a missing or unreadable file changes none.
template <class Patch>
int PatchRecords(const std::string& dir, const std::string& base, std::size_t size, Patch patch) {
  const std::string name = DataFileName(dir, base);
  if (!FileExists(name)) return 0;
  RawFile file;
  MappedFile map;
  if (!file.Open(name, RawFile::Mode::kReadWrite) || !map.Map(name)) return 0;
  std::vector<std::uint8_t> out(size);
  int changed = 0;
  const std::size_t count = map.size() / size;
  for (std::size_t i = 0; i < count; ++i) {
    const Range r = patch(map.data() + i * size, out.data());
    if (r.first < r.last &&
        file.WriteAt(i * size + r.first, out.data() + r.first, r.last - r.first))
      ++changed;
  }
  return changed;
}

// Renumbers the group sets at `offsets` of one record; the range covers the sets that changed.
Range RenumberSets(const std::uint8_t* rec, std::uint8_t* out,
                   std::initializer_list<std::size_t> offsets, std::uint8_t from, std::uint8_t to,
                   int& sets) {
  Range r{SIZE_MAX, 0};
  for (const std::size_t at : offsets) {
    GroupSet set;
    std::memcpy(&set, rec + at, sizeof set);
    if (!set.Renumber(from, to)) continue;
    ++sets;
    r.first = std::min(r.first, at);
    r.last = std::max(r.last, at + sizeof set);
  }
  if (r.last == 0) return {};
  // Bytes between two changed sets are written back as they were.
  std::memcpy(out + r.first, rec + r.first, r.last - r.first);
  for (const std::size_t at : offsets) {
    GroupSet set;
    std::memcpy(&set, rec + at, sizeof set);
    set.Renumber(from, to);
    if (at >= r.first && at + sizeof set <= r.last) std::memcpy(out + at, &set, sizeof set);
  }
  return r;
}

bool AllZero(const std::uint8_t* p, std::size_t n) {
  return std::all_of(p, p + n, [](std::uint8_t b) { return b == 0; });
}

std::string TagAt(const std::uint8_t* rec, std::size_t capacity) {
  return Upper(ReadPStr(rec, capacity));
}

}  // namespace

RenumberCount RenumberGroupInFiles(const std::string& dir, std::size_t systems, std::uint8_t from,
                                   std::uint8_t to) {
  RenumberCount n;
  if (from == to) return n;
  constexpr std::size_t kGroup = offsetof(FileMGRrec, group);
  n.fileechos = PatchRecords(dir, FileDef(RecordFileId::kFAreas).base, FileechoRecordSize(systems),
                             [&](const std::uint8_t* rec, std::uint8_t* out) {
                               if (rec[kGroup] != from) return Range{};
                               out[kGroup] = to;
                               return Range{kGroup, kGroup + 1};
                             });
  PatchRecords(dir, FileDef(RecordFileId::kReports).base, sizeof(NewFileMgrRec),
               [&](const std::uint8_t* rec, std::uint8_t* out) {
                 return RenumberSets(rec, out, {offsetof(NewFileMgrRec, groups)}, from, to,
                                     n.reports);
               });
  PatchRecords(dir, FileDef(RecordFileId::kNodes).base, sizeof(NodeMGRrec),
               [&](const std::uint8_t* rec, std::uint8_t* out) {
                 return RenumberSets(
                     rec, out, {offsetof(NodeMGRrec, groups), offsetof(NodeMGRrec, billGroups)},
                     from, to, n.nodes);
               });
  return n;
}

GroupRemoval DeleteGroupFromFiles(const std::string& dir, std::size_t systems, std::uint8_t group) {
  GroupRemoval n;
  constexpr std::size_t kTag = offsetof(FileMGRrec, tag), kGroup = offsetof(FileMGRrec, group);
  constexpr std::size_t kTagBytes = sizeof(FileMGRrec::tag);
  std::set<std::string> tags;
  // The tag and the group are the keys: cleared, the record counts as deleted. The bytes in
  // between are written back as they were, so the change is one write.
  n.fileechos = PatchRecords(
      dir, FileDef(RecordFileId::kFAreas).base, FileechoRecordSize(systems),
      [&](const std::uint8_t* rec, std::uint8_t* out) {
        if (rec[kGroup] != group || (rec[kGroup] == 0 && AllZero(rec + kTag, kTagBytes)))
          return Range{};
        tags.insert(TagAt(rec + kTag, kTagBytes - 1));
        std::memcpy(out, rec, kGroup + 1);
        std::memset(out + kTag, 0, kTagBytes);
        out[kGroup] = 0;
        return Range{0, kGroup + 1};
      });
  if (tags.empty()) return n;
  constexpr std::size_t kArea = offsetof(HatchMGRrec, area), kAreaBytes = sizeof(HatchMGRrec::area);
  n.hatch = PatchRecords(
      dir, FileDef(RecordFileId::kHatch).base, sizeof(HatchMGRrec),
      [&](const std::uint8_t* rec, std::uint8_t* out) {
        if (AllZero(rec + kArea, kAreaBytes) || !tags.contains(TagAt(rec + kArea, kAreaBytes - 1)))
          return Range{};
        std::memset(out + kArea, 0, kAreaBytes);
        return Range{kArea, kArea + kAreaBytes};
      });
  // A magic file name's keys are its type and its mask, the first 14 bytes.
  constexpr std::size_t kKeys = offsetof(MagicFileMgrRec, fromArea);
  n.magic = PatchRecords(
      dir, FileDef(RecordFileId::kMagic).base, sizeof(MagicFileMgrRec),
      [&](const std::uint8_t* rec, std::uint8_t* out) {
        const auto names = [&](std::size_t at, std::size_t bytes) {
          return tags.contains(TagAt(rec + at, bytes - 1));
        };
        if (AllZero(rec, kKeys) ||
            !(names(offsetof(MagicFileMgrRec, fromArea), sizeof(MagicFileMgrRec::fromArea)) ||
              names(offsetof(MagicFileMgrRec, toArea), sizeof(MagicFileMgrRec::toArea))))
          return Range{};
        std::memset(out, 0, kKeys);
        return Range{0, kKeys};
      });
  return n;
}

}  // namespace ks
