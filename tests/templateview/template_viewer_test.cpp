// The template viewer on a small program directory (one fileecho, one system): the output of
// each viewer kind, the messages when it cannot run, and the template list by key script.
#include "templateview/template_viewer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>

#include "common/fileutil.h"
#include "dbase/recfiles.h"
#include "dbase/recordfile.h"
#include "tempdir.h"
#include "tui/virtual_terminal.h"
#include "vt_fixture.h"

namespace ks {
namespace {

class TemplateViewerTest : public test::VtTest {
 protected:
  TemplateViewerTest() : cfg_(std::make_unique<KESTRAcfg>()) {
    cfg_->sysopName.set("Joe Sysop");
    cfg_->numberOfSystems = 200;
    cfg_->addresses[0] = {2, 280, 1, 0};
    ctx_.cfg = cfg_.get();
    ctx_.program_dir = ctx_.data_dir = dir_.path();
    ctx_.version = "6.1.7";
    ctx_.edit_file = [this](const std::string& path) { edited_.push_back(path); };
  }
  // FAREAS with fileecho "ALPHA" and NODEFILE with 2:280/5 (either may be left empty).
  void Records(bool fileecho = true, bool node = true) {
    TFAreasFile areas(200);
    TNodeFile nodes;
    for (TRecordFile* f : {static_cast<TRecordFile*>(&areas), static_cast<TRecordFile*>(&nodes)}) {
      WriteFileAtomic(DataFileName(dir_.path(), f->base()), "");
      WriteFileAtomic(IndexFileName(dir_.path(), f->base()), "");
      ASSERT_TRUE(f->Open(dir_.path()));
    }
    auto fe = std::make_unique<FileMGRrec>();
    fe->tag.set("ALPHA");
    fe->description.set("First echo");
    if (fileecho) {
      ASSERT_TRUE(areas.Add(*fe));
    }
    NodeMGRrec n{};
    n.address = {2, 280, 5, 0};
    n.ticPassword.set("SECRET");
    if (node) {
      ASSERT_TRUE(nodes.Add(n));
    }
  }
  // The output of `text` saved as T.APL and run as `kind`, or the message.
  std::string Output(const std::string& text, ViewerKind kind) {
    dir_.Write("T.APL", text);
    const std::string out = dir_ / "out.txt";
    const std::string failure = WriteTemplateOutput(ctx_, "T", kind, out);
    if (!failure.empty()) return "!" + failure;
    return ReadWholeFile(out).value_or("?");
  }

