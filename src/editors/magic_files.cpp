// "Magic file names": rules that tell KESTRA what to do with particular files (MGICFILE). Every
// rule has a type, and the type decides which of the record's fields mean anything: the page
// shows only those, laid out from the top, all generated from one table of the types.
#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/cp437.h"
#include "editors/common_fields.h"
#include "editors/lists.h"
#include "editors/record_picks.h"
#include "tui/picklist.h"
#include "tui/ui.h"

namespace ks {

namespace {

constexpr int kTopic = 17;
constexpr int kTypeRow = 1;
constexpr int kNameWidth = 12;  // type names in the list and on the page

// The parts of a rule that a page can show.
enum class Part {
  kMask,
  kFrom,
  kTo,
  kDirectory,
  kCommand,
  kExport,
  kKeep,
  kDays,
  kAlias,
  kPassword,
  kTemplate,
  kFile
};

// A part on a type's page, with the help line it has there (nullptr: the part's usual one).
struct Slot {
  Part part;
  const char* help = nullptr;
};

struct TypeDef {
  const char* name;
  const char* what;
  std::vector<Slot> slots;  // from the row under "Type" down
};

// Indexed by the type byte; 0 stands for every value that is no type.
const std::vector<TypeDef>& Types() {
  using P = Part;
  static const std::vector<TypeDef> types = {
      {"Unknown type", "", {{P::kMask}}},
      {"AdoptFile", "Adopt a file into another File echo", {{P::kMask}, {P::kFrom}, {P::kTo}}},
      {"ExecCommand",
       "Execute a command when certain files are received",
       {{P::kMask},
        {P::kFrom},
        {P::kCommand,
         "Command(s) to execute for this file (seperate multiple commands with a ;)"}}},
      {"ForwardTo",
       "Forward this file to other systems, along with a TIC file",
       {{P::kMask}, {P::kFrom}, {P::kExport}}},
      {"MoveToArea", "Move this file into another File echo", {{P::kMask}, {P::kFrom}, {P::kTo}}},
      {"NoForward", "Do not forward this file", {{P::kMask}, {P::kFrom}}},
      {"OtherPath",
       "Import this file into another directory",
       {{P::kMask}, {P::kFrom}, {P::kDirectory, "Directory to import this file to"}}},
      {"UpdateAlias", "Update the alias file with this filename", {{P::kMask}, {P::kFrom}}},
      {"CopyFile",
       "Copy a file to another directory",
       {{P::kMask}, {P::kFrom}, {P::kDirectory, "Directory to copy this file to"}}},
      {"KeepNum", "Alternate Keep # for this file", {{P::kMask}, {P::kFrom}, {P::kKeep}}},
      {"HatchNew",
       "Hatch new files found in the destination directory of this file echo",
       {{P::kMask, "The file mask to match"}, {P::kFrom}, {P::kDays}}},
      {"PickUpFile",
       "Pick up file from directory and forward it",
       {{P::kMask}, {P::kDirectory, "Directory where to look for this file"}, {P::kExport}}},
      {"UnpackFile",
       "Unpack a file into a directory",
       {{P::kMask}, {P::kFrom}, {P::kDirectory, "Directory to unpack this file to"}}},
      {"PassThruFile", "Process this file as pass through", {{P::kMask}, {P::kFrom}}},
      {"DeleteFile", "Delete this file without further processing", {{P::kMask}, {P::kFrom}}},
      {"ServiceReq",
       "Service request",
       {{P::kAlias},
        {P::kPassword},
        {P::kCommand, "Command to execute for this service request. Use @ for options"},
        {P::kDirectory, "Directory containing files to send after executing command"}}},
      {"SendOnFreq",
       "Send a Template or a file with file requests",
       {{P::kMask}, {P::kTemplate}, {P::kFile}}},
  };
  return types;
}

std::uint8_t KnownType(std::uint8_t type) {
  return type <= mtSendOnFreq ? type : std::uint8_t{mtUnknown};
}
const TypeDef& TypeOf(std::uint8_t type) {
  return Types()[KnownType(type)];
}

// A text field of `size` characters at `offset`, `width` cells wide (0: as many as it holds).
FieldDef Text(SortType type, std::uint16_t offset, std::uint8_t size, const char* prompt,
              const char* help = "", int width = 0) {
  return {.type = type,
          .col = kValueCol,
          .offset = offset,
          .size = size,
          .prompt = prompt,
          .help = help,
          .width = width};
}

// The field of a part with its usual help line; the page gives it its place.
FieldDef PartField(Part part, const ListContext& ctx) {
  using R = MagicFileMgrRec;
  switch (part) {
    case Part::kMask:
      return Text(Str, offsetof(R, mask), 12, "File mask",
                  "The file mask to match for this Magic file");
    case Part::kFrom:
      return FileechoField(Text(Str, offsetof(R, fromArea), 40, "From area",
                                "The file echo name where KESTRA should look for this file"));
    case Part::kTo:
      return FileechoField(Text(Str, offsetof(R, toArea), 40, "To area",
                                "The file echo name that should adopt this file"));
    case Part::kDirectory:
      return Text(Path, offsetof(R, directory), 79, "Directory", "", kLongWidth);
    case Part::kCommand:
      return Text(Str, offsetof(R, command), 127, "Command", "", kLongWidth);
    case Part::kExport:
      return SystemsField(Text(Str, offsetof(R, exports), 0, "Export",
                               "Systems to export this file to", kLongWidth),
                          ctx, kExportSlots);
    case Part::kKeep: {
      FieldDef f = Text(Int, offsetof(R, keep), 2, "Keep #",
                        "Number of files to keep, (0=all -1=all and no sort)");
      f.low = -1;
      f.high = 99;
      return f;
    }
    case Part::kDays:
      return DaysField(
          Text(Str, offsetof(R, hatchDays), 0, "Days", "The days on which to hatch these files"),
          kTopic);
    case Part::kAlias:
      return Text(Str, offsetof(R, alias), 20, "Alias", "The Alias to trigger the service request");
    case Part::kPassword:
      return Text(Str, offsetof(R, password), 20, "Password",
                  "The password necessary for this service request");
    case Part::kTemplate:
      return Text(Str, offsetof(R, templateFile), 12, "Template",
                  "Template to send when this filemask is requested");
    case Part::kFile:
      return Text(Str, offsetof(R, fileSpec), 79, "File",
                  "File specification to send when this filemask is requested", kLongWidth);
  }
  return {};
}

// Sets the type of a rule, with what a new rule of that type starts with.
void SetType(std::uint8_t* rec, std::uint8_t type) {
  rec[offsetof(MagicFileMgrRec, type)] = type;
  if (type == mtHatchNew && rec[offsetof(MagicFileMgrRec, hatchDays)] == 0)
    rec[offsetof(MagicFileMgrRec, hatchDays)] = kAllDays;
}

// "Select type": the types in alphabetical order, each with what it does. True when the rule
// got another type.
bool PickType(std::uint8_t* rec) {
  std::vector<std::uint8_t> order;
  for (std::uint8_t t = mtAdoptFile; t <= mtSendOnFreq; ++t) order.push_back(t);
  std::sort(order.begin(), order.end(), [](std::uint8_t a, std::uint8_t b) {
    return std::strcmp(Types()[a].name, Types()[b].name) < 0;
  });
  PickList list;
  list.title = "Select type";
  list.key_line = "~Enter~-select ~Esc~-cancel";
  list.count = static_cast<int>(order.size());
  list.row = [&order](int r) {
    const TypeDef& t = Types()[order[static_cast<std::size_t>(r)]];
    std::string name = t.name;
    name.resize(static_cast<std::size_t>(kNameWidth), ' ');
    return name + " " + t.what;
  };
  list.topic = kTopic;
  const auto here = std::find(order.begin(), order.end(), rec[0]);
  if (here != order.end()) list.current = static_cast<int>(here - order.begin());
  const int chosen = RunPickList(list);
  if (chosen < 0 || order[static_cast<std::size_t>(chosen)] == rec[0]) return false;
  SetType(rec, order[static_cast<std::size_t>(chosen)]);
  return true;
}

// The bit of a type in a set of types.
std::uint32_t Bit(std::uint8_t type) {
  return 1u << KnownType(type);
}

// A field of the page: a part on `row` with its help line ("" for the usual one), shown for
// the types in `types` (their Bits).
struct PageEntry {
  Part part;
  int row;
  std::string help;
  std::uint32_t types;
};

// Each type's parts from the row under "Type" down; a part that several types show on the
// same row with the same help line is one field. The F6 key of an area field finds its field
// by its place, so an area field comes first among the fields of its row; otherwise the
// fields go in row order, the order the cursor takes through each type's page.
std::vector<PageEntry> PageLayout() {
  std::vector<PageEntry> entries;
  for (std::uint8_t t = 0; t < Types().size(); ++t) {
    int row = kTypeRow;
    for (const Slot& slot : Types()[t].slots) {
      PageEntry e{slot.part, ++row, slot.help ? slot.help : "", Bit(t)};
      const auto same = std::find_if(entries.begin(), entries.end(), [&e](const PageEntry& o) {
        return o.part == e.part && o.row == e.row && o.help == e.help;
      });
      if (same != entries.end())
        same->types |= e.types;
      else
        entries.push_back(std::move(e));
    }
  }
  const auto area = [](Part p) { return p == Part::kFrom || p == Part::kTo; };
  std::stable_sort(entries.begin(), entries.end(), [&](const PageEntry& a, const PageEntry& b) {
    return std::pair(a.row, !area(a.part)) < std::pair(b.row, !area(b.part));
  });
  return entries;
}

// The edit page: "Type" on the first row, then the fields of PageLayout.
class MagicPage {
 public:
  explicit MagicPage(const ListContext& ctx) : layout_(PageLayout()) {
    const std::string type_help = "Type of Magic file";
    fields_.push_back(
        {.col = kValueCol,
         .row = kTypeRow,
         .prompt = "Type",
         .help = type_help,
         .width = kNameWidth,
         .select =
             [type_help](std::uint8_t* rec) {
               const bool changed = PickType(rec);
               ShowStatus(type_help);
               return changed;
             },
         .show = [](const std::uint8_t* rec) { return std::string(TypeOf(rec[0]).name); }});
    for (const PageEntry& e : layout_) {
      FieldDef f = PartField(e.part, ctx);
      if (!e.help.empty()) f.help = e.help;
      f.row = e.row;
      f.shown = [types = e.types](const std::uint8_t* rec) { return (types & Bit(rec[0])) != 0; };
      fields_.push_back(std::move(f));
    }
  }

