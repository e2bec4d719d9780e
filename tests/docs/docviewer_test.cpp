// The document viewer driven by key scripts: layout, scrolling, find and find again across
// portions of a long file, stopping a search, empty documents, ranges and printing.

#include "docs/docviewer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tempdir.h"
#include "tui/colours.h"
#include "vt_fixture.h"

namespace ks {
namespace {

// "Line 0000 -----" ...: 16 bytes a line, so a portion of 64 KiB holds exactly 4096 lines.
std::string NumberedLines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "Line %04d -----\n", i);
    text += buf;
  }
  return text;
}

constexpr int kFirstTextRow = 6;  // under the header (rows 1-4) and the window's top frame
constexpr int kTextCol = 3;       // frame, then one blank column
constexpr int kTextWidth = 77;
constexpr std::size_t kPageRows = 18;
constexpr std::size_t kLinesPerPortion = DocSource::kPortion / 16;

class ViewerTest : public test::VtTest {
 protected:
  ViewerTest() { screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07); }

  // Runs the viewer until the script is used up. Every key read shows the screen first, so the
  // terminal keeps what was shown at that moment, even where a dialogue has since put back what
  // lay beneath it; the checks below therefore look at the terminal without flushing again.
  void RunInto(DocViewer& viewer, const std::string& keys) {
    vt_.Keys(keys);
    EXPECT_THROW(viewer.Run(), KeysExhausted);
  }
  // Runs the viewer on a script that ends it.
  void RunOut(DocViewer& viewer, const std::string& keys) {
    vt_.Keys(keys);
    viewer.Run();
    EXPECT_EQ(vt_.KeysLeft(), 0u);
  }
  // The text of a window row, without the frame and the blank column inside it.
  std::string TextRow(int row) { return vt_.Row(row).substr(2, kTextWidth); }
  bool Shown(const std::string& text) { return vt_.Contains(text); }

  test::TempDir dir_;
};

TEST_F(ViewerTest, WindowSitsUnderTheHeaderAndEscRestoresTheScreen) {
  const std::string before = Dump();
  DocSource doc(DocSource::InMemory{}, NumberedLines(30));
  DocViewer viewer(doc, "The manual");
  RunInto(viewer, "");
  for (int row = 1; row <= 4; ++row) EXPECT_EQ(vt_.Row(row), std::string(80, '\xB1'));
  EXPECT_NE(vt_.Row(5).find(" The manual "), std::string::npos);
  EXPECT_EQ(TextRow(kFirstTextRow).substr(0, 15), "Line 0000 -----");
  EXPECT_EQ(TextRow(kFirstTextRow + 17).substr(0, 15), "Line 0017 -----");

  int topic = -1;
  ui().show_help = [&](int t) { topic = t; };
  DocViewer again(doc, "The manual");
  screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
  RunOut(again, "<PgDn><F1><Esc>");
  EXPECT_EQ(topic, kViewerHelpTopic);
  EXPECT_TRUE(Dump() == before);
}

// A resize while the viewer waits for a key: the window fills the new screen at once, showing
// more lines, and Esc leaves the desktop of the new size.
TEST_F(ViewerTest, WindowFitsANewSizeAtOnce) {
  DrawDesktop();
  DocSource doc(DocSource::InMemory{}, NumberedLines(40));
  DocViewer viewer(doc, "The manual");
  RunOut(viewer, "<Down><Resize 100x30><Esc>");
  EXPECT_EQ(vt_.At(100, 5).ch, 0xBB);
  EXPECT_EQ(vt_.At(100, 29).ch, 0xBC);
  EXPECT_EQ(TextRow(kFirstTextRow + 22).substr(0, 15), "Line 0023 -----");
  EXPECT_EQ(vt_.Row(30).substr(0, 7), "F-find ");
  Dump();
  for (int y = 5; y < 30; ++y) EXPECT_EQ(vt_.Row(y), std::string(100, '\xB1')) << "row " << y;
}

TEST_F(ViewerTest, ScrollingKeepsTheLastPageFull) {
  const std::string text = NumberedLines(30);  // 12 lines more than a page
  struct Case {
    const char* keys;
    std::size_t top;
  } cases[] = {
      {"<Down><Down><Esc>", 2},
      {"<Up><Esc>", 0},
      {"<PgDn><PgDn><Down><Esc>", 12},
      {"<End><Up><Esc>", 11},
      {"<End><Home><Esc>", 0},
      {"<End><PgUp><Esc>", 0},
      {"<Down><Down><Down><PgUp><Esc>", 0},
  };
  for (const auto& c : cases) {
    DocSource doc(DocSource::InMemory{}, text);
    DocViewer viewer(doc, "t");
    RunOut(viewer, c.keys);
    EXPECT_EQ(viewer.top(), c.top) << c.keys;
  }
  // A document shorter than the window does not move at all.
  DocSource small(DocSource::InMemory{}, "one\ntwo\n");
  DocViewer viewer(small, "t");
  RunOut(viewer, "<PgDn><Down><End><Esc>");
  EXPECT_EQ(viewer.top(), 0u);
}

