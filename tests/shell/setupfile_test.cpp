#include "shell/setupfile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "common/fileutil.h"
#include "tempdir.h"

namespace ks {
namespace {

class SetupFileTest : public ::testing::Test {
 protected:
  std::string Path() const { return dir_ / "setup.ksx"; }
  void WriteRecord(const KESTRAcfg& rec) {
    dir_.Write("setup.ksx", std::string(reinterpret_cast<const char*>(&rec), sizeof rec));
  }
  KESTRAcfg Fresh() {
    TSetupFile f;
    f.CreateDefaults();
    return f.record();
  }
  test::TempDir dir_;
};

TEST_F(SetupFileTest, LoadResultsForEachKindOfFile) {
  TSetupFile f;
  EXPECT_EQ(f.Load(Path()), slFileNotFound);
  EXPECT_FALSE(f.loaded());
  for (std::size_t size : {0u, 17883u, 17885u}) {
    dir_.Write("setup.ksx", std::string(size, '\x01'));
    EXPECT_EQ(f.Load(Path()), slCorrupt) << size;
    EXPECT_FALSE(f.loaded());
  }
  KESTRAcfg rec = Fresh();
  rec.revision = 19;
  WriteRecord(rec);
  EXPECT_EQ(f.Load(Path()), slVersionTooNew);
  EXPECT_FALSE(f.loaded());
  rec.revision = 18;
  WriteRecord(rec);
  EXPECT_EQ(f.Load(Path()), slOK);
  EXPECT_TRUE(f.loaded());
  EXPECT_FALSE(f.NeedsUpgrade());
  std::filesystem::create_directory(dir_ / "dir.ksx");
  EXPECT_EQ(f.Load(dir_ / "dir.ksx"), slFileError);
}

TEST_F(SetupFileTest, FileLockedByAWriterCannotBeRead) {
  WriteRecord(Fresh());
  int fd = ::open(Path().c_str(), O_RDWR);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(::flock(fd, LOCK_EX), 0);
  TSetupFile f;
  EXPECT_EQ(f.Load(Path()), slFileError);
  ::close(fd);
  EXPECT_EQ(f.Load(Path()), slOK);
}

TEST_F(SetupFileTest, SaveReplacesTheWholeFileAndLeavesNoTemporaryFile) {
  KESTRAcfg rec = Fresh();
  rec.bbsName.set("Test BBS");
  ASSERT_TRUE(SaveSetupFile(rec, Path()));
  EXPECT_EQ(*ReadWholeFile(Path()), std::string(reinterpret_cast<const char*>(&rec), sizeof rec));
  EXPECT_EQ(ListFiles(dir_.path()).size(), 1u);
  // A save that cannot be written leaves the old file as it was.
  std::string error;
  EXPECT_FALSE(SaveSetupFile(rec, dir_ / "missing/setup.ksx", &error));
  EXPECT_FALSE(error.empty());
}

TEST_F(SetupFileTest, LoadSetupWithoutQuestionsFailsOnAMissingFile) {
  SetupLoadContext ctx;
  ctx.dir = dir_.path();
  ctx.interactive = false;
  KESTRAcfg cfg{};
  EXPECT_FALSE(LoadSetup(ctx, cfg));
  EXPECT_FALSE(dir_.Has("setup.ksx"));
}

TEST_F(SetupFileTest, LoadSetupFillsDependentDefaultsAndTheOptionByte) {
  KESTRAcfg rec = Fresh();
  rec.nextInvoice = 0;
  rec.logMask = 0;
  WriteRecord(rec);
  SetupLoadContext ctx;
  ctx.dir = dir_.path();
  ctx.interactive = false;
  KESTRAcfg cfg{};
  ASSERT_TRUE(LoadSetup(ctx, cfg));
  EXPECT_NE(cfg.nextInvoice, 0u);
  EXPECT_EQ(cfg.logMask, 255);
  // Filled in memory only; the file keeps what it had until the user saves.
  TSetupFile f;
  ASSERT_EQ(f.Load(Path()), slOK);
  EXPECT_EQ(f.record().nextInvoice, 0u);
}

}  // namespace
}  // namespace ks
