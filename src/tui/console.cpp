#include "tui/console.h"

#include <langinfo.h>
#include <unistd.h>

#include <cctype>
#include <clocale>
#include <cstdlib>

#include "common/cp437.h"
#include "tui/attr_map.h"

namespace ks {

namespace {

constexpr std::uint8_t kPlainAttr = 0x07;
constexpr char kReset[] = "\x1b[0m";

void AppendChar(std::string& out, std::uint8_t c, bool utf8) {
  if (utf8)
    AppendUtf8(out, Cp437ToUnicode(c));
  else
    out += Cp437ToAscii(c);
}

bool IsUtf8Codeset(std::string_view codeset) {
  std::string folded;
  for (char c : codeset)
    if (c != '-' && c != '_')
      folded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return folded == "utf8";
}

}  // namespace

ConsoleOptions ConsoleOptionsFor(bool isTerminal, const char* noColor, const char* term,
                                 std::string_view codeset) {
  ConsoleOptions o;
  const bool dumb =
      term == nullptr || std::string_view(term).empty() || std::string_view(term) == "dumb";
  o.ansi = isTerminal && !dumb && (noColor == nullptr || *noColor == '\0');
  o.utf8 = IsUtf8Codeset(codeset);
  return o;
}

bool LocaleIsUtf8() {
  return IsUtf8Codeset(nl_langinfo(CODESET));
}

ConsoleOptions DetectConsoleOptions() {
  // The character set comes from the environment's locale; only LC_CTYPE is taken over, so
  // number formatting stays the same everywhere.
  std::setlocale(LC_CTYPE, "");
  return ConsoleOptionsFor(isatty(STDOUT_FILENO) != 0, std::getenv("NO_COLOR"), std::getenv("TERM"),
                           nl_langinfo(CODESET));
}

std::string SgrForAttr(std::uint8_t attr) {
  if (attr == kPlainAttr) return kReset;
  const int fg = PcToAnsi(attr & 0x0F);
  const int bg = PcToAnsi(attr >> 4);
  return "\x1b[" + std::to_string(fg < 8 ? 30 + fg : 90 + fg - 8) + ";" +
         std::to_string(bg < 8 ? 40 + bg : 100 + bg - 8) + "m";
}

std::string EncodeRow(std::span<const Cell> cells, ConsoleOptions opts) {
  std::size_t n = cells.size();
  while (n > 0 && (cells[n - 1].ch == ' ' || cells[n - 1].ch == 0) &&
         cells[n - 1].attr == kPlainAttr)
    --n;
  std::string out;
  std::uint8_t shown = kPlainAttr;
  for (std::size_t i = 0; i < n; ++i) {
    if (opts.ansi && cells[i].attr != shown) {
      shown = cells[i].attr;
      out += SgrForAttr(shown);
    }
    AppendChar(out, cells[i].ch, opts.utf8);
  }
  if (shown != kPlainAttr) out += kReset;
  return out;
}

void Console::EmitAttr() {
  if (opts_.ansi && attr_ != shown_) {
    out_ << SgrForAttr(attr_);
    shown_ = attr_;
  }
}

void Console::EndLine() {
  // Back to the terminal's own colours before the line feed: a scrolling terminal would fill
  // the new line with the current background.
  if (shown_ != kPlainAttr) {
    out_ << kReset;
    shown_ = kPlainAttr;
  }
  out_ << '\n';
}

void Console::Write(std::string_view cp437) {
  std::string text;
  for (unsigned char c : cp437) {
    if (c == '\n') {
      if (!text.empty()) {
        EmitAttr();
        out_ << text;
        text.clear();
      }
      EndLine();
    } else if (c == '\r' || c == '\t') {
      text += static_cast<char>(c);
    } else {
      AppendChar(text, c, opts_.utf8);
    }
  }
  if (!text.empty()) {
    EmitAttr();
    out_ << text;
  }
}

void Console::WriteLine(std::string_view cp437) {
  Write(cp437);
  EndLine();
}

}  // namespace ks
