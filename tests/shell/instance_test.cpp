#include "shell/instance.h"

#include <gtest/gtest.h>

#include "tempdir.h"

namespace ks {
namespace {

// What a killed save leaves is removed only while no other copy holds the directory; the
// files of the running configuration, look-alikes and the new area files of a change of the
// number of systems (finished or undone by their own recovery) stay.
TEST(StaleSaves, RemovedOnlyWhenAlone) {
  test::TempDir dir;
  const char* stale[] = {"setup.ksx.a1B2c3", "FAREAS.IDX.Zz09xy", "nodefile.ksx.000000",
                         "FAREAS.$$$"};
  const char* kept[] = {
      "setup.ksx",         "FAREAS.IDX",        "setup.ksx.bak",        "notes.txt.abcdef",
      "FAREAS.IDX.a1-b2c", "setup.ksx.a1B2c3d", "FAREAS.KSX.resize100", "MAREAS.KSX.resize7"};
  for (auto name : stale) dir.Write(name, "x");
  for (auto name : kept) dir.Write(name, "x");

  InstanceLock mine(dir.path());
  {
    InstanceLock other(dir.path());
    EXPECT_FALSE(mine.RunAlone([&] { RemoveStaleSaves(dir.path()); }));
  }
  for (auto name : stale) EXPECT_TRUE(dir.Has(name)) << name;

  int removed = 0;
  EXPECT_TRUE(mine.RunAlone([&] { removed = RemoveStaleSaves(dir.path()); }));
  EXPECT_EQ(removed, 4);
  for (auto name : stale) EXPECT_FALSE(dir.Has(name)) << name;
  for (auto name : kept) EXPECT_TRUE(dir.Has(name)) << name;
}

}  // namespace
}  // namespace ks
