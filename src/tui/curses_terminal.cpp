#include "tui/curses_terminal.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <climits>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <deque>
#include <map>
#include <optional>
#include <stdexcept>

#include "common/wordwrap.h"
#include "tui/attr_map.h"
#include "tui/console.h"
#include "tui/keydecode.h"

#define NCURSES_NOMACROS
#define NCURSES_WIDECHAR 1
#include <curses.h>

namespace ks {

namespace {

constexpr int kMinWidth = 80;
constexpr int kMinHeight = 25;
// Events read after an Esc at most, to decode Alt keys and drop unknown sequences.
constexpr std::size_t kMaxFollowers = 16;
// A blocking read failing this often in a row means the keyboard is gone (hang-up).
constexpr int kMaxReadErrors = 100;

// ---- Emergency restore ------------------------------------------------------------------
// Everything the signal handler touches is prepared while the terminal opens, so that the
// handler itself only calls write, tcsetattr, signal and raise.

constexpr int kFatalSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t g_armed = 0;
char g_resetString[512];
std::size_t g_resetLength = 0;
struct termios g_savedModes;
bool g_haveSavedModes = false;
struct sigaction g_oldActions[std::size(kFatalSignals)];
CursesTerminal::Impl* g_open = nullptr;

// Writes the reset string and restores the terminal modes; async-signal-safe.
void RestoreTerminalRaw() {
  if (!g_armed) return;
  g_armed = 0;
  std::size_t done = 0;
  while (done < g_resetLength) {
    ssize_t n = write(STDOUT_FILENO, g_resetString + done, g_resetLength - done);
    if (n <= 0) break;
    done += static_cast<std::size_t>(n);
  }
  if (g_haveSavedModes) tcsetattr(STDOUT_FILENO, TCSAFLUSH, &g_savedModes);
}

extern "C" void OnFatalSignal(int sig) {
  RestoreTerminalRaw();
  signal(sig, SIG_DFL);
  raise(sig);
}

void InstallSignalHandlers() {
  struct sigaction sa {};
  sa.sa_handler = OnFatalSignal;
  sigemptyset(&sa.sa_mask);
  for (std::size_t i = 0; i < std::size(kFatalSignals); ++i)
    sigaction(kFatalSignals[i], &sa, &g_oldActions[i]);
}

void RemoveSignalHandlers() {
  for (std::size_t i = 0; i < std::size(kFatalSignals); ++i)
    sigaction(kFatalSignals[i], &g_oldActions[i], nullptr);
}

// Appends a terminfo string capability without its padding ("$<5>"), if the terminal has it.
void AppendCapability(std::string& out, const char* name) {
  const char* s = tigetstr(name);
  if (s == nullptr || s == reinterpret_cast<char*>(-1)) return;
  for (; *s != '\0'; ++s) {
    if (s[0] == '$' && s[1] == '<') {
      const char* end = std::strchr(s, '>');
      if (end != nullptr) {
        s = end;
        continue;
      }
    }
    out += *s;
  }
}

void PrepareResetString() {
  std::string reset;
  AppendCapability(reset, "rmcup");  // leave the alternate screen
  AppendCapability(reset, "cnorm");  // normal cursor
  AppendCapability(reset, "sgr0");   // plain attributes
  AppendCapability(reset, "rmkx");   // keypad back to normal mode
  reset += "\r\n";
  const std::size_t n = std::min(reset.size(), sizeof g_resetString);
  std::memcpy(g_resetString, reset.data(), n);
  g_resetLength = n;  // only now, so that a signal never sees half a string
}

}  // namespace

struct CursesTerminal::Impl {
  SCREEN* screen = nullptr;
  CursesOptions options;
  int width = kMinWidth;  // logical size: the terminal's, but never below 80x25
  int height = kMinHeight;
  bool utf8 = false;
  bool closed = false;
  bool abandoned = false;  // restored by EmergencyRestore: curses must not write any more

