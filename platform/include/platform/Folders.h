// The folders that the system sets aside for applications. Paths are UTF-8, without a trailing separator;
// they need not exist. On Windows the XDG variables and TMPDIR count as well, but only when the variable
// PLUGINCORE_PORTABLE is set; entries of XDG_DATA_DIRS are separated by ';' there.
#pragma once

#include <string>

#include "platform/Service.h"

namespace platform {

enum class KnownFolder {
    kHome,                     ///< CSIDL 40 | HOME (else as the system's user list says)
    kAllUsersApplicationData,  ///< CSIDL 35 | first entry of XDG_DATA_DIRS (default /usr/local/share)
    kLocalApplicationData,     ///< CSIDL 28 | XDG_DATA_HOME (default ~/.local/share)
    kConfiguration,            ///< CSIDL 28 | XDG_CONFIG_HOME (default ~/.config)
    kCache,                    ///< CSIDL 28 | XDG_CACHE_HOME (default ~/.cache)
    kRuntime,                  ///< temporary folder of the user | XDG_RUNTIME_DIR (else empty)
    kTemporary,                ///< GetTempPath | TMPDIR (default /tmp)
};

class Folders {
public:
    virtual ~Folders() = default;

    /// Empty when the system has no such folder.
    virtual std::string PathOf(KnownFolder folder) = 0;
};

template <>
Folders& SystemDefault<Folders>();

/// The full path of what a user typed: relative to the current folder, or to the home folder after "~" or
/// "~/". Without a separator at its end and without "." and ".." in between; it need not exist. Empty when
/// there is none.
std::string FullPath(const std::string& typed);

}  // namespace platform
