// The global edit of the node manager (F2): one field set to one value on every system marked
// in the browse list, optionally only on the systems authorized for chosen groups.
#include <cstddef>
#include <cstring>
#include <memory>

#include "editors/node_pages.h"
#include "tui/menu.h"
#include "tui/msgbox.h"
#include "tui/picklist.h"

namespace ks {

namespace {

constexpr std::uint16_t kOptions = offsetof(NodeMGRrec, options);

bool SharesGroup(const GroupSet& a, const GroupSet& b) {
  for (std::size_t i = 0; i < sizeof a.bits; ++i)
    if (a.bits[i] & b.bits[i]) return true;
  return false;
}

// The values of a list field of the menu.
std::vector<std::string> ValuesOf(const NodeGlobalField& f, const ListContext& ctx) {
  switch (f.offset) {
    case offsetof(NodeMGRrec, fileAttachStatus):
    case offsetof(NodeMGRrec, otherMailStatus):
      return FlowStatusNames();
    case offsetof(NodeMGRrec, ticMode):
      return TicModeNames();
    case offsetof(NodeMGRrec, packMode):
      return PackingModeNames();
    default:
      return CompressionNames(ctx);
  }
}

// Asks which field, which value and which systems: false when the user backs out anywhere.
bool AskChange(NodeGlobalChange& change, const ListContext& ctx) {
  const auto& fields = NodeGlobalFields();
  MenuDef def{"Global edit",
              27,
              3,
              54,
              4 + static_cast<int>(fields.size()) + 2,
              false,
              static_cast<std::uint8_t>(kNodeTopic),
              {}};
  for (const auto& f : fields) def.items.push_back({"", f.prompt, f.help, 0});
  int choice = 0;
  {
    auto menu = MakeMenu(def);
    choice = menu->Run();
    menu->Hide();
  }
  if (choice < 1 || choice > static_cast<int>(fields.size())) return false;
  change = {};
  change.item = choice - 1;
  const NodeGlobalField& f = fields[static_cast<std::size_t>(change.item)];
  if (f.mask != 0) {
    const std::uint8_t answer = MessageBox("Toggle option to", {"Yes", "No"}, kNodeTopic);
    if (answer != 'Y' && answer != 'N') return false;
    change.value = answer == 'Y' ? 1 : 0;
  } else {
    const std::vector<std::string> values = ValuesOf(f, ctx);
    PickList list;
    list.title = f.prompt;
    list.key_line = "~Enter~-select ~Esc~-cancel";
    list.count = static_cast<int>(values.size());
    list.row = [&values](int r) { return values[static_cast<std::size_t>(r)]; };
    list.topic = kNodeTopic;
    const int picked = RunPickList(list);
    if (picked < 0) return false;
    change.value = static_cast<std::uint8_t>(picked);
  }
  const std::uint8_t limit =
      MessageBox("Process systems with access to group(s)", {"Yes", "No"}, kNodeTopic);
  if (limit != 'Y' && limit != 'N') return false;
  if (limit == 'Y') {
    PickGroups(change.groups);
    // No group chosen limits nothing.
    change.limited = !change.groups.Empty();
  }
  return AskYesNo("Process changes?", kNodeTopic);
}

}  // namespace

const std::vector<NodeGlobalField>& NodeGlobalFields() {
  static const std::vector<NodeGlobalField> fields = {
      {"File attach status", "Status of file attach messages for this node",
       "Changed the File attach status field for", 0, offsetof(NodeMGRrec, fileAttachStatus)},
      {"Other mail status", "Status of all other messages for this node",
       "Changed the Other mail status field for", 0, offsetof(NodeMGRrec, otherMailStatus)},
      {"TIC file mode", "What type of TIC files to send", "Changed the TIC file mode field for", 0,
       offsetof(NodeMGRrec, ticMode)},
      {"Packing mode", "How to pack the files", "Changed the Pack mode field for", 0,
       offsetof(NodeMGRrec, packMode)},
      {"Inactive", "If this system is temporarily inactive", "Toggled the Inactive field for",
       kNodeInactive, kOptions},
      {"Copy other files", "Copy other files on hold for this system to holding directory",
       "Toggled the Copy other files field for", kNodeCopyOtherFiles, kOptions},
      {"Include template file", "Include template file when forwarding files to this system",
       "Toggled the Include template file field for", kNodeIncludeTemplate, kOptions},
      {"Send notify list", "Process this system when sending notify lists",
       "Toggled the Send notify list field for", kNodeSendNotifyList, kOptions},
      {"Notify new fileechos", "Notify node of new fileechos",
       "Toggled the Notify new fileechos field for", kNodeNotifyNewEchos, kOptions},
      {"Forward requests",
       "If requests for new areas from this system should be forwarded to an uplink",
       "Toggled the Forward requests field for", kNodeForwardRequests, kOptions},
      {"Allow Auto-add", "Auto-add new areas received from this system",
       "Toggled the AutoAdd requests field for", kNodeAllowAutoAdd, kOptions},
      {"Remote maintenance",
       "If this node is allowed to do remote maintenance for other nodes (%FROM)",
       "Toggled the Remote maintenance field for", kNodeRemoteMaint, kOptions},
      {"Send .TIC with FREQ", "If a .TIC file should be sent with all file requested files",
       "Toggled the Send .TIC with Freq field for", kNodeTicWithFreq, kOptions},
      {"Compression type", "Compression type, for TIC pack options",
       "Changed the Compression type field for", 0, offsetof(NodeMGRrec, compression)},
  };
  return fields;
}

bool ApplyNodeChange(const NodeGlobalChange& change, NodeMGRrec& rec) {
  const auto& fields = NodeGlobalFields();
  if (change.item < 0 || change.item >= static_cast<int>(fields.size())) return false;
  if (change.limited && !SharesGroup(rec.groups, change.groups)) return false;
  const NodeGlobalField& f = fields[static_cast<std::size_t>(change.item)];
  auto* bytes = reinterpret_cast<std::uint8_t*>(&rec);
  if (f.mask == 0) {
    if (bytes[f.offset] == change.value) return false;
    bytes[f.offset] = change.value;
    return true;
  }
  const std::uint16_t before = rec.options;
  rec.options = change.value ? static_cast<std::uint16_t>(before | f.mask)
                             : static_cast<std::uint16_t>(before & ~f.mask);
  return rec.options != before;
}

std::string NodeChangeReport(int item, int records) {
  return std::string(NodeGlobalFields()[static_cast<std::size_t>(item)].report) + " " +
         std::to_string(records) + " records";
}

void AddNodeGlobalEdit(ManagerOBJ& mgr, const ListContext& ctx) {
  auto change = std::make_shared<NodeGlobalChange>();
  mgr.global_ok = [change, &ctx] { return AskChange(*change, ctx); };
  mgr.global_edit = [change](std::uint8_t* rec) {
    NodeMGRrec r;
    std::memcpy(static_cast<void*>(&r), rec, sizeof r);
    if (!ApplyNodeChange(*change, r)) return false;
    std::memcpy(rec, &r, sizeof r);
    return true;
  };
  // The count is of the systems that changed: those that already had the value, or lie
  // outside the chosen groups, are not counted.
  mgr.global_done = [change](int, int changed) {
    MessageBox(NodeChangeReport(change->item, changed), {"Ok"}, kNodeTopic);
  };
}

}  // namespace ks
