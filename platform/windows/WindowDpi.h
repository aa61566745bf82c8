// Sizes by the scale of the screen that a window is on, where the host lets its windows follow that; by the
// system's own otherwise. The functions for it are looked up, since older systems lack them.
#pragma once

#include <windows.h>

namespace platform {

/// Dots per inch: 96 is a scale of 100 %.
UINT DpiOf(HWND window);

int SystemMetricFor(int metric, UINT dpi);
/// The font of the system's messages.
LOGFONTW MessageFontFor(UINT dpi);
/// As AdjustWindowRectEx, for a window without a menu.
void AdjustFrameFor(UINT dpi, HWND window, RECT& inside);

/// The window lays itself out anew when its scale changes; the dialog manager leaves that to it.
void KeepDialogManagerFromScaling(HWND dialog);

}  // namespace platform
