#include "dbase/workbox.h"

#include <string>

#include "tui/ui.h"

namespace ks {
namespace {
constexpr int kBoxWidth = 30;
constexpr int kBarWidth = 20;
}  // namespace

WorkBox::WorkBox(const char* title, const char* line) {
  if (!ui().screen) return;
  dialog_.emplace(Dialog::Centred(kBoxWidth, 4, title));
  scr().WriteStr(dialog_->left() + 2, dialog_->top() + 1, ui().colours[kWindowText], line);
  Progress(0, 1);
}

void WorkBox::Progress(std::uint64_t done, std::uint64_t total) {
  if (!dialog_) return;
  const int percent =
      total == 0 ? 100 : static_cast<int>(std::min<std::uint64_t>(done, total) * 100 / total);
  if (percent == shown_) return;
  shown_ = percent;
  const int filled = percent * kBarWidth / 100;
  std::string bar(static_cast<std::size_t>(filled), '\xDB');
  bar.append(static_cast<std::size_t>(kBarWidth - filled), '\xB0');
  bar += ' ' + std::to_string(percent) + '%';
  scr().WriteStr(dialog_->left() + 2, dialog_->top() + 2, ui().colours[kWindowData], bar,
                 kBoxWidth - 4);
  scr().Flush();
}

}  // namespace ks
