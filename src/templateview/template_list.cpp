// Utilities › Template editor: the .APL files of the template directory, with their size and
// date, to edit, create, delete and view.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "common/cp437.h"
#include "common/fileutil.h"
#include "templates/template_dates.h"
#include "templateview/template_viewer.h"
#include "tui/inputline.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace ks {

namespace {

constexpr const char* kKeyLine = "~Enter~-edit ~Ins~-new ~Del~-delete ~F3~-view ~Esc~-exit";
constexpr const char* kViewKinds[] = {"System message", "File report", "Request reply",
                                      "File report, flag clear"};
constexpr int kNameWidth = 12;
constexpr int kNewNameLength = 60;

struct TemplateFile {
  std::string name;
  std::uint64_t size = 0;
  std::time_t modified = 0;
};

bool IsTemplateName(const std::string& name) {
  return name.size() > 4 && Upper(name.substr(name.size() - 4)) == ".APL";
}

// The .APL files of `dir` (any case), sorted by name without regard to case.
std::vector<TemplateFile> TemplateFiles(const std::string& dir) {
  std::vector<TemplateFile> files;
  for (const std::string& name : ListFiles(dir)) {
    if (!IsTemplateName(name)) continue;
    struct stat st {};
    if (::stat((dir + name).c_str(), &st) != 0) continue;
    files.push_back({name, static_cast<std::uint64_t>(st.st_size), st.st_mtime});
  }
  std::sort(files.begin(), files.end(), [](const TemplateFile& a, const TemplateFile& b) {
    const std::string ua = Upper(a.name), ub = Upper(b.name);
    return ua != ub ? ua < ub : a.name < b.name;
  });
  return files;
}

std::string Row(const TemplateFile& f, int name_width, const KESTRAcfg* cfg) {
  std::tm tm{};
  localtime_r(&f.modified, &tm);
  const tpl::DateTime when{tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min};
  const auto order = static_cast<tpl::DateOrder>(std::min<int>(cfg ? cfg->dateFormat : 0, 2));
  char size[24];
  std::snprintf(size, sizeof size, "%10llu", static_cast<unsigned long long>(f.size));
  std::string name = f.name;
  name.resize(static_cast<std::size_t>(std::max<int>(name_width, static_cast<int>(name.size()))),
              ' ');
  return name + size + "  " + tpl::FormatDate(tpl::DateFormat(order), when) + "  " +
         tpl::FormatDate(tpl::kTimeFormat, when, true);
}

// "View as": the viewer kind chosen, or nothing.
std::optional<ViewerKind> ChooseViewKind() {
  PickList list;
  list.title = "View as";
  list.count = static_cast<int>(std::size(kViewKinds));
  list.row = [](int r) { return std::string(kViewKinds[r]); };
  list.topic = kTemplateEditorTopic;
  const int chosen = RunPickList(list);
  if (chosen < 0) return std::nullopt;
  return static_cast<ViewerKind>(chosen);
}

// Asks for the name of a new template; ".apl" is added when it has no such ending.
std::optional<std::string> AskNewName() {
  auto name = AskText("New template", "File name: ", kNewNameLength);
  if (!name) return std::nullopt;
  std::string n(name->substr(0, name->find_last_not_of(' ') + 1));
  n.erase(0, std::min(n.size(), n.find_first_not_of(' ')));
  if (n.empty() || n.find('/') != std::string::npos) return std::nullopt;
  if (!IsTemplateName(n)) n += ".apl";
  return n;
}

void Delete(const std::string& dir, const std::string& name) {
  if (!AskYesNo("Delete " + name + "?", kTemplateEditorTopic)) return;
  if (std::remove((dir + name).c_str()) != 0)
    MessageBoxLines({"Unable to delete", dir + name, std::strerror(errno)}, {"Ok"},
                    kTemplateEditorTopic);
}

}  // namespace

void RunTemplateList(const TemplateContext& ctx) {
  const std::string dir = TemplateDir(ctx);
  std::string current;  // the name to highlight when the list is shown again
  for (;;) {
    const std::vector<TemplateFile> files = TemplateFiles(dir);
    int width = kNameWidth;
    for (const auto& f : files) width = std::max(width, static_cast<int>(f.name.size()));
    PickList list;
    list.title = "Template files";
    list.key_line = kKeyLine;
    list.header = std::string("Name").append(static_cast<std::size_t>(width) - 4, ' ') +
                  "      Size  Date      Time";
    list.count = static_cast<int>(files.size());
    list.row = [&](int r) { return Row(files[static_cast<std::size_t>(r)], width, ctx.cfg); };
    list.show_empty = true;
    list.topic = kTemplateEditorTopic;
    list.exit_keys.set(key::kIns).set(key::kDel).set(key::kF3);
    for (std::size_t i = 0; i < files.size(); ++i)
      if (files[i].name == current) list.current = static_cast<int>(i);
    const int chosen = RunPickList(list);
    const bool on_file = chosen >= 0 && chosen < list.count;
    if (on_file) current = files[static_cast<std::size_t>(chosen)].name;
    switch (list.exit_scan) {
      case 0:
        if (!on_file) return;
        if (ctx.edit_file) ctx.edit_file(dir + current);
        break;
      case key::kIns:
        if (auto name = AskNewName()) {
          current = *name;
          if (ctx.edit_file) ctx.edit_file(dir + current);
        }
        break;
      case key::kDel:
        if (on_file) Delete(dir, current);
        break;
      case key::kF3:
        if (!on_file) break;
        if (auto kind = ChooseViewKind()) ViewTemplate(ctx, current, *kind);
        break;
    }
  }
}

}  // namespace ks
