#include "platform/ProgramArguments.h"

#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "WideText.h"

namespace platform {
namespace {

/// What is no console must get every byte as it is, without line ends made longer.
void KeepBytes(std::FILE* stream, DWORD handle) {
    DWORD mode = 0;
    if (!GetConsoleMode(GetStdHandle(handle), &mode))
        _setmode(_fileno(stream), _O_BINARY);
}

}  // namespace

ProgramArguments::ProgramArguments(int, char**) {
    // What main is given went through the ANSI code page and lost what is not in it.
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 0; index < count; ++index)
        mTexts.push_back(ToUtf8(words[index]));
    LocalFree(words);
    PointToTexts();
    SetConsoleOutputCP(CP_UTF8);
    KeepBytes(stdin, STD_INPUT_HANDLE);
    KeepBytes(stdout, STD_OUTPUT_HANDLE);
    KeepBytes(stderr, STD_ERROR_HANDLE);
}

}  // namespace platform
