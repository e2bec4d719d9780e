#include "tui/fields.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>

#include "common/fileutil.h"
#include "common/groupset.h"
#include "common/halt.h"
#include "common/netaddr.h"
#include "common/pstr.h"
#include "tui/inputline.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kAkaPositions = 22;
constexpr int kZoneNetPositions = 10;
constexpr int kExtLength = 3;
constexpr int kGroupPositions = 3;
constexpr int kWideWidth = 30;  // group sets and action fields without a width of their own

// How a field takes its input.
enum class Input {
  kText,      // typed, committed when the field is left
  kToggle,    // Bol: Space, +, - toggle; Y and N set
  kChoice,    // Chrs: Space and + step forward, - back
  kGroups,    // GrpArray: Space or F2 opens the group pick list
  kAction,    // `select`: Enter, Space or F2 calls it
  kShowOnly,  // `show` without `select`: drawn, never current
};

Input InputOf(const FieldDef& f) {
  if (f.select) return Input::kAction;
  if (f.show) return Input::kShowOnly;
  switch (f.type) {
    case Bol:
      return Input::kToggle;
    case Chrs:
      return Input::kChoice;
    case GrpArray:
      return Input::kGroups;
    default:
      return Input::kText;
  }
}

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}
char Capital(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

// --- The value in the record --------------------------------------------------------------
// Records are little-endian and so is the host (common/le.h): numbers are copied as they lie.

std::uint32_t ReadWord(const std::uint8_t* p, int bytes) {
  std::uint32_t v = 0;
  std::memcpy(&v, p, static_cast<std::size_t>(bytes));
  return v;
}

void WriteWord(std::uint8_t* p, int bytes, std::uint32_t v) {
  std::memcpy(p, &v, static_cast<std::size_t>(bytes));
}

int NumberBytes(const FieldDef& f) {
  if (f.type == Long) return 4;
  return f.size == 1 || f.size == 4 ? f.size : 2;
}

// Int counts as signed except in one byte, where it holds group numbers; a one-byte Int
// whose range goes below 0 is signed too.
bool IsSigned(const FieldDef& f) {
  return f.type == Int && (NumberBytes(f) > 1 || f.low < 0);
}

std::int64_t GetNumber(const FieldDef& f, const std::uint8_t* rec) {
  const int bytes = NumberBytes(f);
  const std::uint32_t u = ReadWord(rec + f.offset, bytes);
  if (!IsSigned(f)) return u;
  if (bytes == 1) return std::int64_t{static_cast<std::int8_t>(u)};
  return bytes == 2 ? std::int64_t{static_cast<std::int16_t>(u)}
                    : std::int64_t{static_cast<std::int32_t>(u)};
}

// The numbers accepted: low..high, or all the field's bytes hold when neither is given.
std::pair<std::int64_t, std::int64_t> NumberRange(const FieldDef& f) {
  if (f.low != 0 || f.high != 0) return {f.low, f.high};
  const int bits = 8 * NumberBytes(f);
  if (IsSigned(f)) return {-(std::int64_t{1} << (bits - 1)), (std::int64_t{1} << (bits - 1)) - 1};
  return {0, (std::int64_t{1} << bits) - 1};
}

// Bol and Chrs with a mask keep their value in some bits of a byte or a word.
int BitBytes(const FieldDef& f) {
  return f.size == 2 ? 2 : 1;
}

bool GetBool(const FieldDef& f, const std::uint8_t* rec) {
  if (f.mask == 0) return rec[f.offset] != 0;
  return (ReadWord(rec + f.offset, BitBytes(f)) & f.mask) != 0;
}

void SetBool(const FieldDef& f, std::uint8_t* rec, bool on) {
  if (f.mask == 0) {
    rec[f.offset] = on ? 1 : 0;
    return;
  }
  const std::uint32_t w = ReadWord(rec + f.offset, BitBytes(f));
  WriteWord(rec + f.offset, BitBytes(f), on ? w | f.mask : w & ~std::uint32_t{f.mask});
}

int GetChoice(const FieldDef& f, const std::uint8_t* rec) {
  if (f.mask == 0) return rec[f.offset];
  const std::uint32_t w = ReadWord(rec + f.offset, BitBytes(f));
  return static_cast<int>((w & f.mask) >> std::countr_zero(f.mask));
}

void SetChoice(const FieldDef& f, std::uint8_t* rec, int value) {
  if (f.mask == 0) {
    rec[f.offset] = static_cast<std::uint8_t>(value);
    return;
  }
  const std::uint32_t w = ReadWord(rec + f.offset, BitBytes(f)) & ~std::uint32_t{f.mask};
  const std::uint32_t bits = (static_cast<std::uint32_t>(value) << std::countr_zero(f.mask));
  WriteWord(rec + f.offset, BitBytes(f), w | (bits & f.mask));
}

int StrCapacity(const FieldDef& f) {
  return f.type == Ext && f.size == 0 ? kExtLength : f.size;
}

std::string GetStr(const FieldDef& f, const std::uint8_t* rec) {
  return ReadPStr(rec + f.offset, static_cast<std::size_t>(StrCapacity(f)));
}

void SetStr(const FieldDef& f, std::uint8_t* rec, const std::string& s) {
  const auto cap = static_cast<std::size_t>(StrCapacity(f));
  const std::size_t n = std::min(s.size(), cap);
  rec[f.offset] = static_cast<std::uint8_t>(n);
  std::memcpy(rec + f.offset + 1, s.data(), n);
  std::memset(rec + f.offset + 1 + n, 0, cap - n);
}

double GetReal(const FieldDef& f, const std::uint8_t* rec) {
  double v = 0;
  std::memcpy(&v, rec + f.offset, sizeof v);
  return v;
}

// The digit positions of a real's picture before and after its period.
struct RealShape {
  int before = 0, decimals = 0;
};

RealShape ShapeOf(const std::string& picture) {
  const std::size_t dot = std::min(picture.find('.'), picture.size());
  const auto digits = [&](std::size_t from, std::size_t to) {
    return static_cast<int>(std::count(picture.begin() + static_cast<std::ptrdiff_t>(from),
                                       picture.begin() + static_cast<std::ptrdiff_t>(to), '#'));
  };
  return {digits(0, dot), digits(std::min(dot + 1, picture.size()), picture.size())};
}

std::string FormatReal(double v, int decimals) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

// The reals accepted: low..high when given, else what the picture's digits can show.
std::pair<double, double> RealRange(const FieldDef& f) {
  if (f.high > f.low) return {static_cast<double>(f.low), static_cast<double>(f.high)};
  const RealShape shape = ShapeOf(f.picture);
  return {0.0, std::pow(10.0, shape.before) - std::pow(10.0, -shape.decimals)};
}

// A zone:net field holds only the first two words of an address.
std::size_t AddrBytes(const FieldDef& f) {
  return f.zone_net ? 4 : sizeof(NetAddr);
}

NetAddr GetAddr(const FieldDef& f, const std::uint8_t* rec) {
  NetAddr a;
  std::memcpy(&a, rec + f.offset, AddrBytes(f));
  return a;
}

// An address not given (zone 0) shows as nothing.
std::string AddrText(const FieldDef& f, const NetAddr& a) {
  if (a.zone == 0) return {};
  if (f.zone_net) return std::to_string(a.zone) + ":" + std::to_string(a.net);
  return FormatAddr(a);
}

GroupSet GetGroups(const FieldDef& f, const std::uint8_t* rec) {
  GroupSet set;
  std::memcpy(&set, rec + f.offset, sizeof set);
  return set;
}

// True when the value counts as not given (for `na_when_empty`).
bool IsEmpty(const FieldDef& f, const std::uint8_t* rec) {
  switch (f.type) {
    case Str:
    case Path:
    case Ext:
      return rec[f.offset] == 0;
    case Int:
    case Wrd:
    case Long:
      return GetNumber(f, rec) == 0;
    case Rel:
      return GetReal(f, rec) == 0.0;
    case Bol:
      return !GetBool(f, rec);
    case Chrs:
      return GetChoice(f, rec) == 0;
    case Aka:
      return GetAddr(f, rec) == NetAddr{};
    case GrpArray:
      return GetGroups(f, rec).Empty();
  }
  return false;
}

// The value as text, whatever the field's state.
std::string RawText(const FieldDef& f, const std::uint8_t* rec) {
  if (InputOf(f) == Input::kAction || InputOf(f) == Input::kShowOnly) return f.show(rec);
  if (f.get_text) return f.get_text(rec);
  switch (f.type) {
    case Str:
    case Path:
    case Ext:
      return GetStr(f, rec);
    case Int:
    case Wrd:
    case Long:
      return std::to_string(GetNumber(f, rec));
    case Rel:
      return FormatReal(GetReal(f, rec), ShapeOf(f.picture).decimals);
    case Bol:
      return GetBool(f, rec) ? "Yes" : "No";
    case Chrs: {
      const int v = GetChoice(f, rec);
      if (v < static_cast<int>(f.choices.size())) return f.choices[static_cast<std::size_t>(v)];
      return std::to_string(v);
    }
    case Aka:
      return AddrText(f, GetAddr(f, rec));
    case GrpArray:
      return GroupSetText(GetGroups(f, rec));
  }
  return {};
}

// Typed positions of a text field.
int TextLength(const FieldDef& f) {
  switch (f.type) {
    case Int:
    case Wrd:
    case Long: {
      if (f.group) return kGroupPositions;
      const auto [low, high] = NumberRange(f);
      return static_cast<int>(std::max(std::to_string(low).size(), std::to_string(high).size()));
    }
    case Rel:
      return static_cast<int>(f.picture.size());
    case Aka:
      return f.zone_net ? kZoneNetPositions : kAkaPositions;
    default:
      return StrCapacity(f);
  }
}

int KindWidth(const FieldDef& f) {
  switch (InputOf(f)) {
    case Input::kText:
      return TextLength(f);
    case Input::kToggle:
      return 3;  // "Yes"
    case Input::kChoice: {
      std::size_t w = 1;
      for (const auto& c : f.choices) w = std::max(w, c.size());
      return static_cast<int>(w);
    }
    default:
      return kWideWidth;
  }
}

int Width(const FieldDef& f) {
  return f.width > 0 ? f.width : KindWidth(f);
}

std::string Clip(std::string s, int width) {
  if (static_cast<int>(s.size()) > width) s.resize(static_cast<std::size_t>(width));
  return s;
}

// Whether a typed character may stand at `pos` of a text field, made a capital where the
// field wants one.
bool AcceptChar(const FieldDef& f, char& c, int pos) {
  switch (f.type) {
    case Str:
      if (static_cast<std::size_t>(pos) < f.picture.size()) {
        const char p = f.picture[static_cast<std::size_t>(pos)];
        if (p == '#' && !IsDigit(c)) return false;
        if (p == '@' && !std::isalpha(static_cast<unsigned char>(c))) return false;
        if (p == 'H' && c != ' ' && !std::isxdigit(static_cast<unsigned char>(c))) return false;
        if (p == '!' || p == 'H') c = Capital(c);
      }
      if (f.upper) c = Capital(c);
      return true;
    case Ext:
      c = Capital(c);
      return c != ' ' && c != '.';
    case Int:
    case Wrd:
    case Long:
      return IsDigit(c) || (c == '-' && pos == 0 && NumberRange(f).first < 0);
    case Rel:
      return IsDigit(c) || c == '.' || (c == '-' && pos == 0 && RealRange(f).first < 0);
    case Aka:
      return IsDigit(c) || c == ':' || (!f.zone_net && (c == '/' || c == '.'));
    default:
      return true;
  }
}

// --- Committing typed text ------------------------------------------------------------------
// `ask` is false when the page is being left with Esc: nothing is shown and nothing asked, a
// refused value is simply not written.

bool Refuse(bool ask, const std::string& message) {
  if (ask) ErrorBox("/" + message);
  return false;
}

bool CommitNumber(const FieldDef& f, const std::string& text, std::uint8_t* rec, bool ask) {
  const auto [low, high] = NumberRange(f);
  std::int64_t v = 0;
  if (!(text.empty() && f.na_when_empty)) {
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || v < low || v > high)
      return Refuse(
          ask, "Value must be between " + std::to_string(low) + " and " + std::to_string(high));
  }
  WriteWord(rec + f.offset, NumberBytes(f), static_cast<std::uint32_t>(v));
  return true;
}

