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

TEST(BbsFileAreas, FieldsCommentsLineEndsBadLinesAndOrder) {
  const struct {
    const char* text;
    std::vector<Area> areas;
  } cases[] = {
      {"; compiled list\n\n1 /files/util Utilities and tools\n  ; indented comment\n"
       "2\t/files/nodes\t Nodelists  \n   \t\n3 /files/empty\n4   /files/four    \n",
       {{1, "/files/util", "Utilities and tools"},
        {2, "/files/nodes", "Nodelists"},
        {3, "/files/empty", ""},
        {4, "/files/four", ""}}},
      {"1 /a One\r\n2 /b Two\r\n3 /c\r\n", {{1, "/a", "One"}, {2, "/b", "Two"}, {3, "/c", ""}}},
      {"1 /a One\n2 /b Two", {{1, "/a", "One"}, {2, "/b", "Two"}}},  // no end to the last line
      // Malformed lines are skipped.
      {"x1 /a Letters\n-1 /a Negative\n64000 /a Too high\n999999 /a Far too high\n7\n"
       "8a /a Trailing letter\n/a No number\n0 /zero Zero\n63999 /top Last\n",
       {{0, "/zero", "Zero"}, {63999, "/top", "Last"}}},
      // Sorted; the first of repeated numbers wins.
      {"30 /c Thirty\n10 /a Ten\n20 /b Twenty\n10 /x Another ten\n30 /y Another thirty\n"
       "010 /z Ten again\n",
       {{10, "/a", "Ten"}, {20, "/b", "Twenty"}, {30, "/c", "Thirty"}}},
      {"", {}},
      {"; nothing but comments\r\n\r\n", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(Load(c.text), c.areas) << c.text;
}

TEST(BbsFileAreas, MissingFile) {
  test::TempDir dir;
  EXPECT_TRUE(LoadBbsFileAreas(dir.path()).empty());
  EXPECT_TRUE(LoadBbsFileAreas(dir / "nowhere").empty());
}

}  // namespace
}  // namespace ks
