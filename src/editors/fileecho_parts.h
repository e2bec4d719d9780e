// The pieces of the fileecho manager (FAREAS) shared by its screens: reading the fixed part of
// a record, the advanced, cost-sharing and RAID pages, the connected-systems list, the files
// that follow a fileecho (moving its files, its hatch and magic entries) and the global edit.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/netaddr.h"
#include "dbase/fileecho_rec.h"
#include "dbase/manager.h"
#include "editors/context.h"
#include "tui/fields.h"
#include "tui/picklist.h"

namespace ks::fileecho {

inline constexpr int kTopic = 15;

// The part of a record before the connected systems. A record buffer is only as long as the
// configured number of systems makes it, so the pages work on this part alone.
using FixedRec = FileechoRecord<1>;

inline FixedRec Fixed(const std::uint8_t* rec) {
  FixedRec r;
  std::memcpy(static_cast<void*>(&r), rec, kFileechoFixedSize);
  return r;
}
inline void PutFixed(std::uint8_t* rec, const FixedRec& r) {
  std::memcpy(rec, static_cast<const void*>(&r), kFileechoFixedSize);
}

inline constexpr std::uint16_t kOptionsOffset = offsetof(FixedRec, options);
inline constexpr std::uint16_t kOptions2Offset = offsetof(FixedRec, options2);
inline constexpr std::uint16_t kSystemsOffset = kFileechoFixedSize;

inline bool PassThrough(const std::uint8_t* rec) {
  return Fixed(rec).Has(kFePassThrough);
}
// The long-description modes that take FILE_ID.DIZ, the only ones "Add FILE_ID" applies to.
bool UsesFileId(std::uint8_t long_desc);

// --- Advanced page and its switches ---------------------------------------------------------

// "Add FILE_ID": the add bit of the first option word, and "Always" in the second as well.
enum AddFileId : std::uint8_t { afNo, afYes, afAlways };
AddFileId GetAddFileId(const FixedRec& r);
void SetAddFileId(FixedRec& r, AddFileId v);
const std::vector<std::string>& AddFileIdNames();

// One Yes/No switch of the advanced page: the option word (1 or 2), its mask, its prompt, the
// name the log and the global edit report use, and its help line.
struct Switch {
  int word;
  std::uint16_t mask;
  const char* prompt;
  const char* log_name;
  const char* help;
};
// The Yes/No switch with this prompt, or nullptr ("Convert" and "Add FILE_ID" are not).
const Switch* FindSwitch(std::string_view prompt);
// The prompts of the advanced page in page order; the global edit offers all but the last.
extern const char* const kAdvancedOrder[19];

extern const char* const kConvertHelp;
extern const char* const kAddFileIdHelp;

// "None" and the system's archivers: the choices of "Convert".
std::vector<std::string> ConvertChoices(const ListContext& ctx);

// The pages opened from the edit page; each is true when it changed the record.
bool RunAdvancedPage(std::uint8_t* rec, const ListContext& ctx);
bool RunCostPage(std::uint8_t* rec);
bool RunRaidPage(std::uint8_t* rec);
// What the edit page shows for each of them.
std::string AdvancedText(const std::uint8_t* rec, const ListContext& ctx);
std::string CostText(const std::uint8_t* rec);
std::string RaidText(const std::uint8_t* rec);

// --- Connected systems ----------------------------------------------------------------------

// The systems in use (zone not 0) among the first `capacity` slots.
std::vector<ConnectedSystem> ReadSystems(const std::uint8_t* rec, int capacity);
// Writes the systems back with the used slots first and every other slot free.
void WriteSystems(std::uint8_t* rec, const std::vector<ConnectedSystem>& used, int capacity);
// The flags a system gets when it is connected: files are sent to it, the status is the one
// set in the node manager.
inline constexpr std::uint8_t kNewSystemFlags = kSysSendFiles;

// The list of the connected systems: Ins adds, Enter edits, Del removes. True when changed.
bool EditSystems(std::uint8_t* rec, int capacity);
std::string SystemsText(const std::uint8_t* rec, int capacity, int width);
// Asks for one address in a small window with `prompt`; nothing on Esc or an empty address.
std::optional<NetAddr> AskSystem(const std::string& prompt, const std::string& help);

// The help lines of the connected-system page, shared with "Change status".
extern const char* const kSystemSwitchPrompts[5];
extern const char* const kSystemSwitchHelp[5];
extern const std::uint8_t kSystemSwitchMasks[5];
extern const char* const kMsgStatusHelp;
const std::vector<std::string>& MsgStatusNames();

// --- Files that follow a fileecho -------------------------------------------------------------

// The file names FILES.BBS lists: the first word of each line that is not empty and does not
// start with a blank or a comment character (";" or "-").
std::vector<std::string> FilesBbsNames(std::string_view text);
// Moves every file that FILES.BBS in `from` lists into `to` (names matched without regard to
// case when the exact name is missing); returns how many were moved. FILES.BBS stays.
int MoveListedFiles(const std::string& from, const std::string& to);
// Removes the HATCH entries for `tag` and the MGICFILE entries from or to it; returns how many.
int RemoveHatchAndMagic(const std::string& dir, const std::string& tag);

// --- Edit page ------------------------------------------------------------------------------

// Where the values of the left column start, and the prompts and values of the right one.
inline constexpr int kLeftValue = 11, kRightPrompt = 31, kRightValue = 45;

// What sets the fileecho page and the group page (a group's fileecho defaults) apart.
struct FormSpec {
  int desc_row = 3;        // the row of "Desc"; "Dest" is the next, the others follow
  bool with_group = true;  // the fileecho's own "Group" row after "Dest"
  int capacity = kDefaultSystemsPerArea;  // connected-system slots of the record
  const char* advanced_help = "Advanced fileecho options menu";
  const char* raid_help = "RAID flags menu";
};
constexpr int DestRow(const FormSpec& form) {
  return form.desc_row + 1;
}

// A new fileecho (and a new group's defaults): announced, dupe-checked and visible.
inline void InitFileecho(std::uint8_t* rec) {
  FixedRec r = Fixed(rec);
  r.options = kFeAnnounce | kFeDupeCheck | kFeVisible;
  PutFixed(rec, r);
}

// The fields from "Desc" down to "Systems", in page order.
std::vector<FieldDef> DefaultsFields(const ListContext& ctx, const FormSpec& form);
// The BBS file areas, and F6 on "Dest": the path of the area chosen becomes the destination.
std::vector<FileAreaName> BbsFileAreas();
bool PickDestination(std::uint8_t* rec);

// --- Global edit ----------------------------------------------------------------------------

void AddFileechoGlobalEdit(ManagerOBJ& mgr, const ListContext& ctx);

}  // namespace ks::fileecho
