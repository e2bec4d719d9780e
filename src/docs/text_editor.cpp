#include "docs/text_editor.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

#include "common/fileutil.h"
#include "tui/frame.h"
#include "tui/inputline.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr std::uint8_t kCtrlY = 25;
constexpr std::size_t kTabSize = 8;
// The cursor may stand beyond the end of a line up to this column (typing there fills the gap
// with blanks); longer lines of a file are edited all the same.
constexpr std::size_t kFreeColumns = 1024;
constexpr int kPathLength = 255;

constexpr const char* kKeyLine =
    "~Esc~-done ~F2~-PickList ~F3~-import ~F9~-abort ~F10~-save ~Alt-D~-Toggle draw mode";
constexpr const char* kKeyLineNoPicks =
    "~Esc~-done ~F3~-import ~F9~-abort ~F10~-save ~Alt-D~-Toggle draw mode";

// The box-drawing sets of draw mode: the characters F1 to F10 insert (code page 437), 0 where
// a key has none.
struct DrawSet {
  const char* name;
  std::uint8_t chars[10];
};
constexpr DrawSet kDrawSets[] = {
    {"single lines", {218, 191, 192, 217, 196, 179, 194, 193, 195, 180}},
    {"double lines", {201, 187, 200, 188, 205, 186, 203, 202, 204, 185}},
    {"double horizontal", {213, 184, 212, 190, 205, 179, 209, 207, 198, 181}},
    {"double vertical", {214, 183, 211, 189, 196, 186, 210, 208, 199, 182}},
    {"crossings", {197, 206, 216, 215, 0, 0, 0, 0, 0, 0}},
};
constexpr int kDrawSetCount = static_cast<int>(std::size(kDrawSets));

// The key line of draw mode: the character each function key inserts.
std::string DrawKeyLine(const DrawSet& set) {
  std::string line = "~Alt-D~-Toggle draw mode    Function key:";
  for (int i = 0; i < 10 && set.chars[i] != 0; ++i) {
    line += " ~" + std::to_string(i + 1) + "-~";
    line += static_cast<char>(set.chars[i]);
  }
  return line;
}

// The lines of `data` split at LF, with the CR of a CR LF taken off when `crlf`. A final line
// end gives no empty line after it.
std::vector<std::string> SplitLines(const std::string& data, bool crlf) {
  std::vector<std::string> lines;
  const char* p = data.data();
  const char* const end = p + data.size();
  lines.reserve(static_cast<std::size_t>(std::count(data.begin(), data.end(), '\n')) + 1);
  while (p < end) {
    const auto* nl =
        static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)));
    const char* stop = nl ? nl : end;
    const char* text_end = stop;
    if (crlf && nl && text_end > p && text_end[-1] == '\r') --text_end;
    lines.emplace_back(p, text_end);
    p = nl ? nl + 1 : end;
  }
  if (lines.empty()) lines.emplace_back();
  return lines;
}

class TextEditor {
 public:
  TextEditor(std::string path, const std::vector<PickEntry>& picks)
      : path_(std::move(path)), picks_(picks) {}

  // Reads the file; false (after saying so) when it exists but cannot be read.
  bool Load();
  // Edits until the editor is left; true when the file was saved.
  bool Run();

 private:
  int Rows() const { return bottom_row_ - top_row_ - 1; }
  int Columns() const { return right_ - left_ - 1; }
  std::string& Line() { return lines_[row_]; }

  void Fit();
  void Draw();
  void DrawStatus();
  void Follow();

  // Fills the current line with blanks up to the cursor.
  void PadToCursor();
  void Type(std::uint8_t ch);
  // Inserts `text` (lines split at LF) at the cursor, which stays where it is.
  void Insert(const std::vector<std::string>& text);
  void SplitLine();
  void Backspace();
  void Delete();
  void DeleteLine();
  void Tab();
  void WordLeft();
  void WordRight();
  void Changed() { modified_ = true; }

  void Import();
  void Pick();
  bool Save();
  // Esc: true when the editor is to be left.
  bool Done();
  bool HandleExtended(std::uint8_t scan);

  std::string path_;
  const std::vector<PickEntry>& picks_;
  std::vector<std::string> lines_{std::string()};
  bool crlf_ = false;        // lines end in CR LF
  bool final_eol_ = true;    // the last line ends with a line end too
  std::size_t row_ = 0;      // cursor line
  std::size_t col_ = 0;      // cursor column, may lie beyond the end of the line
  std::size_t top_ = 0;      // first line shown
  std::size_t hscroll_ = 0;  // first column shown
  bool insert_ = true;
  int draw_set_ = 0;  // 0 = draw mode off, else the set 1..5
  bool modified_ = false;
  bool saved_ = false;
  int last_pick_ = 0;
  int left_ = 1, top_row_ = kHeaderRows + 1, right_ = 80, bottom_row_ = 24;
  Screen::Saved beneath_;
};

