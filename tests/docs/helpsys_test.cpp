// The help system: topics shown from the help document through its index, and what the user
// is told when the files or a topic are missing.

#include "docs/helpsys.h"

#include <string>

#include "tempdir.h"
#include "vt_fixture.h"

namespace ks {
namespace {

// Sections are laid out in source order, so topic 5 lies between 42 and 1.
constexpr const char* kSource =
    "@topic 42 Colours\n"
    "Colour body line.\n"
    "@topic 5 Document viewer\n"
    "Viewer body line.\n"
    "@topic 1 Main menu\n"
    "Welcome to the main menu.\n";

class HelpTest : public test::VtTest {
 protected:
  HelpTest() {
    auto topics = ParseHelpSource(kSource);
    EXPECT_TRUE(topics.has_value());
    auto files = BuildHelpDoc(*topics);
    EXPECT_TRUE(files.has_value());
    files_ = *files;
    EXPECT_TRUE(WriteHelpDoc(files_, doc_path(), idx_path()));
  }
  std::string doc_path() const { return dir_ / kHelpDocName; }
  std::string idx_path() const { return dir_ / kHelpIndexName; }

  // Shows `topic` until the key script runs out; the terminal keeps what was shown last.
  void ShowInto(HelpSystem& help, int topic, const std::string& keys = "") {
    vt_.Keys(keys);
    EXPECT_THROW(help.Show(topic), KeysExhausted);
  }

  test::TempDir dir_;
  HelpDocFiles files_;
};

TEST_F(HelpTest, ShowsOnlyTheTopicsSectionWithItsTitleInTheFrame) {
  HelpSystem help;
  ASSERT_TRUE(help.Open(idx_path(), doc_path()));
  EXPECT_EQ(help.TopicTitle(5), "Document viewer");
  EXPECT_EQ(help.TopicTitle(7), "");

  ShowInto(help, 5);
  EXPECT_NE(vt_.Row(5).find(" Document viewer "), std::string::npos);  // the frame's top line
  EXPECT_TRUE(vt_.Contains("Viewer body line."));
  EXPECT_FALSE(vt_.Contains("Colour body line."));
  EXPECT_FALSE(vt_.Contains("Main menu"));

  // Topic 0 is the main topic 1, the last section of the file.
  ShowInto(help, 0, "<End>");
  EXPECT_NE(vt_.Row(5).find(" Main menu "), std::string::npos);
  EXPECT_TRUE(vt_.Contains("Welcome to the main menu."));
  EXPECT_FALSE(vt_.Contains("Viewer body line."));
}

TEST_F(HelpTest, MissingTopicIsReported) {
  HelpSystem help;
  ASSERT_TRUE(help.Open(idx_path(), doc_path()));
  vt_.Keys("");
  EXPECT_THROW(help.Show(70000), KeysExhausted);  // named as asked, not cut to 16 bits
  EXPECT_TRUE(vt_.Contains(std::string("There is no help on topic 70000 in ") + kHelpDocName));
  vt_.Keys("<Enter>");
  help.Show(7);
  EXPECT_EQ(vt_.KeysLeft(), 0u);
}

TEST_F(HelpTest, MissingOrMismatchedFilesLeaveHelpClosed) {
  struct Case {
    const char* what;
    std::string idx, doc;
  };
  dir_.Write("OTHER.DOC", files_.doc + "one more line\n");  // the index no longer fits it
  const Case cases[] = {
      {"no document", idx_path(), dir_ / "NONE.DOC"},
      {"no index", dir_ / "NONE.IDX", doc_path()},
      {"index of another document", idx_path(), dir_ / "OTHER.DOC"},
  };
  for (const auto& c : cases) {
    HelpSystem help;
    EXPECT_FALSE(help.Open(c.idx, c.doc)) << c.what;
    EXPECT_FALSE(help.is_open()) << c.what;
    vt_.Keys("");
    EXPECT_THROW(help.Show(1), KeysExhausted);
    EXPECT_TRUE(vt_.Contains("Help is not available:")) << c.what;
    screen_.FillRect(1, 1, 80, 25, ' ', 0x07);
  }

  // A help system that was open and is reopened on a bad pair is closed.
  HelpSystem help;
  ASSERT_TRUE(help.Open(idx_path(), doc_path()));
  EXPECT_FALSE(help.Open(idx_path(), dir_ / "OTHER.DOC"));
  EXPECT_FALSE(help.is_open());
}

TEST_F(HelpTest, HelpFromWithinHelpStopsAtThreeViewers) {
  HelpSystem help;
  ASSERT_TRUE(help.Open(idx_path(), doc_path()));
  ui().show_help = [&](int topic) { help.Show(topic); };
  // F1 in a viewer asks for the viewer's own topic (5); the fourth viewer is not opened, so
  // three Esc close everything and nothing is left of the script.
  vt_.Keys("<F1><F1><F1><Esc><Esc><Esc>");
  help.Show(1);
  EXPECT_EQ(vt_.KeysLeft(), 0u);
}

}  // namespace
}  // namespace ks
