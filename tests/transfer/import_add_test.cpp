#include "transfer/import_add.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "dbase/rawfile.h"
#include "dbase/recordfile.h"
#include "tempdir.h"

namespace ks {
namespace {

class ImportAddTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (auto id : {RecordFileId::kFAreas, RecordFileId::kMAreas, RecordFileId::kNodes}) {
      std::ofstream(DataFileName(dir_.path(), FileDef(id).base));
      std::ofstream(IndexFileName(dir_.path(), FileDef(id).base));
    }
    target_.data_dir = dir_.path();
    target_.systems = 3;
    target_.node_defaults.ticMode = tmAdvanced;
    target_.node_defaults.options = kNodeAllowAutoAdd | kNodeInactive;  // the latter not taken
  }
  static ImportArea Area(std::string tag, std::vector<NetAddr> links) {
    ImportArea a;
    a.tag = std::move(tag);
    a.description = "about " + a.tag;
    for (const auto& l : links) a.links.push_back({l, DefaultLinkFlags(), "pw"});
    return a;
  }

  test::TempDir dir_;
  ImportTarget target_;
};

const NetAddr kA{2, 280, 1, 0}, kB{2, 280, 2, 0}, kC{2, 280, 3, 0}, kD{2, 280, 4, 0};

TEST_F(ImportAddTest, ConferencesAndTheirSystemsAreAddedOnceEach) {
  ImportList list;
  list.areas = {Area("LINUX", {kA, kB, kA}), Area("linux", {kC}), Area("", {kD}),
                Area(std::string(50, 'L'), {}), Area("BIG", {kA, kB, kC, kD})};
  list.areas[0].base_type = mbJam;
  list.areas[0].base_path = "/jam/linux";
  list.areas[0].passthrough = false;
  list.areas[4].passthrough = true;
  std::vector<std::string> shown;
  ImportResult r = AddImported(list, target_, [&](const std::string& t) { shown.push_back(t); });
  ASSERT_EQ(r.error, "");
  EXPECT_EQ(r.areas, 3);
  EXPECT_EQ(r.systems, 4);
  EXPECT_EQ(shown, (std::vector<std::string>{"LINUX", std::string(40, 'L'), "BIG"}));
  EXPECT_EQ(r.cut, std::vector<std::string>{"BIG"});

  TMAreasFile areas(3);
  TNodeFile nodes;
  ASSERT_TRUE(areas.Open(dir_.path()) && nodes.Open(dir_.path()));
  EXPECT_EQ(areas.Count(), 3);
  EchoMGRrec e;
  ASSERT_TRUE(areas.ReadRecord(areas.Find("LINUX"), e));
  EXPECT_EQ(e.description.str(), "about LINUX");
  EXPECT_EQ(e.area.type, mbJam);
  EXPECT_EQ(e.area.path.str(), "/jam/linux");
  EXPECT_EQ(e.systems[0].address, kA);
  EXPECT_EQ(e.systems[1].address, kB);
  EXPECT_FALSE(e.systems[2].address.IsSet());
  ASSERT_TRUE(areas.ReadRecord(areas.Find("BIG"), e));
  EXPECT_TRUE(e.Has(kEmPassThrough));
  EXPECT_EQ(e.area.type, mbNone);
  EXPECT_EQ(e.systems[2].address, kC);
  NodeMGRrec n;
  ASSERT_TRUE(nodes.ReadRecord(nodes.Find(kD), n));
  EXPECT_EQ(n.sysop.str(), "Sysop");
  EXPECT_EQ(n.ticPassword.str(), "pw");
  EXPECT_EQ(n.ticMode, tmAdvanced);
  const std::uint16_t options = n.options;  // a packed member, read before it is compared
  EXPECT_EQ(options, kNodeAllowAutoAdd);
  areas.Close();
  nodes.Close();

  r = AddImported(list, target_);
  EXPECT_EQ(r.areas + r.systems, 0);
  EXPECT_EQ(SummaryLines(r), std::vector<std::string>{"0 fileechos and 0 systems added"});
}

TEST_F(ImportAddTest, FileechosGoToTheFileechoFile) {
  ImportList list;
  list.fileechos = true;
  list.max_links = 1;
  list.areas = {Area("NODEDIFF", {kA, kB})};
  list.areas[0].directory = "/files/nd";
  list.nodes = {{kC, "pkt", "mgr"}};
  const ImportResult r = AddImported(list, target_);
  EXPECT_EQ(r.areas, 1);
  EXPECT_EQ(r.systems, 3);
  EXPECT_EQ(r.cut, std::vector<std::string>{"NODEDIFF"});
  TFAreasFile areas(3);
  ASSERT_TRUE(areas.Open(dir_.path()));
  FileMGRrec f;
  ASSERT_TRUE(areas.ReadRecord(0, f));
  EXPECT_EQ(f.destination.str(), "/files/nd");
  EXPECT_EQ(f.systems[0].address, kA);
  EXPECT_FALSE(f.systems[1].address.IsSet());
  TNodeFile nodes;
  NodeMGRrec n;
  ASSERT_TRUE(nodes.Open(dir_.path()) && nodes.ReadRecord(nodes.Find(kC), n));
  EXPECT_EQ(n.pktPassword.str(), "pkt");
  EXPECT_EQ(n.areaMgrPassword.str(), "mgr");
}

TEST_F(ImportAddTest, AMissingDataFileIsNamedAndNothingIsWritten) {
  std::remove(IndexFileName(dir_.path(), "NODEFILE").c_str());
  ImportList list;
  list.areas = {Area("X", {kA})};
  const ImportResult r = AddImported(list, target_);
  EXPECT_EQ(r.error, DataFileName(dir_.path(), "NODEFILE") + " file not found");
  EXPECT_EQ(r.areas, 0);
  RawFile f;
  ASSERT_TRUE(f.Open(DataFileName(dir_.path(), "MAREAS"), RawFile::Mode::kRead));
  EXPECT_EQ(f.Size(), 0u);
}

TEST(ImportSummaryTest, LinesOfTheClosingBox) {
  ImportResult r;
  r.areas = 2;
  r.slots = 200;
  const std::vector<std::string> note = {
      "", "Note: KESTRA has many different options. Please check",
      "the configuration of the imported fileechos and systems", "before continuing"};
  auto with = [&](std::vector<std::string> head, std::vector<std::string> tail = {}) {
    head.insert(head.end(), note.begin(), note.end());
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
  };
  EXPECT_EQ(SummaryLines(r), with({"2 areas added"}));
  r.systems = 1;
  EXPECT_EQ(SummaryLines(r), with({"2 areas added", "1 systems added"}));
  r.areas = 0;
  r.cut = {"A", "B", "C", "D", "E", "F", "G"};
  EXPECT_EQ(SummaryLines(r), with({"1 systems added"},
                                  {"", "Only the first 200 systems were connected to:", "A B C D E",
                                   "and 2 more areas"}));
}

}  // namespace
}  // namespace ks
