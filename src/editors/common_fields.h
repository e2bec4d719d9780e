// Pieces shared by the pages of the simple lists: message areas, the address a list entry is
// written from, Yes/No switches, sets of BBS file areas, hatch days, and the set-up every list
// does before it runs (keys from the record file table, browse columns, the companion file).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/fileareaset.h"
#include "common/netaddr.h"
#include "dbase/manager.h"
#include "dbase/recfiles.h"
#include "dbase/record_common.h"
#include "editors/context.h"
#include "editors/list_checks.h"
#include "tui/fields.h"

namespace ks {

// Where the value of a field starts on the pages of the lists, and the cells a long value
// takes there (the window is 75 columns wide).
inline constexpr int kValueCol = 16;
inline constexpr int kLongWidth = 56;

// A page of `fields` on `rec` in a box of `width` x `height` inner cells titled `title`,
// centred on the desktop, with the cursor starting on field `first`; returns when the page is
// left.
void RunSubPage(std::vector<FieldDef> fields, std::uint8_t* rec, const std::string& title,
                int width, int height, int topic, int first = 0);

// --- Message areas -------------------------------------------------------------------------

// The names of the message base formats, in MsgBaseType order.
const std::vector<std::string>& MsgBaseNames();
// True for the formats that address an area by board number (Hudson, EzyCom, GoldBase).
bool UsesBoard(std::uint8_t type);
// A message area as its field shows it: "None", "Hudson board 12", "Squish /fido/msg/area".
std::string MsgAreaText(const MsgArea& area);
// Why a message area cannot be written to ("" when it can): a board number or a path that
// its format needs is missing. `name` is the field's prompt, used in the text.
std::string MsgAreaProblem(const MsgArea& area, const std::string& name);
// The sub-page of a message area: format, board and path. True when it changed the area.
bool EditMsgArea(MsgArea& area, const std::string& title, int topic);

// An action field for the MsgArea at `f.offset`: Enter opens its sub-page.
FieldDef MsgAreaField(FieldDef f, int topic = 0);

// --- Addresses -----------------------------------------------------------------------------

// The text of the address with index `index` into the system addresses.
std::string AkaText(const std::vector<NetAddr>& addresses, std::uint8_t index);
// An action field for the address index byte at `f.offset`: Enter picks one of the system's
// addresses that are in use.
FieldDef UseAkaField(FieldDef f, std::vector<NetAddr> addresses);

// The origin line of a message area (a string of 60 characters at `offset`).
FieldDef OriginField(int col, int row, std::uint16_t offset);

// --- Switches ------------------------------------------------------------------------------

// The "InActive" switch (a byte at `offset`).
FieldDef InactiveField(int col, int row, std::uint16_t offset);

// --- BBS file areas ------------------------------------------------------------------------

// The numbers of a file area set as ranges, "1-3,7" ("" when empty).
std::string FileAreaSetText(const FileAreaSet& set);
// An action field for the FileAreaSet at `f.offset`: Enter opens the "File areas" list.
FieldDef FileAreasField(FieldDef f);

// --- Days of the week ----------------------------------------------------------------------

// "Every day", "Never" or the days in use, "Mon Wed Fri".
std::string DaysText(std::uint8_t days);
// The sub-page of the seven days; true when it changed `days`.
bool EditDays(std::uint8_t& days, int topic);
// An action field for the day bits at `f.offset`: Enter opens the days sub-page.
FieldDef DaysField(FieldDef f, int topic = 0);

// --- Setting up a list ---------------------------------------------------------------------

// Declares the keys of record file `id` on `mgr`, as the file table gives them.
void DeclareKeys(ManagerOBJ& mgr, RecordFileId id);
void DeclareKeys(ManagerOBJ& mgr, const KeySet& keys);
// Declares the browse columns; returns the width of a browse row.
int AddColumns(ManagerOBJ& mgr, const std::vector<ListColumn>& columns);
// Runs the list with its companion file in the work directory, so that browse and
// global change are offered. Its rows hold a flag byte and the text of a browse row.
void RunWithCompanion(ManagerOBJ& mgr, const ListContext& ctx, const std::string& base,
                      int row_width);

// Shows `message` and returns `field`: the form of every check callback's refusal.
int Refuse(const std::string& message, int field);
// The answer of a check callback to a list check: -1 (save) when there is nothing to say or
// the operator saves despite a warning ("Save anyway?"), otherwise the field at fault.
int Refuse(const std::optional<Refusal>& refusal);

}  // namespace ks
