// How a cell (CP437 character + PC attribute byte) is shown on a given terminal: which colours
// and video attributes, and which glyph. Pure rules, so that they can be tested without a
// terminal; the curses backend applies them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace ks {

enum class ColourDepth {
  kMono,      // no colours: plain, bold and reverse video
  kColour8,   // eight colours: a bright foreground is bold, a bright background is lost
  kColour16,  // sixteen colours or more: indices 0-15 for foreground and background
};

struct ColourCaps {
  ColourDepth depth = ColourDepth::kColour16;
  // The Linux console shows blink as a bright background; used with eight colours only.
  bool blinkIsBrightBackground = false;
};

// The terminal attributes of one PC attribute byte.
struct CellStyle {
  int fg = -1;  // ANSI colour index (0-15, 0-7 with eight colours); -1 in monochrome
  int bg = -1;
  bool bold = false;
  bool blink = false;
  bool reverse = false;
  bool operator==(const CellStyle&) const = default;
};

// A PC colour number (blue = bit 0, red = bit 2) as an ANSI colour number (red = bit 0,
// blue = bit 2); the brightness bit 3 stays.
constexpr int PcToAnsi(int pc) {
  return (pc & 0x0A) | ((pc & 1) << 2) | ((pc >> 2) & 1);
}

CellStyle MapAttr(std::uint8_t attr, ColourCaps caps);

// The letter of the VT100 alternate character set that draws CP437 character `ch` (line
// drawing, shades, arrows, a few symbols); double lines become single ones.
std::optional<char> AcsFor(std::uint8_t ch);

enum class GlyphKind { kUnicode, kAcs, kAscii };

struct Glyph {
  GlyphKind kind;
  char32_t ch;  // Unicode character, alternate-set letter or ASCII character
  bool operator==(const Glyph&) const = default;
};

// What the terminal and the locale can show.
struct GlyphCaps {
  bool utf8 = true;
  // True when the locale can write `u` as one narrow character.
  std::function<bool(char32_t)> canShow;
  // True when the terminal's alternate character set has the letter.
  std::function<bool(char)> hasAcs;
};

// UTF-8 locales show every CP437 character as its Unicode form. Other locales show line
// drawing through the alternate character set, other characters as themselves when the
// locale's character set has them, and an ASCII stand-in as the last resort.
Glyph ChooseGlyph(std::uint8_t ch, const GlyphCaps& caps);

}  // namespace ks
