// The small "Please wait" box of the maintenance operations, with a bar that shows how far
// through the file the operation is. Without an open screen (tools, benchmarks) it draws
// nothing.
#pragma once

#include <cstdint>
#include <optional>

#include "tui/dialog.h"

namespace ks {

class WorkBox {
 public:
  WorkBox(const char* title, const char* line);
  WorkBox(const WorkBox&) = delete;
  WorkBox& operator=(const WorkBox&) = delete;

  // Shows `done` of `total` as a bar and a percentage; draws only when the figure changes.
  void Progress(std::uint64_t done, std::uint64_t total);

 private:
  std::optional<Dialog> dialog_;
  int shown_ = -1;
};

}  // namespace ks
