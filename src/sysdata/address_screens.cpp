// The screens of "Address maint": the system's addresses, the site information, the aka to
// use per destination, and the domain names of the zones.
#include <cstring>
#include <string>

#include "common/netaddr.h"
#include "sysdata/sysdata.h"
#include "tui/picklist.h"

namespace ks {

namespace {

constexpr int kTableWidth = 50;

std::uint16_t At(std::size_t offset) {
  return static_cast<std::uint16_t>(offset);
}

}  // namespace

FieldDef AddressPickField(FieldDef f, const SysdataContext& ctx) {
  const std::uint16_t offset = f.offset;
  f.show = [offset](const std::uint8_t* rec) {
    NetAddr a;
    std::memcpy(&a, rec + offset, sizeof a);
    return a.zone ? FormatAddr(a) : std::string();
  };
  KESTRAcfg* cfg = ctx.cfg;
  f.select = [offset, cfg](std::uint8_t* rec) {
    std::vector<NetAddr> in_use;
    for (const NetAddr& a : cfg->addresses)
      if (a.zone) in_use.push_back(a);
    PickList list;
    list.title = "Addresses";
    list.key_line = "~Enter~=Select  ~Esc~=Exit";
    list.count = static_cast<int>(in_use.size()) + 1;
    list.row = [&in_use](int r) {
      return r == 0 ? std::string("(none)") : FormatAddr(in_use[r - 1]);
    };
    const int chosen = RunPickList(list);
    if (chosen < 0) return false;
    const NetAddr a = chosen == 0 ? NetAddr{} : in_use[static_cast<std::size_t>(chosen - 1)];
    std::memcpy(rec + offset, &a, sizeof a);
    return true;
  };
  if (f.width == 0) f.width = 23;
  return f;
}

SettingsScreen NetworkAddressesScreen() {
  std::vector<FieldDef> fields = {
      {.type = Aka,
       .offset = CFG(addresses),
       .prompt = "Main",
       .help = "Network zone:net/node[.point] addresses"},
      {.type = Wrd,
       .offset = CFG(fakePoint),
       .size = 2,
       .prompt = "Fake pnt",
       .help = "Fake point number used for creating PKT files"},
  };
  for (std::size_t i = 1; i < kAddressCount; ++i)
    fields.push_back({.type = Aka,
                      .offset = At(CFG(addresses) + i * sizeof(NetAddr)),
                      .prompt = "Aka " + std::to_string(i),
                      .help = "Network zone:net/node[.point] addresses"});
  return StackedScreen("Network addresses", "Addresses", std::move(fields), kAddressTopic, 12, 36);
}

SettingsScreen SiteInformationScreen() {
  std::vector<FieldDef> fields = {
      {.type = Str,
       .offset = CFG(bbsName),
       .size = 30,
       .prompt = "BBS name",
       .help = "The name of the BBS system"},
  };
  for (std::size_t i = 0; i < 3; ++i) {
    const std::string n = std::to_string(i + 1);
    fields.push_back({.type = Str,
                      .offset = At(CFG(phone) + i * sizeof(PStr<30>)),
                      .size = 30,
                      .picture = "999999999999999999999999999999",
                      .prompt = "Phone " + n,
                      .help = "The phone number of the BBS system, line " + n});
  }
  const std::vector<FieldDef> rest = {
      {.type = Str,
       .offset = CFG(location),
       .size = 40,
       .prompt = "Location",
       .help = "The location of the BBS system, ie. Delft, Holland"},
      {.type = Str,
       .offset = CFG(sysopName),
       .size = 35,
       .prompt = "SysOp",
       .help = "The name of the System Operator"},
      {.type = Str,
       .offset = CFG(maxBaud),
       .size = 5,
       .picture = "88888",
       .prompt = "Max baud",
       .help = "The maximum baud rate supported by the BBS"},
      {.type = Str,
       .offset = CFG(nodelistFlags),
       .size = 30,
       .picture = "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFF",
       .prompt = "Flags",
       .help = "The nodelist flags of the BBS system, ie. XA,CM,V21,V22,KSX"},
  };
  fields.insert(fields.end(), rest.begin(), rest.end());
  return StackedScreen("Site information", "Site information", std::move(fields), kAddressTopic, 12,
                       54);
}

SettingsScreen AkaMatchingScreen(const SysdataContext& ctx) {
  std::vector<FieldDef> fields = {Label("Zone:Net    AKA")};
  for (std::size_t i = 0; i < kAkaMatchCount; ++i) {
    const std::size_t row = CFG(akaMatch) + i * sizeof(AkaMatchRow);
    fields.push_back({.type = Aka,
                      .col = 2,
                      .row = static_cast<int>(i) + 2,
                      .offset = At(row + offsetof(AkaMatchRow, zone)),
                      .help = "<Zone>:<Net>. To cover all nodes in a zone, specify <Zone>:0",
                      .zone_net = true});
    fields.push_back(AddressPickField(
        {.type = Aka,
         .col = 14,
         .row = static_cast<int>(i) + 2,
         .offset = At(row + offsetof(AkaMatchRow, aka)),
         .prompt = "",
         .help = "AKA that KESTRA should use for this destination. ~Enter~=Select  ~Esc~=Exit"},
        ctx));
  }
  fields[0].row = 1;
  SettingsScreen s{"Aka matching", "Aka matching", 40, 18, kAddressTopic, std::move(fields), {}};
  return s;
}

SettingsScreen DomainNamesScreen() {
  std::vector<FieldDef> fields = {Label("Zone   Domain name")};
  fields[0].row = 1;
  for (std::size_t i = 0; i < kDomainCount; ++i) {
    const std::size_t row = CFG(domains) + i * sizeof(DomainName);
    const int r = static_cast<int>(i) + 2;
    fields.push_back({.type = Wrd,
                      .col = 2,
                      .row = r,
                      .offset = At(row + offsetof(DomainName, zone)),
                      .size = 2,
                      .help = "Zone number of this domain"});
    fields.push_back({.type = Str,
                      .col = 9,
                      .row = r,
                      .offset = At(row + offsetof(DomainName, domain)),
                      .size = 20,
                      .help = "Domain name of this zone, ie. fidonet"});
  }
  return {"Domain names", "Domain names", 32, 18, kAddressTopic, std::move(fields), {}};
}

}  // namespace ks
