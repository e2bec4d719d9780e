#include "shell/cmdline.h"

#include <algorithm>
#include <cctype>

#include "shell/build_info.h"

namespace ks {

std::string gPlatformName = "DOS";

CommandLine ParseCommandLine(const std::vector<std::string>& args) {
  CommandLine cl;
  std::size_t recognised = 0;
  for (std::string a : args) {
    std::transform(a.begin(), a.end(), a.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (a == "INDEX") {
      cl.index = true;
    } else if (a == "PACK") {
      cl.pack = true;
    } else if (a == "-MONO") {
      cl.colour = false;
    } else if (a == "-COLOR") {
      cl.colour = true;
    } else if (a == "-SFI") {
      cl.sfi = true;
    } else {
      continue;
    }
    ++recognised;
  }
  cl.ok = recognised == args.size();
  // Index is tested first and the two commands exclude each other.
  if (cl.index) cl.pack = false;
  return cl;
}

std::string VersionString() {
  return std::to_string(build::kMajor) + "." + std::to_string(build::kMinor) + "." +
         std::to_string(build::kBuild) + "-" + build::kTag;
}

std::string BannerLine() {
  return std::string(kProductName) + " " + VersionString() + " for " + gPlatformName +
         " Setup program \xF9 " + build::kDate;
}

const std::vector<std::string>& UsageLines() {
  static const std::vector<std::string> lines = {
      "Usage:",
      "",
      "   KSETUP [command] [switches]",
      "",
      "Commands",
      "   Index    Rebuild index files",
      "   Pack     Pack data files",
      "",
      "Switches",
      "   -Mono    Force mono mode",
      "   -Color   Force color mode",
      "   -SFI     Force Speech Friendly Interface",
  };
  return lines;
}

}  // namespace ks
