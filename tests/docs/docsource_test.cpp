// The document source: lines cut from the file portion by portion, tabs, long lines, ranges.

#include "docs/docsource.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tempdir.h"

namespace ks {
namespace {

std::vector<std::string> AllLines(DocSource& doc) {
  doc.LoadAll();
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < doc.loaded(); ++i) lines.push_back(doc.line(i));
  return lines;
}

TEST(DocSource, CutsTextIntoViewerLines) {
  const std::string x80(80, 'x');
  struct Case {
    std::string text;
    std::vector<std::string> lines;
  } cases[] = {
      {"", {}},
      {"\r\n", {""}},
      {"\x1A", {}},
      {"one\r\ntwo\r\n\x1A", {"one", "two"}},
      {"last line without end", {"last line without end"}},
      {"a\n\nb\n", {"a", "", "b"}},
      // Tabs go to the next multiple of 8.
      {"a\tb\n\tc\nabcdefgh\ti\n", {"a       b", "        c", "abcdefgh        i"}},
      // Exactly 80 characters is one line; more continue on the next line.
      {x80 + "\n", {x80}},
      {x80 + x80 + "yz\n", {x80, x80, "yz"}},
      // A tab that reaches the 80th column continues the line.
      {std::string(76, 'a') + "\tb\n", {std::string(76, 'a') + "    ", "b"}},
  };
  for (const auto& c : cases) {
    DocSource doc(DocSource::InMemory{}, c.text);
    EXPECT_TRUE(doc.opened());
    EXPECT_TRUE(doc.complete());
    EXPECT_EQ(AllLines(doc), c.lines) << "text: " << c.text;
  }
}

TEST(DocSource, ReadsLargeFilesPortionByPortion) {
  test::TempDir dir;
  // Lines of 10 bytes: a portion of 64 KiB ends in the middle of line 6553.
  std::string text;
  for (int i = 0; i < 8000; ++i) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%08d\r\n", i);
    text += buf;
  }
  dir.Write("big.txt", text);
  DocSource doc(dir / "big.txt");
  ASSERT_TRUE(doc.Have(0));
  EXPECT_EQ(doc.loaded(), DocSource::kPortion / 10);  // only the first portion so far
  // The line cut by the portion boundary comes out whole.
  ASSERT_TRUE(doc.Have(6553));
  EXPECT_EQ(doc.line(6553), "00006553");
  EXPECT_FALSE(doc.Have(8000));
  EXPECT_TRUE(doc.complete());
  EXPECT_EQ(doc.loaded(), 8000u);
  EXPECT_EQ(doc.line(7999), "00007999");
}

TEST(DocSource, RangeShowsOnlyThatSectionAndMissingFileIsEmpty) {
  test::TempDir dir;
  dir.Write("doc.txt", "AAA\nBBB\nCCC\nDDD\n");
  DocSource middle(dir / "doc.txt", 4, 8);
  EXPECT_EQ(AllLines(middle), (std::vector<std::string>{"BBB", "CCC"}));
  DocSource tail(dir / "doc.txt", 12);
  EXPECT_EQ(AllLines(tail), (std::vector<std::string>{"DDD"}));
  DocSource cut(dir / "doc.txt", 0, 6);  // a range ending inside a line keeps the part
  EXPECT_EQ(AllLines(cut), (std::vector<std::string>{"AAA", "BB"}));
  DocSource past(dir / "doc.txt", 100, 5);
  EXPECT_FALSE(past.Have(0));

  DocSource missing(dir / "none.txt");
  EXPECT_FALSE(missing.opened());
  EXPECT_TRUE(missing.complete());
  EXPECT_FALSE(missing.Have(0));
}

}  // namespace
}  // namespace ks
