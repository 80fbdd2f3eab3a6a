#pragma once

#include "SelfTest.h"

namespace embedding {

/// Opens each dialog, leaves it, and ends or changes the viewer under it.
void testDialogs(XlibShell& shell, tv::TavixEventLoop& loop, const Sample& sample, int job);
/// Opens windows other than dialogs that go with the shell's. A field must be shown.
void testOwnedWindows(XlibShell& shell);

} // namespace embedding
