// The colour set: 38 bytes of attributes (and one fill character) in named slots, the built-in
// sets and presets, and the slots installed for drawing.
#pragma once

#include <array>
#include <cstdint>

namespace ks {

// Position k (1-based) of a colour set; the names are those the colour editor shows.
enum Slot : std::uint8_t {
  kWindowFrame = 1,
  kWindowLine = 2,
  kWindowTitle = 3,
  kWindowSelect = 4,
  kWindowText = 5,
  kWindowData = 6,
  kSlot7 = 7,
  kBottomText = 8,
  kBottomKey = 9,
  kWindowKey = 10,
  kSchemeNumber = 11,
  kMessageFrame = 15,
  kMessageSelect = 16,
  kMessageButton = 17,
  kMessageData = 18,
  kDataInput = 20,
  kBgChar = 21,
  kBackground = 22,
  kHeaderFrame = 23,
  kHeaderText = 24,
  kBottomLine = 25,
  kHelpFrame = 26,
  kHelpTitle = 27,
  kHelpText = 28,
  kHelpFind = 29,
  kEditFrame = 30,
  kEditTitle = 31,
  kEditText = 32,
  kEditSelect = 33,
  kSendTo = 34,
  kReceiveFrom = 35,
  kSendReceive = 36,
  kLockedOut = 37,
  kInactive = 38,
};

inline constexpr int kColourSetSize = 38;
using ColourSet = std::array<std::uint8_t, kColourSetSize>;  // element k-1 is position k

// Scheme numbers of the "Colors" menu.
inline constexpr int kSchemeCustomized = 1;
inline constexpr int kSchemeFirstPreset = 2;  // Quenmark
inline constexpr int kSchemeLastPreset = 6;   // Monochrome

// The set installed when the configuration holds none (equal to preset 2).
const ColourSet& DefaultColourSet();

// The set a newly created configuration file starts with: the default set except that
// "Message.button" is 0x10.
const ColourSet& NewFileColourSet();

// Presets 2 ("Quenmark") to 6 ("Monochrome").
const ColourSet& PresetColourSet(int scheme);

// The installed slots that everything draws with.
class ColourSlots {
 public:
  ColourSlots() { Install(DefaultColourSet()); }

  std::uint8_t operator[](Slot s) const { return v_[s - 1]; }

  // Takes every slot from `set`.
  void Install(const ColourSet& set) { v_ = set; }

  // Monochrome: fixed values for the slots that have one (white 15, light grey 7, inverse 112,
  // fill character 177); the other slots keep what `set` holds.
  void InstallMono(const ColourSet& set);

  const ColourSet& values() const { return v_; }

 private:
  ColourSet v_{};
};

}  // namespace ks
