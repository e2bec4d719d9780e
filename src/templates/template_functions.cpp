// The functions of the template language (@just, @test, @assign, ...), the overflow buffer
// and the fortune cookie.
#include <algorithm>
#include <cctype>
#include <cstring>

#include "common/cp437.h"
#include "common/fileutil.h"
#include "templates/template_processor.h"
#include "templates/template_text.h"

namespace ks::tpl {

namespace {

constexpr std::size_t kCookieBytes = 4096;

std::uint32_t ReadLE32(const std::uint8_t* p) {
  std::uint32_t v;
  std::memcpy(&v, p, 4);  // the host is little-endian, as the record layouts require
  return v;
}

enum Code {
  kJust = 1,
  kCenter,
  kCopy,
  kTest,
  kAssign,
  kInclude,
  kAdd,
  kSub,
  kPos,
  kLen,
  kOpenOutput,
  kSetOfLimit,
  kUpperCase,
  kLowerCase,
  kCapitalize
};

struct ArgCount {
  std::size_t low, high;
};
constexpr ArgCount kArgCounts[] = {{0, 0}, {3, 5}, {2, 4}, {2, 4}, {3, 3}, {2, 2}, {1, 1}, {2, 2},
                                   {2, 2}, {2, 2}, {1, 1}, {2, 2}, {1, 1}, {1, 1}, {1, 1}, {1, 1}};

// `value` cut to at most `size` characters: at a carriage return within the field (consumed),
// whole when it fits, exactly at `size` with `exact`, else at the last blank within the field
// (consumed), else at `size`. The cut-off rest goes to `rest`.
std::string Cut(const std::string& value, std::size_t size, bool exact, std::string& rest) {
  rest.clear();
  const auto cr = value.find('\r');
  if (cr != std::string::npos && cr <= size) {
    std::size_t after = cr + 1;
    if (after < value.size() && value[after] == '\n') ++after;
    rest = value.substr(after);
    return value.substr(0, cr);
  }
  if (value.size() <= size) return value;
  std::size_t cut = size;
  std::size_t skip = 0;
  if (!exact) {
    const auto blank = value.rfind(' ', size);
    if (blank != std::string::npos && blank > 0) {
      cut = blank;
      skip = 1;
    }
  }
  rest = value.substr(cut + skip);
  return value.substr(0, cut);
}

// A piece laid out in a field: mode 0 justified left or right, 1 centred, 2 as it is.
std::string Layout(const std::string& piece, int mode, std::size_t size, char justify, char pad) {
  if (mode == 2 || piece.size() >= size) return piece;
  const std::size_t gap = size - piece.size();
  if (mode == 1) return std::string(gap / 2, pad) + piece + std::string(gap - gap / 2, pad);
  return justify == 'R' ? std::string(gap, pad) + piece : piece + std::string(gap, pad);
}

std::string Capitalized(std::string s) {
  bool start = true;
  for (char& c : s) {
    const auto u = static_cast<unsigned char>(c);
    if (std::isalpha(u)) {
      c = static_cast<char>(start ? std::toupper(u) : std::tolower(u));
      start = false;
    } else {
      start = !std::isdigit(u) && c != '\'';
    }
  }
  return s;
}

std::string Lower(std::string s) {
  for (char& c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

// A name given as "@var" (or "var"): capitals, at most 15 characters.
std::string VariableName(std::string_view arg) {
  if (!arg.empty() && arg[0] == '@') arg.remove_prefix(1);
  return Upper(std::string(arg.substr(0, kNameLimit)));
}

bool Quoted(std::string_view s, char q) {
  return s.size() >= 2 && s.front() == q && s.back() == q;
}

}  // namespace

bool TemplateProcessor::Allowed(const std::string& file) const {
  return !settings_.local_files_only || file.find('/') == std::string::npos;
}

// The value of one argument: a macro evaluated, a quoted constant without its quotes, anything
// else as it stands; nothing when it names no macro.
std::optional<std::string> TemplateProcessor::Argument(std::string_view arg) {
  if (arg.size() > 1 && arg[0] == '@') {
    const MacroParts p = SplitMacro(arg);
    if (!p.call) return ValueOf(Upper(std::string(p.name)));
    const std::string r = Evaluate(arg, false);
    if (r == arg) return std::nullopt;
    return r;
  }
  if (Quoted(arg, '"')) return std::string(arg.substr(1, arg.size() - 2));
  return std::string(arg);
}

std::string TemplateProcessor::Function(std::string_view macro, std::string_view name,
                                        std::string_view args, bool at_eol) {
  const std::string eol = at_eol ? "\r" : "";
  const std::string unchanged = std::string(macro) + eol;
  const int code = FunctionCode(name);
  if (code == 0) return unchanged;
  const std::vector<std::string> raw = SplitArguments(args);
  const std::size_t n = raw.size();
  if (n < kArgCounts[code].low || n > kArgCounts[code].high) return unchanged;
  if (code == kTest) {
    // Inside suppressed lines every test suppresses too, so that its @end still matches.
    if (Suppressing()) {
      if (tests_.size() < kMaxTests) tests_.push_back({0, 1, 1, blocks_.size()});
      return {};
    }
    return TestCall(raw) ? std::string() : unchanged;
  }
  if (Suppressing()) return unchanged;
  bool ok = true;
  std::string value;
  switch (code) {
    case kJust:
    case kCenter:
      value = JustOrCenter(raw, code == kCenter, ok);
      break;
    case kCopy:
      value = CopyPart(raw, ok);
      break;
    case kAssign: {
      std::string_view text = raw[1];
      if (Quoted(text, '\'')) text = text.substr(1, text.size() - 2);
      const auto v = Argument(text);
      if (!v) return unchanged;
      const std::string var = VariableName(raw[0]);
      if (var.empty()) return unchanged;
      Named* slot = Variable(var);
      if (!slot && variables_.size() < kMaxVariables)
        slot = &variables_.emplace_back(Named{var, ""});
      if (slot) slot->value = v->substr(0, kLineLimit);
      return {};
    }
    case kAdd:
    case kSub:
      return Arithmetic(code, raw) ? std::string() : unchanged;
    case kInclude: {
      const auto file = Argument(raw[0]);
      if (!file) return unchanged;
      if (!include_ && Allowed(*file) && FileExists(*file))
        include_ = std::fopen(file->c_str(), "rb");
      return {};
    }
    case kPos: {
      const auto a = Argument(raw[0]);
      const auto b = Argument(raw[1]);
      if (!a || !b) return unchanged;
      const auto at = Upper(*a).find(Upper(*b));
      value = at == std::string::npos ? "NIL" : std::to_string(at);
      break;
    }
    case kLen: {
      const auto a = Argument(raw[0]);
      if (!a) return unchanged;
      value = std::to_string(a->size());
      break;
    }
    case kOpenOutput: {
      const auto file = Argument(raw[0]);
      const auto mode = Argument(raw[1]);
      if (!file || !mode || output_) return unchanged;
      const std::string m = Upper(*mode);
      if (m != "REWRITE" && m != "APPEND") return unchanged;
      if (Allowed(*file)) output_ = std::fopen(file->c_str(), m == "REWRITE" ? "wb" : "ab");
      if (!output_) return "Error opening " + *file + " for output" + eol;
      return {};
    }
    case kSetOfLimit: {
      const auto v = Argument(raw[0]);
      long long limit = 0;
      if (!v) return unchanged;
      if (ParseWhole(*v, limit)) overflow_limit_ = static_cast<int>(std::clamp(limit, 0LL, 255LL));
      return {};
    }
    default: {  // the three case conversions
      const auto v = Argument(raw[0]);
      if (!v) return unchanged;
      value = code == kUpperCase ? Upper(*v) : code == kLowerCase ? Lower(*v) : Capitalized(*v);
      break;
    }
  }
  return ok ? value + eol : unchanged;
}

std::string TemplateProcessor::JustOrCenter(const std::vector<std::string>& v, bool center,
                                            bool& ok) {
  ok = false;
  const auto value = Argument(v[0]);
  if (!value) return {};
  const std::size_t at = center ? 1 : 2;  // where the size stands
  char justify = 'C';
  if (!center) {
    const auto j = Argument(v[1]);
    if (!j || (Upper(*j) != "L" && Upper(*j) != "R")) return {};
    justify = Upper(*j)[0];
  }
  long long size = 0;
  const auto size_text = Argument(v[at]);
  if (!size_text || !ParseWhole(*size_text, size) || size < 1 || size > 255) return {};
  char pad = ' ';
  if (v.size() > at + 1) {
    const auto p = Argument(v[at + 1]);
    if (!p) return {};
    if (!p->empty()) pad = (*p)[0];
  }
  bool exact = false;
  if (v.size() > at + 2) {
    const auto r = Argument(v[at + 2]);
    if (!r || Upper(*r) != "R") return {};
    exact = true;
  }
  std::string rest;
  const std::string piece = Cut(*value, static_cast<std::size_t>(size), exact, rest);
  const int mode = center ? 1 : 0;
  if (!rest.empty())
    overflow_ = {rest.substr(0, kOverflowLimit), mode, static_cast<int>(size), justify, pad, 1, 0};
  ok = true;
  return Layout(piece, mode, static_cast<std::size_t>(size), justify, pad);
}

std::string TemplateProcessor::CopyPart(const std::vector<std::string>& v, bool& ok) {
  ok = false;
  const auto value = Argument(v[0]);
  const auto begin_text = Argument(v[1]);
  long long begin = 0;
  if (!value || !begin_text || !ParseWhole(*begin_text, begin) || begin < 1) return {};
  const std::string part =
      static_cast<std::size_t>(begin) <= value->size() ? value->substr(begin - 1) : std::string();
  long long num = static_cast<long long>(part.size());
  if (v.size() > 2) {
    const auto num_text = Argument(v[2]);
    if (!num_text || !ParseWhole(*num_text, num) || num < 0) return {};
  }
  bool exact = false;
  if (v.size() > 3) {
    const auto r = Argument(v[3]);
    if (!r || Upper(*r) != "R") return {};
    exact = true;
  }
  ok = true;
  if (static_cast<std::size_t>(num) >= part.size()) return part;
  std::string rest;
  const std::string piece = Cut(part, static_cast<std::size_t>(num), exact, rest);
  if (!rest.empty())
    overflow_ = {rest.substr(0, kOverflowLimit),
                 2,
                 static_cast<int>(std::min(num, 2000LL)),
                 'L',
                 ' ',
                 static_cast<int>(std::min(begin, 2000LL)),
                 0};
  return piece;
}

bool TemplateProcessor::TestCall(const std::vector<std::string>& v) {
  const auto a = Argument(v[0]);
  const auto b = Argument(v[2]);
  const std::string op(Trim(v[1]));
  if (!a || !b) return false;
  const std::string x = Upper(*a), y = Upper(*b);
  bool result;
  if (op == "=") {
    result = x == y;
  } else if (op == "<>") {
    result = x != y;
  } else if (op == "<") {
    result = x < y;
  } else if (op == ">") {
    result = x > y;
  } else {
    return false;
  }
  if (tests_.size() < kMaxTests)
    tests_.push_back({1, static_cast<std::uint8_t>(!result), 1, blocks_.size()});
  return true;
}

bool TemplateProcessor::Arithmetic(int code, const std::vector<std::string>& raw) {
  Named* var = Variable(VariableName(raw[0]));
  std::string_view text = raw[1];
  if (Quoted(text, '\'')) text = text.substr(1, text.size() - 2);
  const auto value = Argument(text);
  if (!var || !value) return false;
  const bool add = code == kAdd;
  if (var->value.find('.') != std::string::npos || value->find('.') != std::string::npos) {
    double a = 0, b = 0;
    if (ParseReal(var->value, a) && ParseReal(*value, b))
      var->value = RealText(add ? a + b : a - b);
    else if (add)
      var->value = (var->value + *value).substr(0, kLineLimit);
    return true;
  }
  long long a = 0, b = 0;
  if (ParseWhole(var->value, a) && ParseWhole(*value, b)) {
    long long r = 0;
    if (!(add ? __builtin_add_overflow(a, b, &r) : __builtin_sub_overflow(a, b, &r)))
      var->value = std::to_string(r);
  } else if (add) {
    var->value = (var->value + *value).substr(0, kLineLimit);
  }
  return true;
}

// The next piece of the overflow text, laid out as the call that filled it; each counts
// against the overflow line limit, which empties the buffer when reached.
std::string TemplateProcessor::OverflowPiece() {
  if (overflow_.text.empty()) return {};
  if (overflow_.lines >= overflow_limit_) {
    overflow_.text.clear();
    return {};
  }
  const auto size = static_cast<std::size_t>(std::max(overflow_.size, 1));
  std::string rest;
  const std::string piece = Cut(overflow_.text, size, false, rest);
  overflow_.text = rest;
  if (++overflow_.lines >= overflow_limit_) overflow_.text.clear();
  return Layout(piece, overflow_.mode, size, overflow_.justify, overflow_.pad);
}

// Chooses a cookie of COOKIE.DAT: the count N, then N - 1 offsets; cookie k of 1 .. N - 1 is
// text with CR line ends, ended by a byte 255.
void TemplateProcessor::StartCookie() {
  const std::string dir = settings_.system_dir.empty() ? "./" : AddSlash(settings_.system_dir);
  std::string path = dir + "COOKIE.DAT";
  for (const std::string& f : ListFiles(dir))
    if (Upper(f) == "COOKIE.DAT") path = dir + f;
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return;
  std::uint8_t word[4];
  std::vector<char> buf(kCookieBytes);
  std::size_t got = 0;
  if (std::fread(word, 1, 4, f) == 4) {
    const std::uint32_t n = ReadLE32(word);
    if (n >= 2) {
      random_ ^= random_ << 13;
      random_ ^= random_ >> 17;
      random_ ^= random_ << 5;
      const std::uint32_t k = n - (random_ % (n - 1) + 1);
      if (std::fseek(f, static_cast<long>(4) * k, SEEK_SET) == 0 &&
          std::fread(word, 1, 4, f) == 4 &&
          std::fseek(f, static_cast<long>(ReadLE32(word)), SEEK_SET) == 0)
        got = std::fread(buf.data(), 1, buf.size(), f);
    }
  }
  std::fclose(f);
  cookie_lines_.clear();
  cookie_next_ = 0;
  std::string line;
  for (std::size_t i = 0; i < got && buf[i] != '\xFF'; ++i) {
    if (buf[i] == '\n' && i > 0 && buf[i - 1] == '\r') continue;
    if (buf[i] == '\r') {
      cookie_lines_.push_back(std::move(line));
      line.clear();
    } else if (line.size() < kLineLimit) {
      line += buf[i];
    }
  }
  if (!line.empty()) cookie_lines_.push_back(std::move(line));
}

}  // namespace ks::tpl
