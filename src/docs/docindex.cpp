#include "docs/docindex.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "common/cp437.h"
#include "common/fileutil.h"

namespace ks {

namespace {

std::optional<std::vector<HelpTopic>> Fail(HelpSourceError* error, int line, std::string message) {
  if (error) *error = {line, std::move(message)};
  return std::nullopt;
}

std::string CodePointName(char32_t u) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "U+%04X", static_cast<unsigned>(u));
  return buf;
}

// Decodes one UTF-8 line and converts it to CP437. Only characters that CP437 shows as
// printable glyphs are taken: a byte below 0x20 would be read as a line end, a tab or a colour
// change by whatever shows the document.
bool LineToCp437(std::string_view utf8, std::string* out, std::string* why) {
  out->clear();
  std::size_t i = 0;
  while (i < utf8.size()) {
    const auto b0 = static_cast<unsigned char>(utf8[i]);
    char32_t u = 0;
    std::size_t len = 0;
    if (b0 < 0x80) {
      u = b0, len = 1;
    } else if ((b0 & 0xE0) == 0xC0) {
      u = b0 & 0x1F, len = 2;
    } else if ((b0 & 0xF0) == 0xE0) {
      u = b0 & 0x0F, len = 3;
    } else if ((b0 & 0xF8) == 0xF0) {
      u = b0 & 0x07, len = 4;
    } else {
      *why = "malformed UTF-8";
      return false;
    }
    if (i + len > utf8.size()) {
      *why = "malformed UTF-8";
      return false;
    }
    for (std::size_t k = 1; k < len; ++k) {
      const auto b = static_cast<unsigned char>(utf8[i + k]);
      if ((b & 0xC0) != 0x80) {
        *why = "malformed UTF-8";
        return false;
      }
      u = (u << 6) | (b & 0x3F);
    }
    static constexpr char32_t kMinForLength[5] = {0, 0, 0x80, 0x800, 0x10000};
    if (u < kMinForLength[len] || u > 0x10FFFF || (u >= 0xD800 && u <= 0xDFFF)) {
      *why = "malformed UTF-8";
      return false;
    }
    i += len;

    if (u == U'\t') {
      *why = "tab character (use spaces)";
      return false;
    }
    if (u < 0x20 || u == 0x7F) {
      *why = "control character " + CodePointName(u);
      return false;
    }
    const int c = UnicodeToCp437(u);
    if (c < 0) {
      *why = "character " + CodePointName(u) + " (" + std::string(utf8.substr(i - len, len)) +
             ") is not in code page 437";
      return false;
    }
    if (c < 0x20) {
      *why = "character " + CodePointName(u) + " (" + std::string(utf8.substr(i - len, len)) +
             ") is a control code in code page 437";
      return false;
    }
    out->push_back(static_cast<char>(c));
  }
  return true;
}

void TrimRight(std::string& s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
}

bool IsBlank(const std::string& s) {
  return s.find_first_not_of(' ') == std::string::npos;
}

void TrimBlankLines(std::vector<std::string>& body) {
  while (!body.empty() && IsBlank(body.back())) body.pop_back();
  auto first = std::find_if(body.begin(), body.end(), [](const auto& l) { return !IsBlank(l); });
  body.erase(body.begin(), first);
}

void PutU16(std::string& out, std::uint16_t v) {
  out.push_back(static_cast<char>(v & 0xFF));
  out.push_back(static_cast<char>(v >> 8));
}

void PutU32(std::string& out, std::uint32_t v) {
  for (int k = 0; k < 4; ++k) out.push_back(static_cast<char>((v >> (8 * k)) & 0xFF));
}

std::uint16_t GetU16(std::string_view s, std::size_t at) {
  return static_cast<std::uint16_t>(static_cast<unsigned char>(s[at]) |
                                    static_cast<unsigned char>(s[at + 1]) << 8);
}

std::uint32_t GetU32(std::string_view s, std::size_t at) {
  std::uint32_t v = 0;
  for (int k = 3; k >= 0; --k) v = (v << 8) | static_cast<unsigned char>(s[at + k]);
  return v;
}

}  // namespace

