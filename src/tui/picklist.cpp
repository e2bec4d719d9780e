#include "tui/picklist.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "tui/dialog.h"
#include "tui/frame.h"
#include "tui/inputline.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr char kMarkChar = '\xFB';  // CP437 check mark
constexpr int kMarkCols = 2;        // the mark and a blank in front of the text of a multi list
constexpr int kMinTextWidth = 20;
constexpr int kSearchLength = 40;
constexpr const char* kNotFound = "Unable to find entry";

// True when `row`, leading blanks skipped, begins with `text`, case folded.
bool StartsWithFolded(std::string_view row, std::string_view text) {
  const auto start = row.find_first_not_of(" \t");
  if (start == std::string_view::npos) return false;
  row.remove_prefix(start);
  if (row.size() < text.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(row[i])) !=
        std::tolower(static_cast<unsigned char>(text[i])))
      return false;
  }
  return true;
}

// The first row from `from` on, going round to the top, that starts with `text`.
int DefaultSearch(const PickList& l, std::string_view text, int from) {
  for (int n = 0; n < l.count; ++n) {
    const int i = (from + n) % l.count;
    if (StartsWithFolded(l.row(i), text)) return i;
  }
  return -1;
}

// One run of a pick list: where the box goes, which rows are shown, and the keys.
class PickRunner {
 public:
  explicit PickRunner(PickList& list);
  int Run();

 private:
  bool multi() const { return l_.marks != nullptr; }
  void Layout();
  void LoadPage();
  void Draw();
  void MoveTo(int row);
  void Page(int delta);
  void ToggleAll();
  void Search(char first);
  void HandleScan(std::uint8_t scan);

  PickList& l_;
  Screen& s_;
  int rows_ = 0;         // rows shown
  int first_ = 0;        // the row at the top of the box
  int text_w_ = 0;       // columns for the text of a row
  int header_rows_ = 0;  // 1 with a header line
  int left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;
  // The texts of the rows shown, first_ onwards; kept while scrolling so that only rows that
  // come into view are fetched.
  std::vector<std::string> page_;
  int page_first_ = 0;
};

PickRunner::PickRunner(PickList& list) : l_(list), s_(scr()) {
  if (multi() && static_cast<int>(l_.marks->size()) < l_.count)
    l_.marks->resize(static_cast<std::size_t>(l_.count), false);
  l_.current = l_.count > 0 ? std::clamp(l_.current, 0, l_.count - 1) : 0;
}

void PickRunner::Layout() {
  header_rows_ = l_.header.empty() ? 0 : 1;
  const int mark_cols = multi() ? kMarkCols : 0;
  // The frame and the shadow must stay clear of the header above and the status line below.
  const int frame_top = l_.top ? l_.top : kHeaderRows + 1;
  const int fit = s_.Height() - 1 - kShadowRows - frame_top - 1 - header_rows_;
  rows_ = std::min(l_.height > 0 ? std::min(l_.height, fit) : fit, l_.count);
  rows_ = std::max(rows_, 1);
  first_ = std::clamp(l_.current, 0, std::max(0, l_.count - rows_));
  LoadPage();

  const int fit_w = s_.Width() - (l_.left ? l_.left - 1 : 0) - 4 - mark_cols - kShadowCols;
  if (l_.width > 0) {
    text_w_ = l_.width;
  } else {
    // Only the rows on the first page are measured: the others are not fetched yet.
    text_w_ = std::max({kMinTextWidth, static_cast<int>(l_.title.size()) + 4,
                        Screen::VisibleLength(l_.header) - mark_cols});
    for (const auto& t : page_) text_w_ = std::max(text_w_, static_cast<int>(t.size()));
  }
  text_w_ = std::max(1, std::min(text_w_, fit_w));

  const int width = text_w_ + 4 + mark_cols;
  const int height = rows_ + header_rows_ + 2;
  left_ = l_.left ? l_.left : std::max(1, (s_.Width() - width) / 2 + 1);
  top_ = l_.top ? l_.top : std::max(kHeaderRows + 1, (s_.Height() - height) / 2 + 1);
  right_ = left_ + width - 1;
  bottom_ = top_ + height - 1;
}

void PickRunner::LoadPage() {
  std::vector<std::string> page(static_cast<std::size_t>(rows_));
  for (int i = 0; i < rows_; ++i) {
    const int old = first_ + i - page_first_;
    if (old >= 0 && old < static_cast<int>(page_.size()))
      page[static_cast<std::size_t>(i)] = std::move(page_[static_cast<std::size_t>(old)]);
    else
      page[static_cast<std::size_t>(i)] = first_ + i < l_.count ? l_.row(first_ + i) : "";
  }
  page_ = std::move(page);
  page_first_ = first_;
}

