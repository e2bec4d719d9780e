// The global edit of the fileecho manager (F2): one switch, the conversion, "Add FILE_ID" or
// one connected system changed in every fileecho marked in the browse list.
#include <cstddef>
#include <memory>

#include "editors/common_fields.h"
#include "editors/fileecho_parts.h"
#include "tui/box.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace ks::fileecho {

namespace {

enum class Op { kConvert, kSwitch, kAddFileId, kAddSystem, kRemoveSystem, kReplace, kStatus };

struct SystemOp {
  const char* title;
  const char* help;
  Op op;
};
constexpr SystemOp kSystemOps[] = {
    {"Add system", "Add a system", Op::kAddSystem},
    {"Remove system", "Remove a system", Op::kRemoveSystem},
    {"Replace system", "Replace a system", Op::kReplace},
    {"Change status", "Change the status for a system", Op::kStatus},
};

// The switches the menu offers: the advanced page's, without "No hold dir".
constexpr int kSwitchItems = 18;

// "Change status": for each switch 0 keeps it, 1 clears it, 2 sets it; the message status
// 0 keeps it, else the status + 1.
struct StatusChange {
  std::uint8_t switches[5] = {};
  std::uint8_t status = 0;
};

struct Change {
  Op op = Op::kSwitch;
  std::string field;  // the field's name in the report
  const Switch* sw = nullptr;
  bool on = false;
  std::uint8_t convert = 0;
  AddFileId add_file_id = afNo;
  NetAddr system, replacement;
  StatusChange status;
};

int Menu() {
  BoxOBJ box(21, 7, 58, 19, "Global edit");
  for (int i = 0; i < kSwitchItems; ++i) {
    const std::string prompt = kAdvancedOrder[i];
    const Switch* sw = FindSwitch(prompt);
    const std::string help = sw ? sw->help : prompt == "Convert" ? kConvertHelp : kAddFileIdHelp;
    box.AddItem(i < 11 ? 2 : 19, 1 + i % 11, prompt, help, kTopic);
  }
  for (int i = 0; i < 4; ++i)
    box.AddItem(19, 8 + i, kSystemOps[i].title, kSystemOps[i].help, kTopic);
  box.set_topic(kTopic);
  box.Draw();
  const int choice = box.Run();
  box.Hide();
  return choice;
}

bool AskConvert(const ListContext& ctx, Change& change) {
  const std::vector<std::string> choices = ConvertChoices(ctx);
  PickList list;
  list.title = "Convert";
  list.key_line = "~Enter~-select ~Esc~-cancel";
  list.count = static_cast<int>(choices.size());
  list.row = [&choices](int r) { return choices[static_cast<std::size_t>(r)]; };
  list.topic = kTopic;
  const int chosen = RunPickList(list);
  if (chosen < 0) return false;
  change.convert = static_cast<std::uint8_t>(chosen);
  return true;
}

bool AskStatusChange(StatusChange& change) {
  change = {};
  std::vector<FieldDef> fields;
  for (int i = 0; i < 5; ++i)
    fields.push_back({.type = Chrs,
                      .col = 16,
                      .row = 1 + i,
                      .offset = static_cast<std::uint16_t>(offsetof(StatusChange, switches) + i),
                      .size = 1,
                      .prompt = kSystemSwitchPrompts[i],
                      .help = kSystemSwitchHelp[i],
                      .choices = {"<do not change>", "No", "Yes"}});
  std::vector<std::string> statuses = {"<do not change>"};
  for (const auto& name : MsgStatusNames()) statuses.push_back(name);
  fields.push_back({.type = Chrs,
                    .col = 16,
                    .row = 6,
                    .offset = offsetof(StatusChange, status),
                    .size = 1,
                    .prompt = "Msg status",
                    .help = kMsgStatusHelp,
                    .choices = std::move(statuses)});
  RunSubPage(std::move(fields), reinterpret_cast<std::uint8_t*>(&change), "Change status", 32, 6,
             kTopic);
  const StatusChange nothing;
  return std::memcmp(&change, &nothing, sizeof nothing) != 0;
}

// Asks what to change; false when the operator backs out.
bool AskChange(const ListContext& ctx, Change& change) {
  change = {};
  const int choice = Menu();
  if (choice == kChoiceEsc) return false;
  if (choice > kSwitchItems) {
    change.op = kSystemOps[choice - kSwitchItems - 1].op;
    std::optional<NetAddr> a;
    switch (change.op) {
      case Op::kAddSystem:
        a = AskSystem("Add", "System to connect to the marked fileechos");
        break;
      case Op::kRemoveSystem:
        a = AskSystem("Remove", "System to disconnect from the marked fileechos");
        break;
      case Op::kReplace:
        a = AskSystem("Find", "System to replace in the marked fileechos");
        if (a) {
          const auto b = AskSystem("Replace with", "System to put in its place");
          if (!b) return false;
          change.replacement = *b;
        }
        break;
      default:
        a = AskSystem("Status", "System whose status to change in the marked fileechos");
        if (a && !AskStatusChange(change.status)) return false;
        break;
    }
    if (!a) return false;
    change.system = *a;
    return true;
  }
  const std::string prompt = kAdvancedOrder[choice - 1];
  change.field = prompt;
  if (prompt == "Convert") {
    change.op = Op::kConvert;
    return AskConvert(ctx, change);
  }
  if (prompt == "Add FILE_ID") {
    change.op = Op::kAddFileId;
    switch (MessageBox("Toggle option to", {"No", "Yes", "Always"}, kTopic)) {
      case 'N':
        change.add_file_id = afNo;
        return true;
      case 'Y':
        change.add_file_id = afYes;
        return true;
      case 'A':
        change.add_file_id = afAlways;
        return true;
      default:
        return false;
    }
  }
  change.op = Op::kSwitch;
  change.sw = FindSwitch(prompt);
  change.field = change.sw->log_name;
  const std::uint8_t answer = MessageBox("Toggle option to", {"Yes", "No"}, kTopic);
  if (answer != 'Y' && answer != 'N') return false;
  change.on = answer == 'Y';
  return true;
}

std::uint8_t NewFlags(std::uint8_t flags, const StatusChange& change) {
  for (int i = 0; i < 5; ++i) {
    if (change.switches[i] == 1) flags &= static_cast<std::uint8_t>(~kSystemSwitchMasks[i]);
    if (change.switches[i] == 2) flags |= kSystemSwitchMasks[i];
  }
  if (change.status != 0)
    flags = static_cast<std::uint8_t>((flags & ~kSysStatusMask) |
                                      ((change.status - 1) << kSysStatusShift));
  return flags;
}

// The change on the connected systems; true when the record changed.
bool ApplyToSystems(const Change& change, std::uint8_t* rec, int capacity) {
  std::vector<ConnectedSystem> used = ReadSystems(rec, capacity);
  auto find = [&used](const NetAddr& a) {
    return std::find_if(used.begin(), used.end(),
                        [&a](const ConnectedSystem& s) { return s.address == a; });
  };
  const auto it = find(change.system);
  switch (change.op) {
    case Op::kAddSystem:
      if (it != used.end() || static_cast<int>(used.size()) >= capacity) return false;
      used.push_back({.address = change.system, .flags = kNewSystemFlags});
      break;
    case Op::kRemoveSystem:
      if (it == used.end()) return false;
      used.erase(it);
      break;
    case Op::kReplace:
      if (it == used.end() || change.system == change.replacement) return false;
      // A record that has both keeps the one it already had.
      if (find(change.replacement) != used.end())
        used.erase(it);
      else
        it->address = change.replacement;
      break;
    default: {
      if (it == used.end()) return false;
      const std::uint8_t flags = NewFlags(it->flags, change.status);
      if (flags == it->flags) return false;
      it->flags = flags;
      break;
    }
  }
  WriteSystems(rec, used, capacity);
  return true;
}

bool Apply(const Change& change, std::uint8_t* rec, int capacity) {
  FixedRec r = Fixed(rec);
  const FixedRec before = r;
  switch (change.op) {
    case Op::kConvert:
      r.convert = change.convert;
      break;
    case Op::kAddFileId:
      SetAddFileId(r, change.add_file_id);
      break;
    case Op::kSwitch: {
      std::uint16_t& word = change.sw->word == 1 ? r.options : r.options2;
      word = change.on ? static_cast<std::uint16_t>(word | change.sw->mask)
                       : static_cast<std::uint16_t>(word & ~change.sw->mask);
      break;
    }
    default:
      return ApplyToSystems(change, rec, capacity);
  }
  if (std::memcmp(&r, &before, kFileechoFixedSize) == 0) return false;
  PutFixed(rec, r);
  return true;
}

std::string Report(const Change& change, int changed) {
  const std::string n = std::to_string(changed);
  const std::string a = FormatAddr(change.system);
  switch (change.op) {
    case Op::kAddSystem:
      return "Added " + a + " to " + n + " records";
    case Op::kRemoveSystem:
      return "Removed " + a + " from " + n + " records";
    case Op::kReplace:
      return "Replaced " + a + " with " + FormatAddr(change.replacement) + " in " + n + " records";
    case Op::kStatus:
      return "Changed status for " + a + " in " + n + " records";
    default:
      return "Changed the " + change.field + " fields for " + n + " records";
  }
}

}  // namespace

void AddFileechoGlobalEdit(ManagerOBJ& mgr, const ListContext& ctx) {
  auto change = std::make_shared<Change>();
  const int capacity = ctx.systems_per_area;
  mgr.global_ok = [change, ctx] { return AskChange(ctx, *change); };
  mgr.global_edit = [change, capacity](std::uint8_t* rec) { return Apply(*change, rec, capacity); };
  mgr.global_done = [change](int, int changed) {
    // One line as it stands: the addresses in it hold "/".
    MessageBoxLines({Report(*change, changed)}, {"Ok"}, kTopic);
  };
}

}  // namespace ks::fileecho
