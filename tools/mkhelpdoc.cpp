// mkhelpdoc: builds the help document KESTRA.DOC and its topic index KS_DOC.IDX from the
// readable source data/help/manual.txt. Run by the build:
//
//   mkhelpdoc <manual.txt> <KESTRA.DOC> <KS_DOC.IDX>
//
// A fault in the source is reported as "file:line: message" (the form compilers use, so that
// editors jump to the line) and ends the tool with status 1; no output file is touched then.

#include <cstdio>
#include <string>

#include "common/fileutil.h"
#include "docs/docindex.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: mkhelpdoc <manual.txt> <KESTRA.DOC> <KS_DOC.IDX>\n");
    return 2;
  }
  const std::string source = argv[1];
  const std::optional<std::string> text = ks::ReadWholeFile(source);
  if (!text) {
    std::fprintf(stderr, "%s: cannot read the file\n", source.c_str());
    return 1;
  }

  ks::HelpSourceError error;
  auto report = [&] {
    if (error.line > 0) {
      std::fprintf(stderr, "%s:%d: %s\n", source.c_str(), error.line, error.message.c_str());
    } else {
      std::fprintf(stderr, "%s: %s\n", source.c_str(), error.message.c_str());
    }
    return 1;
  };
  const auto topics = ks::ParseHelpSource(*text, &error);
  if (!topics) return report();
  const auto files = ks::BuildHelpDoc(*topics, &error);
  if (!files) return report();

  std::string why;
  if (!ks::WriteHelpDoc(*files, argv[2], argv[3], &why)) {
    std::fprintf(stderr, "mkhelpdoc: %s\n", why.c_str());
    return 1;
  }
  return 0;
}
