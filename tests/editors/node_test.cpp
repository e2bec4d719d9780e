// The node manager: the checks before a system is saved and where they leave the cursor, the
// defaults of new systems, the global edit, and a changed or deleted address carried into the
// fileechos, magic file names, reports, groups and echomail areas.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "editors/editor_fixture.h"
#include "editors/node_pages.h"
#include "editors/node_propagation.h"

namespace ks {
namespace {

constexpr int kSystems = 4;  // connected systems per fileecho and echomail area here
constexpr NetAddr kNode{2, 280, 10, 0};
constexpr NetAddr kNew{2, 280, 99, 0};
constexpr NetAddr kA{2, 280, 20, 0};
constexpr NetAddr kB{1, 2, 3, 4};

template <class T>
std::string Raw(const T& r, std::size_t size = sizeof(T)) {
  return std::string(reinterpret_cast<const char*>(&r), size);
}

template <class T>
std::string Concat(const std::vector<T>& recs, std::size_t size = sizeof(T)) {
  std::string s;
  for (const auto& r : recs) s += Raw(r, size);
  return s;
}

// The five files that name systems, as records.
struct SetupFiles {
  std::vector<FileMGRrec> fareas = std::vector<FileMGRrec>(4);
  std::vector<MagicFileMgrRec> magic = std::vector<MagicFileMgrRec>(2);
  std::vector<NewFileMgrRec> reports = std::vector<NewFileMgrRec>(1);
  std::vector<GrpFileMgrRec> groups = std::vector<GrpFileMgrRec>(1);
  std::vector<EchoMGRrec> mareas = std::vector<EchoMGRrec>(1);

  SetupFiles() {
    fareas[0].tag = "ONE";
    fareas[0].systems[0] = {kA, kSysSendFiles};
    fareas[0].systems[1] = {kNode, kSysSendFiles | kSysReceiveFiles};
    fareas[0].systems[2] = {kB, 0};
    fareas[1].tag = "TWO";
    fareas[1].systems[0] = {kNode, kSysPause};
    fareas[2].tag = "THREE";  // without the node
    fareas[2].systems[0] = {kA, 0};
    fareas[3].systems[0] = {kNode, 0};  // deleted: no key bytes
    magic[0].mask = "*.ZIP";
    magic[0].exports[0] = kNode;
    magic[0].exports[1] = kA;
    magic[1].mask = "*.LZH";
    magic[1].exports[0] = kA;
    reports[0].groups.Add(1);
    reports[0].exports[0] = kA;
    reports[0].exports[1] = kNode;
    groups[0].fileecho.group = 1;
    groups[0].fileecho.systems[0] = {kNode, kSysSendFiles};
    groups[0].name = "Net";
    mareas[0].tag = "SYSOP";
    mareas[0].systems[0] = {kB, 0};
    mareas[0].systems[1] = {kNode, 0};
    mareas[0].systems[2] = {kA, 0};
  }
};

class NodeTest : public test::EditorTest {
 protected:
  NodeTest() {
    ctx_.systems_per_area = kSystems;
    ctx_.node_defaults = &defaults_;
  }
  void Write(const SetupFiles& s) {
    dir_.Write("FAREAS.KSX", Concat(s.fareas, FileDef(RecordFileId::kFAreas).RecordSize(kSystems)));
    dir_.Write("MGICFILE.KSX", Concat(s.magic));
    dir_.Write("REPORTS.KSX", Concat(s.reports));
    dir_.Write("GRPFILE.KSX", Concat(s.groups));
    dir_.Write("MAREAS.KSX", Concat(s.mareas, FileDef(RecordFileId::kMAreas).RecordSize(kSystems)));
  }
  // The five files hold exactly the records of `s`.
  void ExpectFiles(const SetupFiles& s) {
    EXPECT_EQ(dir_.Read("FAREAS.KSX"),
              Concat(s.fareas, FileDef(RecordFileId::kFAreas).RecordSize(kSystems)));
    EXPECT_EQ(dir_.Read("MGICFILE.KSX"), Concat(s.magic));
    EXPECT_EQ(dir_.Read("REPORTS.KSX"), Concat(s.reports));
    EXPECT_EQ(dir_.Read("GRPFILE.KSX"), Concat(s.groups));
    EXPECT_EQ(dir_.Read("MAREAS.KSX"),
              Concat(s.mareas, FileDef(RecordFileId::kMAreas).RecordSize(kSystems)));
  }
  void AddNodes(const std::vector<NodeMGRrec>& nodes) { dir_.Insert(RecordFileId::kNodes, nodes); }
  NodeMGRrec Node(int n) { return dir_.Record<NodeMGRrec>("NODEFILE.KSX", n); }
  static NodeMGRrec MakeNode(NetAddr address, const char* sysop, std::uint8_t group = 1) {
    NodeMGRrec r;
    r.address = address;
    r.sysop = sysop;
    r.groups.Add(group);
    return r;
  }
  void Run(const std::string& keys) { EditorTest::Run(RunNodeManager, keys); }
  void Stop(const std::string& keys) { EditorTest::Stop(RunNodeManager, keys); }
  bool Shows(const std::string& keys, const std::string& text) {
    return EditorTest::Shows(RunNodeManager, keys, text);
  }
  // Where the node (or the address it got) is still named: only the deleted fileecho, which is
  // not visited, keeps it.
  void ExpectOnlyTheDeletedFileechoNames(NetAddr a) {
    const std::size_t fsize = FileDef(RecordFileId::kFAreas).RecordSize(kSystems);
    EXPECT_EQ(dir_.Read("FAREAS.KSX").find(Raw(a)), 3 * fsize + kFileechoFixedSize);
    for (const char* f : {"MGICFILE.KSX", "REPORTS.KSX", "GRPFILE.KSX", "MAREAS.KSX"})
      EXPECT_EQ(dir_.Read(f).find(Raw(a)), std::string::npos) << f;
  }

