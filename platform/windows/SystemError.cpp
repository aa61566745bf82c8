#include "platform/SystemError.h"

#include <windows.h>

#include "WideText.h"

namespace platform {

namespace {
constexpr int kDiskQuotaExceeded = 1295;  // ERROR_DISK_QUOTA_EXCEEDED, which MinGW's header does not have
}

const SystemError kDiskFull{ERROR_DISK_FULL};

bool SystemError::IsNotFound() const {
    return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND || code == ERROR_INVALID_DRIVE ||
           code == ERROR_BAD_NETPATH || code == ERROR_BAD_NET_NAME;
}

bool SystemError::IsExisting() const {
    return code == ERROR_FILE_EXISTS || code == ERROR_ALREADY_EXISTS;
}

bool SystemError::IsNotPermitted() const {
    return code == ERROR_ACCESS_DENIED || code == ERROR_WRITE_PROTECT || code == ERROR_PRIVILEGE_NOT_HELD;
}

bool SystemError::IsPathTooLong() const {
    return code == ERROR_FILENAME_EXCED_RANGE;
}

bool SystemError::IsDiskFull() const {
    return code == ERROR_DISK_FULL || code == ERROR_HANDLE_DISK_FULL || code == kDiskQuotaExceeded;
}

bool SystemError::IsHeldByOther() const {
    return code == ERROR_LOCK_VIOLATION || code == ERROR_SHARING_VIOLATION;
}

SystemError LastSystemError() {
    return SystemError{static_cast<int>(GetLastError())};
}

std::string SystemErrorText(SystemError error) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(error.code), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (length == 0)
        return "FormatMessage Failed";
    if (text == nullptr)
        return "Null message";
    std::wstring message(text, length);
    LocalFree(text);
    message.erase(message.find_last_not_of(L" \r\n") + 1);
    return message.empty() ? "Null message" : ToUtf8(message);
}

}  // namespace platform
