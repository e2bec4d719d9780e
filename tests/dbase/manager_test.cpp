// The entry list editor driven by key scripts the way a user presses keys: the screen it
// shows, and the data and index files it leaves behind, byte for byte.

#include "dbase/manager.h"

#include "dbase/pair_fixture.h"
#include "tui/keys.h"
#include "tui/virtual_terminal.h"
#include "vt_fixture.h"

namespace ks {
namespace {

using test::Bytes;

// Records of 32 bytes: tag (key 1) at 0, kind (key 2) at 21, a payload byte at 31.
constexpr test::TagByteLayout kLayout{32, 21, 21};

class ManagerTest : public test::VtTest {
 protected:
  ManagerTest() { record_extensions() = {"KSX", "IDX"}; }
  ~ManagerTest() override { record_extensions() = {}; }

  // A list holding `tags` (kind 1, payload = position + 1), inserted in this order.
  void Seed(std::initializer_list<const char*> tags) {
    ksDataBase db("TEST", kLayout.size, kLayout.Keys());
    ASSERT_EQ(db.Open(dir_.path()), ksDataBase::OpenResult::kOk);
    std::uint8_t payload = 1;
    for (const char* t : tags) ASSERT_TRUE(db.Insert(kLayout.Rec(t, 1, payload++).data()));
  }

  std::unique_ptr<ManagerOBJ> Make() {
    auto m =
        std::make_unique<ManagerOBJ>(dir_.path(), "TEST", kLayout.size, 5, 6, 60, 12, "Test list");
    m->AddKey("tag", Str, 0, 21);
    m->AddKey("kind", Int, 21, 1);
    m->AddColumn({Str, 0, 21, 20, "Tag"});
    m->AddColumn({Int, 31, 1, 5, "Pay"});
    m->AddFields({
        {.type = Str,
         .col = 12,
         .row = 1,
         .offset = 0,
         .size = 20,
         .prompt = "Tag",
         .help = "The tag"},
        {.type = Int,
         .col = 12,
         .row = 2,
         .offset = 21,
         .size = 1,
         .low = 0,
         .high = 99,
         .prompt = "Kind",
         .help = "The kind"},
        {.type = Int,
         .col = 12,
         .row = 3,
         .offset = 31,
         .size = 1,
         .low = 0,
         .high = 200,
         .prompt = "Payload",
         .help = "The payload"},
    });
    return m;
  }

  // Runs the editor with an open companion file; the script must leave the editor.
  void Run(ManagerOBJ& m, const std::string& keys) {
    vt_.Keys(keys);
    ASSERT_TRUE(companion_.Open(dir_ / "TEST.tmp", 27, 0));
    m.Run(&companion_);
  }

  // Runs the editor until the script runs out, leaving its screen as it was at that moment.
  void Stop(ManagerOBJ& m, const std::string& keys) {
    vt_.Keys(keys);
    EXPECT_THROW(Run(m, ""), KeysExhausted);
  }

  // What the terminal showed when the script ran out (the screen is not flushed again, so the
  // windows closed by the unwinding do not count).
  bool Shown(const std::string& text) const { return vt_.Contains(text); }

  Bytes File(const std::string& name) const {
    const std::string s = ReadWholeFile(dir_ / name).value_or("");
    return Bytes(s.begin(), s.end());
  }
  Bytes Record(int recno) const {
    const Bytes data = File("TEST.KSX");
    const auto at = data.begin() + recno * static_cast<std::ptrdiff_t>(kLayout.size);
    return Bytes(at, at + static_cast<std::ptrdiff_t>(kLayout.size));
  }

