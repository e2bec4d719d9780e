// The global change of the echomail manager (F2): a group and the area switches set at once
// on every area marked in the browse list.
#pragma once

#include "dbase/manager.h"

namespace ks {

void AddEchomailGlobalChange(ManagerOBJ& mgr, int topic);

}  // namespace ks
