// The internal editor and the external one, driven by key scripts: the bytes each editing
// scenario leaves on disk, what the screen shows on the way, a save that fails, and the
// fall-back from an external editor that did not run.

#include "docs/text_editor.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "common/fileutil.h"
#include "docs/external_editor.h"
#include "tempdir.h"
#include "vt_fixture.h"

namespace ks {
namespace {

const std::vector<PickEntry> kPicks = {
    {"@just()", "@just()        <fun>  Justify", 6},
    {"@fileecho", "@fileecho      1,2    Fileecho tag", 0},
};

class EditorTest : public test::VtTest {
 protected:
  EditorTest() {
    // F1 takes a picture of the screen, so a script can look at a box in passing.
    ui().show_help = [this](int topic) {
      EXPECT_EQ(topic, kEditorHelpTopic);
      shots_ += Dump();
      if (on_help_) on_help_();
    };
  }
  std::string Read(const std::string& name) { return ReadWholeFile(dir_ / name).value_or("-"); }

  test::TempDir dir_;
  std::string shots_;
  std::function<void()> on_help_;
};

// Each script ends the editor; the file must then hold exactly `after` ("-" = no file).
TEST_F(EditorTest, ScriptsLeaveTheseBytesOnDisk) {
  struct Case {
    std::optional<std::string> before;  // none: the file does not exist
    const char* keys;
    std::string after;
    bool saved;
  } cases[] = {
      {std::nullopt, "abc<F10>", "abc\n", true},
      {std::nullopt, "abc<F9>", "-", false},
      {std::nullopt, "<Esc>", "-", false},
      {std::nullopt, "<F10>", "", true},
      {"one\n", "xyz<F9>", "one\n", false},
      {"one\n", "X<Esc><Enter>", "Xone\n", true},       // Save changes? Yes
      {"one\n", "X<Esc>n", "one\n", false},             // ... No
      {"one\n", "X<Esc><Esc>Y<F10>", "XYone\n", true},  // Esc on the question: back to the text
      {"a\r\nb\r\n", "<Down>X<Enter>Y<F10>", "a\r\nX\r\nYb\r\n", true},
      {"a\nb", "<Down><End>!<F10>", "a\nb!", true},  // no line end at the end: none added
      {"abcd\n", "<Right><Right><Enter><F10>", "ab\ncd\n", true},
      {"ab\ncd\n", "<Down><BS><F10>", "abcd\n", true},
      {"ab\ncd\n", "<End><Right><Right><Del><F10>", "ab  cd\n", true},
      {"ab\ncd\n", "<Right><BS><BS><F10>", "b\ncd\n", true},
      {"1\n2\n3\n", "<Down><C-Y><F10>", "1\n3\n", true},
      {"1\n", "<C-Y>x<F10>", "x\n", true},
      {"abc\n", "<Ins>XY<Ins>Z<F10>", "XYZc\n", true},
      {"ab\n", "<End><Right><Right>c<F10>", "ab  c\n", true},
      {"ab\n", "<Tab>x<End><Tab>y<F10>", "        xab     y\n", true},
      {"1\n2\n3\n", "<C-End>!<C-Home>^<PgDn><PgUp>-<F10>", "^-1\n2\n3!\n", true},
      // Draw mode: Alt-D runs through the five sets and back to off; F1..F10 type their
      // characters (the crossings have four), the same key types again once it is off.
      {std::nullopt,
       "<Alt-D><F1><F10><Alt-D><F2><Alt-D><F3><Alt-D><F4><Alt-D><F4><F5><Alt-D><F1>x<F10>",
       "\xDA\xB4\xBB\xD4\xBD\xD7x\n", true},
      // F2 inserts the text chosen; the cursor goes between the parentheses of a function.
      {"<>\n", "<Right><F2><Enter>x<F2><Down><Enter>!<F10>", "<@just(x@fileecho!)>\n", true},
      {"<>\n", "<F2><Esc><F10>", "<>\n", true},
      // F3 inserts a file at the cursor; a name without a directory is looked for beside the
      // file edited.
      {"ab\n", "<Right><F3>part.txt<Enter><F10>", "aP1\nP2\nb\n", true},
      {"ab\r\n", "<Right><F3>part.txt<Enter><F10>", "aP1\r\nP2\r\nb\r\n", true},
      {"ab\n", "<F3>nothere<Enter><Enter>z<F10>", "zab\n", true},
  };
  dir_.Write("part.txt", "P1\r\nP2\n");
  for (const auto& c : cases) {
    ::unlink((dir_ / "t.txt").c_str());
    if (c.before) dir_.Write("t.txt", *c.before);
    vt_.Keys(c.keys);
    bool saved = false;
    ASSERT_NO_THROW(saved = EditFile(dir_ / "t.txt", kPicks)) << c.keys << "\n" << Dump();
    EXPECT_EQ(vt_.KeysLeft(), 0u) << c.keys;
    EXPECT_EQ(Read("t.txt"), c.after) << c.keys;
    EXPECT_EQ(saved, c.saved) << c.keys;
  }
}

// What the window, the key line and the boxes show, where the script runs out.
TEST_F(EditorTest, ScreenShowsPositionKeysAndQuestions) {
  dir_.Write("t.txt", "first\nsecond\n");
  struct Case {
    const char* keys;
    int row;  // 0: anywhere on the screen
    std::string text;
  } cases[] = {
      {"", 6,
       "\xBA"
       "first "},
      {"", 25, "Esc-done F2-PickList F3-import F9-abort F10-save Alt-D-Toggle draw mode"},
      {"<Down><End>", 24, " L 2     C 7"},
      {"<Ins>", 24, " Overwrite "},
      {"<Alt-D><Alt-D>", 24, " Draw 2: double lines  Insert "},
      {"<Alt-D>", 25,
       "Alt-D-Toggle draw mode    Function key: 1-\xDA 2-\xBF 3-\xC0 4-\xD9 5-\xC4 6-\xB3 "
       "7-\xC2 8-\xC1 9-\xC3 10-\xB4"},
      {"<Alt-D><Alt-D><Alt-D><Alt-D><Alt-D>", 25,
       "Alt-D-Toggle draw mode    Function key: 1-\xC5 2-\xCE 3-\xD8 4-\xD7" +
           std::string(25, ' ')},
      {"x<Esc>", 0, "Save changes?"},
      {"<F3>", 0, "Insert file: "},
      {"<F3>nothere<Enter>", 0, "Unable to open file"},
      {"<F2>", 0, "@fileecho      1,2    Fileecho tag"},
      {"<PgDn>", 7,
       "\xBA"
       "second "},                                      // a short text does not scroll away
      {"<Resize 100x30>", 30, "Esc-done F2-PickList"},  // the window fits a new size at once
      {"<Down>", 29, " L 2     C 1"},
  };
  for (const auto& c : cases) {
    vt_.Keys(c.keys);
    EXPECT_THROW(EditFile(dir_ / "t.txt", kPicks), KeysExhausted);
    const std::string where = c.row ? vt_.Row(c.row) : vt_.Dump();
    EXPECT_NE(where.find(c.text), std::string::npos) << c.keys << "\n" << vt_.Dump();
  }
  // A long line scrolls sideways with the cursor; Esc leaves the screen as it was.
  dir_.Write("t.txt", std::string(300, 'a') + "Z\n");
  DrawDesktop();
  const std::string before = Dump();
  vt_.Keys("<End><F1><Esc>");
  EditFile(dir_ / "t.txt");
  EXPECT_NE(shots_.find(std::string(76, 'a') + "Z \xBA"), std::string::npos);
  EXPECT_NE(shots_.find(" L 1     C 302"), std::string::npos);
  EXPECT_EQ(Dump(), before);
}

// A save that fails says why and keeps the editor open with the text: once the directory
// exists, F10 saves all of it.
TEST_F(EditorTest, AFailedSaveKeepsTheText) {
  const std::string path = dir_ / "sub/t.txt";
  on_help_ = [&] { MakeDirs(dir_ / "sub"); };
  vt_.Keys("abc<F10><F1><Enter>d<F10>");
  EXPECT_TRUE(EditFile(path));
  EXPECT_NE(shots_.find("Unable to save the file"), std::string::npos) << shots_;
  EXPECT_NE(shots_.find("No such file or directory"), std::string::npos);
  EXPECT_EQ(ReadWholeFile(path).value_or("-"), "abcd\n");
  // A directory in place of the file cannot be edited at all.
  vt_.Keys("<Enter>");
  EXPECT_FALSE(EditFile(dir_ / "sub"));
  EXPECT_EQ(vt_.KeysLeft(), 0u);
}

TEST_F(EditorTest, AnExternalEditorThatReturnsAtOnceOffersTheInternalOne) {
  const std::string path = dir_ / "t.txt";
  const auto fixed = [] { return std::time_t{1000}; };
  vt_.Keys("<F1><Enter>x<F10>");
  EditTextFile(path, "true", {}, fixed);
  EXPECT_NE(shots_.find("Unable to execute external editor"), std::string::npos);
  EXPECT_NE(shots_.find("(0)"), std::string::npos);
  EXPECT_NE(shots_.find("Use internal editor?"), std::string::npos);
  EXPECT_EQ(Read("t.txt"), "x\n");
  EXPECT_EQ(vt_.suspend_count(), 1);
  EXPECT_EQ(vt_.resume_count(), 1);
  // "No" leaves the file alone; no command at all opens the internal editor directly.
  vt_.Keys("<Right><Enter>");
  EditTextFile(path, "false", {}, fixed);
  vt_.Keys("y<F10>");
  EditTextFile(path, "", {}, fixed);
  EXPECT_EQ(Read("t.txt"), "yx\n");
  EXPECT_EQ(vt_.KeysLeft(), 0u);
  EXPECT_EQ(vt_.suspend_count(), 2);
}

// The command gets the file name as one quoted word and really runs; a second on the clock
// makes it count as run, unless the shell could not find it.
TEST_F(EditorTest, AnExternalEditorRunsOnTheFile) {
  std::time_t t = 1000;
  const auto ticking = [&t] { return t++; };
  const std::string path = dir_ / "it's a file.txt";
  const EditorRun run = RunExternalEditor("printf 'hi\\n' >>", path, ticking);
  EXPECT_TRUE(run.ran);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(ReadWholeFile(path).value_or("-"), "hi\n");
  EditTextFile(path, "exit 3;", {}, ticking);  // ran, so no question
  EXPECT_EQ(RunExternalEditor("exit 3;", path, ticking).status, 3);
  const EditorRun missing = RunExternalEditor("no-such-editor-here 2>/dev/null", path, ticking);
  EXPECT_FALSE(missing.ran);
  EXPECT_EQ(missing.status, 127);
  EXPECT_EQ(ShellQuote("a'b"), "'a'\\''b'");
}

}  // namespace
}  // namespace ks