bool CommitReal(const FieldDef& f, const std::string& text, std::uint8_t* rec, bool ask) {
  const auto [low, high] = RealRange(f);
  double v = 0;
  if (!(text.empty() && f.na_when_empty)) {
    const auto [end, ec] =
        std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::fixed);
    const int decimals = ShapeOf(f.picture).decimals;
    const double unit = std::pow(10.0, -decimals);
    v = std::round(v / unit) * unit;  // what the picture can show
    if (ec != std::errc() || end != text.data() + text.size() || v < low - unit / 2 ||
        v > high + unit / 2) {
      return Refuse(ask, "Value must be between " + FormatReal(low, decimals) + " and " +
                             FormatReal(high, decimals));
    }
  }
  std::memcpy(rec + f.offset, &v, sizeof v);
  return true;
}

// An empty text clears the address; zone:net is read as an address whose node is 0.
bool CommitAddr(const FieldDef& f, const std::string& text, std::uint8_t* rec, bool ask) {
  std::optional<NetAddr> a = NetAddr{};
  if (!text.empty()) a = ParseAddr(f.zone_net ? text + "/0" : text);
  if (!a) return Refuse(ask, f.zone_net ? "Invalid zone:net" : "Invalid address");
  std::memcpy(rec + f.offset, &*a, AddrBytes(f));
  return true;
}

