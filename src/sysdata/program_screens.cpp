// "External programs (OS2)": the ten archivers and the SCAN, EAC, GUS and ED programs of the
// 32-bit set, one page per row, and "External program opts".
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "sysdata/sysdata.h"

namespace ks {

namespace {

constexpr const char* kRowNames[] = {"ARC", "ARJ", "LZH", "PAK",  "ZIP", "SQZ", "7",
                                     "8",   "9",   "10",  "SCAN", "EAC", "GUS", "ED"};
constexpr const char* kArchiverHelp = "Archiver and unarchiver names and commandline options";
constexpr const char* kToolHelp[] = {
    "Antivirus scanning program plus commandline options (@1=path)",
    "External archive conversion utility (@1=filename, @2=path)",
    "General Unpack Shell (@1=filename, @2=filespec to unpack)",
    "Full path and filename of external editor to use instead of internal editor",
};
constexpr const char* kSignaturePicture = "HH HH HH HH HH HH HH HH HH HH";
constexpr int kSignatureLength = 29;

// The 32-bit set is the one this program edits.
std::size_t Programs() {
  return CFG(os2Programs);
}

std::size_t ArchiverAt(int row) {
  return Programs() + offsetof(ExternalPrograms, archivers) +
         static_cast<std::size_t>(row) * sizeof(ArchiverDef);
}

std::size_t ToolAt(int row) {
  return Programs() + offsetof(ExternalPrograms, scan) +
         static_cast<std::size_t>(row - static_cast<int>(kArchiverCount)) * sizeof(ToolProgram);
}

FieldDef Text(std::size_t offset, std::uint8_t size, std::string prompt, std::string help) {
  return {.type = Str,
          .offset = static_cast<std::uint16_t>(offset),
          .size = size,
          .prompt = std::move(prompt),
          .help = std::move(help)};
}

int HexValue(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : std::toupper(c) - 'A' + 10;
}

// What the list row of a program shows: the program files it names.
std::string RowText(const std::uint8_t* rec, int row) {
  const auto* cfg = reinterpret_cast<const KESTRAcfg*>(rec);
  if (row >= static_cast<int>(kArchiverCount)) {
    const ToolProgram* tools = &cfg->os2Programs.scan;
    const ToolProgram& t = tools[row - static_cast<int>(kArchiverCount)];
    return t.program.str() + (t.switches.len ? " " + t.switches.str() : "");
  }
  const ArchiverDef& a = cfg->os2Programs.archivers[row];
  std::string text = a.extension.str();
  if (a.packProgram.len || a.unpackProgram.len) {
    text.resize(4, ' ');
    text += a.packProgram.str() + " / " + a.unpackProgram.str();
  }
  return text;
}

}  // namespace

std::string SignatureText(const ArchiverDef& a) {
  std::string text;
  for (std::size_t i = 0; i < kSignatureBytes; ++i) {
    if (i) text += ' ';
    char pair[3] = "  ";
    if (a.signatureMask & (1u << i)) std::snprintf(pair, sizeof pair, "%02X", a.signature[i]);
    text += pair;
  }
  const auto end = text.find_last_not_of(' ');
  return end == std::string::npos ? std::string() : text.substr(0, end + 1);
}

std::string SetSignature(ArchiverDef& a, const std::string& text) {
  std::uint8_t bytes[kSignatureBytes] = {};
  std::uint16_t mask = 0;
  std::string padded = text;
  padded.resize(kSignatureLength, ' ');
  for (std::size_t i = 0; i < kSignatureBytes; ++i) {
    const std::size_t at = 3 * i;
    const char hi = padded[at], lo = padded[at + 1];
    if (i > 0 && padded[at - 1] != ' ')
      return "The signature is pairs of hexadecimal digits separated by spaces";
    if (hi == ' ' && lo == ' ') continue;
    if (!std::isxdigit(static_cast<unsigned char>(hi)) ||
        !std::isxdigit(static_cast<unsigned char>(lo)))
      return "The signature is pairs of hexadecimal digits separated by spaces";
    bytes[i] = static_cast<std::uint8_t>(HexValue(hi) * 16 + HexValue(lo));
    mask = static_cast<std::uint16_t>(mask | (1u << i));
  }
  std::memcpy(a.signature, bytes, sizeof bytes);
  a.signatureMask = mask;
  return {};
}

SettingsScreen ProgramRowScreen(int row) {
  const std::string name = kRowNames[row];
  if (row >= static_cast<int>(kArchiverCount)) {
    const std::size_t t = ToolAt(row);
    return StackedScreen(
        "External programs (OS2) \xAF " + name, name,
        {Text(t + offsetof(ToolProgram, program), 60, "Program file",
              "Program filename, may include path"),
         Text(t + offsetof(ToolProgram, switches), 40, "Switches", "Command line switches")},
        kProgramsTopic, 15);
  }
  const std::size_t a = ArchiverAt(row);
  std::vector<FieldDef> fields = {
      Label("Compression"),
      Text(a + offsetof(ArchiverDef, packProgram), 60, "Program file",
           "Compression program filename, may include path"),
      Text(a + offsetof(ArchiverDef, packSwitches), 40, "Switches",
           "Compression command line switches"),
      Text(a + offsetof(ArchiverDef, bannerSwitches), 40, "Banner",
           "Banner command line switches (@1=path\\filename, @2=path\\banner)"),
      Label("Uncompression"),
      Text(a + offsetof(ArchiverDef, unpackProgram), 60, "Program file",
           "Uncompression program filename, may include path"),
      Text(a + offsetof(ArchiverDef, unpackSwitches), 40, "Switches",
           "Uncompression command line switches"),
      Text(a + offsetof(ArchiverDef, noDirsSwitches), 40, "No dirs",
           "Uncompression command line switches for not creating archived directories"),
      Label("Recognition"),
      {.type = Str,
       .offset = static_cast<std::uint16_t>(a + offsetof(ArchiverDef, signature)),
       .size = kSignatureLength,
       .picture = kSignaturePicture,
       .prompt = "Signature",
       .help = "Program signature in hexadecimal values. (Spaces=skip this byte)",
       .get_text =
           [a](const std::uint8_t* rec) {
             return SignatureText(*reinterpret_cast<const ArchiverDef*>(rec + a));
           },
       .set_text =
           [a](std::uint8_t* rec, const std::string& text) {
             return SetSignature(*reinterpret_cast<ArchiverDef*>(rec + a), text);
           }},
      {.type = Long,
       .offset = static_cast<std::uint16_t>(a + offsetof(ArchiverDef, signatureOffset)),
       .prompt = "Offset",
       .help = "Offset of signature in archive file"},
      {.type = Ext,
       .offset = static_cast<std::uint16_t>(a + offsetof(ArchiverDef, extension)),
       .size = 3,
       .prompt = "Extension",
       .help = "Program extension"},
  };
  for (auto& f : fields)
    if (!f.label) f.prompt_col = 4;
  return StackedScreen("External programs (OS2) \xAF " + name, name, std::move(fields),
                       kProgramsTopic, 17);
}

SettingsScreen ExternalProgramsScreen(const SysdataContext& ctx) {
  std::vector<FieldDef> fields;
  for (int row = 0; row < kProgramRows; ++row) {
    KESTRAcfg* cfg = ctx.cfg;
    fields.push_back({.prompt = kRowNames[row],
                      .help = row < static_cast<int>(kArchiverCount)
                                  ? kArchiverHelp
                                  : kToolHelp[row - static_cast<int>(kArchiverCount)],
                      .width = 64,
                      .select =
                          [row, cfg](std::uint8_t*) {
                            RunSettings(ProgramRowScreen(row), *cfg);
                            return true;
                          },
                      .show = [row](const std::uint8_t* rec) { return RowText(rec, row); }});
  }
  return StackedScreen("External programs (OS2)", "External programs (OS2)", std::move(fields),
                       kProgramsTopic, 8);
}

SettingsScreen ExternalOptionsScreen() {
  return StackedScreen(
      "External program opts", "External program options",
      {
          {.type = Chrs,
           .offset = CFG(swapMethod),
           .prompt = "Swapping method",
           .help = "How KESTRA should handle swapping (In order of priority) (Not in OS/2)",
           .choices = {"None", "Disk", "XMS/EMS", "XMS/EMS/DISK"}},
          YesNo(CFG(redirectOutput), "Redirect output",
                "Redirect screen output of external utilities to NUL device"),
          {.type = Wrd,
           .offset = CFG(noVirusErrorlevel),
           .size = 1,
           .prompt = "No virus errorlevel",
           .help = "The maximum errorlevel that means no virus found"},
          {.type = Chrs,
           .offset = CFG(filesToScan),
           .prompt = "Files to scan",
           .help = "The file that should be scanned by the anti virus program",
           .choices = {"EXE/COM/OVR/DLL", ".*"}},
          {.type = Wrd,
           .offset = CFG(eacVirusErrorlevel),
           .size = 1,
           .prompt = "(EAC) virus errorlevel",
           .help = "Minimum errorlevel output by external convert prg if virus is found"},
          {.type = Wrd,
           .offset = CFG(eacErrorErrorlevel),
           .size = 1,
           .prompt = "(EAC) error errorlevel",
           .help = "Minimum errorlevel output by external convert prg if error converting"},
      },
      kProgramOptionsTopic, 26, 46);
}

}  // namespace ks
