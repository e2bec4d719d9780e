#include <gtest/gtest.h>

#include "dbase/fileecho_rec.h"
#include "dbase/record_common.h"
#include "transfer/import_parse.h"

namespace ks {
namespace {

const NetAddr kMain{2, 280, 5555, 0};

std::string Addrs(const ImportArea& a) {
  std::string s;
  for (const auto& l : a.links) s += (s.empty() ? "" : " ") + FormatAddr(l.address);
  return s;
}

TEST(ImportAddressTest, ShortenedAddressesTakeWhatIsLeftOutFromTheOneBefore) {
  struct Case {
    const char* text;
    const char* want;  // "" = refused
  } cases[] = {
      {"1:105/42.3", "1:105/42.3"},
      {"281/7", "2:281/7"},
      {"12", "2:280/12"},
      {".4", "2:280/5555.4"},
      {"12.1", "2:280/12.1"},
      {"2:280/1@fidonet", "2:280/1"},
      {"0:280/1", ""},
      {"2:280", ""},
      {"x/1", ""},
      {"70000", ""},
      {"", ""},
      {"2:/1", ""},
  };
  for (const auto& c : cases) {
    NetAddr previous = kMain, out;
    const bool ok = ParseRelativeAddr(c.text, previous, out);
    EXPECT_EQ(ok ? FormatAddr(out) : "", c.want) << c.text;
    EXPECT_EQ(previous, ok ? out : kMain) << c.text;
  }
  // A point is not carried over to the next address.
  NetAddr previous{2, 280, 1, 5}, out;
  ASSERT_TRUE(ParseRelativeAddr("7", previous, out));
  EXPECT_EQ(FormatAddr(out), "2:280/7");
}

TEST(ImportTextTest, TickAreasWithTheirSystemsFlagsAndPasswords) {
  const auto l = ParseTickCfg(
      "; TIC.CFG\r\nIN /in\r\nArea /files/nodediff NODEDIFF\r\n"
      "  2:280/1 secret *\r\n 3 pw C&\r\n 1:105/9 xy H\r\n"
      "AREA /pass PASSFILE passthru\r\n\r\n; end\r\n",
      kMain);
  ASSERT_TRUE(l.ok()) << l.error;
  EXPECT_TRUE(l.fileechos);
  EXPECT_EQ(l.max_links, 254u);
  ASSERT_EQ(l.areas.size(), 2u);
  const ImportArea& a = l.areas[0];
  EXPECT_EQ(a.tag, "NODEDIFF");
  EXPECT_EQ(a.directory, "/files/nodediff");
  EXPECT_FALSE(a.passthrough);
  EXPECT_EQ(Addrs(a), "2:280/1 2:280/3 1:105/9");
  EXPECT_EQ(a.links[0].password, "secret");
  ConnectedSystem s0{{}, a.links[0].flags}, s1{{}, a.links[1].flags}, s2{{}, a.links[2].flags};
  EXPECT_EQ(s0.flags, kSysSendFiles | kSysReceiveFiles);
  EXPECT_EQ(s1.flags & ~kSysStatusMask, 0);
  EXPECT_EQ(s1.status(), msCrash);
  EXPECT_EQ(s2.flags & ~kSysStatusMask, kSysSendFiles);
  EXPECT_EQ(s2.status(), msHold);
  EXPECT_TRUE(l.areas[1].passthrough);
}

TEST(ImportTextTest, FileboneAreasWithDescriptions) {
  const auto l = ParseFilebone(
      "% FILEBONE.NA\rArea FSX_NODE    0 !  Weekly Nodelists  \rArea  BARE\r"
      "area lower 0 ! x\rAreaX no 0 ! no\r");
  ASSERT_TRUE(l.ok());
  ASSERT_EQ(l.areas.size(), 3u);
  EXPECT_EQ(l.areas[0].tag, "FSX_NODE");
  EXPECT_EQ(l.areas[0].description, "Weekly Nodelists");
  EXPECT_EQ(l.areas[1].description, "");
  EXPECT_EQ(l.areas[2].tag, "lower");
}

TEST(ImportTextTest, SquishEchoAreasTheirBasesAndLinks) {
  const auto l = ParseSquishCfg(
      "Address 1:105/42\nAddress 2:280/1\nNetArea NETMAIL /msg/net\n"
      "EchoArea LINUX\t/msg/linux -$ -$m200 -$d30 105/7 8 .1 -x9 ; 3:1/1\n"
      "echoarea PASS /msg/pass -0 2:280/1\nECHOAREA OPASS /x -O\n",
      kMain);
  ASSERT_TRUE(l.ok()) << l.error;
  EXPECT_FALSE(l.fileechos);
  ASSERT_EQ(l.areas.size(), 3u);
  const ImportArea& a = l.areas[0];
  EXPECT_EQ(a.tag, "LINUX");
  EXPECT_EQ(a.base_type, mbSquish);
  EXPECT_EQ(a.base_path, "/msg/linux");
  EXPECT_EQ(a.msgs, 200);
  EXPECT_EQ(a.days, 30);
  EXPECT_EQ(Addrs(a), "1:105/7 1:105/8 1:105/8.1 1:105/9");
  EXPECT_EQ(a.links[3].flags, kSysSendFiles);
  EXPECT_TRUE(l.areas[1].passthrough);
  EXPECT_EQ(l.areas[1].base_type, mbNone);
  EXPECT_EQ(Addrs(l.areas[1]), "2:280/1");
  EXPECT_TRUE(l.areas[2].passthrough);
}

TEST(ImportTextTest, AreasBbsStoresAndNodes) {
  const auto l = ParseAreasBbs(
      "My BBS ! John Doe\n; comment\n/msg/local LOCAL 1:2/3 4 ; Local chat\n"
      "$/sq/x SQX\n!/jam/y JAMY\n#/p PASS1\nP PASS2\n42 HUDSON 3:1/1\n",
      kMain);
  ASSERT_TRUE(l.ok()) << l.error;
  ASSERT_EQ(l.areas.size(), 6u);
  EXPECT_EQ(l.areas[0].base_type, mbMsg);
  EXPECT_EQ(l.areas[0].description, "Local chat");
  EXPECT_EQ(Addrs(l.areas[0]), "1:2/3 1:2/4");
  EXPECT_EQ(l.areas[1].base_type, mbSquish);
  EXPECT_EQ(l.areas[1].base_path, "/sq/x");
  EXPECT_EQ(l.areas[2].base_type, mbJam);
  EXPECT_TRUE(l.areas[3].passthrough);
  EXPECT_TRUE(l.areas[4].passthrough);
  EXPECT_EQ(l.areas[5].base_type, mbHudson);
  EXPECT_EQ(l.areas[5].board, 42);
}

TEST(ImportTextTest, AFaultNamesItsLineAndNothingIsReturned) {
  struct Case {
    ImportList list;
    const char* error;
  } cases[] = {
      {ParseTickCfg("AREA /x X\r1:2/3 pw\r2:0/ pw\r", kMain), "line 3: invalid address \"2:0/\""},
      {ParseTickCfg("\n\nAREA onlydir\n", kMain), "line 3: AREA needs a directory and a tag"},
      {ParseSquishCfg("EchoArea A /a 0:1/1\n", kMain), "line 1: invalid address \"0:1/1\""},
      {ParseSquishCfg("\r\n\r\nEchoArea B\r\n", kMain), "line 3: EchoArea needs a tag and a path"},
      {ParseSquishCfg("Address nowhere\n", kMain), "line 1: invalid address \"nowhere\""},
      {ParseAreasBbs("o ! s\n201 X\n", kMain), "line 2: board 201 is not 1-200"},
      {ParseAreasBbs("o ! s\nLONELY\n", kMain), "line 2: a message base and a tag expected"},
      {ParseAreasBbs("o ! s\n/m TAG 1:2/x\n", kMain), "line 2: invalid address \"1:2/x\""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.list.error, c.error);
    EXPECT_TRUE(c.list.areas.empty()) << c.error;
  }
}

TEST(ImportTextTest, OddBytesAreReadAsTheyCome) {
  const std::string tag(200, 'T');
  const auto l = ParseAreasBbs("o ! s\n/m\t" + tag + "\t1:2/3\x1a\n/m \xC4rger\n", kMain);
  ASSERT_TRUE(l.ok()) << l.error;
  ASSERT_EQ(l.areas.size(), 2u);
  EXPECT_EQ(l.areas[0].tag, tag);  // cut to the record's 40 characters when added
  EXPECT_EQ(Addrs(l.areas[0]), "1:2/3");
  EXPECT_EQ(l.areas[1].tag, "\xC4rger");
  EXPECT_TRUE(ParseTickCfg("", kMain).areas.empty());
  EXPECT_TRUE(ParseFilebone("Area").areas.empty());
}

}  // namespace
}  // namespace ks
