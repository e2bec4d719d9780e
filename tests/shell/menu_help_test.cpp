// Every help topic the menus name is in the built help document, under the item's own title.
#include <gtest/gtest.h>

#include "common/fileutil.h"
#include "docs/docviewer.h"
#include "docs/helpsys.h"
#include "docs/text_editor.h"
#include "shell/mainmenu.h"
#include "tui/colourmenu.h"

namespace ks {
namespace {

class MenuHelpTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto size = FileSize(doc_);
    ASSERT_TRUE(size.has_value()) << doc_;
    ASSERT_TRUE(help_.Open(KS_BUILD_DIR "/KS_DOC.IDX", doc_));
  }
  std::string doc_ = KS_BUILD_DIR "/KESTRA.DOC";
  HelpSystem help_;
};

std::string TrimRight(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

TEST_F(MenuHelpTest, EveryMenuItemTopicIsTitledLikeTheItem) {
  for (const MenuDef* menu :
       {&MainMenuDef(), &FileechoMenuDef(), &EchomailMenuDef(), &UtilitiesMenuDef()}) {
    EXPECT_FALSE(help_.TopicTitle(menu->topic).empty()) << menu->title;
    for (const auto& item : menu->items) {
      if (item.topic == 0) continue;  // F1 shows the menu's own topic
      EXPECT_EQ(help_.TopicTitle(item.topic), TrimRight(item.title))
          << menu->title << " / " << item.title;
    }
  }
}

TEST_F(MenuHelpTest, TopicsOfTheOtherScreensExist) {
  for (int topic :
       {kMainHelpTopic, kViewerHelpTopic, int{kColorsHelpTopic}, kEditorHelpTopic, 3, 4, 6, 7})
    EXPECT_FALSE(help_.TopicTitle(topic).empty()) << topic;
}

}  // namespace
}  // namespace ks
