// The group manager: renumbering a group across the setup and deleting it with its fileechos,
// first on the files alone (which bytes change, how many places count), then through its
// screens (the questions, the reports, the indexes rebuilt or left alone).
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "dbase/database.h"
#include "dbase/group_ops.h"
#include "dbase/list_recs.h"
#include "dbase/node_rec.h"
#include "editors/editor_fixture.h"

namespace ks {
namespace {

constexpr int kSystems = 3;
const std::size_t kSize = FileechoRecordSize(kSystems);

GroupSet Set(std::initializer_list<std::uint8_t> groups) {
  GroupSet s;
  for (auto g : groups) s.Add(g);
  return s;
}

class GroupTest : public test::EditorTest {
 protected:
  // Groups 3 and 5 are used, 9 is not. Group 3 holds ALPHA and beta; a hatch entry and two
  // magic file names name them (in other letter cases), one report, both sets of one node
  // and one configuration set hold group 3.
  GroupTest() {
    ctx_.systems_per_area = kSystems;
    ctx_.config_group_sets = {&config_[0], &config_[1]};
    Seed();
  }
  void Seed() {
    for (const auto& def : RecordFileDefs()) {
      std::filesystem::remove(DataFileName(dir_.path(), def.base));
      std::filesystem::remove(IndexFileName(dir_.path(), def.base));
    }
    std::vector<FileMGRrec> echoes(3);
    const std::pair<const char*, std::uint8_t> tags[] = {{"ALPHA", 3}, {"beta", 3}, {"GAMMA", 5}};
    for (int i = 0; i < 3; ++i) {
      echoes[i].tag = tags[i].first;
      echoes[i].group = tags[i].second;
      echoes[i].description = "keep me";
    }
    dir_.Insert(RecordFileId::kFAreas, echoes, kSize);
    std::vector<NewFileMgrRec> reports(2);
    reports[0].groups = Set({3, 7});
    reports[1].groups = Set({5});
    dir_.Insert(RecordFileId::kReports, reports);
    std::vector<NodeMGRrec> nodes(2);
    nodes[0].address = {2, 280, 1, 0};
    nodes[0].groups = Set({3});
    nodes[0].billGroups = Set({3, 4});
    nodes[1].address = {2, 280, 2, 0};
    nodes[1].groups = Set({5});
    dir_.Insert(RecordFileId::kNodes, nodes);
    std::vector<HatchMGRrec> hatch(2);
    hatch[0].area = "alpha";
    hatch[1].area = "GAMMA";
    dir_.Insert(RecordFileId::kHatch, hatch);
    std::vector<MagicFileMgrRec> magic(3);
    const char* links[][2] = {{"BETA", "X"}, {"X", "Alpha"}, {"GAMMA", ""}};
    for (int i = 0; i < 3; ++i) {
      magic[i].type = mtAdoptFile;
      magic[i].mask = "M" + std::to_string(i);
      magic[i].fromArea = links[i][0];
      magic[i].toArea = links[i][1];
    }
    dir_.Insert(RecordFileId::kMagic, magic);
    std::vector<GrpFileMgrRec> groups(3);
    const std::pair<std::uint8_t, const char*> names[] = {{3, "Three"}, {5, "Five"}, {9, "Nine"}};
    for (int i = 0; i < 3; ++i) {
      groups[i].fileecho.group = names[i].first;
      groups[i].name = names[i].second;
    }
    dir_.Insert(RecordFileId::kGroups, groups);
    config_[0] = Set({3});
    config_[1] = Set({5});
  }

  // Bytes that differ between two images of a file.
  static int Changed(const test::Bytes& a, const test::Bytes& b) {
    EXPECT_EQ(a.size(), b.size());
    int n = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) n += a[i] != b[i];
    return n;
  }
  // The entries of a pair as an editor opens it.
  int Entries(RecordFileId id, std::size_t size) {
    ksDataBase db(FileDef(id).base, size, FileDef(id).keys);
    return db.Open(dir_.path()) == ksDataBase::OpenResult::kOk ? db.count() : -1;
  }
  ino_t Inode(const std::string& name) {
    struct stat st {};
    return stat((dir_.path() + name).c_str(), &st) == 0 ? st.st_ino : 0;
  }
  void Run(const std::string& keys) {
    vt_.Keys(keys);
    try {
      RunGroupManager(ctx_);
    } catch (const KeysExhausted&) {
    }
  }

