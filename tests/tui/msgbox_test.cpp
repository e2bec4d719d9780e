#include "tui/msgbox.h"

#include "vt_fixture.h"

namespace ks {
namespace {

TEST(SplitMessage, SlashesMakeLinesDoubleSlashAnEmptyOne) {
  EXPECT_EQ(SplitMessage("A//B"), (std::vector<std::string>{"A", "", "B"}));
  EXPECT_EQ(SplitMessage("one"), (std::vector<std::string>{"one"}));
  EXPECT_EQ(SplitMessage("x/"), (std::vector<std::string>{"x", ""}));
}

class MessageBoxTest : public test::VtTest {
 protected:
  std::uint8_t SaveQuestion(const std::string& keys) {
    vt_.Keys(keys);
    MessageBoxSpec box;
    box.lines = {"Changes have been made.", "Should those changes be saved?"};
    box.buttons = {"Yes", "No", "Cancel"};
    box.end_keys = EndKeys("CNY");
    return RunMessageBox(box);
  }
};

// Enter answers with the highlighted button's first letter, a letter in either case answers
// at once, other keys are ignored.
TEST_F(MessageBoxTest, EnterAndLettersAnswer) {
  const std::pair<const char*, int> cases[] = {{"<Enter>", 'Y'},
                                               {"<Tab><Enter>", 'N'},
                                               {"<Right><Right><Enter>", 'C'},
                                               {"<Left><Enter>", 'C'},
                                               {"<Tab><S-Tab><Enter>", 'Y'},
                                               {"n", 'N'},
                                               {"xq<Down>c", 'C'},
                                               {"<Esc>", 27}};
  for (const auto& [keys, answer] : cases) EXPECT_EQ(SaveQuestion(keys), answer) << keys;
}

TEST_F(MessageBoxTest, BoxRestoresTheScreenAndF1AsksForItsTopic) {
  screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
  const std::string before = Dump();
  int topic = -1;
  ui().show_help = [&](int t) { topic = t; };
  vt_.Keys("<F1><Enter>");
  EXPECT_EQ(MessageBox("Hello", {"Ok"}, 33), 'O');
  EXPECT_EQ(topic, 33);
  EXPECT_TRUE(Dump() == before);
}

// An error box splits its text at slashes, unless it starts with one.
TEST_F(MessageBoxTest, ErrorBoxLines) {
  vt_.Keys("<Tab>");  // the box waits after this key
  EXPECT_THROW(ErrorBox("/Path a/b/c is bad"), KeysExhausted);
  EXPECT_TRUE(OnScreen("Path a/b/c is bad"));
  vt_.Keys("<Tab>");
  EXPECT_THROW(ErrorBox("Unable to create temporary file///tmp/x//Some functions"), KeysExhausted);
  EXPECT_TRUE(OnScreen("Unable to create temporary file") && OnScreen("Some functions"));
  EXPECT_FALSE(OnScreen("file///tmp"));
}

TEST_F(MessageBoxTest, YesNoIsTrueOnlyForY) {
  vt_.Keys("<Tab><Enter>");
  EXPECT_FALSE(AskYesNo("Sure?"));
  vt_.Keys("y<Tab><Tab><Enter>");  // letters are not among this box's ending keys
  EXPECT_TRUE(AskYesNo("Sure?"));
  vt_.Keys("<Esc>");
  EXPECT_FALSE(AskYesNo("Sure?"));
}

}  // namespace
}  // namespace ks
