#include <gtest/gtest.h>

#include "dbase/fileecho_rec.h"
#include "dbase/record_common.h"
#include "import_samples.h"
#include "transfer/import_parse.h"

namespace ks {
namespace {

using test::SampleArea;

const NetAddr kA{2, 280, 1, 0}, kB{2, 280, 2, 0}, kC{1, 105, 3, 4};

std::vector<SampleArea> Areas() {
  return {{"LINUX", "Linux talk", "/msg/linux", 3, {kA, kB}},
          {"PASS", "Passed on", "", 0, {kC}},
          {"", "unused", "", 2, {}}};
}

TEST(ImportBinaryTest, GechoAreasGroupsBasesAndConnections) {
  for (const bool v120 : {false, true}) {
    for (const std::uint16_t rec : {244, 242}) {
      if (v120 && rec == 242) continue;
      const std::string file = test::GechoFile(Areas(), 4, v120 ? 7 : 'C', rec);
      const ImportList l = v120 ? ParseGecho120(file) : ParseGecho100(file);
      ASSERT_TRUE(l.ok()) << l.error;
      ASSERT_EQ(l.areas.size(), 2u);
      const ImportArea& a = l.areas[0];
      EXPECT_EQ(a.tag, "LINUX");
      EXPECT_EQ(a.description, "Linux talk");
      EXPECT_EQ(a.origin, "Origin of LINUX");
      EXPECT_EQ(a.base_type, mbJam);
      EXPECT_EQ(a.base_path, "/msg/linux");
      EXPECT_EQ(a.group, v120 ? 7 : 3);
      EXPECT_EQ(a.msgs, 500);
      EXPECT_EQ(a.days, 30);
      EXPECT_TRUE(a.visible);
      ASSERT_EQ(a.links.size(), 2u);
      EXPECT_EQ(a.links[0].address, kA);
      EXPECT_EQ(a.links[0].flags, kSysSendFiles);  // "no mail from" that system
      EXPECT_EQ(a.links[1].flags, DefaultLinkFlags());
      EXPECT_TRUE(l.areas[1].passthrough);
    }
  }
}

TEST(ImportBinaryTest, FastEchoAreasLinkedThroughTheNodesBitmaps) {
  auto areas = Areas();
  areas[0].format = 2;                                   // Squish
  areas[1].format = 7;                                   // pass-through
  areas.push_back({"NETMAIL", "", "/net", 0x11, {kA}});  // a netmail area is no echo
  const auto l = ParseFastEcho146(test::FastEchoFile({kA, kB, kC}, areas, 100));
  ASSERT_TRUE(l.ok()) << l.error;
  ASSERT_EQ(l.nodes.size(), 3u);
  EXPECT_EQ(l.nodes[0].pkt_password, "PKT0");
  ASSERT_EQ(l.areas.size(), 2u);
  EXPECT_EQ(l.areas[0].base_type, mbSquish);
  EXPECT_EQ(l.areas[0].group, 3);
  EXPECT_EQ(l.areas[0].days, 14);
  ASSERT_EQ(l.areas[0].links.size(), 2u);
  EXPECT_EQ(l.areas[0].links[1].address, kB);
  EXPECT_TRUE(l.areas[1].passthrough);
  ASSERT_EQ(l.areas[1].links.size(), 1u);
  EXPECT_EQ(l.areas[1].links[0].address, kC);
}

TEST(ImportBinaryTest, FmailOldAndNewLayouts) {
  auto areas = Areas();
  areas[0].format = 0;
  areas[1].format = 12;  // Hudson board 12
  for (const bool new_layout : {false, true}) {
    const auto l = ParseFmailAr(test::FmailFile(areas, new_layout));
    ASSERT_TRUE(l.ok()) << l.error;
    ASSERT_EQ(l.areas.size(), 2u);
    EXPECT_EQ(l.areas[0].base_type, mbJam);
    EXPECT_EQ(l.areas[0].group, 4);
    ASSERT_EQ(l.areas[0].links.size(), 2u);
    EXPECT_EQ(l.areas[0].links[0].flags,
              new_layout ? DefaultLinkFlags() | kSysMandatory : DefaultLinkFlags());
    EXPECT_EQ(l.areas[1].base_type, mbHudson);
    EXPECT_EQ(l.areas[1].board, 12);
  }
}

// Records a file marks as removed, deleted or local are passed over, the rest still read.
TEST(ImportBinaryTest, RemovedDeletedAndLocalAreasAreLeftOut) {
  auto poke = [](std::string s, std::size_t at, std::uint8_t bit) {
    s[at] = static_cast<char>(s[at] | bit);
    return s;
  };
  const std::size_t ge_second = 6 + (244 + 4 * 9);
  const std::size_t fe_first = 4644 + 96;  // one node record of 95 + 1 bitmap bytes
  const std::size_t fm_second = 50 + 1024;
  const std::vector<ImportList> lists = {
      ParseGecho120(poke(test::GechoFile(Areas(), 4, 1), ge_second + 227, 0x10)),
      ParseGecho120(poke(test::GechoFile(Areas(), 4, 1), ge_second + 241, 1)),  // netmail
      ParseFastEcho146(poke(test::FastEchoFile({kA}, Areas()), fe_first + 53, 0x80)),
      ParseFmailAr(poke(test::FmailFile(Areas(), false), fm_second + 107, 0x01)),
  };
  for (const auto& l : lists) {
    ASSERT_TRUE(l.ok()) << l.error;
    ASSERT_EQ(l.areas.size(), 1u);
  }
  EXPECT_EQ(lists[2].areas[0].tag, "PASS");
  EXPECT_EQ(lists[3].areas[0].tag, "LINUX");
}

// Every damaged file is refused with its fault; none is read past its end.
TEST(ImportBinaryTest, DamagedFilesAreRefusedWithTheirFault) {
  const std::string ge = test::GechoFile(Areas(), 4, 1);
  const std::string fe = test::FastEchoFile({kA}, Areas());
  const std::string fm = test::FmailFile(Areas(), false);
  auto with = [](std::string s, std::size_t at, std::string bytes) {
    s.replace(at, bytes.size(), bytes);
    return s;
  };
  struct Case {
    ImportList list;
    const char* error;
  } cases[] = {
      {ParseGecho120(ge.substr(0, ge.size() - 1)), "record 3 is cut short"},
      {ParseGecho120(ge.substr(0, 4)), "the file is too short for its header"},
      {ParseGecho120(with(ge, 2, "\xF2")), "area record size 242 is not that of GEcho 1.20 (244)"},
      {ParseGecho100(with(ge, 2, "\x10")),
       "area record size 16 is not that of GEcho 1.00 (242 or 244)"},
      {ParseGecho100(with(ge, 0, std::string("\xFF\xFF", 2))), "header size 65535 is wrong"},
      {ParseGecho100(with(ge, 4, std::string("\xFF\xFF", 2))), "record 1 is cut short"},
      {ParseFastEcho146(fe.substr(0, 4000)), "the file is too short: 4000 of at least 4644 bytes"},
      {ParseFastEcho146(with(fe, 0, "\x05")), "revision 5 is not that of FastEcho 1.42-1.46 (6)"},
      {ParseFastEcho146(fe.substr(0, fe.size() - 1)),
       "the file is cut short: 5309 of 5310 bytes for 1 nodes and 3 areas"},
      {ParseFastEcho146(with(fe, 8, std::string("\xFF\xFF", 2))),
       "the file is cut short: 5310 of 12456390 bytes for 1 nodes and 65535 areas"},
      {ParseFastEcho146(with(fe, 0x1220, "\xFF\xFF\xFF\xFF")),
       "the file is cut short: 5310 of 4294972605 bytes for 1 nodes and 3 areas"},
      {ParseFastEcho146(with(fe, 0x1216, std::string("\x10\x00", 2))),
       "area record size 16 is below 190"},
      {ParseFastEcho146(with(fe, 0x121A, std::string("\xFF\xFF", 2))),
       "node record size 96 is too small for 65535 areas"},
      {ParseFmailAr(fm.substr(0, 49)), "the file is too short for its header"},
      {ParseFmailAr(with(fm, 0, "GMail")), "the file does not begin with \"FMail\""},
      {ParseFmailAr(with(fm, 32, std::string("\x00\x02", 2))),
       "revision 2.0 is not known (1.0 and 1.16 are)"},
      {ParseFmailAr(with(fm, 34, "\x01")), "the file is not an FMail area file"},
      {ParseFmailAr(fm.substr(0, fm.size() - 1)), "record 3 of 3 is cut short"},
      {ParseFmailAr(with(fm, 50 + 1024, "XX")), "record 2 does not begin with \"AE\""},
      {ParseFmailAr(with(fm, 48, std::string("\x10\x00", 2))), "record size 16 is too small"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.list.error, c.error);
    EXPECT_TRUE(c.list.areas.empty()) << c.error;
  }
}

}  // namespace
}  // namespace ks
