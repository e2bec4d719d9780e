#include "shell/cmdline.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/progdir.h"
#include "tempdir.h"

namespace ks {
namespace {

TEST(CommandLine, WordsInAnyCaseAndOrderLaterSwitchWins) {
  auto cl = ParseCommandLine({"-mono", "-COLOR", "-sFi"});
  EXPECT_TRUE(cl.ok);
  EXPECT_EQ(cl.colour, true);
  EXPECT_TRUE(cl.sfi);
  EXPECT_EQ(ParseCommandLine({"-Color", "-Mono"}).colour, false);
  EXPECT_FALSE(ParseCommandLine({}).colour.has_value());
  // Index wins over Pack.
  cl = ParseCommandLine({"pack", "index"});
  EXPECT_TRUE(cl.index && !cl.pack);
  EXPECT_TRUE(ParseCommandLine({"PACK"}).pack);
}

TEST(CommandLine, AnyUnknownWordAsksForUsage) {
  for (auto bad : {"/mono", "-mon", "indexes", "-", "", "-Monochrome"})
    EXPECT_FALSE(ParseCommandLine({"index", bad}).ok) << bad;
}

TEST(ProgramDir, BesideTheProgramOtherCaseThenKestraVariable) {
  test::TempDir bin, data;
  auto no_env = [](const char*) -> const char* { return nullptr; };
  const std::string argv0 = bin / "ksetup";
  // Nothing anywhere: the directory as invoked.
  EXPECT_EQ(FindProgramDir(argv0, "", no_env).path, bin.path());
  // KESTRA names the directory when the program's own has no setup file.
  std::string kestra = data.path();
  kestra.pop_back();  // without its trailing slash
  auto env = [&](const char* n) -> const char* {
    return std::string(n) == "KESTRA" ? kestra.c_str() : nullptr;
  };
  EXPECT_EQ(FindProgramDir(argv0, "", env).path, data.path());
  data.Write("SETUP.KSX", "x");
  auto pd = FindProgramDir(argv0, "", env);
  EXPECT_EQ(pd.setup_name, "SETUP.KSX");
  // A setup file beside the program comes first.
  bin.Write("setup.ksx", "x");
  pd = FindProgramDir(argv0, "", env);
  EXPECT_EQ(pd.path, bin.path());
  EXPECT_EQ(pd.setup_name, "setup.ksx");
}

// Started as "./ksetup", with a relative KESTRA or from a link, the program directory is
// absolute: the create question, the FATAL lines and every file name show the whole path.
TEST(ProgramDir, AlwaysAbsolute) {
  test::TempDir cwd, real;
  real.Write("ksetup", "");
  const auto here = std::filesystem::current_path();
  std::filesystem::current_path(cwd.path());
  std::filesystem::create_directory("data");
  std::filesystem::create_symlink(real / "ksetup", "link");
  const char* kestra = nullptr;
  auto env = [&](const char*) { return kestra; };
  const struct {
    const char *argv0, *self_exe, *kestra;
    std::string dir;
  } cases[] = {
      {"./ksetup", "", nullptr, cwd.path()},
      {"./ksetup", "", "data", cwd / "data/"},
      {"./ksetup", "", "./data/../data", cwd / "data/"},
      {"./link", "link", nullptr, real.path()},
  };
  for (const auto& c : cases) {
    kestra = c.kestra;
    EXPECT_EQ(FindProgramDir(c.argv0, c.self_exe, env).path, c.dir) << c.argv0 << " " << c.kestra;
  }
  std::filesystem::current_path(here);
}

TEST(TempFiles, OnlyTwelveCharacterHexNamesAreRemoved) {
  test::TempDir dir;
  for (auto name : {"0ABCDEF1.tmp", "9zzzzzzA.TMP", "notes.tmp", "0ABCDEFG1.tmp", "aABCDEF1.tmp",
                    "0ABCDEFg.tmp", "0ABCDEF1.txt", "01234567.tmp"})
    dir.Write(name, "x");
  EXPECT_EQ(RemoveTempFiles(dir.path()), 3);
  for (auto kept : {"notes.tmp", "0ABCDEFG1.tmp", "aABCDEF1.tmp", "0ABCDEFg.tmp", "0ABCDEF1.txt"})
    EXPECT_TRUE(dir.Has(kept)) << kept;
}

}  // namespace
}  // namespace ks