// A directory gets its trailing "/"; one that does not exist may be created on the spot,
// and is taken as typed when the user does not want it created.
bool CommitPath(const FieldDef& f, const std::string& text, std::uint8_t* rec, bool ask) {
  const std::string path = AddSlash(text);
  if (static_cast<int>(path.size()) > StrCapacity(f)) return Refuse(ask, "Path too long");
  if (ask && ui().offer_create_dirs && !path.empty() && !DirExists(path) &&
      AskYesNo("Create directory?") && !MakeDirs(path))
    return Refuse(ask, "Error creating directory");
  SetStr(f, rec, path);
  return true;
}

bool Commit(const FieldDef& f, const std::string& text, std::uint8_t* rec, bool ask) {
  if (f.set_text) {
    const std::string why = f.set_text(rec, text);
    return why.empty() || Refuse(ask, why);
  }
  switch (f.type) {
    case Int:
    case Wrd:
    case Long:
      return CommitNumber(f, text, rec, ask);
    case Rel:
      return CommitReal(f, text, rec, ask);
    case Aka:
      return CommitAddr(f, text, rec, ask);
    case Path:
      return CommitPath(f, text, rec, ask);
    default:
      SetStr(f, rec, text);
      return true;
  }
}

// --- Keys ---------------------------------------------------------------------------------

