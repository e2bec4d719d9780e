#include "tui/colourmenu.h"

// After KeysExhausted the boxes have put back what lay beneath; the virtual terminal still
// shows the screen as it was while the last key was awaited, so the tests look there.

#include "vt_fixture.h"

namespace ks {
namespace {

class ColorsMenuTest : public test::VtTest {
 protected:
  bool Run(const std::string& keys) {
    vt_.Keys(keys);
    return RunColorsMenu(set_);
  }
  ColourSet set_ = DefaultColourSet();  // scheme 2, "Quenmark"
};

TEST_F(ColorsMenuTest, HighlightStartsOnTheSchemeNumber) {
  EXPECT_THROW(Run(""), KeysExhausted);
  EXPECT_EQ(vt_.AttrOf("Quenmark"), ui().colours[kWindowSelect]);
  for (int scheme : {0, 7, 200}) {
    set_[kSchemeNumber - 1] = static_cast<std::uint8_t>(scheme);
    EXPECT_THROW(Run(""), KeysExhausted);
    EXPECT_EQ(vt_.AttrOf("Customized"), ui().colours[kWindowSelect]) << scheme;
  }
}

TEST_F(ColorsMenuTest, PresetReplacesTheWholeSetEscChangesNothing) {
  EXPECT_FALSE(Run("<Down><Esc>"));
  EXPECT_EQ(set_, DefaultColourSet());
  EXPECT_TRUE(Run("<Down><Enter>"));  // from Quenmark down to Norton
  EXPECT_EQ(set_, PresetColourSet(3));
  EXPECT_EQ(set_[kSchemeNumber - 1], 3);
}

TEST_F(ColorsMenuTest, CustomizedPicksAColourAndMarksTheSetCustomized) {
  // Customized, first slot "Window.frame" (0x0B): one step right makes 0x0C, Enter keeps it.
  EXPECT_TRUE(Run("<Home><Enter><Enter><Right><Enter><Esc><Esc>"));
  EXPECT_EQ(set_[kWindowFrame - 1], 0x0C);
  EXPECT_EQ(set_[kSchemeNumber - 1], kSchemeCustomized);
  for (int k = 1; k <= kColourSetSize; ++k) {
    if (k != kWindowFrame && k != kSchemeNumber) {
      EXPECT_EQ(set_[k - 1], DefaultColourSet()[k - 1]);
    }
  }
}

TEST_F(ColorsMenuTest, PickerShowsTheSampleAndEscAborts) {
  EXPECT_THROW(Run("<Home><Enter><Down><Down><Down><Enter><Down>"), KeysExhausted);
  // "Window.select" is 0x71; one row down is background 8: 0x81.
  EXPECT_TRUE(vt_.Contains("Attribute 81"));
  EXPECT_EQ(vt_.AttrOf(" sample text "), 0x81);
  EXPECT_FALSE(Run("<Home><Enter><Down><Down><Down><Enter><Down><Esc><Esc><Esc>"));
  EXPECT_EQ(set_, DefaultColourSet());
}

TEST_F(ColorsMenuTest, BackgroundCharacterTakesTheKeyAcceptedWithEnter) {
  // "BG character" is the last item of the second column.
  EXPECT_THROW(Run("<Home><Enter><End><Enter>#"), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("Current background character : '#' (ASCII 35)"));
  EXPECT_TRUE(Run("<Home><Enter><End><Enter>#<Enter><Esc><Esc>"));
  EXPECT_EQ(set_[kBgChar - 1], '#');
  set_ = DefaultColourSet();
  EXPECT_FALSE(Run("<Home><Enter><End><Enter>#<Esc><Esc><Esc>"));
  EXPECT_EQ(set_[kBgChar - 1], 0xB1);
}

TEST_F(ColorsMenuTest, RightGoesToTheSecondColumn) {
  // Right goes to the same row of the second column.
  EXPECT_THROW(Run("<Home><Enter><Right>"), KeysExhausted);
  EXPECT_EQ(vt_.AttrOf("Edit.text"), ui().colours[kWindowSelect]);
}

}  // namespace
}  // namespace ks
