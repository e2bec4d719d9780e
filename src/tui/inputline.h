// A one-line text entry: the search prompt of the viewer and other short questions, and the
// line editor that the edit pages use for their text fields.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace ks {

// The text, cursor and insert state of one line being edited. Keys: Left, Right, Home, End,
// Backspace, Del, Ins (insert/overwrite), Ctrl-Y (clear) and the characters to type.
class LineEditor {
 public:
  LineEditor(std::string text, int max_len);

  // Decides on a typed character at position `pos`: may change it (into a capital, say) and
  // returns false to refuse it. Unset, every character is taken.
  std::function<bool(char& c, int pos)> accept;
  bool insert = true;

  // Draws the part of the text around the cursor in a field `width` cells wide and puts the
  // cursor there. A text that fits the field exactly stays whole with the cursor just behind.
  void Show(int col, int row, int width, std::uint8_t attr);

  // Handles an editing key or a typed character (refused ones too); false for anything else.
  bool HandleKey(std::uint8_t code, bool extended);

  const std::string& text() const { return text_; }
  void set_text(std::string text);

 private:
  std::string text_;
  int max_len_;
  int pos_ = 0;
  int first_ = 0;  // first character shown
};

// Edits `initial` at (col,row) in a field `width` cells wide holding at most `max_len`
// characters, drawn in `attr`. Enter returns the text, Esc returns nothing.
std::optional<std::string> InputLine(int col, int row, int width, int max_len, std::string initial,
                                     std::uint8_t attr);

// A small box titled `title` with `prompt` and an entry field, centred on the screen.
std::optional<std::string> AskText(const std::string& title, const std::string& prompt, int max_len,
                                   std::string initial = {});

}  // namespace ks
