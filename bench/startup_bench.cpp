// Start-up benchmark: the real ksetup in a pseudo-terminal of 80x25 on a fresh demo program
// directory. Measures the wall time from fork to the first complete main-menu screen, the bytes
// of that screen, the bytes one highlight move costs, and checks that F9 ends the program.
//
//   bench_startup <path of ksetup> <build dir> [runs]
//
// The main menu counts as complete when its status line text has arrived: curses updates the
// screen row by row, so the status text on the bottom row comes last. The first run checks that
// assumption on the byte stream (every menu item before it, no text after it).
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::string_view kMenuStatus = "Miscellaneous system parameters";
constexpr const char* kMenuTexts[] = {
    "Main",
    "System data",
    "FileFind areas",
    "Echomail system",
    "Fileecho system",
    "New file reports",
    "BBS fileareas",
    "ALLFILES lists",
    "Request processor",
    "Node manager",
    "Utilities",
    "Information",
    "Exit program",
};
constexpr std::string_view kKeyDown = "\x1b[B";
constexpr std::string_view kKeyF9 = "\x1b[20~";
constexpr auto kQuiet = std::chrono::milliseconds(300);
constexpr auto kGiveUp = std::chrono::seconds(10);

[[noreturn]] void Die(const std::string& what) {
  std::fprintf(stderr, "bench_startup: %s\n", what.c_str());
  std::exit(1);
}

double Ms(Clock::duration d) {
  return std::chrono::duration<double, std::milli>(d).count();
}

// Runs a program to its end with its output discarded; returns its exit status.
int RunQuietly(const std::vector<std::string>& argv) {
  pid_t pid = ::fork();
  if (pid < 0) Die("fork failed");
  if (pid == 0) {
    int devnull = ::open("/dev/null", O_WRONLY);
    if (devnull >= 0) ::dup2(devnull, STDOUT_FILENO);
    std::vector<char*> args;
    for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    ::execv(args[0], args.data());
    ::_exit(127);
  }
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) Die("waitpid failed");
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// The text a terminal would show from a byte stream: escape sequences and control characters
// removed, everything else (UTF-8 included) kept.
std::string VisibleText(std::string_view s) {
  std::string out;
  for (std::size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c == 0x1b && i + 1 < s.size()) {
      const char k = s[i + 1];
      if (k == '[') {  // CSI: parameters, intermediates, one final byte
        std::size_t j = i + 2;
        while (j < s.size() &&
               (static_cast<unsigned char>(s[j]) < 0x40 || static_cast<unsigned char>(s[j]) > 0x7e))
          ++j;
        i = j + 1;
      } else if (k == ']') {  // OSC up to BEL or ST
        std::size_t j = i + 2;
        while (j < s.size() && s[j] != '\a' &&
               !(s[j] == 0x1b && j + 1 < s.size() && s[j + 1] == '\\'))
          ++j;
        i = j < s.size() && s[j] == '\a' ? j + 1 : j + 2;
      } else if (k == '(' || k == ')' || k == '*' || k == '+') {  // character set designation
        i += 3;
      } else {
        i += 2;
      }
      continue;
    }
    if (c >= 0x20 && c != 0x7f) out += static_cast<char>(c);
    ++i;
  }
  return out;
}

class PtyProgram {
 public:
  PtyProgram(const std::string& exe, const std::vector<std::string>& env) {
    struct winsize ws {};
    ws.ws_row = 25;
    ws.ws_col = 80;
    started_ = Clock::now();
    pid_ = ::forkpty(&master_, nullptr, nullptr, &ws);
    if (pid_ < 0) Die("forkpty failed");
    if (pid_ == 0) {
      std::vector<char*> envp;
      for (const auto& e : env) envp.push_back(const_cast<char*>(e.c_str()));
      envp.push_back(nullptr);
      char* argv[] = {const_cast<char*>(exe.c_str()), nullptr};
      ::execve(exe.c_str(), argv, envp.data());
      ::_exit(127);
    }
  }
  ~PtyProgram() {
    if (pid_ > 0 && !reaped_) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
    if (master_ >= 0) ::close(master_);
  }
  PtyProgram(const PtyProgram&) = delete;
  PtyProgram& operator=(const PtyProgram&) = delete;

  Clock::time_point started() const { return started_; }
  const std::string& output() const { return out_; }
  bool eof() const { return eof_; }

