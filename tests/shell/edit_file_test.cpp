// Which editor a file is opened in, and the pick list the internal editor offers.

#include "shell/edit_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace ks {
namespace {

TEST(EditFile, TheEditorIsEdThenVisualThenEditor) {
  const struct {
    const char* program;
    const char* switches;
    std::map<std::string, std::string> env;
    std::string command;
  } cases[] = {
      {"/usr/bin/vim", "-n", {{"VISUAL", "emacs"}}, "/usr/bin/vim -n"},
      {"nano", "", {{"EDITOR", "vi"}}, "nano"},
      {"", "-n", {{"VISUAL", "emacs -nw"}, {"EDITOR", "vi"}}, "emacs -nw"},
      {"", "", {{"VISUAL", ""}, {"EDITOR", "vi"}}, "vi"},
      {"", "", {}, ""},
  };
  for (const auto& c : cases) {
    KESTRAcfg cfg{};
    cfg.os2Programs.editor.program = c.program;
    cfg.os2Programs.editor.switches = c.switches;
    const GetEnvFn getenv = [&c](const char* name) -> const char* {
      const auto it = c.env.find(name);
      return it == c.env.end() ? nullptr : it->second.c_str();
    };
    EXPECT_EQ(EditorCommand(cfg, getenv), c.command) << c.program;
  }
}

// The macros are offered as they are inserted, with their kinds and help in columns; a
// function keeps the place of the cursor between its parentheses.
TEST(EditFile, ThePickListHoldsTheTemplateMacros) {
  const auto picks = MacroPicks();
  ASSERT_FALSE(picks.empty());
  for (const PickEntry& p : picks) {
    ASSERT_EQ(p.shown.compare(0, p.insert.size(), p.insert), 0) << p.shown;
    EXPECT_EQ(p.shown.find_first_not_of(' ', p.insert.size()), 15u) << p.shown;
  }
  const auto just = std::find_if(picks.begin(), picks.end(),
                                 [](const PickEntry& p) { return p.insert == "@just()"; });
  ASSERT_NE(just, picks.end());
  EXPECT_EQ(just->cursor, 6);
  EXPECT_EQ(just->shown.substr(15, 7), "<fun>  ");
}

}  // namespace
}  // namespace ks