struct KeyPress {
  std::uint8_t code = 0;
  bool extended = false;
  bool Is(std::uint8_t c) const { return !extended && code == c; }
  bool IsScan(std::uint8_t s) const { return extended && code == s; }
};

KeyPress ReadKeyPress() {
  KeyPress k;
  k.code = scr().ReadCode(&k.extended);
  return k;
}

// Characters that end the editing of a field: Enter and Tab move on, Esc leaves the page.
// Every extended key that a field does not use ends it too.
bool EndsField(const KeyPress& k) {
  return k.extended || k.code == key::kEnter || k.code == key::kTab || k.code == key::kEsc;
}

// Keys that change a toggle, choice, group set or action field at once; true when `k` was one.
bool ChangeValue(const FieldDef& f, const KeyPress& k, std::uint8_t* rec) {
  const char c = k.extended ? '\0' : Capital(static_cast<char>(k.code));
  const bool f2 = k.IsScan(key::kF2);
  switch (InputOf(f)) {
    case Input::kToggle:
      if (c == ' ' || c == '+' || c == '-')
        SetBool(f, rec, !GetBool(f, rec));
      else if (c == 'Y' || c == 'N')
        SetBool(f, rec, c == 'Y');
      else
        return false;
      return true;
    case Input::kChoice: {
      const int n = static_cast<int>(f.choices.size());
      const int step = c == ' ' || c == '+' ? 1 : c == '-' ? -1 : 0;
      if (n == 0 || step == 0) return false;
      const int v = std::min(GetChoice(f, rec), n - 1);
      SetChoice(f, rec, (v + step + n) % n);
      return true;
    }
    case Input::kGroups: {
      if (c != ' ' && !f2) return false;
      GroupSet set = GetGroups(f, rec);
      if (PickGroups(set)) std::memcpy(rec + f.offset, &set, sizeof set);
      return true;
    }
    case Input::kAction:
      // Enter has nothing else to do on an action field, so it selects rather than moves on.
      if (c != ' ' && !k.Is(key::kEnter) && !f2) return false;
      f.select(rec);
      return true;
    default:
      return false;
  }
}

