// "Node manager": the systems KESTRA exchanges files with (NODEFILE), keyed by address. A
// changed or deleted address is carried into the rest of the setup on request.
#include <cstring>

#include "editors/common_fields.h"
#include "editors/lists.h"
#include "editors/node_pages.h"
#include "editors/node_propagation.h"
#include "tui/msgbox.h"

namespace ks {

namespace {

NodeMGRrec Node(const std::uint8_t* rec) {
  NodeMGRrec r;
  std::memcpy(static_cast<void*>(&r), rec, sizeof r);
  return r;
}

std::string Places(int n) {
  return std::to_string(n) + " place(s)";
}

// The checks before a system is saved, then the offer to carry a changed address into the
// other files. The offer is made here, after the checks and the duplicate check have passed,
// because nothing after them can refuse the save.
int CheckAndReplace(ManagerOBJ& mgr, const ListContext& ctx, std::uint8_t* rec, bool adding) {
  const NodeMGRrec r = Node(rec);
  if (auto refusal = CheckNode(r)) {
    ErrorBox(refusal->message);
    // The day is on the cost-sharing page: it opens on "Send on", and the edit page goes on
    // from the field that opens it.
    if (refusal->field == node_page::kCostSharing) EditCostSharing(rec, node_page::kSendOn);
    return refusal->field;
  }
  ksDataBase& db = mgr.db();
  if (adding || db.IsDuplicate(rec, db.current())) return -1;
  NodeMGRrec old;
  if (!db.ReadRecord(db.current(), reinterpret_cast<std::uint8_t*>(&old))) return -1;
  if (old.address == r.address || !old.address.IsSet()) return -1;
  if (AskYesNo("Replace node in rest of setup?", kNodeTopic)) {
    const int n = ReplaceNode(ctx.data_dir, ctx.systems_per_area, old.address, r.address);
    MessageBox("Replaced node in " + Places(n), {"Ok"}, kNodeTopic);
  }
  return -1;
}

}  // namespace

void RunNodeManager(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, FileDef(RecordFileId::kNodes).base, sizeof(NodeMGRrec), 10, 2, 70,
                 24, "Node manager");
  DeclareKeys(mgr, RecordFileId::kNodes);
  const int row_width =
      AddColumns(mgr, {{.type = Aka, .offset = 0, .length = 8, .width = 20, .caption = "System"},
                       {.type = Str,
                        .offset = offsetof(NodeMGRrec, sysop),
                        .length = 36,
                        .width = 35,
                        .caption = "SysOp name"}});
  mgr.AddFields(NodePageFields(ctx));
  mgr.init = [&ctx](std::uint8_t* rec) {
    if (!ctx.node_defaults) return;
    NodeMGRrec r = Node(rec);
    ApplyNodeDefaults(*ctx.node_defaults, r);
    std::memcpy(rec, &r, sizeof r);
  };
  mgr.check = [&mgr, &ctx](std::uint8_t* rec, bool adding) {
    return CheckAndReplace(mgr, ctx, rec, adding);
  };
  mgr.on_delete = [&ctx](const std::uint8_t* rec) {
    const NetAddr address = Node(rec).address;
    if (address.IsSet() && AskYesNo("Delete node in rest of setup?", kNodeTopic)) {
      const int n = RemoveNode(ctx.data_dir, ctx.systems_per_area, address);
      MessageBox("Removed node in " + Places(n), {"Ok"}, kNodeTopic);
    }
    return true;
  };
  // F3 edits the defaults of new systems, not the shown one: the record stays as it is.
  mgr.edit = [&ctx](std::uint8_t*) {
    if (ctx.node_defaults) EditNodeDefaults(*ctx.node_defaults, ctx);
    return false;
  };
  AddNodeGlobalEdit(mgr, ctx);
  mgr.key_line = "~F2~-global edit ~F3~-defaults";
  mgr.topic = kNodeTopic;
  RunWithCompanion(mgr, ctx, FileDef(RecordFileId::kNodes).base, row_width);
}

}  // namespace ks
