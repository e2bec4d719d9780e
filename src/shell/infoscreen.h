// The "Information" screen: what this program is and where it keeps its files.
#pragma once

#include <string>
#include <vector>

namespace ks {

// The lines of the information screen (label and value pairs joined), for this run.
std::vector<std::string> InformationLines();

// Shows the information box until Esc or Enter.
void ShowInformation();

}  // namespace ks
