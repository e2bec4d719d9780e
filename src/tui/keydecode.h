// Turns what curses reads from the keyboard into the key bytes the program reads: an ordinary
// key is its CP437 character code, an extended key is 0 followed by its PC scan code.
//
// The decoder knows nothing about the terminal. The curses backend hands it the events it read
// (a wide character or a KEY_* code each); after an Esc it also hands over the events that
// were already waiting, because terminals send Alt+letter as Esc followed by the letter. The
// decoder reports how many events it used; the backend keeps the rest for the next key.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace ks {

// One event as read by wget_wch: a character (isKeyCode false) or a KEY_* code.
struct KeyEvent {
  bool isKeyCode = false;
  std::int32_t value = 0;

  static constexpr KeyEvent Char(std::int32_t c) { return {false, c}; }
  static constexpr KeyEvent Code(std::int32_t k) { return {true, k}; }
  bool operator==(const KeyEvent&) const = default;
};

struct DecodedKey {
  std::vector<std::uint8_t> bytes;  // empty for a resize or a key the program has no code for
  bool resize = false;              // the terminal changed its size
  int consumed = 1;                 // events used, counted from the first
};

// A terminfo key name that curses reports under a code of its own (an "extended" key such as
// kLFT5, Ctrl-Left), and the scan code it stands for.
struct ExtendedKeyName {
  const char* name;  // NUL-terminated, for tigetstr
  std::uint8_t scan;
};

class KeyDecoder {
 public:
  // The extended key names worth asking terminfo about.
  static std::span<const ExtendedKeyName> ExtendedKeyNames();

  // Binds a curses key code found at run time (key_defined of a terminfo string) to a scan code.
  void AddExtendedKey(int keyCode, std::uint8_t scan) { extended_[keyCode] = scan; }

  // True when the decoder wants the events that are already waiting after `first`.
  static bool WantsFollowers(KeyEvent first) { return !first.isKeyCode && first.value == 27; }

  // Decodes `events[0]`, using as many of the events after it as the key needs (only after an
  // Esc). `events` must not be empty.
  DecodedKey Decode(std::span<const KeyEvent> events) const;

 private:
  std::vector<std::uint8_t> DecodeKeyCode(int code) const;
  std::map<int, std::uint8_t> extended_;
};

}  // namespace ks
