// What the dialog manager makes an empty dialog of.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

class DialogTemplate {
public:
    /// Controls get their font when they are made.
    DialogTemplate(DWORD style, DWORD extendedStyle, const std::wstring& title);

    LPCDLGTEMPLATEW Get() const { return reinterpret_cast<LPCDLGTEMPLATEW>(mWords.data()); }

private:
    void Append(WORD word) { mWords.push_back(word); }
    void AppendDouble(DWORD doubleWord);
    void AppendText(const std::wstring& text);

    std::vector<WORD> mWords;
};

}  // namespace platform
