// The template processor and the template viewer.
//
//   bench_template [runs]
//
// 1. Processor throughput: a new-files report template (a file block with @just on the name,
//    size and description, and @overflow lines for the rest of each description) over 100,000
//    files, output produced piece by piece and thrown away. Figures in MB of output a second.
// 2. Viewer: a 2,000-line template whose file block runs over 1,000 sample files, from the
//    call until the viewer has shown its first screen (reading the records, running the
//    template, writing TMP.OUT, opening it in the document viewer), on a virtual terminal.
//
// Files live in a fresh directory under $TMPDIR (or /tmp) that is removed at the end. Each
// measurement is repeated `runs` times (5 unless given) after a warm-up; the median is given.
#include <cstdio>
#include <memory>
#include <string>

#include "bench_util.h"
#include "common/fileutil.h"
#include "dbase/recfiles.h"
#include "dbase/recordfile.h"
#include "docs/docviewer.h"
#include "templates/template_processor.h"
#include "templateview/template_viewer.h"
#include "tui/screen.h"
#include "tui/ui.h"
#include "tui/virtual_terminal.h"

namespace {

using namespace ks;
using namespace bench;

constexpr int kReportFiles = 100000;
constexpr int kViewFiles = 1000;
constexpr int kViewLines = 2000;

const char* const kReport =
    "New files on @systemname, @daynr @month @year\n"
    "@filebegin\n"
    "@just(@filename,L,13)@just(@filesize,R,9) @just(@filedesc,L,50)\n"
    "                       @overflow\n"
    "@end\n"
    "@totalfiles files, @totalkb kb\n";

class Files : public tpl::TemplateData {
 public:
  std::optional<std::string> Value(tpl::Keyword k) override {
    switch (k) {
      case tpl::Keyword::FileName:
        return "FILE" + std::to_string(n_ % 10000) + ".ZIP";
      case tpl::Keyword::FileSize:
        return std::to_string(1000 + n_ * 37 % 900000);
      case tpl::Keyword::FileDesc:
        return "Description of file " + std::to_string(n_) +
               ", long enough to need a second line in the report: it goes on and on.";
      default:
        return std::nullopt;
    }
  }
  bool FirstItem(tpl::Keyword) override { return (n_ = 1) <= kReportFiles; }
  bool NextItem(tpl::Keyword) override { return ++n_ <= kReportFiles; }

 private:
  int n_ = 0;
};

double ProcessorMs(std::uint64_t& bytes) {
  Files data;
  tpl::TemplateProcessor p;
  bytes = 0;
  const double ms = TimeMs([&] {
    if (p.LoadText(kReport, tpl::TemplateKind::kFileReport, &data, "", "", "") != tpl::kLoaded)
      Die("the report template did not load");
    std::string piece;
    while (p.NextLine(piece)) bytes += piece.size();
  });
  return ms;
}

// A program directory with one fileecho and one system, and the 2,000-line template V.APL.
void ViewerFiles(const std::string& dir) {
  TFAreasFile areas(200);
  TNodeFile nodes;
  for (TRecordFile* f : {static_cast<TRecordFile*>(&areas), static_cast<TRecordFile*>(&nodes)}) {
    WriteFileAtomic(DataFileName(dir, f->base()), "");
    WriteFileAtomic(IndexFileName(dir, f->base()), "");
    if (!f->Open(dir)) Die("cannot create " + f->base());
  }
  auto fe = std::make_unique<FileMGRrec>();
  fe->tag.set("BENCHECHO");
  NodeMGRrec node{};
  node.address = {2, 280, 5, 0};
  if (!areas.Add(*fe) || !nodes.Add(node)) Die("cannot add the sample records");
  std::string text =
      "@filebegin\n@just(@filename,L,13)@just(@filedesc,L,60)\n"
      "             @overflow\n@end\n";
  for (int i = 4; i < kViewLines; ++i)
    text += "Line " + std::to_string(i) + " of @fileecho for @msgto: @totalfiles files\n";
  WriteFileAtomic(dir + "V.APL", text);
}

int Run(int runs) {
  TempDir temp;
  const std::string dir = temp.path().string() + "/";
  std::printf("Template benchmark, in %s\n", dir.c_str());
  std::printf("Warm cache (one warm-up round first), median of %d runs.\n\n", runs);

  Samples proc, warm;
  std::uint64_t bytes = 0;
  for (int i = 0; i <= runs; ++i) (i ? proc : warm).wall.push_back(ProcessorMs(bytes));
  const double proc_ms = Median(proc.wall);
  std::printf("Processor: a report over %d files, %.1f MB of output\n", kReportFiles,
              static_cast<double>(bytes) / 1e6);
  std::printf("  %8.1f ms  = %.0f MB/s   (aim: at least 50 MB/s)\n\n", proc_ms,
              static_cast<double>(bytes) / 1e3 / proc_ms);

  ViewerFiles(dir);
  auto cfg = std::make_unique<KESTRAcfg>();
  cfg->numberOfSystems = 200;
  TemplateContext ctx;
  ctx.cfg = cfg.get();
  ctx.program_dir = ctx.data_dir = dir;
  VirtualTerminal vt(80, 25);
  Screen screen(vt);
  UiScope scope(screen);
  Samples view;
  std::uint64_t out_bytes = 0;
  for (int i = 0; i <= runs; ++i) {
    const std::string out = dir + kViewOutputName;
    const double ms = TimeMs([&] {
      const std::string failure =
          WriteTemplateOutput(ctx, "V", ViewerKind::kFileReport, out, kViewFiles);
      if (!failure.empty()) Die(failure);
      vt.Keys("<Esc>");
      ViewDocument(out, "View template");
    });
    out_bytes = FileSize(out).value_or(0);
    std::remove(out.c_str());
    if (i) view.wall.push_back(ms);
  }
  std::printf(
      "Viewer: a %d-line template over %d sample files (%.1f MB of TMP.OUT), until the\n"
      "first screen is shown\n",
      kViewLines, kViewFiles, static_cast<double>(out_bytes) / 1e6);
  std::printf("  %8.1f ms   (aim: under 100 ms)\n", Median(view.wall));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  return BenchMain(argc, argv, "bench_template", Run);
}
