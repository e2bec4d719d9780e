// The Index and Pack commands run by the whole program on a program directory.
#include <gtest/gtest.h>

#include "app_fixture.h"
#include "common/fileutil.h"
#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "shell/cfgdefaults.h"
#include "shell/program.h"

namespace ks {
namespace {

class MaintenanceCommandTest : public test::AppTest {
 protected:
  void SetUp() override {
    KESTRAcfg cfg{};
    FillNewDefaults(cfg);
    cfg.addresses[0] = {2, 280, 5555, 0};
    cfg.numberOfSystems = 10;  // fileecho records of 739 + 90 bytes
    cfg.echoMailOption = kEchoPackDropUnlinked;
    WriteSetup(cfg);
  }
  template <class Rec>
  void WriteRecords(const std::string& name, const std::vector<Rec>& recs, std::size_t size) {
    std::string bytes;
    for (const Rec& r : recs) bytes.append(reinterpret_cast<const char*>(&r), size);
    dir_.Write(name, bytes);
  }
  std::size_t Size(const std::string& name) const {
    return static_cast<std::size_t>(FileSize(dir_ / name).value_or(0));
  }
};

// Dropping deleted fileechos is the end-to-end Index/Pack case; here the configuration hands
// the number of systems and the echomail option on.
TEST_F(MaintenanceCommandTest, PackTakesRecordSizeAndEchomailOptionFromTheConfiguration) {
  EchoMGRrec linked{}, unlinked{};
  linked.tag = "LINKED";
  linked.systems[0].address = {2, 280, 1, 0};
  unlinked.tag = "UNLINKED";
  WriteRecords<EchoMGRrec>("MAREAS.KSX", {unlinked, linked}, EchoRecordSize(10));
  EchoMgrIdx entries[2] = {};
  entries[0].tag = "LINKED";
  entries[0].recno = 1;
  entries[1].tag = "UNLINKED";
  dir_.Write("MAREAS.IDX", std::string(reinterpret_cast<const char*>(entries), sizeof entries));
  EXPECT_EQ(Run({"pack"}, ""), 0);
  // The area no system is connected to goes; the records keep their configured size.
  EXPECT_EQ(Size("MAREAS.KSX"), EchoRecordSize(10));
  EXPECT_EQ(ReadWholeFile(dir_ / "MAREAS.KSX")->substr(1, 6), "LINKED");
  EXPECT_EQ(Size("MAREAS.IDX"), sizeof(EchoMgrIdx));
}

TEST_F(MaintenanceCommandTest, TheMenuRunsWithTheGroupTableLoadedAndReleasesIt) {
  GrpFileMgrRec groups[2] = {};
  groups[0].fileecho.group = 7;
  groups[0].name = "Seven";
  groups[1].fileecho.group = 3;
  groups[1].name = "Three";
  WriteRecords<GrpFileMgrRec>("GRPFILE.KSX", {groups[0], groups[1]}, sizeof(GrpFileMgrRec));
  std::vector<GroupTableEntry> seen;
  menu_actions().main[kSystemData] = [&] { seen = prog().group_table; };
  EXPECT_EQ(Run({}, "<Enter><F9>"), 0);
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].group, 7);
  EXPECT_EQ(seen[1].name, "Three");
  EXPECT_FALSE(seen[1].deleted);
  EXPECT_TRUE(prog().group_table.empty());
}

}  // namespace
}  // namespace ks
