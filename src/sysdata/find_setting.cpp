// "Find setting" (Ctrl-F in the menus): every prompt and help line of the settings screens
// that holds a text, and the screen of the one chosen, opened on its field.
#include <algorithm>
#include <cctype>
#include <string>

#include "sysdata/sysdata.h"
#include "tui/inputline.h"
#include "tui/picklist.h"

namespace ks {

namespace {

constexpr int kFindLength = 30;
constexpr const char* kSeparator = " \xAF ";  // the »  between screen and prompt

std::string Folded(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return s;
}

// The help line as shown: the "~" that mark keys are not part of the text.
std::string PlainHelp(const std::string& help) {
  std::string out;
  for (char c : help)
    if (c != '~') out += c;
  return out;
}

// What the list calls a field: its prompt, or for a table row without one the row.
std::string FieldName(const FieldDef& f) {
  std::string name = f.prompt;
  const auto first = name.find_first_not_of(' ');
  if (first == std::string::npos) return "row " + std::to_string(f.row);
  return name.substr(first);
}

}  // namespace

std::vector<SettingHit> FindSettings(const std::vector<SettingsTarget>& targets,
                                     const std::string& text) {
  std::vector<SettingHit> hits;
  const std::string wanted = Folded(text);
  if (wanted.empty()) return hits;
  for (std::size_t t = 0; t < targets.size(); ++t) {
    const auto& fields = targets[t].fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const FieldDef& f = fields[i];
      if (f.label) continue;
      if (Folded(f.prompt).find(wanted) == std::string::npos &&
          Folded(PlainHelp(f.help)).find(wanted) == std::string::npos)
        continue;
      hits.push_back({t, static_cast<int>(i), targets[t].path + kSeparator + FieldName(f)});
    }
  }
  return hits;
}

void RunFindSetting(const SysdataContext& ctx) {
  static bool running = false;  // Ctrl-F in a menu of a screen found is not taken again
  if (running) return;
  running = true;
  const auto text = AskText("Find setting", "Find setting: ", kFindLength);
  if (text && !text->empty()) {
    const auto targets = SettingsTargets(ctx);
    const auto hits = FindSettings(targets, *text);
    PickList list;
    list.title = "Find setting";
    list.key_line = "~Enter~-open  ~Esc~-exit";
    list.count = static_cast<int>(hits.size());
    list.row = [&hits](int r) { return hits[static_cast<std::size_t>(r)].text; };
    list.empty_message = "No setting holds \"" + *text + "\"";
    list.topic = kFindTopic;
    // The list comes back after each screen, so that several findings can be visited.
    for (int chosen; (chosen = RunPickList(list)) >= 0;) {
      const SettingHit& hit = hits[static_cast<std::size_t>(chosen)];
      targets[hit.target].open(hit.field);
    }
  }
  running = false;
}

}  // namespace ks
