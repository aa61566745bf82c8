#include "InstalledFonts.h"

// After windows.h, which it needs.
#include <shlobj.h>

#include <array>
#include <filesystem>
#include <set>
#include <utility>

#include "WideText.h"
#include "platform/Environment.h"
#include "platform/Folders.h"
#include "platform/FontTable.h"
#include "platform/Utf8Path.h"

namespace platform {
namespace {

constexpr wchar_t kFontList[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Fonts";

}  // namespace

FontListKey::FontListKey(HKEY root) {
    if (RegOpenKeyExW(root, kFontList, 0, KEY_QUERY_VALUE | KEY_NOTIFY, &mKey) != ERROR_SUCCESS)
        mKey = nullptr;
}

FontListKey::FontListKey(FontListKey&& other) noexcept : mKey(std::exchange(other.mKey, nullptr)) {}

FontListKey::~FontListKey() {
    if (mKey != nullptr)
        RegCloseKey(mKey);
}

std::vector<std::wstring> FontListKey::Files() const {
    std::vector<std::wstring> files;
    std::vector<wchar_t> name(16384);  // the longest name of a value
    std::vector<wchar_t> file(32768);  // the longest path
    for (DWORD index = 0; mKey != nullptr; ++index) {
        auto nameSize = static_cast<DWORD>(name.size());
        auto size = static_cast<DWORD>((file.size() - 1) * sizeof(wchar_t));
        DWORD type = 0;
        const LSTATUS status = RegEnumValueW(mKey, index, name.data(), &nameSize, nullptr, &type,
                                             reinterpret_cast<BYTE*>(file.data()), &size);
        if (status == ERROR_MORE_DATA)
            continue;
        if (status != ERROR_SUCCESS)
            break;
        file[size / sizeof(wchar_t)] = L'\0';
        if (type == REG_SZ && file[0] != L'\0')
            files.emplace_back(file.data());
    }
    return files;
}

namespace {

/// Those that a test or a portable installation brings along.
InstalledFonts FontsInFolder(const std::string& folder) {
    InstalledFonts fonts;
    fonts.folders.push_back(folder);
    std::error_code failure;
    for (std::filesystem::recursive_directory_iterator entry(Utf8Path(folder), failure), end;
         !failure && entry != end; entry.increment(failure))
        fonts.files.push_back(Utf8Text(entry->path()));
    return fonts;
}

}  // namespace

std::optional<InstalledFonts> FindInstalledFonts() {
    if (!EnvironmentVariable("PLUGINCORE_PORTABLE").empty())
        return FontsInFolder(Current<Folders>().PathOf(KnownFolder::kLocalApplicationData) + "\\fonts");
    std::array<wchar_t, MAX_PATH> folder{};
    SHGetFolderPathW(nullptr, CSIDL_FONTS, nullptr, SHGFP_TYPE_CURRENT, folder.data());
    std::set<std::string> files;
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        for (const std::wstring& file : FontListKey(root).Files())
            files.insert(Utf8Text(Utf8Path(ToUtf8(folder.data())) / Utf8Path(ToUtf8(file))));
    }
    return InstalledFonts{{files.begin(), files.end()}, {ToUtf8(folder.data())}};
}

}  // namespace platform
