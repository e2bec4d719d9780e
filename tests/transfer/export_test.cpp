// The export lists on a small program directory, byte for byte, and the Export window by key
// script: the file name prompt, the group choice and the files it leaves.
#include <gtest/gtest.h>

#include <memory>

#include "common/fileutil.h"
#include "dbase/rawfile.h"
#include "dbase/recordfile.h"
#include "tempdir.h"
#include "transfer/export_lists.h"
#include "transfer/export_menu.h"
#include "tui/picklist.h"
#include "vt_fixture.h"

namespace ks {
namespace {

constexpr NetAddr kHub{2, 280, 1, 0}, kPoint{2, 280, 5, 1}, kIdle{1, 2, 3, 0};
const std::string kLongTag(40, 'X');

class ExportTest : public test::VtTest {
 protected:
  ExportTest() : cfg_(std::make_unique<KESTRAcfg>()) {
    cfg_->numberOfSystems = 4;
    ctx_.cfg = cfg_.get();
    ctx_.data_dir = ctx_.current_dir = ctx_.program_dir = dir_.path();
    ctx_.version = "6.1.7";
    group_source() = [] { return std::vector<GroupName>{{1, "Net"}, {3, "Hobby"}}; };
  }
  ~ExportTest() override { group_source() = nullptr; }

  // Fileechos added out of order (the lists follow the index); slot 4 lies beyond the
  // configured systems and never reaches the file.
  void Records() {
    TFAreasFile areas(cfg_->numberOfSystems);
    TNodeFile nodes;
    for (TRecordFile* f : {static_cast<TRecordFile*>(&areas), static_cast<TRecordFile*>(&nodes)}) {
      WriteFileAtomic(DataFileName(dir_.path(), f->base()), "");
      WriteFileAtomic(IndexFileName(dir_.path(), f->base()), "");
      ASSERT_TRUE(f->Open(dir_.path()));
    }
    const struct {
      std::string tag, desc;
      std::uint8_t group;
      std::vector<NetAddr> systems;
    } echos[] = {{"linux", "Linux", 3, {kHub, {}, kPoint, kHub, kIdle}},
                 {kLongTag, "Long", 1, {kPoint}},
                 {"BETA", "Beta files", 1, {kHub}},
                 {"ALPHA", "", 2, {kHub}}};
    for (const auto& e : echos) {
      auto rec = std::make_unique<FileMGRrec>();
      rec->tag = e.tag;
      rec->description = e.desc;
      rec->group = e.group;
      rec->destination = "/files/" + e.tag.substr(0, 5);
      for (std::size_t s = 0; s < e.systems.size(); ++s) rec->systems[s].address = e.systems[s];
      ASSERT_TRUE(areas.Add(*rec));
    }
    for (const auto& [addr, sysop] : {std::pair{kPoint, "Point"}, {kHub, "Hub"}, {kIdle, "Idle"}}) {
      NodeMGRrec n{};
      n.address = addr;
      n.sysop = sysop;
      ASSERT_TRUE(nodes.Add(n));
    }
  }
  std::string File(const std::string& name) { return ReadWholeFile(dir_ / name).value_or("?"); }