void PickRunner::Draw() {
  if (page_first_ != first_) LoadPage();
  const auto& c = ui().colours;
  const int row0 = top_ + 1 + header_rows_;
  for (int i = 0; i < rows_; ++i) {
    const int r = first_ + i;
    std::string line = " ";
    if (multi()) {
      line += (*l_.marks)[static_cast<std::size_t>(r)] ? kMarkChar : ' ';
      line += ' ';
    }
    line += std::string_view(page_[static_cast<std::size_t>(i)])
                .substr(0, static_cast<std::size_t>(text_w_));
    const int inner = right_ - left_ - 1;
    if (r == l_.current && r < l_.count)
      s_.WriteStrCursor(left_ + 1, row0 + i, c[kWindowSelect], line, inner);
    else
      s_.WriteStr(left_ + 1, row0 + i, c[kWindowText], line, inner);
  }
}

void PickRunner::MoveTo(int row) {
  if (l_.count == 0) return;
  l_.current = std::clamp(row, 0, l_.count - 1);
  if (l_.current < first_) first_ = l_.current;
  if (l_.current >= first_ + rows_) first_ = l_.current - rows_ + 1;
}

// PgUp/PgDn: the box scrolls a page and the highlight keeps its place in it, as far as the
// ends of the list allow.
void PickRunner::Page(int delta) {
  if (l_.count == 0) return;
  first_ = std::clamp(first_ + delta, 0, l_.count - rows_);
  MoveTo(l_.current + delta);
}

void PickRunner::ToggleAll() {
  auto& m = *l_.marks;
  const auto end = m.begin() + l_.count;
  const bool all = std::all_of(m.begin(), end, [](bool b) { return b; });
  std::fill(m.begin(), end, !all);
}

void PickRunner::Search(char first) {
  const auto text = AskText("Search", std::string(kSearchPrompt), kSearchLength, {first});
  if (!text) return;
  std::string_view want(*text);
  want.remove_prefix(std::min(want.size(), want.find_first_not_of(' ')));
  if (want.empty()) return;
  if (l_.count == 0) return;
  const int from = (l_.current + 1) % l_.count;
  const int found = l_.search ? l_.search(want, from) : DefaultSearch(l_, want, from);
  if (found < 0 || found >= l_.count)
    ErrorBox(kNotFound, static_cast<std::uint8_t>(l_.topic));
  else
    MoveTo(found);
}

// The keys read as scan codes.
void PickRunner::HandleScan(std::uint8_t scan) {
  switch (scan) {
    case key::kUp:
      MoveTo(l_.current - 1);
      break;
    case key::kDown:
      MoveTo(l_.current + 1);
      break;
    case key::kPgUp:
      Page(-rows_);
      break;
    case key::kPgDn:
      Page(rows_);
      break;
    case key::kHome:
    case key::kCtrlHome:
    case key::kCtrlPgUp:
      MoveTo(0);
      break;
    case key::kEnd:
    case key::kCtrlEnd:
    case key::kCtrlPgDn:
      MoveTo(l_.count - 1);
      break;
    case key::kF2:
      if (multi()) ToggleAll();
      break;
    default:
      if (l_.on_key && l_.on_key(scan))
        ShowStatus(l_.key_line);  // a window the key opened may have left its own
      else
        HandleCommonKey(scan, l_.topic);
  }
}

int PickRunner::Run() {
  Layout();
  const Dialog box(left_, top_, right_, bottom_, l_.title.c_str());
  if (header_rows_) {
    const int width = text_w_ + (multi() ? kMarkCols : 0);
    s_.WriteStr(left_ + 2, top_ + 1, ui().colours[kWindowTitle], l_.header, width);
  }
  ShowStatus(l_.key_line);
  for (;;) {
    Draw();
    bool extended = false;
    const std::uint8_t k = s_.ReadCode(&extended);
    if (extended && l_.exit_keys.test(k)) {
      l_.exit_scan = k;
      return l_.current;
    }
    if (extended) {
      HandleScan(k);
    } else if (k == key::kEnter && l_.count == 0) {
      continue;
    } else if (k == key::kEnter) {
      return l_.current;
    } else if (k == key::kEsc) {
      return -1;
    } else if (k == key::kSpace && multi()) {
      const auto r = static_cast<std::size_t>(l_.current);
      (*l_.marks)[r] = !(*l_.marks)[r];
      MoveTo(l_.current + 1);
    } else if (k > key::kSpace && k != 127) {
      Search(static_cast<char>(k));
    }
  }
}

// --- Groups and file areas -----------------------------------------------------------------

bool Has(const GroupSet& set, unsigned n) {
  return set.Has(static_cast<std::uint8_t>(n));
}
bool Has(const FileAreaSet& set, unsigned n) {
  return set.Has(n);
}
void Put(GroupSet& set, unsigned n, bool on) {
  if (on)
    set.Add(static_cast<std::uint8_t>(n));
  else
    set.Remove(static_cast<std::uint8_t>(n));
}
void Put(FileAreaSet& set, unsigned n, bool on) {
  set.Set(n, on);
}

