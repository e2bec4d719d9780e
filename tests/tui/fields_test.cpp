// The field input engine: drawing a page, moving between fields, the editing of every kind,
// and what reaches the record when a value is accepted, refused or left with Esc.

#include "tui/fields.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "common/groupset.h"
#include "common/halt.h"
#include "common/netaddr.h"
#include "common/pstr.h"
#include "tempdir.h"
#include "tui/keys.h"
#include "tui/picklist.h"
#include "vt_fixture.h"

namespace ks {
namespace {

#pragma pack(push, 1)
struct Rec {
  PStr<6> code;
  PStr<10> name;
  std::uint16_t days;
  std::int16_t temp;
  std::uint8_t group;
  double rate;
  NetAddr aka;
  std::uint16_t zone, net;
  std::uint16_t after_net;  // must survive a zone:net field
  PStr<60> path;
  std::uint16_t flags;
  std::uint8_t mode;
  GroupSet groups;
  PStr<3> ext;
  std::uint32_t big;
};
#pragma pack(pop)

constexpr int kLeft = 1, kTop = 5, kValueCol = 20;

FieldDef Field(SortType type, std::size_t offset, int row, std::uint8_t size = 0) {
  FieldDef f;
  f.type = type;
  f.offset = static_cast<std::uint16_t>(offset);
  f.size = size;
  f.row = row;
  f.col = kValueCol;
  f.prompt = "Field " + std::to_string(row);
  f.help = "Help of field " + std::to_string(row);
  return f;
}

FieldDef Days(int row = 0) {
  FieldDef f = Field(Wrd, offsetof(Rec, days), row, 2);
  f.high = 365;
  return f;
}

class FieldsTest : public test::VtTest {
 protected:
  void TearDown() override { group_source() = nullptr; }

  std::uint8_t* bytes() { return reinterpret_cast<std::uint8_t*>(&rec_); }

  // Runs the page on `keys`, which must leave it and be used up.
  PageResult Run(EditPage& page, const std::string& keys, int first = 0) {
    vt_.Keys(keys);
    const PageResult r = page.Run(bytes(), kLeft, kTop, first);
    EXPECT_EQ(vt_.KeysLeft(), 0u) << keys;
    return r;
  }
  PageResult Run(FieldDef f, const std::string& keys) {
    EditPage page({std::move(f)});
    return Run(page, keys);
  }
  // Runs the page until the script is used up, to look at the screen in the middle.
  // A box open when the script ran out stays on the screen, so the screen is cleared first.
  void RunUntilEnd(EditPage& page, const std::string& keys) {
    screen_.FillRect(1, 1, screen_.Width(), screen_.Height(), ' ', 0x07);
    vt_.Keys(keys);
    EXPECT_THROW(page.Run(bytes(), kLeft, kTop), KeysExhausted) << keys;
    Sync();
  }
  std::string Value(int row, int width) {
    return Row(kTop + row).substr(kLeft + kValueCol - 1, static_cast<std::size_t>(width));
  }

