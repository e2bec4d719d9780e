// The external editor: a program of the operator's choice run on a text file, with the
// internal editor as the fall-back when it cannot be run.
#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "docs/text_editor.h"

namespace ks {

struct EditorRun {
  bool ran = false;
  int status = 0;  // the exit status (128 + the signal when one ended it), or an errno
};

// The file name as one word of a /bin/sh command line: in single quotes, an embedded quote
// written as '\''.
std::string ShellQuote(const std::string& text);

// Runs `command` + " " + the quoted `path` through /bin/sh -c and waits for it. The terminal
// is handed to it meanwhile and the screen is redrawn in full afterwards. It counts as not run
// when it returned within the same second (`clock`, std::time by default, gives the same time
// before and after) or when the shell could not find or start the program (status 127, 126).
EditorRun RunExternalEditor(const std::string& command, const std::string& path,
                            const std::function<std::time_t()>& clock = {});

// Edits a text file: with an empty `command` in the internal editor; otherwise in the external
// one, and when that did not run, after the question "Unable to execute external editor" ...
// "Use internal editor?", in the internal editor.
void EditTextFile(const std::string& path, const std::string& command,
                  const std::vector<PickEntry>& picks,
                  const std::function<std::time_t()>& clock = {});

}  // namespace ks
