#include "tui/keydecode.h"

#define NCURSES_NOMACROS
#include <curses.h>

#include <algorithm>
#include <iterator>

#include "common/cp437.h"
#include "tui/keys.h"

namespace ks {

namespace {

constexpr std::int32_t kEscChar = 27;

struct CodeScan {
  int code;
  std::uint8_t scan;
};

// Named curses keys. Shifted navigation keys give the plain key's scan code, as the PC
// keyboard does.
constexpr CodeScan kNamedKeys[] = {
    {KEY_UP, key::kUp},          {KEY_DOWN, key::kDown},     {KEY_LEFT, key::kLeft},
    {KEY_RIGHT, key::kRight},    {KEY_HOME, key::kHome},     {KEY_END, key::kEnd},
    {KEY_PPAGE, key::kPgUp},     {KEY_NPAGE, key::kPgDn},    {KEY_IC, key::kIns},
    {KEY_DC, key::kDel},         {KEY_BTAB, key::kShiftTab}, {KEY_A1, key::kHome},
    {KEY_A3, key::kPgUp},        {KEY_B2, key::kCenter},     {KEY_C1, key::kEnd},
    {KEY_C3, key::kPgDn},        {KEY_BEG, key::kCenter},    {KEY_LL, key::kEnd},
    {KEY_SR, key::kUp},          {KEY_SF, key::kDown},       {KEY_SLEFT, key::kLeft},
    {KEY_SRIGHT, key::kRight},   {KEY_SHOME, key::kHome},    {KEY_SEND, key::kEnd},
    {KEY_SPREVIOUS, key::kPgUp}, {KEY_SNEXT, key::kPgDn},    {KEY_SIC, key::kIns},
    {KEY_SDC, key::kDel},
};

// Function keys as xterm's terminfo numbers them: kf1-kf12 plain, kf13-kf24 with Shift,
// kf25-kf36 with Ctrl, kf37-kf48 with Ctrl+Shift (no PC code), kf49-kf60 with Alt. F11 and F12
// have PC codes of their own outside the F1-F10 runs.
std::uint8_t FunctionKeyScan(int n) {
  if (n < 1 || n > 60) return 0;
  const int group = (n - 1) / 12;  // 0 plain, 1 Shift, 2 Ctrl, 3 Ctrl+Shift, 4 Alt
  const int f = (n - 1) % 12 + 1;  // 1..12
  static constexpr std::uint8_t kF1Of[5] = {key::kF1, key::kShiftF1, key::kCtrlF1, 0, key::kAltF1};
  // F11 with Shift is 135, with Ctrl 137, with Alt 139; F12 follows each.
  static constexpr std::uint8_t kF11Of[5] = {key::kF11, 135, 137, 0, 139};
  if (kF1Of[group] == 0) return 0;
  if (f <= 10) return static_cast<std::uint8_t>(kF1Of[group] + f - 1);
  return static_cast<std::uint8_t>(kF11Of[group] + f - 11);
}

constexpr ExtendedKeyName kExtendedNames[] = {
    {"kLFT5", key::kCtrlLeft}, {"kRIT5", key::kCtrlRight}, {"kHOM5", key::kCtrlHome},
    {"kEND5", key::kCtrlEnd},  {"kPRV5", key::kCtrlPgUp},  {"kNXT5", key::kCtrlPgDn},
    {"kUP", key::kUp},         {"kDN", key::kDown},  // Shift-Up, Shift-Down
};

bool IsChar(const KeyEvent& e, std::int32_t c) {
  return !e.isKeyCode && e.value == c;
}

// The length of an escape sequence that curses did not recognise, starting at `events[i]`
// (the event after the Esc): "[" parameters and a final byte, or "O" and one final byte.
// Returns 0 when the events do not look like such a sequence. Unknown sequences are dropped
// whole so that they never end up as text in a field.
std::size_t UnknownSequenceLength(std::span<const KeyEvent> events, std::size_t i) {
  auto charIn = [&](std::size_t k, std::int32_t lo, std::int32_t hi) {
    return k < events.size() && !events[k].isKeyCode && events[k].value >= lo &&
           events[k].value <= hi;
  };
  if (IsChar(events[i], 'O')) return charIn(i + 1, 0x40, 0x7E) ? 2 : 0;
  if (!IsChar(events[i], '[') || i + 1 >= events.size()) return 0;
  std::size_t k = i + 1;
  while (charIn(k, 0x20, 0x3F)) ++k;  // parameter and intermediate bytes
  if (charIn(k, 0x40, 0x7E)) ++k;     // final byte
  return k - i;
}

}  // namespace

std::span<const ExtendedKeyName> KeyDecoder::ExtendedKeyNames() {
  return kExtendedNames;
}

std::vector<std::uint8_t> KeyDecoder::DecodeKeyCode(int code) const {
  if (code == KEY_ENTER) return {key::kEnter};
  if (code == KEY_BACKSPACE) return {key::kBackspace};
  std::uint8_t scan = 0;
  if (code >= KEY_F(1) && code <= KEY_F(60)) {
    scan = FunctionKeyScan(code - KEY_F0);
  } else if (auto it = extended_.find(code); it != extended_.end()) {
    scan = it->second;
  } else {
    const auto* k = std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                                 [code](const CodeScan& c) { return c.code == code; });
    if (k != std::end(kNamedKeys)) scan = k->scan;
  }
  if (scan == 0) return {};
  return {0, scan};
}

DecodedKey KeyDecoder::Decode(std::span<const KeyEvent> events) const {
  const KeyEvent& first = events.front();
  DecodedKey out;
  if (first.isKeyCode) {
    if (first.value == KEY_RESIZE)
      out.resize = true;
    else
      out.bytes = DecodeKeyCode(first.value);
    return out;
  }

  const std::int32_t c = first.value;
  if (c == kEscChar) {
    // Esc Esc is one Esc; a terminal that sends Alt as an Esc prefix sends Alt plus an unknown
    // sequence as Esc Esc and the sequence.
    std::size_t next = 1;
    if (next < events.size() && IsChar(events[next], kEscChar)) ++next;
    if (next < events.size()) {
      if (std::size_t n = UnknownSequenceLength(events, next); n > 0) {
        out.consumed = static_cast<int>(next + n);
        return out;
      }
    }
    out.bytes = {key::kEsc};
    out.consumed = static_cast<int>(next);
    if (next == 1 && events.size() > 1 && !events[1].isKeyCode) {
      const std::int32_t f = events[1].value;
      if (f >= '0' && f <= '9') {
        out.bytes = {0, static_cast<std::uint8_t>(f == '0' ? key::kF10 : key::kF1 + f - '1')};
        out.consumed = 2;
      } else if (f < 128 && key::AltScanCode(static_cast<char>(f)) != 0) {
        out.bytes = {0, key::AltScanCode(static_cast<char>(f))};
        out.consumed = 2;
      }
    }
    return out;
  }

  if (c == '\n') {
    out.bytes = {key::kEnter};
  } else if (c == 127 || c == 8) {
    out.bytes = {key::kBackspace};
  } else if (c > 0 && c < 128) {
    out.bytes = {static_cast<std::uint8_t>(c)};
  } else if (c >= 128) {
    // A typed character CP437 has only among its control-code symbols (an arrow is 0x1B, a
    // note 0x0D) would act as Esc or Enter, so it is dropped like any character without a
    // CP437 form.
    const int b = UnicodeToCp437(static_cast<char32_t>(c));
    if (b >= 0x20) out.bytes = {static_cast<std::uint8_t>(b)};
  }
  return out;
}

}  // namespace ks
