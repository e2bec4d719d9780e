// The template processor: a template (".apl" text) is loaded with its included templates,
// checked, and then turned into output one piece at a time, macros replaced by their values,
// blocks repeated over the caller's items, tests deciding which lines are output. It has no
// screen code: the template viewer is one caller, the report writers another.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "templates/template_dates.h"
#include "templates/template_keywords.h"

namespace ks::tpl {

// What a template is processed for; the help list marks each macro with the kinds in which it
// has a value.
enum class TemplateKind : std::uint8_t {
  kFileechoList = 1,
  kFileReport = 2,
  kSystemMessage = 3,
  kRequestReply = 4,
};

// Results of Load.
inline constexpr int kLoaded = 0;
inline constexpr int kUnableToOpen = 1;  // missing, or no line but comments
inline constexpr int kSyntaxError = 2;   // the @end macros do not match the blocks

// "Unable to open template", "Syntax error: invalid number of @end macros in template", or ""
// for kLoaded.
std::string LoadResultText(int result);

// Limits of the run-time tables.
inline constexpr std::size_t kLineLimit = 255;
inline constexpr std::size_t kMaxTests = 10;
inline constexpr std::size_t kMaxVariables = 20;
inline constexpr std::size_t kMaxDefinedMacros = 99;
inline constexpr std::size_t kNameLimit = 15;
inline constexpr std::size_t kOverflowLimit = 2000;
inline constexpr std::size_t kMaxBlockDepth = 255;
inline constexpr int kMaxIncludeDepth = 8;  // nested "@INCLUDEAPL(" templates

// The caller's side of a run: the values of the value macros it knows and the items of the
// blocks.
class TemplateData {
 public:
  virtual ~TemplateData() = default;
  // The value of a value macro, or nothing when the caller has none (then the processor's own
  // value applies: dates, message context, program name; otherwise the empty text).
  virtual std::optional<std::string> Value(Keyword k) {
    (void)k;
    return std::nullopt;
  }
  // A block opens: its first item becomes current; false when it has none (the block's lines
  // are then skipped).
  virtual bool FirstItem(Keyword block) {
    (void)block;
    return false;
  }
  // The block's body has been output for the current item: the next item becomes current;
  // false when there is none.
  virtual bool NextItem(Keyword block) {
    (void)block;
    return false;
  }
  // "@allowbreak" (false) or "@forcebreak" (true) was met.
  virtual void Break(bool forced) { (void)forced; }
};

// Where a run finds its files and what it takes as "now".
struct RunSettings {
  std::string template_dir;  // prefixed to template names ("" = current directory)
  std::string system_dir;    // where COOKIE.DAT lies
  DateTime now;              // the date macros; Load fills in the clock's time when year is 0
  std::uint32_t seed = 0;    // chooses the fortune cookie; 0 = from the clock
  // Block bodies output again at most this often in the whole run (0 = no limit), so that
  // nested blocks over made-up items cannot run for ever.
  std::uint64_t max_repeats = 0;
  // @include and @openoutput refuse names with a "/" (runs on untrusted templates).
  bool local_files_only = false;
};

class TemplateProcessor {
 public:
  TemplateProcessor() = default;
  ~TemplateProcessor();
  TemplateProcessor(const TemplateProcessor&) = delete;
  TemplateProcessor& operator=(const TemplateProcessor&) = delete;

  // Loads template `name` ("\" paths and a trailing ".apl" are cut off; the file is
  // template_dir + name + ".apl", its name matched without regard to case) for `kind`, with
  // `data` (may be null) as the caller's side and the message context `to`, `from`, `subject`.
  // Returns kLoaded, kUnableToOpen or kSyntaxError; on failure nothing stays allocated.
  int Load(const std::string& name, TemplateKind kind, TemplateData* data, std::string to,
           std::string from, std::string subject, RunSettings settings = {});
  // Loads the template from text in memory instead of a file (the same checks apply).
  int LoadText(std::string_view text, TemplateKind kind, TemplateData* data, std::string to,
               std::string from, std::string subject, RunSettings settings = {});

