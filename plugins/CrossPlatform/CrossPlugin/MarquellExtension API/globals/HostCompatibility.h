// Whether the plug-in serves the host that it runs in.
#pragma once

namespace MarquellGlobals {

/// Whether the host process is one that this plug-in serves, by its name and version. Sets `disableDialogs`
/// in a process that is not a host. Main thread.
bool RunningInCompatibleHostApp(bool& disableDialogs);

}  // namespace MarquellGlobals