TEST_F(ViewerTest, LeftAndRightShowTheEndOfEightyCharacterLines) {
  std::string line;
  for (int i = 0; i < 8; ++i) line += "0123456789";
  DocSource doc(DocSource::InMemory{}, line + "\n");
  DocViewer viewer(doc, "t");
  RunInto(viewer, "<Right><Right><Right><Right>");
  EXPECT_EQ(TextRow(kFirstTextRow), line.substr(3));  // no further than the last column
  RunInto(viewer, "<Left>");
  EXPECT_EQ(TextRow(kFirstTextRow), line.substr(2, kTextWidth));
  RunInto(viewer, "<Home>");
  EXPECT_EQ(TextRow(kFirstTextRow), line.substr(0, kTextWidth));
}

TEST_F(ViewerTest, EndReadsTheWholeFileAndShowsItsLastPage) {
  dir_.Write("big.txt", NumberedLines(5000));
  DocSource doc(dir_ / "big.txt");
  DocViewer viewer(doc, "Big");
  RunInto(viewer, "");
  EXPECT_FALSE(doc.complete());  // opening read only what the first page needs
  RunInto(viewer, "<End><PgDn><Down>");
  EXPECT_TRUE(doc.complete());
  EXPECT_EQ(viewer.top(), 5000 - kPageRows);
  EXPECT_EQ(TextRow(kFirstTextRow + 17).substr(0, 9), "Line 4999");
}

TEST_F(ViewerTest, SearchFromTheLastLoadedScreenReadsOnIntoTheRestOfTheFile) {
  dir_.Write("big.txt", NumberedLines(5000));
  DocSource doc(dir_ / "big.txt");
  DocViewer viewer(doc, "Big");

  // Bring the last screen of the first portion up; no further portion is needed for that.
  RunInto(viewer, "Fline 4077<Enter>");
  EXPECT_EQ(viewer.top(), 4077u);
  EXPECT_EQ(doc.loaded(), kLinesPerPortion);
  EXPECT_FALSE(doc.complete());

  // Ctrl-Y clears the previous search text in the prompt.
  RunInto(viewer, "f\x19LINE 4500<Enter>");
  EXPECT_TRUE(doc.complete());
  EXPECT_EQ(viewer.top(), 4500u);
  EXPECT_EQ(vt_.Row(25).substr(0, 6), "F-find");  // the key line is back
}

TEST_F(ViewerTest, EscTypedAheadStopsASearchThatReadsFurther) {
  dir_.Write("big.txt", NumberedLines(5000));
  DocSource doc(dir_ / "big.txt");
  DocViewer viewer(doc, "Big");
  vt_.set_type_ahead(true);
  // Without the stop the search would read the whole file and show "Text not found", which
  // the first Esc would close; the second Esc leaves the viewer either way.
  RunOut(viewer, "<PgDn>Fabsent<Enter><Esc><Esc>");
  EXPECT_FALSE(doc.complete());
  EXPECT_EQ(viewer.top(), kPageRows);
}

class ViewerFindTest : public ViewerTest {
 protected:
  // 100 lines; the word occurs in lines 3, 25, 40 and 80, written differently each time.
  ViewerFindTest() {
    for (int i = 0; i < 100; ++i) {
      const char* word = i == 3    ? " needle"
                         : i == 25 ? " NEEDLE"
                         : i == 40 ? " NeEdLe"
                         : i == 80 ? " Needle"
                                   : "";
      text_ += "row " + std::to_string(i) + word + "\n";
    }
  }
  std::string text_;
};

