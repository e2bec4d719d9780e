// The simple lists: entries typed into each page land at the right bytes of the record and
// index files, and the checks refuse what the processor could not use, on the right field.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "common/recordext.h"
#include "dbase/database.h"
#include "dbase/fileecho_rec.h"
#include "dbase/recfiles.h"
#include "editors/common_fields.h"
#include "editors/list_checks.h"
#include "editors/lists.h"
#include "tempdir.h"
#include "tui/picklist.h"
#include "vt_fixture.h"

namespace ks {
namespace {

class ListsTest : public test::VtTest {
 protected:
  ListsTest() {
    record_extensions() = {"KSX", "IDX"};
    ctx_.data_dir = ctx_.work_dir = dir_.path();
    ctx_.addresses = {{2, 280, 5555, 0}, {2, 280, 5556, 0}};
    group_source() = [] { return std::vector<GroupName>{{1, "Net"}, {2, "Utils"}}; };
    file_area_source() = [] {
      return std::vector<FileAreaName>{
          {1, "/bbs/a/", "One"}, {2, "/bbs/b/", "Two"}, {3, "/bbs/c/", "Three"}};
    };
  }
  ~ListsTest() override {
    group_source() = nullptr;
    file_area_source() = nullptr;
    record_extensions() = {};
  }

