// A fresh temporary directory for a test, removed with everything in it afterwards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace ks::test {

class TempDir {
 public:
  TempDir() {
    std::string tmpl = (std::filesystem::temp_directory_path() / "ksetup-test-XXXXXX").string();
    path_ = ::mkdtemp(tmpl.data());
    path_ += "/";
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + name; }

  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ + name, std::ios::binary) << bytes;
  }
  bool Has(const std::string& name) const { return std::filesystem::exists(path_ + name); }

 private:
  std::string path_;
};

}  // namespace ks::test
