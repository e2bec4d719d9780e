#include "sysdata/settings.h"

#include <algorithm>
#include <utility>

#include "tui/box.h"
#include "tui/keys.h"
#include "tui/msgbox.h"

namespace ks {

namespace {

constexpr int kMaxRows = 18;  // inside a window on rows 5 to 24

// The box of the settings screen that is running, for RedrawSettingsWindow.
BoxOBJ* g_window = nullptr;

int LastRow(const std::vector<FieldDef>& fields) {
  int last = 0;
  for (const auto& f : fields) last = std::max(last, f.row);
  return last;
}

}  // namespace

void RunSettings(const SettingsScreen& screen, KESTRAcfg& cfg, int first) {
  auto* rec = reinterpret_cast<std::uint8_t*>(&cfg);
  // Centred on the desktop (rows 5 to 24), as the other pages are.
  const int left = (80 - screen.width - 2) / 2 + 1;
  const int top = 5 + std::max(0, (19 - screen.height - 2) / 2);
  BoxOBJ box(left, top, left + screen.width + 1, top + screen.height + 1, screen.title);
  BoxOBJ* outer = std::exchange(g_window, &box);
  box.Draw();
  EditPage page(screen.fields);
  page.topic = screen.topic;
  page.exit_keys.set(key::kF10);
  page.on_key = [&](std::uint8_t scan, int field, std::uint8_t*) {
    const FieldDef& f = page.field(field);
    for (const FieldKey& k : screen.keys) {
      if (k.scan != scan || k.offset != f.offset || f.label) continue;
      k.run(cfg);
      return true;
    }
    return false;
  };
  if (LastRow(screen.fields) > screen.height) page.SetView(1, screen.height, 1, screen.width);
  for (int field = first;;) {
    field = page.Run(rec, left, top, field).field;
    const auto note = screen.on_leave ? screen.on_leave(cfg) : std::nullopt;
    if (!note) break;
    MessageBox(note->message, {"Ok"}, static_cast<std::uint8_t>(screen.topic));
    if (!note->stay) break;
    field = note->field;
  }
  g_window = outer;
  box.Hide();
}

void RedrawSettingsWindow() {
  if (g_window) g_window->Draw();
}

void StackRows(std::vector<FieldDef>& fields, int value_col, int first_row) {
  int row = first_row;
  for (auto& f : fields) {
    f.row = row++;
    if (!f.label) f.col = value_col;
  }
}

FieldDef YesNo(std::uint16_t offset, std::string prompt, std::string help) {
  return {.type = Bol, .offset = offset, .prompt = std::move(prompt), .help = std::move(help)};
}

FieldDef Label(std::string text) {
  return {.prompt = std::move(text), .label = true};
}

SettingsScreen StackedScreen(std::string name, std::string title, std::vector<FieldDef> fields,
                             int topic, int value_col, int width) {
  StackRows(fields, value_col);
  // A long text scrolls in the room the window leaves it.
  const int room = width - value_col + 1;
  for (auto& f : fields)
    if (!f.label && f.width == 0 && (f.type == Str || f.type == Path) && f.size > room)
      f.width = room;
  const int height = std::min(kMaxRows, static_cast<int>(fields.size()));
  return {std::move(name), std::move(title), width, height, topic, std::move(fields), {}};
}

}  // namespace ks