  GroupSet config_[2];
};

TEST_F(GroupTest, RenumberingChangesOnlyTheGroupBitsAndCountsEverySet) {
  const char* files[] = {"FAREAS.KSX", "REPORTS.KSX", "NODEFILE.KSX"};
  std::vector<test::Bytes> before;
  for (auto f : files) before.push_back(dir_.ReadBytes(f));
  const RenumberCount n = RenumberGroupInFiles(dir_.path(), kSystems, 3, 8);
  EXPECT_EQ(n.fileechos, 2);
  EXPECT_EQ(n.reports, 1);
  EXPECT_EQ(n.nodes, 2);  // authorized and billing groups of the first node
  // A group byte each; bits 3 and 8 lie in two bytes of a set.
  const int changed[] = {2, 2, 4};
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(Changed(before[i], dir_.ReadBytes(files[i])), changed[i]) << files[i];
  EXPECT_EQ(dir_.Record<FileMGRrec>("FAREAS.KSX", 1, kSize).group, 8);
  EXPECT_EQ(GroupSetText(dir_.Record<NewFileMgrRec>("REPORTS.KSX").groups), "7,8");
  EXPECT_EQ(GroupSetText(dir_.Record<NodeMGRrec>("NODEFILE.KSX").billGroups), "4,8");
  EXPECT_EQ(RenumberGroupInFiles(dir_.path(), kSystems, 3, 8).total(), 0);
}

TEST_F(GroupTest, DeletionClearsTheKeysOfTheGroupsFileechosAndTheirEntries) {
  const GroupRemoval n = DeleteGroupFromFiles(dir_.path(), kSystems, 3);
  EXPECT_EQ(n.fileechos, 2);
  EXPECT_EQ(n.hatch, 1);
  EXPECT_EQ(n.magic, 2);
  for (int i = 0; i < 2; ++i) {
    const auto r = dir_.Record<FileMGRrec>("FAREAS.KSX", i, kSize);
    EXPECT_TRUE(r.tag.empty() && r.group == 0);
    EXPECT_EQ(r.description.str(), "keep me");
  }
  EXPECT_EQ(dir_.Record<FileMGRrec>("FAREAS.KSX", 2, kSize).tag.str(), "GAMMA");
  EXPECT_EQ(dir_.Record<MagicFileMgrRec>("MGICFILE.KSX", 2).mask.str(), "M2");
  // Records already deleted (all keys zero) are not counted again.
  EXPECT_EQ(DeleteGroupFromFiles(dir_.path(), kSystems, 3).total(), 0);
  EXPECT_EQ(DeleteGroupFromFiles(dir_.path(), kSystems, 0).total(), 0);
}

TEST_F(GroupTest, ScreensAskRenumberAndReport) {
  const struct {
    const char* what;
    const char* keys;
    const char* shown;  // "" when nothing is asked
    int config_first;   // the first configuration set, as numbers: 3 or 8
    int fileechos_in_3;
  } cases[] = {
      {"new number, Yes", "<Enter>8<Esc><Enter><Enter>", "The group was updated in 6 place(s)", 8,
       0},
      {"new number, asked", "<Enter>8<Esc><Enter>", "new group number in rest of setup?", 3, 2},
      {"new number, No", "<Enter>8<Esc><Enter><Tab><Enter>", "", 3, 2},
      {"name only", "<Enter><Down>Net<Esc><Enter>", "", 3, 2},
      {"a new group", "<Ins>12<Esc><Enter>", "", 3, 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Seed();
    Run(c.keys);
    if (*c.shown) {
      EXPECT_TRUE(Shown(c.shown));
    }
    EXPECT_FALSE(!*c.shown && Shown("Replace old group number with"));
    EXPECT_EQ(GroupSetText(config_[0]), std::to_string(c.config_first));
    int in3 = 0;
    for (int i = 0; i < 3; ++i) in3 += dir_.Record<FileMGRrec>("FAREAS.KSX", i, kSize).group == 3;
    EXPECT_EQ(in3, c.fileechos_in_3);
  }
}

TEST_F(GroupTest, DeletingRemovesAndRebuildsOnlyWhenSomethingWentAway) {
  // Group 9 (the last) is used nowhere: nothing removed, no index rebuilt. Group 3 (the first)
  // takes two fileechos, a hatch entry and two magic file names along.
  const struct {
    const char* where;
    const char* shown;
    bool rebuilt;
    int left[3];  // entries of FAREAS, HATCH and MGICFILE afterwards
  } cases[] = {{"<End>", "Removed 0 fileechos, hatch, and", false, {3, 2, 3}},
               {"<Home>", "Removed 5 fileechos, hatch, and", true, {1, 1, 1}}};
  for (const auto& c : cases) {
    Seed();
    const std::string del = std::string(c.where) + "<Del><Tab><Enter><Enter>";
    Run(del);
    EXPECT_TRUE(Shown(c.shown) && Shown("magicfile name entries")) << c.shown;
    Seed();
    const ino_t index = Inode("FAREAS.IDX");
    Run(del + "<Enter>");
    EXPECT_EQ(Inode("FAREAS.IDX") != index, c.rebuilt) << c.shown;
    EXPECT_EQ(Entries(RecordFileId::kGroups, sizeof(GrpFileMgrRec)), 2);
    const int left[] = {Entries(RecordFileId::kFAreas, kSize),
                        Entries(RecordFileId::kHatch, sizeof(HatchMGRrec)),
                        Entries(RecordFileId::kMagic, sizeof(MagicFileMgrRec))};
    EXPECT_TRUE(std::equal(left, left + 3, c.left)) << c.shown;
  }
}

TEST_F(GroupTest, BbsMaskAndMaxFileAreOneField) {
  // "BBS Mask" is the 7th field; "Max file" shows the same two bytes.
  Run("<Enter>" + test::Downs(6) + "1000<Esc><Enter>");
  const std::uint16_t bbs_mask = dir_.Record<GrpFileMgrRec>("GRPFILE.KSX").fileecho.maxFiles;
  EXPECT_EQ(bbs_mask, 1000);
  Run("");
  EXPECT_EQ(vt_.Row(3 + 13).substr(68, 4), "1000");
}

}  // namespace
}  // namespace ks