  test::TempDir dir_;
  std::unique_ptr<KESTRAcfg> cfg_;
  TransferContext ctx_;
};

TEST_F(ExportTest, ListsInIndexOrder) {
  Records();
  GroupSet net_and_hobby;
  net_and_hobby.Add(1);
  net_and_hobby.Add(3);
  EXPECT_EQ(NameField(std::string(41, 'L')), std::string(41, 'L'));
  EXPECT_EQ(FileechoListText(ctx_, net_and_hobby, true), NameField("BETA") + "Beta files\n" +
                                                             NameField("linux") + "Linux\n" +
                                                             NameField(kLongTag) + "Long\n");
  EXPECT_EQ(FileechoListText(ctx_, net_and_hobby, false),
            NameField("BETA") + "\n" + NameField("linux") + "\n" + NameField(kLongTag) + "\n");
  EXPECT_EQ(DestDirsText(ctx_), "KESTRA 6.1.7 Fileecho area destination directories\n\n" +
                                    NameField("ALPHA") + "/files/ALPHA\n" + NameField("BETA") +
                                    "/files/BETA\n" + NameField("linux") + "/files/linux\n" +
                                    NameField(kLongTag) + "/files/XXXXX\n");
  // An index that does not fit its data (an entry past the end) is rebuilt, not trusted.
  const std::string dirs = *DestDirsText(ctx_);
  std::string index = File("FAREAS.IDX");
  index[42] = '\x63';
  dir_.Write("FAREAS.IDX", index);
  EXPECT_EQ(DestDirsText(ctx_), dirs);
}

// Two names to a line, each fileecho once per node even when it lists the node twice; a node
// in no fileecho keeps its header lines; a free slot does not end the systems.
TEST_F(ExportTest, NodeBreakdown) {
  Records();
  EXPECT_EQ(NodeBreakdownText(ctx_),
            "KESTRA 6.1.7  Nodes -> Fileechos break down\n\n"
            "1:2/3\nIdle\n  \n\n"
            "2:280/1\nHub\n  " +
                NameField("ALPHA") + NameField("BETA") + "\n  " + NameField("linux") +
                "\n\n"
                "2:280/5.1\nPoint\n  " +
                NameField("linux") + NameField(kLongTag) + "\n  \n\n");
}

TEST_F(ExportTest, CrossCheckReadsEachListInItsFormat) {
  Records();
  cfg_->tagPath = dir_.path() + "tags";
  ASSERT_TRUE(MakeDirs(dir_ / "tags"));
  dir_.Write("tags/UPLINK.TAG", "; comment\r\n  Beta  Beta files\r\n\r\nGAMMA\x1A");
  dir_.Write("FILEBONE.NA", "% header\nArea ALPHA 0 ! Alpha\nArea  LINUX\nBETA x\n");
  cfg_->uplinks[0].areasFile = "UPLINK.TAG";
  cfg_->uplinks[3].areasFile = "MISSING.TAG";
  cfg_->uplinks[7].areasFile = dir_ / "FILEBONE.NA";
  cfg_->uplinks[7].fileFormat = afFilebone;
  EXPECT_EQ(CrossCheckText(ctx_),
            "KESTRA 6.1.7 List of unlisted fileechos\n\n"
            "The following FILEBONE.xx and TAG files were scanned:\n\n\n" +
                dir_.path() + "tags/UPLINK.TAG\n" + dir_.path() + "FILEBONE.NA\n  " +
                std::string(76, '-') +
                "\nThe following fileechos were not listed in the above file(s):\n\n\n" + kLongTag +
                "\n");
  cfg_->tagPath = "";
  EXPECT_EQ(UplinkListPath(ctx_, "A.NA"), dir_ / "A.NA");
}

TEST_F(ExportTest, MissingDataFilesGiveNothing) {
  EXPECT_FALSE(FileechoListText(ctx_, GroupSet{}, true));
  EXPECT_FALSE(CrossCheckText(ctx_));
  EXPECT_FALSE(NodeBreakdownText(ctx_));
  EXPECT_FALSE(DestDirsText(ctx_));
  vt_.Keys("<Down><Down><Down><Enter><Enter><Esc>");
  RunExportMenu(ctx_);
  EXPECT_EQ(File("NODEECHO.TXT"), "");  // the file made stays empty
}

TEST_F(ExportTest, WindowPromptsAndGroupChoice) {
  Records();
  dir_.Write("ECHOLIST.TXT", "old");
  std::string screen;
  int topic = 0;
  ui().show_help = [&](int t) {
    topic = t;
    screen = Dump();
  };
  vt_.Keys("<Down><F1><Esc>");
  RunExportMenu(ctx_);
  ui().show_help = nullptr;
  EXPECT_EQ(topic, 20);
  for (const char* label : {"Create fileecho list", "Create tag list", "Cross check FILEBONE.xx",
                            "Nodes\xCD\x10"
                            "Echos breakdown",
                            "Export fileecho dest dirs", "Create a list of the fileechos tags"})
    EXPECT_NE(screen.find(label), std::string::npos) << label;
  // Esc in the prompt; no group chosen (the old list goes too); the tag list of group 3 under
  // a name of our own; the destination directories under the name offered.
  vt_.Keys(
      "<Enter><Esc><Enter><Enter><Esc><Down><Enter><C-Y>T.OUT<Enter><Down><Space><Esc>"
      "<End><Enter><Enter><Esc>");
  RunExportMenu(ctx_);
  EXPECT_FALSE(dir_.Has("ECHOLIST.TXT"));
  EXPECT_FALSE(dir_.Has("TAGLIST.TXT"));
  EXPECT_EQ(File("T.OUT"), NameField("linux") + "\n");
  EXPECT_EQ(File("DESTDIRS.TXT"), *DestDirsText(ctx_));
}

}  // namespace
}  // namespace ks
