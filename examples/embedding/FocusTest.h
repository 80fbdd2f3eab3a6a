#pragma once

#include "Screen.h"

namespace embedding {

/// Tab goes into the viewer, through it and out of it, both ways; clicks and calls move the keyboard.
void testFocus(XlibShell& shell, User& user);
/// The same on a page of the navigator with which the report pane has nothing to show.
void testFocusWithoutControls(XlibShell& shell, User& user);
/// Tab goes round in a viewer whose shell has no keyboard site.
void testFocusWithoutSite(XlibShell& shell, User& user);

} // namespace embedding
