// The editors of the record files on a virtual terminal, over a temporary data directory, with
// the groups and BBS file areas their pick lists offer.
#pragma once

#include <string>
#include <vector>

#include "dbase/pair_fixture.h"
#include "editors/lists.h"
#include "tui/picklist.h"
#include "vt_fixture.h"

namespace ks::test {

class EditorTest : public VtTest {
 protected:
  using Editor = void (*)(const ListContext&);

  EditorTest() {
    ctx_.data_dir = ctx_.work_dir = dir_.path();
    ctx_.addresses = {{2, 280, 5555, 0}};
    group_source() = [] { return std::vector<GroupName>{{1, "Net"}, {2, "Utils"}}; };
  }
  ~EditorTest() override {
    group_source() = nullptr;
    file_area_source() = nullptr;
  }

  // Runs the editor on a script that leaves it.
  void Run(Editor editor, const std::string& keys) {
    vt_.Keys(keys);
    editor(ctx_);
    EXPECT_EQ(vt_.KeysLeft(), 0u) << keys;
  }
  // Runs the editor until the script runs out. The terminal keeps what it showed at that
  // moment: the windows closed while the editor unwound are not presented again.
  void Stop(Editor editor, const std::string& keys) {
    vt_.Keys(keys);
    EXPECT_THROW(editor(ctx_), KeysExhausted) << keys;
  }
  bool Shown(const std::string& text) const { return vt_.Contains(text); }
  // Stops the editor on `keys` and tells whether `text` was on the screen then.
  bool Shows(Editor editor, const std::string& keys, const std::string& text) {
    Stop(editor, keys);
    return Shown(text);
  }
  bool StatusHas(const std::string& text) const {
    return vt_.Row(25).find(text) != std::string::npos;
  }

  RecordDir dir_;
  ListContext ctx_;
};

// Keys that answer "Would you like to add one?", and "Save changes?" after leaving a page.
inline constexpr const char* kAdd = "<Enter>";
inline constexpr const char* kSave = "<Esc><Enter>";

inline std::string Downs(int n) {
  std::string s;
  for (int i = 0; i < n; ++i) s += "<Down>";
  return s;
}

}  // namespace ks::test
