// The command line: KSETUP [command] [switches].
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ks {

struct CommandLine {
  bool ok = true;              // false: an argument was not recognised (print the usage text)
  bool index = false;          // "Index": rebuild all index files
  bool pack = false;           // "Pack": pack all data files
  std::optional<bool> colour;  // -Mono / -Color, the last one given wins
  bool sfi = false;            // -SFI
};

// Every argument is compared in upper case and must match a word exactly.
CommandLine ParseCommandLine(const std::vector<std::string>& args);

// The banner line and the rights notice printed before the busy message and the usage text.
std::string BannerLine();
inline constexpr const char* kRightsNotice =
    "Copyright (c) 1995-2026 The KESTRA developers. All rights reserved.";

// The usage text, line by line.
const std::vector<std::string>& UsageLines();

inline constexpr const char* kProductName = "KESTRA";

// The platform named in the banner.
extern std::string gPlatformName;

// major.minor.build-tag, for example "6.1.7-3fd41a8".
std::string VersionString();

}  // namespace ks
