// Reading the BBS file area list: comments, line ends, bad lines, repeated numbers and order.

#include "dbase/bbsfileareas.h"

#include <gtest/gtest.h>

#include "tempdir.h"

namespace ks {
namespace {

struct Area {
  int number;
  std::string path, name;
  bool operator==(const Area&) const = default;
};

std::vector<Area> Load(const std::string& text) {
  test::TempDir dir;
  dir.Write("FILEAREA.LST", text);
  std::string name = dir.path();
  name.pop_back();  // the directory without its trailing "/" works as well
  std::vector<Area> areas;
  for (const auto& a : LoadBbsFileAreas(name)) areas.push_back({a.number, a.path, a.name});
  return areas;
}

TEST(BbsFileAreas, FieldsAndComments) {
  EXPECT_EQ(Load("; compiled list\n"
                 "\n"
                 "1 /files/util Utilities and tools\n"
                 "  ; indented comment\n"
                 "2\t/files/nodes\t Nodelists  \n"
                 "   \t\n"
                 "3 /files/empty\n"
                 "4   /files/four    \n"),
            (std::vector<Area>{{1, "/files/util", "Utilities and tools"},
                               {2, "/files/nodes", "Nodelists"},
                               {3, "/files/empty", ""},
                               {4, "/files/four", ""}}));
}

TEST(BbsFileAreas, LineEnds) {
  EXPECT_EQ(Load("1 /a One\r\n2 /b Two\r\n3 /c\r\n"),
            (std::vector<Area>{{1, "/a", "One"}, {2, "/b", "Two"}, {3, "/c", ""}}));
  EXPECT_EQ(Load("1 /a One\n2 /b Two"),  // no end to the last line
            (std::vector<Area>{{1, "/a", "One"}, {2, "/b", "Two"}}));
}

TEST(BbsFileAreas, MalformedLinesAreSkipped) {
  EXPECT_EQ(Load("x1 /a Letters\n"
                 "-1 /a Negative\n"
                 "64000 /a Too high\n"
                 "999999 /a Far too high\n"
                 "7\n"
                 "8a /a Trailing letter\n"
                 "/a No number\n"
                 "0 /zero Zero\n"
                 "63999 /top Last\n"),
            (std::vector<Area>{{0, "/zero", "Zero"}, {63999, "/top", "Last"}}));
}

TEST(BbsFileAreas, SortedFirstOfRepeatedNumbersWins) {
  EXPECT_EQ(Load("30 /c Thirty\n"
                 "10 /a Ten\n"
                 "20 /b Twenty\n"
                 "10 /x Another ten\n"
                 "30 /y Another thirty\n"
                 "010 /z Ten again\n"),
            (std::vector<Area>{{10, "/a", "Ten"}, {20, "/b", "Twenty"}, {30, "/c", "Thirty"}}));
}

TEST(BbsFileAreas, MissingOrEmptyFile) {
  test::TempDir dir;
  EXPECT_TRUE(LoadBbsFileAreas(dir.path()).empty());
  EXPECT_TRUE(LoadBbsFileAreas(dir / "nowhere").empty());
  EXPECT_TRUE(Load("").empty());
  EXPECT_TRUE(Load("; nothing but comments\r\n\r\n").empty());
}

}  // namespace
}  // namespace ks