  // Reads what arrives within `wait`; false when nothing did (or the program has closed the
  // terminal).
  bool ReadSome(Clock::duration wait) {
    if (eof_) return false;
    pollfd p{master_, POLLIN, 0};
    const int ms = static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(wait).count());
    int r = ::poll(&p, 1, std::max(ms, 0));
    if (r < 0 && errno == EINTR) return true;
    if (r <= 0) return false;
    char buf[65536];
    ssize_t n = ::read(master_, buf, sizeof buf);
    if (n < 0 && errno == EINTR) return true;
    if (n <= 0) {  // EIO: every holder of the terminal's other side has gone
      eof_ = true;
      return false;
    }
    out_.append(buf, static_cast<std::size_t>(n));
    return true;
  }

  // Reads until `text` has arrived; the time it was seen, or nothing on give-up.
  std::optional<Clock::time_point> WaitFor(std::string_view text, std::size_t from = 0) {
    const auto deadline = Clock::now() + kGiveUp;
    while (out_.find(text, from) == std::string::npos) {
      if (eof_ || Clock::now() > deadline) return std::nullopt;
      ReadSome(deadline - Clock::now());
    }
    return Clock::now();
  }

  // Reads until the output has been quiet for kQuiet; false on give-up.
  bool WaitQuiet() {
    const auto deadline = Clock::now() + kGiveUp;
    auto last = Clock::now();
    while (Clock::now() - last < kQuiet) {
      if (Clock::now() > deadline) return false;
      if (ReadSome(kQuiet - (Clock::now() - last))) last = Clock::now();
      if (eof_) return true;
    }
    return true;
  }

  void Send(std::string_view keys) {
    if (::write(master_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
      Die("writing to the terminal failed");
  }

  // Drains the output until the program has ended; its exit status, or nothing on give-up.
  std::optional<int> WaitExit() {
    const auto deadline = Clock::now() + kGiveUp;
    while (!eof_ && Clock::now() < deadline) ReadSome(deadline - Clock::now());
    for (;;) {
      int status = 0;
      pid_t r = ::waitpid(pid_, &status, WNOHANG);
      if (r == pid_) {
        reaped_ = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
      if (Clock::now() > deadline) return std::nullopt;
      // The terminal is closed but the process not yet reaped: block on it briefly.
      pollfd none{-1, 0, 0};
      ::poll(&none, 0, 1);
    }
  }

 private:
  pid_t pid_ = -1;
  int master_ = -1;
  bool eof_ = false;
  bool reaped_ = false;
  std::string out_;
  Clock::time_point started_;
};

struct RunResult {
  double start_ms = 0;
  std::size_t screen_bytes = 0;
  std::size_t move_bytes = 0;
  int exit_status = -1;
};

// One start of the program. `detailed` also measures the screen and the highlight move and
// checks the byte stream; otherwise F9 follows the menu at once.
RunResult RunOnce(const std::string& exe, const std::vector<std::string>& env, bool detailed) {
  RunResult res;
  PtyProgram prog(exe, env);
  const auto menu = prog.WaitFor(kMenuStatus);
  if (!menu) Die("the main menu never appeared; output so far:\n" + VisibleText(prog.output()));
  res.start_ms = Ms(*menu - prog.started());

  if (detailed) {
    const std::size_t status_at = prog.output().find(kMenuStatus);
    const std::string before = VisibleText(std::string_view(prog.output()).substr(0, status_at));
    for (const char* text : kMenuTexts)
      if (before.find(text) == std::string::npos)
        Die(std::string("\"") + text + "\" was not written before the status line text");
    if (!prog.WaitQuiet()) Die("the output did not settle after the main menu");
    const std::string after =
        VisibleText(std::string_view(prog.output()).substr(status_at + kMenuStatus.size()));
    if (after.find_first_not_of(' ') != std::string::npos)
      Die("text followed the status line on the first screen: \"" + after + "\"");
    res.screen_bytes = prog.output().size();

    prog.Send(kKeyDown);
    const std::size_t mark = prog.output().size();
    if (!prog.WaitFor("FileFind message area configuration", mark))
      Die("the highlight did not move");
    if (!prog.WaitQuiet()) Die("the output did not settle after the highlight move");
    res.move_bytes = prog.output().size() - mark;
  }

  prog.Send(kKeyF9);
  const auto status = prog.WaitExit();
  if (!status) Die("the program did not end after F9");
  res.exit_status = *status;
  return res;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 4) {
    std::fprintf(stderr, "usage: %s <path of ksetup> <build dir> [runs]\n", argv[0]);
    return 2;
  }
  const std::string exe = fs::absolute(argv[1]).string();
  const fs::path build = fs::absolute(argv[2]);
  const int runs = argc == 4 ? std::atoi(argv[3]) : 20;
  if (runs < 1) Die("runs must be at least 1");
  ::signal(SIGPIPE, SIG_IGN);

  // A setup file beside the binary would be used instead of the demo directory.
  for (const char* name : {"setup.ksx", "SETUP.KSX"})
    if (fs::exists(fs::path(exe).parent_path() / name))
      Die("a " + std::string(name) + " lies beside " + exe + "; it would win over KESTRA");

  char tmpl[] = "/tmp/ks-bench.XXXXXX";
  if (!::mkdtemp(tmpl)) Die("cannot make a temporary directory");
  const fs::path tmp = tmpl;
  const fs::path demo = tmp / "demo";
  if (RunQuietly({(build / "mkdemo").string(), demo.string()}) != 0)
    Die("mkdemo failed for " + demo.string());

  const std::vector<std::string> env = {
      "TERM=xterm-256color", "KESTRA=" + demo.string(), "LC_ALL=C.UTF-8",
      "PATH=/usr/bin:/bin",  "HOME=" + tmp.string(),
  };

  std::vector<double> times;
  RunResult first;
  int clean_exits = 0;
  for (int i = 0; i < runs; ++i) {
    const RunResult r = RunOnce(exe, env, i == 0);
    if (i == 0) first = r;
    times.push_back(r.start_ms);
    if (r.exit_status == 0) ++clean_exits;
  }
  std::error_code ec;
  fs::remove_all(tmp, ec);

  std::sort(times.begin(), times.end());
  const double median = times.size() % 2
                            ? times[times.size() / 2]
                            : (times[times.size() / 2 - 1] + times[times.size() / 2]) / 2;
  std::printf("ksetup start-up, 80x25 pseudo-terminal, TERM=xterm-256color, %d runs\n", runs);
  std::printf("  start to main menu:      median %.2f ms, min %.2f ms, max %.2f ms\n", median,
              times.front(), times.back());
  std::printf("  first full screen:       %zu bytes\n", first.screen_bytes);
  std::printf("  one highlight move:      %zu bytes (%.1f%% of a full screen)\n", first.move_bytes,
              first.screen_bytes ? 100.0 * static_cast<double>(first.move_bytes) /
                                       static_cast<double>(first.screen_bytes)
                                 : 0.0);
  std::printf("  exit status after F9:    %d (%d of %d runs ended with 0)\n", first.exit_status,
              clean_exits, runs);
  return clean_exits == runs ? 0 : 1;
}
