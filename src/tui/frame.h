// Frames around rectangles: line styles, titles and the shadow that boxes cast.
#pragma once

#include <cstdint>
#include <string_view>

namespace ks {

struct FrameChars {
  std::uint8_t tl, tr, bl, br, h, v;
};
inline constexpr FrameChars kSingleFrame = {0xDA, 0xBF, 0xC0, 0xD9, 0xC4, 0xB3};
inline constexpr FrameChars kDoubleFrame = {0xC9, 0xBB, 0xC8, 0xBC, 0xCD, 0xBA};

// Draws the frame lines of the rectangle (the inside is left alone).
void DrawFrame(int left, int top, int right, int bottom, std::uint8_t attr,
               const FrameChars& chars);

// Draws " title " in the top frame line so that it ends two columns before `right`.
void DrawFrameTitle(int right, int top, std::uint8_t attr, std::string_view title);

// Darkens the cells to the right of and below the rectangle, keeping their characters.
void DrawShadow(int left, int top, int right, int bottom);

// The columns and rows a shadow adds to the right and below.
inline constexpr int kShadowCols = 2;
inline constexpr int kShadowRows = 1;

}  // namespace ks
