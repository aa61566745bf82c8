#include "platform/VersionResource.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "WideText.h"

namespace platform {
namespace {

using Information = std::vector<unsigned char>;

Information ReadFromFile(const std::string& path, SystemError& error) {
    const std::wstring name = ToWidePath(path);
    DWORD ignored = 0;
    Information information(name.empty() ? 0 : GetFileVersionInfoSizeW(name.c_str(), &ignored));
    if (information.empty() ||
        !GetFileVersionInfoW(name.c_str(), 0, static_cast<DWORD>(information.size()), information.data())) {
        error = LastSystemError();
        return {};
    }
    error = {};
    return information;
}

/// `size`: that of the resource; the copy has room behind it, where the query functions may convert texts.
Information ReadFromModule(HMODULE module, SystemError& error, size_t& size) {
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    const HGLOBAL loaded = resource != nullptr ? LoadResource(module, resource) : nullptr;
    const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) {
        error = LastSystemError();
        return {};
    }
    error = {};
    size = SizeofResource(module, resource);
    Information information(static_cast<const unsigned char*>(bytes),
                            static_cast<const unsigned char*>(bytes) + size);
    information.resize(size * 2);
    return information;
}

/// Nothing when there are none, or none but zeros.
std::optional<std::string> NumbersOf(const Information& information) {
    void* value = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(information.data(), L"\\", &value, &size) || size < sizeof(VS_FIXEDFILEINFO))
        return std::nullopt;
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(value);
    if (fixed.dwFileVersionMS == 0 && fixed.dwFileVersionLS == 0)
        return std::nullopt;
    return std::to_string(HIWORD(fixed.dwFileVersionMS)) + "." +
           std::to_string(LOWORD(fixed.dwFileVersionMS)) + "." +
           std::to_string(HIWORD(fixed.dwFileVersionLS)) + "." +
           std::to_string(LOWORD(fixed.dwFileVersionLS));
}

/// The length comes from the file, which may claim more than it has.
std::optional<std::string> TextOf(const Information& information, const std::string& key) {
    void* value = nullptr;
    UINT length = 0;  // in characters, with the closing zero
    const std::wstring name = LR"(\StringFileInfo\040904b0\)" + ToWide(key);
    if (!VerQueryValueW(information.data(), name.c_str(), &value, &length) || length == 0)
        return std::nullopt;
    const auto* begin = static_cast<const unsigned char*>(value);
    const unsigned char* end = information.data() + information.size();
    const size_t left = begin < end ? static_cast<size_t>(end - begin) / sizeof(wchar_t) : 0;
    const std::wstring_view text(static_cast<const wchar_t*>(value), std::min<size_t>(length, left));
    return ToUtf8(text.substr(0, text.find(L'\0')));
}

std::optional<std::string> FindValue(const Information& information, const std::string& key) {
    if (information.empty())
        return std::nullopt;
    // As a text, a file's version may be in another language, or written with commas.
    if (key == "FileVersion") {
        if (auto numbers = NumbersOf(information))
            return numbers;
    }
    return TextOf(information, key);
}

class WindowsVersionResources : public VersionResources {
public:
    std::optional<std::string> FromFile(const std::string& path, const char* key,
                                        SystemError& error) override {
        return FindValue(ReadFromFile(path, error), key);
    }

    std::optional<std::string> FromModuleAt(const void* address, const char* key, SystemError& error,
                                            size_t* resourceSize) override {
        size_t size = 0;
        Information information;
        HMODULE module = nullptr;
        if (GetModuleHandleExW(
                GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                static_cast<const wchar_t*>(address), &module))
            information = ReadFromModule(module, error, size);
        else
            error = LastSystemError();
        if (resourceSize != nullptr)
            *resourceSize = size;
        return FindValue(information, key);
    }
};

}  // namespace

template <>
VersionResources& SystemDefault<VersionResources>() {
    static WindowsVersionResources resources;
    return resources;
}

}  // namespace platform
