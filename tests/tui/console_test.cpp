#include "tui/console.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace ks {
namespace {

constexpr ConsoleOptions kAnsiUtf8{true, true};
constexpr ConsoleOptions kPlainAscii{false, false};

TEST(Console, SgrUsesSixteenColourCodes) {
  EXPECT_EQ(SgrForAttr(0x07), "\x1b[0m");
  EXPECT_EQ(SgrForAttr(0x04), "\x1b[31;40m");   // PC red is ANSI 1
  EXPECT_EQ(SgrForAttr(0x9F), "\x1b[97;104m");  // bright background
}

TEST(Console, WritesAttributesOnlyWhenTheyChange) {
  std::ostringstream out;
  Console c(out, kAnsiUtf8);
  c.Write("a");  // attribute 7 is what the terminal already shows
  c.SetAttr(0x0E);
  c.Write("b");
  c.Write("c");
  c.SetAttr(0x0B);
  c.SetAttr(0x0E);  // changed back before anything was written
  c.Write("d");
  c.SetAttr(0x07);
  c.Write("e");
  EXPECT_EQ(out.str(), "a\x1b[93;40mbcd\x1b[0me");
}

TEST(Console, LinesEndInTheTerminalsOwnColours) {
  std::ostringstream out;
  Console c(out, kAnsiUtf8);
  c.SetAttr(0x0E);
  c.WriteLine("banner");
  c.WriteLine("again");
  c.SetAttr(0x07);
  c.WriteLine();
  c.Write("x\ny");
  EXPECT_EQ(out.str(),
            "\x1b[93;40mbanner\x1b[0m\n"
            "\x1b[93;40magain\x1b[0m\n"
            "\n"
            "x\ny");
}

TEST(Console, ConvertsCp437ToUtf8OrAscii) {
  const std::string text = "Setup \xF9 \xC9\xCD\xBB caf\x82";
  std::ostringstream utf8, ascii;
  Console(utf8, kAnsiUtf8).Write(text);
  Console(ascii, kPlainAscii).Write(text);
  EXPECT_EQ(utf8.str(), "Setup ∙ ╔═╗ café");
  EXPECT_EQ(ascii.str(), "Setup . +=+ cafe");
}

TEST(Console, EncodeRowForTheKeptHeader) {
  std::vector<Cell> row = {{'K', 0x71}, {'S', 0x71}, {' ', 0x70}, {0xB3, 0x07},
                           {'x', 0x07}, {' ', 0x07}, {' ', 0x07}};
  EXPECT_EQ(EncodeRow(row, kAnsiUtf8), "\x1b[34;47mKS\x1b[30;47m \x1b[0m│x");
  EXPECT_EQ(EncodeRow(row, kPlainAscii), "KS |x");
  // A coloured row keeps its trailing blanks and ends reset.
  std::vector<Cell> bar(3, Cell{' ', 0x70});
  EXPECT_EQ(EncodeRow(bar, kAnsiUtf8), "\x1b[30;47m   \x1b[0m");
  EXPECT_EQ(EncodeRow(std::vector<Cell>(5), kAnsiUtf8), "");
}

TEST(Console, OptionsFromTheEnvironment) {
  EXPECT_TRUE(ConsoleOptionsFor(true, "", "xterm", "UTF-8").ansi);  // empty NO_COLOR
  EXPECT_FALSE(ConsoleOptionsFor(true, "1", "xterm", "UTF-8").ansi);
  EXPECT_FALSE(ConsoleOptionsFor(false, nullptr, "xterm", "UTF-8").ansi);
  EXPECT_FALSE(ConsoleOptionsFor(true, nullptr, "dumb", "UTF-8").ansi);
  EXPECT_TRUE(ConsoleOptionsFor(false, nullptr, nullptr, "utf8").utf8);
  EXPECT_FALSE(ConsoleOptionsFor(false, nullptr, nullptr, "ISO-8859-1").utf8);
}

}  // namespace
}  // namespace ks
