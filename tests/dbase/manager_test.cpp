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
using test::Concat;

// Records of 32 bytes: tag (key 1) at 0, kind (key 2) at 21, a payload byte at 31.
constexpr test::TagByteLayout L{32, 21, 21};

class ManagerTest : public test::VtTest {
 protected:
  // A list holding `tags` (kind 1, payload = position + 1), inserted in this order.
  void Seed(std::initializer_list<const char*> tags) {
    std::vector<Bytes> recs;
    for (const char* t : tags)
      recs.push_back(L.Rec(t, 1, static_cast<std::uint8_t>(recs.size() + 1)));
    dir_.Insert("TEST", L.Keys(), recs, L.size);
  }

  std::unique_ptr<ManagerOBJ> Make() {
    auto m = std::make_unique<ManagerOBJ>(dir_.path(), "TEST", L.size, 5, 6, 60, 12, "Test list");
    m->AddKey("tag", Str, 0, 21);
    m->AddKey("kind", Int, 21, 1);
    m->AddColumn({Str, 0, 21, 20, "Tag"});
    m->AddColumn({Int, 31, 1, 5, "Pay"});
    m->AddFields({{.type = Str, .col = 12, .row = 1, .offset = 0, .size = 20, .prompt = "Tag"},
                  {.type = Int, .col = 12, .row = 2, .offset = 21, .size = 1, .high = 99},
                  {.type = Int, .col = 12, .row = 3, .offset = 31, .size = 1, .high = 200}});
    return m;
  }

  // Runs the editor with an open companion file; the script must leave the editor.
  void Run(ManagerOBJ& m, const std::string& keys) {
    vt_.Keys(keys);
    ASSERT_TRUE(companion_.Open(dir_ / "TEST.tmp", 27, 0));
    m.Run(&companion_);
  }
  // Runs the editor until the script runs out, leaving its screen as it was at that moment
  // (the windows closed by the unwinding are not presented again).
  void Stop(ManagerOBJ& m, const std::string& keys) {
    vt_.Keys(keys);
    EXPECT_THROW(Run(m, ""), KeysExhausted);
  }
  bool Shown(const std::string& text) const { return vt_.Contains(text); }
  bool Shows(ManagerOBJ& m, const std::string& keys, const std::string& text) {
    Stop(m, keys);
    return Shown(text);
  }

  Bytes Index() const { return dir_.ReadBytes("TEST.IDX"); }
  Bytes Record(int recno) const {
    const Bytes data = dir_.ReadBytes("TEST.KSX");
    const auto at = data.begin() + recno * static_cast<std::ptrdiff_t>(L.size);
    return Bytes(at, at + static_cast<std::ptrdiff_t>(L.size));
  }
  std::size_t Records() const { return dir_.Read("TEST.KSX").size() / L.size; }

  test::RecordDir dir_;
  CompanionFile companion_;
};

TEST_F(ManagerTest, EmptyListAsksToAddNoLeavesAndDeletingTheLastEntryAsksAgain) {
  auto m = Make();
  EXPECT_TRUE(Shows(*m, "", "There are currently no entries") &&
              Shown("Would you like to add one?"));
  Run(*m, "<Tab><Enter>");  // "No" is the second button
  EXPECT_EQ(Records(), 0u);
  EXPECT_TRUE(dir_.Has("TEST.IDX"));
  Seed({"ALPHA"});
  EXPECT_TRUE(Shows(*m, "<Del><Tab><Enter>", "Would you like to add one?"));
  EXPECT_TRUE(Index().empty());
}

TEST_F(ManagerTest, AddShowsItsTitleAndSavesOnlyWhatWasTypedAndConfirmed) {
  Seed({"BRAVO"});
  auto m = Make();
  Run(*m, "<Ins><Esc><Esc>");  // nothing typed: nothing asked or added
  EXPECT_TRUE(Shows(*m, "<Ins>X", "Adding new entry"));
  EXPECT_TRUE(Shows(*m, "<Ins>X<Esc>", "Save changes?"));
  Run(*m, "<Ins>X<Esc><Tab><Enter><Esc>");  // No to "Save changes?"
  EXPECT_EQ(Records(), 1u);
}

// What a delete writes is checked end to end (tests/e2e, the kill test); here the veto.
TEST_F(ManagerTest, DeleteAsksNoFirstAndAVetoKeepsTheEntry) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  EXPECT_TRUE(Shows(*m, "<Right><Del>", "Delete this entry?"));
  const Bytes index = Index();
  Run(*m, "<Del><Enter><Esc>");  // the answer by default is No
  EXPECT_EQ(Index(), index);
  m->on_delete = [](const std::uint8_t*) { return false; };
  Run(*m, "<Del><Tab><Enter><Esc>");
  EXPECT_EQ(Index(), index);
  EXPECT_EQ(Record(0), L.Rec("ALPHA", 1, 1));
}

TEST_F(ManagerTest, DuplicateIsRefusedAndTypedValuesStay) {
  Seed({"ALPHA"});
  auto m = Make();
  // Add ALPHA/1 again with payload 9: refused; the form comes back with the typed values, the
  // kind is changed to 2 and the save goes through.
  EXPECT_TRUE(Shows(*m, "<Ins>ALPHA<Tab>1<Esc><Enter>", "Duplicate entry"));
  Run(*m, "<Ins>ALPHA<Tab>1<Tab>9<Esc><Enter><Enter><Tab><C-Y>2<Esc><Enter><Esc>");
  EXPECT_EQ(Record(1), L.Rec("ALPHA", 2, 9));
  EXPECT_EQ(Records(), 2u);
}

