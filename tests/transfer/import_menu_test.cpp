#include "transfer/import_menu.h"

#include <gtest/gtest.h>

#include "tempdir.h"

namespace ks {
namespace {

TEST(ImportMenuTest, TheFileIsFoundWhateverTheCaseOfItsName) {
  test::TempDir dir;
  dir.Write("areafile.ge", "x");
  dir.Write("Squish.Cfg", "x");
  EXPECT_EQ(FindFileNoCase(dir.path(), "AREAFILE.GE"), dir / "areafile.ge");
  EXPECT_EQ(FindFileNoCase(dir.path(), "SQUISH.CFG"), dir / "Squish.Cfg");
  EXPECT_EQ(FindFileNoCase(dir.path(), "FMAIL.AR"), "");
  EXPECT_EQ(FindFileNoCase(dir / "nowhere", "FMAIL.AR"), "");
  // The importers read the file their window entry names.
  EXPECT_EQ(Gecho120MsgImportOBj().file_name(), "AREAFILE.GE");
  EXPECT_EQ(FastEcho146MsgImportObj().file_name(), "FASTECHO.CFG");
  EXPECT_EQ(Fmail146MsgImportObj().file_name(), "FMAIL.AR");
  EXPECT_EQ(AreasBBSMsgImportObj().file_name(), "AREAS.BBS");
}

}  // namespace
}  // namespace ks
