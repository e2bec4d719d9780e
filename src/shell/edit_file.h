// Editing a text file of the configuration from a screen: the external editor the operator
// chose, or the internal one, with the template macros in its pick list.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "docs/text_editor.h"
#include "shell/kestracfg.h"
#include "shell/progdir.h"

namespace ks {

// The command line of the external editor: the ED program of "External programs" with its
// switches; without one the editor named by $VISUAL, then $EDITOR; "" for the internal editor.
std::string EditorCommand(const KESTRAcfg& cfg, const GetEnvFn& getenv);

// The internal editor's pick list: every template macro, shown with the kinds of template it
// serves and its help text.
std::vector<PickEntry> MacroPicks();

// Edits the file at a path with the editor `cfg` names at the moment of the call.
std::function<void(const std::string& path)> FileEditor(const KESTRAcfg* cfg, GetEnvFn getenv);

}  // namespace ks
