// The system's folder chooser.
#pragma once

#include <windows.h>

#include <string>

#include "platform/NativeDialogs.h"

namespace platform {

FolderAnswer RunFolderChooser(HWND owner, const std::wstring& prompt, const std::wstring& initialFolder);

}  // namespace platform
