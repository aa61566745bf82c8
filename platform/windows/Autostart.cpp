#include "platform/Autostart.h"

#include <windows.h>

#include <array>

#include "WideText.h"

namespace platform {
namespace {

constexpr wchar_t kPrograms[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
/// Where the Task Manager notes what the user switched off: 12 bytes for each program, the first one odd. Not documented;
/// what has another shape counts as on.
constexpr wchar_t kApprovals[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\Run";

SystemError ErrorOf(LSTATUS status) {
    return SystemError{static_cast<int>(status)};
}

bool IsSwitchedOff(const std::wstring& name) {
    std::array<unsigned char, 12> approval{};
    DWORD size = approval.size();
    return RegGetValueW(HKEY_CURRENT_USER, kApprovals, name.c_str(), RRF_RT_REG_BINARY, nullptr,
                        approval.data(), &size) == ERROR_SUCCESS &&
           approval[0] % 2 == 1;
}

}  // namespace

SystemError SetAutostart(const std::string& name, const std::string& program, const std::string& arguments) {
    const std::wstring command = L"\"" + ToWide(program) + L"\" " + ToWide(arguments);
    constexpr size_t kLongest = 260;  // a longer one is not started
    if (command.size() > kLongest)
        return SystemError{ERROR_FILENAME_EXCED_RANGE};
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kApprovals, ToWide(name).c_str());
    return ErrorOf(RegSetKeyValueW(HKEY_CURRENT_USER, kPrograms, ToWide(name).c_str(), REG_SZ,
                                   command.c_str(),
                                   static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t))));
}

SystemError ClearAutostart(const std::string& name) {
    const SystemError error = ErrorOf(RegDeleteKeyValueW(HKEY_CURRENT_USER, kPrograms, ToWide(name).c_str()));
    return error.IsNotFound() ? SystemError{} : error;
}

bool HasAutostart(const std::string& name) {
    const std::wstring wideName = ToWide(name);
    return RegGetValueW(HKEY_CURRENT_USER, kPrograms, wideName.c_str(), RRF_RT_REG_SZ, nullptr, nullptr,
                        nullptr) == ERROR_SUCCESS &&
           !IsSwitchedOff(wideName);
}

}  // namespace platform
