#include "CommandLineText.h"

#include "WideText.h"

namespace platform {
namespace {

std::wstring Quoted(const std::wstring& word) {
    if (!word.empty() && word.find_first_of(L" \t\n\v\"") == std::wstring::npos)
        return word;
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t character : word) {
        if (character == L'"')
            quoted.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    quoted.append(backslashes, L'\\');
    return quoted + L'"';
}

}  // namespace

std::wstring CommandLineText(const std::vector<std::string>& words) {
    std::wstring line;
    for (const std::string& word : words)
        line += (line.empty() ? L"" : L" ") + Quoted(ToWide(word));
    return line;
}

}  // namespace platform
