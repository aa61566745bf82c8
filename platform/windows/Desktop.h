// Where dialogs appear: the screen, and the window that owns them.
#pragma once

#include <windows.h>

#include "platform/Windowing.h"

namespace platform {

/// Whether windows of this process can be seen. A service's windows cannot: a dialog there would wait for
/// ever.
bool HasVisibleDesktop();

/// The top-level window that `window` belongs to; null when it is gone or another process's, which no dialog
/// of ours may disable.
HWND OwnerOf(WindowHandle window);

/// Moves a dialog over the middle of its owner, or of the screen, and wholly onto the screen.
void CenterOverOwner(HWND dialog);

}  // namespace platform
