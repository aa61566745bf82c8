// The windows of the host. Main thread.
#pragma once

namespace MarquellGlobals {

/// The window that dialogs belong to, or null.
void* GetHostAppMainWindow();
/// The first top-level window whose title contains `topTitle` and, when `childTitle` is given, that has a
/// window below it whose title contains this; else null. Titles are UTF-8.
void* FindWindowWithMatchingTitle(const char* topTitle, const char* childTitle);

}  // namespace MarquellGlobals
