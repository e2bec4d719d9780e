#include "dbase/database.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "common/halt.h"
#include "dbase/fileecho_rec.h"
#include "dbase/maintain.h"
#include "dbase/recfiles.h"
#include "pair_fixture.h"
#include "vt_fixture.h"

namespace ks {
namespace {

using test::Bytes;

constexpr std::size_t kSize = 32;
const test::TagByteLayout L{kSize, 6, 10};

class DataBaseTest : public test::PairTest {
 protected:
  ksDataBase db_{"LIST", kSize, L.Keys()};
  ksDataBase::OpenResult Open() { return db_.Open(dir_.path()); }
  Bytes Index() const { return ReadBytes("LIST.IDX"); }
};

TEST_F(DataBaseTest, InsertAppendsTheRecordAndPutsItsEntryBeforeTheFirstNotLess) {
  ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
  db_.unique = false;
  ASSERT_TRUE(db_.Insert(L.Rec("M", 1).data()));
  ASSERT_TRUE(db_.Insert(L.Rec("C", 1).data()));
  ASSERT_TRUE(db_.Insert(L.Rec("X", 1).data()));
  ASSERT_TRUE(db_.Insert(L.Rec("M", 1).data()));  // an equal key goes in front of the old one
  EXPECT_EQ(db_.current(), 1);
  EXPECT_EQ(Index(), test::Concat({L.Entry("C", 1, 1), L.Entry("M", 1, 3), L.Entry("M", 1, 0),
                                   L.Entry("X", 1, 2)}));
  EXPECT_EQ(Read("LIST.KSX").size(), 4 * kSize);
  Bytes rec(kSize);
  ASSERT_TRUE(db_.ReadRecord(3, rec.data()));
  EXPECT_EQ(rec, L.Rec("X", 1));
}

TEST_F(DataBaseTest, DuplicatesAreEqualFromTheActiveKeyOnExceptTheEntryBeingEdited) {
  ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
  ASSERT_TRUE(db_.Insert(L.Rec("FILES", 1).data()));
  ASSERT_TRUE(db_.Insert(L.Rec("OTHER", 2).data()));
  EXPECT_FALSE(db_.IsDuplicate(L.Rec("FILES", 2).data(), -1));  // same tag, other group
  EXPECT_TRUE(db_.IsDuplicate(L.Rec("FILES", 1).data(), -1));
  EXPECT_TRUE(db_.IsDuplicate(L.Rec("FILES", 1, 0x55).data(), -1));  // other bytes don't count
  EXPECT_FALSE(db_.IsDuplicate(L.Rec("FILES", 1).data(), 0));        // editing that very entry
  // From key 2 on only the group counts.
  db_.set_active_key(2);
  EXPECT_TRUE(db_.IsDuplicate(L.Rec("NEW", 2).data(), -1));
  db_.unique = false;
  EXPECT_FALSE(db_.IsDuplicate(L.Rec("FILES", 1).data(), -1));
}

TEST_F(DataBaseTest, RemoveZeroesTheKeyInTheRecordSoNoRebuildBringsItBack) {
  ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
  for (const char* tag : {"A", "B", "C"}) {
    Bytes r = L.Rec(tag, 7);
    r[20] = 0x11;
    ASSERT_TRUE(db_.Insert(r.data()));
  }
  db_.set_current(2);
  ASSERT_TRUE(db_.Remove(2));
  EXPECT_EQ(db_.current(), 1);  // clamped to the new last entry
  ASSERT_TRUE(db_.Remove(0));
  EXPECT_EQ(Index(), L.Entry("B", 7, 1));
  const Bytes data = ReadBytes("LIST.KSX");
  ASSERT_EQ(data.size(), 3 * kSize);
  // The removed records keep their other bytes but lose their key fields.
  Bytes removed(kSize, 0);
  removed[20] = 0x11;
  EXPECT_EQ(Bytes(data.begin(), data.begin() + kSize), removed);
}

TEST_F(DataBaseTest, RewriteKeepsTheRecordInPlaceAndMovesItsEntry) {
  ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
  for (const char* tag : {"A", "B", "C", "D"}) ASSERT_TRUE(db_.Insert(L.Rec(tag, 1).data()));
  ASSERT_TRUE(db_.Rewrite(0, L.Rec("CC", 1).data()));
  EXPECT_EQ(db_.current(), 2);
  EXPECT_EQ(Index(), test::Concat({L.Entry("B", 1, 1), L.Entry("C", 1, 2), L.Entry("CC", 1, 0),
                                   L.Entry("D", 1, 3)}));
  ASSERT_TRUE(db_.Rewrite(3, L.Rec("A", 1).data()));
  EXPECT_EQ(Index(), test::Concat({L.Entry("A", 1, 3), L.Entry("B", 1, 1), L.Entry("C", 1, 2),
                                   L.Entry("CC", 1, 0)}));
}

TEST_F(DataBaseTest, AFullDiskLeavesThePreviousRecordsAndIndexReadable) {
  ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
  for (const char* tag : {"A", "B"}) ASSERT_TRUE(db_.Insert(L.Rec(tag, 1).data()));
  const Bytes data = ReadBytes("LIST.KSX"), index = Index();
  {
    test::FileSizeLimit limit(2 * kSize + 5);  // the next record does not fit
    EXPECT_FALSE(db_.Insert(L.Rec("C", 1).data()));
  }
  EXPECT_EQ(ReadBytes("LIST.KSX"), data);
  EXPECT_EQ(Index(), index);
  EXPECT_EQ(db_.count(), 2);
  db_.Close();
  ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
  EXPECT_EQ(db_.count(), 2);
}

// An index that does not fit its data (what a pack cut short between its two renames leaves,
// or a hostile file) is rebuilt on open; nothing is ever read or written through it.
TEST_F(DataBaseTest, AnIndexThatDoesNotFitTheDataIsRebuiltOnOpen) {
  const Bytes data = test::Concat({L.Rec("A", 1), L.Rec("B", 1)});
  const Bytes rebuilt = test::Concat({L.Entry("A", 1, 0), L.Entry("B", 1, 1)});
  const struct {
    const char* what;
    Bytes index;
  } cases[] = {
      {"entry past the data", test::Concat({L.Entry("A", 1, 0), L.Entry("B", 1, 60000)})},
      {"keys of another record", test::Concat({L.Entry("A", 1, 1), L.Entry("B", 1, 0)})},
      {"index from before a pack", test::Concat({L.Entry("A", 1, 5), L.Entry("B", 1, 9)})},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    WriteBytes("LIST.KSX", data);
    WriteBytes("LIST.IDX", c.index);
    ASSERT_EQ(Open(), ksDataBase::OpenResult::kOk);
    EXPECT_EQ(Index(), rebuilt);
    EXPECT_EQ(ReadBytes("LIST.KSX"), data);
    db_.Close();
  }
}

TEST_F(DataBaseTest, TooLargeARecordIsAProgrammingError) {
  EXPECT_THROW(ksDataBase("BIG", kMaxRecordSize + 1, L.Keys()), std::logic_error);
  EXPECT_NO_THROW(ksDataBase("BIG", kMaxRecordSize, L.Keys()));
}

class DataBaseScreenTest : public test::VtTest {
 protected:
  DataBaseScreenTest() { record_extensions() = {"KSX", "IDX"}; }
  ~DataBaseScreenTest() override { record_extensions() = {}; }
  test::TempDir dir_;
};

TEST_F(DataBaseScreenTest, ACorruptFileareaFileIsReported) {
  const RecordFileDef& fa = FileDef(RecordFileId::kFAreas);
  dir_.Write("FAREAS.KSX", std::string(kFileRecSizeDefault + 1, 'x'));
  ksDataBase db("FAREAS", fa.RecordSize(), fa.keys);
  vt_.Keys("");
  EXPECT_THROW(db.Open(dir_.path()), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("The datafile is corrupt"));
  EXPECT_TRUE(vt_.Contains("Have you run the update utility?"));
  EXPECT_TRUE(vt_.Contains("Continue"));
}

TEST_F(DataBaseScreenTest, AnIndexPointingPastTheDataStopsThePackAndRestoresTheData) {
  record_extensions() = {"KSX", "IDX"};
  Bytes data;
  for (int i = 0; i < 12; ++i) data = test::Concat({data, L.Rec("R" + std::to_string(i), 1)});
  dir_.Write("LIST.KSX", std::string(data.begin(), data.end()));
  const Bytes bad = L.Entry("R1", 1, 40);
  dir_.Write("LIST.IDX", std::string(bad.begin(), bad.end()));
  vt_.Keys("<Enter>");
  EXPECT_THROW(PackDataFile(dir_.path(), "LIST", kSize, L.Keys()), ProgramHalt);
  EXPECT_EQ(*ReadWholeFile(dir_ / "LIST.KSX"), std::string(data.begin(), data.end()));
  EXPECT_FALSE(dir_.Has("LIST.$$$"));
  EXPECT_TRUE(vt_.Contains("Error found in data file. Rebuild index"));
  EXPECT_TRUE(vt_.Contains("files to repair the problem"));
}

}  // namespace
}  // namespace ks
