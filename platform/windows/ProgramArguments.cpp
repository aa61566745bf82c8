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

/// A console obeys the escape sequences for colours; what is none must get every byte as it is, without line
/// ends made longer.
void Prepare(std::FILE* stream, DWORD handle) {
    DWORD mode = 0;
    if (!GetConsoleMode(GetStdHandle(handle), &mode))
        _setmode(_fileno(stream), _O_BINARY);
    else if (handle != STD_INPUT_HANDLE)
        SetConsoleMode(GetStdHandle(handle), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

/// The console and its code pages belong to whoever started this program as well.
struct ProgramArguments::StreamState {
    const UINT input = GetConsoleCP();
    const UINT output = GetConsoleOutputCP();
};

ProgramArguments::ProgramArguments(int, char**) {
    // What main is given went through the ANSI code page and lost what is not in it.
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int index = 0; index < count; ++index)
        mTexts.push_back(ToUtf8(words[index]));
    LocalFree(words);
    PointToTexts();
    mStreamState = std::make_unique<StreamState>();
    SetConsoleCP(CP_UTF8);
    SetConsoleOutputCP(CP_UTF8);
    Prepare(stdin, STD_INPUT_HANDLE);
    Prepare(stdout, STD_OUTPUT_HANDLE);
    Prepare(stderr, STD_ERROR_HANDLE);
}

ProgramArguments::~ProgramArguments() {
    SetConsoleCP(mStreamState->input);
    SetConsoleOutputCP(mStreamState->output);
}

}  // namespace platform
