// The lists in the registry that fonts are installed in.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace platform {

/// A key of the registry that closes itself.
class FontListKey {
public:
    /// The list of all users (HKEY_LOCAL_MACHINE) or of this one (HKEY_CURRENT_USER), which may be missing.
    explicit FontListKey(HKEY root);
    ~FontListKey();
    FontListKey(FontListKey&& other) noexcept;
    FontListKey(const FontListKey&) = delete;
    FontListKey& operator=(const FontListKey&) = delete;

    HKEY Get() const { return mKey; }
    /// The files in the list: full paths, or names in the folder for fonts of the system.
    std::vector<std::wstring> Files() const;

private:
    HKEY mKey = nullptr;
};

}  // namespace platform
