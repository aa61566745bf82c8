#include "AddedFonts.h"

#include <windows.h>

#include <optional>
#include <vector>

#include "WideText.h"
#include "platform/System.h"

namespace platform {
namespace {

/// The record of this session; a user may have several.
class SessionKey {
public:
    SessionKey() {
        // What is made along the way to a key that goes with the session goes with it as well.
        HKEY maker = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Vantorix", 0, nullptr, 0, KEY_QUERY_VALUE, nullptr,
                            &maker, nullptr) == ERROR_SUCCESS)
            RegCloseKey(maker);
        const std::wstring name = L"Software\\Vantorix\\FontsInTable\\" + std::to_wstring(SessionNumber());
        if (RegCreateKeyExW(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                            KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &mKey, nullptr) != ERROR_SUCCESS)
            mKey = nullptr;
    }
    ~SessionKey() {
        if (mKey != nullptr)
            RegCloseKey(mKey);
    }
    SessionKey(const SessionKey&) = delete;
    SessionKey& operator=(const SessionKey&) = delete;

    int CountOf(const std::wstring& path) const {
        DWORD count = 0;
        DWORD size = sizeof count;
        const LSTATUS status =
            RegGetValueW(mKey, nullptr, path.c_str(), RRF_RT_REG_DWORD, nullptr, &count, &size);
        return status == ERROR_SUCCESS ? static_cast<int>(count) : 0;
    }
    void SetCount(const std::wstring& path, int count) const {
        const auto value = static_cast<DWORD>(count);
        if (count > 0)
            RegSetValueExW(mKey, path.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                           sizeof value);
        else
            RegDeleteValueW(mKey, path.c_str());
    }
    /// Nothing behind the last one.
    std::optional<std::wstring> PathAt(DWORD index) const {
        std::vector<wchar_t> name(16384);  // the longest name of a value
        auto size = static_cast<DWORD>(name.size());
        const LSTATUS status =
            RegEnumValueW(mKey, index, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
        return status == ERROR_SUCCESS ? std::optional<std::wstring>({name.data(), size}) : std::nullopt;
    }

private:
    HKEY mKey = nullptr;
};

}  // namespace

std::map<std::string, int> AddedFonts() {
    const SessionKey key;
    std::map<std::string, int> all;
    for (DWORD index = 0; const auto path = key.PathAt(index); ++index)
        all[ToUtf8(*path)] = key.CountOf(*path);
    return all;
}

void NoteAddedFont(const std::string& path, int change) {
    const SessionKey key;
    const std::wstring name = ToWide(path);
    key.SetCount(name, key.CountOf(name) + change);
}

void ForgetAddedFont(const std::string& path) {
    SessionKey().SetCount(ToWide(path), 0);
}

}  // namespace platform