std::optional<std::vector<HelpTopic>> ParseHelpSource(std::string_view utf8,
                                                      HelpSourceError* error) {
  if (utf8.substr(0, 3) == "\xEF\xBB\xBF") utf8.remove_prefix(3);

  std::vector<HelpTopic> topics;
  std::map<unsigned, int> seen;  // topic number -> line of its @topic
  int lineNo = 0;
  std::size_t pos = 0;
  while (pos < utf8.size()) {
    std::size_t end = utf8.find('\n', pos);
    if (end == std::string_view::npos) end = utf8.size();
    std::string_view line = utf8.substr(pos, end - pos);
    pos = end + 1;
    ++lineNo;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);

    if (!line.empty() && line[0] == '#') continue;

    if (!line.empty() && line[0] == '@') {
      const std::string_view word = line.substr(0, line.find(' '));
      if (word != "@topic") {
        return Fail(error, lineNo,
                    "unknown directive \"" + std::string(word) + "\" (only @topic is known)");
      }
      std::string_view rest = line.substr(word.size());
      while (!rest.empty() && rest[0] == ' ') rest.remove_prefix(1);
      const std::string_view numText = rest.substr(0, rest.find(' '));
      rest.remove_prefix(numText.size());
      while (!rest.empty() && rest[0] == ' ') rest.remove_prefix(1);
      if (numText.empty()) return Fail(error, lineNo, "@topic without a topic number");
      if (numText.find_first_not_of("0123456789") != std::string_view::npos) {
        return Fail(error, lineNo, "bad topic number \"" + std::string(numText) + "\"");
      }
      unsigned long number = 0;
      for (char d : numText) {
        number = number * 10 + static_cast<unsigned>(d - '0');
        if (number > 65535) break;
      }
      if (number == 0 || number > 65535) {
        return Fail(error, lineNo,
                    "topic number " + std::string(numText) + " out of range (1-65535)");
      }
      if (auto it = seen.find(number); it != seen.end()) {
        return Fail(error, lineNo,
                    "duplicate topic " + std::to_string(number) + " (first on line " +
                        std::to_string(it->second) + ")");
      }
      HelpTopic topic;
      topic.number = static_cast<std::uint16_t>(number);
      topic.sourceLine = lineNo;
      std::string why;
      if (!LineToCp437(rest, &topic.title, &why)) return Fail(error, lineNo, why);
      TrimRight(topic.title);
      if (topic.title.empty()) {
        return Fail(error, lineNo, "topic " + std::to_string(number) + " has no title");
      }
      if (topic.title.size() > kHelpLineWidth) {
        return Fail(error, lineNo,
                    "title is " + std::to_string(topic.title.size()) +
                        " characters wide (at most " + std::to_string(kHelpLineWidth) + ")");
      }
      seen.emplace(number, lineNo);
      topics.push_back(std::move(topic));
      continue;
    }

    std::string text;
    std::string why;
    if (!LineToCp437(line, &text, &why)) return Fail(error, lineNo, why);
    TrimRight(text);
    if (topics.empty()) {
      if (text.empty()) continue;
      return Fail(error, lineNo, "text before the first @topic");
    }
    if (text.size() > kHelpLineWidth) {
      return Fail(error, lineNo,
                  "line is " + std::to_string(text.size()) + " characters wide (at most " +
                      std::to_string(kHelpLineWidth) + ")");
    }
    topics.back().body.push_back(std::move(text));
  }
  if (topics.empty()) return Fail(error, 0, "no @topic in the source");
  for (auto& t : topics) TrimBlankLines(t.body);
  return topics;
}

