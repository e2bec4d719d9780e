// Message boxes: lines of text and a row of buttons, centred on the screen.
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ks {

struct MessageBoxSpec {
  std::string title;  // in the top frame line; none when empty
  std::vector<std::string> lines;
  std::vector<std::string> buttons;  // labels of up to 25 characters
  std::bitset<256> end_keys;         // upper-cased keys that end the box
  std::uint8_t topic = 0;            // F1
  int first_button = 1;
};

// Splits a message text into lines at each "/" ("A//B" gives A, an empty line and B).
std::vector<std::string> SplitMessage(std::string_view text);

// Ending keys: Enter and Esc plus the given characters.
std::bitset<256> EndKeys(std::string_view extra = {});

// Runs the box and returns the first character of the highlighted button's label for Enter,
// or the (upper-cased) key that ended it otherwise (27 for Esc).
std::uint8_t RunMessageBox(const MessageBoxSpec& box);

// A box of `text` (split at "/") with the given buttons, ended by Enter or Esc.
std::uint8_t MessageBox(std::string_view text, std::vector<std::string> buttons,
                        std::uint8_t topic = 0);

// The same with the lines given one by one (for texts holding "/", such as paths).
std::uint8_t MessageBoxLines(std::vector<std::string> lines, std::vector<std::string> buttons,
                             std::uint8_t topic = 0);

// The plain error box with one button "Ok". A text that begins with "/" is shown as one
// line without that "/" and without further splitting.
void ErrorBox(std::string_view text, std::uint8_t topic = 0);

// The question box with "Yes" and "No"; true only for "Y".
bool AskYesNo(std::string_view text, std::uint8_t topic = 0);

}  // namespace ks
