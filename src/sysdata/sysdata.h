// The screens of the single settings in setup.ksx: the "System data" menu with its screens,
// the options screens of the fileecho and echomail systems, the AreaMgr uplinks, the request
// processor, and "Find setting", which reaches any of their fields by a word.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "shell/kestracfg.h"
#include "sysdata/settings.h"

namespace ks {

// What the screens need of the rest of the program.
struct SysdataContext {
  KESTRAcfg* cfg = nullptr;
  // "Number of systems" was changed from `old_systems` to `new_systems`: rewrites the area
  // files; false keeps the old value.
  std::function<bool(std::uint8_t old_systems, std::uint8_t new_systems)> change_systems;
  // The "Colors" menu on the configuration's colour set; true when the colours changed (they
  // are then installed and the desktop drawn in them).
  std::function<bool()> colours;
  // Opens a text file (a whole path) in the operator's editor: F3 on the fields that name
  // such files. Unset, F3 does nothing.
  std::function<void(const std::string& path)> edit_file;
  // Where a file name without a directory is taken from: the program directory, with a "/".
  std::string program_dir;
};

// The menus and the screens of the menu items.
void RunSystemDataMenu(const SysdataContext& ctx);
void RunFileechoOptions(const SysdataContext& ctx);
void RunLongDescOptions(const SysdataContext& ctx);
void RunUplinkManager(const SysdataContext& ctx);
void RunUplinkOptions(const SysdataContext& ctx);
void RunEchomailOptions(const SysdataContext& ctx);
void RunRequestProcessor(const SysdataContext& ctx);

// One screen as "Find setting" knows it: its fields and how to open it on one of them.
struct SettingsTarget {
  std::string path;  // "Global options", "External programs (OS2) › ARC"
  std::vector<FieldDef> fields;
  std::function<void(int field)> open;
};

// Every settings screen, in menu order.
std::vector<SettingsTarget> SettingsTargets(const SysdataContext& ctx);

// One line of the "Find setting" list.
struct SettingHit {
  std::size_t target = 0;  // index into the targets
  int field = 0;
  std::string text;  // "Screen › Prompt"
};

// The fields whose prompt or help line holds `text`, letters folded, in screen order.
std::vector<SettingHit> FindSettings(const std::vector<SettingsTarget>& targets,
                                     const std::string& text);

// Ctrl-F: asks "Find setting: ", lists what matches and opens the one chosen.
void RunFindSetting(const SysdataContext& ctx);

// --- The screens, as tables (each in the file of its menu) ---------------------------------

SettingsScreen PathnamesScreen1();
SettingsScreen PathnamesScreen2();
SettingsScreen FilenamesScreen(const SysdataContext& ctx);
SettingsScreen InternetScreen();
SettingsScreen OriginLinesScreen();
SettingsScreen NetworkAddressesScreen();
SettingsScreen SiteInformationScreen();
SettingsScreen AkaMatchingScreen(const SysdataContext& ctx);
SettingsScreen DomainNamesScreen();
SettingsScreen ExternalProgramsScreen(const SysdataContext& ctx);
inline constexpr int kProgramRows = 14;    // the rows of "External programs"
SettingsScreen ProgramRowScreen(int row);  // 0..9 archivers, 10..13 SCAN, EAC, GUS, ED
SettingsScreen ExternalOptionsScreen();
SettingsScreen GlobalOptionsScreen(const SysdataContext& ctx);
SettingsScreen MiscellaneousScreen(const SysdataContext& ctx);
SettingsScreen FileechoOptionsScreen();
SettingsScreen LongDescScreen(const SysdataContext& ctx);
SettingsScreen UplinkOptionsScreen();
SettingsScreen EchomailOptionsScreen();
SettingsScreen RequestProcessorScreen();
SettingsScreen UplinkListScreen(const SysdataContext& ctx);
SettingsScreen UplinkScreen(const SysdataContext& ctx, int slot);

// A pick list of the system's addresses in use; the chosen one is copied to the NetAddr at
// `f.offset` (Enter), "(none)" clears it.
FieldDef AddressPickField(FieldDef f, const SysdataContext& ctx);

// The text form of the archiver signature: "1A 2B    FF" (blank pairs match any byte), and
// its reading back; the second returns why a text is refused ("" when stored).
std::string SignatureText(const ArchiverDef& a);
std::string SetSignature(ArchiverDef& a, const std::string& text);

// The sample description "Show example" draws with the LongDesc settings of `cfg`.
std::vector<std::string> LongDescExample(const KESTRAcfg& cfg);

}  // namespace ks