std::optional<HelpDocFiles> BuildHelpDoc(const std::vector<HelpTopic>& topics,
                                         HelpSourceError* error) {
  auto fail = [error](int line, std::string message) -> std::optional<HelpDocFiles> {
    if (error) *error = {line, std::move(message)};
    return std::nullopt;
  };
  if (topics.size() > 65535) return fail(0, "more than 65535 topics");

  HelpDocFiles out;
  std::vector<DocIndexEntry> entries;
  entries.reserve(topics.size());
  for (const HelpTopic& t : topics) {
    if (t.number == 0) return fail(t.sourceLine, "topic number 0");
    const std::size_t lines = t.body.size() + 4;  // title, rule, empty line, body, empty line
    if (lines > 65535) {
      return fail(t.sourceLine, "topic " + std::to_string(t.number) + " has more than 65535 lines");
    }
    const std::size_t start = out.doc.size();
    out.doc += t.title;
    out.doc += '\n';
    out.doc.append(t.title.size(), '\xC4');
    out.doc += "\n\n";
    for (const std::string& l : t.body) {
      out.doc += l;
      out.doc += '\n';
    }
    out.doc += '\n';
    if (out.doc.size() > 0xFFFFFFFFu) return fail(t.sourceLine, "document of 4 GiB or more");
    entries.push_back({t.number, static_cast<std::uint16_t>(lines),
                       static_cast<std::uint32_t>(start),
                       static_cast<std::uint32_t>(out.doc.size() - start)});
  }

  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.topic < b.topic; });
  for (std::size_t k = 1; k < entries.size(); ++k) {
    if (entries[k].topic == entries[k - 1].topic) {
      return fail(0, "duplicate topic " + std::to_string(entries[k].topic));
    }
  }

  out.index.reserve(kDocIndexHeaderSize + kDocIndexEntrySize * entries.size());
  out.index.append(kDocIndexMagic, sizeof kDocIndexMagic);
  PutU16(out.index, kDocIndexVersion);
  PutU16(out.index, static_cast<std::uint16_t>(entries.size()));
  PutU32(out.index, static_cast<std::uint32_t>(out.doc.size()));
  for (const DocIndexEntry& e : entries) {
    PutU16(out.index, e.topic);
    PutU16(out.index, e.lines);
    PutU32(out.index, e.offset);
    PutU32(out.index, e.length);
  }
  return out;
}

bool WriteHelpDoc(const HelpDocFiles& files, const std::string& docPath, const std::string& idxPath,
                  std::string* error) {
  std::string why;
  if (!WriteFileAtomic(docPath, files.doc, &why)) {
    if (error) *error = docPath + ": " + why;
    return false;
  }
  if (!WriteFileAtomic(idxPath, files.index, &why)) {
    if (error) *error = idxPath + ": " + why;
    return false;
  }
  return true;
}

std::optional<DocIndexEntry> DocIndex::Find(std::uint16_t topic) const {
  auto it = std::lower_bound(entries.begin(), entries.end(), topic,
                             [](const DocIndexEntry& e, std::uint16_t t) { return e.topic < t; });
  if (it == entries.end() || it->topic != topic) return std::nullopt;
  return *it;
}

std::optional<DocIndex> ParseDocIndex(std::string_view bytes, std::uint64_t docSize) {
  if (bytes.size() < kDocIndexHeaderSize) return std::nullopt;
  if (bytes.substr(0, sizeof kDocIndexMagic) !=
      std::string_view(kDocIndexMagic, sizeof kDocIndexMagic)) {
    return std::nullopt;
  }
  if (GetU16(bytes, 8) != kDocIndexVersion) return std::nullopt;
  const std::size_t count = GetU16(bytes, 10);
  if (bytes.size() != kDocIndexHeaderSize + count * kDocIndexEntrySize) return std::nullopt;
  DocIndex index;
  index.docSize = GetU32(bytes, 12);
  if (index.docSize != docSize) return std::nullopt;

  index.entries.reserve(count);
  for (std::size_t k = 0; k < count; ++k) {
    const std::size_t at = kDocIndexHeaderSize + k * kDocIndexEntrySize;
    DocIndexEntry e{GetU16(bytes, at), GetU16(bytes, at + 2), GetU32(bytes, at + 4),
                    GetU32(bytes, at + 8)};
    if (e.topic == 0 || e.length == 0) return std::nullopt;
    if (!index.entries.empty() && e.topic <= index.entries.back().topic) return std::nullopt;
    if (std::uint64_t{e.offset} + e.length > docSize) return std::nullopt;
    index.entries.push_back(e);
  }
  return index;
}

std::optional<DocIndex> ReadDocIndex(const std::string& idxPath, std::uint64_t docSize) {
  const std::optional<std::string> bytes = ReadWholeFile(idxPath);
  if (!bytes) return std::nullopt;
  return ParseDocIndex(*bytes, docSize);
}

}  // namespace ks
