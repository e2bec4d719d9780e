// The screens behind the menu items, registered with the main menu when it opens.
#pragma once

#include "editors/context.h"

namespace ks {

// What the list editors are given of this run of the program.
ListContext MakeListContext();

// Puts every screen that exists into its menu slot (slots already filled are kept) and lets
// the pick lists find the groups and the BBS file areas.
void RegisterScreens();

}  // namespace ks
