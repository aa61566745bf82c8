// The window of the process that a dialog belongs to.
#pragma once

#include <gdk/gdk.h>

namespace host_window {

/// Has the window manager keep `dialog` in front of that window of the process which was in front last. False where
/// no such window can be found: the process has none, or the display is no X server.
bool PutInFront(GdkWindow* dialog, int process);

}  // namespace host_window