  test::TempDir dir_;
  CompanionFile companion_;
};

TEST_F(ManagerTest, EmptyListAsksToAddAndNoLeaves) {
  auto m = Make();
  Stop(*m, "");
  EXPECT_TRUE(Shown("There are currently no entries"));
  EXPECT_TRUE(Shown("Would you like to add one?"));
  Run(*m, "<Tab><Enter>");  // "No" is the second button
  EXPECT_TRUE(File("TEST.KSX").empty());
  EXPECT_TRUE(dir_.Has("TEST.IDX"));
}

TEST_F(ManagerTest, AddWritesRecordAndSortedIndexEntry) {
  Seed({"BRAVO"});
  auto m = Make();
  m->init = [](std::uint8_t* rec) { rec[31] = 7; };
  // Ins, type the tag, go to kind and type 4, leave the page, Yes to "Save changes?".
  Run(*m, "<Ins>ALPHA<Tab>4<Esc><Enter><Esc>");
  EXPECT_EQ(Record(1), kLayout.Rec("ALPHA", 4, 7)) << "appended with the default payload";
  EXPECT_EQ(File("TEST.IDX"),
            test::Concat({kLayout.Entry("ALPHA", 4, 1), kLayout.Entry("BRAVO", 1, 0)}));
}

TEST_F(ManagerTest, AddShowsItsTitleAndLeavingUnchangedSavesNothing) {
  Seed({"BRAVO"});
  auto m = Make();
  Run(*m, "<Ins><Esc><Esc>");
  EXPECT_EQ(File("TEST.KSX").size(), kLayout.size) << "nothing typed, nothing asked or added";
  Stop(*m, "<Ins>X");
  EXPECT_TRUE(Shown("Adding new entry"));
  Stop(*m, "<Ins>X<Esc>");
  EXPECT_TRUE(Shown("Save changes?"));
  Run(*m, "<Ins>X<Esc><Tab><Enter><Esc>");  // No to "Save changes?"
  EXPECT_EQ(File("TEST.KSX").size(), kLayout.size);
}

TEST_F(ManagerTest, CopyStartsFromTheCurrentRecord) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  // F6 on ALPHA (payload 1): change the tag only.
  Run(*m, "<F6><End>2<Esc><Enter><Esc>");
  EXPECT_EQ(Record(2), kLayout.Rec("ALPHA2", 1, 1));
  EXPECT_EQ(File("TEST.IDX"),
            test::Concat({kLayout.Entry("ALPHA", 1, 0), kLayout.Entry("ALPHA2", 1, 2),
                          kLayout.Entry("BRAVO", 1, 1)}));
}

TEST_F(ManagerTest, EditRewritesInPlaceAndResorts) {
  Seed({"ALPHA", "BETA", "BRAVO"});
  auto m = Make();
  // Right to BETA, Enter, clear the tag and type CHARLIE, save.
  Stop(*m, "<Right><Enter><C-Y>CHARLIE<Esc><Enter>");
  EXPECT_TRUE(Shown("3/3")) << "the edited entry stays the current one";
  EXPECT_EQ(File("TEST.KSX").size(), 3 * kLayout.size) << "no record appended";
  EXPECT_EQ(Record(1), kLayout.Rec("CHARLIE", 1, 2));
  EXPECT_EQ(File("TEST.IDX"),
            test::Concat({kLayout.Entry("ALPHA", 1, 0), kLayout.Entry("BRAVO", 1, 2),
                          kLayout.Entry("CHARLIE", 1, 1)}));
}

TEST_F(ManagerTest, DeleteAsksNoFirstThenZeroesKeysAndShortensIndex) {
  Seed({"ALPHA", "BETA", "BRAVO"});
  auto m = Make();
  Stop(*m, "<Right><Del>");
  EXPECT_TRUE(Shown("Delete this entry?"));
  Stop(*m, "<Right><Del><Enter><Del><Tab><Enter>");
  EXPECT_TRUE(Shown("BRAVO")) << "the position stays, showing the next entry";
  EXPECT_TRUE(Shown("2/2"));
  Bytes gone = kLayout.Rec("", 0, 2);
  gone[0] = 0;
  EXPECT_EQ(Record(1), gone) << "key bytes zeroed, payload left";
  EXPECT_EQ(File("TEST.IDX"),
            test::Concat({kLayout.Entry("ALPHA", 1, 0), kLayout.Entry("BRAVO", 1, 2)}));
}

TEST_F(ManagerTest, DeletingTheOnlyEntryAsksToAddOne) {
  Seed({"ALPHA"});
  auto m = Make();
  Stop(*m, "<Del><Tab><Enter>");
  EXPECT_TRUE(Shown("Would you like to add one?"));
  EXPECT_TRUE(File("TEST.IDX").empty());
}

TEST_F(ManagerTest, DeleteCallbackCanVeto) {
  Seed({"ALPHA"});
  auto m = Make();
  m->on_delete = [](const std::uint8_t*) { return false; };
  Run(*m, "<Del><Tab><Enter><Esc>");
  EXPECT_EQ(File("TEST.IDX"), kLayout.Entry("ALPHA", 1, 0));
}

TEST_F(ManagerTest, DuplicateIsRefusedAndTypedValuesStay) {
  Seed({"ALPHA"});
  auto m = Make();
  // Add ALPHA/1 again with payload 9: refused; the form comes back with the typed values, the
  // kind is changed to 2 and the save goes through.
  Stop(*m, "<Ins>ALPHA<Tab>1<Esc><Enter>");
  EXPECT_TRUE(Shown("Duplicate entry"));
  Run(*m, "<Ins>ALPHA<Tab>1<Tab>9<Esc><Enter><Enter><Tab><C-Y>2<Esc><Enter><Esc>");
  EXPECT_EQ(Record(1), kLayout.Rec("ALPHA", 2, 9));
  EXPECT_EQ(File("TEST.KSX").size(), 2 * kLayout.size);
}

TEST_F(ManagerTest, CheckCallbackPutsTheCursorOnTheFieldAtFault) {
  Seed({"ALPHA"});
  auto m = Make();
  int calls = 0;
  m->check = [&](std::uint8_t* rec, bool adding) {
    ++calls;
    EXPECT_TRUE(adding);
    return rec[31] > 100 ? 2 : -1;
  };
  // Payload 150 is refused; the cursor is back on the payload with "150" still typed: one
  // backspace makes it 15.
  Run(*m, "<Ins>BETA<Tab><Tab>150<Esc><Enter><BS><Esc><Enter><Esc>");
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(Record(1), kLayout.Rec("BETA", 0, 15));
}

TEST_F(ManagerTest, LimitRefusesInsAndCopyButAllowsEditAndDelete) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  m->max_entries = 2;
  Run(*m, "<Ins><Enter><F6><Enter><Enter><End>X<Esc><Enter><Del><Tab><Enter><Esc>");
  EXPECT_EQ(File("TEST.KSX").size(), 2 * kLayout.size);
  EXPECT_EQ(File("TEST.IDX"), kLayout.Entry("BRAVO", 1, 1));
  EXPECT_EQ(Record(0)[0], 0) << "ALPHAX was saved, then deleted";
}

