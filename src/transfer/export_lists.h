// The text lists of "Export data", built in memory from the fileecho and node files. Every
// list reads the files through their index, so it comes out in index order. The bytes are
// code page 437 with a line feed at the end of each line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "common/groupset.h"
#include "shell/kestracfg.h"
#include "transfer/transfer.h"

namespace ks {

// The name column of the lists: `name` left-justified in 41 characters; a name of 41
// characters or more is followed by nothing.
std::string NameField(std::string_view name);

// Each builder gives nothing when a data file cannot be opened.

// One line per fileecho of `groups`: the name field, then (with `descriptions`) the
// description. Without descriptions the name field keeps its trailing blanks.
std::optional<std::string> FileechoListText(const TransferContext& ctx, const GroupSet& groups,
                                            bool descriptions);

// The fileechos that none of the uplinks' list files names, after the list of the files read.
std::optional<std::string> CrossCheckText(const TransferContext& ctx);

// For each node its address and sysop lines, then the fileechos it is connected to, two to a
// line.
std::optional<std::string> NodeBreakdownText(const TransferContext& ctx);

// One line per fileecho: the name field and the destination directory.
std::optional<std::string> DestDirsText(const TransferContext& ctx);

// Adds the fileecho tags of an uplink's list file (`text`, in `format`) to `tags`, in
// capitals. A tag file holds a tag at the start of each line; a FILEBONE.NA file holds it
// after the word "Area". Comment lines (";") are skipped.
void AddListedTags(std::string_view text, AreasFileFormat format,
                   std::unordered_set<std::string>& tags);

// Where an uplink's list file is read: a relative name is taken from "Tag path", or from the
// program directory when that is empty.
std::string UplinkListPath(const TransferContext& ctx, const std::string& name);

}  // namespace ks
