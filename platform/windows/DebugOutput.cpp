#include "platform/DebugOutput.h"

#include <windows.h>

#include <cstring>
#include <exception>
#include <string>

#include "OwnedHandle.h"
#include "WideText.h"
#include "platform/Environment.h"

namespace platform {
namespace {

/// The copy of the output that a developer asked for.
HANDLE OpenCopy() noexcept {
    try {
        const std::string name = EnvironmentVariable("PLUGINCORE_DEBUG_OUTPUT");
        if (name == "-")
            return GetStdHandle(STD_ERROR_HANDLE);
        if (!name.empty())
            return CreateFileW(ToWidePath(name).c_str(), FILE_APPEND_DATA,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    } catch (const std::exception&) {  // no memory: the debugger has its output all the same
    }
    return INVALID_HANDLE_VALUE;
}

class WindowsDebugOutput : public DebugOutput {
public:
    void Write(const char* text) noexcept override {
        if (text == nullptr)
            return;
        const DWORD savedError = GetLastError();
        OutputDebugStringA(text);
        static const HANDLE copy = OpenCopy();
        DWORD written = 0;
        if (copy != nullptr && copy != INVALID_HANDLE_VALUE)
            WriteFile(copy, text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
        SetLastError(savedError);
    }

    // A debugger or a viewer may be attached at any time.
    bool IsListening() noexcept override { return true; }
};

}  // namespace

template <>
DebugOutput& SystemDefault<DebugOutput>() {
    static WindowsDebugOutput output;
    return output;
}

}  // namespace platform
