#include "tui/menu.h"

namespace ks {

std::unique_ptr<BoxOBJ> MakeMenu(const MenuDef& def) {
  auto box = std::make_unique<BoxOBJ>(def.left, def.top, def.right, def.bottom, def.title);
  int row = 2;
  for (const auto& it : def.items) {
    box->AddItem(2, row++, it.title, it.help, it.topic);
    if (*it.prefix) box->SetPrefix(static_cast<int>(box->item_count()), it.prefix);
  }
  box->set_top_menu(def.top_menu);
  box->set_topic(def.topic);
  return box;
}

void RunMenu(const MenuDef& def, const std::function<void(int choice)>& act) {
  auto box = MakeMenu(def);
  box->Draw();
  for (int choice = box->Run(); choice != kChoiceEsc; choice = box->Run()) {
    if (choice >= kChoiceF9) break;
    box->Hide();
    act(choice);
    box->Show();
  }
}

}  // namespace ks
