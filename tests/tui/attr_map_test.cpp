#include "tui/attr_map.h"

#include <gtest/gtest.h>

#include "common/cp437.h"

namespace ks {
namespace {

constexpr ColourCaps k16{ColourDepth::kColour16, false};
constexpr ColourCaps k8{ColourDepth::kColour8, false};
constexpr ColourCaps k8Linux{ColourDepth::kColour8, true};
constexpr ColourCaps kMono{ColourDepth::kMono, false};

CellStyle Style(int fg, int bg, bool bold = false, bool blink = false, bool reverse = false) {
  return {fg, bg, bold, blink, reverse};
}

TEST(AttrMap, PcColourOrderBecomesAnsiOrder) {
  // PC: 1 blue, 2 green, 4 red. ANSI: 1 red, 2 green, 4 blue.
  const int expected[16] = {0, 4, 2, 6, 1, 5, 3, 7, 8, 12, 10, 14, 9, 13, 11, 15};
  for (int pc = 0; pc < 16; ++pc) EXPECT_EQ(PcToAnsi(pc), expected[pc]) << pc;
}

TEST(AttrMap, SixteenColoursUseBothNibblesWhole) {
  EXPECT_EQ(MapAttr(0x1E, k16), Style(11, 4));   // yellow on blue
  EXPECT_EQ(MapAttr(0x9F, k16), Style(15, 12));  // white on light blue: bit 7 is a colour
}

TEST(AttrMap, EightColoursTurnBrightForegroundIntoBold) {
  EXPECT_EQ(MapAttr(0x1E, k8), Style(3, 4, true));
  EXPECT_EQ(MapAttr(0x08, k8), Style(0, 0, true));  // dark grey: bold black
}

TEST(AttrMap, EightColoursDropBrightBackgroundButKeepTextVisible) {
  EXPECT_EQ(MapAttr(0x9F, k8), Style(7, 4, true));
  // Light grey on white would become grey on grey.
  EXPECT_EQ(MapAttr(0xF7, k8), Style(7, 7, true));
  // Text that is meant to be invisible stays so.
  EXPECT_EQ(MapAttr(0x77, k8), Style(7, 7));
  // The Linux console shows the bright background through blink.
  EXPECT_EQ(MapAttr(0x9F, k8Linux), Style(7, 4, true, true));
  EXPECT_EQ(MapAttr(0xF7, k8Linux), Style(7, 7, false, true));
  EXPECT_EQ(MapAttr(0x1F, k8Linux), Style(7, 4, true));
}

TEST(AttrMap, MonochromeKeepsSelectionsVisible) {
  const CellStyle plain = Style(-1, -1);
  const CellStyle bold = Style(-1, -1, true);
  const CellStyle reverse = Style(-1, -1, false, false, true);
  const CellStyle reverseBold = Style(-1, -1, true, false, true);
  // The monochrome set's 7, 15 and 112; then the colour set's highlight bar and help text
  // are reverse, text on black or dark blue is not, and any bright background is light.
  EXPECT_EQ(MapAttr(0x07, kMono), plain);
  EXPECT_EQ(MapAttr(0x0F, kMono), bold);
  EXPECT_EQ(MapAttr(0x70, kMono), reverse);
  EXPECT_EQ(MapAttr(0x71, kMono), reverse);
  EXPECT_EQ(MapAttr(0x3F, kMono), reverseBold);
  EXPECT_EQ(MapAttr(0x1E, kMono), bold);
  EXPECT_EQ(MapAttr(0x03, kMono), plain);
  EXPECT_EQ(MapAttr(0x08, kMono), plain);  // dark grey is not brighter than normal text
  EXPECT_EQ(MapAttr(0x80, kMono), reverse);
}

TEST(AttrMap, AlternateCharacterSetCoversLinesBothSingleAndDouble) {
  EXPECT_EQ(AcsFor(0xC4), 'q');
  EXPECT_EQ(AcsFor(0xCD), 'q');
  EXPECT_EQ(AcsFor(0xC9), 'l');
  EXPECT_FALSE(AcsFor('A'));
  EXPECT_FALSE(AcsFor(0x82));  // é is a letter, not a drawing character
  // Every box-drawing character 0xB3-0xDA has a line form.
  for (int c = 0xB3; c <= 0xDA; ++c) EXPECT_TRUE(AcsFor(static_cast<std::uint8_t>(c))) << c;
}

TEST(AttrMap, GlyphChoiceFollowsLocaleAndTerminal) {
  GlyphCaps utf8{true, [](char32_t) { return true; }, [](char) { return true; }};
  EXPECT_EQ(ChooseGlyph(0x01, utf8), (Glyph{GlyphKind::kUnicode, U'☺'}));
  EXPECT_EQ(ChooseGlyph(0x00, utf8), (Glyph{GlyphKind::kUnicode, U' '}));
  // A character the terminal cannot show narrow falls back to ASCII.
  GlyphCaps utf8Narrow{true, [](char32_t u) { return u != U'☺'; }, nullptr};
  EXPECT_EQ(ChooseGlyph(0x01, utf8Narrow), (Glyph{GlyphKind::kAscii, U'*'}));

  // A Latin-1 locale: lines through the alternate set, é as itself, ░ without ACS as ASCII.
  GlyphCaps latin1{false, [](char32_t u) { return u < 0x100; }, [](char c) { return c != 'h'; }};
  EXPECT_EQ(ChooseGlyph(0xCD, latin1), (Glyph{GlyphKind::kAcs, U'q'}));
  EXPECT_EQ(ChooseGlyph(0x82, latin1), (Glyph{GlyphKind::kUnicode, U'é'}));
  EXPECT_EQ(ChooseGlyph(0xB0, latin1), (Glyph{GlyphKind::kAscii, U'#'}));

  // Plain ASCII, no alternate set at all.
  GlyphCaps ascii{false, [](char32_t u) { return u < 0x80; }, nullptr};
  for (int c = 0x80; c < 0x100; ++c) {
    const Glyph g = ChooseGlyph(static_cast<std::uint8_t>(c), ascii);
    EXPECT_EQ(g.kind, GlyphKind::kAscii) << c;
    EXPECT_EQ(g.ch, static_cast<char32_t>(Cp437ToAscii(static_cast<std::uint8_t>(c))));
  }
}

}  // namespace
}  // namespace ks