  test::TempDir dir_;
  std::unique_ptr<KESTRAcfg> cfg_;
  TemplateContext ctx_;
  std::vector<std::string> edited_;
};

TEST_F(TemplateViewerTest, OutputOfEachKind) {
  Records();
  const std::string wrapped =
      "@filebegin\n@just(@filename,L,12)@just(@filedesc,L,40)\n            @overflow\n@end\n";
  const struct {
    ViewerKind kind;
    std::string text;
    std::string want;
  } cases[] = {
      {ViewerKind::kFileReport, wrapped,
       "SAMPLE1.ZIP This is the description for file number \n"
       "            1. It has been lengthened so that it    \n"
       "            will not fit on one line. This will     \n"
       "            cause an overflow, which can be usefull \n"
       "            for testing the @overflow macro.        \nSAMPLE2.ZIP "},
      {ViewerKind::kFileReport,
       "@areabegin\n@fileecho: @filebegin @filename@end\n@end\n@blockfiles/@totalfiles @totalbytes",
       "ALPHA:  SAMPLE1.ZIP SAMPLE2.ZIP SAMPLE3.ZIP\n3/3 74070\n"},
      {ViewerKind::kFileechoList,
       "@filebegin\n@filename @filereplace @filemagic @fileecho @filedesc\n@end\n@echodesc",
       "TEST.ZIP AST*.ZIP AWESOME TESTECHO This is a test description\nFirst echo\n"},
      {ViewerKind::kSystemMessage,
       "To @msgto from @msgfrom, @msgsubject\n@msgtoaka @echopassword [@echostat] @akatouse",
       "To Some sysop from Joe Sysop, Template view\n2:280/5 SECRET [ ] 2:280/1\n"},
  };
  for (const auto& c : cases) {
    const std::string out = Output(c.text, c.kind);
    if (c.kind == ViewerKind::kFileReport && c.text == wrapped) {
      EXPECT_EQ(out.substr(0, c.want.size()), c.want);
      EXPECT_NE(out.find("SAMPLE3.ZIP This is the description for file number"), std::string::npos);
    } else {
      EXPECT_EQ(out, c.want) << c.text;
    }
  }
}

TEST_F(TemplateViewerTest, MessagesWhenItCannotRun) {
  const std::string node_missing =
      "!Before the template viewing option can/be used, you must define at least one node/in "
      "the Node manager";
  Records(true, false);
  EXPECT_EQ(Output("x", ViewerKind::kFileReport), node_missing);
  Records(false, true);
  EXPECT_EQ(Output("x", ViewerKind::kFileReport),
            "!Before the template viewing option can/be used, you must define at least one "
            "fileecho/in the Fileecho manager");
  Records();
  EXPECT_EQ(Output(";only a comment", ViewerKind::kFileReport), "!Unable to open template file");
  EXPECT_EQ(Output("@filebegin\nx", ViewerKind::kFileReport),
            "!Template contains a syntax error//The number of @end macros is incorrect");
  EXPECT_EQ(Output("@requestbegin\n@requesterr\n@end", ViewerKind::kRequestReply),
            "!There are no file areas defined//In order to view this template, you must/run "
            "DIRBUILD to compile your BBS file areas");
  dir_.Write("FILEAREA.LST", "1 /files/one One\n");
  EXPECT_EQ(Output("@requestbegin\n@requestname @filename: @requesterr\n@end\n@rpflimit",
                   ViewerKind::kRequestReply),
            "FILE *.*: File exceeds size limit\nFILE *.*: Password error\n"
            "FILE *.*: File exceeds number of files limit\nFILE *.*: File not found\n10\n");
}

// The list: F3 views a template as a file report and removes TMP.OUT afterwards, Ins asks for
// a new name and edits it, Enter edits, Del asks and deletes.
TEST_F(TemplateViewerTest, TemplateList) {
  Records();
  dir_.Write("b.apl", "@filebegin\n@filename\n@end\n");
  dir_.Write("A.APL", "Hello @msgto\n");
  dir_.Write("notes.txt", "not a template");
  vt_.Keys("<Down><F3><Down><Enter>");
  EXPECT_THROW(RunTemplateList(ctx_), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("View template"));
  EXPECT_TRUE(vt_.Contains("SAMPLE2.ZIP"));
  vt_.Keys("<Down><F3><Down><Enter><Esc><Esc>");
  RunTemplateList(ctx_);
  EXPECT_FALSE(dir_.Has(kViewOutputName));

  vt_.Keys("<Ins>report<Enter><Enter><Down><Del><Enter><Esc>");
  RunTemplateList(ctx_);
  EXPECT_EQ(edited_, (std::vector<std::string>{dir_ / "report.apl", dir_ / "A.APL"}));
  EXPECT_TRUE(dir_.Has("A.APL"));
  EXPECT_FALSE(dir_.Has("b.apl"));
}

TEST_F(TemplateViewerTest, ListRowsAndAnEmptyDirectory) {
  vt_.Keys("<Enter><Ins>");
  EXPECT_THROW(RunTemplateList(ctx_), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("File name:"));
  EXPECT_TRUE(edited_.empty());
  dir_.Write("X.apl", "12345");
  vt_.Keys("");
  EXPECT_THROW(RunTemplateList(ctx_), KeysExhausted);
  EXPECT_TRUE(vt_.Contains("Template files"));
  EXPECT_TRUE(vt_.Contains("X.apl                5"));
  EXPECT_TRUE(vt_.Contains("Enter-edit Ins-new Del-delete F3-view Esc-exit"));
}

}  // namespace
}  // namespace ks
