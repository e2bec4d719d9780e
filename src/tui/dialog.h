// A framed dialogue window in the window colours. It saves what lies beneath it (its shadow
// and the status line included) and puts it back when it goes out of scope.
#pragma once

#include "tui/screen.h"

namespace ks {

class Dialog {
 public:
  Dialog(int left, int top, int right, int bottom, const char* title);
  // A window of `width` x `height` cells centred below the header.
  static Dialog Centred(int width, int height, const char* title);
  ~Dialog();
  Dialog(Dialog&& other) noexcept;
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;
  Dialog& operator=(Dialog&&) = delete;

  int left() const { return left_; }
  int top() const { return top_; }
  int right() const { return right_; }
  int bottom() const { return bottom_; }

 private:
  int left_, top_, right_, bottom_;
  Screen::Saved beneath_, status_;
  bool owns_ = true;
};

}  // namespace ks
