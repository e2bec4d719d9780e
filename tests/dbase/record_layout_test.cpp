#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "dbase/node_rec.h"
#include "dbase/recfiles.h"
#include "dbase/record_fields.h"
#include "layout_check.h"

namespace ks {
namespace {

using test::ExpectTiles;

const LayoutField* FieldOf(std::string_view layout, std::string_view member) {
  const Layout* l = FindRecordLayout(layout);
  if (!l) return nullptr;
  for (const auto& f : l->fields)
    if (f.name == member) return &f;
  return nullptr;
}

TEST(RecordLayout, EveryRecordAndIndexEntryIsCoveredByItsFields) {
  std::set<std::string_view> names;
  for (const auto& layout : RecordLayouts()) {
    EXPECT_TRUE(names.insert(layout.name).second) << layout.name << " listed twice";
    ExpectTiles(layout.fields, layout.size, layout.name);
    // A free area is marked as such, and only a free area.
    for (const auto& f : layout.fields)
      EXPECT_EQ(f.reserved, f.name.starts_with("reserved")) << layout.name << ": " << f.name;
  }
  for (const char* name :
       {"FileMGRrec",    "ConnectedSystem", "MsgArea",     "GrpFileMgrRec", "EchoMGRrec",
        "NodeMGRrec",    "MagicFileMgrRec", "HatchMGRrec", "NewFileMgrRec", "AreaMGRRec",
        "BbsAreaMgrRec", "AllfilesMgrRec",  "FileMGRidx",  "GrpFileMgrIdx", "EchoMgrIdx",
        "NodeMGRidx",    "MagicMGRidx",     "HatchMgrIdx", "NewFileMgrIdx", "AreaMgrIdx",
        "BbsAreaMgrIdx", "AllfilesMgrIdx"})
    EXPECT_TRUE(names.contains(name)) << name << " has no table";

  // The area records are mapped at their default disk size; their systems run to the end.
  const LayoutField* fsys = FieldOf("FileMGRrec", "systems");
  ASSERT_NE(fsys, nullptr);
  EXPECT_EQ(fsys->offset, kFileechoFixedSize);
  EXPECT_EQ(fsys->size, kDefaultSystemsPerArea * sizeof(ConnectedSystem));
  const LayoutField* esys = FieldOf("EchoMGRrec", "systems");
  ASSERT_NE(esys, nullptr);
  EXPECT_EQ(esys->offset, kEchoFixedSize);
  EXPECT_EQ(esys->size, kDefaultSystemsPerArea * sizeof(ConnectedSystem));
}

// One key of a file: the record member it is copied from and the index member it lands in
// (of the same name unless given). The record member is named by its layout, which is the
// file's record unless given: a group record's keys lie in its fileecho part, at offset 0.
struct KeyMember {
  std::string_view record_member, index_member = {}, record_layout = {};
};
struct FileKeys {
  RecordFileId id;
  std::string_view record, index;
  std::vector<KeyMember> keys;
};

std::vector<FileKeys> AllFileKeys() {
  using enum RecordFileId;
  constexpr std::string_view fe = "FileMGRrec";
  return {
      {kAreas, "AreaMGRRec", "AreaMgrIdx", {{"comment"}}},
      {kReports, "NewFileMgrRec", "NewFileMgrIdx", {{"groups"}, {"inactive"}}},
      {kFAreas, "FileMGRrec", "FileMGRidx", {{"tag"}, {"group"}}},
      {kMAreas, "EchoMGRrec", "EchoMgrIdx", {{"tag"}, {"group"}}},
      {kGroups,
       "GrpFileMgrRec",
       "GrpFileMgrIdx",
       {{"group", {}, fe}, {"tag", "mask", fe}, {"name"}, {"groupUplink", "uplink", fe}}},
      {kMagic, "MagicFileMgrRec", "MagicMGRidx", {{"mask"}, {"type"}}},
      {kBbsAreas, "BbsAreaMgrRec", "BbsAreaMgrIdx", {{"group"}, {"comment"}}},
      {kHatch, "HatchMGRrec", "HatchMgrIdx", {{"area"}}},
      {kNodes, "NodeMGRrec", "NodeMGRidx", {{"address"}}},
      {kAllfiles, "AllfilesMgrRec", "AllfilesMgrIdx", {{"tag"}}},
  };
}

TEST(RecordLayout, IndexEntriesHoldTheKeysOfTheirFileAndTheRecordNumber) {
  const auto files = AllFileKeys();
  ASSERT_EQ(files.size(), kRecordFileCount);
  for (const auto& file : files) {
    const RecordFileDef& def = FileDef(file.id);
    SCOPED_TRACE(def.base);
    const Layout* index = FindRecordLayout(file.index);
    ASSERT_NE(index, nullptr);
    EXPECT_EQ(def.keys.entry_size(), index->size);
    EXPECT_EQ(def.keys.length() + 2, index->size);
    ASSERT_EQ(def.keys.count(), static_cast<int>(file.keys.size()));
    for (int k = 0; k < def.keys.count(); ++k) {
      const KeyDef& d = def.keys[k];
      const KeyMember& m = file.keys[static_cast<std::size_t>(k)];
      SCOPED_TRACE(d.name);
      // The key copies a whole member of the record...
      const LayoutField* from =
          FieldOf(m.record_layout.empty() ? file.record : m.record_layout, m.record_member);
      ASSERT_NE(from, nullptr) << m.record_member;
      EXPECT_EQ(d.rec_offset, from->offset);
      EXPECT_EQ(d.length, from->size);
      // ...into the member of the index entry that holds it.
      const LayoutField* to =
          FieldOf(file.index, m.index_member.empty() ? m.record_member : m.index_member);
      ASSERT_NE(to, nullptr) << m.index_member;
      EXPECT_EQ(d.key_offset, to->offset);
      EXPECT_EQ(d.length, to->size);
    }
    const LayoutField* recno = FieldOf(file.index, "recno");
    ASSERT_NE(recno, nullptr);
    EXPECT_EQ(recno->offset, def.keys.length());
    EXPECT_EQ(recno->size, 2u);
  }
}

TEST(RecordLayout, RecordSizesOfTheFilesMatchTheirRecordTypes) {
  for (const auto& file : AllFileKeys()) {
    const RecordFileDef& def = FileDef(file.id);
    SCOPED_TRACE(def.base);
    const Layout* record = FindRecordLayout(file.record);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(def.RecordSize(), record->size);
    EXPECT_LE(def.RecordSize(kMaxSystems), kMaxRecordSize);
    EXPECT_LE(def.keys.record_extent(), def.fixed_size);
  }
  EXPECT_EQ(FileDef(RecordFileId::kFAreas).RecordSize(), 2539u);
  EXPECT_EQ(FileDef(RecordFileId::kMAreas).RecordSize(), 2767u);
  EXPECT_EQ(FileDef(RecordFileId::kGroups).RecordSize(), sizeof(GrpFileMgrRec));

  // Area records grow by one slot per system and fit the in-memory struct at the most.
  for (std::size_t n : {0u, 1u, 200u, 255u}) {
    EXPECT_EQ(FileDef(RecordFileId::kFAreas).RecordSize(n), 739 + 9 * n);
    EXPECT_EQ(FileDef(RecordFileId::kMAreas).RecordSize(n), 967 + 9 * n);
    EXPECT_EQ(FileDef(RecordFileId::kNodes).RecordSize(n), sizeof(NodeMGRrec));
    EXPECT_EQ(FileDef(RecordFileId::kGroups).RecordSize(n), sizeof(GrpFileMgrRec));
  }
  EXPECT_EQ(FileDef(RecordFileId::kFAreas).RecordSize(kMaxSystems), sizeof(FileMGRrec));
  EXPECT_EQ(FileDef(RecordFileId::kMAreas).RecordSize(kMaxSystems), sizeof(EchoMGRrec));
}

TEST(RecordLayout, GroupRecordStartsWithTheDefaultsOfItsFileechos) {
  auto group = std::make_unique<GrpFileMgrRec>();
  group->fileecho.tag = "PDN*";
  group->fileecho.group = 12;
  group->fileecho.keep = -1;
  group->fileecho.maxFiles = 1000;  // the BBS mask
  group->fileecho.groupUplink = 3;
  group->fileecho.systems[0].address = {2, 280, 5555, 0};
  group->fileecho.systems[199].address = {1, 2, 3, 4};
  group->name = "Public domain";

  // Read as a fileecho record of the default size, the group gives the new fileecho's values.
  auto fe = std::make_unique<FileMGRrec>();
  std::memcpy(static_cast<void*>(fe.get()), group.get(),
              FileDef(RecordFileId::kFAreas).RecordSize());
  EXPECT_EQ(fe->tag.str(), "PDN*");
  EXPECT_EQ(fe->group, 12);
  EXPECT_EQ(fe->keep + 0, -1);
  EXPECT_EQ(fe->maxFiles + 0, 1000);
  EXPECT_EQ(fe->groupUplink, 3);
  EXPECT_EQ(fe->systems[0].address, (NetAddr{2, 280, 5555, 0}));
  EXPECT_EQ(fe->systems[199].address, (NetAddr{1, 2, 3, 4}));
  // The group name does not spill into the slots beyond the default 200.
  EXPECT_FALSE(fe->systems[200].address.IsSet());

  // "BBS Mask" and "Max file" are the same two bytes.
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(group.get());
  EXPECT_EQ(bytes[219] | (bytes[220] << 8), 1000);
  const LayoutField* max_files = FieldOf("FileMGRrec", "maxFiles");
  ASSERT_NE(max_files, nullptr);
  EXPECT_EQ(max_files->offset, 219u);
  EXPECT_EQ(max_files->size, 2u);
  // The name follows the 200 systems directly.
  EXPECT_EQ(bytes[2539], std::string_view("Public domain").size());
  EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(bytes + 2540), 13), "Public domain");
}

}  // namespace
}  // namespace ks