  // Colours.
  bool terminalHasColours = false;
  bool monoRequested = false;
  ColourCaps colourCaps;
  ColourCaps effectiveCaps;
  std::array<std::pair<attr_t, int>, 256> styleCache{};
  std::bitset<256> styleCached;
  std::map<std::pair<int, int>, int> pairs;  // (fg, bg) -> colour pair
  int nextPair = 1;

  // Glyphs of the 256 CP437 characters.
  std::array<Glyph, 256> glyphs{};

  // Screen state.
  std::vector<Cell> grid;  // the last presented cells
  std::vector<cchar_t> rowBuffer;
  bool tooSmall = false;
  bool repaintAll = false;
  bool resizePending = false;  // a resize was read and is not yet taken
  bool resizing = false;       // the program is redrawing for a new size
  CursorShape cursorShape = CursorShape::kHidden;
  int cursorCol = 1;
  int cursorRow = 1;
  int cursorShown = -1;  // what curs_set was last told; -1 before the first time

  // Keyboard.
  KeyDecoder decoder;
  std::deque<KeyEvent> pendingEvents;  // read but not yet decoded
  std::deque<std::uint8_t> pendingBytes;
  int readErrors = 0;

  void Setup();
  void UpdateEffectiveCaps();
  std::pair<attr_t, int> StyleFor(std::uint8_t attr);
  int PairFor(int fg, int bg);
  void DrawRow(int y);
  void ApplyCursor(bool beforeUpdate);
  void Repaint();
  void DrawTooSmallMessage();
  bool TakeSize();
  std::optional<KeyEvent> NextEvent(bool block);
  bool Pump(bool block);
  void Close(int keepRows);
};

void CursesTerminal::Impl::Setup() {
  cbreak();
  noecho();
  nonl();
  intrflush(stdscr, FALSE);
  keypad(stdscr, TRUE);
  mousemask(0, nullptr);
  typeahead(-1);  // always finish an update; a half-drawn screen could stay up while we wait
  if (std::getenv("ESCDELAY") == nullptr) set_escdelay(options.escDelayMs);

  if (has_colors() && start_color() == OK && COLORS >= 8) {
    terminalHasColours = true;
    // Every PC colour pair gets a pair of its own, so pair 0 is free to mean the terminal's
    // own colours: monochrome shows in them, and curses resets to them after an update with
    // a plain "op" instead of also setting white on black.
    use_default_colors();
    colourCaps.depth =
        COLORS >= 16 && COLOR_PAIRS >= 256 ? ColourDepth::kColour16 : ColourDepth::kColour8;
    const char* term = std::getenv("TERM");
    colourCaps.blinkIsBrightBackground = colourCaps.depth == ColourDepth::kColour8 &&
                                         term != nullptr && std::strncmp(term, "linux", 5) == 0;
  }
  if (options.honourNoColor) {
    const char* noColor = std::getenv("NO_COLOR");
    monoRequested = noColor != nullptr && *noColor != '\0';
  }
  UpdateEffectiveCaps();

  // Sequences that common terminals and multiplexers send although the terminal description
  // in use does not list them (tmux sends ESC [ 1 ~ for Home under TERM=xterm-256color, the
  // Linux console ESC [ [ A for F1, ...). Only sequences the description leaves free are added.
  static constexpr struct {
    const char* seq;
    int code;
  } kCommonKeys[] = {
      {"\x1b[1~", KEY_HOME},  {"\x1b[4~", KEY_END},   {"\x1b[7~", KEY_HOME},
      {"\x1b[8~", KEY_END},   {"\x1b[H", KEY_HOME},   {"\x1b[F", KEY_END},
      {"\x1bOH", KEY_HOME},   {"\x1bOF", KEY_END},    {"\x1b[2~", KEY_IC},
      {"\x1b[3~", KEY_DC},    {"\x1b[5~", KEY_PPAGE}, {"\x1b[6~", KEY_NPAGE},
      {"\x1b[A", KEY_UP},     {"\x1b[B", KEY_DOWN},   {"\x1b[C", KEY_RIGHT},
      {"\x1b[D", KEY_LEFT},   {"\x1bOA", KEY_UP},     {"\x1bOB", KEY_DOWN},
      {"\x1bOC", KEY_RIGHT},  {"\x1bOD", KEY_LEFT},   {"\x1bOP", KEY_F(1)},
      {"\x1bOQ", KEY_F(2)},   {"\x1bOR", KEY_F(3)},   {"\x1bOS", KEY_F(4)},
      {"\x1b[11~", KEY_F(1)}, {"\x1b[12~", KEY_F(2)}, {"\x1b[13~", KEY_F(3)},
      {"\x1b[14~", KEY_F(4)}, {"\x1b[[A", KEY_F(1)},  {"\x1b[[B", KEY_F(2)},
      {"\x1b[[C", KEY_F(3)},  {"\x1b[[D", KEY_F(4)},  {"\x1b[[E", KEY_F(5)},
      {"\x1b[15~", KEY_F(5)}, {"\x1b[17~", KEY_F(6)}, {"\x1b[18~", KEY_F(7)},
      {"\x1b[19~", KEY_F(8)}, {"\x1b[20~", KEY_F(9)}, {"\x1b[21~", KEY_F(10)},
      {"\x1b[Z", KEY_BTAB},
  };
  for (const auto& k : kCommonKeys)
    if (key_defined(k.seq) == 0) define_key(k.seq, k.code);

  for (const auto& k : KeyDecoder::ExtendedKeyNames()) {
    const char* seq = tigetstr(k.name);
    if (seq == nullptr || seq == reinterpret_cast<char*>(-1)) continue;
    if (int code = key_defined(seq); code > 0) decoder.AddExtendedKey(code, k.scan);
  }

  std::string acsLetters;
  if (const char* acsc = tigetstr("acsc"); acsc != nullptr && acsc != reinterpret_cast<char*>(-1))
    for (std::size_t i = 0; acsc[i] != '\0' && acsc[i + 1] != '\0'; i += 2) acsLetters += acsc[i];
  GlyphCaps caps;
  caps.utf8 = utf8;
  caps.canShow = [this](char32_t u) {
    const auto w = static_cast<wchar_t>(u);
    if (wcwidth(w) != 1) return false;
    if (utf8) return true;
    char buf[MB_LEN_MAX];
    std::mbstate_t state{};
    return std::wcrtomb(buf, w, &state) != static_cast<std::size_t>(-1);
  };
  caps.hasAcs = [&acsLetters](char c) { return acsLetters.find(c) != std::string::npos; };
  for (int c = 0; c < 256; ++c) glyphs[c] = ChooseGlyph(static_cast<std::uint8_t>(c), caps);

  TakeSize();
}

// Takes the terminal's current size; true when the logical size changed. Below the smallest
// size the logical size stays at that size and the screen shows a message instead.
bool CursesTerminal::Impl::TakeSize() {
  tooSmall = COLS < kMinWidth || LINES < kMinHeight;
  const int w = std::max(kMinWidth, COLS);
  const int h = std::max(kMinHeight, LINES);
  if (w == width && h == height && !grid.empty()) return false;
  width = w;
  height = h;
  grid.assign(static_cast<std::size_t>(width) * height, Cell{});
  rowBuffer.resize(width);
  return true;
}

void CursesTerminal::Impl::UpdateEffectiveCaps() {
  ColourCaps caps = colourCaps;
  if (!terminalHasColours || monoRequested) caps.depth = ColourDepth::kMono;
  if (caps.depth != effectiveCaps.depth ||
      caps.blinkIsBrightBackground != effectiveCaps.blinkIsBrightBackground) {
    styleCached.reset();
    repaintAll = true;
  }
  effectiveCaps = caps;
}

int CursesTerminal::Impl::PairFor(int fg, int bg) {
  auto [it, added] = pairs.try_emplace({fg, bg}, 0);
  if (added) {
    // Pairs are handed out in order of first use and never reused, so cells already on the
    // screen keep their colours. A terminal with too few pairs gets pair 0 for the rest.
    if (nextPair < COLOR_PAIRS && init_extended_pair(nextPair, fg, bg) == OK)
      it->second = nextPair++;
  }
  return it->second;
}

std::pair<attr_t, int> CursesTerminal::Impl::StyleFor(std::uint8_t attr) {
  if (styleCached[attr]) return styleCache[attr];
  const CellStyle s = MapAttr(attr, effectiveCaps);
  attr_t a = A_NORMAL;
  if (s.bold) a |= A_BOLD;
  if (s.blink) a |= A_BLINK;
  if (s.reverse) a |= A_REVERSE;
  const int pair = s.fg >= 0 ? PairFor(s.fg, s.bg) : 0;
  styleCache[attr] = {a, pair};
  styleCached.set(attr);
  return styleCache[attr];
}

void CursesTerminal::Impl::DrawRow(int y) {
  const int n = std::min(width, COLS);
  const Cell* row = grid.data() + static_cast<std::size_t>(y) * width;
  for (int x = 0; x < n; ++x) {
    const Glyph& g = glyphs[row[x].ch];
    auto [a, pair] = StyleFor(row[x].attr);
    wchar_t text[2] = {static_cast<wchar_t>(g.ch), L'\0'};
    if (g.kind == GlyphKind::kAcs) a |= A_ALTCHARSET;
    setcchar(&rowBuffer[x], text, a, static_cast<short>(pair), &pair);
  }
  mvadd_wchnstr(y, 0, rowBuffer.data(), n);
}

void CursesTerminal::Impl::ApplyCursor(bool beforeUpdate) {
  const int show = tooSmall                                 ? 0
                   : cursorShape == CursorShape::kUnderline ? 1
                   : cursorShape == CursorShape::kBlock     ? 2
                                                            : 0;
  if (beforeUpdate) {
    // A hidden cursor is left wherever the update ends, which saves moving it.
    leaveok(stdscr, show ? FALSE : TRUE);
    if (show)
      wmove(stdscr, std::clamp(cursorRow - 1, 0, LINES - 1),
            std::clamp(cursorCol - 1, 0, COLS - 1));
    // Hide before drawing, show after it, so that the cursor never runs across the screen.
    if (!show && cursorShown != 0) {
      curs_set(0);
      cursorShown = 0;
    }
  } else if (show && cursorShown != show) {
    // A terminal without a very visible cursor shows its normal one instead.
    if (curs_set(show) == ERR && show == 2) curs_set(1);
    cursorShown = show;
  }
}

void CursesTerminal::Impl::DrawTooSmallMessage() {
  const std::string text = options.programName + " needs a window of at least " +
                           std::to_string(kMinWidth) + "x" + std::to_string(kMinHeight) + " (now " +
                           std::to_string(COLS) + "x" + std::to_string(LINES) + ")";
  const auto lines = WrapWords(text, std::max(1, COLS - 2));
  const int top = std::max(0, (LINES - static_cast<int>(lines.size())) / 2);
  for (int i = 0; i < static_cast<int>(lines.size()) && top + i < LINES; ++i) {
    const int len = static_cast<int>(lines[i].size());
    mvaddnstr(top + i, std::max(0, (COLS - len) / 2), lines[i].c_str(), std::min(len, COLS));
  }
}

void CursesTerminal::Impl::Repaint() {
  clearok(curscr, TRUE);
  werase(stdscr);
  if (tooSmall) {
    DrawTooSmallMessage();
  } else {
    for (int y = 0; y < std::min(height, LINES); ++y) DrawRow(y);
    repaintAll = false;
  }
  ApplyCursor(true);
  wnoutrefresh(stdscr);
  doupdate();
  ApplyCursor(false);
}

std::optional<KeyEvent> CursesTerminal::Impl::NextEvent(bool block) {
  if (!pendingEvents.empty()) {
    KeyEvent e = pendingEvents.front();
    pendingEvents.pop_front();
    return e;
  }
  wtimeout(stdscr, block ? -1 : 0);
  wint_t wc = 0;
  const int r = wget_wch(stdscr, &wc);
  if (r == ERR) {
    if (block && ++readErrors >= kMaxReadErrors)
      throw std::runtime_error("the terminal's keyboard input has gone away");
    return std::nullopt;
  }
  readErrors = 0;
  return r == KEY_CODE_YES ? KeyEvent::Code(static_cast<std::int32_t>(wc))
                           : KeyEvent::Char(static_cast<std::int32_t>(wc));
}

// Reads one key (with what follows an Esc) and queues its bytes; false when `block` is off
// and nothing is waiting.
bool CursesTerminal::Impl::Pump(bool block) {
  const auto first = NextEvent(block);
  if (!first) return false;
  std::vector<KeyEvent> events{*first};
  if (KeyDecoder::WantsFollowers(*first)) {
    // Curses has already waited ESCDELAY for a sequence; what belongs to this key is here.
    while (events.size() < kMaxFollowers) {
      const auto next = NextEvent(false);
      if (!next) break;
      events.push_back(*next);
    }
  }
  const DecodedKey key = decoder.Decode(events);
  for (std::size_t i = events.size(); i > static_cast<std::size_t>(key.consumed); --i)
    pendingEvents.push_front(events[i - 1]);
  if (key.resize) {
    resizePending = true;
  } else if (!tooSmall) {  // keys typed while the window is too small are dropped
    pendingBytes.insert(pendingBytes.end(), key.bytes.begin(), key.bytes.end());
  }
  return true;
}

void CursesTerminal::Impl::Close(int keepRows) {
  if (closed) return;
  closed = true;
  if (g_open == this) g_open = nullptr;
  if (abandoned) return;

  flushinp();
  curs_set(1);
  endwin();
  g_armed = 0;
  RemoveSignalHandlers();

  // Leave the top rows of the last screen standing, written as plain console text.
  const int rows = std::clamp(keepRows, 0, std::min(height, LINES));
  const int cols = std::min(width, COLS);
  ConsoleOptions opts;
  opts.ansi = effectiveCaps.depth != ColourDepth::kMono;
  opts.utf8 = utf8;
  std::string out = "\x1b[0m\x1b[H";
  for (int y = 0; y < rows; ++y) {
    out += "\x1b[2K";
    out += EncodeRow(std::span<const Cell>(grid.data() + static_cast<std::size_t>(y) * width,
                                           static_cast<std::size_t>(cols)),
                     opts);
    out += "\r\n";
  }
  out += "\x1b[J";
  std::fwrite(out.data(), 1, out.size(), stdout);
  std::fflush(stdout);
  delscreen(screen);
  screen = nullptr;
}

// ---- CursesTerminal ---------------------------------------------------------------------

CursesTerminal::CursesTerminal(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

CursesTerminal::~CursesTerminal() {
  try {
    impl_->Close(0);
  } catch (...) {
    // A destructor must not throw; the terminal is as restored as it can be.
  }
}

int CursesTerminal::Width() const {
  return impl_->width;
}
int CursesTerminal::Height() const {
  return impl_->height;
}

bool CursesTerminal::ColourCapable() const {
  return impl_->terminalHasColours && !impl_->monoRequested;
}

void CursesTerminal::Present(const std::vector<Cell>& cells, const std::vector<bool>& dirty) {
  Impl& t = *impl_;
  if (t.closed) return;
  if (cells.size() != t.grid.size())
    throw std::invalid_argument("Present: the cell grid does not match the terminal size");
  const bool all = dirty.empty() || t.repaintAll;
  for (int y = 0; y < t.height; ++y) {
    if (!all && (static_cast<std::size_t>(y) >= dirty.size() || !dirty[y])) continue;
    std::copy_n(cells.begin() + static_cast<std::ptrdiff_t>(y) * t.width, t.width,
                t.grid.begin() + static_cast<std::ptrdiff_t>(y) * t.width);
    if (!t.tooSmall && !t.resizing && y < LINES) t.DrawRow(y);
  }
  // The message stays until the window is large enough; a resize repaints everything after.
  if (t.tooSmall || t.resizing) return;
  t.repaintAll = false;
  t.ApplyCursor(true);
  wnoutrefresh(stdscr);
  doupdate();
  t.ApplyCursor(false);
}

void CursesTerminal::SetCursor(CursorShape shape, int col, int row) {
  impl_->cursorShape = shape;
  impl_->cursorCol = col;
  impl_->cursorRow = row;
}

bool CursesTerminal::Pump(bool block) {
  Impl& t = *impl_;
  const bool read = t.Pump(block);
  if (t.resizePending) {
    t.resizePending = false;
    if (t.TakeSize()) {
      // The program draws its screen at the new size into the grid; shown all at once below.
      t.resizing = true;
      struct Reset {
        bool& flag;
        ~Reset() { flag = false; }
      } reset{t.resizing};
      NotifyResize();
    }
    t.Repaint();
  }
  return read;
}

std::uint8_t CursesTerminal::ReadByte() {
  Impl& t = *impl_;
  if (t.closed) throw std::logic_error("ReadByte on a closed terminal");
  while (t.pendingBytes.empty()) Pump(true);
  const std::uint8_t b = t.pendingBytes.front();
  t.pendingBytes.pop_front();
  return b;
}

bool CursesTerminal::KeyWaiting() {
  Impl& t = *impl_;
  if (t.closed) return false;
  while (t.pendingBytes.empty())
    if (!Pump(false)) return false;
  return true;
}

void CursesTerminal::SetMonochrome(bool mono) {
  impl_->monoRequested = mono;
  impl_->UpdateEffectiveCaps();
}

void CursesTerminal::Close(int keepRows) {
  impl_->Close(keepRows);
}

void CursesTerminal::Suspend() {
  Impl& t = *impl_;
  if (t.closed || t.abandoned) return;
  def_prog_mode();  // the modes of full-screen mode, for Resume
  endwin();
  t.cursorShown = -1;  // the terminal shows its normal cursor now
}

void CursesTerminal::Resume() {
  Impl& t = *impl_;
  if (t.closed || t.abandoned) return;
  reset_prog_mode();
  t.Repaint();  // the first update after endwin puts the terminal back into full-screen mode
}

void CursesTerminal::EmergencyRestore() noexcept {
  if (g_open != nullptr) {
    g_open->abandoned = true;
    g_open = nullptr;
  }
  if (g_armed) {
    RestoreTerminalRaw();
    RemoveSignalHandlers();
  }
}

std::unique_ptr<CursesTerminal> OpenCursesTerminal(const CursesOptions& options) {
  if (g_open != nullptr) throw std::runtime_error("the terminal is already open");
  if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
    throw std::runtime_error("full-screen mode needs a terminal on standard input and output");
  const char* termName = std::getenv("TERM");
  if (termName == nullptr || *termName == '\0')
    throw std::runtime_error("the TERM environment variable is not set");

  // Curses takes its character set from LC_CTYPE; the rest of the locale stays "C" so that
  // numbers read and print the same everywhere.
  std::setlocale(LC_CTYPE, "");

  auto impl = std::make_unique<CursesTerminal::Impl>();
  impl->options = options;
  impl->utf8 = LocaleIsUtf8();  // after setlocale

  g_haveSavedModes = tcgetattr(STDOUT_FILENO, &g_savedModes) == 0;
  g_resetLength = 0;
  InstallSignalHandlers();  // before curses, so that curses leaves these signals to us
  g_armed = 1;

  impl->screen = newterm(nullptr, stdout, stdin);
  if (impl->screen == nullptr) {
    g_armed = 0;
    RemoveSignalHandlers();
    throw std::runtime_error(std::string("cannot use the terminal type \"") + termName + "\"");
  }
  set_term(impl->screen);
  PrepareResetString();
  g_open = impl.get();
  CursesTerminal::Impl& t = *impl;
  // From here on the terminal object restores the screen if anything goes wrong.
  auto term = std::make_unique<CursesTerminal>(std::move(impl));
  t.Setup();
  t.Repaint();
  return term;
}

void CursesTerminal::Beep() {
  ::beep();
}

}  // namespace ks