  Rec rec_{};
};

TEST_F(FieldsTest, RefusedNumberKeepsTheTypedTextAndTheCursor) {
  FieldDef temp = Field(Int, offsetof(Rec, temp), 1, 2);
  temp.low = -50;
  temp.high = 50;
  EditPage page({Days(), temp});
  rec_.days = 10;

  RunUntilEnd(page, "<C-Y>400<Enter>");
  EXPECT_TRUE(vt_.Contains("Value must be between 0 and 365"));
  // The box closes on the kept "400"; two backspaces leave "4".
  EXPECT_EQ(Run(page, "<C-Y>400<Enter><Enter><BS><BS>5<Enter><Esc>").field, 1);
  EXPECT_EQ(rec_.days + 0, 45);

  // A minus only in front, and only where the range goes below zero.
  Run(page, "<Down><C-Y>-<Enter><Enter><C-Y>1-2<Enter><Esc>");
  EXPECT_EQ(rec_.temp + 0, 12);
  Run(page, "<Down><C-Y>-51<Enter><Enter><BS>0<Enter><Esc>");
  EXPECT_EQ(rec_.temp + 0, -50);
  Run(page, "<C-Y>-7<Enter><Esc>");
  EXPECT_EQ(rec_.days + 0, 7);

  // Esc writes an acceptable value and drops a refused one.
  EXPECT_EQ(Run(page, "<C-Y>999<Esc>").key, key::kEsc);
  EXPECT_EQ(rec_.days + 0, 7);
  Run(page, "<C-Y>77<Esc>");
  EXPECT_EQ(rec_.days + 0, 77);
}

TEST_F(FieldsTest, NumbersOfEveryWidth) {
  Run(Field(Long, offsetof(Rec, big), 0, 4), "<C-Y>4000000000<Enter><Esc>");
  EXPECT_EQ(rec_.big + 0, 4000000000u);
  rec_.group = 200;
  Run(Field(Int, offsetof(Rec, group), 0, 1), "<BS>5<Enter><Esc>");  // one byte: unsigned
  EXPECT_EQ(rec_.group, 205);
  Run(Field(Int, offsetof(Rec, group), 0, 1), "<C-Y>256<Enter><Enter><C-Y>255<Enter><Esc>");
  EXPECT_EQ(rec_.group, 255);
}

TEST_F(FieldsTest, StringPicturesCapitalsAndExtensions) {
  FieldDef code = Field(Str, offsetof(Rec, code), 0, 6);
  code.picture = "!!##@-";
  FieldDef name = Field(Str, offsetof(Rec, name), 1, 10);
  name.upper = true;
  EditPage page({code, name, Field(Ext, offsetof(Rec, ext), 2, 3)});
  // x and 3 stand where a digit and a letter belong and are ignored.
  Run(page, "abx123c?z<Enter>abc<Enter>b.a k<Enter><Esc>");
  EXPECT_EQ(rec_.code.str(), "AB12c?");
  EXPECT_EQ(rec_.name.str(), "ABC");
  EXPECT_EQ(rec_.ext.str(), "BAK");
}

TEST_F(FieldsTest, Reals) {
  FieldDef rate = Field(Rel, offsetof(Rec, rate), 0);
  rate.picture = "###.##";
  EditPage page({rate});
  Run(page, "<C-Y>12.5<Enter><Esc>");
  EXPECT_EQ(rec_.rate, 12.5);
  EXPECT_EQ(Value(0, 7), "12.50  ");

  RunUntilEnd(page, "<C-Y>1000<Enter>");
  EXPECT_TRUE(vt_.Contains("Value must be between 0.00 and 999.99"));
  Run(page, "<C-Y>1.2.3<Enter><Enter><C-Y>999.99<Enter><Esc>");
  EXPECT_EQ(rec_.rate, 999.99);
}

TEST_F(FieldsTest, DefinitionErrors) {
  // A string picture of the wrong length ends the program.
  FieldDef code = Field(Str, offsetof(Rec, code), 0, 6);
  code.picture = "!!!";
  vt_.Keys("");
  EXPECT_THROW(EditPage({code}), KeysExhausted);
  EXPECT_TRUE(OnScreen("Definition-error 01: Picture-length <> String-length"));
  vt_.Keys("<Enter>");
  try {
    EditPage page({code});
    ADD_FAILURE() << "no halt";
  } catch (const ProgramHalt& h) {
    EXPECT_EQ(h.status, 0);
  }

  // A real with one digit before the period is refused, and the field is never edited.
  FieldDef rate = Field(Rel, offsetof(Rec, rate), 0);
  rate.picture = "#.##";
  vt_.Keys("");
  EXPECT_THROW(EditPage({rate}), KeysExhausted);
  EXPECT_TRUE(OnScreen("Number of digits before the period must be greater than 1"));

  vt_.Keys("<Enter>");
  EditPage page({rate, Days(1)});
  page.exit_keys.set(key::kF10);
  EXPECT_EQ(Run(page, "<Tab><F10>").field, 1);
  EXPECT_EQ(Value(0, 4), "0.00");
}

TEST_F(FieldsTest, Addresses) {
  FieldDef aka = Field(Aka, offsetof(Rec, aka), 0);
  FieldDef zn = Field(Aka, offsetof(Rec, zone), 1);
  zn.zone_net = true;
  EditPage page({aka, zn});
  Run(page, "<C-Y>2:28x0/5555.1<Enter><Esc>");
  EXPECT_EQ(rec_.aka, (NetAddr{2, 280, 5555, 1}));
  EXPECT_EQ(Value(0, 13), "2:280/5555.1 ");

  rec_.aka = {1, 2, 3, 0};
  RunUntilEnd(page, "<C-Y>2:280<Enter>");
  EXPECT_TRUE(vt_.Contains("Invalid address"));
  Run(page, "<C-Y>2:280<Enter><Enter><Esc>");
  EXPECT_EQ(rec_.aka, (NetAddr{1, 2, 3, 0}));

  rec_.after_net = 0xBEEF;
  Run(page, "<Down><C-Y>2:280/1<Enter><Esc>");  // "/" is no part of a zone:net
  EXPECT_EQ(rec_.zone + 0, 2);
  EXPECT_EQ(rec_.net + 0, 2801);
  EXPECT_EQ(rec_.after_net + 0, 0xBEEF);
  RunUntilEnd(page, "<Down><C-Y>2<Enter>");
  EXPECT_TRUE(vt_.Contains("Invalid zone:net"));

  Run(page, "<C-Y><Enter><Esc>");  // clearing removes the address
  EXPECT_EQ(rec_.aka, NetAddr{});
}

TEST_F(FieldsTest, PathsGetASlashAndAFailedCreateKeepsTheCursor) {
  test::TempDir tmp;
  FieldDef path = Field(Path, offsetof(Rec, path), 0, 60);
  path.width = 40;
  EditPage page({path});
  // Yes to "Create directory?" is the end-to-end fileecho case.
  std::string existing = tmp.path();
  existing.pop_back();
  Run(page, "<C-Y>" + existing + "<Enter><Esc>");  // no question
  EXPECT_EQ(rec_.path.str(), tmp.path());

  // A file in the way: the directory cannot be made and the cursor stays; No then takes the
  // path as typed.
  tmp.Write("file", "x");
  RunUntilEnd(page, "<C-Y>" + (tmp / "file/sub") + "<Enter><Enter>");
  EXPECT_TRUE(vt_.Contains("Error creating directory"));
  Run(page, "<C-Y>" + (tmp / "file/sub") + "<Enter><Enter><Enter><C-Y>" + (tmp / "new") +
                "<Enter><Tab><Enter><Esc>");
  EXPECT_EQ(rec_.path.str(), tmp / "new/");
  EXPECT_FALSE(tmp.Has("new"));
}

TEST_F(FieldsTest, YesNoInMaskedBitsLeavesTheOtherBitsAlone) {
  FieldDef flag = Field(Bol, offsetof(Rec, flags), 0, 2);
  flag.mask = 0x0100;
  EditPage page({flag});
  rec_.flags = 0xA0F5;
  struct Case {
    const char* keys;
    std::uint16_t flags;
    const char* shown;
  } cases[] = {{"<Space>", 0xA1F5, "Yes"},
               {"n", 0xA0F5, "No "},
               {"Y", 0xA1F5, "Yes"},
               {"-", 0xA0F5, "No "},
               {"+", 0xA1F5, "Yes"}};
  for (const auto& c : cases) {
    Run(page, std::string(c.keys) + "<Esc>");
    EXPECT_EQ(rec_.flags + 0, c.flags) << c.keys;
    EXPECT_EQ(Value(0, 3), c.shown) << c.keys;
  }
  Run(Field(Bol, offsetof(Rec, mode), 0), "<Space><Esc>");
  EXPECT_EQ(rec_.mode, 1);
}

TEST_F(FieldsTest, ChoicesInMaskedBitsStepAndWrap) {
  FieldDef mode = Field(Chrs, offsetof(Rec, mode), 0, 1);
  mode.mask = 0x0C;
  mode.choices = {"Low", "Mid", "High"};
  EditPage page({mode});
  rec_.mode = 0x07;  // "Mid" and two bits of something else
  Run(page, "<Space><Esc>");
  EXPECT_EQ(Value(0, 4), "High");
  Run(page, "+<Esc>");
  EXPECT_EQ(rec_.mode, 0x03);
  Run(page, "-<Esc>");
  EXPECT_EQ(rec_.mode, 0x0B);
}

TEST_F(FieldsTest, NavigationWrapsAndSkipsFieldsThatDoNotApply) {
  std::vector<FieldDef> fields;
  for (int i = 0; i < 5; ++i) fields.push_back(Days(i));
  fields[2].applies = [](const std::uint8_t*) { return false; };
  EditPage page(fields);
  page.exit_keys.set(key::kF10);
  struct Case {
    const char* keys;
    int field;
  } cases[] = {
      {"<Down><Down>", 3},   {"<Tab><Tab><Tab>", 4}, {"<Enter>", 1},      {"<Up>", 4},
      {"<S-Tab><S-Tab>", 3}, {"<PgDn><PgUp>", 0},    {"<PgDn><Down>", 0}, {"<PgDn><Up><Up>", 1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Run(page, std::string(c.keys) + "<F10>").field, c.field) << c.keys;
  vt_.Keys("<F10>");
  EXPECT_EQ(page.Run(bytes(), kLeft, kTop, 2).field, 3);
  EXPECT_EQ(Value(2, 4), "n/a ");

  // The current field in the input colour, its help on the status line.
  RunUntilEnd(page, "<Down>");
  EXPECT_EQ(vt_.At(kLeft + kValueCol, kTop + 1).attr, ui().colours[kDataInput]);
  EXPECT_TRUE(vt_.Contains("Help of field 1"));
}

TEST_F(FieldsTest, ToggleChangesWhichFieldsApplyAtOnce) {
  FieldDef flag = Field(Bol, offsetof(Rec, mode), 0);
  FieldDef days = Days(1);
  days.applies = [](const std::uint8_t* rec) { return reinterpret_cast<const Rec*>(rec)->mode; };
  EditPage page({flag, days});
  page.exit_keys.set(key::kF10);
  RunUntilEnd(page, "");
  EXPECT_EQ(Value(1, 3), "n/a");
  EXPECT_EQ(Run(page, "<Down><F10>").field, 0);
  EXPECT_EQ(Run(page, "y<Down><F10>").field, 1);
  EXPECT_EQ(Value(1, 3), "0  ");
}

TEST_F(FieldsTest, ExitKeysAndFurtherKeys) {
  EditPage page({Days(0), Days(1)});
  page.exit_keys.set(key::kF10);
  std::vector<std::pair<int, int>> calls;  // field, days as the key found them
  page.on_key = [&](std::uint8_t scan, int field, std::uint8_t* rec) {
    if (scan != key::kF5) return false;
    auto* r = reinterpret_cast<Rec*>(rec);
    calls.emplace_back(field, static_cast<int>(r->days));
    r->days = 300;
    return true;
  };
  EXPECT_EQ(Run(page, "<Down><F10>").key, key::kF10);
  // The typed value is written before the key sees the record; a refused one keeps it away.
  EXPECT_EQ(Run(page, "<Down><C-Y>77<F5><F6><C-Y>999<F5><Enter><Esc>").key, key::kEsc);
  EXPECT_EQ(calls, (std::vector<std::pair<int, int>>{{1, 77}}));
  EXPECT_EQ(Value(0, 3), "300");
  EXPECT_EQ(Value(1, 3), "300");
}

TEST_F(FieldsTest, DrawsPromptsMarksAndValues) {
  FieldDef name = Field(Str, offsetof(Rec, name), 0, 10);
  name.mark = "+-";
  name.prompt_col = 4;
  FieldDef flag = Field(Bol, offsetof(Rec, mode), 1);
  FieldDef aka = Field(Aka, offsetof(Rec, aka), 2);
  aka.na_when_empty = true;
  FieldDef action = Field(Str, 0, 3);
  action.select = [](std::uint8_t*) { return false; };
  action.show = [](const std::uint8_t* rec) { return "shows " + ReadPStr(rec, 6); };
  EditPage page({name, flag, aka, action});
  rec_.name = "abc";
  rec_.code = "xyz";
  rec_.mode = 1;
  page.Draw(bytes(), kLeft, kTop);
  EXPECT_EQ(Row(kTop).substr(kLeft + 3, 9), "+-Field 0");
  EXPECT_EQ(Value(0, 11), "abc        ");
  EXPECT_EQ(Value(1, 3), "Yes");
  EXPECT_EQ(Value(2, 4), "n/a ");
  EXPECT_EQ(Value(3, 10), "shows xyz ");
  // A field is hit over its whole width and no further.
  EXPECT_EQ(page.FieldAt(kValueCol + 9, 0), 0);
  EXPECT_EQ(page.FieldAt(kValueCol + 10, 0), -1);
}

TEST_F(FieldsTest, ActionFieldsSelectWithEnterSpaceAndF2) {
  int selected = 0;
  FieldDef action = Field(Str, 0, 0);
  action.select = [&](std::uint8_t* rec) {
    reinterpret_cast<Rec*>(rec)->code = "n" + std::to_string(++selected);
    return true;
  };
  action.show = [](const std::uint8_t* rec) { return ReadPStr(rec, 6); };
  EditPage page({action, Days(1)});
  page.exit_keys.set(key::kF10);
  EXPECT_EQ(Run(page, "<Enter><Space><F2><F10>").field, 0);  // Enter stays on the field
  EXPECT_EQ(selected, 3);
  EXPECT_EQ(Value(0, 3), "n3 ");
}

// Space on a group field opens the group list (marking a group set through a field is the
// list editor tests').
TEST_F(FieldsTest, GroupFromThePickList) {
  group_source() = [] { return std::vector<GroupName>{{1, "One"}, {5, "Five"}, {9, "Nine"}}; };
  FieldDef group = Field(Int, offsetof(Rec, group), 0, 1);
  group.group = true;
  group.low = 1;
  group.high = 255;
  rec_.group = 1;
  Run(group, "<Space><Down><Enter><Enter><Esc>");
  EXPECT_EQ(rec_.group, 5);
}

}  // namespace
}  // namespace ks
