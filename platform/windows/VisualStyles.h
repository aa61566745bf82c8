// Controls in the system's present look, whatever look the host has chosen for its own.
#pragma once

#include <windows.h>

namespace platform {

/// The module that holds this code, which need not be the program.
HMODULE ThisModule();

/// What is created in its scope, on its thread, looks as the manifest in this module says; as everything else
/// in the process when the module has none.
class ScopedVisualStyles {
public:
    ScopedVisualStyles();
    ~ScopedVisualStyles();
    ScopedVisualStyles(const ScopedVisualStyles&) = delete;
    ScopedVisualStyles& operator=(const ScopedVisualStyles&) = delete;

private:
    ULONG_PTR mCookie = 0;
    const bool mIsActive;
};

}  // namespace platform
