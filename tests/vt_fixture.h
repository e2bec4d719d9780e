// A virtual terminal with a screen and the user interface installed, for key-script tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

namespace ks::test {

class VtTest : public ::testing::Test {
 protected:
  explicit VtTest(int width = 80, int height = 25)
      : vt_(width, height), screen_(vt_), scope_(screen_) {}

  // Shows what has been drawn so far on the virtual terminal.
  void Sync() { screen_.Flush(); }
  bool OnScreen(const std::string& text) {
    Sync();
    return vt_.Contains(text);
  }
  std::string Row(int row) {
    Sync();
    return vt_.Row(row);
  }
  std::string Dump() {
    Sync();
    return vt_.Dump();
  }

  VirtualTerminal vt_;
  Screen screen_;
  UiScope scope_;
};

}  // namespace ks::test
