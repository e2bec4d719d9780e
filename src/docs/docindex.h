// The help document: its readable source (data/help/manual.txt), the two files built from it
// (KESTRA.DOC, the text, and KS_DOC.IDX, the topic index) and reading that index back. The
// build tool mkhelpdoc and the program's help system share this code, so the writer and the
// reader of the index cannot drift apart. doc/FORMATS.md describes every byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ks {

// Widest title or body line of the source, in characters: the viewer window is 78 columns
// inside its frame, and one column of margin is kept on each side.
inline constexpr std::size_t kHelpLineWidth = 76;

inline constexpr char kDocIndexMagic[8] = {'K', 'S', 'D', 'O', 'C', 'I', 'D', 'X'};
inline constexpr std::uint16_t kDocIndexVersion = 1;
inline constexpr std::size_t kDocIndexHeaderSize = 16;
inline constexpr std::size_t kDocIndexEntrySize = 12;

// One topic of the source, its text already converted to CP437.
struct HelpTopic {
  std::uint16_t number = 0;
  std::string title;              // CP437
  std::vector<std::string> body;  // CP437 lines; leading and trailing blank lines removed
  int sourceLine = 0;             // line of its "@topic" in the source (1-based)
};

// Why a source or a set of topics was refused; `line` is 1-based, 0 when no line is to blame.
struct HelpSourceError {
  int line = 0;
  std::string message;
};

// Parses the UTF-8 source text. On a fault returns nothing and, when `error` is given, says
// which line is at fault and why: a bad or duplicate topic number, a missing title, a line
// wider than kHelpLineWidth, a character that code page 437 lacks, malformed UTF-8, text
// before the first topic, an unknown "@" directive, or no topic at all.
std::optional<std::vector<HelpTopic>> ParseHelpSource(std::string_view utf8,
                                                      HelpSourceError* error = nullptr);

// One entry of KS_DOC.IDX: where a topic's section lies in KESTRA.DOC.
struct DocIndexEntry {
  std::uint16_t topic = 0;
  std::uint16_t lines = 0;   // lines of the section, title line and closing empty line included
  std::uint32_t offset = 0;  // byte offset of the section's title line
  std::uint32_t length = 0;  // bytes of the section, up to the next section's title line
  bool operator==(const DocIndexEntry&) const = default;
};

// The two files, built in memory.
struct HelpDocFiles {
  std::string doc;    // KESTRA.DOC: CP437 text, LF line ends
  std::string index;  // KS_DOC.IDX: binary, little-endian
};

// Lays out the document in the order of `topics` and indexes it by topic number. Refuses
// (nothing, with `error` set) a topic number of 0 or one used twice, a section of more than
// 65535 lines, and a document of 4 GiB or more.
std::optional<HelpDocFiles> BuildHelpDoc(const std::vector<HelpTopic>& topics,
                                         HelpSourceError* error = nullptr);

// Replaces both files atomically. On failure `error` names the file and the cause.
bool WriteHelpDoc(const HelpDocFiles& files, const std::string& docPath, const std::string& idxPath,
                  std::string* error = nullptr);

// KS_DOC.IDX as read back.
struct DocIndex {
  std::uint32_t docSize = 0;
  std::vector<DocIndexEntry> entries;  // strictly ascending by topic

  // The section of `topic`, or nothing when the document has none.
  std::optional<DocIndexEntry> Find(std::uint16_t topic) const;
};

// Checks and decodes the bytes of an index for a document of `docSize` bytes. Refuses a wrong
// magic or version, a header whose count does not match the size of `bytes`, a document size
// in the header other than `docSize`, a topic number of 0, entries not strictly ascending, and
// a section that is empty or reaches past `docSize`.
std::optional<DocIndex> ParseDocIndex(std::string_view bytes, std::uint64_t docSize);

// Reads and checks the index file `idxPath` (see ParseDocIndex); nothing when it cannot be read.
std::optional<DocIndex> ReadDocIndex(const std::string& idxPath, std::uint64_t docSize);

}  // namespace ks
