// The internal editor on a 10 MB text file: the time from the call until the first screen is
// shown and the editor waits for a key (reading, splitting into lines, drawing), on a virtual
// terminal, against the plain read of the same file. A save (F10: the whole text written to a
// temporary file, flushed and renamed over the file) is timed too.
//
//   bench_editor [runs]
//
// The file lives in a fresh directory under $TMPDIR (or /tmp) that is removed at the end. The
// first round is a warm-up; each measurement is repeated `runs` times (5 unless given) and the
// median is reported.
#include <cstdio>
#include <string>
#include <vector>

#include "bench_util.h"
#include "docs/text_editor.h"
#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

namespace {

using namespace ks;
using namespace bench;

constexpr std::size_t kFileBytes = 10u << 20;

// Lines of 20 to 99 characters, as in a long list or log.
std::vector<std::uint8_t> Text(std::size_t* lines) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(kFileBytes + 128);
  *lines = 0;
  for (std::size_t n = 0; bytes.size() < kFileBytes; ++n, ++*lines) {
    std::string line = "Line " + std::to_string(n) + " ";
    line.resize(20 + n * 37 % 80, static_cast<char>('a' + n % 26));
    line += '\n';
    bytes.insert(bytes.end(), line.begin(), line.end());
  }
  return bytes;
}

int Run(int runs) {
  TempDir temp;
  const std::string path = (temp.path() / "big.txt").string();
  std::size_t lines = 0;
  const std::vector<std::uint8_t> text = Text(&lines);
  WriteWhole(path, text);
  std::printf("Internal editor benchmark, in %s\n", temp.path().c_str());
  std::printf("big.txt: %.1f MB, %zu lines; an 80x25 virtual terminal.\n", text.size() / 1e6,
              lines);
  std::printf("Warm cache (one warm-up round first), median of %d runs.\n\n", runs);

  VirtualTerminal vt(80, 25);
  Screen screen(vt);
  UiScope scope(screen);
  Samples open, save, read, warm_up;
  for (int i = 0; i <= runs; ++i) {  // run 0 is the warm-up
    Samples& o = i == 0 ? warm_up : open;
    vt.Keys("<Esc>");  // read only once the first screen is shown: no changes, so it leaves
    const int presents = vt.present_count();
    o.Measure([&] { EditFile(path); });
    if (vt.present_count() == presents || !vt.Contains("Line 0 ")) Die("nothing was shown");
    if (i == 0) continue;
    read.Measure([&] { ReadWhole(path); });
    vt.Keys("<F10>");
    save.Measure([&] { EditFile(path); });
  }
  if (ReadWhole(path) != text) Die("the saved file differs from the one opened");
  const double open_ms = Median(open.wall);
  const double read_ms = Median(read.wall);
  std::printf("%-36s %8.1f ms wall %8.1f ms cpu\n", "open and first screen (Esc at once)", open_ms,
              Median(open.cpu));
  std::printf("%-36s %8.1f ms wall %8.1f ms cpu\n", "plain read of the file", read_ms,
              Median(read.cpu));
  std::printf("%-36s %8.1f ms wall %8.1f ms cpu\n", "open, then save with F10", Median(save.wall),
              Median(save.cpu));
  std::printf("\nopen / plain read: %.1fx\n", read_ms > 0 ? open_ms / read_ms : 0.0);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::BenchMain(argc, argv, "bench_editor", Run);
}
