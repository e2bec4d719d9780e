// Magic file names: each type's page shows its own fields from the top and writes them to the
// right bytes, the checks refuse what a type lacks on the field at fault, and rules of no
// known type are shown and deleted without being rewritten.
#include <gtest/gtest.h>

#include <algorithm>

#include "dbase/fileecho_rec.h"
#include "dbase/list_recs.h"
#include "editors/editor_fixture.h"

namespace ks {
namespace {

using test::Downs;
using test::kAdd;
using test::kSave;

constexpr int kPageTop = 9;  // screen row of the page's first row (the window's top is row 8)

class MagicTest : public test::EditorTest {
 protected:
  MagicTest() {
    ctx_.systems_per_area = 2;
    std::vector<FileMGRrec> areas(2);
    areas[0].tag = "NODELIST";
    areas[1].tag = "UTILS";
    areas[1].description = "Utilities";
    dir_.Insert(RecordFileId::kFAreas, areas, FileechoRecordSize(2));
    std::vector<NodeMGRrec> nodes(2);
    nodes[0].address = {2, 280, 1, 0};
    nodes[0].sysop = "Hub Sysop";
    nodes[1].address = {2, 280, 2, 0};
    dir_.Insert(RecordFileId::kNodes, nodes);
  }
  // Keys that add a rule of the type at `pos` in "Select type" (alphabetical order).
  static std::string AddType(int pos, bool first = false) {
    return std::string(first ? kAdd : "<Ins>") + Downs(pos) + "<Enter>";
  }
  std::string Data() const { return dir_.Read("MGICFILE.KSX"); }
  static std::string Bytes(const MagicFileMgrRec& r) {
    return std::string(reinterpret_cast<const char*>(&r), sizeof r);
  }
  // Where two records first differ (their size when they do not), to name the field at fault.
  static std::size_t FirstDifference(const std::string& a, const std::string& b) {
    return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first -
                                    a.begin());
  }
  // A row of the browse list: type, mask and from area in their columns, then the details.
  static std::string BrowseRow(std::string type, std::string mask, std::string from,
                               const std::string& details) {
    type.resize(13, ' ');
    mask.resize(13, ' ');
    from.resize(21, ' ');
    return type + mask + from + details;
  }
};

struct TypeCase {
  int pos;              // in "Select type"
  MagicType type;       //
  const char* prompts;  // the page's rows from "Type" down
  std::string keys;     // on the page, from "Type"
  const char* mask;
  const char* from;
  void (*more)(MagicFileMgrRec& r);  // the other fields it fills in (Directory: the test's own)
};

TEST_F(MagicTest, EveryTypeShowsItsFieldsAndWritesThem) {
  using R = MagicFileMgrRec;
  const std::string dir = dir_.path();
  const auto none = [](R&) {};
  const TypeCase cases[] = {
      {0, mtAdoptFile, "Type|File mask|From area|To area",
       "<Down>*.ZIP<Enter><F6><Down><Enter><Enter><F6><Down><Enter>",  // both from the list
       "*.ZIP", "NODELIST", [](R& r) { r.toArea = "UTILS"; }},
      {1, mtCopyFile, "Type|File mask|From area|Directory", "<Down>*.PDF<Enter>utils<Enter>" + dir,
       "*.PDF", "UTILS", none},
      {2, mtDeleteFile, "Type|File mask|From area", "<Down>*.EXE<Enter>utils", "*.EXE", "UTILS",
       none},
      {3, mtExecCommand, "Type|File mask|From area|Command",
       "<Down>*.TXT<Enter><F6><Enter><Enter>echo a;echo b", "*.TXT", "*** ALL ***",
       [](R& r) { r.command = "echo a;echo b"; }},
      {4, mtForwardTo, "Type|File mask|From area|Export",
       "<Down>NODELIST.*<Enter>nodelist<Enter><Enter><Space><Space><Esc>", "NODELIST.*", "NODELIST",
       [](R& r) {
         r.exports[0] = {2, 280, 1, 0};
         r.exports[1] = {2, 280, 2, 0};
       }},
      {5, mtHatchNew, "Type|File mask|From area|Days", "<Down>*.*<Enter>utils<Enter><Enter>N<Esc>",
       "*.*", "UTILS", [](R& r) { r.hatchDays = 0x7E; }},  // every day but Sunday
      {6, mtKeepNum, "Type|File mask|From area|Keep #", "<Down>NODEDIFF.*<Enter>nodelist<Enter>-1",
       "NODEDIFF.*", "NODELIST", [](R& r) { r.keep = -1; }},
      {7, mtMoveToArea, "Type|File mask|From area|To area", "<Down>*.ARJ<Enter><Enter>nodelist",
       "*.ARJ", "", [](R& r) { r.toArea = "NODELIST"; }},  // no from area: any
      {8, mtNoForward, "Type|File mask|From area", "<Down>*.MP3<Enter>utils", "*.MP3", "UTILS",
       none},
      {9, mtOtherPath, "Type|File mask|From area|Directory", "<Down>*.DOC<Enter>utils<Enter>" + dir,
       "*.DOC", "UTILS", none},
      {10, mtPassThruFile, "Type|File mask|From area", "<Down>*.ISO<Enter>utils", "*.ISO", "UTILS",
       none},
      {11, mtPickUpFile, "Type|File mask|Directory|Export",
       "<Down>*.LST<Enter>" + dir + "<Enter><Enter><Space><Esc>", "*.LST", "",
       [](R& r) {
         r.exports[0] = {2, 280, 1, 0};
       }},
      {12, mtSendOnFreq, "Type|File mask|Template|File",
       "<Down>FILES<Enter>FILES.APL<Enter>/pub/files.lst", "FILES", "",
       [](R& r) {
         r.templateFile = "FILES.APL";
         r.fileSpec = "/pub/files.lst";
       }},
      {13, mtServiceReq, "Type|Alias|Password|Command|Directory",  // no file mask
       "<Down>LIST<Enter>secret<Enter>mklist @<Enter>" + dir, "", "",
       [](R& r) {
         r.alias = "LIST";
         r.password = "secret";
         r.command = "mklist @";
       }},
      {14, mtUnpackFile, "Type|File mask|From area|Directory",
       "<Down>*.RAR<Enter>utils<Enter>" + dir, "*.RAR", "UTILS", none},
      {15, mtUpdateAlias, "Type|File mask|From area", "<Down>NODELIST.*<Enter>nodelist",
       "NODELIST.*", "NODELIST", none},
  };
  for (const TypeCase& c : cases) {
    SCOPED_TRACE(c.prompts);
    const bool first = &c == cases;
    // The page as it opens: the type's prompts one under the other, nothing below them.
    Stop(RunMagicFileNames, AddType(c.pos, first));
    std::string prompts = c.prompts;
    int row = kPageTop;
    for (std::size_t at = 0; at != std::string::npos; ++row) {
      const std::size_t bar = prompts.find('|', at);
      const std::string prompt = prompts.substr(at, bar == std::string::npos ? bar : bar - at);
      EXPECT_EQ(vt_.Row(row).substr(4, prompt.size()), prompt);
      at = bar == std::string::npos ? bar : bar + 1;
    }
    EXPECT_EQ(vt_.Row(row).substr(3, 60), std::string(60, ' '));
    EXPECT_TRUE(Shown(first ? "Adding new entry 1/1" : "Adding new entry"));

    Run(RunMagicFileNames, AddType(c.pos, first) + c.keys + kSave + "<Esc>");
    MagicFileMgrRec want;
    want.type = c.type;
    want.mask = c.mask;
    want.fromArea = c.from;
    c.more(want);
    if (std::string(c.prompts).ends_with("Directory") || c.type == mtPickUpFile)
      want.directory = dir;
    const std::string data = Data();
    ASSERT_EQ(data.size() % sizeof want, 0u);
    EXPECT_EQ(FirstDifference(data.substr(data.size() - sizeof want), Bytes(want)), sizeof want);
  }
  EXPECT_EQ(dir_.Read("MGICFILE.IDX").size(), 16 * sizeof(MagicMGRidx));
  // The browse list: the type, the mask, the from area and what the rule acts on.
  Stop(RunMagicFileNames, "<F5>");
  EXPECT_TRUE(Shown(BrowseRow("AdoptFile", "*.ZIP", "NODELIST", "UTILS")));
  EXPECT_TRUE(Shown(BrowseRow("HatchNew", "*.*", "UTILS", "Mon Tue Wed Thu Fri Sat")));
  EXPECT_TRUE(Shown(BrowseRow("ForwardTo", "NODELIST.*", "NODELIST", "2:280/1 2:280/2")));
  EXPECT_TRUE(Shown(BrowseRow("ServiceReq", "", "", "LIST")));
}

struct RefusalCase {
  int pos;
  std::string keys;     // on the page, from "Type"
  const char* message;  // shown on saving
  const char* status;   // the help line of the field the cursor goes back to
};

TEST_F(MagicTest, SavingRefusesWhatTheTypeLacksOnTheFieldAtFault) {
  const std::string dir = dir_.path();
  const RefusalCase cases[] = {
      {0, "<Down><Down>NODELIST<Enter>UTILS", "You must enter a file specification",
       "The file mask to match for this Magic file"},
      {0, "<Down>*.ZIP<Enter>*** all ***<Enter>UTILS", "You must select a fileecho",
       "The file echo name where KESTRA should look for this file"},
      {7, "<Down>*.ZIP<Enter>UTILS", "You must select a fileecho",
       "The file echo name that should adopt this file"},
      {7, "<Down>*.ZIP<Enter>utils<Enter>UTILS", "The from area must be different than the to area",
       "The file echo name where KESTRA"},
      {3, "<Down>*.ZIP", "You must enter a valid command to execute", "Command(s) to execute"},
      {14, "<Down>*.ZIP<Enter>UTILS", "You must enter a directory",
       "Directory to unpack this file to"},
      {11, "<Down>*.ZIP", "You must enter a directory", "Directory where to look for this file"},
      {5, "<Down>*.*", "You must select a fileecho", "The file echo name where KESTRA"},
      {5, "<Down>*.*<Enter>*** ALL ***", "You must select a fileecho",
       "The file echo name where KESTRA"},
      {13, "<Down><Down>pw", "You must enter an alias", "The Alias to trigger"},
      {13, "<Down>LIST<Enter><Enter>cmd", "You must enter a file specification to send",
       "Directory containing files to send"},
      {13, "<Down>LIST<Enter><Enter><Enter>" + dir, "You must enter a valid command to execute",
       "Command to execute for this service request"},
      {12, "<Down>FILES", "You must select a template or enter a file to send",
       "Template to send when"},
  };
  for (const RefusalCase& c : cases) {
    SCOPED_TRACE(c.message);
    const std::string keys = AddType(c.pos, true) + c.keys + kSave;
    EXPECT_TRUE(Shows(RunMagicFileNames, keys, c.message));
    Stop(RunMagicFileNames, keys + "<Enter>");  // "Ok": back on the page
    EXPECT_TRUE(StatusHas(c.status)) << vt_.Row(25);
  }
  EXPECT_EQ(Data(), "");
}

TEST_F(MagicTest, RulesOfUnknownTypeAreShownAndDeletedButNotRewritten) {
  std::vector<MagicFileMgrRec> recs(2);
  recs[0].mask = "A.*";  // type 0
  recs[1].mask = "B.*";
  recs[1].type = 200;
  recs[1].fromArea = "UTILS";
  dir_.Insert(RecordFileId::kMagic, recs);
  const std::string data = Data(), index = dir_.Read("MGICFILE.IDX");
  EXPECT_TRUE(Shows(RunMagicFileNames, "<Enter>", "Unknown type"));
  EXPECT_TRUE(Shows(RunMagicFileNames, "<Right><Enter><Tab>", "Unknown type"));
  EXPECT_FALSE(Shown("From area"));  // only the type and the mask
  Run(RunMagicFileNames, "<Enter><Esc><Right><Enter><Tab><Esc><F5><Esc><Esc>");
  EXPECT_EQ(Data(), data);
  EXPECT_EQ(dir_.Read("MGICFILE.IDX"), index);
  // Changed, it must get a type first; Enter on "Type" chooses one.
  EXPECT_TRUE(Shows(RunMagicFileNames, "<Right><Enter><Down>C.*" + std::string(kSave),
                    "You must select a type"));
  Run(RunMagicFileNames, "<Right><Enter><Down>C.*" + std::string(kSave) + "<Enter><Enter>" +
                             Downs(8) + "<Enter>" + kSave + "<Home><Del><Tab><Enter><Esc>");
  ASSERT_EQ(dir_.Read("MGICFILE.IDX").size(), sizeof(MagicMGRidx));
  const auto r = dir_.Record<MagicFileMgrRec>("MGICFILE.KSX", 1);
  EXPECT_EQ(r.type, mtNoForward);
  EXPECT_EQ(r.mask.str(), "C.*");
  EXPECT_EQ(r.fromArea.str(), "UTILS");
}

TEST_F(MagicTest, ExportListKeepsSystemsTheNodeManagerLacks) {
  MagicFileMgrRec r;
  r.type = mtForwardTo;
  r.mask = "*.ZIP";
  r.exports[0] = {9, 9, 9, 0};
  r.exports[1] = {2, 280, 2, 0};
  dir_.Insert(RecordFileId::kMagic, std::vector{r});
  // 2:280/1 marked; 9:9/9 is listed after the node manager's systems, marked.
  EXPECT_TRUE(Shows(RunMagicFileNames, "<Enter><PgDn><Enter>", "(not in the node manager)"));
  Run(RunMagicFileNames, "<Enter><PgDn><Enter><Space><Esc>" + std::string(kSave) + "<Esc>");
  r.exports[2] = {2, 280, 1, 0};
  EXPECT_EQ(FirstDifference(Data(), Bytes(r)), sizeof r);
}

}  // namespace
}  // namespace ks
