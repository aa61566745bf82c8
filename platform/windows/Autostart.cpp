#include "platform/Autostart.h"

#include <windows.h>

#include "WideText.h"

namespace platform {
namespace {

constexpr wchar_t kPrograms[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";

SystemError ErrorOf(LSTATUS status) {
    return SystemError{static_cast<int>(status)};
}

}  // namespace

SystemError SetAutostart(const std::string& name, const std::string& program, const std::string& arguments) {
    const std::wstring command = L"\"" + ToWide(program) + L"\" " + ToWide(arguments);
    constexpr size_t kLongest = 260;  // a longer one is not started
    if (command.size() > kLongest)
        return SystemError{ERROR_FILENAME_EXCED_RANGE};
    return ErrorOf(RegSetKeyValueW(HKEY_CURRENT_USER, kPrograms, ToWide(name).c_str(), REG_SZ,
                                   command.c_str(),
                                   static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t))));
}

SystemError ClearAutostart(const std::string& name) {
    const SystemError error = ErrorOf(RegDeleteKeyValueW(HKEY_CURRENT_USER, kPrograms, ToWide(name).c_str()));
    return error.IsNotFound() ? SystemError{} : error;
}

bool HasAutostart(const std::string& name) {
    return RegGetValueW(HKEY_CURRENT_USER, kPrograms, ToWide(name).c_str(), RRF_RT_REG_SZ, nullptr, nullptr,
                        nullptr) == ERROR_SUCCESS;
}

}  // namespace platform
