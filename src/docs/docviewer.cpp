#include "docs/docviewer.h"

#include <sys/wait.h>
#include <algorithm>
#include <cctype>
#include <cstdio>

#include "common/cp437.h"
#include "common/fileutil.h"
#include "tui/frame.h"
#include "tui/inputline.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kSearchLength = 30;
constexpr int kKeyCheckLines = 10;  // look at the keyboard this often while searching

}  // namespace

std::string PrintWithLpr(const std::vector<std::string>& lines) {
  auto lpr = FindInPath("lpr");
  if (!lpr) return "There is no printer: the lpr command is not installed";
  std::FILE* pipe = ::popen((*lpr + " 2>/dev/null").c_str(), "w");
  if (!pipe) return "Unable to start lpr";
  for (const auto& l : lines) {
    const std::string text = Cp437ToUtf8(l) + "\n";
    std::fwrite(text.data(), 1, text.size(), pipe);
  }
  const int status = ::pclose(pipe);
  if (status != 0)
    return "Printing failed: lpr ended with status " +
           std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : status);
  return {};
}

DocViewer::DocViewer(DocSource& doc, std::string title)
    : doc_(doc), title_(std::move(title)), print_(PrintWithLpr) {
  Screen& s = scr();
  left_ = 1;
  right_ = s.Width();
  top_row_ = kHeaderRows + 1;
  bottom_row_ = s.Height() - 1;
}

int DocViewer::Rows() const {
  return bottom_row_ - top_row_ - 1;
}
int DocViewer::TextWidth() const {
  return right_ - left_ - 2;
}

void DocViewer::Draw() {
  Screen& s = scr();
  const auto& c = ui().colours;
  const int width = TextWidth();
  const int text_left = left_ + 2;  // one blank column inside the frame
  doc_.Have(top_ + static_cast<std::size_t>(Rows()));
  const std::string upper_search = Upper(search_);
  for (int r = 0; r < Rows(); ++r) {
    const std::size_t n = top_ + static_cast<std::size_t>(r);
    const int row = top_row_ + 1 + r;
    if (n >= doc_.loaded()) {
      s.FillRect(left_ + 1, row, right_ - 1, row, ' ', c[kHelpText]);
      continue;
    }
    const std::string& line = doc_.line(n);
    for (int x = 0; x < width; ++x) {
      const std::size_t i = static_cast<std::size_t>(x + hscroll_);
      s.Put(
          text_left + x, row,
          {i < line.size() ? static_cast<std::uint8_t>(line[i]) : std::uint8_t{' '}, c[kHelpText]});
    }
    // The text of the last match stands out.
    if (static_cast<long>(n) == found_ && !upper_search.empty()) {
      const auto at = Upper(line).find(upper_search);
      for (std::size_t i = 0; at != std::string::npos && i < upper_search.size(); ++i) {
        const int x = static_cast<int>(at + i) - hscroll_;
        if (x >= 0 && x < width) {
          Cell cell = s.At(text_left + x, row);
          cell.attr = c[kHelpFind];
          s.Put(text_left + x, row, cell);
        }
      }
    }
  }
}

void DocViewer::ScrollTo(std::size_t line) {
  top_ = line;
  // Keep the last page full when the document allows it.
  doc_.Have(top_ + static_cast<std::size_t>(Rows()) - 1);
  if (doc_.complete() && doc_.loaded() > static_cast<std::size_t>(Rows()))
    top_ = std::min(top_, doc_.loaded() - static_cast<std::size_t>(Rows()));
  else if (doc_.complete())
    top_ = 0;
}

bool DocViewer::Search(std::size_t from, long& found) {
  Screen& s = scr();
  const std::string needle = Upper(search_);
  found = -1;
  bool announced = false;
  for (std::size_t n = from, checked = 0;; ++n, ++checked) {
    if (n >= doc_.loaded()) {
      if (doc_.complete()) break;
      if (!announced) {
        ShowStatus("Searching...");
        s.Flush();
        announced = true;
      }
      if (!doc_.Have(n)) break;
    }
    // Any key stops a search (the key itself is used up by that).
    if (checked % kKeyCheckLines == kKeyCheckLines - 1 && s.KeyPressed()) {
      s.ReadCode();
      ShowStatus(kViewerKeyLine);
      return false;
    }
    if (Upper(doc_.line(n)).find(needle) != std::string::npos) {
      found = static_cast<long>(n);
      break;
    }
  }
  ShowStatus(kViewerKeyLine);
  return true;
}