TEST_F(ManagerTest, LimitMessageText) {
  Seed({"ALPHA"});
  auto m = Make();
  m->max_entries = 1;
  Stop(*m, "<Ins>");
  EXPECT_TRUE(Shown("You can not enter more than 1 entries"));
  Stop(*m, "<F6>");
  EXPECT_TRUE(Shown("You can not enter more than 1 entries"));
}

TEST_F(ManagerTest, AListThatCannotBeOpenedSaysSo) {
  ManagerOBJ m(dir_ / "missing/", "TEST", kLayout.size, 5, 6, 60, 12, "T");
  m.AddKey("tag", Str, 0, 21);
  vt_.Keys("");
  EXPECT_THROW(m.Run(nullptr), KeysExhausted);
  EXPECT_TRUE(Shown("Unable to open " + dir_.path() + "missing/TEST.KSX"));
}

TEST_F(ManagerTest, HelpLineFollowsWhatTheEditorOffers) {
  Seed({"ALPHA"});
  auto m = Make();
  Stop(*m, "");
  EXPECT_TRUE(Shown("Enter-edit Insert Delete F4-find F5-browse F6-copy"));
  auto bare = std::make_unique<ManagerOBJ>(dir_.path(), "TEST", kLayout.size, 5, 6, 60, 12, "T");
  bare->AddKey("tag", Str, 0, 21);
  bare->AddKey("kind", Int, 21, 1);
  bare->searchable = false;
  vt_.Keys("<Esc>");
  bare->Run(nullptr);
  EXPECT_EQ(bare->help_line(), " ~F6~-copy");
}

