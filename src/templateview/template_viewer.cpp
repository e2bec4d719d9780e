#include "templateview/template_viewer.h"

#include <cstdio>
#include <ctime>
#include <memory>

#include "common/fileutil.h"
#include "dbase/bbsfileareas.h"
#include "dbase/grouptable.h"
#include "dbase/recordfile.h"
#include "docs/docviewer.h"
#include "tui/msgbox.h"

namespace ks {

namespace {

// Sample output stops growing here, whatever the template's blocks do.
constexpr std::uint64_t kMaxRepeats = 100000;
constexpr std::uint64_t kMaxOutputBytes = 64ull << 20;

std::string NotDefined(const char* what, const char* manager) {
  return std::string(
             "Before the template viewing option can/be used, you must define at least one ") +
         what + "/" + "in the " + manager;
}

std::string NameOfGroup(const std::string& data_dir, std::uint8_t group) {
  for (const GroupTableEntry& g : LoadGroupTable(data_dir))
    if (!g.deleted && g.group == group) return g.name;
  return {};
}

tpl::DateTime Now() {
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
}

}  // namespace

std::string TemplateDir(const TemplateContext& ctx) {
  const std::string configured = ctx.cfg ? ctx.cfg->templatePath.str() : std::string();
  return AddSlash(configured.empty() ? ctx.program_dir : configured);
}

std::string WriteTemplateOutput(const TemplateContext& ctx, const std::string& name,
                                ViewerKind kind, const std::string& out_path, int sample_files) {
  const KESTRAcfg& cfg = *ctx.cfg;
  auto source = std::make_unique<SampleSource>();
  {
    TFAreasFile areas(cfg.numberOfSystems);
    if (!areas.Open(ctx.data_dir) || areas.Count() == 0)
      return NotDefined("fileecho", "Fileecho manager");
    TNodeFile nodes;
    if (!nodes.Open(ctx.data_dir) || nodes.Count() == 0) return NotDefined("node", "Node manager");
    areas.ReadRecord(0, source->fileecho);
    nodes.ReadRecord(0, source->node);
  }
  if (kind == ViewerKind::kRequestReply && LoadBbsFileAreas(ctx.data_dir).empty())
    return "There are no file areas defined//In order to view this template, you must/run "
           "DIRBUILD to compile your BBS file areas";
  source->kind = kind;
  source->files = sample_files;
  source->cfg = &cfg;
  source->group_name = NameOfGroup(ctx.data_dir, source->fileecho.group);
  source->version = ctx.version;
  source->archivers = ctx.archivers;
  source->file_date = Now();
  source->seed = static_cast<std::uint32_t>(std::time(nullptr));
  SampleData data(std::move(*source));

  tpl::TemplateProcessor processor;
  tpl::RunSettings settings;
  settings.template_dir = TemplateDir(ctx);
  settings.system_dir = ctx.program_dir;
  settings.max_repeats = kMaxRepeats;
  const int loaded = processor.Load(name, TemplateKindOf(kind), &data, "Some sysop",
                                    cfg.sysopName.str(), "Template view", settings);
  if (loaded == tpl::kUnableToOpen) return "Unable to open template file";
  if (loaded == tpl::kSyntaxError)
    return "Template contains a syntax error//The number of @end macros is incorrect";
  if (kind == ViewerKind::kRequestReply)
    for (const auto& [macro, value] : SampleData::RequestMacros())
      processor.DefineMacro(macro, value);

  std::FILE* out = std::fopen(out_path.c_str(), "wb");
  if (!out) return "Unable to create " + out_path;
  std::string piece;
  std::uint64_t written = 0;
  while (written < kMaxOutputBytes && processor.NextLine(piece)) {
    // A piece that ends a line becomes a text line; others continue the line.
    if (!piece.empty() && piece.back() == '\r') piece.back() = '\n';
    written += std::fwrite(piece.data(), 1, piece.size(), out);
  }
  processor.Release();
  const bool ok = std::fclose(out) == 0;
  if (!ok) return "Unable to write " + out_path;
  return {};
}

void ViewTemplate(const TemplateContext& ctx, const std::string& name, ViewerKind kind) {
  const std::string out = ctx.program_dir + kViewOutputName;
  const std::string failure = WriteTemplateOutput(ctx, name, kind, out);
  if (failure.empty()) ViewDocument(out, "View template");
  std::remove(out.c_str());
  if (!failure.empty()) {
    if (failure.find(out) != std::string::npos)
      MessageBoxLines({failure}, {"Ok"}, kTemplateEditorTopic);
    else
      ErrorBox(failure, kTemplateEditorTopic);
  }
}

}  // namespace ks
