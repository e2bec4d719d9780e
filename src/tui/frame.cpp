#include "tui/frame.h"

#include <string>

#include "tui/ui.h"

namespace ks {

void DrawFrame(int left, int top, int right, int bottom, std::uint8_t attr, const FrameChars& f) {
  Screen& s = scr();
  for (int x = left + 1; x < right; ++x) {
    s.Put(x, top, {f.h, attr});
    s.Put(x, bottom, {f.h, attr});
  }
  for (int y = top + 1; y < bottom; ++y) {
    s.Put(left, y, {f.v, attr});
    s.Put(right, y, {f.v, attr});
  }
  s.Put(left, top, {f.tl, attr});
  s.Put(right, top, {f.tr, attr});
  s.Put(left, bottom, {f.bl, attr});
  s.Put(right, bottom, {f.br, attr});
}

void DrawFrameTitle(int right, int top, std::uint8_t attr, std::string_view title) {
  if (title.empty()) return;
  std::string t = " " + std::string(title) + " ";
  scr().WriteStr(right - 1 - static_cast<int>(t.size()), top, attr, t);
}

void DrawShadow(int left, int top, int right, int bottom) {
  constexpr std::uint8_t kShadowAttr = 0x08;
  Screen& s = scr();
  s.SetAttrRect(right + 1, top + 1, right + kShadowCols, bottom + kShadowRows, kShadowAttr);
  s.SetAttrRect(left + kShadowCols, bottom + 1, right, bottom + kShadowRows, kShadowAttr);
}

}  // namespace ks
