#include "tui/attr_map.h"

#include <string_view>

#include "common/cp437.h"

namespace ks {

CellStyle MapAttr(std::uint8_t attr, ColourCaps caps) {
  const int fg = attr & 0x0F;
  const int bg = attr >> 4;  // bit 3 of the nibble is the bright background (blink) bit
  CellStyle s;
  switch (caps.depth) {
    case ColourDepth::kColour16:
      s.fg = PcToAnsi(fg);
      s.bg = PcToAnsi(bg);
      break;

    case ColourDepth::kColour8:
      s.fg = PcToAnsi(fg & 7);
      s.bg = PcToAnsi(bg & 7);
      s.bold = (fg & 8) != 0;
      if (bg & 8) {
        if (caps.blinkIsBrightBackground) {
          s.blink = true;
        } else if ((fg & 7) == (bg & 7) && !s.bold) {
          // Without its bright background the text would vanish (0xF7 light grey on white
          // becomes grey on grey); a bright foreground keeps it readable.
          s.bold = true;
        }
      }
      break;

    case ColourDepth::kMono:
      // Black and dark blue count as dark backgrounds, every other background (including
      // all bright ones) as light and shows in reverse video. So the highlight bars 0x70 and
      // 0x71, headers and message boxes are reverse, while plain text 0x07 and the blue-backed
      // titles 0x1E stay normal. A bright foreground is bold, except dark grey (8), which is
      // dimmer than normal text rather than brighter.
      s.reverse = (bg & 8) != 0 || (bg & 7) >= 2;
      s.bold = fg > 8;
      break;
  }
  return s;
}

namespace {

// The CP437 characters each letter of the alternate character set stands in for.
struct AcsGroup {
  char letter;
  std::string_view chars;
};

constexpr AcsGroup kAcsGroups[] = {
    {'q', "\xC4\xCD"},          // horizontal line
    {'x', "\xB3\xBA"},          // vertical line
    {'l', "\xDA\xC9\xD5\xD6"},  // upper left corner
    {'k', "\xBF\xBB\xB8\xB7"},  // upper right corner
    {'m', "\xC0\xC8\xD4\xD3"},  // lower left corner
    {'j', "\xD9\xBC\xBE\xBD"},  // lower right corner
    {'t', "\xC3\xCC\xC6\xC7"},  // tee pointing right
    {'u', "\xB4\xB9\xB5\xB6"},  // tee pointing left
    {'w', "\xC2\xCB\xD1\xD2"},  // tee pointing down
    {'v', "\xC1\xCA\xCF\xD0"},  // tee pointing up
    {'n', "\xC5\xCE\xD8\xD7"},  // crossing
    {'h', "\xB0"},              // light shade: board of squares
    {'a', "\xB1\xB2"},          // medium and dark shade: checker board
    {'0', "\xDB"},              // solid block
    {'~', "\xF9\xFA"},          // bullets
    {'f', "\xF8"},              // degree
    {'g', "\xF1"},              // plus/minus
    {'y', "\xF3"},              // less or equal
    {'z', "\xF2"},              // greater or equal
    {'{', "\xE3"},              // pi
    {'}', "\x9C"},              // pound sterling
    {'`', "\x04"},              // diamond
    {'-', "\x18\x1E"},          // arrow and triangle up
    {'.', "\x19\x1F"},          // down
    {'+', "\x1A\x10"},          // right
    {',', "\x1B\x11"},          // left
};

}  // namespace

std::optional<char> AcsFor(std::uint8_t ch) {
  for (const auto& g : kAcsGroups)
    if (g.chars.find(static_cast<char>(ch)) != std::string_view::npos) return g.letter;
  return std::nullopt;
}

Glyph ChooseGlyph(std::uint8_t ch, const GlyphCaps& caps) {
  const char32_t u = Cp437ToUnicode(ch);
  if (ch >= 0x20 && ch < 0x7F) return {GlyphKind::kUnicode, u};
  if (!caps.utf8) {
    if (auto acs = AcsFor(ch); acs && caps.hasAcs && caps.hasAcs(*acs))
      return {GlyphKind::kAcs, static_cast<char32_t>(*acs)};
  }
  if (caps.canShow && caps.canShow(u)) return {GlyphKind::kUnicode, u};
  return {GlyphKind::kAscii, static_cast<char32_t>(Cp437ToAscii(ch))};
}

}  // namespace ks
