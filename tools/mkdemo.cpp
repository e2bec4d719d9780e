// Makes a fresh demo program directory for `make run`: a setup.ksx with a main address and a
// few site details already set, a few entries in every list (fileechos, nodes, groups, hatch
// entries, magic file names, FileFind areas, reports, BBS file areas, ALLFILES lists, echomail
// areas, routes, uplink requests), a BBS file area list, and the help document beside it.
#include <filesystem>
#include <iostream>
#include <string>

#include "common/fileutil.h"
#include "common/recordext.h"
#include "dbase/bbsfileareas.h"
#include "dbase/database.h"
#include "dbase/recfiles.h"
#include "dbase/recordfile.h"
#include "dbase/route_rec.h"
#include "shell/setupfile.h"

namespace fs = std::filesystem;

namespace {

// Creates the empty pair of `file` in `dir`, opens it and adds every record.
template <class File, class Rec>
bool Fill(const std::string& dir, File& file, const std::vector<Rec>& records) {
  ks::WriteFileAtomic(ks::DataFileName(dir, file.base()), "");
  ks::WriteFileAtomic(ks::IndexFileName(dir, file.base()), "");
  if (!file.Open(dir)) return false;
  for (const Rec& r : records)
    if (!file.Add(r)) return false;
  file.Close();
  return true;
}

// Creates the pair `base` in `dir` with `keys` and inserts every record (of `size` bytes).
template <class Rec>
bool Insert(const std::string& dir, const std::string& base, std::size_t size,
            const ks::KeySet& keys, const std::vector<Rec>& records) {
  ks::ksDataBase db(base, size, keys);
  if (db.Open(dir) != ks::ksDataBase::OpenResult::kOk) return false;
  for (const Rec& r : records)
    if (!db.Insert(reinterpret_cast<const std::uint8_t*>(&r))) return false;
  return true;
}

template <class Rec>
bool Insert(const std::string& dir, ks::RecordFileId id, const std::vector<Rec>& records) {
  const ks::RecordFileDef& def = ks::FileDef(id);
  return Insert(dir, def.base, def.RecordSize(), def.keys, records);
}

// The lists the menu opens besides the fileecho system: one or two entries each.
bool WriteDemoLists(const std::string& dir) {
  ks::WriteFileAtomic(ks::BbsFileAreasFileName(dir),
                      "; BBS file areas, as the BBS's area compiler writes them\n"
                      "1   /bbs/files/utils     Utilities and tools\n"
                      "2   /bbs/files/nodelist  Nodelists\n"
                      "3   /bbs/files/linux     Linux\n"
                      "10  /bbs/files/new       New uploads\n");
  ks::AreaMGRRec ff{};
  ff.comment = "Local FileFind requests";
  ff.scan.type = ks::mbJam;
  ff.scan.path = "/var/spool/msgbase/filefind";
  ff.maxFiles = 20;
  for (int a : {1, 2, 3}) ff.fileAreas.Set(static_cast<std::size_t>(a), true);
  ks::NewFileMgrRec report{};
  report.groups.Add(1);
  report.groups.Add(2);
  report.from = "KESTRA";
  report.to = "All";
  report.subject = "New files this week";
  report.area.type = ks::mbJam;
  report.area.path = "/var/spool/msgbase/newfiles";
  ks::BbsAreaMgrRec bbs{};
  bbs.comment = "Uploads announced to FidoNet";
  bbs.group = 1;
  bbs.areas.Set(10, true);
  ks::AllfilesMgrRec all{};
  all.tag = "ALLFILES";
  all.listPath = "/var/spool/files/ALLFILES.TXT";
  for (int a : {1, 2, 3, 10}) all.fileAreas.Set(static_cast<std::size_t>(a), true);
  std::vector<ks::EchoMGRrec> echos(2);
  echos[0].tag = "FIDO.SYSOP";
  echos[0].description = "Sysops of the net";
  echos[0].group = 1;
  echos[1].tag = "LINUX.GENERAL";
  echos[1].description = "Linux talk";
  echos[1].group = 3;
  for (auto& e : echos) {
    e.area.type = ks::mbJam;
    e.area.path = "/var/spool/msgbase/" + e.tag.str();
    e.options = ks::kEmVisible;
    e.systems[0].address = {2, 280, 1, 0};
  }
  ks::RouteMgrRec route{};
  route.via = {2, 280, 1, 0};
  route.comment = "Everything else through the hub";
  route.nodes = "1:* 2:* 3:* 4:*";
  ks::UplinkReqRec req{};
  req.tag = "AMIGA";
  req.uplink = {2, 280, 1, 0};
  req.node = {2, 280, 77, 0};
  req.firstSent = req.lastSent = 1795000000;
  req.times = 1;
  return Insert(dir, ks::RecordFileId::kAreas, std::vector{ff}) &&
         Insert(dir, ks::RecordFileId::kReports, std::vector{report}) &&
         Insert(dir, ks::RecordFileId::kBbsAreas, std::vector{bbs}) &&
         Insert(dir, ks::RecordFileId::kAllfiles, std::vector{all}) &&
         Insert(dir, ks::RecordFileId::kMAreas, echos) &&
         Insert(dir, ks::kRouteBase, sizeof route, ks::RouteKeys(), std::vector{route}) &&
         Insert(dir, ks::kUplinkReqBase, sizeof req, ks::UplinkReqKeys(), std::vector{req});
}

bool WriteDemoRecords(const std::string& dir) {
  std::vector<ks::FileMGRrec> fileechos;
  const struct {
    const char* tag;
    const char* desc;
    std::uint8_t group;
  } echos[] = {{"NODELIST", "FidoNet nodelist, weekly", 1},
               {"NODEDIFF", "FidoNet nodelist differences", 1},
               {"FIDOSOFT", "FidoNet related software", 2},
               {"LINUX", "Linux distributions and tools", 3},
               {"HAMRADIO", "Amateur radio programs", 3}};
  for (const auto& e : echos) {
    ks::FileMGRrec r{};
    r.tag = e.tag;
    r.description = e.desc;
    r.group = e.group;
    r.destination = std::string("/var/spool/files/") + e.tag;
    r.options = ks::kFeAnnounce | ks::kFeDupeCheck | ks::kFeVisible;
    r.systems[0].address = {2, 280, 1, 0};
    r.systems[0].flags = ks::kSysSendFiles | ks::kSysReceiveFiles;
    fileechos.push_back(r);
  }
  std::vector<ks::NodeMGRrec> nodes;
  const struct {
    ks::NetAddr address;
    const char* sysop;
  } systems[] = {{{2, 280, 1, 0}, "Hub Sysop"},
                 {{2, 280, 5555, 1}, "Point Operator"},
                 {{2, 280, 77, 0}, "Downlink Sysop"}};
  for (const auto& n : systems) {
    ks::NodeMGRrec r{};
    r.address = n.address;
    r.sysop = n.sysop;
    r.groups.Add(1);
    r.groups.Add(2);
    r.groups.Add(3);
    r.ticMode = ks::tmNormal;
    nodes.push_back(r);
  }
  std::vector<ks::GrpFileMgrRec> groups;
  const char* group_names[] = {"", "FidoNet", "Software", "Hobby"};
  for (std::uint8_t g = 1; g <= 3; ++g) {
    ks::GrpFileMgrRec r{};
    r.fileecho.group = g;
    r.fileecho.tag = "*";
    r.name = group_names[g];
    groups.push_back(r);
  }
  ks::HatchMGRrec hatch{};
  hatch.area = "NODELIST";
  hatch.fileSpec = "/var/spool/outgoing/NODELIST.*";
  hatch.description = "The weekly nodelist";
  hatch.days = ks::kDaySunday << 5;  // Friday
  ks::MagicFileMgrRec magic{};
  magic.type = ks::mtUpdateAlias;
  magic.mask = "NODELIST.*";
  magic.fromArea = "NODELIST";

  ks::TFAreasFile fa;
  ks::TNodeFile nf;
  ks::TGroupFile gf;
  ks::THatchFile hf;
  ks::TMagicFile mf;
  return Fill(dir, fa, fileechos) && Fill(dir, nf, nodes) && Fill(dir, gf, groups) &&
         Fill(dir, hf, std::vector{hatch}) && Fill(dir, mf, std::vector{magic});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: mkdemo <directory>\n";
    return 2;
  }
  const fs::path dir = argv[1];
  const fs::path self_dir = fs::canonical("/proc/self/exe").parent_path();
  std::error_code ec;
  fs::remove_all(dir, ec);
  fs::create_directories(dir, ec);
  if (ec) {
    std::cerr << "mkdemo: cannot create " << dir << ": " << ec.message() << "\n";
    return 1;
  }

