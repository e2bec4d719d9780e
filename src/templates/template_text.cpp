#include "templates/template_text.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "templates/template_processor.h"

namespace ks::tpl {

namespace {

constexpr std::size_t kArgumentLimit = 80;
constexpr std::size_t kMaxArguments = 5;

bool IsAlnum(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

}  // namespace

bool NextTextLine(std::string_view& rest, std::string_view& line) {
  if (rest.empty() || rest[0] == '\x1A') {
    rest = {};
    return false;
  }
  std::size_t end = 0;
  while (end < rest.size() && rest[end] != '\n' && rest[end] != '\r' && rest[end] != '\x1A') ++end;
  line = rest.substr(0, end);
  if (end < rest.size() && rest[end] == '\r') {
    ++end;
    if (end < rest.size() && rest[end] == '\n') ++end;
  } else if (end < rest.size() && rest[end] == '\n') {
    ++end;
  }
  rest.remove_prefix(end);
  return true;
}

bool ReadIncludeLine(std::FILE* f, std::string& line) {
  line.clear();
  int c = std::fgetc(f);
  if (c == EOF || c == 0x1A) return false;
  while (c != EOF && c != '\n' && c != 0x1A) {
    if (c != '\r' && line.size() < kLineLimit) line += static_cast<char>(c);
    c = std::fgetc(f);
  }
  if (c == 0x1A) std::fseek(f, 0, SEEK_END);
  return true;
}

std::size_t FindMacro(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '@') continue;
    if (i + 1 < text.size() && text[i + 1] == '@') {
      ++i;
      continue;
    }
    return i;
  }
  return std::string_view::npos;
}

std::size_t MacroEnd(std::string_view text) {
  int depth = 0;
  std::size_t i = 1;
  while (i < text.size()) {
    const char c = text[i];
    if (depth > 0) {
      if (c == '"') {
        const auto close = text.find('"', i + 1);
        i = close == std::string_view::npos ? text.size() : close + 1;
        continue;
      }
      if (c == '(') ++depth;
      if (c == ')' && --depth == 0) return i + 1;
      ++i;
      continue;
    }
    if (c == '(') {
      ++depth;
    } else if (!IsAlnum(c)) {
      break;
    }
    ++i;
  }
  return i;
}

MacroParts SplitMacro(std::string_view macro) {
  MacroParts p;
  const std::string_view body = macro.substr(1);
  const auto open = body.find('(');
  if (open == std::string_view::npos || body.empty() || body.back() != ')') {
    p.name = body;
    return p;
  }
  p.name = body.substr(0, open);
  p.args = body.substr(open + 1, body.size() - open - 2);
  p.call = true;
  return p;
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

std::vector<std::string> SplitArguments(std::string_view args) {
  std::vector<std::string> out;
  std::size_t start = 0;
  std::size_t i = 0;
  int depth = 0;
  bool quoted = false;
  const auto take = [&](std::size_t end) {
    out.emplace_back(Trim(args.substr(start, end - start)).substr(0, kArgumentLimit));
  };
  out.reserve(kMaxArguments);
  bool macro_arg = Trim(args).starts_with('@');
  while (i < args.size()) {
    if (out.size() == kMaxArguments - 1) break;  // the fifth argument is the rest
    const char c = args[i];
    if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && macro_arg && c == '(') {
      ++depth;
    } else if (!quoted && macro_arg && c == ')' && depth > 0) {
      --depth;
    } else if (!quoted && depth == 0 && c == ',') {
      take(i);
      start = i + 1;
      macro_arg = Trim(args.substr(start)).starts_with('@');
    }
    ++i;
  }
  take(args.size());
  return out;
}

std::string FilterDescription(std::string_view text, bool cr, bool ansi) {
  if (!cr && !ansi) return std::string(text);
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (ansi && c == '\x1B') {
      // ESC [ parameters final-letter; a lone ESC goes too.
      if (i + 1 < text.size() && text[i + 1] == '[') {
        i += 2;
        while (i < text.size() && !std::isalpha(static_cast<unsigned char>(text[i]))) ++i;
      }
      continue;
    }
    if (cr && (c == '\r' || c == '\n')) {
      if (!out.empty() && out.back() != ' ') out += ' ';
      continue;
    }
    out += c;
  }
  return out;
}

bool ParseWhole(std::string_view text, long long& out) {
  std::string digits;
  for (char c : Trim(text))
    if (c != ',') digits += c;
  if (digits.empty()) return false;
  const char* first = digits.data();
  if (*first == '+') ++first;
  const auto r = std::from_chars(first, digits.data() + digits.size(), out);
  return r.ec == std::errc() && r.ptr == digits.data() + digits.size();
}

bool ParseReal(std::string_view text, double& out) {
  std::string s(Trim(text));
  if (s.empty()) return false;
  char* end = nullptr;
  out = std::strtod(s.c_str(), &end);
  return end == s.c_str() + s.size() && std::isfinite(out);
}

std::string RealText(double value) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.10g", value);
  return buf;
}

}  // namespace ks::tpl
