#include "shell/edit_file.h"

#include "docs/external_editor.h"
#include "templates/template_help.h"

namespace ks {

namespace {

std::string Padded(std::string text, std::size_t width) {
  if (text.size() < width) text.resize(width, ' ');
  return text;
}

}  // namespace

std::string EditorCommand(const KESTRAcfg& cfg, const GetEnvFn& getenv) {
  const ToolProgram& ed = cfg.os2Programs.editor;
  if (!ed.program.empty()) {
    std::string command = ed.program.str();
    if (!ed.switches.empty()) command += " " + ed.switches.str();
    return command;
  }
  for (const char* name : {"VISUAL", "EDITOR"}) {
    const char* value = getenv ? getenv(name) : nullptr;
    if (value && *value) return value;
  }
  return {};
}

std::vector<PickEntry> MacroPicks() {
  std::vector<PickEntry> picks;
  for (const tpl::HelpItem& item : tpl::HelpList()) {
    const tpl::HelpEntry& e = item.entry;
    picks.push_back(
        {e.name.str(), Padded(e.name.str(), 15) + Padded(item.kinds, 7) + e.help.str(), e.cursor});
  }
  return picks;
}

std::function<void(const std::string& path)> FileEditor(const KESTRAcfg* cfg, GetEnvFn getenv) {
  return [cfg, getenv = std::move(getenv)](const std::string& path) {
    static const std::vector<PickEntry> picks = MacroPicks();
    EditTextFile(path, cfg ? EditorCommand(*cfg, getenv) : std::string(), picks);
  };
}

}  // namespace ks
