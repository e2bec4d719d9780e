// Makes a fresh demo program directory for `make run`: a setup.ksx with a main address and a
// few site details already set, and the help document beside it.
#include <filesystem>
#include <iostream>
#include <string>

#include "common/fileutil.h"
#include "shell/setupfile.h"

namespace fs = std::filesystem;

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
  for (const char* name : {"KESTRA.DOC", "KS_DOC.IDX"}) {
    fs::copy_file(self_dir / name, dir / name, fs::copy_options::overwrite_existing, ec);
    if (ec) std::cerr << "mkdemo: " << name << " not copied: " << ec.message() << "\n";
  }
  std::cout << "Demo program directory ready: " << fs::absolute(dir).string() << "\n";
  return 0;
}
