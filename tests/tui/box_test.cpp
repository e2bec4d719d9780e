#include "tui/box.h"

#include "tui/keys.h"
#include "vt_fixture.h"

namespace ks {
namespace {

class MenuTest : public test::VtTest {
 protected:
  void SetUp() override {
    screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
    box_ = std::make_unique<BoxOBJ>(31, 6, 50, 12, "Main");
    box_->AddItem(2, 2, "First", "help one", 10);
    box_->AddItem(2, 3, "Second", "help two", 0);
    box_->AddItem(2, 4, "Third", "help three", 12);
    box_->set_topic(99);
  }
  int Run(const std::string& keys) {
    vt_.Keys(keys);
    return box_->Run();
  }
  std::unique_ptr<BoxOBJ> box_;
};

TEST_F(MenuTest, ArrowsTabAndWrapping) {
  EXPECT_EQ(Run("<Down><Enter>"), 2);
  EXPECT_EQ(Run("<Enter>"), 2);              // the highlight starts on the last choice
  EXPECT_EQ(Run("<Down><Down><Enter>"), 1);  // past the last wraps to the first
  EXPECT_EQ(Run("<Up><Enter>"), 3);          // before the first wraps to the last
  EXPECT_EQ(Run("<Tab><Enter>"), 1);
  EXPECT_EQ(Run("<S-Tab><Enter>"), 3);
  EXPECT_EQ(Run("<Home><Enter>"), 1);
  EXPECT_EQ(Run("<End><Enter>"), 3);
  EXPECT_EQ(Run("<PgUp><Enter>"), 1);
  EXPECT_EQ(Run("<PgDn><Esc>"), kChoiceEsc);
}

TEST_F(MenuTest, LettersShareTheScanCodeSpace) {
  // "P" is Down's code, "H" Up's, "G" Home's; lower case letters do nothing.
  EXPECT_EQ(Run("PP<Enter>"), 3);
  EXPECT_EQ(Run("H<Enter>"), 2);
  EXPECT_EQ(Run("pxG<Enter>"), 1);
}

TEST_F(MenuTest, F9AndF10EndOnlyTopMenus) {
  EXPECT_EQ(Run("<F9><F10>CD<Down><Enter>"), 2);  // ignored in an ordinary menu
  box_->set_top_menu(true);
  EXPECT_EQ(Run("<F9>"), kChoiceF9);
  EXPECT_EQ(Run("<F10>"), kChoiceF10);
  EXPECT_EQ(Run("C"), kChoiceF9);  // "C" has F9's code
  EXPECT_EQ(Run("D"), kChoiceF10);
}

TEST_F(MenuTest, ExitKeySetReturnsHighlightedChoice) {
  box_->exit_keys().set(key::kF2);
  EXPECT_EQ(Run("<Down><F2>"), 2);
}

TEST_F(MenuTest, HighlightAndStatusLineFollowSelection) {
  const auto& c = ui().colours;
  EXPECT_EQ(Run("<Down><Esc>"), kChoiceEsc);
  Sync();
  EXPECT_EQ(vt_.At(33, 9).attr, c[kWindowSelect]);  // "Second" highlighted
  EXPECT_EQ(vt_.At(33, 8).attr, c[kWindowText]);
  EXPECT_EQ(vt_.Row(25).substr(0, 9), "help two ");
  // The bar is as wide as the widest title.
  EXPECT_EQ(vt_.At(33 + 5, 9).attr, c[kWindowSelect]);
  EXPECT_EQ(vt_.At(33 + 6, 9).attr, c[kWindowText]);
}

TEST_F(MenuTest, F1ShowsItemTopicOrTheMenusOwn) {
  std::vector<int> asked;
  ui().show_help = [&](int t) { asked.push_back(t); };
  Run("<F1><Down><F1>;<Esc>");  // ";" has F1's code
  EXPECT_EQ(asked, (std::vector<int>{10, 99, 99}));
}

TEST_F(MenuTest, AltZOpensPopupOnlyWhenEnabled) {
  int opened = 0;
  ui().popup = [&] { ++opened; };
  Run("<Alt-Z><Esc>");
  EXPECT_EQ(opened, 0);
  ui().popup_enabled = true;
  Run("<Alt-Z>,<Esc>");  // "," has Alt-Z's code
  EXPECT_EQ(opened, 2);
}

TEST_F(MenuTest, HideRestoresWhatLayBeneath) {
  // The box and its shadow cover rows 6-13; the status line is not part of the box.
  auto rows = [this] {
    std::string s;
    for (int y = 5; y <= 14; ++y) s += Row(y);
    return s;
  };
  const std::string before = rows();
  box_->Draw();
  EXPECT_TRUE(OnScreen(" Main "));
  box_->Hide();
  EXPECT_TRUE(rows() == before);
  box_->Show();
  EXPECT_TRUE(OnScreen("Second"));
  box_.reset();  // freeing a visible box hides it
  EXPECT_TRUE(rows() == before);
}

TEST_F(MenuTest, PrefixIsDrawnInFrontAndWidensTheBar) {
  box_->SetPrefix(2, " \xC3\xC4");
  box_->Draw();
  Sync();
  EXPECT_EQ(vt_.Row(9).substr(32, 9), " \xC3\xC4Second");
}

TEST_F(MenuTest, HotKeyRunsItsProcedureAndDisabledOnesDoNot) {
  int runs = 0;
  HotKey hk;
  hk.key = 'x';
  hk.params[0] = 7;
  hk.proc = [&](BoxOBJ&, const std::uint8_t* p) { runs += p[0]; };
  box_->AddHotKey(hk);
  hk.key = 'y';
  hk.disabled = true;
  box_->AddHotKey(hk);
  Run("xy<Esc>");
  EXPECT_EQ(runs, 7);
}

TEST_F(MenuTest, LimitsOnItemsAndHotKeysAreSilent) {
  BoxOBJ big(1, 5, 80, 24, "Big");
  for (int i = 0; i < 105; ++i) big.AddItem(2, 1, "x", "", 0);
  EXPECT_EQ(big.item_count(), BoxOBJ::kMaxItems);
}

class GridMenuTest : public test::VtTest {};

TEST_F(GridMenuTest, LeftRightGoToNearestItemByColumn) {
  BoxOBJ box(10, 6, 60, 12, "Grid");
  box.AddItem(2, 2, "a1", "", 0);   // 1
  box.AddItem(2, 3, "a2", "", 0);   // 2
  box.AddItem(20, 2, "b1", "", 0);  // 3
  box.AddItem(20, 4, "b3", "", 0);  // 4
  box.AddItem(40, 3, "c2", "", 0);  // 5
  vt_.Keys("<Down><Right><Enter>");
  EXPECT_EQ(box.Run(), 3);  // from a2 (row 3): b1 and b3 are one row away, b1 comes first
  vt_.Keys("<Right><Enter>");
  EXPECT_EQ(box.Run(), 5);
  vt_.Keys("<Right><Enter>");
  EXPECT_EQ(box.Run(), 5);  // nothing further right
  vt_.Keys("<Left><Left><Enter>");
  EXPECT_EQ(box.Run(), 1);  // b1, then a1 on the same row
}

}  // namespace
}  // namespace ks