bool TextEditor::Load() {
  struct stat st;
  const bool found = ::stat(path_.c_str(), &st) == 0;
  if (!found && errno == ENOENT) return true;  // a new file
  const auto data = found && !S_ISDIR(st.st_mode) ? ReadWholeFile(path_) : std::nullopt;
  if (!data) {
    MessageBoxLines({"Unable to open file", path_}, {"Ok"}, kEditorHelpTopic);
    return false;
  }
  if (data->empty()) return true;  // as a new file: nothing to keep
  const std::size_t nl = data->find('\n');
  crlf_ = nl != std::string::npos && nl > 0 && (*data)[nl - 1] == '\r';
  final_eol_ = data->back() == '\n';
  lines_ = SplitLines(*data, crlf_);
  return true;
}

void TextEditor::Fit() {
  const auto& c = ui().colours;
  if (!scr().FitFullWindow(left_, top_row_, right_, bottom_row_, beneath_, c[kEditText],
                           c[kEditFrame]))
    return;
  // A long name keeps its end, where the file name is.
  std::string title = path_;
  const auto room = static_cast<std::size_t>(std::max(10, right_ - left_ - 8));
  if (title.size() > room) title = "..." + title.substr(title.size() - room + 3);
  DrawFrameTitle(right_, top_row_, c[kEditTitle], title);
}

void TextEditor::Follow() {
  const auto rows = static_cast<std::size_t>(Rows());
  const auto cols = static_cast<std::size_t>(Columns());
  row_ = std::min(row_, lines_.size() - 1);
  if (row_ < top_) top_ = row_;
  if (row_ >= top_ + rows) top_ = row_ - rows + 1;
  if (col_ < hscroll_) hscroll_ = col_;
  if (col_ >= hscroll_ + cols) hscroll_ = col_ - cols + 1;
}

void TextEditor::Draw() {
  Screen& s = scr();
  const auto& c = ui().colours;
  Follow();
  for (int r = 0; r < Rows(); ++r) {
    const std::size_t n = top_ + static_cast<std::size_t>(r);
    const int y = top_row_ + 1 + r;
    const std::string* line = n < lines_.size() ? &lines_[n] : nullptr;
    for (int x = 0; x < Columns(); ++x) {
      const std::size_t i = hscroll_ + static_cast<std::size_t>(x);
      const std::uint8_t ch =
          line && i < line->size() ? static_cast<std::uint8_t>((*line)[i]) : std::uint8_t{' '};
      s.Put(left_ + 1 + x, y, {ch, c[kEditText]});
    }
  }
  DrawStatus();
  s.GotoXY(left_ + 1 + static_cast<int>(col_ - hscroll_),
           top_row_ + 1 + static_cast<int>(row_ - top_));
  s.SetCursorShape(insert_ ? CursorShape::kUnderline : CursorShape::kBlock);
}

// The bottom frame line tells the cursor position, the draw set and insert or overwrite; the
// key line what the keys do.
void TextEditor::DrawStatus() {
  Screen& s = scr();
  const auto& c = ui().colours;
  for (int x = left_ + 1; x < right_; ++x) s.Put(x, bottom_row_, {kDoubleFrame.h, c[kEditFrame]});
  char pos[48];
  std::snprintf(pos, sizeof pos, " L %-5zu C %-4zu", row_ + 1, col_ + 1);
  s.WriteStr(left_ + 2, bottom_row_, c[kEditTitle], pos);
  std::string mode = insert_ ? " Insert " : " Overwrite ";
  if (draw_set_ > 0)
    mode = " Draw " + std::to_string(draw_set_) + ": " + kDrawSets[draw_set_ - 1].name + " " + mode;
  s.WriteStr(right_ - 1 - static_cast<int>(mode.size()), bottom_row_, c[kEditTitle], mode);
  if (draw_set_ > 0)
    ShowStatus(DrawKeyLine(kDrawSets[draw_set_ - 1]));
  else
    ShowStatus(picks_.empty() ? kKeyLineNoPicks : kKeyLine);
}

void TextEditor::PadToCursor() {
  if (Line().size() < col_) Line().resize(col_, ' ');
}

void TextEditor::Type(std::uint8_t ch) {
  PadToCursor();
  if (insert_ || col_ == Line().size())
    Line().insert(col_, 1, static_cast<char>(ch));
  else
    Line()[col_] = static_cast<char>(ch);
  ++col_;
  Changed();
}

