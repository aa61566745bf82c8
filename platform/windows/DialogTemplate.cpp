#include "DialogTemplate.h"

namespace platform {
namespace {

constexpr WORD kExtendedVersion = 1;
constexpr WORD kExtendedSignature = 0xFFFF;

}  // namespace

// The layout of DLGTEMPLATEEX, which no header declares.
DialogTemplate::DialogTemplate(DWORD style, DWORD extendedStyle, const std::wstring& title) {
    Append(kExtendedVersion);
    Append(kExtendedSignature);
    AppendDouble(0);  // help
    AppendDouble(extendedStyle);
    AppendDouble(style);
    for (const WORD none : {0, 0, 0, 0, 0})  // controls, position, size
        Append(none);
    for (const WORD none : {0, 0})  // menu, window class
        Append(none);
    AppendText(title);
}

void DialogTemplate::AppendDouble(DWORD doubleWord) {
    Append(LOWORD(doubleWord));
    Append(HIWORD(doubleWord));
}

void DialogTemplate::AppendText(const std::wstring& text) {
    mWords.insert(mWords.end(), text.begin(), text.end());
    Append(0);
}

}  // namespace platform