  ks::KESTRAcfg rec = ks::NewSetupRecord();
  rec.addresses[0] = {2, 280, 5555, 0};
  rec.addresses[1] = {2, 280, 5555, 1};
  rec.addresses[2] = {21, 4, 100, 0};
  rec.sysopName.set("Demo Sysop");
  rec.bbsName.set("The Demo BBS");
  rec.location.set("Delft, Holland");

  std::string error;
  if (!ks::SaveSetupFile(rec, (dir / "setup.ksx").string(), &error)) {
    std::cerr << "mkdemo: cannot write setup.ksx: " << error << "\n";
    return 1;
  }
  ks::record_extensions() = {"KSX", "IDX"};
  if (!WriteDemoRecords(dir.string()) || !WriteDemoLists(dir.string())) {
    std::cerr << "mkdemo: cannot write the demo record files\n";
    return 1;
  }
  for (const char* name : {"KESTRA.DOC", "KS_DOC.IDX"}) {
    fs::copy_file(self_dir / name, dir / name, fs::copy_options::overwrite_existing, ec);
    if (ec) std::cerr << "mkdemo: " << name << " not copied: " << ec.message() << "\n";
  }
  std::cout << "Demo program directory ready: " << fs::absolute(dir).string() << "\n";
  return 0;
}
