// Pick lists: moving and paging without fetching more rows than are shown, marks, the search
// prompt, empty lists, and the group and file area lists built on them.

#include "tui/picklist.h"

#include <cstdio>

#include "vt_fixture.h"

namespace ks {
namespace {

std::string Numbered(int i) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "Row %04d", i);
  return buf;
}

class PickListTest : public test::VtTest {
 protected:
  // A list of `count` rows "Row 0000".. that counts the rows it is asked for.
  PickList Rows(int count) {
    PickList l;
    l.title = "Rows";
    l.count = count;
    l.row = [this](int i) {
      ++fetched_;
      return Numbered(i);
    };
    return l;
  }
  PickList Names(const std::vector<std::string>& names) {
    PickList l;
    l.title = "Names";
    l.count = static_cast<int>(names.size());
    l.row = [names](int i) { return names[static_cast<std::size_t>(i)]; };
    return l;
  }
  int Run(PickList& l, const std::string& keys) {
    vt_.Keys(keys);
    return RunPickList(l);
  }
  // What the terminal showed when the key script ran out: the boxes closed as the exception
  // left them, but the screen was not sent again.
  bool Shown(const std::string& text) const { return vt_.Contains(text); }

  int fetched_ = 0;
};

// 80x25: rows 5..23 hold the box, 17 rows of list between its frame lines.
constexpr int kPage = 17;

TEST_F(PickListTest, ArrowsPagesAndEndsMoveTheHighlight) {
  struct Case {
    const char* keys;
    int start, result;
  } cases[] = {
      {"<Down><Down><Up><Enter>", 0, 1},
      {"<Up><Enter>", 0, 0},
      {"<Down><PgDn><Enter>", 0, 1 + kPage},
      {"<End><Down><Enter>", 0, 999},
      {"<End><PgUp><Up><Enter>", 0, 981},
      {"<Home><Enter>", 500, 0},
      {"<PgUp><Enter>", 5, 0},
      {"<PgDn><Enter>", 990, 999},
      {"<Enter>", 5000, 999},  // a start beyond the end is clamped
  };
  for (const auto& c : cases) {
    PickList l = Rows(1000);
    l.current = c.start;
    EXPECT_EQ(Run(l, c.keys), c.result) << c.keys;
    EXPECT_EQ(l.current, c.result) << c.keys;
    EXPECT_EQ(vt_.KeysLeft(), 0u) << c.keys;
  }
  PickList l = Rows(1000);
  EXPECT_EQ(Run(l, "<Down><Esc>"), -1);
  EXPECT_EQ(l.current, 1);
}

TEST_F(PickListTest, FetchesOnlyTheRowsThatComeIntoView) {
  PickList l = Rows(1000);
  for (int i = 0; i < kPage - 1; ++i) vt_.Keys("<Down>");
  EXPECT_THROW(RunPickList(l), KeysExhausted);
  EXPECT_EQ(fetched_, kPage);  // the highlight moved down the page: nothing new to fetch
  EXPECT_TRUE(Shown("Row 0016"));
  EXPECT_FALSE(Shown("Row 0017"));

  fetched_ = 0;
  l.current = 0;
  for (int i = 0; i < kPage + 1; ++i) vt_.Keys("<Down>");
  EXPECT_EQ(Run(l, "<Enter>"), kPage + 1);
  EXPECT_EQ(fetched_, kPage + 2);  // one new row per step past the bottom
}

TEST_F(PickListTest, StartsWithTheCurrentRowHighlighted) {
  PickList l = Rows(1000);
  l.current = 500;
  EXPECT_THROW(RunPickList(l), KeysExhausted);
  EXPECT_EQ(vt_.AttrOf("Row 0500"), ui().colours[kWindowSelect]);
}

TEST_F(PickListTest, ShortListFitsItsRowsAndRestoresTheScreen) {
  screen_.FillRect(1, 1, 80, 25, 0xB1, 0x07);
  const std::string before = Dump();
  PickList l = Names({"one", "two", "three"});
  l.title = "Choose";
  l.key_line = "~Enter~-choose";
  l.header = "Name";
  vt_.Keys("<Down>");
  EXPECT_THROW(RunPickList(l), KeysExhausted);
  EXPECT_TRUE(Shown("Enter-choose"));
  // Frame, header, three rows, frame.
  int header_row = 0;
  for (int y = 1; y <= 25; ++y)
    if (vt_.Row(y).find("Name") != std::string::npos) header_row = y;
  ASSERT_GT(header_row, 1);
  EXPECT_NE(vt_.Row(header_row + 4).find('\xC8'), std::string::npos);  // bottom-left corner

  EXPECT_EQ(Run(l, "<Esc>"), -1);
  EXPECT_TRUE(Dump() == before);
}

