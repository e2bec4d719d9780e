#include "tui/keydecode.h"

#include <gtest/gtest.h>

#define NCURSES_NOMACROS
#include <curses.h>

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

DecodedKey Decode(const KeyDecoder& d, std::vector<KeyEvent> events) {
  return d.Decode(events);
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
  EXPECT_EQ(KeyBytes({K(KEY_F(12))}), (Bytes{0, 134}));
  EXPECT_EQ(KeyBytes({K(KEY_F(60))}), (Bytes{0, 140}));  // Alt-F12
  EXPECT_TRUE(KeyBytes({K(KEY_F(61))}).empty());
}

TEST(KeyDecode, NavigationAndKeypadKeys) {
  const std::pair<int, std::uint8_t> cases[] = {
      {KEY_UP, 72},   {KEY_DOWN, 80},  {KEY_LEFT, 75},  {KEY_RIGHT, 77}, {KEY_HOME, 71},
      {KEY_END, 79},  {KEY_PPAGE, 73}, {KEY_NPAGE, 81}, {KEY_IC, 82},    {KEY_DC, 83},
      {KEY_BTAB, 15}, {KEY_A1, 71},    {KEY_B2, 76},    {KEY_SLEFT, 75}, {KEY_SR, 72},
  };
  for (auto [code, scan] : cases) EXPECT_EQ(KeyBytes({K(code)}), (Bytes{0, scan})) << code;
}

// Characters, control keys and Esc prefixes: the bytes of the key and how many events it took.
TEST(KeyDecode, CharactersControlKeysAndEscapePrefixes) {
  const struct {
    std::vector<KeyEvent> events;
    Bytes bytes;
    int consumed = 1;
  } cases[] = {
      // Enter, Backspace and Tab in their various forms.
      {{K(KEY_ENTER)}, {13}},
      {{C('\n')}, {13}},
      {{K(KEY_BACKSPACE)}, {8}},
      {{C(127)}, {8}},
      {{C('\t')}, {9}},
      // Characters become CP437; one without a CP437 form is dropped.
      {{C('a')}, {'a'}},
      {{C(' ')}, {' '}},
      {{K(KEY_UP)}, {0, 72}},
      {{C(1)}, {1}},  // Ctrl-A
      {{C(U'é')}, {0x82}},
      {{C(U'─')}, {0xC4}},
      {{C(U'€')}, {}},
      {{C(0x85)}, {}},  // C1 control
      {{C(0)}, {}},     // NUL would read as the start of an extended key
      // Symbols CP437 keeps among its control codes must not act as Esc, Enter or Backspace.
      {{C(U'←')}, {}},
      {{C(U'◘')}, {}},
      {{K(KEY_MOUSE)}, {}},
      // Esc and a digit: function keys, 0 being F10; Esc and a letter: Alt+letter.
      {{C(27), C('1')}, {0, 59}, 2},
      {{C(27), C('0'), C('a')}, {0, 68}, 2},
      {{C(27), C('x')}, {0, 45}, 2},
      {{C(27), C('Z')}, {0, 44}, 2},
      {{C(27), C('q'), C('a')}, {0, 16}, 2},
      {{C(27), C('O')}, {0, 24}, 2},  // Esc O with nothing after it is Alt-O
      {{C(27)}, {27}},
      {{C(27), C(27), C('a')}, {27}, 2},
      // Anything else after the Esc is left for the next key.
      {{C(27), C('-')}, {27}},
      {{C(27), C(' ')}, {27}},
      {{C(27), K(KEY_UP)}, {27}},
      {{C(27), K(KEY_RESIZE)}, {27}},
      {{C(27), C('[')}, {27}},
      {{C('1'), C('2')}, {'1'}},
      // Unrecognised sequences are dropped whole: Shift-F1 from a terminal whose description
      // lacks it, the same with an Alt prefix, an SS3 form, and one cut short by a key.
      {{C(27), C('['), C('1'), C(';'), C('2'), C('P'), C('a')}, {}, 6},
      {{C(27), C(27), C('['), C('2'), C('5'), C('~')}, {}, 6},
      {{C(27), C('O'), C('x')}, {}, 3},
      {{C(27), C('['), C('1'), K(KEY_UP)}, {}, 3},
  };
  for (const auto& c : cases) {
    const DecodedKey r = Decode(KeyDecoder{}, c.events);
    SCOPED_TRACE(::testing::PrintToString(c.bytes) + " from " + std::to_string(c.events.size()));
    EXPECT_EQ(r.bytes, c.bytes);
    EXPECT_EQ(r.consumed, c.consumed);
    EXPECT_FALSE(r.resize);
  }
  // Only an Esc asks for the events after it.
  EXPECT_TRUE(KeyDecoder::WantsFollowers(C(27)));
  EXPECT_FALSE(KeyDecoder::WantsFollowers(C('1')));
  EXPECT_FALSE(KeyDecoder::WantsFollowers(K(27)));
}

TEST(KeyDecode, ExtendedKeyCodesAndResize) {
  KeyDecoder d;
  const int ctrlLeft = KEY_MAX + 17;  // codes curses hands out at run time lie above KEY_MAX
  EXPECT_TRUE(Decode(d, {K(ctrlLeft)}).bytes.empty());
  d.AddExtendedKey(ctrlLeft, 115);
  EXPECT_EQ(Decode(d, {K(ctrlLeft)}).bytes, (Bytes{0, 115}));

  const DecodedKey r = Decode(d, {K(KEY_RESIZE)});
  EXPECT_TRUE(r.resize && r.bytes.empty());
  EXPECT_EQ(r.consumed, 1);
}

}  // namespace
}  // namespace ks