  std::string File(const std::string& name) {
    std::ifstream in(dir_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  // Record `n` of BASE.KSX as T (the data file must hold whole records of `size` bytes).
  template <class T>
  T Record(const std::string& base, int n = 0, std::size_t size = sizeof(T)) {
    const std::string data = File(base + ".KSX");
    EXPECT_EQ(data.size() % size, 0u) << base;
    T r;
    EXPECT_GE(data.size(), (n + 1) * size) << base;
    if (data.size() >= (n + 1) * size)
      std::memcpy(static_cast<void*>(&r), data.data() + n * size, std::min(size, sizeof r));
    return r;
  }
  // What the terminal showed when the key script ran out: the windows closed while the
  // editor unwound are not presented again.
  bool Shown(const std::string& text) const { return vt_.Contains(text); }
  std::string Status() const { return vt_.Row(25); }

  test::TempDir dir_;
  ListContext ctx_;
};

// Keys that answer "Would you like to add one?", and "Save changes?" after leaving a page.
constexpr const char* kAdd = "<Enter>";
constexpr const char* kSave = "<Esc><Enter>";

TEST_F(ListsTest, FileFindAreaIsWrittenWhereTheFormatSays) {
  vt_.Keys(std::string(kAdd) + "Utilities<Enter>" +
           "<Enter><Space><Space><Enter>/fido/msg/ffind<Enter><Esc>"  // Scan: Squish
           "<Down><Down><Enter><Space><Down><Space><Enter>"           // Fileareas 1 and 3
           "<Down>My BBS<Enter><Enter><Down><Enter>"                  // Origin; Use aka 1
           "<Down>FFIND.APL<Enter><BS>25<Enter>Y" +
           kSave + "<Esc>");
  RunFileFindAreas(ctx_);
  const auto r = Record<AreaMGRRec>("AREAS");
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
  const std::string idx = File("AREAS.IDX");
  ASSERT_EQ(idx.size(), sizeof(AreaMgrIdx));
  EXPECT_EQ(idx.substr(0, 10), std::string("\x09Utilities", 10));
  EXPECT_EQ(CompanionName(ctx_, "AREAS"), dir_ / "CAREAS_0.tmp");
  EXPECT_FALSE(dir_.Has("CAREAS_0.tmp"));  // the companion goes with the list
}

TEST_F(ListsTest, RefusedEntryReturnsToTheFieldAtFault) {
  // A FileFind area without a scan area: the message, then the cursor on "Scan".
  const std::string script = std::string(kAdd) + "Utilities" + kSave;
  vt_.Keys(script);
  EXPECT_THROW(RunFileFindAreas(ctx_), KeysExhausted);
  EXPECT_TRUE(Shown("Choose the message area to scan"));
  vt_.Keys(script + "<Enter>");
  EXPECT_THROW(RunFileFindAreas(ctx_), KeysExhausted);
  EXPECT_NE(Status().find("Msg area to scan for FileFind requests"), std::string::npos) << Status();
  EXPECT_EQ(File("AREAS.KSX"), "");
}

TEST_F(ListsTest, NewFileReportWithExportList) {
  vt_.Keys(std::string(kAdd) +
           "<Space><Space><Space><Esc>"               // groups 1 and 2
           "<Down><Down><Down><Down><Down>"           // to "Msg area"
           "<Enter><Space><Enter><BS>12<Enter><Esc>"  // Hudson board 12
           "<Down><Down><Down><Down>"                 // to "Export"
           "<Enter><Enter>2:280/1<Esc><Down><Enter>1:2/3<Esc>"
           "<Up><Enter><C-Y><Esc><Esc>" +  // clearing the first removes it
           kSave +
           "<Esc>");
  RunNewFileReports(ctx_);
  const auto r = Record<NewFileMgrRec>("REPORTS");
  EXPECT_TRUE(r.groups.Has(1) && r.groups.Has(2) && !r.groups.Has(3));
  EXPECT_EQ(r.from.str(), "KESTRA");
  EXPECT_EQ(r.to.str(), "All");
  EXPECT_EQ(r.subject.str(), "New files");
  EXPECT_EQ(r.area.type, mbHudson);
  EXPECT_EQ(std::uint16_t{r.area.board}, 12);
  EXPECT_EQ(r.exports[0], (NetAddr{1, 2, 3, 0}));  // the used slots close up
  EXPECT_FALSE(r.exports[1].IsSet());
  const std::string idx = File("REPORTS.IDX");
  ASSERT_EQ(idx.size(), sizeof(NewFileMgrIdx));
  EXPECT_EQ(static_cast<std::uint8_t>(idx[0]), 0x06);  // groups 1 and 2
  EXPECT_EQ(idx[32], 0);                               // not inactive
}

TEST_F(ListsTest, BbsFileAreasWithGroupAndAreas) {
  vt_.Keys(std::string(kAdd) + "Net files<Enter><Space><Down><Enter><Enter>" +
           "<Enter><Down><Space><Enter>" + kSave + "<Esc>");
  RunBbsFileAreas(ctx_);
  const auto r = Record<BbsAreaMgrRec>("BBSAREAS");
  EXPECT_EQ(r.comment.str(), "Net files");
  EXPECT_EQ(r.group, 2);
  EXPECT_TRUE(!r.areas.Has(1) && r.areas.Has(2));
  const std::string idx = File("BBSAREAS.IDX");
  ASSERT_EQ(idx.size(), sizeof(BbsAreaMgrIdx));
  EXPECT_EQ(idx[0], 2);  // group first, then the description
  EXPECT_EQ(idx.substr(1, 10), std::string("\x09Net files", 10));
}

TEST_F(ListsTest, AllfilesListing) {
  vt_.Keys(std::string(kAdd) + "all<Enter><BS>30<Enter>/bbs/allfiles.txt<Enter>" +
           "allfiles<Enter><Enter><F2><Enter>" + kSave + "<Esc>");
  RunAllfilesLists(ctx_);
  const auto r = Record<AllfilesMgrRec>("ALLFILES");
  EXPECT_EQ(r.tag.str(), "ALL");
  EXPECT_EQ(std::uint16_t{r.age}, 30);
  EXPECT_EQ(r.listPath.str(), "/bbs/allfiles.txt");
  EXPECT_EQ(r.templateFile.str(), "allfiles");
  EXPECT_TRUE(r.fileAreas.Has(1) && r.fileAreas.Has(2) && r.fileAreas.Has(3));
}

TEST_F(ListsTest, HatchEntryWithDays) {
  vt_.Keys(std::string(kAdd) + "nodelist<Enter>/files/nodelist.*<Enter>NODELIST.*<Enter>" +
           "NODELIST<Enter>The nodelist<Enter>" +
           "<Enter>N<PgDn>N<Esc>"  // every day but Sunday and Saturday
           "<Down>Y" +
           kSave + "<Esc>");
  RunHatchManager(ctx_);
  // A second file for the same fileecho is no duplicate.
  vt_.Keys("<Ins>nodelist<Enter>/files/nodediff.*" + std::string(kSave) + "<Esc>");
  RunHatchManager(ctx_);
  EXPECT_EQ(File("HATCH.IDX").size(), 2 * sizeof(HatchMgrIdx));
  const auto r = Record<HatchMGRrec>("HATCH");
  EXPECT_EQ(r.area.str(), "NODELIST");
  EXPECT_EQ(r.fileSpec.str(), "/files/nodelist.*");
  EXPECT_EQ(r.replaces.str(), "NODELIST.*");
  EXPECT_EQ(r.magic.str(), "NODELIST");
  EXPECT_EQ(r.description.str(), "The nodelist");
  EXPECT_EQ(r.days, 0x3E);
  EXPECT_EQ(r.always, 1);
  EXPECT_EQ(r.copy, 0);
  EXPECT_EQ(r.inactive, 0);
}

TEST_F(ListsTest, EchomailAreaAndItsTagAcrossGroups) {
  ctx_.systems_per_area = 10;
  const std::size_t size = EchoRecordSize(10);
  vt_.Keys(std::string(kAdd) + "fido.sysop<Enter>Sysops<Enter>3<Enter>" +
           "<Enter><Space><Space><Space><Enter>/msg/sysop<Enter><Esc>"  // JAM
           "<Down><Down><Down><BS>30<Enter><BS>500<Enter>"              // days, msgs
           "<Enter><Enter><Enter>N<Enter>Y" +  // past uplink, inactive, pass through
           kSave +
           // The same tag in another group is refused on the tag ...
           "<Ins>fido.sysop<Down><Down><BS>5" + kSave + "<Enter><Esc><Esc>" +
           // ... but an area keeps its own tag when it is edited.
           "<Enter><Down><End>!" + kSave + "<Esc>");
  RunEchomailManager(ctx_);
  EXPECT_EQ(File("MAREAS.KSX").size(), size);
  const auto r = Record<EchoMGRrec>("MAREAS", 0, size);
  EXPECT_EQ(r.tag.str(), "FIDO.SYSOP");
  EXPECT_EQ(r.description.str(), "Sysops!");
  EXPECT_EQ(r.group, 3);
  EXPECT_EQ(r.area.type, mbJam);
  EXPECT_EQ(r.area.path.str(), "/msg/sysop");
  EXPECT_EQ(std::uint16_t{r.daysToKeep}, 30);
  EXPECT_EQ(std::uint16_t{r.maxMsgs}, 500);
  EXPECT_EQ(std::uint16_t{r.options}, kEmSecurity);  // "Visible" switched off
}

TEST_F(ListsTest, EchomailTagTakenIsShown) {
  vt_.Keys(std::string(kAdd) + "A<Down><Down><Down><Down><Down>" +  // to "Pass through"
           "<Down><Down><Down><Down><Down>Y" + kSave + "<Ins>A<Down><Down>7" + kSave);
  EXPECT_THROW(RunEchomailManager(ctx_), KeysExhausted);
  EXPECT_TRUE(Shown("There is already an echomail area with this tag"));
}

TEST_F(ListsTest, RouteBytes) {
  vt_.Keys(std::string(kAdd) + "2:280/1<Enter>Hub<Enter>2:* 1:*<Enter>" +
           "<Space><Enter><Enter><Space><Enter>secret<Enter>" + kSave + "<Esc>");
  RunPackManager(ctx_);
  const std::string data = File("ROUTE.KSX");
  ASSERT_EQ(data.size(), sizeof(RouteMgrRec));
  EXPECT_EQ(data.substr(0, 8), std::string("\2\0\x18\1\1\0\0\0", 8));  // 2:280/1
  EXPECT_EQ(data[8], rfCrash);
  EXPECT_EQ(data[9], rpArcmail);
  EXPECT_EQ(data[10], 5);  // ZIP stepped on to SQZ
  EXPECT_EQ(data.substr(16, 4), "\x03Hub");
  EXPECT_EQ(data.substr(72, 7), "\x06SECRET");
  EXPECT_EQ(data.substr(81, 8),
            "\x07"
            "2:* 1:*");
  const std::string idx = File("ROUTE.IDX");
  EXPECT_EQ(idx, data.substr(0, 8) + std::string(2, '\0'));
}

TEST_F(ListsTest, UplinkRequestsAreViewedAndDeleted) {
  ::setenv("TZ", "UTC", 1);
  ::tzset();
  UplinkReqRec a, b;
  a.tag = "NODEDIFF";
  a.uplink = {2, 280, 1, 0};
  a.firstSent = 86400;  // 1970-01-02
  a.times = 2;
  b.tag = "ANTIVIR";
  b.uplink = {2, 280, 1, 0};
  std::string data(reinterpret_cast<const char*>(&a), sizeof a);
  data.append(reinterpret_cast<const char*>(&b), sizeof b);
  dir_.Write("UPLREQ.KSX", data);
  vt_.Keys("<Right>");  // to NODEDIFF, after ANTIVIR
  EXPECT_THROW(RunUplinkRequests(ctx_), KeysExhausted);
  EXPECT_TRUE(Shown("1970-01-02 00:00"));
  EXPECT_TRUE(Shown("Never"));
  EXPECT_NE(Status().find("Delete F4-find F5-browse"), std::string::npos) << Status();
  vt_.Keys("<Right><Enter><Ins><F6><Del><Right><Enter><Esc>");  // only Del does anything
  RunUplinkRequests(ctx_);
  EXPECT_FALSE(Shown("Adding new entry"));
  const std::string idx = File("UPLREQ.IDX");
  ASSERT_EQ(idx.size(), sizeof(UplinkReqIdx));
  EXPECT_EQ(idx.substr(0, 8),
            "\x07"
            "ANTIVIR");
}

TEST(ListChecks, EachNamesTheFieldAtFault) {
  AreaMGRRec area;
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kComment);
  area.comment = "x";
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kScan);
  area.scan.type = mbHudson;  // board 0
  EXPECT_EQ(CheckFileFindArea(area)->field, filefind_page::kScan);
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
  route.nodes = "2:* 2:*/5";
  EXPECT_EQ(CheckRoute(route)->message, "Invalid node mask: 2:*/5");
}

TEST(ListChecks, NodeMasks) {
  for (const char* good : {"*", "2:*", "2:280/*", "2:280/5555", "2:280/5555.*", "2:280/5555.1"})
    EXPECT_TRUE(ValidNodeMask(good)) << good;
  for (const char* bad : {"", "2:", "2:*/1", "x:1", "2:280/65536", "2:280/1.2.3", "2/280"})
    EXPECT_FALSE(ValidNodeMask(bad)) << bad;
  EXPECT_EQ(BadNodeMask("  2:*   1:*  "), "");
  EXPECT_EQ(BadNodeMask("2:* 3:x 4:y"), "3:x");
}

TEST(ListFields, FileAreaSetText) {
  FileAreaSet set;
  EXPECT_EQ(FileAreaSetText(set), "");
  for (int n : {0, 7, 8, 9, 15, 16, 63998, 63999}) set.Set(n, true);
  EXPECT_EQ(FileAreaSetText(set), "0,7-9,15,16,63998,63999");
}

TEST_F(ListsTest, EchomailGlobalChangeSetsGroupAndSwitchesOnMarkedAreas) {
  ctx_.systems_per_area = 2;
  const std::size_t size = EchoRecordSize(2);
  {
    ksDataBase db("MAREAS", size, FileDef(RecordFileId::kMAreas).keys);
    ASSERT_EQ(db.Open(dir_.path()), ksDataBase::OpenResult::kOk);
    for (const char* tag : {"A.ONE", "B.TWO", "C.THREE"}) {
      EchoMGRrec r{};
      r.tag = tag;
      r.group = 1;
      r.options = kEmVisible;
      r.area.type = mbJam;
      r.systems[0].address = {2, 280, 1, 0};
      ASSERT_TRUE(db.Insert(reinterpret_cast<const std::uint8_t*>(&r)));
    }
  }
  // Mark A.ONE and C.THREE; group 2, InActive on, Visible off.
  vt_.Keys("<F2><Space><Down><Space><Esc><Enter>"
           "2<Down><Space><Down><Down><Space><Space><Esc>");
  EXPECT_THROW(RunEchomailManager(ctx_), KeysExhausted);
  EXPECT_TRUE(Shown("2 of 2 marked areas changed"));
  const auto a = Record<EchoMGRrec>("MAREAS", 0, size);
  const auto b = Record<EchoMGRrec>("MAREAS", 1, size);
  const auto c = Record<EchoMGRrec>("MAREAS", 2, size);
  EXPECT_EQ(a.group + 0, 2);
  EXPECT_EQ(a.options + 0, kEmInactive);
  EXPECT_EQ(b.group + 0, 1) << "not marked";
  EXPECT_EQ(b.options + 0, kEmVisible);
  EXPECT_EQ(c.group + 0, 2);
  EXPECT_EQ(c.systems[0].address.net + 0, 280) << "connected systems left alone";
  // The same change again alters nothing, and says so.
  vt_.Keys("<F2><Space><Esc><Enter>2<Down><Space><Esc>");
  EXPECT_THROW(RunEchomailManager(ctx_), KeysExhausted);
  EXPECT_TRUE(Shown("0 of 1 marked areas changed"));
}

}  // namespace
}  // namespace ks
