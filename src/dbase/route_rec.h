// The records of the two lists the processor shares with KSETUP beyond the ten record files:
// netmail routes (ROUTE, the "Pack manager") and the requests forwarded to uplinks (UPLREQ).
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/netaddr.h"
#include "common/pstr.h"
#include "dbase/keydef.h"

namespace ks {

// How packed netmail for a route is sent.
enum RouteFlavour : std::uint8_t { rfNormal, rfCrash, rfHold, rfDirect };
// What the netmail of a route is packed into.
enum RoutePackType : std::uint8_t { rpArcmail, rpPacket };

// What an uplink was asked for.
enum UplinkRequestKind : std::uint8_t { urFileecho, urEchomail };

#pragma pack(push, 1)
// A netmail route: mail for the systems matching `nodes` is packed for `via`.
struct RouteMgrRec {
  NetAddr via;                // 0 "Route via": the system the mail is packed for; key
  std::uint8_t flavour = 0;   // 8 RouteFlavour
  std::uint8_t packAs = 0;    // 9 RoutePackType
  std::uint8_t archiver = 0;  // 10 archiver row 0..9 (ARC, ARJ, LZH, PAK, ZIP, SQZ, 7..10)
  std::uint8_t useAka = 0;    // 11 index into the system addresses: the packet's origin
  std::uint8_t inactive = 0;  // 12 route temporarily disabled
  std::uint8_t reserved13[3] = {};
  PStr<55> comment;  // 16
  PStr<8> password;  // 72 packet password, empty = none
  PStr<200> nodes;   // 81 node masks routed this way, separated by spaces: "2:* 1:*"
  std::uint8_t reserved282[102] = {};
};

struct RouteMgrIdx {
  NetAddr via;
  std::uint16_t recno = 0;
};

// A fileecho or echomail area the processor asked an uplink for on behalf of a node, kept
// until the area arrives or the request is given up.
struct UplinkReqRec {
  PStr<40> tag;                 // 0 area tag; key 1
  NetAddr uplink;               // 41 the uplink asked; key 2
  NetAddr node;                 // 49 the node that asked for the area
  std::uint32_t firstSent = 0;  // 57 first request, seconds since 1970-01-01 00:00 UTC
  std::uint32_t lastSent = 0;   // 61 latest request, the same
  std::uint16_t times = 0;      // 65 requests sent so far
  std::uint8_t kind = 0;        // 67 UplinkRequestKind
  std::uint8_t reserved68[60] = {};
};

struct UplinkReqIdx {
  PStr<40> tag;
  NetAddr uplink;
  std::uint16_t recno = 0;
};
#pragma pack(pop)

static_assert(sizeof(RouteMgrRec) == 384 && offsetof(RouteMgrRec, flavour) == 8);
static_assert(offsetof(RouteMgrRec, useAka) == 11 && offsetof(RouteMgrRec, inactive) == 12);
static_assert(offsetof(RouteMgrRec, comment) == 16 && offsetof(RouteMgrRec, password) == 72);
static_assert(offsetof(RouteMgrRec, nodes) == 81 && offsetof(RouteMgrRec, reserved282) == 282);
static_assert(sizeof(RouteMgrIdx) == 10);
static_assert(sizeof(UplinkReqRec) == 128 && offsetof(UplinkReqRec, uplink) == 41);
static_assert(offsetof(UplinkReqRec, node) == 49 && offsetof(UplinkReqRec, firstSent) == 57);
static_assert(offsetof(UplinkReqRec, lastSent) == 61 && offsetof(UplinkReqRec, times) == 65);
static_assert(offsetof(UplinkReqRec, kind) == 67);
static_assert(sizeof(UplinkReqIdx) == 51);

// The two files: base names and keys.
inline constexpr const char* kRouteBase = "ROUTE";
inline constexpr const char* kUplinkReqBase = "UPLREQ";

inline KeySet RouteKeys() {
  KeySet k;
  k.Declare("address", Aka, offsetof(RouteMgrRec, via), sizeof(NetAddr));
  return k;
}

inline KeySet UplinkReqKeys() {
  KeySet k;
  k.Declare("tag", Str, offsetof(UplinkReqRec, tag), 41);
  k.Declare("uplink", Aka, offsetof(UplinkReqRec, uplink), sizeof(NetAddr));
  return k;
}

}  // namespace ks
