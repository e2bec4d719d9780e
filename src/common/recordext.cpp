#include "common/recordext.h"

namespace ks {

RecordExtensions& record_extensions() {
  static RecordExtensions ext;
  return ext;
}

}  // namespace ks
