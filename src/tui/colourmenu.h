// The "Colors" menu: the presets, and the "Customized" editor with its colour picker and the
// background character prompt.
#pragma once

#include <cstdint>
#include <optional>

#include "tui/colours.h"

namespace ks {

inline constexpr std::uint8_t kColorsHelpTopic = 42;

// Runs the "Colors" menu on `set`. A preset replaces the whole set (its scheme number
// included) and closes the menu; "Customized" edits single slots and comes back; Esc closes.
// Returns true when `set` was changed.
bool RunColorsMenu(ColourSet& set);

// The colour editor ("Customized"); true when a slot changed (the scheme number then
// becomes 1, "Customized").
bool RunColourEditor(ColourSet& set);

// The colour picker: a grid of every attribute with " sample text " in the candidate one,
// started on `current`. Returns the attribute chosen with Enter, nothing for Esc.
std::optional<std::uint8_t> PickColour(std::uint8_t current);

// Asks for the desktop's fill character; returns the key accepted with Enter.
std::optional<std::uint8_t> AskBackgroundChar(std::uint8_t current);

}  // namespace ks