  NodeDefaults defaults_;
};

// --- Checks ----------------------------------------------------------------------------------

TEST(NodeChecks, InOrderEachOnItsField) {
  using namespace node_page;
  NodeMGRrec r;
  r.address = {0, 280, 1, 5};  // a point without a zone is no address
  r.billing = 1;
  EXPECT_EQ(CheckNode(r)->field, kSystem);
  r.address.zone = 2;
  r.sysop = "   ";
  EXPECT_EQ(CheckNode(r)->field, kSysop);
  r.sysop = "Joe";
  EXPECT_EQ(CheckNode(r)->field, kCostSharing);
  EXPECT_EQ(CheckNode(r)->message,
            "You must define the day that bills should/be sent. Accepted values are 1-28");
  r.sendBill = bpWeekly;
  r.sendOn = 8;
  EXPECT_EQ(CheckNode(r)->message,
            "You must define the day that bills should/be sent. Accepted values are 1-7");
  r.sendOn = 7;
  EXPECT_FALSE(CheckNode(r));
  r.sendOn = 0;
  for (auto period : {bpDirect, bpYearly}) {
    r.sendBill = period;
    EXPECT_FALSE(CheckNode(r)) << "no day needed";
  }
  r.billing = 0;
  r.sendBill = bpMonthly;
  EXPECT_FALSE(CheckNode(r));
}

TEST_F(NodeTest, RefusalsPutTheCursorOnTheField) {
  // No address: the message, then the cursor on "System" (window row 2 + field row 2); no
  // sysop: on "System Operator".
  const struct {
    const char* keys;
    const char* message;
    const char* status;
    int row;
  } cases[] = {
      {"<Enter><Down>Joe<Esc><Enter>", "A system address must be specified", "System address", 4},
      {"<Enter>2:280/1<Esc><Enter>", "A sysop name must be specified", "System Operator", 5}};
  for (const auto& c : cases) {
    EXPECT_TRUE(Shows(c.keys, c.message)) << c.keys;
    Stop(std::string(c.keys) + "<Enter>");
    EXPECT_TRUE(StatusHas(c.status)) << c.keys;
    EXPECT_EQ(vt_.cursor_row(), c.row);
  }
  EXPECT_EQ(dir_.Read("NODEFILE.KSX"), "");
}

TEST_F(NodeTest, BillingWithoutADayOpensCostSharingOnSendOn) {
  const std::string add = "<Enter>2:280/1<Enter>Joe<PgDn><Enter>Y<Esc><Esc><Enter>";
  EXPECT_TRUE(Shows(add, "You must define the day that bills should") &&
              Shown("be sent. Accepted values are 1-28"));
  EXPECT_TRUE(Shows(add + "<Enter>", "Cost sharing options"));
  EXPECT_TRUE(StatusHas("Day of week/month or month of year"));
  // The day typed there, the edit page goes on from "Cost sharing options", and saves.
  Stop(add + "<Enter>15<Esc>");
  EXPECT_TRUE(StatusHas("Edit cost sharing options"));
  Run(add + "<Enter>15<Esc><Esc><Enter><Esc>");
  EXPECT_EQ(Node(0).billing + 0, 1);
  EXPECT_EQ(Node(0).sendOn + 0, 15);
  EXPECT_EQ(Node(0).sysop.str(), "Joe");
}

// --- Defaults --------------------------------------------------------------------------------

TEST_F(NodeTest, DefaultsPageAndANewSystemStartingFromIt) {
  AddNodes({MakeNode(kA, "Ann")});
  const std::string before = dir_.Read("NODEFILE.KSX");
  ctx_.archivers = {"ARC", "ARJ", "LZH", "PAK", "ZIP", "RAR"};
  Run("<F3><Space><Space><Space><Esc>"                    // groups 1 and 2
      "<Down><Space><Down><Space><Space>"                 // Hold, Crash
      "<Down><Space><Down><Space><Space>"                 // Normal TIC file, Pack ALL files
      "<Down>Y<Down>Y<Down>N<Down>Y<Down>N"               //
      "<Down><Space><Space><Space><Space><Space><Space>"  // the sixth archiver
      "<Esc><Esc>");
  EXPECT_TRUE(defaults_.groups.Has(1) && defaults_.groups.Has(2) && !defaults_.groups.Has(3));
  EXPECT_EQ(defaults_.fileAttachStatus + 0, fsHold);
  EXPECT_EQ(defaults_.otherMailStatus + 0, fsCrash);
  EXPECT_EQ(defaults_.ticMode + 0, tmNormal);
  EXPECT_EQ(defaults_.packMode + 0, pmAllFiles);
  EXPECT_EQ(defaults_.options + 0, kNodeIncludeTemplate | kNodeSendNotifyList | kNodeAllowAutoAdd);
  EXPECT_EQ(defaults_.compression + 0, 6);
  EXPECT_EQ(dir_.Read("NODEFILE.KSX"), before) << "F3 leaves the shown system alone";
  EXPECT_TRUE(Shows("<F3><PgDn>", "Edit defaults") && Shown("RAR"));
  EXPECT_TRUE(StatusHas("Type of compression to use for packing TIC files and arcmail"));

  Run("<Ins>2:280/77<Enter>New<Esc><Enter><Esc>");  // the defaults as they are now
  const NodeMGRrec r = Node(1);
  EXPECT_EQ(r.address, (NetAddr{2, 280, 77, 0}));
  EXPECT_EQ(r.sysop.str(), "New");
  EXPECT_EQ(std::memcmp(&r.groups, &defaults_.groups, sizeof r.groups), 0);
  EXPECT_EQ(r.fileAttachStatus + 0, fsHold);
  EXPECT_EQ(r.otherMailStatus + 0, fsCrash);
  EXPECT_EQ(r.ticMode + 0, tmNormal);
  EXPECT_EQ(r.packMode + 0, pmAllFiles);
  EXPECT_EQ(r.options + 0, defaults_.options + 0);
  EXPECT_EQ(r.compression + 0, 6);
}

// --- Global edit -----------------------------------------------------------------------------

TEST_F(NodeTest, GlobalEditCountsAndGroupLimit) {
  NodeMGRrec both = MakeNode({2, 280, 3, 0}, "Both");
  both.groups.Add(2);
  AddNodes({MakeNode({2, 280, 1, 0}, "One"), MakeNode({2, 280, 2, 0}, "Two", 2), both});
  // All marked; "Inactive" on for the systems of group 1.
  EXPECT_TRUE(
      Shows("<F2><F2><Esc><Enter><Down><Down><Down><Down><Enter><Enter><Enter><Space><Esc><Enter>",
            "Toggled the Inactive field for 2 records"));
  EXPECT_TRUE(Node(0).Has(kNodeInactive));
  EXPECT_FALSE(Node(1).Has(kNodeInactive)) << "not in group 1";
  EXPECT_TRUE(Node(2).Has(kNodeInactive));
  // A list field, every marked system: the one already "Pack ALL files" is not counted.
  NodeGlobalChange change{.item = 3, .value = pmAllFiles};
  NodeMGRrec first = Node(0);
  ASSERT_TRUE(ApplyNodeChange(change, first));
  EXPECT_FALSE(ApplyNodeChange(change, first));
  EXPECT_TRUE(
      Shows("<F2><F2><Esc><Enter><Down><Down><Down><Enter><Down><Down><Enter><Tab><Enter><Enter>",
            "Changed the Pack mode field for 3 records"));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Node(i).packMode + 0, pmAllFiles);
  // "No" to "Process changes?" after choosing "Hold" for the file attach status changes nothing.
  const std::string before = dir_.Read("NODEFILE.KSX");
  Stop("<F2><F2><Esc><Enter><Enter><Down><Enter><Tab><Enter><Tab><Enter>");
  EXPECT_EQ(dir_.Read("NODEFILE.KSX"), before);
}

// --- Propagation (the Yes to a changed address is checked end to end, in tests/e2e)
// -------------------------------------------------------------------------------

TEST_F(NodeTest, ReplaceAndRemoveThroughAllFiveFiles) {
  SetupFiles s;
  Write(s);
  EXPECT_EQ(ReplaceNode(dir_.path(), kSystems, kNode, kNew), 6);
  s.fareas[0].systems[1].address = kNew;  // the switches stay
  s.fareas[1].systems[0].address = kNew;
  s.magic[0].exports[0] = kNew;
  s.reports[0].exports[1] = kNew;
  s.groups[0].fileecho.systems[0].address = kNew;
  s.mareas[0].systems[1].address = kNew;
  ExpectFiles(s);

  EXPECT_EQ(RemoveNode(dir_.path(), kSystems, kNew), 6);
  s.fareas[0].systems[1] = s.fareas[0].systems[2];  // the gap closes
  s.fareas[0].systems[2] = {};
  s.fareas[1].systems[0] = {};
  s.magic[0].exports[0] = kA;
  s.magic[0].exports[1] = {};
  s.reports[0].exports[1] = {};
  s.groups[0].fileecho.systems[0] = {};
  s.mareas[0].systems[1] = s.mareas[0].systems[2];
  s.mareas[0].systems[2] = {};
  ExpectFiles(s);
  EXPECT_EQ(RemoveNode(dir_.path(), kSystems, kNew), 0) << "nowhere any more";
  ExpectFiles(s);
}

TEST_F(NodeTest, ListsKeepUsedSlotsFirstAndNameNoSystemTwice) {
  SetupFiles s;
  s.fareas[0].systems[1] = {};  // a damaged list with a hole: A, -, B, node
  s.fareas[0].systems[3] = {kNode, kSysPause};
  s.fareas[2].systems[1] = {kNode, kSysReceiveFiles};  // A, node
  Write(s);
  // Replacing the node by A: where A is listed already the node only goes.
  EXPECT_EQ(ReplaceNode(dir_.path(), kSystems, kNode, kA), 7);
  SetupFiles want = s;
  want.fareas[0].systems[1] = {kB, 0};  // A, B: the hole closed as well
  want.fareas[0].systems[2] = {};
  want.fareas[0].systems[3] = {};
  want.fareas[1].systems[0].address = kA;  // its switches kept
  want.fareas[2].systems[1] = {};
  want.magic[0].exports[0] = kA;
  want.magic[0].exports[1] = {};
  want.reports[0].exports[1] = {};
  want.groups[0].fileecho.systems[0].address = kA;
  want.mareas[0].systems[1] = {kA, 0};
  want.mareas[0].systems[2] = {};
  ExpectFiles(want);
  // The deleted fileecho still names the node: deleted records are not visited.
  ExpectOnlyTheDeletedFileechoNames(kNode);
}

TEST_F(NodeTest, ChangedAddressIsLeftInTheSetupOnNo) {
  SetupFiles s;
  Write(s);
  AddNodes({MakeNode(kNode, "Joe")});
  // No: the system gets its new address, the rest of the setup stays.
  Run("<Enter>2:280/98<Esc><Enter><Tab><Enter><Esc>");
  EXPECT_EQ(Node(0).address, (NetAddr{2, 280, 98, 0}));
  ExpectFiles(s);
  // Changing only the sysop name does not ask.
  Stop("<Enter><Down>Bob<Esc><Enter>");
  EXPECT_FALSE(Shown("Replace node in rest of setup?"));
  EXPECT_EQ(Node(0).sysop.str(), "Bob");
}

TEST_F(NodeTest, DeletedSystemIsRemovedOnYesOnly) {
  SetupFiles s;
  Write(s);
  AddNodes({MakeNode(kNode, "Joe"), MakeNode(kA, "Ann")});
  Run("<Del><Tab><Enter><Tab><Enter><Esc>");  // "Delete this entry?" Yes, then No
  ExpectFiles(s);
  EXPECT_EQ(dir_.Read("NODEFILE.IDX").size(), sizeof(NodeMGRidx));
  AddNodes({MakeNode(kNode, "Joe")});
  EXPECT_TRUE(Shows("<Del><Tab><Enter><Enter>", "Removed node in 6 place(s)"));
  ExpectOnlyTheDeletedFileechoNames(kNode);
}

}  // namespace
}  // namespace ks