TEST_F(ManagerTest, MovingNeverWraps) {
  Seed({"ALPHA", "BETA", "BRAVO"});
  auto m = Make();
  vt_.Keys("<Left>");
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("1/3"));
  vt_.Keys("<End><Right>");
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("3/3"));
  vt_.Keys("<End><Home><Right>");
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("2/3"));
}

TEST_F(ManagerTest, JumpByFirstLetterMovesOnlyWhenALaterEntryMatches) {
  Seed({"ALPHA", "BETA", "BRAVO"});
  auto m = Make();
  m->searchable = false;
  vt_.Keys("b");  // from ALPHA: BETA is the first B of the list
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("2/3"));
  vt_.Keys("<End>b");  // from BRAVO nothing later begins with B: no move
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("3/3"));
  vt_.Keys("<F4>");  // not searchable: F4 does nothing
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_FALSE(Shown("to search for"));
}

TEST_F(ManagerTest, FindStartsWithTheTypedLetter) {
  Seed({"ALPHA", "BETA", "BRAVO"});
  auto m = Make();
  vt_.Keys("br<Enter>");
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("3/3"));
  vt_.Keys("<F4>");
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("Enter tag to search for: "));
  vt_.Keys("<End>zulu<Enter>");
  EXPECT_THROW(Run(*m, ""), KeysExhausted);
  EXPECT_TRUE(Shown("Unable to find entry"));
}

TEST_F(ManagerTest, BrowsePicksAnEntryAndReadsOnlyShownRows) {
  ksDataBase db("TEST", kLayout.size, kLayout.Keys());
  ASSERT_EQ(db.Open(dir_.path()), ksDataBase::OpenResult::kOk);
  for (int i = 0; i < 1000; ++i) {
    char tag[16];
    std::snprintf(tag, sizeof tag, "T%04d", i);
    ASSERT_TRUE(db.Insert(kLayout.Rec(tag, 1).data()));
  }
  db.Close();
  auto m = Make();
  m->max_entries = 2000;
  int cells = 0;
  m->cell = [&](const std::uint8_t* rec, int column) {
    ++cells;
    return column == 0 ? std::string(reinterpret_cast<const char*>(rec + 1), rec[0]) : "";
  };
  Stop(*m, "<F5><Down><Down><Enter>");
  EXPECT_TRUE(Shown("3/1000"));
  EXPECT_LT(cells, 2 * 40) << "only the rows on screen are built";
  EXPECT_GT(cells, 0);
}

TEST_F(ManagerTest, BrowseAndGlobalChangeNeedTheCompanion) {
  Seed({"ALPHA"});
  auto m = Make();
  m->global_edit = [](std::uint8_t*) { return true; };
  vt_.Keys("<F5><F2>");
  EXPECT_THROW(m->Run(nullptr), KeysExhausted);
  EXPECT_FALSE(Shown("View")) << "no companion file, no browse";
  EXPECT_FALSE(Shown("F5-browse"));
  Stop(*m, "<F2><Esc>");
  EXPECT_TRUE(Shown("Process changes ?"));
}

TEST_F(ManagerTest, GlobalChangeAppliesToMarkedEntriesAndCounts) {
  Seed({"ALPHA", "BETA", "BRAVO", "DELTA"});
  auto m = Make();
  int marked = -1, changed = -1;
  std::vector<std::string> seen;
  m->global_edit = [&](std::uint8_t* rec) {
    seen.emplace_back(reinterpret_cast<const char*>(rec + 1), rec[0]);
    if (rec[31] == 3) return false;  // BRAVO already as wanted: not counted
    rec[31] = 3;
    return true;
  };
  m->global_done = [&](int mk, int ch) { marked = mk, changed = ch; };
  // Mark ALPHA and (after moving down) BRAVO and DELTA; leave; Yes.
  Run(*m, "<F2><Space><Down><Space><Space><Esc><Enter><Esc>");
  EXPECT_EQ(seen, (std::vector<std::string>{"ALPHA", "BRAVO", "DELTA"}));
  EXPECT_EQ(marked, 3);
  EXPECT_EQ(changed, 2);
  EXPECT_EQ(Record(0), kLayout.Rec("ALPHA", 1, 3));
  EXPECT_EQ(Record(1), kLayout.Rec("BETA", 1, 2));
  EXPECT_EQ(Record(3), kLayout.Rec("DELTA", 1, 3));
}

