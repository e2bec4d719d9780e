// Pick lists over the record files for the fields that name a fileecho or a set of systems:
// "Select fileecho" (FAREAS) and "Select systems" (NODEFILE), the fields built on them, and the
// address lists of the records (a fixed number of slots, the used ones first).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/netaddr.h"
#include "dbase/manager.h"
#include "editors/context.h"
#include "tui/fields.h"

namespace ks {

// What a fileecho field holds to mean every fileecho.
inline constexpr std::string_view kAllFileechos = "*** ALL ***";

// --- Address lists ---------------------------------------------------------------------------

// The used addresses (zone not 0) among the `slots` addresses at `offset`.
std::vector<NetAddr> ReadAddressList(const std::uint8_t* rec, std::uint16_t offset,
                                     std::size_t slots);
// Writes `used` back with the used slots first and every other slot free; addresses beyond
// `slots` are dropped.
void WriteAddressList(std::uint8_t* rec, std::uint16_t offset, std::size_t slots,
                      const std::vector<NetAddr>& used);
// "None", or the addresses parted by blanks; when that is wider than `width`:
// "12 systems: 2:280/1 2:280/2 ...".
std::string AddressListText(const std::vector<NetAddr>& used, int width);

// --- Pick lists ------------------------------------------------------------------------------

// "Select fileecho": the fileechos of FAREAS in the order of its index, each row its tag and
// description, with "*** ALL ***" as the first row when `all` is set. The highlight starts on
// `current`. Returns the tag chosen, nothing on Esc or when there is nothing to choose.
std::optional<std::string> PickFileecho(const ListContext& ctx, std::string_view current, bool all);

// "Select systems": the systems of NODEFILE in address order, each row its address and sysop;
// Space marks, F2 marks or unmarks all. The addresses of `chosen` start marked; those that
// NODEFILE does not hold follow as rows of their own, so they stay unless unmarked. `chosen`
// becomes the marked addresses: the ones it had, in their order, then the newly marked ones,
// at most `limit`. True when that changed it.
bool PickSystems(const ListContext& ctx, std::vector<NetAddr>& chosen, std::size_t limit);

// --- Fields ----------------------------------------------------------------------------------

// `help` with "F6-list of <what>" at the right end of the status line.
std::string WithListKey(std::string_view help, std::string_view what);

// A fileecho tag typed into the string of `f.size` characters at `f.offset`, in capitals; its
// help line names F6, which FileechoHotKey binds to "Select fileecho".
FieldDef FileechoField(FieldDef f);
// F6 on `f` (found by its place on the page): "Select fileecho" takes the tag into the field.
// `ctx` must outlive the manager.
ManagerHotKey FileechoHotKey(const ListContext& ctx, const FieldDef& f, bool all);

// An action field for the address list of `slots` addresses at `f.offset`: Enter, Space or F2
// opens "Select systems". `ctx` must outlive the page.
FieldDef SystemsField(FieldDef f, const ListContext& ctx, std::size_t slots);

}  // namespace ks