void DrawValue(const EditPage& page, const FieldDef& f, const std::uint8_t* rec, int left, int top,
               std::uint8_t attr) {
  const std::string text = page.ValueText(f, rec);
  // "n/a" is shown whole even in a field narrower than three cells.
  const int w = std::max(Width(f), text == "n/a" ? 3 : 0);
  scr().WriteStr(left + f.col, top + f.row, attr, Clip(text, w), w);
}

// Edits a typed field until a key that ends it, which is returned once the text was written
// to the record. A refused text keeps the cursor in the field, except with Esc, which drops it.
KeyPress EditText(const FieldDef& f, std::uint8_t* rec, int col, int row, int topic, bool& insert) {
  Screen& s = scr();
  const std::string initial = f.na_when_empty && IsEmpty(f, rec) ? std::string() : RawText(f, rec);
  LineEditor ed(initial, TextLength(f));
  ed.accept = [&f](char& c, int pos) { return AcceptChar(f, c, pos); };
  s.SetCursorShape(CursorShape::kUnderline);
  // The first character typed on arriving at a field replaces its value, as in most form
  // editors; an editing key first (End, Left, Backspace...) keeps the value to change it.
  bool fresh = true;
  for (;;) {
    ed.insert = insert;
    ed.Show(col, row, Width(f), ui().colours[kDataInput]);
    const KeyPress k = ReadKeyPress();
    // A group number may be typed, or taken from the pick list with Space or F2.
    if (f.group && (k.Is(key::kSpace) || k.IsScan(key::kF2))) {
      int current = 0;
      std::from_chars(ed.text().data(), ed.text().data() + ed.text().size(), current);
      if (auto g = PickGroup(static_cast<std::uint8_t>(current))) ed.set_text(std::to_string(*g));
      s.SetCursorShape(CursorShape::kUnderline);
      continue;
    }
    if (fresh && !k.extended && k.code >= key::kSpace) ed.set_text({});
    fresh = false;
    if (ed.HandleKey(k.code, k.extended)) {
      insert = ed.insert;
      continue;
    }
    if (k.extended && HandleCommonKey(k.code, topic)) continue;
    if (!EndsField(k)) continue;
    // An untouched value is not checked again: passing through a field never nags.
    if (ed.text() == initial) return k;
    // A field that asks before a change is taken keeps its old value when the page is left.
    if (k.Is(key::kEsc)) {
      if (!f.confirm) Commit(f, ed.text(), rec, false);
      return k;
    }
    const std::int64_t old = f.confirm ? GetNumber(f, rec) : 0;
    if (!Commit(f, ed.text(), rec, true)) continue;
    if (!f.confirm || GetNumber(f, rec) == old || f.confirm(old, rec)) return k;
    WriteWord(rec + f.offset, NumberBytes(f), static_cast<std::uint32_t>(old));
    ed.set_text(initial);
    s.SetCursorShape(CursorShape::kUnderline);
    fresh = true;
  }
}

