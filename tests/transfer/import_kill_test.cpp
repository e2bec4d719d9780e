// An import killed at random moments: the data files must be as before or hold whole new
// records, and every index entry must name a whole record with its key.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

#include "dbase/rawfile.h"
#include "dbase/recordfile.h"
#include "tempdir.h"
#include "transfer/import_add.h"

namespace ks {
namespace {

constexpr int kAreas = 3000;

ImportList BigList() {
  ImportList list;
  for (int i = 0; i < kAreas; ++i) {
    ImportArea a;
    a.tag = "AREA" + std::to_string(i);
    a.links.push_back({{2, static_cast<std::uint16_t>(100 + i), 1, 0}, DefaultLinkFlags(), ""});
    list.areas.push_back(std::move(a));
  }
  return list;
}

ImportTarget EmptyTarget(const test::TempDir& dir) {
  for (auto id : {RecordFileId::kMAreas, RecordFileId::kNodes}) {
    std::ofstream(DataFileName(dir.path(), FileDef(id).base));
    std::ofstream(IndexFileName(dir.path(), FileDef(id).base));
  }
  ImportTarget target;
  target.data_dir = dir.path();
  return target;
}

TEST(ImportKillTest, AKilledImportLeavesWholeRecordsAndValidIndexes) {
  const ImportList list = BigList();
  // The kills fall anywhere in the time an uninterrupted import takes.
  const auto start = std::chrono::steady_clock::now();
  {
    const test::TempDir dir;
    ASSERT_EQ(AddImported(list, EmptyTarget(dir)).areas, kAreas);
  }
  const auto span = std::chrono::duration_cast<std::chrono::microseconds>(
                        std::chrono::steady_clock::now() - start)
                        .count() +
                    1;
  std::mt19937 random(7);
  for (int round = 0; round < 12; ++round) {
    const test::TempDir dir;
    const ImportTarget target = EmptyTarget(dir);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      AddImported(list, target);
      ::_exit(0);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % span));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);

    TMAreasFile areas;
    TNodeFile nodes;
    ASSERT_TRUE(areas.Open(dir.path()) && nodes.Open(dir.path()));
    EXPECT_TRUE(areas.Count() == 0 || areas.Count() == kAreas) << areas.Count();
    EXPECT_TRUE(nodes.Count() == 0 || nodes.Count() == kAreas) << nodes.Count();
    EXPECT_TRUE(areas.Count() == 0 || nodes.Count() == kAreas);  // nodes go first
    for (int i = 0; i < areas.Count(); ++i) {
      EchoMGRrec rec;
      ASSERT_TRUE(areas.ReadRecord(i, rec));
      ASSERT_EQ(rec.tag.str(), areas.GetIndex(i).tag.str());
    }
    for (int i = 0; i < nodes.Count(); ++i) {
      NodeMGRrec rec;
      ASSERT_TRUE(nodes.ReadRecord(i, rec));
      ASSERT_EQ(rec.address, nodes.GetIndex(i).address);
    }
  }
}

}  // namespace
}  // namespace ks