TEST_F(PickListTest, SpaceAndF2MarkRows) {
  std::vector<bool> marks(5);
  PickList l = Rows(5);
  l.marks = &marks;
  EXPECT_EQ(Run(l, "<Space><Down><Space><Esc>"), -1);  // Space moves down
  EXPECT_EQ(marks, (std::vector<bool>{true, false, true, false, false}));
  EXPECT_EQ(l.current, 3);

  l.current = 0;
  EXPECT_EQ(Run(l, "<Space><Enter>"), 1);  // Enter ends a multi list too, marks kept
  EXPECT_EQ(marks, (std::vector<bool>{false, false, true, false, false}));

  EXPECT_EQ(Run(l, "<F2><Esc>"), -1);
  EXPECT_EQ(marks, std::vector<bool>(5, true));
  EXPECT_EQ(Run(l, "<F2><Esc>"), -1);  // all marked: F2 unmarks all
  EXPECT_EQ(marks, std::vector<bool>(5, false));

  l.current = 4;
  EXPECT_EQ(Run(l, "<Space><Space><Esc>"), -1);  // the last row stays the current one
  EXPECT_FALSE(marks[4]);
}

TEST_F(PickListTest, TypingSearchesFromTheNextRowAndWraps) {
  PickList l = Names({"Alpha", "beta", "  Gamma", "alpine", "Delta"});
  struct Case {
    const char* keys;
    int start, result;
  } cases[] = {
      {"al<Enter><Enter>", 0, 3},  // not the current row first
      {"al<Enter><Enter>", 3, 0},  // round to the top
      {"GA<Enter><Enter>", 0, 2},  // case folded, leading blanks skipped
      {"b<Enter>al<Enter><Enter>", 0, 3},
      {"alq<BS>p<Enter><Enter>", 3, 0},  // the prompt is an ordinary entry line
      {"d<Esc><Enter>", 1, 1},           // Esc leaves the prompt without searching
      {"a<BS><Enter><Enter>", 1, 1},
  };
  for (const auto& c : cases) {
    l.current = c.start;
    EXPECT_EQ(Run(l, c.keys), c.result) << c.keys;
    EXPECT_EQ(vt_.KeysLeft(), 0u) << c.keys;
  }
}

TEST_F(PickListTest, SearchNotFound) {
  PickList l = Names({"Alpha", "beta"});
  vt_.Keys("xyz<Enter>");
  EXPECT_THROW(RunPickList(l), KeysExhausted);
  EXPECT_TRUE(Shown("Unable to find entry"));

  l.current = 1;
  EXPECT_EQ(Run(l, "xyz<Enter><Enter><Enter>"), 1);  // the box is closed, nothing moved
}

TEST_F(PickListTest, OwnSearchIsAskedFromTheNextRow) {
  PickList l = Rows(100);
  std::string asked;
  int from = -1;
  l.search = [&](std::string_view text, int f) {
    asked = text;
    from = f;
    return 42;
  };
  l.current = 7;
  EXPECT_EQ(Run(l, "4x<Enter><Enter>"), 42);
  EXPECT_EQ(asked, "4x");
  EXPECT_EQ(from, 8);
  EXPECT_LT(fetched_, 3 * kPage);  // the default scan did not run

  l.current = 99;
  l.search = [&](std::string_view, int f) {
    from = f;
    return -1;
  };
  EXPECT_EQ(Run(l, "q<Enter><Enter><Enter>"), 99);
  EXPECT_EQ(from, 0);
}