void TextEditor::Insert(const std::vector<std::string>& text) {
  if (text.empty()) return;
  PadToCursor();
  std::string tail = Line().substr(col_);
  Line().erase(col_);
  Line() += text.front();
  std::vector<std::string> rest(text.begin() + 1, text.end());
  if (rest.empty()) {
    Line() += tail;
  } else {
    rest.back() += tail;
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(row_) + 1,
                  std::make_move_iterator(rest.begin()), std::make_move_iterator(rest.end()));
  }
  Changed();
}

void TextEditor::SplitLine() {
  std::string tail = col_ < Line().size() ? Line().substr(col_) : std::string();
  if (col_ < Line().size()) Line().erase(col_);
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(row_) + 1, std::move(tail));
  ++row_;
  col_ = 0;
  Changed();
}

void TextEditor::Backspace() {
  if (col_ > Line().size()) {  // in the blanks beyond the end: only the cursor moves
    --col_;
  } else if (col_ > 0) {
    Line().erase(--col_, 1);
    Changed();
  } else if (row_ > 0) {  // at the start of a line: joins it to the one above
    std::string text = std::move(Line());
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(row_));
    --row_;
    col_ = Line().size();
    Line() += text;
    Changed();
  }
}

void TextEditor::Delete() {
  if (col_ < Line().size()) {
    Line().erase(col_, 1);
    Changed();
  } else if (row_ + 1 < lines_.size()) {  // at or beyond the end: the next line joins this one
    PadToCursor();
    Line() += lines_[row_ + 1];
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(row_) + 1);
    Changed();
  }
}

void TextEditor::DeleteLine() {
  if (lines_.size() > 1)
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(row_));
  else
    lines_.front().clear();
  row_ = std::min(row_, lines_.size() - 1);
  col_ = 0;
  Changed();
}

// Tab goes to the next multiple of eight; in insert mode it pushes the text on with blanks.
void TextEditor::Tab() {
  const std::size_t next = (col_ / kTabSize + 1) * kTabSize;
  if (insert_ && col_ < Line().size()) {
    Line().insert(col_, next - col_, ' ');
    Changed();
  }
  col_ = next;
}

void TextEditor::WordLeft() {
  const std::string& l = Line();
  std::size_t i = std::min(col_, l.size());
  while (i > 0 && l[i - 1] == ' ') --i;
  while (i > 0 && l[i - 1] != ' ') --i;
  col_ = i;
}

void TextEditor::WordRight() {
  const std::string& l = Line();
  std::size_t i = col_;
  while (i < l.size() && l[i] != ' ') ++i;
  while (i < l.size() && l[i] == ' ') ++i;
  col_ = i;
}

// F3: a file inserted at the cursor. A name without a directory is looked for beside the file
// being edited.
void TextEditor::Import() {
  auto name = AskText("Import", "Insert file: ", kPathLength);
  if (!name || name->empty()) return;
  const std::string file = name->front() == '/' ? *name : DirOf(path_) + *name;
  const auto data = FileExists(file) ? ReadWholeFile(file) : std::nullopt;
  if (!data) {
    MessageBoxLines({"Unable to open file", file}, {"Ok"}, kEditorHelpTopic);
    return;
  }
  if (data->empty()) return;
  // The inserted text takes the line ends of the file being edited; its own final line end
  // puts the rest of the cursor line on a line of its own.
  auto text = SplitLines(*data, true);
  if (data->back() == '\n') text.emplace_back();
  Insert(text);
}

// F2: a text from the pick list inserted at the cursor, which then goes where the entry says.
void TextEditor::Pick() {
  if (picks_.empty()) return;
  PickList list;
  list.title = "Pick list";
  list.key_line = "~Enter~-insert ~Esc~-cancel";
  list.count = static_cast<int>(picks_.size());
  list.row = [this](int i) { return picks_[static_cast<std::size_t>(i)].shown; };
  list.current = last_pick_;
  list.topic = kEditorHelpTopic;
  const int chosen = RunPickList(list);
  if (chosen < 0) return;
  last_pick_ = chosen;
  const PickEntry& e = picks_[static_cast<std::size_t>(chosen)];
  Insert({e.insert});
  const auto cursor = static_cast<std::size_t>(std::max(0, e.cursor));
  col_ += cursor > 0 && cursor <= e.insert.size() ? cursor : e.insert.size();
}

