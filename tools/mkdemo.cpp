// Makes a fresh demo program directory for `make run`: a setup.ksx with a main address and a
// few site details already set, a few fileechos, nodes, groups, hatch entries and magic file
// names in their record files, and the help document beside it.
#include <filesystem>
#include <iostream>
#include <string>

#include "common/fileutil.h"
#include "common/recordext.h"
#include "dbase/recordfile.h"
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
  if (!WriteDemoRecords(dir.string())) {
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