TEST_F(PickListTest, EmptyListShowsItsMessage) {
  PickList l = Rows(0);
  l.empty_message = "Nothing here";
  vt_.Keys("<Tab>");
  EXPECT_THROW(RunPickList(l), KeysExhausted);
  EXPECT_TRUE(Shown("Nothing here"));
  EXPECT_EQ(Run(l, "<Enter>"), -1);

  PickList quiet = Rows(0);
  EXPECT_EQ(RunPickList(quiet), -1);  // no message: no key read
  EXPECT_EQ(fetched_, 0);
}

// --- Groups and file areas -----------------------------------------------------------------

class PickSourceTest : public PickListTest {
 protected:
  void SetUp() override {
    group_source() = [] {
      return std::vector<GroupName>{{20, "Twenty"}, {5, "Five"}, {7, "Seven"}, {200, "Many"}};
    };
  }
  void TearDown() override {
    group_source() = nullptr;
    file_area_source() = nullptr;
  }
};

TEST_F(PickSourceTest, PickGroupStartsOnTheCurrentSortedByNumberAndSearchesByIt) {
  const struct {
    const char* keys;
    int current;
    std::optional<std::uint8_t> picked;
  } cases[] = {{"<Down><Enter>", 7, 20},
               {"<Enter>", 8, 20},
               {"<Home><Enter>", 200, 5},
               {"<Esc>", 5, std::nullopt},
               {"20<Enter><Enter>", 20, 200}};  // the search starts after the current row
  for (const auto& c : cases) {
    vt_.Keys(c.keys);
    EXPECT_EQ(PickGroup(static_cast<std::uint8_t>(c.current)), c.picked) << c.keys;
  }
}

TEST_F(PickSourceTest, PickGroupsEditsTheSetAndShowsItsMarks) {
  GroupSet set;
  set.Add(20);
  vt_.Keys("<Down>");
  EXPECT_THROW(PickGroups(set), KeysExhausted);
  EXPECT_TRUE(Shown("   Group   Group name"));
  EXPECT_TRUE(Shown("\xFB     20   Twenty") && Shown("        5   Five"));
  set = GroupSet{};
  set.Add(7);
  set.Add(100);                     // not a defined group: left alone
  vt_.Keys("<Space><Space><Esc>");  // marks 5, unmarks 7
  EXPECT_TRUE(PickGroups(set));
  EXPECT_EQ(GroupSetText(set), "5,100");
  vt_.Keys("<Space><Up><Space><Esc>");  // back to where it was
  EXPECT_FALSE(PickGroups(set));
  vt_.Keys("<F2><Esc>");
  EXPECT_TRUE(PickGroups(set));
  EXPECT_EQ(GroupSetText(set), "5,7,20,100,200");
}

TEST_F(PickSourceTest, NothingDefined) {
  group_source() = nullptr;
  file_area_source() = [] { return std::vector<FileAreaName>{}; };
  GroupSet groups;
  groups.Add(3);
  FileAreaSet areas;

  vt_.Keys("<Tab>");
  EXPECT_THROW(PickGroup(0), KeysExhausted);
  EXPECT_TRUE(Shown("There are no groups defined"));
  vt_.Keys("<Enter>");
  EXPECT_EQ(PickGroup(0), std::nullopt);
  vt_.Keys("<Enter>");
  EXPECT_FALSE(PickGroups(groups));
  EXPECT_TRUE(groups.Has(3));

  vt_.Keys("<Enter>");
  EXPECT_FALSE(PickFileAreas(areas));
  vt_.Keys("<Tab>");
  EXPECT_THROW(PickFileArea(0), KeysExhausted);
  EXPECT_TRUE(Shown("There are no file areas defined"));
}

TEST(GroupSetText, RangesOfThreeOrMore) {
  struct Case {
    std::vector<int> groups;
    const char* text;
  } cases[] = {
      {{}, ""},
      {{1, 2, 3, 7, 9, 10}, "1-3,7,9,10"},
      {{0, 1, 2, 3, 255}, "0-3,255"},
      {{253, 254, 255}, "253-255"},
  };
  for (const auto& c : cases) {
    GroupSet set;
    for (int g : c.groups) set.Add(static_cast<std::uint8_t>(g));
    EXPECT_EQ(GroupSetText(set), c.text);
  }
  GroupSet all;
  for (int g = 0; g < 256; ++g) all.Add(static_cast<std::uint8_t>(g));
  EXPECT_EQ(GroupSetText(all), "0-255");
}

}  // namespace
}  // namespace ks
