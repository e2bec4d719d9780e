// The pop-up utility of Alt-Z: a chart of the 256 code page 437 characters.
#pragma once

namespace ks {

// Shows the chart until Esc or Enter and puts back what lay beneath.
void ShowCharacterChart();

}  // namespace ks
