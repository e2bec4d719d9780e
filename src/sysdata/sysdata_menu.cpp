// The "System data" menu with its "Address maint" submenu, and the settings screens opened
// from the fileecho, echomail and main menus.
#include <memory>

#include "sysdata/sysdata.h"
#include "tui/menu.h"

namespace ks {

namespace {

const MenuDef& SystemDataMenuDef() {
  static const MenuDef def = {
      "System data",
      29,
      7,
      56,
      20,
      true,
      kSystemDataTopic,
      {
          {"", "Address maintenance",
           "Network address, domain, site information, and uplink maintenance", kAddressTopic},
          {"", "Pathnames (part 1)", "Message base, netmail, inbound, outbound and queue paths",
           kPathnamesTopic},
          {"", "Pathnames (part 2)", "List, received, bad, dupe, temporary and template paths",
           kPathnamesTopic},
          {"", "Filenames", "Log files, alias file, archive lists and semaphores", kFilenamesTopic},
          {"", "Internet settings", "Internet address, email program and mail queues",
           kInternetTopic},
          {"", "Origin lines", "Origin lines maintenance", kOriginTopic},
          {"", "External programs (OS2)",
           "External program configuration (archivers and antivirus)", kProgramsTopic},
          {"", "External program opts", "Options for the external programs", kProgramOptionsTopic},
          {"", "Global options", "Log style, mailer, date format, systems per area and more",
           kGlobalTopic},
          {"", "Miscellaneous", "Miscellaneous options", kMiscTopic},
      },
  };
  return def;
}

const MenuDef& AddressMenuDef() {
  static const MenuDef def = {
      "Address maint",
      32,
      9,
      53,
      16,
      true,
      kAddressTopic,
      {
          {"", "Network addresses", "Main address, fake point number and akas", 0},
          {"", "Site information", "Miscellaneous information about the BBS", 0},
          {"", "Aka matching", "Which aka to use for which destination", 0},
          {"", "Domain names", "The domain name of each zone", 0},
      },
  };
  return def;
}

void Open(const SettingsScreen& screen, const SysdataContext& ctx) {
  RunSettings(screen, *ctx.cfg);
}

}  // namespace

void RunSystemDataMenu(const SysdataContext& ctx) {
  RunMenu(SystemDataMenuDef(), [&ctx](int choice) {
    switch (choice) {
      case 1:
        RunMenu(AddressMenuDef(), [&ctx](int item) {
          switch (item) {
            case 1:
              return Open(NetworkAddressesScreen(), ctx);
            case 2:
              return Open(SiteInformationScreen(), ctx);
            case 3:
              return Open(AkaMatchingScreen(ctx), ctx);
            default:
              return Open(DomainNamesScreen(), ctx);
          }
        });
        return;
      case 2:
        return Open(PathnamesScreen1(), ctx);
      case 3:
        return Open(PathnamesScreen2(), ctx);
      case 4:
        return Open(FilenamesScreen(ctx), ctx);
      case 5:
        return Open(InternetScreen(), ctx);
      case 6:
        return Open(OriginLinesScreen(), ctx);
      case 7:
        return Open(ExternalProgramsScreen(ctx), ctx);
      case 8:
        return Open(ExternalOptionsScreen(), ctx);
      case 9:
        return Open(GlobalOptionsScreen(ctx), ctx);
      default:
        return Open(MiscellaneousScreen(ctx), ctx);
    }
  });
}

void RunFileechoOptions(const SysdataContext& ctx) {
  Open(FileechoOptionsScreen(), ctx);
}
void RunLongDescOptions(const SysdataContext& ctx) {
  Open(LongDescScreen(ctx), ctx);
}
void RunUplinkManager(const SysdataContext& ctx) {
  Open(UplinkListScreen(ctx), ctx);
}
void RunUplinkOptions(const SysdataContext& ctx) {
  Open(UplinkOptionsScreen(), ctx);
}
void RunEchomailOptions(const SysdataContext& ctx) {
  Open(EchomailOptionsScreen(), ctx);
}
void RunRequestProcessor(const SysdataContext& ctx) {
  Open(RequestProcessorScreen(), ctx);
}

std::vector<SettingsTarget> SettingsTargets(const SysdataContext& ctx) {
  std::vector<SettingsTarget> targets;
  const auto add = [&targets, cfg = ctx.cfg](SettingsScreen s) {
    auto shared = std::make_shared<SettingsScreen>(std::move(s));
    targets.push_back({shared->name, shared->fields,
                       [shared, cfg](int field) { RunSettings(*shared, *cfg, field); }});
  };
  for (auto make : {NetworkAddressesScreen, SiteInformationScreen}) add(make());
  add(AkaMatchingScreen(ctx));
  for (auto make : {DomainNamesScreen, PathnamesScreen1, PathnamesScreen2}) add(make());
  add(FilenamesScreen(ctx));
  for (auto make : {InternetScreen, OriginLinesScreen}) add(make());
  for (int row = 0; row < kProgramRows; ++row) add(ProgramRowScreen(row));
  add(ExternalOptionsScreen());
  add(GlobalOptionsScreen(ctx));
  add(MiscellaneousScreen(ctx));
  add(FileechoOptionsScreen());
  add(LongDescScreen(ctx));
  // The uplink fields are found once, not per slot: they open the list of the slots.
  targets.push_back({"AreaMgr uplink manager", UplinkScreen(ctx, 0).fields,
                     [ctx](int) { RunSettings(UplinkListScreen(ctx), *ctx.cfg); }});
  for (auto make : {UplinkOptionsScreen, EchomailOptionsScreen, RequestProcessorScreen})
    add(make());
  return targets;
}

}  // namespace ks
