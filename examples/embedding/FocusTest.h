#pragma once

#include "Screen.h"

namespace embedding {

/// Tab moves into the viewer, through it and out of it, in both directions; clicks and calls move the focus.
void testFocus(XlibShell& shell, User& user);
/// The same on a navigator page for which the report pane is empty.
void testFocusWithoutControls(XlibShell& shell, User& user);
/// Tab cycles in a viewer whose shell has no keyboard site.
void testFocusWithoutSite(XlibShell& shell, User& user);

} // namespace embedding