// Under " Group   Group name" (a multi list's header has the mark columns in front).
std::string RowText(const GroupName& g) {
  char num[12];
  std::snprintf(num, sizeof num, "%6u   ", static_cast<unsigned>(g.number));
  return num + g.name;
}

std::string RowText(const FileAreaName& a) {
  char num[10];
  std::snprintf(num, sizeof num, "%5u  ", static_cast<unsigned>(a.number));
  std::string text = num + a.name;
  if (!a.path.empty()) text += (a.name.empty() ? "(" : "  (") + a.path + ")";
  return text;
}

// The entries of a source, ordered by number.
template <class Entry>
std::vector<Entry> Fetch(const std::function<std::vector<Entry>()>& source) {
  std::vector<Entry> v;
  if (source) v = source();
  std::stable_sort(v.begin(), v.end(),
                   [](const Entry& a, const Entry& b) { return a.number < b.number; });
  return v;
}

// The pick list of `entries` (which must outlive it), starting on the first entry numbered
// `current` or above.
template <class Entry>
PickList EntryList(const std::vector<Entry>& entries, const char* title, const char* empty,
                   unsigned current) {
  PickList list;
  list.title = title;
  list.empty_message = empty;
  list.count = static_cast<int>(entries.size());
  list.row = [&entries](int i) { return RowText(entries[static_cast<std::size_t>(i)]); };
  const auto at = std::find_if(entries.begin(), entries.end(),
                               [current](const Entry& e) { return e.number >= current; });
  list.current = static_cast<int>(at - entries.begin());
  if (list.current == list.count) list.current = std::max(0, list.count - 1);
  return list;
}

// Marks the entries in `set`, runs the list and writes the marks back. Numbers in the set that
// are not in the list are left as they are.
template <class Entry, class Set>
bool EditSet(const std::vector<Entry>& entries, Set& set, const char* title, const char* empty,
             const char* keys, const char* header = "") {
  PickList list = EntryList(entries, title, empty, 0);
  list.key_line = keys;
  list.header = header;
  std::vector<bool> marks(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) marks[i] = Has(set, entries[i].number);
  list.marks = &marks;
  RunPickList(list);
  bool changed = false;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (marks[i] == Has(set, entries[i].number)) continue;
    Put(set, entries[i].number, marks[i]);
    changed = true;
  }
  return changed;
}

constexpr const char* kNoGroups = "There are no groups defined";
constexpr const char* kNoAreas = "There are no file areas defined";
constexpr const char* kPickKeys = "~Enter~-select ~Esc~-cancel";

}  // namespace

int RunPickList(PickList& list) {
  list.exit_scan = 0;
  if (list.count <= 0 && !list.show_empty) {
    if (!list.empty_message.empty()) ErrorBox(list.empty_message);
    return -1;
  }
  return PickRunner(list).Run();
}

std::function<std::vector<GroupName>()>& group_source() {
  static std::function<std::vector<GroupName>()> source;
  return source;
}

std::function<std::vector<FileAreaName>()>& file_area_source() {
  static std::function<std::vector<FileAreaName>()> source;
  return source;
}

std::optional<std::uint8_t> PickGroup(std::uint8_t current) {
  const auto groups = Fetch(group_source());
  PickList list = EntryList(groups, "Select group", kNoGroups, current);
  list.key_line = kPickKeys;
  list.header = " Group   Group name";
  const int i = RunPickList(list);
  if (i < 0) return std::nullopt;
  return groups[static_cast<std::size_t>(i)].number;
}

bool PickGroups(GroupSet& set) {
  return EditSet(Fetch(group_source()), set, "Select groups", kNoGroups,
                 "~Space~-select ~F2~-(de)select all ~Esc~-done", "   Group   Group name");
}

std::optional<FileAreaName> PickFileArea(std::uint16_t current) {
  const auto areas = Fetch(file_area_source());
  PickList list = EntryList(areas, "Select file area", kNoAreas, current);
  list.key_line = kPickKeys;
  const int i = RunPickList(list);
  if (i < 0) return std::nullopt;
  return areas[static_cast<std::size_t>(i)];
}

bool PickFileAreas(FileAreaSet& set) {
  return EditSet(Fetch(file_area_source()), set, "File areas", kNoAreas,
                 "~Space~-select ~F2~-(de)select all ~Esc~/~Enter~-done");
}

std::string NumberRangesText(int count, const std::function<bool(int)>& has) {
  std::string text;
  for (int n = 0; n < count; ++n) {
    if (!has(n)) continue;
    int last = n;
    while (last + 1 < count && has(last + 1)) ++last;
    if (!text.empty()) text += ',';
    text += std::to_string(n);
    if (last - n >= 2)
      text += '-' + std::to_string(last);
    else if (last > n)
      text += ',' + std::to_string(last);
    n = last;
  }
  return text;
}

std::string GroupSetText(const GroupSet& set) {
  return NumberRangesText(256, [&](int n) { return set.Has(static_cast<std::uint8_t>(n)); });
}

}  // namespace ks
