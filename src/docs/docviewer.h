// The read-only document viewer: the help document and generated text are shown in a window
// with find, find again and print.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "docs/docsource.h"
#include "tui/screen.h"

namespace ks {

inline constexpr const char* kViewerKeyLine = "~F~-find ~F3~-again ~P~-print document ~Esc~-exit";
inline constexpr int kViewerHelpTopic = 5;

// Sends the document's lines (CP437) to the printer; returns an error text, or "" when done.
using PrintFn = std::function<std::string(const std::vector<std::string>& lines)>;

// Prints through the system's lpr command when there is one.
std::string PrintWithLpr(const std::vector<std::string>& lines);

class DocViewer {
 public:
  DocViewer(DocSource& doc, std::string title);
  void set_printer(PrintFn print) { print_ = std::move(print); }

  // Shows the document until Esc. An empty document only gives "There is nothing to display".
  void Run();

  // For tests: the first line on screen and the line of the last match.
  std::size_t top() const { return top_; }

 private:
  // Opens the window under the header down to the status line, or fits it to a new size.
  void Fit();
  void Draw();
  int Rows() const;
  int TextWidth() const;
  void ScrollTo(std::size_t line);
  void Find(bool again);
  // Searches from line `from`; returns the line found or -1; false when the user stopped it.
  bool Search(std::size_t from, long& found);
  void Print();

  DocSource& doc_;
  std::string title_;
  PrintFn print_;
  std::size_t top_ = 0;
  int hscroll_ = 0;
  std::string search_;
  long found_ = -1;
  int left_ = 1, top_row_ = 5, right_ = 80, bottom_row_ = 24;
  Screen::Saved beneath_;  // what the window covers while it is open
};

// Opens `path` (or the bytes [offset, offset+length) of it) in the viewer.
void ViewDocument(const std::string& path, const std::string& title, std::uint64_t offset = 0,
                  std::uint64_t length = 0);

}  // namespace ks
