#include "templates/template_processor.h"

#include <algorithm>
#include <cctype>
#include <ctime>

#include "common/cp437.h"
#include "common/fileutil.h"
#include "templates/template_text.h"

namespace ks::tpl {

namespace {

constexpr const char* kDayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
constexpr const char* kMonthNames[] = {"January",   "February", "March",    "April",
                                       "May",       "June",     "July",     "August",
                                       "September", "October",  "November", "December"};

constexpr std::string_view kBlockWords[] = {"@AREABEGIN",    "@GROUPBEGIN", "@FILEBEGIN",
                                            "@REQUESTBEGIN", "@BILLBEGIN",  "@PENDINGBEGIN",
                                            "@CONFBEGIN",    "@TEST"};

bool IsComment(std::string_view line) {
  return !line.empty() && line[0] == ';';
}

// The template file of `name`: the base name (no ".apl", nothing up to the last "\" or "/")
// with ".apl" in `dir`, its name matched without regard to case.
std::string TemplatePath(const std::string& name, const std::string& dir) {
  std::string base = name;
  const auto slash = base.find_last_of("\\/");
  if (slash != std::string::npos) base.erase(0, slash + 1);
  if (base.size() >= 4 && Upper(base.substr(base.size() - 4)) == ".APL")
    base.resize(base.size() - 4);
  if (base.empty()) return {};
  const std::string folder = dir.empty() ? std::string("./") : AddSlash(dir);
  const std::string wanted = base + ".apl";
  if (FileExists(folder + wanted)) return folder + wanted;
  for (const std::string& f : ListFiles(folder))
    if (Upper(f) == Upper(wanted)) return folder + f;
  return folder + wanted;
}

}  // namespace

std::string LoadResultText(int result) {
  switch (result) {
    case kUnableToOpen:
      return "Unable to open template";
    case kSyntaxError:
      return "Syntax error: invalid number of @end macros in template";
    default:
      return {};
  }
}

TemplateProcessor::~TemplateProcessor() {
  Release();
}

// ---- Loading ---------------------------------------------------------------------------

void TemplateProcessor::AddLines(std::string_view text, int depth) {
  for (std::string_view rest = text; !rest.empty();) {
    std::string_view line;
    if (!NextTextLine(rest, line)) break;
    std::string kept(line.substr(0, kLineLimit));
    const std::string upper = Upper(kept);
    const auto at = upper.find("@INCLUDEAPL(");
    if (at == std::string::npos) {
      std::replace(kept.begin(), kept.end(), '\xFF', ' ');
      const bool overflow = upper.find("@OVERFLOW") != std::string::npos;
      lines_.push_back({std::move(kept), IsComment(upper), overflow});
      continue;
    }
    // The name is cut from the capitals exactly so: the position of the "@" (counted from 1)
    // plus 8 characters go, then everything from the first ")", then one quote at each end.
    std::string file = upper.substr(std::min(upper.size(), at + 1 + 8));
    file.erase(std::min(file.size(), file.find(')')));
    if (!file.empty() && (file.front() == '"' || file.front() == '\'')) file.erase(0, 1);
    if (!file.empty() && (file.back() == '"' || file.back() == '\'')) file.pop_back();
    LoadInclude(file, depth + 1);
  }
}

void TemplateProcessor::LoadInclude(const std::string& name, int depth) {
  if (depth > kMaxIncludeDepth || name.empty() || !FileExists(name)) return;
  if (auto text = ReadWholeFile(name)) AddLines(*text, depth);
}

int TemplateProcessor::Load(const std::string& name, TemplateKind kind, TemplateData* data,
                            std::string to, std::string from, std::string subject,
                            RunSettings settings) {
  Release();
  const std::string path = TemplatePath(name, settings.template_dir);
  auto text = path.empty() ? std::nullopt : ReadWholeFile(path);
  if (!text) return kUnableToOpen;
  AddLines(*text, 0);
  return Finish(kind, data, std::move(to), std::move(from), std::move(subject),
                std::move(settings));
}

int TemplateProcessor::LoadText(std::string_view text, TemplateKind kind, TemplateData* data,
                                std::string to, std::string from, std::string subject,
                                RunSettings settings) {
  Release();
  AddLines(text, 0);
  return Finish(kind, data, std::move(to), std::move(from), std::move(subject),
                std::move(settings));
}

int TemplateProcessor::Finish(TemplateKind kind, TemplateData* data, std::string to,
                              std::string from, std::string subject, RunSettings settings) {
  const bool any =
      std::any_of(lines_.begin(), lines_.end(), [](const Line& l) { return !l.comment; });
  if (!any) {
    Release();
    return kUnableToOpen;
  }
  // Every block and every test needs its own @end.
  long depth = 0;
  for (const Line& line : lines_) {
    if (line.comment) continue;
    const std::string upper = Upper(line.text);
    for (std::string_view w : kBlockWords)
      if (upper.find(w) != std::string::npos) {
        ++depth;
        break;
      }
    if (upper.find("@END") != std::string::npos) --depth;
  }
  if (depth != 0) {
    Release();
    return kSyntaxError;
  }
  kind_ = kind;
  data_ = data;
  to_ = std::move(to);
  from_ = std::move(from);
  subject_ = std::move(subject);
  settings_ = std::move(settings);
  if (settings_.now.year == 0) {
    const std::time_t t = std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    settings_.now = {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday,
                     tm.tm_hour,        tm.tm_min,     tm.tm_sec};
  }
  repeats_ = 0;
  random_ = settings_.seed ? settings_.seed : static_cast<std::uint32_t>(std::time(nullptr));
  loaded_ = true;
  return kLoaded;
}

void TemplateProcessor::Release() {
  lines_.clear();
  lines_.shrink_to_fit();
  next_ = 0;
  pending_.clear();
  loaded_ = false;
  data_ = nullptr;
  blocks_.clear();
  tests_.clear();
  variables_.clear();
  defined_.clear();
  overflow_ = {};
  overflow_limit_ = 255;
  overflow_line_ = SIZE_MAX;
  cookie_lines_.clear();
  cookie_next_ = 0;
  if (include_) std::fclose(include_);
  if (output_) std::fclose(output_);
  include_ = output_ = nullptr;
  filter_cr_ = filter_ansi_ = no_msg_output_ = false;
}

void TemplateProcessor::DefineMacro(std::string_view name, std::string_view value) {
  std::string upper = Upper(std::string(name.substr(0, kNameLimit)));
  if (!upper.empty() && upper[0] == '@') upper.erase(0, 1);
  for (Named& m : defined_)
    if (m.name == upper) {
      m.value = value.substr(0, kLineLimit);
      return;
    }
  if (defined_.size() < kMaxDefinedMacros)
    defined_.push_back({std::move(upper), std::string(value.substr(0, kLineLimit))});
}

// ---- Producing output --------------------------------------------------------------------

bool TemplateProcessor::Suppressing() const {
  for (const Test& t : tests_)
    if (t.suppress) return true;
  for (const Block& b : blocks_)
    if (b.dead) return true;
  return false;
}

// Takes the next template line into the pending text; false when none is left.
bool TemplateProcessor::TakeLine() {
  // An @overflow line is printed again while its text lasts and each printing used some.
  if (overflow_line_ != SIZE_MAX && !overflow_.text.empty() &&
      overflow_.text.size() < overflow_size_at_take_ && !Suppressing())
    next_ = overflow_line_;
  overflow_line_ = SIZE_MAX;
  while (next_ < lines_.size()) {
    const Line& line = lines_[next_++];
    if (line.comment || (line.overflow && overflow_.text.empty())) continue;
    if (line.overflow) {
      overflow_line_ = next_ - 1;
      overflow_size_at_take_ = overflow_.text.size();
    }
    pending_ = line.text;
    return true;
  }
  return false;
}

bool TemplateProcessor::NextLine(std::string& out) {
  out.clear();
  if (!loaded_) return false;
  if (!blocks_.empty() && blocks_.back().repeat && blocks_.back().jump_back) {
    Block& b = blocks_.back();
    next_ = b.body;
    pending_ = b.body_rest;
    b.jump_back = false;
  }
  if (cookie_next_ < cookie_lines_.size()) {
    out = cookie_lines_[cookie_next_++] + '\r';
    if (cookie_next_ == cookie_lines_.size()) cookie_lines_.clear(), cookie_next_ = 0;
    Emit(out);
    return true;
  }
  if (include_) {
    if (ReadIncludeLine(include_, out)) {
      out += '\r';
    } else {
      std::fclose(include_);
      include_ = nullptr;
    }
    Emit(out);
    return true;
  }
  if (pending_.empty()) {
    if (!TakeLine()) return false;
    if (pending_.empty()) {  // an empty line is a line end of its own
      out = "\r";
      Emit(out);
      return true;
    }
  }
  const std::size_t at = FindMacro(pending_);
  if (at == std::string::npos) {
    out = pending_ + '\r';
    pending_.clear();
  } else if (at > 0) {
    out = pending_.substr(0, at);
    pending_.erase(0, at);
  } else {
    const std::size_t end = MacroEnd(pending_);
    const std::string macro = pending_.substr(0, end);
    pending_.erase(0, end);
    began_block_ = false;
    out = Evaluate(macro, pending_.empty());
    if (began_block_ && !blocks_.empty()) {
      // A body that begins on the opening line itself starts with the rest of that line.
      const bool blank = pending_.find_first_not_of(' ') == std::string::npos;
      blocks_.back().body_rest = blank ? std::string() : pending_;
    }
    const bool jumping = !blocks_.empty() && blocks_.back().jump_back;
    if (!jumping && !pending_.empty() && FindMacro(pending_) == std::string::npos) {
      out += pending_ + '\r';
      pending_.clear();
    }
  }
  Emit(out);
  return true;
}

// The last steps of every piece: suppressed lines are emptied, "@@" becomes "@", and an open
// output file gets the piece (a line end as CR LF).
void TemplateProcessor::Emit(std::string& out) {
  if (Suppressing()) out.clear();
  for (std::size_t i = out.find("@@"); i != std::string::npos; i = out.find("@@", i + 1))
    out.erase(i, 1);
  if (output_ && !out.empty()) {
    std::fwrite(out.data(), 1, out.size(), output_);
    if (out.back() == '\r') std::fputc('\n', output_);
  }
}

// ---- Macros ------------------------------------------------------------------------------

std::string TemplateProcessor::Evaluate(std::string_view macro, bool at_eol) {
  if (macro.empty() || macro[0] != '@') return std::string(macro);
  const std::string eol = at_eol ? "\r" : "";
  if (macro.size() == 1) return std::string(macro) + eol;
  const MacroParts parts = SplitMacro(macro);
  const std::string upper = Upper(std::string(parts.name.substr(0, parts.call ? kNameLimit : 255)));
  if (parts.call) return Function(macro, upper, parts.args, at_eol);
  if (const auto k = FindKeyword(upper); k && *k < Keyword::Just)
    if (auto control = Control(*k, at_eol)) return *std::move(control);
  const auto value = ValueOf(upper);
  if (!value) return std::string(macro) + eol;
  return *value + eol;
}

std::optional<std::string> TemplateProcessor::ValueOf(std::string_view upper_name) {
  if (const auto k = FindKeyword(upper_name); k && *k < Keyword::Just) {
    std::optional<std::string> v = data_ ? data_->Value(*k) : std::nullopt;
    if (!v) v = BuiltIn(*k);
    std::string value = v.value_or("");
    if (*k == Keyword::FileDesc) value = FilterDescription(value, filter_cr_, filter_ansi_);
    return value;
  }
  if (const Named* v = Variable(upper_name)) return v->value;
  for (const Named& m : defined_)
    if (m.name == upper_name) return m.value;
  return std::nullopt;
}

TemplateProcessor::Named* TemplateProcessor::Variable(std::string_view upper_name) {
  for (Named& v : variables_)
    if (v.name == upper_name) return &v;
  return nullptr;
}

std::optional<std::string> TemplateProcessor::BuiltIn(Keyword k) {
  const DateTime& n = settings_.now;
  const bool month_ok = n.month >= 1 && n.month <= 12;
  switch (k) {
    case Keyword::MsgTo:
      return to_;
    case Keyword::MsgFrom:
      return from_;
    case Keyword::MsgSubject:
      return subject_;
    case Keyword::PrgName:
      return std::string("KESTRA");
    case Keyword::DayNr:
      return std::to_string(n.day);
    case Keyword::Day:
      return month_ok ? kDayNames[Weekday(n.year, n.month, n.day)] : "";
    case Keyword::MonthNr:
      return std::to_string(n.month);
    case Keyword::Month:
      return month_ok ? kMonthNames[n.month - 1] : "";
    case Keyword::Year:
      return std::to_string(n.year);
    case Keyword::Hour:
      return FormatDate("%hh%", n, true);
    case Keyword::Min:
      return FormatDate("%mm%", n, true);
    case Keyword::DayOfYear:
      return std::to_string(DayOfYear(n.year, n.month, n.day));
    default:
      return std::nullopt;
  }
}

// The control macros; nothing when `k` is a value macro.
std::optional<std::string> TemplateProcessor::Control(Keyword k, bool at_eol) {
  if (IsBlockBegin(k)) {
    Block b;
    b.kind = k;
    if (blocks_.size() >= kMaxBlockDepth) return std::string();
    if (Suppressing() || !data_ || !data_->FirstItem(k)) {
      b.dead = true;
    } else {
      b.repeat = true;
      b.body = next_;
    }
    blocks_.push_back(std::move(b));
    began_block_ = true;
    return std::string();
  }
  switch (k) {
    case Keyword::End:
      if (!tests_.empty() && tests_.back().block_depth == blocks_.size()) {
        tests_.pop_back();
      } else if (!blocks_.empty()) {
        Block& b = blocks_.back();
        const bool may_repeat = settings_.max_repeats == 0 || repeats_ < settings_.max_repeats;
        if (!b.dead && may_repeat && data_ && data_->NextItem(b.kind) && ++repeats_) {
          b.jump_back = true;
          return std::string();
        }
        // A block on one line ends its line when nothing follows its @end.
        const bool one_line = !b.body_rest.empty();
        blocks_.pop_back();
        return one_line && at_eol ? "\r" : "";
      }
      return std::string();
    case Keyword::Else:
      if (!tests_.empty() && tests_.back().active)
        tests_.back().suppress = static_cast<std::uint8_t>(!tests_.back().suppress);
      return std::string();
    case Keyword::Overflow:
      return Suppressing() ? std::string() : OverflowPiece() + (at_eol ? "\r" : "");
    case Keyword::ClearOverflow:
      overflow_ = {};
      return std::string();
    case Keyword::FilterDesc:
      filter_cr_ = filter_ansi_ = true;
      return std::string();
    case Keyword::FilterCr:
      filter_cr_ = true;
      return std::string();
    case Keyword::FilterAnsi:
      filter_ansi_ = true;
      return std::string();
    case Keyword::NoMsgOutput:
      no_msg_output_ = true;
      return std::string();
    case Keyword::CloseOutput:
      if (output_) std::fclose(output_);
      output_ = nullptr;
      return std::string();
    case Keyword::AllowBreak:
    case Keyword::ForceBreak:
      if (data_ && !Suppressing()) data_->Break(k == Keyword::ForceBreak);
      return std::string();
    case Keyword::Cookie:
      if (!Suppressing()) StartCookie();
      return std::string();
    case Keyword::IncludeApl:
      return std::string();
    default:
      return std::nullopt;
  }
}

}  // namespace ks::tpl
