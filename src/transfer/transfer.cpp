#include "transfer/transfer.h"

namespace ks {

std::string ReportTitle(const TransferContext& ctx, const std::string& title) {
  return "KESTRA " + ctx.version + title;
}

std::string AbsoluteName(const TransferContext& ctx, const std::string& name) {
  if (name.empty() || name[0] == '/') return name;
  return ctx.current_dir + name;
}

}  // namespace ks
