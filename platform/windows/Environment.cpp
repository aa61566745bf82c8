#include "platform/Environment.h"

#include <windows.h>

#include <array>
#include <cctype>
#include <cstdlib>

#include "WideText.h"

namespace platform {
namespace {

bool IsLanguageCode(const std::string& text) {
    return text.size() >= 2 && std::islower(static_cast<unsigned char>(text[0])) &&
           std::islower(static_cast<unsigned char>(text[1]));
}

/// The first of the languages that the user wants programs in, as "de-DE".
std::string SystemLanguage() {
    std::array<wchar_t, 1024> names{};
    auto size = static_cast<ULONG>(names.size());
    ULONG count = 0;
    if (!GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names.data(), &size) || count == 0)
        return {};
    return ToUtf8(names.data());
}

/// The variables that elsewhere tell the language; on Windows they are meant for programs from there.
std::string PortableLanguage() {
    if (EnvironmentVariable("PLUGINCORE_PORTABLE").empty())
        return {};
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string locale = EnvironmentVariable(variable);
        if (!locale.empty())
            return locale;
    }
    return {};
}

HANDLE HandleOf(StandardStream stream) {
    constexpr DWORD kHandles[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    return GetStdHandle(kHandles[static_cast<size_t>(stream)]);
}

}  // namespace

std::string EnvironmentVariable(const char* name) {
    const std::wstring wideName = ToWide(name);
    return ToUtf8(ReadWideText([&](wchar_t* buffer, DWORD size) {
        return GetEnvironmentVariableW(wideName.c_str(), buffer, size);
    }));
}

void SetEnvironment(const char* name, const std::string& value) {
    // Also for what asks the C library, which keeps a copy; an empty value unsets the variable.
    _wputenv_s(ToWide(name).c_str(), ToWide(value).c_str());
}

bool IsTerminal(StandardStream stream) {
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != FALSE;
}

int TerminalWidth(StandardStream stream) {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    return GetConsoleScreenBufferInfo(HandleOf(stream), &screen) != FALSE
               ? screen.srWindow.Right - screen.srWindow.Left + 1
               : 0;
}

std::string UserLanguage() {
    const std::string portable = PortableLanguage();
    const std::string language = portable.empty() ? SystemLanguage() : portable;
    return IsLanguageCode(language) ? language.substr(0, 2) : "en";
}

}  // namespace platform
