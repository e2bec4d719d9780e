// Boxes: framed rectangles with a title and positioned items, the base of menus, edit pages and
// lists. A box saves what lies beneath it when drawn and puts it back when hidden.
#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tui/screen.h"

namespace ks {

struct BoxItem {
  int col = 0;        // relative to the box's left column
  int row = 0;        // relative to the box's top row
  std::string title;  // up to 75 characters
  std::string help;   // status line while highlighted, up to 100 characters
  std::uint8_t topic = 0;
  int width = 0;       // own highlight width; 0 = the box's widest title
  std::string prefix;  // up to 10 characters drawn in front of the title
};

class BoxOBJ;

struct HotKey {
  std::uint8_t key = 0;
  std::uint8_t params[4] = {};
  std::function<void(BoxOBJ&, const std::uint8_t* params)> proc;
  bool disabled = false;
};

// Choices a menu returns besides the item numbers 1..n.
inline constexpr int kChoiceEsc = 0;
inline constexpr int kChoiceF9 = 254;
inline constexpr int kChoiceF10 = 255;

class BoxOBJ {
 public:
  static constexpr std::size_t kMaxItems = 100;
  static constexpr std::size_t kMaxHotKeys = 20;

  // Takes its colours from the slots installed when it is drawn.
  BoxOBJ(int left, int top, int right, int bottom, std::string title);
  ~BoxOBJ();
  BoxOBJ(const BoxOBJ&) = delete;
  BoxOBJ& operator=(const BoxOBJ&) = delete;

  // A 101st item or a 21st hot key is ignored.
  void AddItem(int col, int row, std::string title, std::string help, std::uint8_t topic);
  void SetPrefix(int item, std::string prefix);  // item is 1-based
  void SetItemWidth(int item, int width);
  void AddHotKey(HotKey hk);
  void SetCaption(std::string caption) { caption_ = std::move(caption); }

  std::bitset<256>& exit_keys() { return exit_keys_; }
  void set_top_menu(bool on) { top_menu_ = on; }
  bool top_menu() const { return top_menu_; }
  void set_show_help(bool on) { show_help_ = on; }
  void set_topic(std::uint8_t topic) { topic_ = topic; }

  // Draws the box over what is on screen (saving it first, once).
  void Draw();
  // Puts back what lay beneath; the box remembers its state and Show() draws it again.
  void Hide();
  void Show() { Draw(); }
  bool visible() const { return visible_; }

  // Runs the menu key loop and returns the choice: 1..n for Enter (or an exit key) on item n,
  // 0 for Esc, 254/255 for F9/F10 in a top menu. The highlight starts on the last choice.
  int Run();

  int current() const { return current_; }  // 1-based; 0 when there are no items
  void set_current(int item);
  std::size_t item_count() const { return items_.size(); }
  const BoxItem& item(int n) const { return items_[static_cast<std::size_t>(n - 1)]; }

  int left() const { return left_; }
  int top() const { return top_; }
  int right() const { return right_; }
  int bottom() const { return bottom_; }

  // Redraws item n, highlighted or not.
  void DrawItem(int n, bool selected);

 private:
  void TakeColours();  // the attributes of the installed colour set
  void Select(int n);
  int Nearest(int dir) const;  // dir -1 left, +1 right; 0 when none
  int BarWidth(const BoxItem& it) const;

  int left_, top_, right_, bottom_;
  std::string title_;
  std::string caption_;
  std::uint8_t frame_, line_, title_attr_, select_, text_, data_;
  std::vector<BoxItem> items_;
  std::vector<HotKey> hot_keys_;
  std::bitset<256> exit_keys_;
  bool top_menu_ = false;
  bool show_help_ = true;
  std::uint8_t topic_ = 0;
  int widest_ = 0;
  int current_ = 0;
  bool visible_ = false;
  Screen::Saved beneath_;
};

}  // namespace ks
