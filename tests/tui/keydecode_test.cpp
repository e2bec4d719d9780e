#include "tui/keydecode.h"

#include <gtest/gtest.h>

#define NCURSES_NOMACROS
#include <curses.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace ks {
namespace {

using Bytes = std::vector<std::uint8_t>;

KeyEvent C(std::int32_t c) {
  return KeyEvent::Char(c);
}
KeyEvent K(std::int32_t k) {
  return KeyEvent::Code(k);
}

DecodedKey Decode(const KeyDecoder& d, std::initializer_list<KeyEvent> events) {
  std::vector<KeyEvent> v(events);
  return d.Decode(v);
}

Bytes KeyBytes(std::initializer_list<KeyEvent> events) {
  return Decode(KeyDecoder{}, events).bytes;
}

TEST(KeyDecode, FunctionKeysInAllFourShiftStates) {
  for (int i = 0; i < 10; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(KeyBytes({K(KEY_F(1 + i))}), (Bytes{0, std::uint8_t(59 + i)}));
    EXPECT_EQ(KeyBytes({K(KEY_F(13 + i))}), (Bytes{0, std::uint8_t(84 + i)}));   // Shift
    EXPECT_EQ(KeyBytes({K(KEY_F(25 + i))}), (Bytes{0, std::uint8_t(94 + i)}));   // Ctrl
    EXPECT_EQ(KeyBytes({K(KEY_F(49 + i))}), (Bytes{0, std::uint8_t(104 + i)}));  // Alt
    EXPECT_TRUE(KeyBytes({K(KEY_F(37 + i))}).empty());                           // Ctrl+Shift
  }
  EXPECT_EQ(KeyBytes({K(KEY_F(11))}), (Bytes{0, 133}));
  EXPECT_EQ(KeyBytes({K(KEY_F(12))}), (Bytes{0, 134}));
  EXPECT_EQ(KeyBytes({K(KEY_F(23))}), (Bytes{0, 135}));  // Shift-F11
  EXPECT_EQ(KeyBytes({K(KEY_F(60))}), (Bytes{0, 140}));  // Alt-F12
  EXPECT_TRUE(KeyBytes({K(KEY_F(61))}).empty());
}

TEST(KeyDecode, NavigationAndKeypadKeys) {
  const std::pair<int, std::uint8_t> cases[] = {
      {KEY_UP, 72},   {KEY_DOWN, 80},  {KEY_LEFT, 75},   {KEY_RIGHT, 77}, {KEY_HOME, 71},
      {KEY_END, 79},  {KEY_PPAGE, 73}, {KEY_NPAGE, 81},  {KEY_IC, 82},    {KEY_DC, 83},
      {KEY_BTAB, 15}, {KEY_A1, 71},    {KEY_A3, 73},     {KEY_B2, 76},    {KEY_C1, 79},
      {KEY_C3, 81},   {KEY_SLEFT, 75}, {KEY_SRIGHT, 77}, {KEY_SR, 72},    {KEY_SF, 80},
  };
  for (auto [code, scan] : cases) EXPECT_EQ(KeyBytes({K(code)}), (Bytes{0, scan})) << code;
}

TEST(KeyDecode, EnterAndBackspaceInTheirVariousForms) {
  EXPECT_EQ(KeyBytes({K(KEY_ENTER)}), Bytes{13});
  EXPECT_EQ(KeyBytes({C('\r')}), Bytes{13});
  EXPECT_EQ(KeyBytes({C('\n')}), Bytes{13});
  EXPECT_EQ(KeyBytes({K(KEY_BACKSPACE)}), Bytes{8});
  EXPECT_EQ(KeyBytes({C(127)}), Bytes{8});
  EXPECT_EQ(KeyBytes({C(8)}), Bytes{8});
  EXPECT_EQ(KeyBytes({C('\t')}), Bytes{9});
}

TEST(KeyDecode, ExtendedKeyCodesComeFromTheBackend) {
  KeyDecoder d;
  const int ctrlLeft = KEY_MAX + 17;  // codes curses hands out at run time lie above KEY_MAX
  EXPECT_TRUE(Decode(d, {K(ctrlLeft)}).bytes.empty());
  d.AddExtendedKey(ctrlLeft, 115);
  EXPECT_EQ(Decode(d, {K(ctrlLeft)}).bytes, (Bytes{0, 115}));

  // The names cover the six Ctrl keys the program knows.
  std::vector<std::uint8_t> scans;
  for (const auto& k : KeyDecoder::ExtendedKeyNames()) scans.push_back(k.scan);
  for (std::uint8_t want : {115, 116, 117, 118, 119, 132})
    EXPECT_NE(std::find(scans.begin(), scans.end(), want), scans.end()) << int(want);
}

TEST(KeyDecode, UnknownKeyCodesAndResize) {
  EXPECT_TRUE(KeyBytes({K(KEY_MOUSE)}).empty());
  const DecodedKey r = Decode(KeyDecoder{}, {K(KEY_RESIZE)});
  EXPECT_TRUE(r.resize);
  EXPECT_TRUE(r.bytes.empty());
  EXPECT_EQ(r.consumed, 1);
  EXPECT_FALSE(Decode(KeyDecoder{}, {K(KEY_UP)}).resize);
}

TEST(KeyDecode, CharactersBecomeCp437) {
  EXPECT_EQ(KeyBytes({C('a')}), Bytes{'a'});
  EXPECT_EQ(KeyBytes({C(' ')}), Bytes{32});
  EXPECT_EQ(KeyBytes({C(1)}), Bytes{1});  // Ctrl-A
  EXPECT_EQ(KeyBytes({C(U'é')}), Bytes{0x82});
  EXPECT_EQ(KeyBytes({C(U'Ü')}), Bytes{0x9A});
  EXPECT_EQ(KeyBytes({C(U'½')}), Bytes{0xAB});
  EXPECT_EQ(KeyBytes({C(U'─')}), Bytes{0xC4});
  // No CP437 form: dropped.
  EXPECT_TRUE(KeyBytes({C(U'€')}).empty());
  EXPECT_TRUE(KeyBytes({C(0x4E2D)}).empty());
  EXPECT_TRUE(KeyBytes({C(0x85)}).empty());  // C1 control
  // NUL would read as the start of an extended key.
  EXPECT_TRUE(KeyBytes({C(0)}).empty());
  // Symbols CP437 keeps among its control codes must not act as Esc, Enter or Backspace.
  EXPECT_TRUE(KeyBytes({C(U'←')}).empty());
  EXPECT_TRUE(KeyBytes({C(U'♪')}).empty());
  EXPECT_TRUE(KeyBytes({C(U'◘')}).empty());
}

TEST(KeyDecode, EscapePrefixes) {
  // Esc and a digit: function keys, 0 being F10.
  EXPECT_EQ(KeyBytes({C(27), C('1')}), (Bytes{0, 59}));
  EXPECT_EQ(KeyBytes({C(27), C('9')}), (Bytes{0, 67}));
  EXPECT_EQ(KeyBytes({C(27), C('0')}), (Bytes{0, 68}));
  // Esc and a letter: Alt+letter, either case.
  EXPECT_EQ(KeyBytes({C(27), C('x')}), (Bytes{0, 45}));
  EXPECT_EQ(KeyBytes({C(27), C('Z')}), (Bytes{0, 44}));
  EXPECT_EQ(KeyBytes({C(27), C('q')}), (Bytes{0, 16}));
  // Esc alone, Esc Esc.
  EXPECT_EQ(KeyBytes({C(27)}), Bytes{27});
  EXPECT_EQ(KeyBytes({C(27), C(27)}), Bytes{27});
}

TEST(KeyDecode, EscapeReportsWhatItConsumed) {
  const KeyDecoder d;
  EXPECT_EQ(Decode(d, {C(27)}).consumed, 1);
  EXPECT_EQ(Decode(d, {C(27), C('5'), C('a')}).consumed, 2);
  EXPECT_EQ(Decode(d, {C(27), C('k'), C('a')}).consumed, 2);
  EXPECT_EQ(Decode(d, {C(27), C(27), C('a')}).consumed, 2);

  // Anything else after the Esc is left for the next key.
  for (KeyEvent next : {C('-'), C(U'é'), C(' '), K(KEY_UP), K(KEY_RESIZE), C('[')}) {
    const DecodedKey r = Decode(d, {C(27), next});
    EXPECT_EQ(r.bytes, Bytes{27}) << next.value;
    EXPECT_EQ(r.consumed, 1) << next.value;
    EXPECT_FALSE(r.resize);
  }
  // Only an Esc asks for the events after it; other keys use one event.
  EXPECT_TRUE(KeyDecoder::WantsFollowers(C(27)));
  EXPECT_FALSE(KeyDecoder::WantsFollowers(C('1')));
  EXPECT_FALSE(KeyDecoder::WantsFollowers(K(27)));
  EXPECT_EQ(Decode(d, {C('1'), C('2')}).consumed, 1);
}

TEST(KeyDecode, UnrecognisedSequencesAreDroppedWhole) {
  const KeyDecoder d;
  // Shift-F1 from a terminal whose description lacks it: Esc [ 1 ; 2 P.
  DecodedKey r = Decode(d, {C(27), C('['), C('1'), C(';'), C('2'), C('P'), C('a')});
  EXPECT_TRUE(r.bytes.empty());
  EXPECT_EQ(r.consumed, 6);
  // With an Alt prefix in front.
  r = Decode(d, {C(27), C(27), C('['), C('2'), C('5'), C('~')});
  EXPECT_TRUE(r.bytes.empty());
  EXPECT_EQ(r.consumed, 6);
  // SS3 form.
  r = Decode(d, {C(27), C('O'), C('x')});
  EXPECT_TRUE(r.bytes.empty());
  EXPECT_EQ(r.consumed, 3);
  // Esc O with nothing after it is Alt-O.
  EXPECT_EQ(Decode(d, {C(27), C('O')}).bytes, (Bytes{0, 24}));
  // A sequence cut short stops at the first event that cannot belong to it.
  r = Decode(d, {C(27), C('['), C('1'), K(KEY_UP)});
  EXPECT_TRUE(r.bytes.empty());
  EXPECT_EQ(r.consumed, 3);
}

}  // namespace
}  // namespace ks