// Edits a toggle, choice, group set or action field, whose keys change the record at once.
KeyPress EditValue(const EditPage& page, const FieldDef& f, std::uint8_t* rec, int left, int top) {
  Screen& s = scr();
  const int shown_top = top - page.scroll_top();
  for (;;) {
    DrawValue(page, f, rec, left, shown_top, ui().colours[kDataInput]);
    s.GotoXY(left + f.col, shown_top + f.row);
    s.SetCursorShape(CursorShape::kHidden);
    const KeyPress k = ReadKeyPress();
    if (ChangeValue(f, k, rec)) {
      page.Draw(rec, left, top);  // other fields may now apply or not
      continue;
    }
    if (k.extended && HandleCommonKey(k.code, page.topic)) continue;
    if (EndsField(k)) return k;
  }
}

// Without a field to edit only the keys that leave do anything.
KeyPress WaitForLeave(int topic) {
  scr().SetCursorShape(CursorShape::kHidden);
  for (;;) {
    const KeyPress k = ReadKeyPress();
    if (k.extended && HandleCommonKey(k.code, topic)) continue;
    if (EndsField(k)) return k;
  }
}

}  // namespace

EditPage::EditPage(std::vector<FieldDef> fields)
    : fields_(std::move(fields)), broken_(fields_.size(), false) {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const FieldDef& f = fields_[i];
    if (f.type == Str && !f.picture.empty() && f.picture.size() != f.size) {
      MessageBoxLines({"Definition-error 01: Picture-length <> String-length", "Program aborted"},
                      {"Ok"});
      throw ProgramHalt{0};
    }
    if (f.type == Rel && ShapeOf(f.picture).before < 2) {
      ErrorBox("/Number of digits before the period must be greater than 1");
      broken_[i] = true;
    }
  }
}

std::string EditPage::ValueText(const FieldDef& f, const std::uint8_t* rec) const {
  if (f.applies && !f.applies(rec)) return "n/a";
  if (f.na_when_empty && InputOf(f) != Input::kAction && InputOf(f) != Input::kShowOnly &&
      IsEmpty(f, rec))
    return "n/a";
  return RawText(f, rec);
}

int EditPage::FieldAt(int col, int row) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const FieldDef& f = fields_[i];
    if (f.row == row && col >= f.col && col < f.col + std::max(1, Width(f)))
      return static_cast<int>(i);
  }
  return -1;
}

bool EditPage::Editable(int i, const std::uint8_t* rec) const {
  if (i < 0 || i >= static_cast<int>(fields_.size()) || broken_[static_cast<std::size_t>(i)])
    return false;
  const FieldDef& f = field(i);
  return !f.label && InputOf(f) != Input::kShowOnly && (!f.applies || f.applies(rec)) &&
         (!f.shown || f.shown(rec));
}

void EditPage::SetView(int top, int rows, int left, int cols) {
  view_top_ = top;
  view_rows_ = rows;
  view_left_ = left;
  view_cols_ = cols;
  scroll_top_ = 0;
}

bool EditPage::Visible(const FieldDef& f) const {
  const int row = f.row - scroll_top_;
  return view_rows_ == 0 || (row >= view_top_ && row < view_top_ + view_rows_);
}

bool EditPage::Follow(int i) {
  if (view_rows_ == 0 || i < 0 || i >= static_cast<int>(fields_.size())) return false;
  const int row = field(i).row;
  const int before = scroll_top_;
  if (row - scroll_top_ < view_top_) scroll_top_ = row - view_top_;
  if (row - scroll_top_ >= view_top_ + view_rows_) scroll_top_ = row - view_top_ - view_rows_ + 1;
  return scroll_top_ != before;
}

