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
  }
  int Run(const std::string& keys) {
    vt_.Keys(keys);
    return box_->Run();
  }
  std::unique_ptr<BoxOBJ> box_;
};

TEST_F(MenuTest, KeysMoveTheHighlightAndEndTheMenu) {
  // Each script runs on the menu as the one before left it: the highlight stays on the last
  // choice, and moving past either end wraps. Letters share the scan codes ("P" Down, "H" Up,
  // "G" Home, "C" F9, "D" F10); lower case letters do nothing, and F9 and F10 end only top
  // menus.
  const std::pair<const char*, int> cases[] = {
      {"<Down><Enter>", 2},       {"<Enter>", 2},
      {"<Down><Down><Enter>", 1}, {"<Up><Enter>", 3},
      {"<Tab><Enter>", 1},        {"<S-Tab><Enter>", 3},
      {"<Home><Enter>", 1},       {"<End><Enter>", 3},
      {"<PgUp><Enter>", 1},       {"<PgDn><Esc>", kChoiceEsc},
      {"<Home>PP<Enter>", 3},     {"H<Enter>", 2},
      {"pxG<Enter>", 1},          {"<F9><F10>CD<Down><Enter>", 2}};
  for (const auto& [keys, choice] : cases) EXPECT_EQ(Run(keys), choice) << keys;
  box_->exit_keys().set(key::kF2);
  EXPECT_EQ(Run("<Down><F2>"), 3);
  box_->set_top_menu(true);
  EXPECT_EQ(Run("<F9>"), kChoiceF9);
  EXPECT_EQ(Run("C"), kChoiceF9);
  EXPECT_EQ(Run("D"), kChoiceF10);
}

TEST_F(MenuTest, HighlightAndStatusLineFollowSelection) {
  const auto& c = ui().colours;
  EXPECT_EQ(Run("<Down><Esc>"), kChoiceEsc);
  Sync();
  EXPECT_EQ(vt_.Row(25).substr(0, 9), "help two ");
  // "Second" highlighted, the bar as wide as the widest title.
  EXPECT_EQ(vt_.At(33 + 5, 9).attr, c[kWindowSelect]);
  EXPECT_EQ(vt_.At(33 + 6, 9).attr, c[kWindowText]);
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
  box_->Hide();
  EXPECT_TRUE(rows() == before);
  box_->Show();
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

}  // namespace
}  // namespace ks
