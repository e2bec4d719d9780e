// The Alt-Z character chart: where it stands, moving the highlight, typing a character to jump
// to it, and putting the screen back.

#include "tui/charchart.h"

#include <cstdio>

#include "vt_fixture.h"

namespace ks {
namespace {

// Code y*16+x is drawn at column 20+3x of row 7+y; the line about the highlighted character is
// row 23.
constexpr int kInfoRow = 23;
int CodeCol(int code) {
  return 20 + 3 * (code % 16);
}
int CodeRow(int code) {
  return 7 + code / 16;
}

class CharChartTest : public test::VtTest {
 protected:
  CharChartTest() {
    screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
    ShowStatus("~F10~-menu");
    before_ = Dump();
  }
  // Opens the chart until the script runs out. The chart has put the screen back by then, but
  // that is not shown yet: the terminal still holds the chart as it was on the last key.
  void OpenWith(const std::string& keys) {
    vt_.Keys(keys);
    EXPECT_THROW(ShowCharacterChart(), KeysExhausted);
  }
  std::string Info(int code) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "Decimal %3d    Hexadecimal %02X", code, code);
    return buf;
  }
  std::string before_;
};

TEST_F(CharChartTest, KeysMoveTheHighlight) {
  const auto& c = ui().colours;
  struct Case {
    const char* keys;
    int code;
  } cases[] = {
      {"", 'A'},        {"<Right>", 'B'},     {"<Left>", '@'},        {"<Up>", '1'},
      {"<Down>", 'Q'},  {"<Home>", 0x40},     {"<End>", 0x4F},        {"<PgUp>", 0x01},
      {"<PgDn>", 0xF1}, {"<PgUp><Up>", 0xF1}, {"<PgDn><Down>", 0x01},  // up and down wrap round
      {"z", 'z'},       {"<Space>", ' '},     {"\xDB", 0xDB},         {"z<lt>", '<'},
      {"\x01", 0x01},
  };
  for (const auto& k : cases) {
    OpenWith(k.keys);
    EXPECT_NE(vt_.Row(kInfoRow).find(Info(k.code)), std::string::npos) << k.keys;
    EXPECT_EQ(vt_.At(CodeCol(k.code), CodeRow(k.code)).attr, c[kWindowSelect]) << k.keys;
    if (k.code != 'A') {
      EXPECT_EQ(vt_.At(CodeCol('A'), CodeRow('A')).attr, c[kWindowData]) << k.keys;
    }
  }
  // The character itself stands in the line, even the one that reads as a colour change.
  EXPECT_EQ(vt_.At(25, kInfoRow).ch, 0x01);
}

TEST_F(CharChartTest, EscAndEnterCloseAndPutBackTheScreen) {
  int topic = -1;
  ui().show_help = [&](int t) { topic = t; };
  // Gone again, status line included.
  for (const char* keys : {"<Esc>", "<Down><F1><Enter>"}) {
    vt_.Keys(keys);
    ShowCharacterChart();
    EXPECT_EQ(vt_.KeysLeft(), 0u) << keys;
    EXPECT_TRUE(Dump() == before_) << keys;
  }
  EXPECT_EQ(topic, 6);
}

}  // namespace
}  // namespace ks
