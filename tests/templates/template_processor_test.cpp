// The template processor on templates in memory: every case is a template, the items its
// blocks get, and the output expected (line ends shown as "\n").
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "tempdir.h"
#include "templates/template_dates.h"
#include "templates/template_processor.h"

namespace ks::tpl {
namespace {

// Blocks get `items` items each; @filename is "F1", "F2", ... of the current one.
class Items : public TemplateData {
 public:
  explicit Items(int items) : items_(items) {}
  std::optional<std::string> Value(Keyword k) override {
    if (k == Keyword::FileName) return "F" + std::to_string(current_);
    if (k == Keyword::FileDesc) return desc;
    return std::nullopt;
  }
  bool FirstItem(Keyword) override { return (current_ = 1) <= items_; }
  bool NextItem(Keyword) override { return ++current_ <= items_; }
  std::string desc = "one two three four";

 private:
  int items_;
  int current_ = 0;
};

std::string Output(TemplateProcessor& p) {
  std::string all, piece;
  int guard = 0;
  while (p.NextLine(piece) && ++guard < 100000) all += piece;
  for (char& c : all)
    if (c == '\r') c = '\n';
  return all;
}

std::string Process(const std::string& text, int items = 2, int* result = nullptr,
                    RunSettings settings = {}) {
  Items data(items);
  TemplateProcessor p;
  settings.now = {2026, 11, 24, 9, 5, 7};
  const int r = p.LoadText(text, TemplateKind::kFileReport, &data, "Some sysop", "Me",
                           "Template view", settings);
  if (result) *result = r;
  return r == kLoaded ? Output(p) : "";
}

std::string Repeat(const std::string& s, int n) {
  std::string out;
  while (n-- > 0) out += s;
  return out;
}

TEST(TemplateProcessor, Output) {
  const struct {
    const char* what;
    std::string text;
    std::string want;
    int items = 2;
  } cases[] = {
      {"@@ is an @", "@@\nmail@@host", "@\nmail@host\n"},
      {"a lone @", "@ x\n@", "@ x\n@\n"},
      {"text around a value", "To: @msgto, re @MsgSubject.", "To: Some sysop, re Template view.\n"},
      {"unknown macro as written", "@nosuch and @fileechoes", "@nosuch and @fileechoes\n"},
      {"empty lines and comments", "a\n\n;note\nb", "a\n\nb\n"},
      {"byte 255 is a blank",
       "a\xFF"
       "b",
       "a b\n"},
      {"line cut at 255", Repeat("x", 300), Repeat("x", 255) + "\n"},
      {"overflow line skipped while empty", "@overflow\nX", "X\n"},
      {"test compares text", "@test(10,<,9)\nyes\n@end\n@test(\"a b\",=,A B)\nsame\n@end",
       "yes\nsame\n"},
      {"else", "@test(a,=,b)\nA\n@else\nB\n@end\nC", "B\nC\n"},
      {"eleventh test ignored",
       Repeat("@test(a,=,a)\n", 10) + "@test(a,=,b)\nbody\n" + Repeat("@end\n", 11), "body\n"},
      {"tests nest in suppressed lines", "@test(a,=,b)\n@test(a,=,a)\nX\n@end\nY\n@end\nZ", "Z\n"},
      {"pos and len",
       "@assign(@a,\"Hello World\")\n@pos(@a,\"hello\") @pos(@a,\"WORLD\") @pos(@a,\"zz\") "
       "@len(@a)",
       "0 6 NIL 11\n"},
      {"twenty-first variable ignored",
       [] {
         std::string t;
         for (int i = 1; i <= 21; ++i) t += "@assign(@v" + std::to_string(i) + ",x)\n";
         return t + "@v20 @v21";
       }(),
       "x @v21\n"},
      {"add and sub",
       "@assign(@n,\"1,000\")\n@add(@n,5)\n@assign(@s,abc)\n@add(@s,def)\n@sub(@s,1)\n"
       "@assign(@r,1.5)\n@sub(@r,0.25)\n@n @s @r",
       "1005 abcdef 1.25\n"},
      {"unknown variable", "@add(@zz,1)", "@add(@zz,1)\n"},
      {"just, center and pad",
       "[@just(@filename,L,5)][@just(@filename,R,5,.)][@center(@filename,6,*)]",
       "[F0   ][...F0][**F0**]\n", 1},
      {"wrong argument count or justification", "@just(@filename,L) @just(@filename,X,5)",
       "@just(@filename,L) @just(@filename,X,5)\n", 1},
      {"just wraps into the overflow lines", "@just(@filedesc,L,8)|\n   @overflow|\nend",
       "one two |\n   three   |\n   four    |\nend\n", 1},
      {"just cuts exactly with R", "@just(@filedesc,L,6,\" \",R)|\n@overflow|",
       "one tw|\no     |\nthree |\nfour  |\n", 1},
      {"overflow limit", "@setoflimit(1)\n@just(@filedesc,L,8)\n@overflow\nend",
       "one two \nthree   \nend\n", 1},
      {"copy", "@copy(@filedesc,5,3)|@copy(@filedesc,15)", "two|four\n", 1},
      {"case functions", "@uppercase(\"ab c\") @lowercase(\"AB C\") @capitalize(\"hELLO wORLD\")",
       "AB C ab c Hello World\n"},
      {"blocks repeat per item", "@filebegin\n- @filename\n@end\ndone", "- F1\n- F2\ndone\n", 2},
      {"a block without items is skipped", "@filebegin\n- @filename\n@end\ndone", "done\n", 0},
      {"a one-line block", "@filebegin @filename,@end.\n@filebegin @filename,@end\nX",
       " F1, F2,.\n F1, F2,\nX\n", 2},
      {"tests inside blocks", "@filebegin\n@test(@filename,=,F2)\nsecond\n@else\nother\n@end\n@end",
       "other\nsecond\n", 2},
      {"a block inside a test", "@test(a,=,a)\n@filebegin\n@filename\n@end\n@end\nZ",
       "F1\nF2\nF3\nZ\n", 3},
      {"includeapl removed when missing", "@INCLUDEAPL(\"nothere.apl\")\nline", "line\n"},
      {"control lines give no line", "@filterdesc\n@clearoverflow\n@allowbreak\nX", "X\n"},
      {"dates", "@daynr @day @monthnr @month @year @hour:@min @dayofyear",
       "24 Tuesday 11 November 2026 09:05 328\n"},
      {"a line of @ signs", Repeat("@", 10000), Repeat("@", 128) + "\n"},
  };
  for (const auto& c : cases) {
    int result = -1;
    EXPECT_EQ(Process(c.text, c.items, &result), c.want) << c.what;
    EXPECT_EQ(result, kLoaded) << c.what;
  }
}

TEST(TemplateProcessor, LoadResults) {
  const struct {
    std::string text;
    int result;
  } cases[] = {
      {";only\n;comments", kUnableToOpen},
      {"", kUnableToOpen},
      {"@filebegin @filename @end", kLoaded},
      {"@filebegin\n@filename", kSyntaxError},
      {"@test(a,=,a)\nx", kSyntaxError},
      {"@areabegin\n@filebegin\n@end\n@end", kLoaded},
      {";@filebegin\nx", kLoaded},
  };
  for (const auto& c : cases) {
    int result = -1;
    Process(c.text, 1, &result);
    EXPECT_EQ(result, c.result) << c.text;
  }
  EXPECT_EQ(LoadResultText(kUnableToOpen), "Unable to open template");
  EXPECT_EQ(LoadResultText(kSyntaxError),
            "Syntax error: invalid number of @end macros in template");
}

TEST(TemplateProcessor, Files) {
  test::TempDir dir;
  dir.Write("Report.APL", "Head\r\n@include(" + dir.path() + "inc.txt)\r\n@cookie\r\nTail\r\n");
  dir.Write("inc.txt", "one\ntwo\n");
  // Two cookies: offsets at 4 and 8 (count 3); both are the same text here.
  std::string cookie("\x03\x00\x00\x00\x0C\x00\x00\x00\x0C\x00\x00\x00", 12);
  cookie += "Fortune\rline 2\r\xFFjunk";
  dir.Write("COOKIE.DAT", cookie);
  TemplateProcessor p;
  RunSettings s{dir.path(), dir.path(), {2026, 1, 1}, 7};
  ASSERT_EQ(p.Load("C:\\KESTRA\\report.apl", TemplateKind::kFileReport, nullptr, "", "", "", s),
            kLoaded);
  EXPECT_EQ(Output(p), "Head\none\ntwo\nFortune\nline 2\nTail\n");

  // Output files: a line is written with CR LF, a piece without.
  const std::string out = dir / "out.txt";
  ASSERT_EQ(p.LoadText("@openoutput(" + out + ",rewrite)\nA @msgto\n@closeoutput\nB",
                       TemplateKind::kSystemMessage, nullptr, "X", "", ""),
            kLoaded);
  EXPECT_EQ(Output(p), "A X\nB\n");
  std::ifstream in(out, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "A X\r\n");
  ASSERT_EQ(p.LoadText("@openoutput(/no/such/dir/f,append)", TemplateKind::kSystemMessage, nullptr,
                       "", "", ""),
            kLoaded);
  EXPECT_EQ(Output(p), "Error opening /no/such/dir/f for output\n");
  p.Release();
  EXPECT_FALSE(p.loaded());
}

// Hostile templates end with clear output: a 1 MB line is cut, a template that includes
// itself stops at the include depth.
TEST(TemplateProcessor, HostileTemplates) {
  EXPECT_EQ(Process(Repeat("x", 1 << 20)), Repeat("x", 255) + "\n");
  test::TempDir dir;
  const auto cwd = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  dir.Write("PL(SELF", "@INCLUDEAPL(self)\nline\n");  // the name as the directive gives it
  const std::string out = Process("@includeapl(self)\nend");
  std::filesystem::current_path(cwd);
  EXPECT_EQ(out, Repeat("line\n", kMaxIncludeDepth) + "end\n");
}

TEST(TemplateProcessor, DefinedMacros) {
  TemplateProcessor p;
  ASSERT_EQ(p.LoadText("@rpflimit/@RPSLIMIT", TemplateKind::kRequestReply, nullptr, "", "", ""),
            kLoaded);
  p.DefineMacro("RPFLIMIT", "10");
  p.DefineMacro("rpslimit", "1");
  p.DefineMacro("RPSLIMIT", "500");
  for (int i = 0; i < 120; ++i) p.DefineMacro("M" + std::to_string(i), "x");
  EXPECT_EQ(Output(p), "10/500\n");
}

TEST(TemplateKeywords, NamesAndFunctionCodes) {
  for (std::size_t i = 0; i < kKeywordCount; ++i) {
    const auto k = static_cast<Keyword>(i);
    ASSERT_FALSE(KeywordName(k).empty()) << i;
    EXPECT_EQ(FindKeyword(KeywordName(k)), k) << KeywordName(k);
  }
  EXPECT_EQ(KeywordName(Keyword::PktPassword), "PKTPASSWORD");
  EXPECT_EQ(FunctionCode("JUST"), 1);
  EXPECT_EQ(FunctionCode("OPENOUTPUT"), 11);
  EXPECT_EQ(FunctionCode("CAPITALIZE"), 15);
  EXPECT_EQ(FunctionCode("FILEECHO"), 0);
  EXPECT_EQ(FunctionCode("JUSTX"), 0);
}

TEST(TemplateDates, Placeholders) {
  const DateTime t{2026, 3, 5, 7, 4, 9};
  EXPECT_EQ(FormatDate(DateFormat(DateOrder::kEuropean), t), "05-03-26");
  EXPECT_EQ(FormatDate(DateFormat(DateOrder::kAmerican), t), "03-05-26");
  EXPECT_EQ(FormatDate(DateFormat(DateOrder::kScandinavian), t), "26-03-05");
  EXPECT_EQ(FormatDate("%DDD% %d% %MMM% %m% %yyyy% %y% %x%", t), "THU 5 MAR 3 2026 2026 %x%");
  EXPECT_EQ(FormatDate(kTimeFormat, t, true), "07:04");
  EXPECT_EQ(FormatDate("%h%.%m%.%ss%", t, true), "7.4.09");
  EXPECT_EQ(FormatDate("[%ddd%%mmm%]", DateTime{2026, 13, 1}), "[]");
}

}  // namespace
}  // namespace ks::tpl