  // Defines a macro of the caller: a known name gets the new value, a new one is added while
  // fewer than 99 exist.
  void DefineMacro(std::string_view name, std::string_view value);

  // The next piece of output in `out`: a piece that ends a line ends in a carriage return.
  // False when the template is exhausted.
  bool NextLine(std::string& out);

  // Frees the lines and tables and closes an open output file.
  void Release();

  // The output text of one macro ("@fileecho", "@just(@filename,L,12)"); with `at_eol` a value
  // ends in a carriage return.
  std::string Evaluate(std::string_view macro, bool at_eol);

  bool loaded() const { return loaded_; }
  bool no_msg_output() const { return no_msg_output_; }
  std::size_t line_count() const { return lines_.size(); }

 private:
  struct Block {
    bool repeat = false;     // more items follow: @end jumps back
    bool jump_back = false;  // @end was met: read the body again
    bool dead = false;       // no items (or opened where lines are suppressed): skip the body
    Keyword kind = Keyword::AreaBegin;
    std::size_t body = 0;   // index of the body's first whole line
    std::string body_rest;  // the rest of the opening line, when the body begins on it
  };
  struct Test {
    std::uint8_t active = 0;    // the comparison decides (not opened inside suppressed lines)
    std::uint8_t suppress = 0;  // the lines inside are not output
    std::uint8_t entered = 1;
    std::size_t block_depth = 0;  // blocks open when the test opened
  };
  struct Overflow {
    std::string text;
    int mode = 0;  // 0 just, 1 center, 2 copy
    int size = 0;
    char justify = 'L';
    char pad = ' ';
    int column = 1;
    int lines = 0;  // @overflow lines printed from this text
  };
  struct Named {
    std::string name;  // upper-cased
    std::string value;
  };

  int Finish(TemplateKind kind, TemplateData* data, std::string to, std::string from,
             std::string subject, RunSettings settings);
  void AddLines(std::string_view text, int depth);
  void LoadInclude(const std::string& name, int depth);
  bool Suppressing() const;
  bool TakeLine();
  void Emit(std::string& out);
  std::string Function(std::string_view macro, std::string_view name, std::string_view args,
                       bool at_eol);
  std::optional<std::string> ValueOf(std::string_view upper_name);
  std::optional<std::string> BuiltIn(Keyword k);
  std::optional<std::string> Control(Keyword k, bool at_eol);
  std::optional<std::string> Argument(std::string_view arg);
  std::string JustOrCenter(const std::vector<std::string>& v, bool center, bool& ok);
  std::string CopyPart(const std::vector<std::string>& v, bool& ok);
  bool TestCall(const std::vector<std::string>& v);
  bool Arithmetic(int code, const std::vector<std::string>& raw);
  std::string OverflowPiece();
  void StartCookie();
  Named* Variable(std::string_view upper_name);
  bool Allowed(const std::string& file) const;

  // A template line as loaded: bytes 255 already blanks, its kind worked out once.
  struct Line {
    std::string text;
    bool comment = false;   // begins with ";": never output
    bool overflow = false;  // holds "@OVERFLOW": output only while there is overflow text
  };
  std::vector<Line> lines_;
  std::size_t next_ = 0;
  std::string pending_;
  bool loaded_ = false;
  TemplateKind kind_ = TemplateKind::kFileechoList;
  TemplateData* data_ = nullptr;
  std::string to_, from_, subject_;
  RunSettings settings_;
  std::vector<Block> blocks_;
  std::vector<Test> tests_;
  std::vector<Named> variables_;
  std::vector<Named> defined_;
  Overflow overflow_;
  int overflow_limit_ = 255;
  std::size_t overflow_line_ = SIZE_MAX;  // index of the last line taken, if an @overflow line
  std::size_t overflow_size_at_take_ = 0;
  bool began_block_ = false;
  std::vector<std::string> cookie_lines_;
  std::size_t cookie_next_ = 0;
  std::FILE* include_ = nullptr;
  std::FILE* output_ = nullptr;
  bool filter_cr_ = false, filter_ansi_ = false;
  bool no_msg_output_ = false;
  std::uint32_t random_ = 0;
  std::uint64_t repeats_ = 0;
};

}  // namespace ks::tpl