void EditPage::Draw(const std::uint8_t* rec, int left, int top) const {
  const auto& c = ui().colours;
  Screen& s = scr();
  if (view_rows_ > 0)
    s.FillRect(left + view_left_, top + view_top_, left + view_left_ + view_cols_ - 1,
               top + view_top_ + view_rows_ - 1, ' ', c[kWindowText]);
  const int shown_top = top - scroll_top_;
  // Hidden fields are blanked first, so that a field shown in the same place is drawn over.
  for (const FieldDef& f : fields_) {
    if (!f.shown || f.shown(rec) || !Visible(f)) continue;
    const std::string blank(f.mark.size() + f.prompt.size(), ' ');
    s.WriteStr(left + f.prompt_col, shown_top + f.row, c[kWindowText], blank);
    if (!f.label)
      s.WriteStr(left + f.col, shown_top + f.row, c[kWindowText],
                 std::string(static_cast<std::size_t>(std::max(0, Width(f))), ' '));
  }
  int last_row = 0;
  for (int i = 0; i < static_cast<int>(fields_.size()); ++i) {
    const FieldDef& f = field(i);
    last_row = std::max(last_row, f.row);
    if (!Visible(f) || (f.shown && !f.shown(rec))) continue;
    if (!f.prompt.empty() || !f.mark.empty())
      s.WriteStr(left + f.prompt_col, shown_top + f.row, c[kWindowText], f.mark + f.prompt);
    if (!f.label) DrawValue(*this, f, rec, left, shown_top, c[kWindowData]);
  }
  if (view_rows_ == 0) return;
  const int arrow_col = left + view_left_ + view_cols_ - 1;
  if (scroll_top_ > 0) s.WriteStr(arrow_col, top + view_top_, c[kWindowText], "\x18");
  if (last_row - scroll_top_ >= view_top_ + view_rows_)
    s.WriteStr(arrow_col, top + view_top_ + view_rows_ - 1, c[kWindowText], "\x19");
}

int EditPage::Seek(int from, int step, const std::uint8_t* rec) const {
  const int n = static_cast<int>(fields_.size());
  if (n == 0) return 0;
  for (int k = 0; k < n; ++k) {
    const int i = (((from + k * step) % n) + n) % n;
    if (Editable(i, rec)) return i;
  }
  return std::clamp(from, 0, n - 1);
}

PageResult EditPage::Run(std::uint8_t* rec, int left, int top, int first) {
  Screen& s = scr();
  const CursorShape shape = s.cursor_shape();
  const int n = static_cast<int>(fields_.size());
  bool insert = true;
  int cur = Seek(first, 1, rec);
  Draw(rec, left, top);
  PageResult result;
  for (;;) {
    KeyPress k;
    if (Follow(cur)) Draw(rec, left, top);
    if (!Editable(cur, rec)) {
      k = WaitForLeave(topic);
    } else {
      const FieldDef& f = field(cur);
      ShowStatus(f.help);
      k = InputOf(f) == Input::kText
              ? EditText(f, rec, left + f.col, top - scroll_top_ + f.row, topic, insert)
              : EditValue(*this, f, rec, left, top);
    }
    Draw(rec, left, top);
    if (k.Is(key::kEsc) || (k.extended && exit_keys.test(k.code))) {
      result = {k.code, cur};
      break;
    }
    if (k.Is(key::kEnter) || k.Is(key::kTab) || k.IsScan(key::kDown)) {
      cur = Seek(cur + 1, 1, rec);
    } else if (k.IsScan(key::kUp) || k.IsScan(key::kShiftTab)) {
      cur = Seek(cur - 1, -1, rec);
    } else if (k.IsScan(key::kPgUp)) {
      cur = Seek(0, 1, rec);
    } else if (k.IsScan(key::kPgDn)) {
      cur = Seek(n - 1, -1, rec);
    } else if (on_key && on_key(k.code, cur, rec)) {
      Draw(rec, left, top);
      cur = Seek(cur, 1, rec);  // the record may no longer have this field
    }
  }
  s.SetCursorShape(shape);
  return result;
}

}  // namespace ks
