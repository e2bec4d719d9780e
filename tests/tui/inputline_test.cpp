// The one-line text entry: editing keys, the length limit, scrolling in a narrow field, and the
// prompt box around it.

#include "tui/inputline.h"

#include "vt_fixture.h"

namespace ks {
namespace {

constexpr int kCol = 10, kRow = 12;
constexpr std::uint8_t kAttr = 0x21;

class InputLineTest : public test::VtTest {
 protected:
  std::optional<std::string> Edit(const std::string& initial, const std::string& keys,
                                  int max_len = 10, int width = 20) {
    vt_.Keys(keys);
    return InputLine(kCol, kRow, width, max_len, initial, kAttr);
  }
  // The field as shown when the script ran out (not flushed again).
  std::string Field(int width) { return vt_.Row(kRow).substr(kCol - 1, width); }
};

TEST_F(InputLineTest, EditingKeys) {
  struct Case {
    const char* initial;
    const char* keys;
    const char* result;
  } cases[] = {
      {"", "abc<Enter>", "abc"},
      {"abc", "<Left>X<Enter>", "abXc"},
      {"abc", "<Home>X<Enter>", "Xabc"},
      {"abc", "<Home><Right>X<Enter>", "aXbc"},
      {"abc", "<Left><Left><Left><Left><Right><Right><Right><Right>d<Enter>", "abcd"},
      {"abc", "<BS><Enter>", "ab"},
      {"abc", "<Left><BS><Enter>", "ac"},
      {"abc", "<Home><Del><Enter>", "bc"},
      {"abc", "<Del><Enter>", "abc"},
      {"abc", "<Home><Ins>XY<Enter>", "XYc"},
      {"abc", "<Home><Ins>WXYZ<Enter>", "WXYZ"},  // overwriting past the end appends
      {"abc", "\x19xy<Enter>", "xy"},             // Ctrl-Y clears
      {"abc", "<Left>\x19<Right>x<Enter>", "x"},
      {"", "<F1><F3><Up><Down><PgDn>a<Enter>", "a"},  // scan codes are not characters
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Edit(c.initial, c.keys), std::optional<std::string>(c.result)) << c.keys;
    EXPECT_EQ(vt_.KeysLeft(), 0u) << c.keys;
  }
  EXPECT_EQ(Edit("abc", "xyz<Esc>"), std::nullopt);
}

TEST_F(InputLineTest, KeepsToTheLengthLimit) {
  EXPECT_EQ(Edit("", "0123456789AB<Enter>"), "0123456789");
  EXPECT_EQ(Edit("0123456789", "<Home>X<Enter>"), "0123456789");  // full: insert refused
  EXPECT_EQ(Edit("0123456789", "<Home><Ins>X<Enter>"), "X123456789");
  EXPECT_EQ(Edit("0123456789", "<Ins>X<Enter>"), "0123456789");  // at the end nothing to replace
  EXPECT_EQ(Edit("0123456789ABC", "<Enter>"), "0123456789");     // a longer start is cut
}

TEST_F(InputLineTest, DrawsTheFieldScrollsAndShowsTheCursor) {
  screen_.SetCursorShape(CursorShape::kHidden);
  EXPECT_THROW(Edit("abc", "<Left>", 10, 6), KeysExhausted);
  EXPECT_EQ(Field(6), "abc   ");
  EXPECT_EQ(vt_.At(kCol + 5, kRow).attr, kAttr);
  EXPECT_EQ(vt_.At(kCol + 6, kRow).attr, 0x07);  // nothing beyond the field
  EXPECT_EQ(vt_.cursor_col(), kCol + 2);
  EXPECT_EQ(vt_.cursor_shape(), CursorShape::kUnderline);

  // Longer than the field: the part around the cursor is shown.
  EXPECT_THROW(Edit("abcdefghij", "", 10, 6), KeysExhausted);
  EXPECT_EQ(Field(6), "fghij ");
  EXPECT_EQ(vt_.cursor_col(), kCol + 5);
  EXPECT_THROW(Edit("abcdefghij", "<Home>", 10, 6), KeysExhausted);
  EXPECT_EQ(Field(6), "abcdef");
  EXPECT_EQ(vt_.cursor_col(), kCol);

  // The cursor shape is put back afterwards.
  screen_.SetCursorShape(CursorShape::kHidden);
  EXPECT_EQ(Edit("", "<Enter>"), "");
  Sync();
  EXPECT_EQ(vt_.cursor_shape(), CursorShape::kHidden);
}

TEST_F(InputLineTest, AskTextShowsAPromptBoxAndPutsBackTheScreen) {
  screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
  ShowStatus("~Esc~-exit");
  const std::string before = Dump();

  vt_.Keys("needle");
  EXPECT_THROW(AskText("Find", "Search for: ", 30), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("Search for: needle"));
  EXPECT_EQ(vt_.AttrOf("needle"), ui().colours[kDataInput]);
  EXPECT_TRUE(Dump() == before);  // the box went away with the throw

  vt_.Keys("<BS>x<Enter>");
  EXPECT_EQ(AskText("Find", "Search for: ", 30, "old"), "olx");
  vt_.Keys("abc<Esc>");
  EXPECT_EQ(AskText("Find", "Search for: ", 30), std::nullopt);
  EXPECT_TRUE(Dump() == before);
}

// The cursor stands after the last character, so the field needs one cell more than the
// longest text; otherwise a text of the full length scrolls its first character out of view.
TEST_F(InputLineTest, AskTextShowsAFullLengthTextWhole) {
  const std::string thirty = "abcdefghijklmnopqrstuvwxyz0123";
  vt_.Keys(thirty);
  EXPECT_THROW(AskText("Find", "Search for: ", 30), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("Search for: " + thirty));
}

}  // namespace
}  // namespace ks
