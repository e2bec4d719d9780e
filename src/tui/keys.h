// Key codes as the program reads them: an ordinary key is its character code; an extended key
// is read as 0 followed by its PC scan code. Menus read one code per key, so characters and
// scan codes share one code space.
#pragma once

#include <cstdint>

namespace ks::key {

// Character codes.
inline constexpr std::uint8_t kCtrlF = 6;
inline constexpr std::uint8_t kBackspace = 8;
inline constexpr std::uint8_t kTab = 9;
inline constexpr std::uint8_t kEnter = 13;
inline constexpr std::uint8_t kEsc = 27;
inline constexpr std::uint8_t kSpace = 32;

// Scan codes (read after a 0).
inline constexpr std::uint8_t kShiftTab = 15;
inline constexpr std::uint8_t kAltQ = 16;  // Alt-Q .. Alt-P: 16..25
inline constexpr std::uint8_t kAltA = 30;  // Alt-A .. Alt-L: 30..38
inline constexpr std::uint8_t kAltZ = 44;  // Alt-Z .. Alt-M: 44..50
inline constexpr std::uint8_t kAltD = 32;
inline constexpr std::uint8_t kF1 = 59;  // F1 .. F10: 59..68
inline constexpr std::uint8_t kF2 = 60;
inline constexpr std::uint8_t kF3 = 61;
inline constexpr std::uint8_t kF4 = 62;
inline constexpr std::uint8_t kF5 = 63;
inline constexpr std::uint8_t kF6 = 64;
inline constexpr std::uint8_t kF7 = 65;
inline constexpr std::uint8_t kF8 = 66;
inline constexpr std::uint8_t kF9 = 67;
inline constexpr std::uint8_t kF10 = 68;
inline constexpr std::uint8_t kHome = 71;
inline constexpr std::uint8_t kUp = 72;
inline constexpr std::uint8_t kPgUp = 73;
inline constexpr std::uint8_t kLeft = 75;
inline constexpr std::uint8_t kCenter = 76;
inline constexpr std::uint8_t kRight = 77;
inline constexpr std::uint8_t kEnd = 79;
inline constexpr std::uint8_t kDown = 80;
inline constexpr std::uint8_t kPgDn = 81;
inline constexpr std::uint8_t kIns = 82;
inline constexpr std::uint8_t kDel = 83;
inline constexpr std::uint8_t kShiftF1 = 84;  // Shift-F1 .. Shift-F10: 84..93
inline constexpr std::uint8_t kCtrlF1 = 94;   // Ctrl-F1 .. Ctrl-F10: 94..103
inline constexpr std::uint8_t kAltF1 = 104;   // Alt-F1 .. Alt-F10: 104..113
inline constexpr std::uint8_t kCtrlLeft = 115;
inline constexpr std::uint8_t kCtrlRight = 116;
inline constexpr std::uint8_t kCtrlEnd = 117;
inline constexpr std::uint8_t kCtrlPgDn = 118;
inline constexpr std::uint8_t kCtrlHome = 119;
inline constexpr std::uint8_t kCtrlPgUp = 132;
inline constexpr std::uint8_t kF11 = 133;
inline constexpr std::uint8_t kF12 = 134;

// The Alt scan code of a letter a-z (A-Z), or 0 for any other character.
std::uint8_t AltScanCode(char letter);

}  // namespace ks::key