void DocViewer::Find(bool again) {
  if (!again || search_.empty()) {
    auto text = AskText("Find", "Search for: ", kSearchLength, search_);
    if (!text || text->empty()) return;
    search_ = *text;
    found_ = -1;
  }
  // A new search starts at the first line on screen, a repeated one after the last match.
  const std::size_t from = again && found_ >= 0 ? static_cast<std::size_t>(found_) + 1 : top_;
  long found = -1;
  if (!Search(from, found)) return;
  if (found < 0) {
    MessageBox("Text not found", {"Continue"}, kViewerHelpTopic);
    return;
  }
  found_ = found;
  const auto line = static_cast<std::size_t>(found);
  if (line < top_ || line >= top_ + static_cast<std::size_t>(Rows())) ScrollTo(line);
}

void DocViewer::Print() {
  doc_.LoadAll();
  std::vector<std::string> lines;
  lines.reserve(doc_.loaded());
  for (std::size_t i = 0; i < doc_.loaded(); ++i) lines.push_back(doc_.line(i));
  const std::string error = print_(lines);
  if (error.empty())
    MessageBox("The document was sent to the printer", {"Ok"}, kViewerHelpTopic);
  else
    MessageBoxLines({error}, {"Ok"}, kViewerHelpTopic);  // an error may name a path
}

void DocViewer::Fit() {
  const auto& c = ui().colours;
  if (!scr().FitFullWindow(left_, top_row_, right_, bottom_row_, beneath_, c[kHelpText],
                           c[kHelpFrame]))
    return;
  DrawFrameTitle(right_, top_row_, c[kHelpTitle], title_);
  ShowStatus(kViewerKeyLine);
}

void DocViewer::Run() {
  if (!doc_.Have(0)) {
    MessageBox("There is nothing to display", {"Ok"});
    return;
  }
  Screen& s = scr();
  for (;;) {
    bool extended = false;
    const std::uint8_t k = s.ReadCodeFitted(
        [this] {
          Fit();
          Draw();
        },
        &extended);
    const auto page = static_cast<std::size_t>(Rows());
    if (!extended) {
      switch (std::toupper(k)) {
        case key::kEsc:
          s.Restore(beneath_);
          beneath_ = {};
          return;
        case 'F':
          Find(false);
          break;
        case 'P':
          Print();
          break;
        default:
          break;
      }
      continue;
    }
    switch (k) {
      case key::kUp:
        if (top_ > 0) --top_;
        break;
      case key::kDown:
        if (doc_.Have(top_ + page)) ++top_;
        break;
      case key::kPgUp:
        top_ = top_ > page ? top_ - page : 0;
        break;
      case key::kPgDn:
        if (doc_.Have(top_ + page)) ScrollTo(top_ + page);
        break;
      case key::kHome:
        top_ = 0;
        hscroll_ = 0;
        break;
      case key::kEnd:
        doc_.LoadAll();
        ScrollTo(doc_.loaded());
        break;
      case key::kLeft:
        hscroll_ = std::max(0, hscroll_ - 1);
        break;
      case key::kRight:
        if (hscroll_ + TextWidth() < static_cast<int>(DocSource::kLineWidth)) ++hscroll_;
        break;
      case key::kF3:
        Find(true);
        break;
      default:
        HandleCommonKey(k, kViewerHelpTopic);
        break;
    }
  }
}

void ViewDocument(const std::string& path, const std::string& title, std::uint64_t offset,
                  std::uint64_t length) {
  DocSource doc(path, offset, length);
  DocViewer viewer(doc, title);
  viewer.Run();
}

}  // namespace ks
