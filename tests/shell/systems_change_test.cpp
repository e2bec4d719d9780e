#include "shell/systems_change.h"

#include <gtest/gtest.h>

#include "common/fileutil.h"
#include "common/recordext.h"
#include "dbase/area_image.h"
#include "shell/cfgdefaults.h"
#include "shell/instance.h"
#include "shell/program.h"
#include "shell/setupfile.h"
#include "tempdir.h"
#include "vt_fixture.h"

namespace ks {
namespace {

using test::AreaImage;
const RecordFileDef& kFA = FileDef(RecordFileId::kFAreas);
const RecordFileDef& kMA = FileDef(RecordFileId::kMAreas);
const std::vector<int> kFileechos = {150, 0, 120, 7}, kEchoAreas = {101};

std::string Bytes(const KESTRAcfg& cfg) {
  return std::string(reinterpret_cast<const char*>(&cfg), sizeof cfg);
}

class SystemsChangeTest : public test::VtTest {
 protected:
  SystemsChangeTest() {
    ResetProgram();
    record_extensions() = {"KSX", "IDX"};
    prog().exe_path = dir_.path();
    FillNewDefaults(cfg_);
    saved_log_style_ = cfg_.logStyle;
    Reset();
  }
  ~SystemsChangeTest() override {
    record_extensions() = {};
    ResetProgram();
  }
  // Both files and setup.ksx at 200 systems; the record in memory holds a change the operator
  // has not saved.
  void Reset() {
    cfg_.logStyle = saved_log_style_;
    cfg_.numberOfSystems = 200;
    dir_.Write("setup.ksx", Bytes(cfg_));
    dir_.Write("FAREAS.KSX", AreaImage(kFA, 200, kFileechos));
    dir_.Write("MAREAS.KSX", AreaImage(kMA, 200, kEchoAreas));
    cfg_.logStyle = saved_log_style_ ^ 1;
  }
  bool Change(const std::string& keys, std::uint8_t to = 100) {
    vt_.Keys(keys);
    return ChangeNumberOfSystems(cfg_, 200, to);
  }
  KESTRAcfg OnDisk() const {
    KESTRAcfg rec{};
    const std::string bytes = ReadWholeFile(dir_ / "setup.ksx").value_or("");
    std::memcpy(static_cast<void*>(&rec), bytes.data(), std::min(bytes.size(), sizeof rec));
    return rec;
  }
  // The files hold `systems` systems per area and setup.ksx says so, without the unsaved
  // change; nothing else is left in the directory.
  void ExpectFiles(std::uint8_t systems, const std::string& what) const {
    EXPECT_EQ(OnDisk().numberOfSystems, systems) << what;
    EXPECT_EQ(OnDisk().logStyle, saved_log_style_) << what;
    EXPECT_TRUE(ReadWholeFile(dir_ / "FAREAS.KSX") == AreaImage(kFA, systems, kFileechos)) << what;
    EXPECT_TRUE(ReadWholeFile(dir_ / "MAREAS.KSX") == AreaImage(kMA, systems, kEchoAreas)) << what;
    EXPECT_EQ(ListFiles(dir_.path()).size(), 3u) << what;
  }

  test::TempDir dir_;
  KESTRAcfg cfg_{};
  std::uint8_t saved_log_style_ = 0;
};

TEST_F(SystemsChangeTest, WarningTellsTheNumbersAndWhatIsLost) {
  EXPECT_THROW(Change(""), KeysExhausted);
  for (const char* line :
       {"!! Warning !!", "You are changing the maximum number of systems from 200 to 100",
        "not be able to access your fileecho configuration.",
        "2 fileechos and 1 echomail area hold more systems than that;",
        "those systems will be removed.", "Do you wish to continue?"})
    EXPECT_TRUE(OnScreen(line)) << line;
  EXPECT_EQ(vt_.AttrOf(" No "), ui().colours[kMessageSelect]);
}

// Only "Yes" rewrites both files and stores the number, and only that byte of setup.ksx.
TEST_F(SystemsChangeTest, OnlyYesChangesFilesAndNumber) {
  const struct {
    const char* keys;
    std::uint8_t to;
    bool accepted;
  } answers[] = {{"<Enter>", 100, false},
                 {"<Esc>", 100, false},
                 {"n", 100, false},
                 {"<Right><Enter>", 100, true},
                 {"y", 255, true}};  // growing: no areas lose systems
  for (const auto& a : answers) {
    Reset();
    cfg_.numberOfSystems = a.to;  // as the field holds it while asking
    EXPECT_EQ(Change(a.keys, a.to), a.accepted) << a.keys;
    EXPECT_EQ(cfg_.numberOfSystems, a.accepted ? a.to : 200) << a.keys;
    ExpectFiles(a.accepted ? a.to : 200, a.keys);
  }
  EXPECT_TRUE(ChangeNumberOfSystems(cfg_, 255, 255));  // the same number asks nothing
}

TEST_F(SystemsChangeTest, FileOfNeitherSizeIsNamedAndNothingChanges) {
  dir_.Write("MAREAS.KSX", AreaImage(kMA, 200, kEchoAreas) + "xyz");
  EXPECT_THROW(Change(""), KeysExhausted);
  EXPECT_TRUE(OnScreen("MAREAS.KSX: 2770 bytes is not a whole number of 2767-byte records"));
  EXPECT_FALSE(Change("<Enter>"));  // no warning follows
  EXPECT_EQ(OnDisk().numberOfSystems, 200);
  EXPECT_TRUE(ReadWholeFile(dir_ / "FAREAS.KSX") == AreaImage(kFA, 200, kFileechos));
}

TEST_F(SystemsChangeTest, FileOfTheNewSizeNeedsNoChange) {
  dir_.Write("MAREAS.KSX", AreaImage(kMA, 100, kEchoAreas));
  EXPECT_THROW(Change("y"), KeysExhausted);
  EXPECT_TRUE(OnScreen("No changes necessary to data file") && OnScreen("MAREAS.KSX"));
  EXPECT_TRUE(Change("y<Enter>"));
  ExpectFiles(100, "one file rewritten");
}

TEST_F(SystemsChangeTest, RefusedWhileAnotherCopyRuns) {
  InstanceLock mine(dir_.path()), other(dir_.path());
  prog().instance = &mine;
  EXPECT_FALSE(Change("<Enter>"));
  ExpectFiles(200, "another copy");
}

// A setup file that cannot be patched in place gets the whole record with the new number.
TEST_F(SystemsChangeTest, StoreWritesTheWholeRecordOnlyWhenItMust) {
  KESTRAcfg other_revision = cfg_;
  other_revision.revision = 3;
  const std::pair<std::string, bool> files[] = {{Bytes(cfg_).substr(0, 100), true},
                                                {"", true},
                                                {Bytes(other_revision), true},
                                                {Bytes(NewSetupRecord()), false}};
  for (const auto& [bytes, whole] : files) {
    std::remove((dir_ / "setup.ksx").c_str());
    if (!bytes.empty()) dir_.Write("setup.ksx", bytes);
    ASSERT_TRUE(StoreNumberOfSystems(dir_ / "setup.ksx", cfg_, 77, nullptr));
    EXPECT_EQ(OnDisk().numberOfSystems, 77);
    EXPECT_EQ(OnDisk().logStyle, whole ? cfg_.logStyle : NewSetupRecord().logStyle);
  }
}

}  // namespace
}  // namespace ks