TEST_F(ManagerTest, MarkFilterMarksTheEntriesThatPass) {
  Seed({"ALPHA", "BETA", "BRAVO", "DELTA"});
  auto m = Make();
  std::vector<std::string> seen;
  m->global_edit = [&](std::uint8_t* rec) {
    seen.emplace_back(reinterpret_cast<const char*>(rec + 1), rec[0]);
    return false;
  };
  m->mark_filter = [] {
    return [](const std::uint8_t* rec) { return rec[1] == 'B'; };
  };
  Stop(*m, "<F2>");
  EXPECT_TRUE(Shown("F3-filter"));
  Run(*m, "<F2><F3><Esc><Enter><Esc>");
  EXPECT_EQ(seen, (std::vector<std::string>{"BETA", "BRAVO"}));
}

TEST_F(ManagerTest, GlobalChangeNoProcessesNothing) {
  Seed({"ALPHA"});
  auto m = Make();
  int calls = 0;
  m->global_edit = [&](std::uint8_t*) { return ++calls, true; };
  Run(*m, "<F2><Space><Esc><Tab><Enter><Esc>");
  EXPECT_EQ(calls, 0);
}

TEST_F(ManagerTest, FunctionKeyWritesTheRecordBackInPlace) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  m->AddFunctionKey({true, key::kF7, [](std::uint8_t* rec, int, int) { rec[31] = 42; }});
  Run(*m, "<Right><F7><Esc>");
  EXPECT_EQ(Record(1), kLayout.Rec("BRAVO", 1, 42));
  EXPECT_EQ(File("TEST.IDX"),
            test::Concat({kLayout.Entry("ALPHA", 1, 0), kLayout.Entry("BRAVO", 1, 1)}));
}

TEST_F(ManagerTest, StartModes) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  m->start_mode = ManagerOBJ::StartMode::kEdit;
  m->start_record = kLayout.Rec("BRAVO", 1);
  vt_.Keys("<Tab><Tab><C-Y>9<Esc><Enter>");
  m->Run(nullptr);
  EXPECT_EQ(Record(1), kLayout.Rec("BRAVO", 1, 9));
  m->start_record = kLayout.Rec("NOPE", 1);
  Stop(*m, "");
  EXPECT_TRUE(Shown("Unable to find entry"));
  m->start_mode = ManagerOBJ::StartMode::kAdd;
  m->max_entries = 2;
  Stop(*m, "");
  EXPECT_TRUE(Shown("You can not enter more than 2 entries"));
}

TEST_F(ManagerTest, CompanionStaysInStepWithTheIndex) {
  CompanionFile c;
  ASSERT_TRUE(c.Open(dir_ / "C.tmp", 4, 3));
  const Bytes a{1, 'a', 0, 0}, b{1, 'b', 0, 0}, x{1, 'x', 0, 0};
  ASSERT_TRUE(c.Write(0, a.data()) && c.Write(1, b.data()));
  ASSERT_TRUE(c.Insert(1, x.data()));
  ASSERT_TRUE(c.Remove(0));
  Bytes row(4);
  ASSERT_TRUE(c.Read(0, row.data()));
  EXPECT_EQ(row, x);
  ASSERT_TRUE(c.Read(1, row.data()));
  EXPECT_EQ(row, b);
  EXPECT_EQ(c.count(), 3);
  EXPECT_EQ(FileSize(dir_ / "C.tmp").value_or(0), 12u);
  EXPECT_FALSE(c.Read(3, row.data()));
  c.Close();
  EXPECT_FALSE(dir_.Has("C.tmp"));
}

}  // namespace
}  // namespace ks
