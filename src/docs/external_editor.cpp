#include "docs/external_editor.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "tui/msgbox.h"
#include "tui/ui.h"

extern char** environ;

namespace ks {

namespace {

// The shell's statuses for a command it could not find or not execute.
constexpr int kNotExecutable = 126;
constexpr int kNotFound = 127;

// Starts /bin/sh -c `line` and waits for it; the exit status, or -errno when it did not start.
// While it runs, Ctrl-C and Ctrl-\ belong to it alone, as with system(3): this program ignores
// them, the child has them at their defaults.
int RunShell(const std::string& line) {
  struct sigaction ignore = {}, old_int = {}, old_quit = {};
  ignore.sa_handler = SIG_IGN;
  sigemptyset(&ignore.sa_mask);
  ::sigaction(SIGINT, &ignore, &old_int);
  ::sigaction(SIGQUIT, &ignore, &old_quit);

  posix_spawnattr_t attr;
  posix_spawnattr_init(&attr);
  sigset_t defaults, none;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGINT);
  sigaddset(&defaults, SIGQUIT);
  sigaddset(&defaults, SIGPIPE);
  sigemptyset(&none);
  posix_spawnattr_setsigdefault(&attr, &defaults);
  posix_spawnattr_setsigmask(&attr, &none);
  posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

  std::string sh = "sh", dash_c = "-c", command = line;
  char* argv[] = {sh.data(), dash_c.data(), command.data(), nullptr};
  pid_t pid = 0;
  const int err = ::posix_spawn(&pid, "/bin/sh", nullptr, &attr, argv, environ);
  posix_spawnattr_destroy(&attr);
  int result = -err;
  if (err == 0) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  ::sigaction(SIGINT, &old_int, nullptr);
  ::sigaction(SIGQUIT, &old_quit, nullptr);
  return result;
}

}  // namespace

std::string ShellQuote(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'')
      out += "'\\''";
    else
      out += c;
  }
  return out + "'";
}

EditorRun RunExternalEditor(const std::string& command, const std::string& path,
                            const std::function<std::time_t()>& clock) {
  const auto now = [&clock] { return clock ? clock() : std::time(nullptr); };
  const std::string line = command + " " + ShellQuote(path);
  EditorRun run;
  const std::time_t before = now();
  int status = 0;
  scr().RunOutside([&] { status = RunShell(line); });
  const std::time_t after = now();
  if (status < 0) {  // the shell itself did not start
    run.status = -status;
    return run;
  }
  run.status = status;
  run.ran = after != before && status != kNotFound && status != kNotExecutable;
  return run;
}

void EditTextFile(const std::string& path, const std::string& command,
                  const std::vector<PickEntry>& picks, const std::function<std::time_t()>& clock) {
  if (!command.empty()) {
    const EditorRun run = RunExternalEditor(command, path, clock);
    if (run.ran) return;
    const std::uint8_t answer =
        MessageBoxLines({"Unable to execute external editor", "",
                         "(" + std::to_string(run.status) + ")", "", "Use internal editor?"},
                        {"Yes", "No"}, kEditorHelpTopic);
    if (answer != 'Y') return;
  }
  EditFile(path, picks);
}

}  // namespace ks
