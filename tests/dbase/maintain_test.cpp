#include "dbase/maintain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "dbase/workbox.h"
#include "pair_fixture.h"
#include "vt_fixture.h"

namespace ks {
namespace {

using test::Bytes;

constexpr std::size_t kSize = 16;
const test::TagByteLayout L{kSize, 4, 8};

class MaintainTest : public test::PairTest {
 protected:
  bool Build() { return BuildIndex(dir_.path(), "PAIR", kSize, L.Keys()); }
  bool Pack(const PackProc& proc = {}) {
    return PackDataFile(dir_.path(), "PAIR", kSize, L.Keys(), proc);
  }
};

// What the fuzz target checks of every pair it builds and packs (sorted entries of the keyed
// records, a partial last record, both files gone when nothing is left) is not repeated here.
TEST_F(MaintainTest, PackKeepsReferencedRecordsInIndexOrderAndHandsEachToTheProc) {
  WriteBytes("PAIR.KSX", test::Concat({L.Rec("C", 1, 10), L.Rec("X", 1, 11), L.Rec("A", 1, 12),
                                       L.Rec("B", 1, 13)}));
  WriteBytes("PAIR.IDX",
             test::Concat({L.Entry("A", 1, 2), L.Entry("B", 1, 3), L.Entry("C", 1, 0)}));
  WriteBytes("PAIR.$$$", Bytes(3, 7));  // left over from an interrupted pack
  std::vector<std::uint8_t> seen;
  ASSERT_TRUE(Pack([&](std::uint8_t* rec, std::size_t& length) {
    seen.push_back(rec[15]);
    if (rec[1] == 'B') length = 0;  // dropped
    rec[14] = 0xEE;                 // converted
  }));
  EXPECT_EQ(seen, (std::vector<std::uint8_t>{12, 13, 10}));
  Bytes a = L.Rec("A", 1, 12), c = L.Rec("C", 1, 10);
  a[14] = c[14] = 0xEE;
  EXPECT_EQ(ReadBytes("PAIR.KSX"), test::Concat({a, c}));
  EXPECT_FALSE(dir_.Has("PAIR.$$$"));
  // The record numbers changed; the caller rebuilds the index.
  ASSERT_TRUE(Build());
  EXPECT_EQ(ReadBytes("PAIR.IDX"), test::Concat({L.Entry("A", 1, 0), L.Entry("C", 1, 1)}));
}

TEST_F(MaintainTest, APackThatRunsOutOfDiskPutsTheOldDataFileBack) {
  Bytes data, index;
  for (std::uint8_t i = 0; i < 200; ++i) {
    data = test::Concat({data, L.Rec("R", i)});
    index = test::Concat({index, L.Entry("R", i, i)});
  }
  WriteBytes("PAIR.KSX", data);
  WriteBytes("PAIR.IDX", index);
  {
    test::FileSizeLimit limit(100 * kSize);  // the new data file cannot be completed
    EXPECT_FALSE(Pack());
  }
  EXPECT_EQ(ReadBytes("PAIR.KSX"), data);
  EXPECT_EQ(ReadBytes("PAIR.IDX"), index);
  EXPECT_FALSE(dir_.Has("PAIR.$$$"));
}

TEST(SortIndexEntries, SortsLargeInputsAndSurvivesAnAdversarialOrder) {
  KeySet k;
  k.Declare("key", Wrd, 0, 2);
  const std::size_t n = 40000;
  std::vector<std::uint16_t> keys(n);
  std::iota(keys.begin(), keys.end(), 0);
  // A shuffled input and an "organ pipe" one, which degrades naive middle-pivot sorts.
  std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
  for (int pass = 0; pass < 2; ++pass) {
    Bytes e;
    for (std::size_t i = 0; i < n; ++i) {
      const std::uint16_t key =
          pass == 0 ? keys[i] : static_cast<std::uint16_t>(std::min(i, n - 1 - i));
      e.insert(e.end(),
               {static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(key >> 8), 0, 0});
    }
    SortIndexEntries(e, k);
    for (std::size_t i = 1; i < n; ++i)
      ASSERT_LE(k.Compare(&e[(i - 1) * 4], &e[i * 4]), 0) << "pass " << pass << " at " << i;
  }
}

// The textbook middle-pivot quicksort on whole entries with KeySet::Compare: the order the
// index files have always had, which the fast sort must reproduce exactly.
void ReferenceSort(Bytes& e, std::size_t size, const KeySet& keys, int first, long l, long r) {
  auto at = [&](long i) { return &e[static_cast<std::size_t>(i) * size]; };
  long i = l, j = r;
  const Bytes pivot(at((l + r) / 2), at((l + r) / 2) + size);
  do {
    while (keys.Compare(at(i), pivot.data(), first) < 0) ++i;
    while (keys.Compare(pivot.data(), at(j), first) < 0) --j;
    if (i <= j) {
      std::swap_ranges(at(i), at(i) + size, at(j));
      ++i;
      --j;
    }
  } while (i <= j);
  if (l < j) ReferenceSort(e, size, keys, first, l, j);
  if (i < r) ReferenceSort(e, size, keys, first, i, r);
}

TEST(SortIndexEntries, GivesTheSameOrderAsTheTextbookQuicksortForEveryKeyKind) {
  // A string with a wild length byte, a one-byte key, an address at an odd offset and a Long:
  // few distinct values, so equal keys are common.
  KeySet keys;
  keys.Declare("name", Str, 0, 4);
  keys.Declare("kind", Int, 4, 1);
  keys.Declare("addr", Aka, 5, 8);
  keys.Declare("long", Long, 13, 4);
  const std::size_t size = keys.entry_size();
  std::mt19937 rng(1234);
  for (int round = 0; round < 200; ++round) {
    const std::size_t n = 1 + rng() % 300;
    Bytes e(n * size);
    for (std::size_t i = 0; i < e.size(); ++i) e[i] = static_cast<std::uint8_t>(rng() % 3);
    for (std::size_t i = 0; i < n; ++i) {
      e[i * size + keys.length()] = static_cast<std::uint8_t>(i);  // the record number
      if (rng() % 8 == 0) e[i * size] = 200;                       // a wild string length
    }
    for (int first = 1; first <= keys.count(); ++first) {
      Bytes fast = e, slow = e;
      SortIndexEntries(fast, keys, first);
      ReferenceSort(slow, size, keys, first, 0, static_cast<long>(n) - 1);
      ASSERT_EQ(fast, slow) << "round " << round << ", from key " << first;
    }
  }
  Bytes e(3 * size, 1);
  const Bytes before = e;
  SortIndexEntries(e, keys, 9);  // an undeclared key leaves the entries alone
  EXPECT_EQ(e, before);
}

class WorkBoxTest : public test::VtTest {};

TEST_F(WorkBoxTest, ShowsHowFarTheWorkHasComeAndRestoresTheScreen) {
  const std::string before = vt_.Dump();
  {
    WorkBox box("Building index files", "    Please wait     ");
    box.Progress(450, 1000);
    EXPECT_TRUE(vt_.Contains("Building index files"));
    EXPECT_TRUE(vt_.Contains("Please wait"));
    EXPECT_TRUE(vt_.Contains("45%"));
    box.Progress(1000, 1000);
    EXPECT_TRUE(vt_.Contains("100%"));
  }
  EXPECT_FALSE(OnScreen("Please wait"));
}

}  // namespace
}  // namespace ks
