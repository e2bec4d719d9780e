// Default values of the system configuration record: a new record, and the settings filled in
// once for a record that never had them (the "Next invoice number" is still 0).
#pragma once

#include <cstdint>

#include "shell/kestracfg.h"

namespace ks {

// The program version written into the record (bytes 9441-9443).
struct ProgramVersion {
  std::uint8_t major;
  std::uint8_t minor;
  std::uint8_t build;
};
inline constexpr ProgramVersion kProgramVersion{6, 1, 7};

// Defaults shared by new records, the upgrade steps and the dependent defaults.
inline constexpr std::uint8_t kDefaultNumberOfSystems = 200;
inline constexpr std::uint16_t kDefaultMinHdSpace = 100;  // kilobytes
inline constexpr std::uint8_t kDefaultLogMask = 255;      // every kind of log line
inline constexpr std::uint8_t kDefaultLongDescChar = '+';
inline constexpr std::uint8_t kDefaultLongDescSpacesBefore = 31;  // under the FILES.BBS text
inline constexpr std::uint8_t kDefaultLongDescSpacesAfter = 1;
inline constexpr std::uint16_t kDefaultReRequestRate = 7;  // days
inline constexpr std::uint8_t kDefaultReRequestTimes = 3;
inline constexpr std::uint16_t kDefaultAutoAddDelay = 30;  // days
inline constexpr std::uint8_t kDefaultResendRetry = 3;
inline constexpr std::uint8_t kDefaultResendDelay = 7;  // days
inline constexpr std::uint16_t kDefaultMessageSizeKb = 512;
inline constexpr std::uint16_t kDefaultSpoolAgeDays = 14;
inline constexpr std::uint8_t kDefaultEacVirusErrorlevel = 2;
inline constexpr std::uint8_t kDefaultEacErrorErrorlevel = 1;
inline constexpr std::uint8_t kDefaultLastHardDrive = 'C';
inline constexpr std::uint16_t kDefaultMaxRequestAge = 30;  // days
inline constexpr const char* kDefaultInvalidFlowExt = "N?O";

// Request processor limits per session: files, kilobytes, minutes (0 = no limit).
struct RpLimitDefaults {
  std::uint16_t files;
  std::uint32_t sizeKb;
  std::uint16_t minutes;
};
inline constexpr RpLimitDefaults kDefaultUnlistedLimits{5, 1024, 10};
inline constexpr RpLimitDefaults kDefaultUnsecureLimits{10, 2048, 20};
inline constexpr RpLimitDefaults kDefaultSecureLimits{0, 0, 0};
inline constexpr std::uint16_t kDefaultInetMaxFiles = 10;
inline constexpr std::uint32_t kDefaultInetMaxSizeKb = 2048;

// Fills `rec` with a new record of the current revision: every setting a first-time system
// operator would want, the archivers every system has, and the version bytes. The colour
// set stays empty, the three option flags at 14887-14889 and the "Next invoice number" stay
// 0: the loader sets the first two when it creates a file, then calls FillDependentDefaults.
void FillNewDefaults(KESTRAcfg& rec, const ProgramVersion& version = kProgramVersion);

// Called when the "Next invoice number" is 0 after loading (or for a new record): sets it to
// 1 and gives each setting that must not be 0 its default when it is still 0. Values the
// system operator set are kept.
void FillDependentDefaults(KESTRAcfg& rec);

}  // namespace ks
