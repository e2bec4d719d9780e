// The systems connected to a fileecho: a list in a window of its own (Ins adds, Enter edits,
// Del removes) and the page of one system with its switches and message status.
#include <algorithm>
#include <cstddef>

#include "editors/common_fields.h"
#include "editors/fileecho_parts.h"
#include "editors/record_picks.h"
#include "tui/box.h"
#include "tui/colours.h"
#include "tui/dialog.h"
#include "tui/fields.h"
#include "tui/keys.h"
#include "tui/msgbox.h"
#include "tui/ui.h"

namespace ks::fileecho {

const char* const kSystemSwitchPrompts[5] = {"Send files", "Pause", "Receive files", "Prerelease",
                                             "Mandatory"};
const char* const kSystemSwitchHelp[5] = {
    "Send files to this system", "Temporarily stop sending files to this system",
    "Receive files from this system", "Send pre-release copies to this system",
    "Do not allow this area to be disconnected by the node"};
const std::uint8_t kSystemSwitchMasks[5] = {kSysSendFiles, kSysPause, kSysReceiveFiles,
                                            kSysPrerelease, kSysMandatory};
const char* const kMsgStatusHelp = "Status of file attach message (Setup=status in Node manager)";

const std::vector<std::string>& MsgStatusNames() {
  static const std::vector<std::string> names = {"Setup", "None", "Hold", "Crash"};
  return names;
}

namespace {

constexpr int kListRows = 12;
constexpr int kAddrCols = 23;
constexpr const char* kKeys = "~Ins~-add ~Enter~-edit ~Del~ete ~Esc~-done";
constexpr const char* kSystemsHelp = "Connected systems";

std::string Pad(std::string s, std::size_t width) {
  s.resize(std::max(s.size(), width), ' ');
  return s;
}

std::string Header() {
  std::string h = Pad("System", kAddrCols);
  for (const char* name : {"Send", "Pause", "Recv", "Pre", "Mand"}) h += Pad(name, 6);
  return h + "Status";
}

std::string RowText(const ConnectedSystem& s) {
  std::string row = Pad(FormatAddr(s.address), kAddrCols);
  for (const std::uint8_t mask : kSystemSwitchMasks) row += Pad(s.flags & mask ? "Yes" : "No", 6);
  return row + MsgStatusNames()[s.status()];
}

// The page of one system; the address may be cleared (the entry then goes).
ConnectedSystem EditSystem(ConnectedSystem sys) {
  std::vector<FieldDef> fields = {{.type = Aka,
                                   .col = 16,
                                   .row = 1,
                                   .offset = offsetof(ConnectedSystem, address),
                                   .size = 8,
                                   .prompt = "System",
                                   .help = "System address",
                                   .na_when_empty = true}};
  for (int i = 0; i < 5; ++i)
    fields.push_back({.type = Bol,
                      .col = 16,
                      .row = 2 + i,
                      .offset = offsetof(ConnectedSystem, flags),
                      .size = 1,
                      .prompt = kSystemSwitchPrompts[i],
                      .help = kSystemSwitchHelp[i],
                      .mask = kSystemSwitchMasks[i]});
  fields.push_back({.type = Chrs,
                    .col = 16,
                    .row = 7,
                    .offset = offsetof(ConnectedSystem, flags),
                    .size = 1,
                    .prompt = "Msg status",
                    .help = kMsgStatusHelp,
                    .mask = kSysStatusMask,
                    .choices = MsgStatusNames()});
  RunSubPage(std::move(fields), reinterpret_cast<std::uint8_t*>(&sys), "Connected system", 40, 7,
             kTopic);
  return sys;
}

bool Listed(const std::vector<ConnectedSystem>& used, const NetAddr& a, int except) {
  for (std::size_t i = 0; i < used.size(); ++i)
    if (static_cast<int>(i) != except && used[i].address == a) return true;
  return false;
}

}  // namespace

std::vector<ConnectedSystem> ReadSystems(const std::uint8_t* rec, int capacity) {
  std::vector<ConnectedSystem> used;
  for (int i = 0; i < capacity; ++i) {
    ConnectedSystem s;
    std::memcpy(static_cast<void*>(&s), rec + kSystemsOffset + i * sizeof s, sizeof s);
    if (s.address.IsSet()) used.push_back(s);
  }
  return used;
}

void WriteSystems(std::uint8_t* rec, const std::vector<ConnectedSystem>& used, int capacity) {
  for (int i = 0; i < capacity; ++i) {
    ConnectedSystem s;
    if (static_cast<std::size_t>(i) < used.size()) s = used[static_cast<std::size_t>(i)];
    std::memcpy(rec + kSystemsOffset + i * sizeof s, static_cast<const void*>(&s), sizeof s);
  }
}

std::string SystemsText(const std::uint8_t* rec, int capacity, int width) {
  std::vector<NetAddr> used;
  for (const auto& s : ReadSystems(rec, capacity)) used.push_back(s.address);
  return AddressListText(used, width);
}

std::optional<NetAddr> AskSystem(const std::string& prompt, const std::string& help) {
  NetAddr addr;
  const int col = static_cast<int>(prompt.size()) + 3;
  BoxOBJ box(20, 11, 20 + col + 23, 13, "System");
  box.Draw();
  EditPage page({{.type = Aka,
                  .col = col,
                  .row = 1,
                  .offset = 0,
                  .size = 8,
                  .prompt = prompt,
                  .help = help,
                  .na_when_empty = true}});
  page.topic = kTopic;
  page.Run(reinterpret_cast<std::uint8_t*>(&addr), box.left(), box.top());
  box.Hide();
  if (!addr.IsSet()) return std::nullopt;
  return addr;
}

bool EditSystems(std::uint8_t* rec, int capacity) {
  std::vector<ConnectedSystem> used = ReadSystems(rec, capacity);
  const std::vector<ConnectedSystem> before = used;
  Screen& s = scr();
  const auto& c = ui().colours;
  const std::string header = Header();
  const int width = static_cast<int>(header.size()) + 4;
  const Dialog box = Dialog::Centred(width, kListRows + 3, "Connected systems");
  s.WriteStr(box.left() + 2, box.top() + 1, c[kWindowTitle], header);
  int current = 0, first = 0;
  for (;;) {
    const int count = static_cast<int>(used.size());
    current = std::clamp(current, 0, std::max(0, count - 1));
    first = std::clamp(first, std::max(0, current - kListRows + 1), current);
    for (int i = 0; i < kListRows; ++i) {
      const int r = first + i;
      const std::string text = r < count ? " " + RowText(used[static_cast<std::size_t>(r)]) : "";
      if (r == current && r < count)
        s.WriteStrCursor(box.left() + 1, box.top() + 2 + i, c[kWindowSelect], text, width - 2);
      else
        s.WriteStr(box.left() + 1, box.top() + 2 + i, c[kWindowText], text, width - 2);
    }
    ShowStatus(kKeys);
    bool extended = false;
    const std::uint8_t k = s.ReadCode(&extended);
    int edit = -1;  // the entry to edit, count for a new one
    if (!extended && k == key::kEsc) break;
    if (!extended && k == key::kEnter) {
      edit = count == 0 ? 0 : current;
    } else if (extended) {
      switch (k) {
        case key::kUp:
          --current;
          break;
        case key::kDown:
          ++current;
          break;
        case key::kPgUp:
          current -= kListRows;
          break;
        case key::kPgDn:
          current += kListRows;
          break;
        case key::kHome:
          current = 0;
          break;
        case key::kEnd:
          current = count - 1;
          break;
        case key::kIns:
          edit = count;
          break;
        case key::kDel:
          if (count > 0 && MessageBox("Delete this system?", {"No", "Yes"}, kTopic) == 'Y')
            used.erase(used.begin() + current);
          break;
        default:
          HandleCommonKey(k, kTopic);
          break;
      }
    }
    if (edit < 0) continue;
    const bool adding = edit >= count;
    if (adding && count >= capacity) {
      ErrorBox("There is no room for more systems in this fileecho", kTopic);
      continue;
    }
    ConnectedSystem sys =
        adding ? ConnectedSystem{.flags = kNewSystemFlags} : used[static_cast<std::size_t>(edit)];
    sys = EditSystem(sys);
    if (!sys.address.IsSet()) {
      if (!adding) used.erase(used.begin() + edit);
      continue;
    }
    if (Listed(used, sys.address, adding ? -1 : edit)) {
      ErrorBox("This system is already connected to this fileecho", kTopic);
      continue;
    }
    if (adding) {
      used.push_back(sys);
      current = count;
    } else {
      used[static_cast<std::size_t>(edit)] = sys;
    }
  }
  ShowStatus(kSystemsHelp);
  if (used.size() == before.size() &&
      std::equal(used.begin(), used.end(), before.begin(), [](const auto& a, const auto& b) {
        return a.address == b.address && a.flags == b.flags;
      }))
    return false;
  WriteSystems(rec, used, capacity);
  return true;
}

}  // namespace ks::fileecho