bool TextEditor::Save() {
  std::size_t total = 0;
  for (const auto& l : lines_) total += l.size() + 2;
  std::string data;
  data.reserve(total);
  const char* eol = crlf_ ? "\r\n" : "\n";
  // One empty line is an empty file.
  if (!(lines_.size() == 1 && lines_.front().empty())) {
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      data += lines_[i];
      if (i + 1 < lines_.size() || final_eol_) data += eol;
    }
  }
  // A link is followed, so that the file it names is replaced rather than the link.
  std::string target = path_;
  std::error_code ec;
  if (std::filesystem::is_symlink(path_, ec)) {
    const auto real = std::filesystem::weakly_canonical(path_, ec);
    if (!ec) target = real.string();
  }
  std::string error;
  if (!WriteFileAtomic(target, data, &error)) {
    MessageBoxLines({"Unable to save the file", path_, error}, {"Ok"}, kEditorHelpTopic);
    return false;
  }
  modified_ = false;
  saved_ = true;
  return true;
}

bool TextEditor::Done() {
  if (!modified_) return true;
  MessageBoxSpec box;
  box.lines = {"Save changes?"};
  box.buttons = {"Yes", "No"};
  box.end_keys = EndKeys("YN");
  box.topic = kEditorHelpTopic;
  switch (RunMessageBox(box)) {
    case 'Y':
      return Save();
    case 'N':
      return true;
    default:
      return false;  // back to the text
  }
}

// The extended keys; true when the editor is to be left.
bool TextEditor::HandleExtended(std::uint8_t scan) {
  const auto page = static_cast<std::size_t>(std::max(1, Rows() - 1));
  if (draw_set_ > 0 && scan >= key::kF1 && scan <= key::kF10) {
    const std::uint8_t ch = kDrawSets[draw_set_ - 1].chars[scan - key::kF1];
    if (ch != 0) Type(ch);
    return false;
  }
  switch (scan) {
    case key::kUp:
      if (row_ > 0) --row_;
      break;
    case key::kDown:
      if (row_ + 1 < lines_.size()) ++row_;
      break;
    case key::kLeft:
      if (col_ > 0) --col_;
      break;
    case key::kRight:
      if (col_ < std::max(kFreeColumns, Line().size())) ++col_;
      break;
    case key::kHome:
      col_ = 0;
      break;
    case key::kEnd:
      col_ = Line().size();
      break;
    case key::kCtrlLeft:
      WordLeft();
      break;
    case key::kCtrlRight:
      WordRight();
      break;
    case key::kPgUp:
      row_ = row_ > page ? row_ - page : 0;
      top_ = top_ > page ? top_ - page : 0;
      break;
    case key::kPgDn: {
      // The last window stays full.
      const std::size_t rows = static_cast<std::size_t>(Rows());
      row_ = std::min(row_ + page, lines_.size() - 1);
      top_ = std::min(top_ + page, lines_.size() > rows ? lines_.size() - rows : 0);
      break;
    }
    case key::kCtrlHome:
    case key::kCtrlPgUp:
      row_ = col_ = 0;
      break;
    case key::kCtrlEnd:
    case key::kCtrlPgDn:
      row_ = lines_.size() - 1;
      col_ = Line().size();
      break;
    case key::kIns:
      insert_ = !insert_;
      break;
    case key::kDel:
      Delete();
      break;
    case key::kAltD:
      draw_set_ = (draw_set_ + 1) % (kDrawSetCount + 1);
      break;
    case key::kF2:
      Pick();
      break;
    case key::kF3:
      Import();
      break;
    case key::kF9:
      return true;
    case key::kF10:
      return Save();
    default:
      HandleCommonKey(scan, kEditorHelpTopic);
      break;
  }
  return false;
}

bool TextEditor::Run() {
  Screen& s = scr();
  const CursorShape shape = s.cursor_shape();
  for (;;) {
    bool extended = false;
    const std::uint8_t k = s.ReadCodeFitted(
        [this] {
          Fit();
          Draw();
        },
        &extended);
    bool leave = false;
    if (extended) {
      leave = HandleExtended(k);
    } else {
      switch (k) {
        case key::kEsc:
          leave = Done();
          break;
        case key::kEnter:
          SplitLine();
          break;
        case key::kBackspace:
          Backspace();
          break;
        case key::kTab:
          Tab();
          break;
        case kCtrlY:
          DeleteLine();
          break;
        default:
          if (k >= key::kSpace) Type(k);
          break;
      }
    }
    if (leave) break;
  }
  s.Restore(beneath_);
  beneath_ = {};
  s.SetCursorShape(shape);
  return saved_;
}

}  // namespace

bool EditFile(const std::string& path, const std::vector<PickEntry>& picks) {
  TextEditor editor(path, picks);
  if (!editor.Load()) return false;
  return editor.Run();
}

}  // namespace ks
