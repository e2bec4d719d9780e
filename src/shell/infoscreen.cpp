#include "shell/infoscreen.h"

#include <algorithm>

#include "shell/build_info.h"
#include "shell/cmdline.h"
#include "shell/program.h"
#include "tui/dialog.h"
#include "tui/keys.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kInfoTopic = 32;
constexpr int kLabelWidth = 16;

std::string Field(const std::string& label, const std::string& value) {
  std::string line = label;
  line.resize(kLabelWidth, ' ');
  return line + value;
}

}  // namespace

std::vector<std::string> InformationLines() {
  const Program& p = prog();
  const KESTRAcfg* cfg = p.cfg.get();
  std::vector<std::string> lines = {
      Field("Product", std::string(kProductName) + " fileecho processor, setup program"),
      Field("Version", VersionString() + " for " + gPlatformName),
      Field("Built", build::kDate),
      Field("Program dir", p.exe_path),
      Field("Data dir", p.DataDir()),
      Field("Work dir", p.work_dir.empty() ? p.exe_path : p.work_dir),
      Field("Help files", p.help_dir.empty() ? "(not found)" : p.help_dir),
  };
  if (cfg) {
    lines.push_back(Field("Configuration", p.SetupPath()));
    lines.push_back(Field("", "revision " + std::to_string(cfg->revision) + ", written by " +
                                  std::to_string(cfg->versionMajor) + "." +
                                  std::to_string(cfg->versionMinor) + " build " +
                                  std::to_string(cfg->versionBuild)));
  }
  Screen& s = scr();
  lines.push_back(Field("Display", std::to_string(s.Width()) + "x" + std::to_string(s.Height()) +
                                       (p.colour ? ", colour" : ", monochrome") +
                                       (p.sfi ? ", speech friendly" : "")));
  return lines;
}

void ShowInformation() {
  Screen& s = scr();
  const auto& c = ui().colours;
  const auto lines = InformationLines();
  int width = 0;
  for (const auto& l : lines) width = std::max(width, static_cast<int>(l.size()));
  width = std::min(width + 4, s.Width() - 4);
  const int height = static_cast<int>(lines.size()) + 4;
  const Dialog d = Dialog::Centred(width, height, "Information");
  const int left = d.left(), top = d.top();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const int row = top + 2 + static_cast<int>(i);
    const std::string& l = lines[i];
    s.WriteStr(left + 2, row, c[kWindowText], l.substr(0, kLabelWidth));
    if (l.size() > kLabelWidth)
      s.WriteStr(left + 2 + kLabelWidth, row, c[kWindowData],
                 l.substr(kLabelWidth, static_cast<std::size_t>(width - 4 - kLabelWidth)));
  }
  ShowStatus("~Esc~-close ~F1~-help");
  for (;;) {
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    if (!extended && (k == key::kEsc || k == key::kEnter)) break;
    if (extended) HandleCommonKey(k, kInfoTopic);
  }
}

}  // namespace ks