  const std::vector<FieldDef>& fields() const { return fields_; }
  // The page field of `part` for rules of `type` ("Type" when they have none).
  int Index(std::uint8_t type, Part part) const {
    for (std::size_t i = 0; i < layout_.size(); ++i)
      if (layout_[i].part == part && (layout_[i].types & Bit(type))) return static_cast<int>(i + 1);
    return 0;
  }

 private:
  std::vector<PageEntry> layout_;
  std::vector<FieldDef> fields_;
};

MagicFileMgrRec Rule(const std::uint8_t* rec) {
  MagicFileMgrRec r;
  std::memcpy(&r, rec, sizeof r);
  return r;
}

// The check on saving: the first thing the rule lacks is shown, and the cursor goes to its
// field. A rule of no known type is kept as it is found, but not saved until it has a type.
int CheckRule(const MagicPage& page, const std::uint8_t* rec) {
  const MagicFileMgrRec r = Rule(rec);
  const std::uint8_t type = KnownType(r.type);
  const auto refuse = [&](Part part, const char* message) {
    return Refuse(message, page.Index(type, part));
  };
  constexpr const char* kSelectFileecho = "You must select a fileecho";
  constexpr const char* kNoCommand = "You must enter a valid command to execute";
  if (type == mtUnknown) return Refuse("You must select a type", 0);
  if (type != mtServiceReq && r.mask.empty())
    return refuse(Part::kMask, "You must enter a file specification");
  const std::string from = Upper(r.fromArea.str()), to = Upper(r.toArea.str());
  switch (type) {
    case mtAdoptFile:
    case mtMoveToArea:
      if (from == kAllFileechos) return refuse(Part::kFrom, kSelectFileecho);
      if (to.empty()) return refuse(Part::kTo, kSelectFileecho);
      if (from == to)
        return refuse(Part::kFrom, "The from area must be different than the to area");
      break;
    case mtExecCommand:
      if (r.command.empty()) return refuse(Part::kCommand, kNoCommand);
      break;
    case mtOtherPath:
    case mtCopyFile:
    case mtPickUpFile:
    case mtUnpackFile:
      if (r.directory.empty()) return refuse(Part::kDirectory, "You must enter a directory");
      break;
    case mtHatchNew:
      if (from.empty() || from == kAllFileechos) return refuse(Part::kFrom, kSelectFileecho);
      break;
    case mtServiceReq:
      if (r.alias.empty()) return refuse(Part::kAlias, "You must enter an alias");
      if (r.directory.empty())
        return refuse(Part::kDirectory, "You must enter a file specification to send");
      if (r.command.empty()) return refuse(Part::kCommand, kNoCommand);
      break;
    case mtSendOnFreq:
      if (r.templateFile.empty() && r.fileSpec.empty())
        return refuse(Part::kTemplate, "You must select a template or enter a file to send");
      break;
    default:
      break;
  }
  return -1;
}

// The last column of the browse list: what the rule acts on, as far as its type has one.
std::string DetailText(const std::uint8_t* rec, int width) {
  const MagicFileMgrRec r = Rule(rec);
  switch (KnownType(r.type)) {
    case mtAdoptFile:
    case mtMoveToArea:
      return r.toArea.str();
    case mtExecCommand:
      return r.command.str();
    case mtForwardTo:
      return AddressListText(ReadAddressList(rec, offsetof(MagicFileMgrRec, exports), kExportSlots),
                             width);
    case mtOtherPath:
    case mtCopyFile:
    case mtPickUpFile:
    case mtUnpackFile:
      return r.directory.str();
    case mtKeepNum:
      return "Keep " + std::to_string(std::int16_t{r.keep});
    case mtHatchNew:
      return DaysText(r.hatchDays);
    case mtServiceReq:
      return r.alias.str();
    case mtSendOnFreq:
      return r.templateFile.empty() ? r.fileSpec.str() : r.templateFile.str();
    default:
      return {};
  }
}

}  // namespace

void RunMagicFileNames(const ListContext& ctx) {
  ManagerOBJ mgr(ctx.data_dir, "MGICFILE", sizeof(MagicFileMgrRec), 3, 8, 77, 19,
                 "Magic filenames");
  DeclareKeys(mgr, RecordFileId::kMagic);
  constexpr int kDetailWidth = 26;
  using R = MagicFileMgrRec;
  const int row_width = AddColumns(
      mgr,
      {{.type = Int, .offset = 0, .length = 1, .width = kNameWidth, .caption = "Type"},
       {.type = Str, .offset = offsetof(R, mask), .length = 13, .width = 12, .caption = "Filemask"},
       {.type = Str,
        .offset = offsetof(R, fromArea),
        .length = 41,
        .width = 20,
        .caption = "From area"},
       {.type = Str,
        .offset = offsetof(R, toArea),
        .length = 41,
        .width = kDetailWidth,
        .caption = "Details"}});
  mgr.cell = [](const std::uint8_t* rec, int column) -> std::string {
    switch (column) {
      case 0:
        return TypeOf(rec[0]).name;
      case 1:
        return Rule(rec).mask.str();
      case 2:
        return Rule(rec).fromArea.str();
      default:
        return DetailText(rec, kDetailWidth);
    }
  };
  const MagicPage page(ctx);
  mgr.AddFields(page.fields());
  for (const FieldDef& f : page.fields())
    if (f.offset == offsetof(R, fromArea) || f.offset == offsetof(R, toArea))
      mgr.AddHotKey(FileechoHotKey(ctx, f, f.offset == offsetof(R, fromArea)));
  mgr.choose_new = PickType;
  mgr.check = [&page](std::uint8_t* rec, bool) { return CheckRule(page, rec); };
  mgr.numbered_title = true;
  // Rules with the same mask and type may differ in their fileechos or directories.
  mgr.unique = false;
  mgr.topic = kTopic;
  mgr.max_entries = 1000;
  RunWithCompanion(mgr, ctx, "MGICFILE", row_width);
}

}  // namespace ks
