#include "dbase/recordfile.h"

#include <gtest/gtest.h>

#include "pair_fixture.h"

namespace ks {
namespace {

using Tags = std::vector<std::string>;

FileMGRrec Fileecho(const std::string& tag, std::uint8_t group) {
  FileMGRrec r{};
  r.tag = tag;
  r.group = group;
  r.description = "about " + tag;
  return r;
}

class RecordFileTest : public test::PairTest {
 protected:
  // An empty FAREAS pair on disk, opened.
  void OpenEmpty() {
    dir_.Write("FAREAS.KSX", "");
    dir_.Write("FAREAS.IDX", "");
    ASSERT_TRUE(fa_.Open(dir_.path()));
  }
  std::vector<std::string> IndexTags() const {
    std::vector<std::string> tags;
    for (int i = 0; i < fa_.Count(); ++i) tags.push_back(fa_.GetIndex(i).tag.str());
    return tags;
  }

  TFAreasFile fa_;
};

// An open without both files, and Count and Find when closed, are the fuzz target's checks.
TEST_F(RecordFileTest, AClosedFileAnswersEverythingEmptyOrFalse) {
  FileMGRrec rec = Fileecho("X", 1);
  EXPECT_FALSE(fa_.ReadRecord(0, rec));
  EXPECT_FALSE(fa_.Add(rec));
  EXPECT_FALSE(fa_.Update(0, rec));
  EXPECT_FALSE(fa_.Delete(0));
  fa_.Rebuild();
  fa_.Pack();
  const FileMGRidx idx = fa_.GetIndex(0);
  EXPECT_EQ(idx.tag.len, 0);
  EXPECT_EQ(+idx.recno, 0);
  EXPECT_FALSE(dir_.Has("FAREAS.IDX"));
}

TEST_F(RecordFileTest, EqualKeysKeepTheirOrderAndAnUpdateResortsOnlyWhenTheKeyChanged) {
  OpenEmpty();
  ASSERT_TRUE(fa_.Add(Fileecho("SAME", 1)));
  ASSERT_TRUE(fa_.Add(Fileecho("B", 2)));
  ASSERT_TRUE(fa_.Add(Fileecho("same", 3)));  // equal when folded: after the first
  EXPECT_EQ(IndexTags(), (Tags{"B", "SAME", "same"}));

  // A change of letter case only: the record changes, the entry keeps its key, takes the group.
  ASSERT_TRUE(fa_.Update(0, Fileecho("b", 9)));
  EXPECT_EQ(fa_.GetIndex(0).tag.str(), "B");
  EXPECT_EQ(fa_.GetIndex(0).group, 9);
  FileMGRrec rec;
  ASSERT_TRUE(fa_.ReadRecord(0, rec));
  EXPECT_EQ(rec.tag.str(), "b");

  // A new key moves the entry.
  ASSERT_TRUE(fa_.Update(0, Fileecho("ZZ", 9)));
  EXPECT_EQ(IndexTags(), (Tags{"SAME", "same", "ZZ"}));
  fa_.Close();
  ASSERT_TRUE(fa_.Open(dir_.path()));  // saved to disk after every change
  EXPECT_EQ(IndexTags(), (Tags{"SAME", "same", "ZZ"}));
  EXPECT_EQ(fa_.GetIndex(2).recno + 0, 1);
}

TEST_F(RecordFileTest, AnAddThatCannotBeWrittenLeavesTheFileAsItWas) {
  OpenEmpty();
  ASSERT_TRUE(fa_.Add(Fileecho("KEEP", 1)));
  const std::string data = Read("FAREAS.KSX"), index = Read("FAREAS.IDX");
  {
    test::FileSizeLimit limit(kFileRecSizeDefault + 100);
    EXPECT_FALSE(fa_.Add(Fileecho("LOST", 1)));
  }
  EXPECT_EQ(fa_.Count(), 1);
  EXPECT_EQ(Read("FAREAS.KSX"), data);
  EXPECT_EQ(Read("FAREAS.IDX"), index);
}

TEST_F(RecordFileTest, FileechoRecordsFollowTheConfiguredNumberOfSystems) {
  TFAreasFile small(10);
  EXPECT_EQ(small.record_size(), FileechoRecordSize(10));
  dir_.Write("FAREAS.KSX", "");
  dir_.Write("FAREAS.IDX", "");
  ASSERT_TRUE(small.Open(dir_.path()));
  FileMGRrec rec = Fileecho("TEN", 1);
  rec.systems[9].address.zone = 2;
  rec.systems[10].address.zone = 3;  // beyond the configured slots: not stored
  ASSERT_TRUE(small.Add(rec));
  EXPECT_EQ(Read("FAREAS.KSX").size(), FileechoRecordSize(10));
  FileMGRrec back;
  ASSERT_TRUE(small.ReadRecord(0, back));
  EXPECT_EQ(back.systems[9].address.zone + 0, 2);
  EXPECT_EQ(back.systems[10].address.zone + 0, 0);
}

}  // namespace
}  // namespace ks
