#include "editors/echomail_global.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

#include "dbase/fileecho_rec.h"
#include "editors/common_fields.h"
#include "tui/msgbox.h"

namespace ks {

namespace {

// What the change does, as the page edits it: a new group (0 = leave it) and, for each
// switch, 0 to leave it, 1 to switch it on, 2 to switch it off.
struct EchomailChange {
  std::uint8_t group = 0;
  std::uint8_t switches[6] = {};
};

struct Switch {
  std::uint16_t mask;
  const char* prompt;
};
constexpr Switch kSwitches[] = {
    {kEmInactive, "InActive"}, {kEmPassThrough, "Pass through"}, {kEmVisible, "Visible"},
    {kEmSecurity, "Security"}, {kEmMandatory, "Mandatory"},      {kEmAutoAdded, "Auto added"},
};
static_assert(std::size(kSwitches) == std::size(EchomailChange{}.switches));

std::vector<FieldDef> ChangePage() {
  std::vector<FieldDef> page = {
      {.type = Int,
       .col = 16,
       .row = 1,
       .offset = offsetof(EchomailChange, group),
       .size = 1,
       .low = 0,
       .high = 255,
       .prompt = "Group",
       .help = "The group to move the marked areas to (~0~=do not change, ~Space~-list)",
       .group = true,
       .na_when_empty = true},
  };
  for (std::size_t i = 0; i < std::size(kSwitches); ++i)
    page.push_back({.type = Chrs,
                    .col = 16,
                    .row = 2 + static_cast<int>(i),
                    .offset = static_cast<std::uint16_t>(offsetof(EchomailChange, switches) + i),
                    .size = 1,
                    .prompt = kSwitches[i].prompt,
                    .help = "Set this switch on the marked areas (~Space~ to change)",
                    .choices = {"<do not change>", "Yes", "No"}});
  return page;
}

// Changes the fixed part of an area record (the connected systems behind it stay as they
// are); true when anything changed.
bool Apply(const EchomailChange& change, std::uint8_t* rec) {
  auto area = std::make_unique<EchoMGRrec>();
  std::memcpy(static_cast<void*>(area.get()), rec, kEchoFixedSize);
  if (change.group != 0) area->group = change.group;
  for (std::size_t i = 0; i < std::size(kSwitches); ++i) {
    if (change.switches[i] == 1) area->options |= kSwitches[i].mask;
    if (change.switches[i] == 2) area->options &= static_cast<std::uint16_t>(~kSwitches[i].mask);
  }
  const auto* after = reinterpret_cast<const std::uint8_t*>(area.get());
  if (std::memcmp(rec, after, kEchoFixedSize) == 0) return false;
  std::memcpy(rec, after, kEchoFixedSize);
  return true;
}

}  // namespace

void AddEchomailGlobalChange(ManagerOBJ& mgr, int topic) {
  auto change = std::make_shared<EchomailChange>();
  mgr.global_ok = [change, topic] {
    *change = {};
    RunSubPage(ChangePage(), reinterpret_cast<std::uint8_t*>(change.get()), "Global change", 40,
               1 + static_cast<int>(std::size(kSwitches)), topic);
    const EchomailChange nothing;
    return std::memcmp(change.get(), &nothing, sizeof nothing) != 0;
  };
  mgr.global_edit = [change](std::uint8_t* rec) { return Apply(*change, rec); };
  mgr.global_done = [](int marked, int changed) {
    MessageBox(std::to_string(changed) + " of " + std::to_string(marked) + " marked areas changed",
               {"Ok"});
  };
}

}  // namespace ks