TEST_F(ManagerTest, LimitRefusesInsAndCopyButAllowsEditAndDelete) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  m->max_entries = 2;
  for (const char* key : {"<Ins>", "<F6>"}) {
    EXPECT_TRUE(Shows(*m, key, "You can not enter more than 2 entries")) << key;
  }
  Run(*m, "<Ins><Enter><F6><Enter><Enter><End>X<Esc><Enter><Del><Tab><Enter><Esc>");
  EXPECT_EQ(Records(), 2u);
  EXPECT_EQ(Index(), L.Entry("BRAVO", 1, 1));
  EXPECT_EQ(Record(0)[0], 0) << "ALPHAX was saved, then deleted";
}

TEST_F(ManagerTest, AListThatCannotBeOpenedSaysSo) {
  ManagerOBJ m(dir_ / "missing/", "TEST", L.size, 5, 6, 60, 12, "T");
  m.AddKey("tag", Str, 0, 21);
  vt_.Keys("");
  EXPECT_THROW(m.Run(nullptr), KeysExhausted);
  EXPECT_TRUE(Shown("Unable to open " + dir_.path() + "missing/TEST.KSX"));
}

// Where the highlight ends after moving, jumping to a first letter and finding.
TEST_F(ManagerTest, MovingJumpingAndFinding) {
  Seed({"ALPHA", "BETA", "BRAVO"});
  struct Case {
    const char* keys;
    bool searchable;
    const char* shown;
  } cases[] = {
      {"<Left>", true, "1/3"},  // moving never wraps
      {"<End><Right>", true, "3/3"},
      {"<End><Home><Right>", true, "2/3"},
      {"b", false, "2/3"},         // from ALPHA: BETA is the first B of the list
      {"<End>b", false, "3/3"},    // nothing later begins with B: no move
      {"br<Enter>", true, "3/3"},  // a letter opens the find prompt with it
      {"<F4>", true, "Enter tag to search for: "},
      {"<End>zulu<Enter>", true, "Unable to find entry"},
  };
  for (const auto& c : cases) {
    auto m = Make();
    m->searchable = c.searchable;
    EXPECT_TRUE(Shows(*m, c.keys, c.shown)) << c.keys;
  }
  auto m = Make();
  m->searchable = false;
  Stop(*m, "<F4>");
  EXPECT_FALSE(Shown("to search for"));
}

TEST_F(ManagerTest, HelpLineAndBrowseFollowWhatTheEditorOffers) {
  Seed({"ALPHA"});
  auto m = Make();
  EXPECT_TRUE(Shows(*m, "", "Enter-edit Insert Delete F4-find F5-browse F6-copy"));
  // Without a companion file there is no browse.
  m->global_edit = [](std::uint8_t*) { return true; };
  vt_.Keys("<F5><F2>");
  EXPECT_THROW(m->Run(nullptr), KeysExhausted);
  EXPECT_FALSE(Shown("View") || Shown("F5-browse"));
  EXPECT_TRUE(Shows(*m, "<F2><Esc>", "Process changes ?"));
  // An editor without fields offers neither edit, insert nor delete.
  ManagerOBJ bare(dir_.path(), "TEST", L.size, 5, 6, 60, 12, "T");
  bare.AddKey("tag", Str, 0, 21);
  bare.searchable = false;
  vt_.Keys("<Esc>");
  bare.Run(nullptr);
  EXPECT_EQ(bare.help_line(), " ~F6~-copy");
}

TEST_F(ManagerTest, BrowsePicksAnEntryAndReadsOnlyShownRows) {
  std::vector<Bytes> recs;
  for (int i = 0; i < 1000; ++i) {
    char tag[16];
    std::snprintf(tag, sizeof tag, "T%04d", i);
    recs.push_back(L.Rec(tag, 1));
  }
  dir_.Insert("TEST", L.Keys(), recs, L.size);
  auto m = Make();
  m->max_entries = 2000;
  int cells = 0;
  m->cell = [&](const std::uint8_t* rec, int column) {
    ++cells;
    return column == 0 ? std::string(reinterpret_cast<const char*>(rec + 1), rec[0]) : "";
  };
  EXPECT_TRUE(Shows(*m, "<F5><Down><Down><Enter>", "3/1000"));
  EXPECT_LT(cells, 2 * 40) << "only the rows on screen are built";
  EXPECT_GT(cells, 0);
}

TEST_F(ManagerTest, FunctionKeyWritesTheRecordBackInPlace) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  m->AddFunctionKey({true, key::kF7, [](std::uint8_t* rec, int, int) { rec[31] = 42; }});
  Run(*m, "<Right><F7><Esc>");
  EXPECT_EQ(Record(1), L.Rec("BRAVO", 1, 42));
  EXPECT_EQ(Index(), Concat({L.Entry("ALPHA", 1, 0), L.Entry("BRAVO", 1, 1)}));
}

TEST_F(ManagerTest, StartModes) {
  Seed({"ALPHA", "BRAVO"});
  auto m = Make();
  m->start_mode = ManagerOBJ::StartMode::kEdit;
  m->start_record = L.Rec("BRAVO", 1);
  vt_.Keys("<Tab><Tab><C-Y>9<Esc><Enter>");
  m->Run(nullptr);
  EXPECT_EQ(Record(1), L.Rec("BRAVO", 1, 9));
  m->start_record = L.Rec("NOPE", 1);
  EXPECT_TRUE(Shows(*m, "", "Unable to find entry"));
  m->start_mode = ManagerOBJ::StartMode::kAdd;
  m->max_entries = 2;
  EXPECT_TRUE(Shows(*m, "", "You can not enter more than 2 entries"));
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
