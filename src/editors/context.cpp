#include "editors/context.h"

namespace ks {

std::string CompanionName(const ListContext& ctx, const std::string& base) {
  std::string name = base.substr(0, 6);
  name.resize(6, '_');
  return ctx.work_dir + "C" + name + "0.tmp";
}

}  // namespace ks
