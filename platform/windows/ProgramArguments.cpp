#include "platform/ProgramArguments.h"

#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>

#include "WideText.h"

namespace platform {

ProgramArguments::ProgramArguments(int count, char** words) {
    int wideCount = 0;
    if (wchar_t** wideWords = CommandLineToArgvW(GetCommandLineW(), &wideCount)) {
        for (int index = 0; index < wideCount; ++index)
            mWords.push_back(ToUtf8(wideWords[index]));
        LocalFree(wideWords);
    } else {
        mWords.assign(words, words + count);
    }
    for (std::string& word : mWords)
        mPointers.push_back(word.data());
    mPointers.push_back(nullptr);
}

ScopedUtf8Console::ScopedUtf8Console() : mPreviousCharacterSet(GetConsoleOutputCP()) {
    SetConsoleOutputCP(CP_UTF8);
}

ScopedUtf8Console::~ScopedUtf8Console() {
    if (mPreviousCharacterSet != 0)
        SetConsoleOutputCP(mPreviousCharacterSet);
}

}  // namespace platform