TEST_F(ViewerFindTest, FindIgnoresCaseAndFindAgainContinuesAfterTheMatch) {
  const auto& c = ui().colours;
  DocSource doc(DocSource::InMemory{}, text_);
  DocViewer viewer(doc, "t");
  RunInto(viewer, "FneeDLE<Enter>");
  EXPECT_EQ(viewer.top(), 0u);  // line 3 is on screen already
  // Colouring the match keeps its characters (reading one column off would copy the
  // character before the match over all of it).
  EXPECT_EQ(TextRow(kFirstTextRow + 3).substr(0, 12), "row 3 needle");
  EXPECT_EQ(vt_.At(kTextCol + 5, kFirstTextRow + 3).attr, c[kHelpText]);  // "row 3 needle"
  EXPECT_EQ(vt_.At(kTextCol + 6, kFirstTextRow + 3).attr, c[kHelpFind]);
  RunInto(viewer, "<F3>");
  EXPECT_EQ(viewer.top(), 25u);
  RunInto(viewer, "<F3>");
  EXPECT_EQ(viewer.top(), 25u);  // line 40 is on screen
  EXPECT_EQ(vt_.At(kTextCol + 7, kFirstTextRow + 15).attr, c[kHelpFind]);
  EXPECT_EQ(vt_.At(kTextCol + 7, kFirstTextRow).attr, c[kHelpText]);  // only the last match
  RunInto(viewer, "<F3>");
  EXPECT_EQ(viewer.top(), 80u);

  // No further match: the box, and the view stays where it was.
  RunInto(viewer, "<F3>");
  EXPECT_TRUE(Shown("Text not found"));
  RunInto(viewer, "<F3><Enter>");
  EXPECT_FALSE(Shown("Text not found"));
  EXPECT_EQ(viewer.top(), 80u);

  // A new search starts at the first line on screen; the prompt offers the last text.
  RunInto(viewer, "<Home><PgDn>F");
  EXPECT_TRUE(Shown("Search for: neeDLE"));  // as typed, case kept
  RunInto(viewer, "F<Enter>");
  EXPECT_EQ(viewer.top(), 18u);  // line 25 is on the second page
}

TEST_F(ViewerFindTest, EscOnThePromptChangesNothing) {
  const auto& c = ui().colours;
  DocSource doc(DocSource::InMemory{}, text_);
  DocViewer viewer(doc, "t");
  RunInto(viewer, "Fneedle<Enter><F3>");
  ASSERT_EQ(viewer.top(), 25u);
  RunInto(viewer, "F\x19row 99<Esc>");
  EXPECT_EQ(viewer.top(), 25u);
  EXPECT_EQ(vt_.At(kTextCol + 7, kFirstTextRow).attr, c[kHelpFind]);  // the match still stands out
  RunInto(viewer, "<F3>");                                            // the old search goes on
  EXPECT_EQ(vt_.At(kTextCol + 7, kFirstTextRow + 15).attr, c[kHelpFind]);

  // With nothing searched yet, F3 asks for the text; Esc there leaves the view alone.
  DocSource doc2(DocSource::InMemory{}, text_);
  DocViewer fresh(doc2, "t");
  RunInto(fresh, "<PgDn><F3>needle<Esc>");
  EXPECT_EQ(fresh.top(), 18u);
  EXPECT_FALSE(Shown("Text not found"));
}

TEST_F(ViewerTest, EmptyOrMissingDocumentOnlyGivesAMessage) {
  const std::string before = Dump();
  dir_.Write("eof.txt", "\x1A");
  for (const std::string& path : {dir_ / "eof.txt", dir_ / "missing.txt"}) {
    vt_.Keys("");
    EXPECT_THROW(ViewDocument(path, "Empty"), KeysExhausted);
    EXPECT_TRUE(Shown("There is nothing to display")) << path;
    EXPECT_FALSE(Shown(" Empty "));  // no viewer window behind it
    screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
  }
  DocSource empty(DocSource::InMemory{}, "");
  DocViewer viewer(empty, "Empty");
  RunOut(viewer, "<Enter>");
  EXPECT_TRUE(Dump() == before);
}

TEST_F(ViewerTest, PrintSendsEveryLineAndShowsTheOutcome) {
  dir_.Write("big.txt", NumberedLines(5000));
  DocSource doc(dir_ / "big.txt");
  DocViewer viewer(doc, "Big");
  std::vector<std::string> printed;
  viewer.set_printer([&](const std::vector<std::string>& lines) {
    printed = lines;
    return std::string{};
  });
  RunInto(viewer, "p");
  ASSERT_EQ(printed.size(), 5000u);
  EXPECT_EQ(printed.back(), "Line 4999 -----");
  EXPECT_TRUE(Shown("The document was sent to the printer"));

  DocSource small(DocSource::InMemory{}, "just one line\n");
  DocViewer failing(small, "t");
  // An error naming a device path is not cut into lines at its slashes.
  failing.set_printer(
      [](const std::vector<std::string>&) { return std::string("Unable to write to /dev/lp0"); });
  RunInto(failing, "P");
  EXPECT_TRUE(Shown("Unable to write to /dev/lp0"));
  RunOut(failing, "P<Enter><Esc>");  // the box closes and the viewer goes on
}

}  // namespace
}  // namespace ks
