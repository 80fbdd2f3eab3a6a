#pragma once

#include "SelfTest.h"

namespace embedding {

/// Opens each dialog, closes it, and destroys or changes the viewer while it is open.
void testDialogs(XlibShell& shell, tv::TavixEventLoop& loop, const Sample& sample, int job);
/// Opens the other windows that the shell's window owns. A field must be shown.
void testOwnedWindows(XlibShell& shell);

} // namespace embedding
