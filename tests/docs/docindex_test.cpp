// The help document: parsing its source, the layout of KESTRA.DOC and KS_DOC.IDX, and reading
// the index back.

#include "docs/docindex.h"

#include <gtest/gtest.h>

#include <string>

#include "tempdir.h"

namespace ks {
namespace {

std::vector<HelpTopic> ParseOk(std::string_view src) {
  HelpSourceError error;
  auto topics = ParseHelpSource(src, &error);
  EXPECT_TRUE(topics.has_value()) << error.line << ": " << error.message;
  return topics.value_or(std::vector<HelpTopic>{});
}

HelpDocFiles BuildOk(std::string_view src) {
  auto files = BuildHelpDoc(ParseOk(src));
  EXPECT_TRUE(files.has_value());
  return files.value_or(HelpDocFiles{});
}

// --- Parsing the source ---------------------------------------------------------------------

TEST(HelpDocParse, TopicsCommentsAndBlankLines) {
  const auto topics = ParseOk(
      "# a comment before anything\n"
      "\n"
      "@topic 20 Second   \n"
      "\n"
      "Body one.  \n"
      "# a comment inside a body is not text\n"
      "  indented ~F1~ stays as written\n"
      "\n"
      "\n"
      "@topic 3 First\r\n"
      "crlf line\r\n"
      "@topic 7   Spaced   title\n");
  ASSERT_EQ(topics.size(), 3u);
  EXPECT_EQ(topics[0].number, 20);
  EXPECT_EQ(topics[0].title, "Second");
  EXPECT_EQ(topics[0].sourceLine, 3);
  // Leading and trailing blank lines go, inner text and indentation stay, trailing blanks go.
  EXPECT_EQ(topics[0].body,
            (std::vector<std::string>{"Body one.", "  indented ~F1~ stays as written"}));
  EXPECT_EQ(topics[1].number, 3);
  EXPECT_EQ(topics[1].title, "First");
  EXPECT_EQ(topics[1].body, std::vector<std::string>{"crlf line"});
  EXPECT_EQ(topics[2].title, "Spaced   title");
  EXPECT_TRUE(topics[2].body.empty());
}

TEST(HelpDocParse, ConvertsToCodePage437AndCountsCharactersNotBytes) {
  // 76 box-drawing characters are 228 UTF-8 bytes but 76 columns: accepted.
  std::string wide;
  for (int k = 0; k < 76; ++k) wide += "─";
  const auto topics = ParseOk("\xEF\xBB\xBF@topic 1 Menü ├─\n" + wide + "\n");
  ASSERT_EQ(topics.size(), 1u);
  EXPECT_EQ(topics[0].title, "Men\x81 \xC3\xC4");
  ASSERT_EQ(topics[0].body.size(), 1u);
  EXPECT_EQ(topics[0].body[0], std::string(76, '\xC4'));
}

TEST(HelpDocParse, FaultsNameTheSourceLine) {
  const std::string ok76(76, 'x');
  struct Case {
    std::string source;
    int line;
    std::string words;  // part of the message
  } cases[] = {
      {"@topic 1 A\n\n@topic 2 B\n@topic 1 C\n", 4, "duplicate topic 1 (first on line 1)"},
      {"@topic 12a Title\n", 1, "bad topic number \"12a\""},
      {"@topic 1 A\n@topic 0 Zero\n", 2, "out of range"},
      {"@topic 99999999999999999999 Huge\n", 1, "out of range"},
      {"@topic\n", 1, "without a topic number"},
      {"@topic 5\n", 1, "topic 5 has no title"},
      {"@topic 1 A\n" + ok76 + "\n" + ok76 + "y\n", 3, "77 characters wide (at most 76)"},
      {"@topic 1 " + ok76 + "z\n", 1, "title is 77 characters"},
      {"@topic 1 A\nprice: 5 €\n", 2, "U+20AC"},
      {"@topic 1 A\nok\nbullet ◙ here\n", 3, "control code"},  // would be a line feed
      {"@topic 1 A\na\tb\n", 2, "tab"},
      {"@topic 1 A\nbell \x07\n", 2, "control character"},
      {"@topic 1 A\nbad \xC3\x28 utf8\n", 2, "malformed UTF-8"},
      {"@topic 1 A\ncut \xE2\x94", 2, "malformed UTF-8"},
      {"# comment\n\nstray text\n@topic 1 A\n", 3, "before the first @topic"},
      {"@topic 1 A\n@topc 2 B\n", 2, "unknown directive \"@topc\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    HelpSourceError error;
    EXPECT_FALSE(ParseHelpSource(c.source, &error).has_value());
    EXPECT_EQ(error.line, c.line);
    EXPECT_NE(error.message.find(c.words), std::string::npos) << error.message;
  }

  HelpSourceError error;
  EXPECT_FALSE(ParseHelpSource("# only comments\n\n", &error).has_value());
  EXPECT_EQ(error.line, 0);
  EXPECT_NE(error.message.find("no @topic"), std::string::npos);
}

// --- Building the two files -----------------------------------------------------------------

TEST(HelpDocBuild, DocumentLayoutAndItsIndexInTopicOrder) {
  const HelpDocFiles files = BuildOk(
      "@topic 20 Zwanzig\n"
      "one\n"
      "\n"
      "two\n"
      "\n"
      "@topic 3 Drei\n"
      "@topic 9 Neun ~\n"
      "x\n");
  EXPECT_EQ(files.doc, "Zwanzig\n" + std::string(7, '\xC4') + "\n\none\n\ntwo\n\n" + "Drei\n" +
                           std::string(4, '\xC4') + "\n\n\n" + "Neun ~\n" + std::string(6, '\xC4') +
                           "\n\nx\n\n");
  const std::string& idx = files.index;
  ASSERT_EQ(idx.size(), 16u + 3 * 12);
  EXPECT_EQ(idx.substr(0, 8), "KSDOCIDX");
  EXPECT_EQ(idx.substr(8, 4), std::string("\x01\x00\x03\x00", 4));  // version 1, 3 entries
  const std::uint32_t size = files.doc.size();
  EXPECT_EQ(idx.substr(12, 4), std::string({char(size & 0xFF), char(size >> 8), 0, 0}));

  auto index = ParseDocIndex(idx, files.doc.size());
  ASSERT_TRUE(index.has_value());
  EXPECT_EQ(index->docSize, files.doc.size());
  // Entries in topic order; sections in source order, covering the document without gaps.
  ASSERT_EQ(index->entries.size(), 3u);
  EXPECT_EQ(index->entries[0].topic, 3);
  EXPECT_EQ(index->entries[2].topic, 20);
  EXPECT_EQ(index->Find(20)->offset, 0u);
  EXPECT_EQ(index->Find(3)->offset, index->Find(20)->length);
  EXPECT_EQ(index->Find(9)->offset + index->Find(9)->length, files.doc.size());
  EXPECT_EQ(index->Find(20)->lines, 4 + 3);  // title, rule, empty, 3 body lines, empty
  EXPECT_EQ(index->Find(3)->lines, 4);
}

// A section's line count must fit the index entry.
TEST(HelpDocBuild, RefusesATopicTooLongToIndex) {
  HelpSourceError error;
  std::vector<HelpTopic> topics = {{1, "Long", std::vector<std::string>(65532, "x"), 9}};
  EXPECT_FALSE(BuildHelpDoc(topics, &error).has_value());
  EXPECT_EQ(error.line, 9);
  topics[0].body.pop_back();  // 65531 body lines + 4 = 65535: just fits
  auto files = BuildHelpDoc(topics, &error);
  ASSERT_TRUE(files.has_value());
  EXPECT_EQ(ParseDocIndex(files->index, files->doc.size())->Find(1)->lines, 65535);
}

// --- Reading the index back -----------------------------------------------------------------

class DocIndexFiles : public ::testing::Test {
 protected:
  std::string Path(const char* name) const { return dir_ / name; }

  // Rewrites the entry at `n` (0-based) of the index.
  void PutEntry(std::string& idx, int n, std::uint16_t topic, std::uint32_t offset,
                std::uint32_t length) {
    const std::size_t at = kDocIndexHeaderSize + n * kDocIndexEntrySize;
    idx[at] = char(topic & 0xFF), idx[at + 1] = char(topic >> 8);
    for (int k = 0; k < 4; ++k) {
      idx[at + 4 + k] = char((offset >> (8 * k)) & 0xFF);
      idx[at + 8 + k] = char((length >> (8 * k)) & 0xFF);
    }
  }

  test::TempDir dir_;
  HelpDocFiles files_ = BuildOk("@topic 2 Two\nb\n@topic 40 Forty\nd\nd\n@topic 10 Ten\nc\n");
};

TEST_F(DocIndexFiles, AbsentTopicsAndAFailedWrite) {
  // Writing, reading and showing a topic are the help test's; here the topics around the
  // ones present, and a write that fails.
  std::string why;
  ASSERT_TRUE(WriteHelpDoc(files_, Path("KESTRA.DOC"), Path("KS_DOC.IDX"), &why)) << why;
  const auto index = ReadDocIndex(Path("KS_DOC.IDX"), files_.doc.size());
  ASSERT_TRUE(index.has_value());
  for (std::uint16_t absent : {0, 1, 11, 39, 41, 65535}) {
    EXPECT_FALSE(index->Find(absent).has_value()) << absent;
  }
  EXPECT_FALSE(WriteHelpDoc(files_, Path("no/such/dir/KESTRA.DOC"), Path("KS_DOC.IDX"), &why));
  EXPECT_NE(why.find("no/such/dir/KESTRA.DOC"), std::string::npos);
}

TEST_F(DocIndexFiles, RefusesDamagedIndexes) {
  const std::string good = files_.index;
  const std::uint64_t size = files_.doc.size();
  ASSERT_TRUE(ParseDocIndex(good, size).has_value());
  // Entries as built: 2 at 0, 10 after 40 (source order 2, 40, 10).
  const DocIndexEntry e2 = *ParseDocIndex(good, size)->Find(2);
  const DocIndexEntry e40 = *ParseDocIndex(good, size)->Find(40);

  auto damaged = [&](auto change) {
    std::string idx = good;
    change(idx);
    return idx;
  };
  const std::pair<const char*, std::string> cases[] = {
      {"header only, cut", good.substr(0, 15)},
      {"wrong magic", damaged([](std::string& s) { s[0] = 'X'; })},
      {"wrong version", damaged([](std::string& s) { s[8] = 2; })},
      {"truncated", good.substr(0, good.size() - 1)},
      {"extra byte", good + '\0'},
      {"count too high", damaged([](std::string& s) { s[10] = 4; })},
      {"other document size", damaged([](std::string& s) { s[12] ^= 1; })},
      {"unsorted", damaged([&](std::string& s) {
         PutEntry(s, 0, 40, e40.offset, e40.length);
         PutEntry(s, 2, 2, e2.offset, e2.length);
       })},
      {"duplicate topic", damaged([&](std::string& s) { PutEntry(s, 1, 2, e2.offset, 5); })},
      {"topic 0", damaged([&](std::string& s) { PutEntry(s, 0, 0, e2.offset, e2.length); })},
      {"empty section", damaged([&](std::string& s) { PutEntry(s, 0, 2, e2.offset, 0); })},
      {"past the end", damaged([&](std::string& s) {
         PutEntry(s, 2, 40, e40.offset, static_cast<std::uint32_t>(size - e40.offset + 1));
       })},
      {"offset wraps", damaged([&](std::string& s) { PutEntry(s, 2, 40, 0xFFFFFFFFu, 2); })},
  };
  for (const auto& [what, idx] : cases) {
    EXPECT_FALSE(ParseDocIndex(idx, size).has_value()) << what;
  }
  // A section ending exactly at the end of the document is fine; a shorter document is not.
  EXPECT_TRUE(ParseDocIndex(damaged([&](std::string& s) {
                              PutEntry(s, 2, 40, e40.offset,
                                       static_cast<std::uint32_t>(size - e40.offset));
                            }),
                            size)
                  .has_value());
  EXPECT_FALSE(ParseDocIndex(good, size - 1).has_value());
}

}  // namespace
}  // namespace ks
