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

Key Words(std::initializer_list<std::uint16_t> words) {
  Key k;
  for (auto w : words) {
    k.push_back(static_cast<std::uint8_t>(w & 0xFF));
    k.push_back(static_cast<std::uint8_t>(w >> 8));
  }
  return k;
}

Key WithLength(Key k, std::uint8_t length) {
  k[0] = length;
  return k;
}

// The order the existing index files have, key kind by key kind.
TEST(KeyDef, ComparisonsGiveTheOrderOfExistingIndexFiles) {
  const KeySet tag = TagGroup();
  KeySet aka, lng, num, wrd;
  aka.Declare("address", Aka, 0, 8);
  lng.Declare("long", Long, 0, 4);
  num.Declare("int", Int, 0, 2);
  wrd.Declare("word", Wrd, 0, 2);
  const struct {
    const char* what;
    const KeySet& keys;
    Key a, b;
    int first, sign;
  } cases[] = {
      {"leftovers behind a string", tag, TagKey("AB", 1, 0), TagKey("AB", 1, 0x7A), 1, 0},
      {"shorter only through its missing character", tag, TagKey("AB", 1), TagKey("ABC", 1), 1, -1},
      {"the length byte is not compared", tag, TagKey("AB", 1), WithLength(TagKey("AB", 1), 3), 1,
       0},
      {"capitals before small letters", tag, TagKey("A", 1), TagKey("a", 1), 1, -1},
      {"a wild length reads no further than the field", tag, WithLength(TagKey("ABCDE", 1), 250),
       TagKey("ABCDE", 1), 1, 0},
      {"equal strings go on to the next key", tag, TagKey("X", 1), TagKey("X", 2), 1, -1},
      {"all keys equal", tag, TagKey("X", 2), TagKey("X", 2), 1, 0},
      {"from key 2 on only the group", tag, TagKey("A", 3), TagKey("Z", 3), 2, 0},
      {"from key 2 on, greater group", tag, TagKey("A", 4), TagKey("Z", 3), 2, 1},
      {"a key that is not declared is less", tag, TagKey("A", 4), TagKey("A", 4), 3, -1},
      {"address words little-endian", aka, Words({1, 0, 0, 0}), Words({256, 0, 0, 0}), 1, -1},
      {"address points", aka, Words({2, 280, 5555, 0}), Words({2, 280, 5555, 1}), 1, -1},
      {"address net before node", aka, Words({2, 300, 1, 0}), Words({2, 280, 9999, 0}), 1, 1},
      {"address high byte", aka, Words({2, 0x01FF, 0, 0}), Words({2, 0x0200, 0, 0}), 1, -1},
      {"equal addresses", aka, Words({3, 1, 1, 1}), Words({3, 1, 1, 1}), 1, 0},
      {"a long's low word first: 65536 before 1", lng, Words({0, 1}), Words({1, 0}), 1, -1},
      {"an int by bytes: 256 before 1", num, Words({256}), Words({1}), 1, -1},
      {"a word by value", wrd, Words({1}), Words({256}), 1, -1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Sign(c.keys.Compare(c.a.data(), c.b.data(), c.first)), c.sign) << c.what;
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
