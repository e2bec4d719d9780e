#include "tui/screen.h"

#include "tui/box.h"
#include "tui/colours.h"
#include "vt_fixture.h"

namespace ks {
namespace {

using test::VtTest;

class ScreenTest : public VtTest {};

TEST_F(ScreenTest, ColourEscapeSwitchesAttributeAndIsNotShown) {
  screen_.WriteStr(5, 3, 0x07,
                   std::string("ab\x01\x4E"
                               "cd"));
  Sync();
  EXPECT_EQ(vt_.Row(3).substr(4, 5), "abcd ");
  EXPECT_EQ(vt_.At(6, 3).attr, 0x07);
  EXPECT_EQ(vt_.At(7, 3).attr, 0x4E);
  EXPECT_EQ(Screen::VisibleLength(std::string("ab\x01\x4E"
                                              "cd")),
            4);
}

TEST_F(ScreenTest, FillWidthPadsInStartAttributeAndClipsAtEdge) {
  screen_.FillRect(1, 1, 80, 25, 'x', 0x11);
  screen_.WriteStr(10, 2, 0x1F,
                   std::string("ab\x01\x30"
                               "c"),
                   6);
  Sync();
  EXPECT_EQ(vt_.Row(2).substr(9, 7), "abc   x");
  EXPECT_EQ(vt_.At(13, 2).attr, 0x1F);  // padding in the start colour, not the switched one
  EXPECT_EQ(vt_.At(16, 2).attr, 0x11);
  screen_.WriteStr(78, 4, 0x07, "12345", 10);  // nothing lands past column 80
  Sync();
  EXPECT_EQ(vt_.Row(4).substr(77), "123");
  EXPECT_EQ(vt_.Row(5).substr(0, 2), "xx");
}

TEST_F(ScreenTest, OnlyChangedRowsArePresentedAndKeysFlushFirst) {
  Sync();
  const int before = vt_.present_count();
  Sync();  // nothing changed: nothing sent
  EXPECT_EQ(vt_.present_count(), before);
  screen_.WriteStr(1, 1, 0x07, "x");
  vt_.Keys("<F10>a");
  EXPECT_EQ(screen_.ReadCode(), 68);  // extended key: its scan code
  EXPECT_EQ(vt_.present_count(), before + 1);
  bool extended = true;
  EXPECT_EQ(screen_.ReadCode(&extended), 'a');
  EXPECT_FALSE(extended);
  EXPECT_THROW(screen_.ReadKey(), KeysExhausted);
}

// After a resize a box keeps its place and its shadow falls on the new backdrop; when it closes
// it leaves the backdrop of the new size behind: the header as it is drawn now (its right part
// moved with the right edge), and desktop where the status line used to be.
TEST_F(ScreenTest, BoxClosedAfterResizeLeavesTheBackdropOfTheNewSize) {
  ui().header_right2 = "2:280/5555";
  DrawDesktop();
  BoxOBJ box(50, 2, 79, 23, "Over the header");
  box.Draw();
  ShowStatus("Box status");
  EXPECT_EQ(screen_.At(80, 3).ch, 0xBA);  // the box's shadow on the header's right edge ...
  screen_.Resize(100, 30);
  EXPECT_EQ(screen_.At(50, 2).ch, 0xC9);
  EXPECT_EQ(screen_.At(80, 3), (Cell{' ', 0x08}));  // ... falls on the header of the new size
  EXPECT_EQ(screen_.RowText(30).substr(0, 11), "Box status ");
  box.Hide();
  std::vector<std::string> rows;
  for (int y = 1; y < 30; ++y) rows.push_back(screen_.RowText(y));
  DrawDesktop();
  for (int y = 1; y < 30; ++y) EXPECT_EQ(rows[y - 1], screen_.RowText(y)) << "row " << y;
}

class StatusLineTest : public VtTest {};

// Tildes toggle between the text and the key colour; an odd one leaves the key colour on.
TEST_F(StatusLineTest, TildesToggleTheKeyColour) {
  const auto& c = ui().colours;
  ShowStatus("a ~b rest");
  Sync();
  EXPECT_EQ(vt_.Row(25).substr(0, 9), "a b rest ");
  EXPECT_EQ(vt_.At(1, 25).attr, c[kBottomText]);
  EXPECT_EQ(vt_.At(5, 25).attr, c[kBottomKey]);
  EXPECT_EQ(vt_.At(80, 25).attr, c[kBottomText]);  // the fill keeps the start colour
}

TEST(ColourSets, MonochromeKeepsSlotsWithoutFixedValue) {
  ColourSet cfg = PresetColourSet(3);
  ColourSlots slots;
  slots.InstallMono(cfg);
  EXPECT_EQ(slots[kWindowSelect], 112);
  EXPECT_EQ(slots[kSlot7], cfg[kSlot7 - 1]);
  EXPECT_EQ(slots[kSchemeNumber], 3);
}

}  // namespace
}  // namespace ks
