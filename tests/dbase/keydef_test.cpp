#include "dbase/keydef.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace ks {
namespace {

using Key = std::vector<std::uint8_t>;

// A key of one string field of capacity 5 (6 bytes) and one byte.
KeySet TagGroup() {
  KeySet k;
  k.Declare("tag", Str, 0, 6);
  k.Declare("group", Int, 10, 1);
  return k;
}

Key TagKey(const char* tag, std::uint8_t group, std::uint8_t filler = 0) {
  Key k(7, filler);
  k[0] = static_cast<std::uint8_t>(std::strlen(tag));
  std::memcpy(&k[1], tag, std::strlen(tag));
  k[6] = group;
  return k;
}

int Sign(int v) {
  return (v > 0) - (v < 0);
}

TEST(KeyDef, DeclarationsRunTheKeyOffsetsAndIgnoreASixthKey) {
  KeySet k;
  for (int i = 0; i < 6; ++i) k.Declare("k", Int, static_cast<std::uint16_t>(i * 3), 2);
  EXPECT_EQ(k.count(), 5);
  EXPECT_EQ(k.length(), 10u);
  EXPECT_EQ(k.entry_size(), 12u);
  EXPECT_EQ(k[4].key_offset, 8);
  EXPECT_EQ(k[4].number, 5);
  EXPECT_TRUE(k[0].first);
  EXPECT_FALSE(k[1].first);
}

TEST(KeyDef, StringsIgnoreTheLengthByteAndWhatLiesBehindTheLength) {
  const KeySet k = TagGroup();
  // Leftovers behind a shorter string never matter.
  EXPECT_EQ(k.Compare(TagKey("AB", 1, 0x00).data(), TagKey("AB", 1, 0x7A).data()), 0);
  // The length byte itself is not compared: a shorter string is less only through the zero
  // that stands for its missing character.
  EXPECT_LT(k.Compare(TagKey("AB", 1).data(), TagKey("ABC", 1).data()), 0);
  Key ab_with_nul = TagKey("AB", 1);
  ab_with_nul[0] = 3;  // "AB\0" equals "AB"
  EXPECT_EQ(k.Compare(TagKey("AB", 1).data(), ab_with_nul.data()), 0);
  // Byte-exact: capitals sort before small letters.
  EXPECT_LT(k.Compare(TagKey("A", 1).data(), TagKey("a", 1).data()), 0);
  // A garbage length larger than the field reads no further than the field.
  Key wild = TagKey("ABCDE", 1);
  wild[0] = 250;
  EXPECT_EQ(k.Compare(wild.data(), TagKey("ABCDE", 1).data()), 0);
}

TEST(KeyDef, EqualFieldsGoOnToTheNextKeyAndALaterStartSkipsEarlierKeys) {
  const KeySet k = TagGroup();
  EXPECT_LT(k.Compare(TagKey("X", 1).data(), TagKey("X", 2).data()), 0);
  EXPECT_EQ(k.Compare(TagKey("X", 2).data(), TagKey("X", 2).data()), 0);
  // From key 2 on, only the group counts.
  EXPECT_EQ(k.Compare(TagKey("A", 3).data(), TagKey("Z", 3).data(), 2), 0);
  EXPECT_GT(k.Compare(TagKey("A", 4).data(), TagKey("Z", 3).data(), 2), 0);
  // A key number that is not declared compares as less.
  EXPECT_LT(k.Compare(TagKey("A", 4).data(), TagKey("A", 4).data(), 3), 0);
}

Key Words(std::initializer_list<std::uint16_t> words) {
  Key k;
  for (auto w : words) {
    k.push_back(static_cast<std::uint8_t>(w & 0xFF));
    k.push_back(static_cast<std::uint8_t>(w >> 8));
  }
  return k;
}

TEST(KeyDef, AddressesCompareAsLittleEndianWordsInZoneNetNodePointOrder) {
  KeySet k;
  k.Declare("address", Aka, 0, 8);
  auto cmp = [&](Key a, Key b) { return Sign(k.Compare(a.data(), b.data())); };
  EXPECT_EQ(cmp(Words({1, 0, 0, 0}), Words({256, 0, 0, 0})), -1);  // low byte 1 > 0, high decides
  EXPECT_EQ(cmp(Words({2, 280, 5555, 0}), Words({2, 280, 5555, 1})), -1);  // points differ
  EXPECT_EQ(cmp(Words({2, 300, 1, 0}), Words({2, 280, 9999, 0})), 1);
  EXPECT_EQ(cmp(Words({2, 0x01FF, 0, 0}), Words({2, 0x0200, 0, 0})), -1);
  EXPECT_EQ(cmp(Words({3, 1, 1, 1}), Words({3, 1, 1, 1})), 0);
}

TEST(KeyDef, LongsOrderByTheirLowWordFirstAndOtherTypesByBytes) {
  KeySet l;
  l.Declare("long", Long, 0, 4);
  // 65536 (low word 0) sorts before 1 (low word 1): the order existing index files have.
  EXPECT_LT(l.Compare(Words({0, 1}).data(), Words({1, 0}).data()), 0);
  KeySet i;
  i.Declare("int", Int, 0, 2);
  // Plain byte order: 256 (00 01) before 1 (01 00).
  EXPECT_LT(i.Compare(Words({256}).data(), Words({1}).data()), 0);
  KeySet w;
  w.Declare("word", Wrd, 0, 2);
  EXPECT_LT(w.Compare(Words({1}).data(), Words({256}).data()), 0);
}

TEST(KeyDef, KeysAreCopiedFromTheRecordAndAnAllZeroKeyIsEmpty) {
  const KeySet k = TagGroup();
  EXPECT_EQ(k.record_extent(), 11u);
  std::vector<std::uint8_t> rec(20, 0);
  rec[0] = 2;
  rec[1] = 'F';
  rec[2] = 'E';
  rec[10] = 9;
  Key key(7, 0xEE);
  k.MakeKey(rec.data(), key.data());
  EXPECT_EQ(key, TagKey("FE", 9));
  EXPECT_FALSE(k.KeyEmpty(key.data()));
  EXPECT_TRUE(k.KeyEmpty(Key(7, 0).data()));
}

}  // namespace
}  // namespace ks
