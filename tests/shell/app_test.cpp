// The program from start to end through key scripts: start-up, the setup file questions, the
// main menu tree, the exit path and what lands on disk.
#include <tuple>

#include "app_fixture.h"
#include "common/fileutil.h"
#include "shell/cfgdefaults.h"
#include "shell/program.h"
#include "shell/setupfile.h"
#include "tui/colours.h"

namespace ks {
namespace {

using test::AppTest;

KESTRAcfg ConfigWithAddress(std::uint16_t zone) {
  TSetupFile f;
  f.CreateDefaults();
  KESTRAcfg rec = f.record();
  rec.addresses[0] = {zone, 280, 5555, 0};
  rec.nextInvoice = 1;
  return rec;
}

std::uint8_t ByteAt(const KESTRAcfg& rec, std::size_t offset) {
  return reinterpret_cast<const std::uint8_t*>(&rec)[offset];
}

TEST_F(AppTest, FirstStartCreatesTheSetupFileAfterAskingAndNoCreatesNothing) {
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_TRUE(Screen(SetupPath()) && Screen("File not found, create a new one?"));
  EXPECT_FALSE(dir_.Has("setup.ksx"));
  EXPECT_EQ(Run({}, "<Tab><Enter>"), 0);
  EXPECT_EQ(Run({}, "<Esc>"), 0);
  EXPECT_FALSE(dir_.Has("setup.ksx"));

  // Size, revision and the header left behind are the end-to-end first-start case. What the
  // loader adds to the new record's defaults: the three flags, the option byte, an invoice
  // number and the colour set of a new file.
  EXPECT_EQ(Run({}, "<Enter><F9>"), 0);
  const KESTRAcfg rec = ReadSetup();
  EXPECT_EQ(std::tuple(ByteAt(rec, 9441), ByteAt(rec, 9442), ByteAt(rec, 9443)),
            std::tuple(6, 1, 7));  // the version
  EXPECT_EQ(ByteAt(rec, 14887) + ByteAt(rec, 14888) + ByteAt(rec, 14889), 3);
  EXPECT_NE(ByteAt(rec, 15118), 0);
  EXPECT_NE(rec.nextInvoice, 0u);
  ASSERT_EQ(rec.colourSet.len, 38);
  EXPECT_EQ(static_cast<std::uint8_t>(rec.colourSet.text[kMessageButton - 1]), 0x10);
}

// A setup file that cannot be used is reported and left as it is; an older revision is
// upgraded with a message, old version bytes silently.
TEST_F(AppTest, SetupFilesOfOtherSizesAndRevisions) {
  const std::string bytes(17885, '\x12');  // the sizes refused are the setup file test's
  dir_.Write("setup.ksx", bytes);
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_TRUE(Screen("file corrupt or incorrect format."));
  EXPECT_EQ(Run({}, "<Enter>"), 0);  // no menu follows
  EXPECT_EQ(*ReadWholeFile(SetupPath()), bytes);
  KESTRAcfg rec = ConfigWithAddress(2);
  rec.revision = 19;
  WriteSetup(rec);
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_TRUE(Screen("These configuration files were made with a newer version of KESTRA"));
  EXPECT_EQ(Run({}, "<Enter>"), 0);
  EXPECT_EQ(ReadSetup().revision, 19);

  rec.revision = 17;
  WriteSetup(rec);
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_TRUE(Screen("setup.ksx file updated to new version level"));
  EXPECT_EQ(Run({}, "<Enter><F9>"), 0);
  EXPECT_EQ(ReadSetup().revision, 18);

  rec = ConfigWithAddress(2);
  reinterpret_cast<std::uint8_t*>(&rec)[9442] = 0;
  reinterpret_cast<std::uint8_t*>(&rec)[9443] = 3;
  WriteSetup(rec);
  EXPECT_EQ(Run({}, "<F9>"), 0);  // straight into the menu: no message box
  EXPECT_EQ(ByteAt(ReadSetup(), 9442), 1);
  EXPECT_EQ(ByteAt(ReadSetup(), 9443), 7);
}

TEST_F(AppTest, WithoutMainAddressMostChoicesRefuse) {
  WriteSetup(ConfigWithAddress(0));
  bool opened_list = false;
  menu_actions().main[kFileFindAreas] = [&] { opened_list = true; };
  EXPECT_THROW(Run({}, "<Down><Enter>"), KeysExhausted);
  EXPECT_TRUE(Screen("Main address missing or invalid"));
  EXPECT_FALSE(opened_list);
  // System data, Utilities, Information and Exit stay available.
  EXPECT_THROW(Run({}, "<Up><Up><Enter>"), KeysExhausted);
  EXPECT_TRUE(Screen(" Information "));
  EXPECT_EQ(Run({}, "<Up><Up><Up><Enter><Esc><End><Enter>"), 0);
}

// An editor stand-in behind "FileFind areas" that changes one byte of the configuration.
class ExitPathTest : public AppTest {
 protected:
  void SetUp() override {
    WriteSetup(ConfigWithAddress(2));
    original_ = ReadSetup();
  }
  void ChangeOnOpen(std::size_t offset) {
    menu_actions().main[kFileFindAreas] = [offset] {
      reinterpret_cast<std::uint8_t*>(prog().cfg.get())[offset] ^= 0x5A;
    };
  }
  bool Saved() { return ByteAt(ReadSetup(), 1200) != ByteAt(original_, 1200); }
  KESTRAcfg original_;
};

TEST_F(ExitPathTest, ChangedConfigIsSavedOrDroppedAsTheKeysSay) {
  ChangeOnOpen(1200);
  EXPECT_THROW(Run({}, "<Down><Enter><End><Enter>"), KeysExhausted);
  EXPECT_TRUE(Screen("Changes have been made.") && Screen("Should those changes be saved?"));
  EXPECT_TRUE(Screen(" Yes ") && Screen(" No ") && Screen(" Cancel "));
  EXPECT_FALSE(Saved());
  const struct {
    const char* keys;
    bool saved;
  } cases[] = {
      {"<End><Enter><Enter>", true},  // Enter on "Yes"
      {"<Esc>n", false},
      {"<Esc>c<Esc><Esc><F9>", false},  // Cancel and Esc return to the menu; F9 leaves unsaved
      {"<Esc>y", true},
      {"D", true},  // F10 (and D, its letter) saves without asking
  };
  for (const auto& c : cases) {
    WriteSetup(original_);
    EXPECT_EQ(Run({}, std::string("<Down><Enter>") + c.keys), 0) << c.keys;
    EXPECT_EQ(Saved(), c.saved) << c.keys;
  }
}

TEST_F(ExitPathTest, ChangeOfTheLastByteAloneIsNotReported) {
  ChangeOnOpen(sizeof(KESTRAcfg) - 1);
  EXPECT_EQ(Run({}, "<Down><Enter><Esc>"), 0);  // no question: it would eat no key and wait
  EXPECT_EQ(ReadSetup().reservedLast, original_.reservedLast);
  ChangeOnOpen(sizeof(KESTRAcfg) - 2);
  EXPECT_THROW(Run({}, "<Down><Enter><Esc>"), KeysExhausted);
  EXPECT_TRUE(Screen("Changes have been made."));
}

TEST_F(ExitPathTest, SubmenusCloseOnF9AndF10WithoutLeavingTheProgram) {
  ChangeOnOpen(1200);
  // Fileecho system: F10 and F9 only close it; the main menu goes on.
  EXPECT_THROW(Run({}, "<Down><Enter><Down><Down><Enter><F10>"), KeysExhausted);
  EXPECT_TRUE(Screen("Exit program"));
  EXPECT_FALSE(Saved());
  // Utilities ignores F9 and F10 (F10 in the main menu would end with keys left); Esc leaves it.
  EXPECT_EQ(Run({}, "<End><Up><Up><Enter><F9><F10><Esc><F9>"), 0);
  EXPECT_EQ(vt_->KeysLeft(), 0u);
  // The echomail submenu opens its items.
  std::vector<int> opened;
  menu_actions().echomail[1] = [&] { opened.push_back(1); };
  menu_actions().echomail[3] = [&] { opened.push_back(3); };
  EXPECT_EQ(Run({}, "<Down><Down><Enter><Enter><End><Enter><Esc><F9>"), 0);
  EXPECT_EQ(opened, (std::vector<int>{1, 3}));
}

TEST_F(AppTest, TemporaryFilesOfTheWorkDirectoryGoAtExit) {
  KESTRAcfg rec = ConfigWithAddress(2);
  test::TempDir work;
  rec.tmpPath.set(work.path());
  WriteSetup(rec);
  work.Write("0ABCDEF1.tmp", "x");
  work.Write("notes.tmp", "x");
  dir_.Write("1ABCDEF2.tmp", "x");  // not the work directory
  EXPECT_EQ(Run({}, "<F9>"), 0);
  EXPECT_FALSE(work.Has("0ABCDEF1.tmp"));
  EXPECT_TRUE(work.Has("notes.tmp") && dir_.Has("1ABCDEF2.tmp"));
}

TEST_F(AppTest, ColourModesAndTheDefaultSet) {
  KESTRAcfg rec = ConfigWithAddress(2);
  rec.colourSet.set("");  // no set yet: the default one is installed
  WriteSetup(rec);
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_EQ(vt_->AttrOf(" Main "), 0x1E);
  EXPECT_THROW(Run({"-Mono"}, ""), KeysExhausted);
  EXPECT_EQ(vt_->AttrOf(" Main "), 15);
  EXPECT_TRUE(vt_->monochrome());
  env_["NO_COLOR"] = "1";
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_TRUE(vt_->monochrome());
  EXPECT_THROW(Run({"-mono", "-color"}, ""), KeysExhausted);
  EXPECT_FALSE(vt_->monochrome());
}

TEST_F(AppTest, SpeechFriendlyKeepsTheCursorOnTheHighlight) {
  WriteSetup(ConfigWithAddress(2));
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_EQ(vt_->cursor_shape(), CursorShape::kHidden);
  EXPECT_THROW(Run({"-sfi"}, "<Down>"), KeysExhausted);
  EXPECT_EQ(vt_->cursor_shape(), CursorShape::kUnderline);
  EXPECT_EQ(vt_->cursor_row(), 9);  // "FileFind areas"
  KESTRAcfg rec = ConfigWithAddress(2);
  rec.speechFriendly = 1;
  WriteSetup(rec);
  EXPECT_THROW(Run({}, ""), KeysExhausted);
  EXPECT_EQ(vt_->cursor_shape(), CursorShape::kUnderline);
}

// The fatal-report test of the build checks the first and the last line; the middle one names
// the program's directory.
TEST(FatalReport, NamesTheExceptionClassAndTheDirectories) {
  const auto lines = FatalReport(std::runtime_error("boom"));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "FATAL Exception: std::runtime_error: boom");
  EXPECT_EQ(lines[1].rfind("ExePath = ", 0), 0u);
  EXPECT_EQ(lines[2], "SetupFileName = setup.ksx");
}

}  // namespace
}  // namespace ks
