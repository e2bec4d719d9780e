// Runs the whole program on a virtual terminal in a temporary program directory.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "shell/app.h"
#include "shell/kestracfg.h"
#include "shell/mainmenu.h"
#include "tempdir.h"
#include "tui/virtual_terminal.h"

namespace ks::test {

// Hands the program a terminal that the test keeps after the program has let go of it.
class VtProxy : public Terminal {
 public:
  explicit VtProxy(VirtualTerminal& vt) : vt_(vt) {}
  int Width() const override { return vt_.Width(); }
  int Height() const override { return vt_.Height(); }
  void Present(const std::vector<Cell>& c, const std::vector<bool>& d) override {
    vt_.Present(c, d);
  }
  void SetCursor(CursorShape s, int col, int row) override { vt_.SetCursor(s, col, row); }
  std::uint8_t ReadByte() override { return vt_.ReadByte(); }
  bool KeyWaiting() override { return vt_.KeyWaiting(); }
  void SetMonochrome(bool mono) override { vt_.SetMonochrome(mono); }
  void Close(int keep) override { vt_.Close(keep); }

 private:
  VirtualTerminal& vt_;
};

class AppTest : public ::testing::Test {
 protected:
  void TearDown() override { menu_actions() = MenuActions(); }

  // Runs KSETUP with `args` and the key script; returns the exit status.
  int Run(std::vector<std::string> args, const std::string& keys) {
    vt_ = std::make_unique<VirtualTerminal>(80, 25);
    vt_->Keys(keys);
    out_.str("");
    AppEnv env;
    env.argv0 = dir_ / "ksetup";
    env.args = std::move(args);
    env.getenv = [this](const char* name) -> const char* {
      auto it = env_.find(name);
      return it == env_.end() ? nullptr : it->second.c_str();
    };
    env.out = &out_;
    env.console = {false, true};  // plain UTF-8 text, no colour sequences
    env.open_terminal = [this] { return std::make_unique<VtProxy>(*vt_); };
    return RunKsetup(env);
  }

  std::string SetupPath() const { return dir_ / "setup.ksx"; }

  // The configuration file on disk.
  KESTRAcfg ReadSetup() const {
    KESTRAcfg rec{};
    std::ifstream in(SetupPath(), std::ios::binary);
    in.read(reinterpret_cast<char*>(&rec), sizeof rec);
    return rec;
  }
  void WriteSetup(const KESTRAcfg& rec) const {
    dir_.Write("setup.ksx", std::string(reinterpret_cast<const char*>(&rec), sizeof rec));
  }
  bool Screen(const std::string& text) const { return vt_->Contains(text); }

  TempDir dir_;
  std::map<std::string, std::string> env_;
  std::unique_ptr<VirtualTerminal> vt_;
  std::ostringstream out_;
};

}  // namespace ks::test
