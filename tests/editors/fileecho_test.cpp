// The fileecho manager: what its pages write into FAREAS, the checks on saving and where they
// leave the cursor, the moving of files to a new destination, the hatch and magic entries a
// deleted fileecho takes along, the connected systems and the global edit.
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "dbase/fileecho_rec.h"
#include "dbase/recordfile.h"
#include "editors/editor_fixture.h"
#include "editors/fileecho_parts.h"
#include "tui/colours.h"

namespace ks {
namespace {

using test::Downs;
using test::kAdd;
using test::kSave;

constexpr int kSystems = 3;
const std::size_t kSize = FileechoRecordSize(kSystems);

class FileechoTest : public test::EditorTest {
 protected:
  FileechoTest() {
    ctx_.systems_per_area = kSystems;
    ctx_.archivers = {"ARC", "ARJ", "LZH", "PAK", "ZIP", "SQZ", "7", "8", "9", "10"};
    std::filesystem::create_directories(dir_ / "old");
    std::filesystem::create_directories(dir_ / "new");
    const std::string base = dir_.path();
    file_area_source() = [base] {
      return std::vector<FileAreaName>{{1, base + "old", "Old"}, {2, base + "new/", "New"}};
    };
  }
  void Seed(const std::vector<FileMGRrec>& recs) {
    dir_.Insert(RecordFileId::kFAreas, recs, kSize);
  }
  static FileMGRrec Echo(const char* tag, const std::string& dest, std::uint8_t group = 1,
                         std::uint16_t options = kFeVisible) {
    FileMGRrec r{};
    r.tag = tag;
    r.destination = dest;
    r.group = group;
    r.options = options;
    return r;
  }
  FileMGRrec Rec(int n) { return dir_.Record<FileMGRrec>("FAREAS.KSX", n, kSize); }
  std::size_t Records() { return dir_.Read("FAREAS.KSX").size() / kSize; }
  // Runs the manager on a script that leaves it, or until the script runs out.
  void Leave(const std::string& keys) { EditorTest::Run(RunFileechoManager, keys); }
  void Stop(const std::string& keys) { EditorTest::Stop(RunFileechoManager, keys); }
  bool Shows(const std::string& keys, const std::string& text) {
    return EditorTest::Shows(RunFileechoManager, keys, text);
  }
  // Runs the manager until the key script is used up or the manager is left.
  void Run(const std::string& keys) {
    vt_.Keys(keys);
    try {
      RunFileechoManager(ctx_);
    } catch (const KeysExhausted&) {
    }
  }
  // What the advanced page shows for the switch on page row `row` (screen rows 4..22).
  std::string AdvancedValue(int row) const { return vt_.Row(2 + row).substr(44, 3); }
};

TEST_F(FileechoTest, NewFileechoLandsInTheRecordWithItsDefaults) {
  Leave(std::string(kAdd) + "utils<Enter>Utilities<Enter>" + dir_ / "new" +
        "<Enter>2<Enter>-1<Enter><Down>FILES.APL<Enter><Space><Space><Down>" + Downs(4) +
        "1825<Enter>100<Enter>500<Enter>" + kSave + "<Esc>");
  ASSERT_EQ(Records(), 1u);
  const FileMGRrec r = Rec(0);
  EXPECT_EQ(r.tag.str(), "UTILS");
  EXPECT_EQ(r.description.str(), "Utilities");
  EXPECT_EQ(r.destination.str(), dir_ / "new/");
  EXPECT_EQ(r.group + 0, 2);
  EXPECT_EQ(r.keep + 0, -1);
  EXPECT_EQ(r.templateFile.str(), "FILES.APL");
  EXPECT_EQ(r.longDesc + 0, ldLdescNormal);
  EXPECT_EQ(r.maxDays + 0, 1825);
  EXPECT_EQ(r.maxSize + 0, 100);
  EXPECT_EQ(r.maxFiles + 0, 500);
  EXPECT_EQ(r.options + 0, kFeAnnounce | kFeDupeCheck | kFeVisible);
  EXPECT_EQ(r.options2 + 0, 0);
}

TEST_F(FileechoTest, FileDatabaseRowOnlyForABbsWithItsOwnDatabase) {
  FileMGRrec autoadded = Echo("AUTO", dir_ / "old/");
  autoadded.options2 = kFe2AutoAdded;
  Seed({autoadded, Echo("PLAIN", dir_ / "new/")});
  Stop("");
  EXPECT_FALSE(Shown("Use FDB"));
  EXPECT_EQ(vt_.Row(10).substr(5, 6), "Keep #");  // window row 6
  EXPECT_EQ(vt_.Row(15).substr(5, 7), "Systems");
  EXPECT_NE(vt_.Row(21).find("F2-global F3-advanced"), std::string::npos);
  // An auto-added fileecho says so, highlighted.
  EXPECT_EQ(vt_.AttrOf("auto-added"), ui().colours[kWindowSelect]);
  Stop("<Right>");
  EXPECT_FALSE(Shown("auto-added"));
  ctx_.bbs_file_database = true;
  Stop("");
  EXPECT_EQ(vt_.Row(10).substr(5, 7), "Use FDB");
  EXPECT_EQ(vt_.Row(10).substr(34, 8), "Use FBBS");
  EXPECT_EQ(vt_.Row(11).substr(5, 6), "Keep #");
  EXPECT_NE(vt_.Row(22).find("F3-advanced"), std::string::npos) << "frame one row lower";
}

TEST_F(FileechoTest, SavingChecksTagThenDestinationAndReturnsToTheField) {
  // No tag: the message, then the cursor on the tag.
  EXPECT_TRUE(Shows(std::string(kAdd) + "<Down>Desc" + kSave, "You must specify a fileecho name"));
  Stop(std::string(kAdd) + "<Down>Desc" + kSave + "<Enter>");
  EXPECT_TRUE(StatusHas("Fileecho tag"));
  // A tag but no destination: the cursor on "Dest".
  EXPECT_TRUE(
      Shows(std::string(kAdd) + "ONE" + kSave, "You must specify a valid destination directory"));
  Stop(std::string(kAdd) + "ONE" + kSave + "<Enter>");
  EXPECT_TRUE(StatusHas("Destination directory") && StatusHas("F6-list of BBS file areas"));
  EXPECT_EQ(Records(), 0u);
  // A pass-through fileecho needs none.
  Leave(std::string(kAdd) + "PASS" + Downs(10) + "<Enter>" + Downs(4) + "<Space><Esc>" + kSave +
        "<Esc>");
  ASSERT_EQ(Records(), 1u);
  EXPECT_TRUE(Rec(0).Has(kFePassThrough));
  EXPECT_TRUE(Rec(0).destination.empty());
}

TEST_F(FileechoTest, WarningsDoNotStopTheSave) {
  ctx_.bbs_file_database = true;
  std::filesystem::create_directories(dir_ / "elsewhere");
  Seed({Echo("ONE", dir_ / "elsewhere/")});
  // Use FDB with a destination that no file area has, and the destination of ONE: one
  // warning after the other, then the save.
  const std::string keys =
      "<Ins>TWO<Down><Down>" + dir_ / "elsewhere" + "<Enter><Down><Space>" + kSave;
  EXPECT_TRUE(Shows(keys, "Could not find destination directory") && Shown("in filearea database"));
  EXPECT_TRUE(Shows(keys + "<Enter>", "This destination directory is also") &&
              Shown("used in at least one other fileecho"));
  Leave(keys + "<Enter><Enter><Esc>");
  ASSERT_EQ(Records(), 2u);
  EXPECT_TRUE(Rec(1).Has(kFeUseFdb));
  // F6 on "Dest" takes the path of a file area, which the database then knows.
  Leave("<Ins>THREE<Down><Down><F6><Down><Enter><Down><Down><Space>" + std::string(kSave) +
        "<Esc>");
  ASSERT_EQ(Records(), 3u);
  EXPECT_EQ(Rec(2).destination.str(), dir_ / "new/");
}

TEST_F(FileechoTest, ChangedDestinationMovesTheListedFiles) {
  Seed({Echo("ONE", dir_ / "old/")});
  dir_.Write("old/FILES.BBS",
             "a.zip  First file\r\n  continued description\r\n; a comment\r\n"
             "B.ZIP  Second file\r\n\r\nmissing.zip  Not there\r\n-- separator\r\n");
  for (const char* name : {"a.zip", "b.zip", "c.zip"}) dir_.Write(std::string("old/") + name, "x");
  // Editing without touching the destination asks nothing.
  Leave("<Enter><Down>Other" + std::string(kSave) + "<Esc>");
  const std::string keys = "<Enter><Down><Down>" + dir_ / "new" + kSave;
  EXPECT_TRUE(Shows(keys, "Would you like to move the files to") && Shown("the new location?"));
  EXPECT_TRUE(Shows(keys + "<Enter>", "Moved 2 file(s)."));
  EXPECT_TRUE(Shown("Only files in listed in the File database have been moved."));
  EXPECT_TRUE(Shown("The other files and the old File database have not been deleted."));
  EXPECT_TRUE(dir_.Has("new/a.zip") && dir_.Has("new/b.zip"));
  EXPECT_TRUE(dir_.Has("old/c.zip") && dir_.Has("old/FILES.BBS"));
  EXPECT_FALSE(dir_.Has("old/a.zip"));
  // Again, answering No: the record is saved and the files stay where they are.
  dir_.Write("old/a.zip", "y");
  Leave(keys + "<Tab><Enter><Esc>");
  EXPECT_TRUE(dir_.Has("old/a.zip"));
  EXPECT_EQ(Rec(0).destination.str(), dir_ / "new/");
  // Continuation lines, comments and separators of the listing name no file.
  EXPECT_EQ(fileecho::FilesBbsNames("A.ZIP desc\n +more\n\tmore\n;c\n-c\n\nB.ARJ\r\nC.LZH\t1\n"),
            (std::vector<std::string>{"A.ZIP", "B.ARJ", "C.LZH"}));
}

TEST_F(FileechoTest, AdvancedPageNotApplicableSwitchesAndAddFileIdBits) {
  FileMGRrec diz = Echo("DIZ", dir_ / "old/");
  diz.longDesc = ldFileIdNormal;
  Seed({Echo("PASS", "", 1, kFePassThrough), diz});
  // DIZ comes first; F3 opens its advanced page: Add FILE_ID "Yes", then "Always", then "No".
  const std::pair<int, int> steps[] = {
      {kFeAddFileId, 0}, {kFeAddFileId, kFe2AddFileIdAlways}, {0, 0}};
  for (auto [option, option2] : steps) {
    Leave("<F3>" + Downs(7) + "<Space><Esc><Esc>");
    EXPECT_EQ(Rec(1).options & kFeAddFileId, option);
    EXPECT_EQ(Rec(1).options2 & kFe2AddFileIdAlways, option2);
  }
  // The pass-through fileecho: its local switches and Add FILE_ID (LongDesc Normal) are n/a.
  Stop("<Right><F3>");
  EXPECT_EQ(AdvancedValue(6), "Yes") << "Pass through";
  for (int row : {7, 9, 14, 16, 17, 18}) EXPECT_EQ(AdvancedValue(row), "n/a") << row;
  EXPECT_EQ(AdvancedValue(10), "No ") << "Virus scan";
  // Skipping them: six times Down from Convert lands on Virus scan.
  Leave("<Right><F3>" + Downs(6) + "<Space><Esc><Esc>");
  EXPECT_EQ(Rec(0).options & kFeVirusScan, kFeVirusScan);
  // With a BBS file database "No Touch" never applies.
  ctx_.bbs_file_database = true;
  Stop("<F3>");
  EXPECT_EQ(AdvancedValue(14), "n/a");
  EXPECT_EQ(AdvancedValue(7), "No ") << "Allow replace";
}

TEST_F(FileechoTest, DeleteRemovesHatchAndMagicEntriesOnlyOnYes) {
  Seed({Echo("ONE", dir_ / "old/"), Echo("TWO", dir_ / "new/")});
  std::vector<HatchMGRrec> hatches(3);
  std::vector<MagicFileMgrRec> magics(3);
  const char* areas[] = {"ONE", "TWO", "one"};
  const char* links[][2] = {{"ONE", "X"}, {"X", "ONE"}, {"TWO", "X"}};
  for (int i = 0; i < 3; ++i) {
    hatches[i].area = areas[i];
    hatches[i].fileSpec = "x";
    magics[i].mask = std::string("M") + links[i][0] + links[i][1];
    magics[i].fromArea = links[i][0];
    magics[i].toArea = links[i][1];
  }
  dir_.Insert(RecordFileId::kHatch, hatches);
  dir_.Insert(RecordFileId::kMagic, magics);
  // The hatch entries, the magic entries and the hatch entries of TWO.
  auto counts = [&] {
    THatchFile hatch;
    TMagicFile magic;
    EXPECT_TRUE(hatch.Open(dir_.path()) && magic.Open(dir_.path()));
    HatchMGRrec h;
    int two = 0;
    for (int i = 0; i < hatch.Count(); ++i) two += hatch.ReadRecord(i, h) && h.area.str() == "TWO";
    return std::tuple(hatch.Count() + 0, magic.Count() + 0, two);
  };
  EXPECT_TRUE(Shows("<Del><Tab><Enter>", "Delete hatch and magic filename entries") &&
              Shown("for this fileecho?"));
  // "Delete this entry?" Yes, then No to the hatch and magic question.
  Stop("<Del><Tab><Enter><Tab><Enter>");
  EXPECT_EQ(counts(), std::tuple(3, 3, 1));
  // TWO is left; deleting it with Yes takes its entries along.
  EXPECT_TRUE(Shows("<Del><Tab><Enter><Enter>", "Removed 2 hatch and magicfile name entries"));
  EXPECT_EQ(counts(), std::tuple(2, 2, 0));
}
TEST_F(FileechoTest, ConnectedSystemsAreAddedEditedAndRemoved) {
  Seed({Echo("ONE", dir_ / "old/")});
  const std::string to_systems = "<Enter>" + Downs(15) + "<Enter>";
  const std::string three = to_systems + "<Ins>2:280/1<Esc>" +  // defaults
                            "<Ins>2:280/2<Down><Space><Down><Space>" +
                            Downs(4) +               // Send off, Pause on
                            "<Space><Esc>" +         // Msg status None
                            "<Ins>1:1/1<Esc><Ins>";  // the list is full
  EXPECT_TRUE(Shows(to_systems + "<Ins>2:280/1<Esc><Ins>2:280/1<Esc>",
                    "This system is already connected to this fileecho"));
  EXPECT_TRUE(Shows(three, "There is no room for more systems in this fileecho"));
  EXPECT_EQ(Records(), 1u);
  EXPECT_FALSE(Rec(0).systems[0].address.IsSet()) << "nothing saved yet";
  Leave(three + "<Enter><Home><Del><Tab><Enter><Esc>" + kSave + "<Esc>");
  const FileMGRrec r = Rec(0);
  EXPECT_EQ(r.systems[0].address, (NetAddr{2, 280, 2, 0}));
  EXPECT_EQ(r.systems[0].flags + 0, kSysPause | (msNone << kSysStatusShift));
  EXPECT_EQ(r.systems[1].address, (NetAddr{1, 1, 1, 0}));
  EXPECT_EQ(r.systems[1].flags + 0, fileecho::kNewSystemFlags);
  EXPECT_FALSE(r.systems[2].address.IsSet()) << "the freed slot is at the end";
}

class FileechoGlobalTest : public FileechoTest {
 protected:
  FileechoGlobalTest() {
    FileMGRrec a = Echo("A", dir_ / "a/", 1, kFeVisible);
    FileMGRrec b = Echo("B", dir_ / "b/", 2, 0);
    FileMGRrec c = Echo("C", dir_ / "c/", 1, 0);
    a.systems[0] = {{2, 280, 1, 0}, kSysSendFiles | kSysReceiveFiles};
    b.systems[0] = {{2, 280, 1, 0}, kSysSendFiles};
    c.systems[0] = {{2, 280, 7, 0}, 0};
    c.systems[1] = {{2, 280, 1, 0}, kSysSendFiles | kSysPause | (msHold << kSysStatusShift)};
    Seed({a, b, c});
  }
  // F2, marks group 1 (A and C) with the group filter, "Process changes ?" Yes.
  static std::string MarkGroupOne() { return "<F2><F3><Space><Esc><Esc><Enter>"; }
};

TEST_F(FileechoGlobalTest, SwitchCountsOnlyChangedRecords) {
  EXPECT_TRUE(Shows("<F2><F3>", "Groups to include in search"));
  Stop(MarkGroupOne() + Downs(10) + "<Enter>");  // Visible
  EXPECT_TRUE(Shown("Toggle option to"));
  Stop(MarkGroupOne() + Downs(10) + "<Enter><Enter>");  // Yes
  EXPECT_TRUE(Shown("Changed the Visible fields for 1 records"));
  EXPECT_EQ(Rec(2).options & kFeVisible, kFeVisible);
  EXPECT_EQ(Rec(1).options + 0, 0) << "B not marked";
  // Tiny SB is reported by its log name; No clears it.
  EXPECT_TRUE(Shows(MarkGroupOne() + Downs(11) + "<Enter><Tab><Enter>",
                    "Changed the TinySB fields for 0 records"));
  // Add FILE_ID "Always" sets both bits.
  EXPECT_TRUE(Shows(MarkGroupOne() + Downs(7) + "<Enter><Tab><Tab><Enter>",
                    "Changed the Add FILE_ID fields for 2 records"));
  EXPECT_EQ(Rec(0).options2 & kFe2AddFileIdAlways, kFe2AddFileIdAlways);
  EXPECT_EQ(Rec(2).options & kFeAddFileId, kFeAddFileId);
  // Convert: the archiver chosen from the list.
  EXPECT_TRUE(Shows(MarkGroupOne() + "<Enter><Down><Down><Down><Down><Down><Enter>",
                    "Changed the Convert fields for 2 records"));
  EXPECT_EQ(Rec(0).convert + 0, 5);
  EXPECT_EQ(Rec(1).convert + 0, 0);
}

TEST_F(FileechoGlobalTest, SystemOperations) {
  // Add: C has no room left after it (3 slots, two used): it still fits; B is not marked.
  EXPECT_TRUE(
      Shows(MarkGroupOne() + "<End><Up><Up><Up><Enter>2:280/9<Esc>", "Added 2:280/9 to 2 records"));
  EXPECT_EQ(Rec(2).systems[2].address, (NetAddr{2, 280, 9, 0}));
  EXPECT_EQ(Rec(2).systems[2].flags + 0, fileecho::kNewSystemFlags);
  EXPECT_TRUE(Shows(MarkGroupOne() + "<End><Up><Up><Up><Enter>2:280/10<Esc>",
                    "Added 2:280/10 to 1 records"))
      << "C is full";
  // Replace 2:280/7 (only C has it).
  EXPECT_TRUE(Shows(MarkGroupOne() + "<End><Up><Enter>2:280/7<Esc>3:3/3<Esc>",
                    "Replaced 2:280/7 with 3:3/3 in 1 records"));
  EXPECT_EQ(Rec(2).systems[0].address, (NetAddr{3, 3, 3, 0}));
  // Remove 2:280/9: the slots close up.
  EXPECT_TRUE(
      Shows(MarkGroupOne() + "<End><Up><Up><Enter>2:280/9<Esc>", "Removed 2:280/9 from 2 records"));
  EXPECT_EQ(Rec(0).systems[1].address, (NetAddr{2, 280, 10, 0}));
  EXPECT_FALSE(Rec(2).systems[2].address.IsSet());
}

TEST_F(FileechoGlobalTest, ChangeStatusTouchesOnlyTheChosenBits) {
  // Pause Yes, Msg status Hold; the rest "<do not change>".
  EXPECT_TRUE(Shows(MarkGroupOne() + "<End><Enter>2:280/1<Esc>" + "<Down><Space><Space>" +
                        Downs(4) + "<Space><Space><Space><Esc>",
                    "Changed status for 2:280/1 in 1 records"))
      << "C had these already";
  EXPECT_EQ(Rec(0).systems[0].flags + 0,
            kSysSendFiles | kSysReceiveFiles | kSysPause | (msHold << kSysStatusShift));
  EXPECT_EQ(Rec(1).systems[0].flags + 0, kSysSendFiles) << "B not marked";
  EXPECT_EQ(Rec(2).systems[1].flags + 0, kSysSendFiles | kSysPause | (msHold << kSysStatusShift));
  // Send files No alone keeps the status and the other switches.
  EXPECT_TRUE(Shows(MarkGroupOne() + "<End><Enter>2:280/1<Esc><Space><Esc>",
                    "Changed status for 2:280/1 in 2 records"));
  EXPECT_EQ(Rec(0).systems[0].flags + 0,
            kSysReceiveFiles | kSysPause | (msHold << kSysStatusShift));
}

// Resizes in the middle of an edit: after each one the desktop, header and status line are
// drawn for the new size, the page stays where it was with the cursor after the typed text,
// and the typing goes on into the same field. Closing the manager at yet another size leaves
// the desktop of that size, the old status row included.
TEST_F(FileechoTest, PageFollowsResizesAndKeepsTheEdit) {
  Seed({Echo("ONE", dir_ / "old/")});
  ui().header_right3 = "F1=Help";
  DrawDesktop();
  const std::string desk(120, '\xB1');
  struct Step {
    const char* keys;
    int width, height;
    std::string typed;
  } steps[] = {
      {"AB<Resize 100x30>", 100, 30, "AB"},
      {"C<Resize 80x25>", 80, 25, "ABC"},
      {"<Resize 120x40>D<Resize 90x28>E", 90, 28, "ABCDE"},
  };
  std::string keys = "<Enter><Down><End>";  // editing the description
  for (const Step& st : steps) {
    SCOPED_TRACE(st.keys);
    keys += st.keys;
    vt_.Resize(80, 25);
    Run(keys);
    const int w = st.width, h = st.height;
    ASSERT_EQ(vt_.Width(), w);
    EXPECT_EQ(vt_.Row(h).find("Fileecho description"), 0u);
    EXPECT_EQ(vt_.At(w, 1).ch, 0xBB);
    EXPECT_EQ(vt_.Row(3).substr(w - 10, 7), "F1=Help");
    EXPECT_EQ(vt_.At(4, 4).ch, 0xC9);  // the page's corner over the header
    EXPECT_EQ(vt_.Row(7).substr(14, st.typed.size() + 1), st.typed + " ");
    EXPECT_EQ(vt_.Row(7).substr(80), desk.substr(0, w - 80));
    for (int y = 23; y < h; ++y) EXPECT_EQ(vt_.Row(y), desk.substr(0, w)) << "row " << y;
    EXPECT_EQ(vt_.cursor_col(), 15 + static_cast<int>(st.typed.size()));
    EXPECT_EQ(vt_.cursor_row(), 7);
  }
  vt_.Resize(80, 25);
  vt_.Keys(keys + kSave + "<Esc>");
  RunFileechoManager(ctx_);
  EXPECT_EQ(Rec(0).description.str(), "ABCDE");
  EXPECT_EQ(Row(4), "\xC8" + std::string(88, '\xCD') + "\xBC");
  for (int y = 5; y < 28; ++y) EXPECT_EQ(vt_.Row(y), desk.substr(0, 90)) << "row " << y;
  EXPECT_EQ(vt_.Row(28), std::string(90, ' '));
}

}  // namespace
}  // namespace ks
