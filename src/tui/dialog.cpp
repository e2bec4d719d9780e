#include "tui/dialog.h"

#include <algorithm>

#include "tui/frame.h"
#include "tui/ui.h"

namespace ks {

Dialog::Dialog(int left, int top, int right, int bottom, const char* title)
    : left_(left), top_(top), right_(right), bottom_(bottom) {
  Screen& s = scr();
  const auto& c = ui().colours;
  beneath_ = s.Save(left, top, right + kShadowCols, bottom + kShadowRows);
  status_ = s.Save(1, s.Height(), s.Width(), s.Height());
  s.FillRect(left, top, right, bottom, ' ', c[kWindowText]);
  DrawFrame(left, top, right, bottom, c[kWindowFrame], kDoubleFrame);
  DrawFrameTitle(right, top, c[kWindowTitle], title);
  DrawShadow(left, top, right, bottom);
}

Dialog Dialog::Centred(int width, int height, const char* title) {
  Screen& s = scr();
  width = std::min(width, s.Width());
  const int left = (s.Width() - width) / 2 + 1;
  const int top = std::max(kHeaderRows + 1, (s.Height() - height) / 2 + 1);
  return Dialog(left, top, left + width - 1, top + height - 1, title);
}

Dialog::Dialog(Dialog&& other) noexcept
    : left_(other.left_),
      top_(other.top_),
      right_(other.right_),
      bottom_(other.bottom_),
      beneath_(std::move(other.beneath_)),
      status_(std::move(other.status_)) {
  other.owns_ = false;
}

Dialog::~Dialog() {
  if (!owns_ || !ui().screen) return;
  scr().Restore(beneath_);
  scr().Restore(status_);
}

}  // namespace ks
