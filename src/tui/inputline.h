// A one-line text entry: the search prompt of the viewer and other short questions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ks {

// Edits `initial` at (col,row) in a field `width` cells wide holding at most `max_len`
// characters, drawn in `attr`. Enter returns the text, Esc returns nothing. Keys: Left, Right,
// Home, End, Backspace, Del, Ins (insert/overwrite), Ctrl-Y (clear).
std::optional<std::string> InputLine(int col, int row, int width, int max_len, std::string initial,
                                     std::uint8_t attr);

// A small box titled `title` with `prompt` and an entry field, centred on the screen.
std::optional<std::string> AskText(const std::string& title, const std::string& prompt, int max_len,
                                   std::string initial = {});

}  // namespace ks
