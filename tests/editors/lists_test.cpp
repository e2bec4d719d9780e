// The simple lists: entries typed into each page land at the right bytes of the record and
// index files, and the checks refuse what the processor could not use, on the right field.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "dbase/fileecho_rec.h"
#include "editors/common_fields.h"
#include "editors/editor_fixture.h"
#include "editors/list_checks.h"

namespace ks {
namespace {

using test::kAdd;
using test::kSave;

class ListsTest : public test::EditorTest {
 protected:
  ListsTest() {
    ctx_.addresses.push_back({2, 280, 5556, 0});
    file_area_source() = [] {
      return std::vector<FileAreaName>{
          {1, "/bbs/a/", "One"}, {2, "/bbs/b/", "Two"}, {3, "/bbs/c/", "Three"}};
    };
  }
};

TEST_F(ListsTest, FileFindAreaIsWrittenWhereTheFormatSaysAndNeedsAScanArea) {
  // Without a scan area: a warning; declined, the cursor is on "Scan".
  Stop(RunFileFindAreas, std::string(kAdd) + "Utilities" + kSave);
  EXPECT_TRUE(Shown("Choose the message area to scan"));
  EXPECT_TRUE(Shown("Save anyway?"));
  Stop(RunFileFindAreas, std::string(kAdd) + "Utilities" + kSave + "<Esc>");
  EXPECT_TRUE(StatusHas("Msg area to scan for FileFind requests"));
  EXPECT_EQ(dir_.Read("AREAS.KSX"), "");

  Run(RunFileFindAreas, std::string(kAdd) + "Utilities<Enter>" +
                            "<Enter><Space><Space><Enter>/fido/msg/ffind<Enter><Esc>"  // Squish
                            "<Down><Down><Enter><Space><Down><Space><Enter>"  // areas 1 and 3
                            "<Down>My BBS<Enter><Enter><Down><Enter>"         // Origin; Use aka 1
                            "<Down>FFIND.APL<Enter><BS>25<Enter>Y" +
                            kSave + "<Esc>");
  const auto r = dir_.Record<AreaMGRRec>("AREAS.KSX");
  EXPECT_EQ(r.comment.str(), "Utilities");
  EXPECT_EQ(r.scan.type, mbSquish);
  EXPECT_EQ(r.scan.path.str(), "/fido/msg/ffind");
  EXPECT_EQ(r.reply.type, mbNone);
  EXPECT_TRUE(r.fileAreas.Has(1) && !r.fileAreas.Has(2) && r.fileAreas.Has(3));
  EXPECT_EQ(r.origin.str(), "My BBS");
  EXPECT_EQ(r.useAka, 1);
  EXPECT_EQ(r.templateFile.str(), "FFIND.APL");
  EXPECT_EQ(std::int16_t{r.maxFiles}, 25);
  EXPECT_EQ(r.inactive, 1);
  const std::string idx = dir_.Read("AREAS.IDX");
  EXPECT_EQ(idx.size(), sizeof(AreaMgrIdx));
  EXPECT_EQ(idx.substr(0, 10), "\x09Utilities");
}

TEST_F(ListsTest, NewFileReportWithExportList) {
  Run(RunNewFileReports, std::string(kAdd) +
                             "<Space><Space><Space><Esc>"               // groups 1 and 2
                             "<Down><Down><Down><Down><Down>"           // to "Msg area"
                             "<Enter><Space><Enter><BS>12<Enter><Esc>"  // Hudson board 12
                             "<Down><Down><Down><Down>"                 // to "Export"
                             "<Enter><Enter>2:280/1<Esc><Down><Enter>1:2/3<Esc>"
                             "<Up><Enter><C-Y><Esc><Esc>" +  // clearing the first removes it
                             kSave +
                             "<Esc>");
  const auto r = dir_.Record<NewFileMgrRec>("REPORTS.KSX");
  EXPECT_TRUE(r.groups.Has(1) && r.groups.Has(2) && !r.groups.Has(3));
  EXPECT_EQ(r.from.str(), "KESTRA");
  EXPECT_EQ(r.to.str(), "All");
  EXPECT_EQ(r.subject.str(), "New files");
  EXPECT_EQ(r.area.type, mbHudson);
  EXPECT_EQ(std::uint16_t{r.area.board}, 12);
  EXPECT_EQ(r.exports[0], (NetAddr{1, 2, 3, 0}));  // the used slots close up
  EXPECT_FALSE(r.exports[1].IsSet());
  const std::string idx = dir_.Read("REPORTS.IDX");
  ASSERT_EQ(idx.size(), sizeof(NewFileMgrIdx));
  EXPECT_EQ(static_cast<std::uint8_t>(idx[0]), 0x06);  // groups 1 and 2
  EXPECT_EQ(idx[32], 0);                               // not inactive
}

TEST_F(ListsTest, BbsFileAreasAllfilesAndHatchEntries) {
  Run(RunBbsFileAreas, std::string(kAdd) + "Net files<Enter><Space><Down><Enter><Enter>" +
                           "<Enter><Down><Space><Enter>" + kSave + "<Esc>");
  const auto bbs = dir_.Record<BbsAreaMgrRec>("BBSAREAS.KSX");
  EXPECT_EQ(bbs.comment.str(), "Net files");
  EXPECT_EQ(bbs.group, 2);
  EXPECT_TRUE(!bbs.areas.Has(1) && bbs.areas.Has(2));
  // The index holds the group first, then the description.
  EXPECT_EQ(dir_.Read("BBSAREAS.IDX").substr(0, 11), std::string("\x02\x09Net files", 11));

  Run(RunAllfilesLists, std::string(kAdd) + "all<Enter><BS>30<Enter>/bbs/allfiles.txt<Enter>" +
                            "allfiles<Enter><Enter><F2><Enter>" + kSave + "<Esc>");
  const auto all = dir_.Record<AllfilesMgrRec>("ALLFILES.KSX");
  EXPECT_EQ(all.tag.str(), "ALL");
  EXPECT_EQ(std::uint16_t{all.age}, 30);
  EXPECT_EQ(all.listPath.str(), "/bbs/allfiles.txt");
  EXPECT_EQ(all.templateFile.str(), "allfiles");
  EXPECT_TRUE(all.fileAreas.Has(1) && all.fileAreas.Has(2) && all.fileAreas.Has(3));

  Run(RunHatchManager, std::string(kAdd) +
                           "nodelist<Enter>/files/nodelist.*<Enter>NODELIST.*<Enter>" +
                           "NODELIST<Enter>The nodelist<Enter>" +
                           "<Enter>N<PgDn>N<Esc>"  // every day but Sunday and Saturday
                           "<Down>Y" +
                           kSave + "<Esc>");
  // A second file for the same fileecho is no duplicate.
  Run(RunHatchManager, "<Ins>nodelist<Enter>/files/nodediff.*" + std::string(kSave) + "<Esc>");
  EXPECT_EQ(dir_.Read("HATCH.IDX").size(), 2 * sizeof(HatchMgrIdx));
  const auto h = dir_.Record<HatchMGRrec>("HATCH.KSX");
  EXPECT_EQ(h.area.str(), "NODELIST");
  EXPECT_EQ(h.fileSpec.str(), "/files/nodelist.*");
  EXPECT_EQ(h.replaces.str(), "NODELIST.*");
  EXPECT_EQ(h.magic.str(), "NODELIST");
  EXPECT_EQ(h.description.str(), "The nodelist");
  EXPECT_EQ(h.days, 0x3E);
  EXPECT_EQ(h.always, 1);
  EXPECT_EQ(h.copy, 0);
  EXPECT_EQ(h.inactive, 0);
}

TEST_F(ListsTest, EchomailAreaAndItsTagAcrossGroups) {
  ctx_.systems_per_area = 10;
  const std::size_t size = EchoRecordSize(10);
  // The same tag in another group is refused on the tag, but an area keeps its own tag when
  // it is edited.
  const std::string again = "<Ins>fido.sysop<Down><Down><BS>5" + std::string(kSave);
  Run(RunEchomailManager,
      std::string(kAdd) + "fido.sysop<Enter>Sysops<Enter>3<Enter>" +
          "<Enter><Space><Space><Space><Enter>/msg/sysop<Enter><Esc>"  // JAM
          "<Down><Down><Down><BS>30<Enter><BS>500<Enter>"              // days, msgs
          "<Enter><Enter><Enter>N<Enter>Y" +  // past uplink, inactive, pass through
          kSave +
          again + "<Enter><Esc><Esc><Enter><Down><End>!" + kSave + "<Esc>");
  Stop(RunEchomailManager, again);
  EXPECT_TRUE(Shown("There is already an echomail area with this tag"));
  EXPECT_EQ(dir_.Read("MAREAS.KSX").size(), size);
  const auto r = dir_.Record<EchoMGRrec>("MAREAS.KSX", 0, size);
  EXPECT_EQ(r.tag.str(), "FIDO.SYSOP");
  EXPECT_EQ(r.description.str(), "Sysops!");
  EXPECT_EQ(r.group, 3);
  EXPECT_EQ(r.area.type, mbJam);
  EXPECT_EQ(r.area.path.str(), "/msg/sysop");
  EXPECT_EQ(std::uint16_t{r.daysToKeep}, 30);
  EXPECT_EQ(std::uint16_t{r.maxMsgs}, 500);
  EXPECT_EQ(std::uint16_t{r.options}, kEmSecurity);  // "Visible" switched off
}

TEST_F(ListsTest, RouteBytes) {
  Run(RunPackManager, std::string(kAdd) + "2:280/1<Enter>Hub<Enter>2:* 1:*<Enter>" +
                          "<Space><Enter><Enter><Space><Enter>secret<Enter>" + kSave + "<Esc>");
  const std::string data = dir_.Read("ROUTE.KSX");
  ASSERT_EQ(data.size(), sizeof(RouteMgrRec));
  EXPECT_EQ(data.substr(0, 8), std::string("\2\0\x18\1\1\0\0\0", 8));  // 2:280/1
  EXPECT_EQ(data[8], rfCrash);
  EXPECT_EQ(data[9], rpArcmail);
  EXPECT_EQ(data[10], 5);  // ZIP stepped on to SQZ
  EXPECT_EQ(data.substr(16, 4), "\x03Hub");
  EXPECT_EQ(data.substr(72, 7), "\x06SECRET");
  EXPECT_EQ(data.substr(81, 8), std::string("\x07") + "2:* 1:*");
  EXPECT_EQ(dir_.Read("ROUTE.IDX"), data.substr(0, 8) + std::string(2, '\0'));
}

TEST_F(ListsTest, UplinkRequestsAreViewedAndDeleted) {
  ::setenv("TZ", "UTC", 1);
  ::tzset();
  UplinkReqRec a, b;
  a.tag = "NODEDIFF";
  a.uplink = b.uplink = {2, 280, 1, 0};
  a.firstSent = 86400;  // 1970-01-02
  a.times = 2;
  b.tag = "ANTIVIR";
  dir_.Write("UPLREQ.KSX", std::string(reinterpret_cast<const char*>(&a), sizeof a) +
                               std::string(reinterpret_cast<const char*>(&b), sizeof b));
  Stop(RunUplinkRequests, "<Right>");  // to NODEDIFF, after ANTIVIR
  EXPECT_TRUE(Shown("1970-01-02 00:00") && Shown("Never"));
  EXPECT_TRUE(StatusHas("Delete F4-find F5-browse"));
  Run(RunUplinkRequests, "<Right><Enter><Ins><F6><Del><Right><Enter><Esc>");  // only Del acts
  EXPECT_FALSE(Shown("Adding new entry"));
  const std::string idx = dir_.Read("UPLREQ.IDX");
  EXPECT_EQ(idx.size(), sizeof(UplinkReqIdx));
  EXPECT_EQ(idx.substr(0, 8), std::string("\x07") + "ANTIVIR");
}

TEST_F(ListsTest, EchomailGlobalChangeSetsGroupAndSwitchesOnMarkedAreas) {
  ctx_.systems_per_area = 2;
  const std::size_t size = EchoRecordSize(2);
  std::vector<EchoMGRrec> recs(3);
  for (int i = 0; i < 3; ++i) {
    recs[i].tag = std::vector<const char*>{"A.ONE", "B.TWO", "C.THREE"}[i];
    recs[i].group = 1;
    recs[i].options = kEmVisible;
    recs[i].area.type = mbJam;
    recs[i].systems[0].address = {2, 280, 1, 0};
  }
  dir_.Insert(RecordFileId::kMAreas, recs, size);
  // Mark A.ONE and C.THREE; group 2, InActive on, Visible off.
  Stop(RunEchomailManager,
       "<F2><Space><Down><Space><Esc><Enter>"
       "2<Down><Space><Down><Down><Space><Space><Esc>");
  EXPECT_TRUE(Shown("2 of 2 marked areas changed"));
  const auto a = dir_.Record<EchoMGRrec>("MAREAS.KSX", 0, size);
  const auto b = dir_.Record<EchoMGRrec>("MAREAS.KSX", 1, size);
  const auto c = dir_.Record<EchoMGRrec>("MAREAS.KSX", 2, size);
  EXPECT_EQ(a.group + 0, 2);
  EXPECT_EQ(a.options + 0, kEmInactive);
  EXPECT_EQ(b.group + 0, 1) << "not marked";
  EXPECT_EQ(b.options + 0, kEmVisible);
  EXPECT_EQ(c.group + 0, 2);
  EXPECT_EQ(c.systems[0].address.net + 0, 280) << "connected systems left alone";
  // The same change again alters nothing, and says so.
  Stop(RunEchomailManager, "<F2><Space><Esc><Enter>2<Down><Space><Esc>");
  EXPECT_TRUE(Shown("0 of 1 marked areas changed"));
}

// A fresh setup has no BBS file areas yet: an ALLFILES list is saved once the warning is
// accepted.
TEST_F(ListsTest, AllfilesListWithoutFileAreasSavesAfterTheWarning) {
  file_area_source() = [] { return std::vector<FileAreaName>{}; };
  const std::string keys = std::string(kAdd) + "all<Enter><Enter>/bbs/allfiles.txt" + kSave;
  Stop(RunAllfilesLists, keys);
  EXPECT_TRUE(Shown("Choose the file areas to include in the listing"));
  Run(RunAllfilesLists, keys + "<Enter><Esc>");
  const auto all = dir_.Record<AllfilesMgrRec>("ALLFILES.KSX");
  EXPECT_EQ(all.tag.str(), "ALL");
  EXPECT_EQ(all.listPath.str(), "/bbs/allfiles.txt");
}

TEST(ListChecks, EachNamesTheFieldAtFault) {
  AreaMGRRec area;
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kComment);
  EXPECT_FALSE(CheckFileFindArea(area)->warning) << "an empty key loses the entry";
  area.comment = "x";
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kScan);
  EXPECT_TRUE(CheckFileFindArea(area)->warning);
  area.scan.type = mbHudson;  // board 0
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kScan);
  EXPECT_FALSE(CheckFileFindArea(area)->warning) << "the processor cannot read board 0";
  area.scan.board = 201;
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kScan);
  area.scan.board = 200;
  area.reply.type = mbJam;  // no path
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kReply);
  area.reply.type = mbNone;
  EXPECT_FALSE(CheckFileFindArea(area));

  NewFileMgrRec report;
  EXPECT_EQ(CheckNewFileReport(report)->field, report_page::kGroups);
  report.groups.Add(0);
  EXPECT_EQ(CheckNewFileReport(report)->field, report_page::kArea);
  report.exports[0] = {2, 280, 1, 0};  // netmail only is enough
  EXPECT_FALSE(CheckNewFileReport(report));

  BbsAreaMgrRec bbs;
  bbs.comment = "x";
  EXPECT_EQ(CheckBbsFileAreas(bbs)->field, bbsareas_page::kFileAreas);
  EXPECT_TRUE(CheckBbsFileAreas(bbs)->warning);
  bbs.areas.Set(63999, true);
  EXPECT_FALSE(CheckBbsFileAreas(bbs));

  AllfilesMgrRec all;
  all.tag = "ALL";
  EXPECT_EQ(CheckAllfilesList(all)->field, allfiles_page::kListing);

  HatchMGRrec hatch;
  hatch.area = "A";
  hatch.fileSpec = "f";
  EXPECT_EQ(CheckHatchEntry(hatch)->field, hatch_page::kDays);
  hatch.days = 0x80;  // not a day
  EXPECT_EQ(CheckHatchEntry(hatch)->field, hatch_page::kDays);

  EchoMGRrec echo;
  echo.tag = "A B";
  EXPECT_EQ(CheckEchomailArea(echo)->field, echomail_page::kTag);
  echo.tag = "AB";
  EXPECT_EQ(CheckEchomailArea(echo)->field, echomail_page::kArea);
  echo.options = kEmPassThrough;  // needs no message base
  EXPECT_FALSE(CheckEchomailArea(echo));

  RouteMgrRec route;
  EXPECT_EQ(CheckRoute(route)->field, route_page::kVia);
  route.via = {2, 280, 1, 0};
  route.nodes = "   ";
  EXPECT_EQ(CheckRoute(route)->field, route_page::kNodes);
  EXPECT_TRUE(CheckRoute(route)->warning);
  route.nodes = "2:* 2:*/5";
  EXPECT_EQ(CheckRoute(route)->message, "Invalid node mask: 2:*/5");
  EXPECT_FALSE(CheckRoute(route)->warning);
}

TEST(ListChecks, NodeMasksAndFileAreaSets) {
  for (const char* good : {"*", "2:*", "2:280/*", "2:280/5555", "2:280/5555.*", "2:280/5555.1"})
    EXPECT_TRUE(ValidNodeMask(good)) << good;
  for (const char* bad : {"", "2:", "2:*/1", "x:1", "2:280/65536", "2:280/1.2.3", "2/280"})
    EXPECT_FALSE(ValidNodeMask(bad)) << bad;
  EXPECT_EQ(BadNodeMask("  2:*   1:*  "), "");
  EXPECT_EQ(BadNodeMask("2:* 3:x 4:y"), "3:x");
  FileAreaSet set;
  EXPECT_EQ(FileAreaSetText(set), "");
  for (int n : {0, 7, 8, 9, 15, 16, 63998, 63999}) set.Set(n, true);
  EXPECT_EQ(FileAreaSetText(set), "0,7-9,15,16,63998,63999");
}

}  // namespace
}  // namespace ks
